// PNG files, read, written and made.
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { PNG } from 'pngjs';

export const decode = (bytes) => PNG.sync.read(bytes);
export const encode = (picture) => PNG.sync.write(picture);

// `colourAt` tells red, green, blue and alpha of a place.
export function drawPicture(file, width, height, colourAt) {
    const picture = new PNG({ width, height });
    for (let i = 0; i < width * height; ++i) picture.data.set(colourAt(i % width, Math.floor(i / width)), i * 4);
    writeFileSync(file, encode(picture));
}

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
