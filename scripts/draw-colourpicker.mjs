// Draws Media/www/colourpicker.png: hues from left to right, each from white through the pure colour to black from top
// to bottom, with a strip of greys at the left. try.js names the colour of a place by the same rule.
import { writeFileSync } from 'node:fs';
import { crc32, deflateSync } from 'node:zlib';

const width = 480;
const height = 128;
const greyShare = 0.08;

function colour(x, y) {
    const lightness = 1 - y;
    if (x < greyShare) return [lightness, lightness, lightness];
    const hue = (x - greyShare) / (1 - greyShare) * 12;
    const span = Math.min(lightness, 1 - lightness);
    return [0, 8, 4].map((n) => {
        const k = (n + hue) % 12;
        return lightness - span * Math.max(-1, Math.min(k - 3, 9 - k, 1));
    });
}

const rows = Buffer.alloc((width * 3 + 1) * height);
for (let y = 0; y < height; ++y) {
    for (let x = 0; x < width; ++x) {
        const rgb = colour((x + 0.5) / width, (y + 0.5) / height).map((v) => Math.round(v * 255));
        rows.set(rgb, y * (width * 3 + 1) + 1 + x * 3);
    }
}

function chunk(type, data) {
    const body = Buffer.concat([Buffer.from(type), data]);
    const out = Buffer.alloc(body.length + 8);
    out.writeUInt32BE(data.length, 0);
    body.copy(out, 4);
    out.writeUInt32BE(crc32(body), body.length + 4);
    return out;
}

const header = Buffer.alloc(13);
header.writeUInt32BE(width, 0);
header.writeUInt32BE(height, 4);
header.set([8, 2, 0, 0, 0], 8);
writeFileSync(new URL('../Media/www/colourpicker.png', import.meta.url), Buffer.concat([
    Buffer.from('\x89PNG\r\n\x1a\n', 'latin1'), chunk('IHDR', header), chunk('IDAT', deflateSync(rows, { level: 9 })),
    chunk('IEND', Buffer.alloc(0)),
]));
