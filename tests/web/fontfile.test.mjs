// Font files whose glyphs are pictures, as web fonts in Chromium and in Firefox, on the style sheet that
// --css-page writes: the same line as lettrino-cli sets it.
import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { keep, launch } from './browser.mjs';
import { decode, difference, drawPicture, pictureSteps } from './pictures.mjs';
import { Tabs } from './tabs.mjs';

const tabs = new Tabs();
const { site } = tabs;
const inFolder = (name) => join(site.folder, name);
const ground = [32, 48, 64];

// Letters of all sizes; pictures that stand into one another, some of them transparent, with codes above 255; tiles
// that leave no gap. The numbers of pictures and tiles are even, so that half of their size has whole pixels too.
const fonts = {
    plain: { text: 'AVATAR, Toy\u00E9 fjord', make: ['--family', 'DejaVu Sans', '--weight', '700', '--height', '64', '--colour', 'F0C060', '--select', 'all', '--generate', '--kern'] },
    small: { text: 'AVATAR, To', make: ['--family', 'DejaVu Serif', '--height', '16', '--colour', 'F0C060', '--select', '33-126', '--generate', '--kern'] },
    large: { text: 'AVo', make: ['--family', 'DejaVu Sans', '--height', '256', '--colour', 'F0C060', '--select', 'A,V,o', '--generate', '--kern'] },
    huge: { text: 'AV', make: ['--family', 'DejaVu Sans', '--height', '1024', '--colour', 'F0C060', '--select', 'A,V', '--generate', '--kern'] },
    pictures: { text: 'AbA \u0416\u20AC \u3042b' },
    tiles: { text: 'xxxxxxxxxxxx' },
};

function makePictures() {
    const steps = pictureSteps(site.folder, (i) => 28 + 6 * i,
        [['A', '4,-10'], ['b', '-4,2'], ['U+0416', '-8,-4'], ['U+20AC', '0,-12'], ['U+3042', '-6,4']]);
    fonts.pictures.make = [...steps, '--set-kerning', 'A,b,-6', '--set-kerning', 'U+0416,U+20AC,4'];
    drawPicture(inFolder('tile.png'), 32, 48, (x, y) => [(x * 7 + 32) % 256, (y * 5) % 256, 96, 255]);
    fonts.tiles.make = ['--trim', 'no', '--picture', 'x=tile.png'];
}

function setLine(name, text) {
    site.cli('--open', `${name}.sm`, '--background', '203040', '--text', text, `${name}-line.png`);
    const line = decode(readFileSync(inFolder(`${name}-line.png`)));
    Object.assign(fonts[name], { text, line, height: line.height });
}

before(async () => {
    makePictures();
    await tabs.open();
    for (const [name, font] of Object.entries(fonts)) {
        site.cli(...font.make, '--save', `${name}.sm`, '--css-page', `${name}-page.html`);
        setLine(name, font.text);
    }
});
after(() => Promise.all([tabs.close(), dense?.close()]));

// A page with the line at 20, 20 and below it the picture of the same line, both at `size` of their own.
function writePage(name, size) {
    const { text, height, line } = fonts[name];
    const file = `${name}-${size}.html`;
    writeFileSync(inFolder(file), `<!DOCTYPE html><meta charset="utf-8"><link rel="stylesheet" href="${name}-page.css">
<style>body { margin: 0; background: rgb(${ground}); } div, img { position: absolute; left: 20px; white-space: pre; }</style>
<div id="text" class="font-${name}-page" style="top: 20px; font-size: ${height * size}px">${text}</div>
<img src="${name}-line.png" style="top: ${40 + height * size}px; width: ${line.width * size}px; height: ${height * size}px">`);
    return file;
}

let dense; // Chromium on a screen of twice the density
async function shotOf(page) {
    await page.evaluate(() => document.fonts.ready);
    const png = await page.screenshot();
    await page.context().close();
    return png;
}

const browsers = {
    chromium: async (file, density) => {
        // Of the screen itself: a density that is only emulated keeps advances whole.
        if (density === 1) return shotOf(await site.page(file, { viewport: { width: 1200, height: 760 } }));
        dense ??= await launch(`--force-device-scale-factor=${density}`, '--window-size=1200,760');
        const page = await (await dense.newContext({ viewport: null })).newPage();
        await page.goto(tabs.address('chromium', file));
        return shotOf(page);
    },
    firefox: async (file, density) => {
        const tab = await tabs.firefoxTab('firefox', { deviceScaleFactor: density });
        await tab.goto(tabs.address('firefox', file));
        await tab.run(() => document.fonts.ready.then(() => document.fonts.size));
        return tab.shot();
    },
};

async function drawn(browser, name, size, density) {
    const png = await browsers[browser](writePage(name, size), density);
    keep(png, `${name}-${browser}-${size}x${density}`, 'font-files');
    return decode(png);
}

const exact = 2; // levels of a channel

for (const browser of Object.keys(browsers)) {
    for (const name of Object.keys(fonts)) {
        test(`${browser} draws the ${name} font as lettrino-cli sets it`, async () => {
            // On a screen of density 1 Chromium rounds advances to 1/64 of a size above 256.
            if (browser === 'chromium' && name === 'huge') setLine('huge', 'V');
            const { line } = fonts[name];
            const picture = await drawn(browser, name, 1, 1);
            const height = Math.min(line.height, picture.height - 20);
            const { most } = difference(picture, line, line.width, height, [20, 20]);
            assert.ok(most <= exact, `off by ${most}`);
        });
    }
    test(`${browser} draws half of the size on a screen of twice the density pixel by pixel`, async () => {
        const { line } = fonts.plain;
        const picture = await drawn(browser, 'plain', 0.5, 2);
        // The baseline comes to a whole pixel of the page, which is two of the screen.
        const most = Math.min(...[0, 1].map((dy) => difference(picture, line, line.width, line.height, [40, 40 + dy]).most));
        assert.ok(most <= exact, `off by ${most}`);
    });
    // Beside the picture of the line, scaled by the same browser: on average within two levels, and nowhere near as close
    // when either is moved by a pixel. What is left is the last row and column of glyphs that fill their cell, which a
    // line's picture blends with the next one.
    for (const [size, density, names] of [[1, 2, ['plain', 'pictures', 'tiles']], [0.5, 1, ['pictures', 'tiles']]]) {
        for (const name of names) {
            test(`${browser} draws the ${name} font at ${size} of its size and density ${density} as its line's picture`, async () => {
                const { line } = fonts[name];
                const picture = await drawn(browser, name, size, density);
                const [width, height] = [line.width, line.height].map((length) => Math.floor(length * size * density) - 2);
                const top = 20 * density + 1;
                const below = (40 + line.height * size) * density + 1;
                const off = (dx, dy) => difference(picture, picture, width, height, [top + dx, top + dy], [top, below]).mean;
                assert.ok(off(0, 0) < 2, `off by ${off(0, 0)}`);
                assert.ok(Math.min(off(1, 0), off(-1, 0), off(0, 1), off(0, -1)) > 2 * off(0, 0));
            });
        }
    }
}
