// jimp with what the tests need of it, PNG files and text; and pictures made and read by it.
import { createJimp } from '@jimp/core';
import png from '@jimp/js-png';
import { methods } from '@jimp/plugin-print';
import { join } from 'node:path';

export { loadFont } from '@jimp/plugin-print/load-font';
export const Jimp = createJimp({ formats: [png], plugins: [methods] });
export const decode = async (bytes) => (await Jimp.fromBuffer(bytes)).bitmap;

// An ellipse with a soft edge, which `alpha` is told the distance to: 48 rows in changing colours.
const soft = (d) => (d < 0.6 ? 255 : Math.max(Math.round((1 - d) * 637), 0));
export async function drawPicture(file, width, alpha = soft) {
    const picture = new Jimp({ width, height: 48 });
    for (let y = 0; y < 48; ++y) {
        for (let x = 0; x < width; ++x) {
            const d = Math.hypot((x - width / 2) / (width / 2), (y - 24) / 20);
            picture.bitmap.data.set([(x * 7 + width) % 256, (y * 5) % 256, (width * 11) % 256, alpha(d)], (y * width + x) * 4);
        }
    }
    await picture.write(file);
}

// What lettrino-cli is told for a font of pictures: [character, spacing] of each.
export async function pictureSteps(folder, widthOf, characters) {
    const steps = [];
    for (const [i, [character, spacing]] of characters.entries()) {
        await drawPicture(join(folder, `glyph${i}.png`), widthOf(i));
        steps.push('--spacing', spacing, '--picture', `${character}=glyph${i}.png`);
    }
    return steps;
}
