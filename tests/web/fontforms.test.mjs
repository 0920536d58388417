// Exported fonts that are not as the program makes most of them: without a cap height, and with another picture.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { compare } from './browser.mjs';
import { decode, drawPicture } from './pictures.mjs';
import { Tabs, ways } from './tabs.mjs';

const tabs = new Tabs();
const { site } = tabs;
let large; // a line of it, from before its picture grew
let size; // at which the font with capitals stands at its own size

before(async () => {
    await tabs.open();
    const make = ['--family', 'DejaVu Serif', '--height', '100', '--colour', '2060C0', '--select'];
    site.cli(...make, 'a-z', '--generate', '--save', 'small.sm', '--minimal-html', 'small.html');
    site.cli(...make, 'A-Z', '--generate', '--save', 'large.sm', '--minimal-html', 'large.html');
    size = JSON.parse(site.cli('--open', 'large.sm', '--info')).capHeight / 0.7;
    const picture = join(site.folder, 'large.png');
    large = site.lineOf('AVATAR', 'large.sm');
    const { data, width, height } = decode(readFileSync(picture));
    const at = (x, y) => 4 * ((y >> 1) * width + (x >> 1));
    drawPicture(picture, 2 * width, 2 * height, (x, y) => data.subarray(at(x, y), at(x, y) + 4));
});
after(() => tabs.close());

async function assertDrawn(way, text, font, fontSize, line) {
    const tab = await tabs.tab(way, tabs.write(`<p class="f">${text}</p>`, { font, size: fontSize }));
    const { sizes: [[w1, h1], [w2, h2]], mean } = compare(tabs.keep(await tab.shot(), `${font}-${way}`), line);
    // What the browser makes smaller has soft edges.
    assert.ok(Math.abs(w1 - w2) <= 2 && Math.abs(h1 - h2) <= 2 && mean < 12, `${w1} x ${h1} and ${w2} x ${h2}, mean ${mean}`);
    await tab.close();
}

for (const way of ways) {
    test(`${way}: a font without a cap height has the size of its glyphs`, async () => {
        await assertDrawn(way, 'wavy', 'small', 100, site.lineOf('wavy', 'small.sm'));
    });

    test(`${way}: a picture of twice the size is drawn at the font's own`, async () => {
        await assertDrawn(way, 'AVATAR', 'large', size, large);
    });
}
