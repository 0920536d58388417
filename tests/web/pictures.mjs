// PNG files, read, written and made.
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { PNG } from 'pngjs';

export const decode = (bytes) => PNG.sync.read(bytes);
export const encode = (picture) => PNG.sync.write(picture);

// Of each channel of each pixel in a rectangle of one picture and in one of the same size in another: the largest and the
// mean; and the share of pixels that are off by more than 32 levels. Where both have the ground's grey nothing counts.
export function difference(a, b, width, height, [ax, ay] = [0, 0], [bx, by] = [0, 0], ground = -1) {
    let most = 0, sum = 0, off = 0, inked = 0;
    for (let y = 0; y < height; ++y) {
        for (let x = 0; x < width; ++x) {
            const [i, j] = [((ay + y) * a.width + ax + x) * 4, ((by + y) * b.width + bx + x) * 4];
            if ([0, 1, 2].every((c) => a.data[i + c] === ground && b.data[j + c] === ground)) continue;
            ++inked;
            const channels = [0, 1, 2].map((c) => Math.abs(a.data[i + c] - b.data[j + c]));
            const worst = Math.max(...channels);
            most = Math.max(most, worst);
            sum += channels[0] + channels[1] + channels[2];
            if (worst > 32) ++off;
        }
    }
    return { most, mean: sum / (inked * 3 || 1), off: off / (inked || 1), inked };
}

// How many pixels have such a red, green and blue.
export const count = (png, isIt) => {
    const { data } = decode(png);
    return data.filter((value, i) => i % 4 === 0 && isIt(value, data[i + 1], data[i + 2])).length;
};

// The red, green and blue at a place, both coordinates between 0 and 1.
export function colourAt(png, u, v) {
    const { data, width, height } = decode(png);
    const start = (Math.floor(v * height) * width + Math.floor(u * width)) * 4;
    return [...data.subarray(start, start + 3)];
}

// `colour` tells red, green, blue and alpha of a place.
export function made(width, height, colour) {
    const picture = new PNG({ width, height });
    for (let i = 0; i < width * height; ++i) picture.data.set(colour(i % width, Math.floor(i / width)), i * 4);
    return picture;
}
export const drawPicture = (file, ...picture) => writeFileSync(file, encode(made(...picture)));

// What lettrino-cli is told for a font of pictures, [character, spacing] of each: ellipses in changing colours that end
// softly.
export function pictureSteps(folder, widthOf, characters) {
    return characters.flatMap(([character, spacing], i) => {
        const width = widthOf(i);
        drawPicture(join(folder, `glyph${i}.png`), width, 48, (x, y) => {
            const d = Math.hypot((x - width / 2) / (width / 2), (y - 24) / 20);
            return [(x * 7 + width) % 256, (y * 5) % 256, (width * 11) % 256, d < 0.6 ? 255 : Math.max(Math.round((1 - d) * 637), 0)];
        });
        return ['--spacing', spacing, '--picture', `${character}=glyph${i}.png`];
    });
}
