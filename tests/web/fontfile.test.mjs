// Font files whose glyphs are pictures, as web fonts in Chromium and in Firefox, on the style sheet that
// --css-page writes: the same line as lettrino-cli sets it.
import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { keep, launch, Site } from './browser.mjs';
import { Firefox } from './firefox.mjs';
import { decode, drawPicture, pictureSteps } from './pictures.mjs';

const site = new Site();
const firefox = new Firefox();
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

before(async () => {
    makePictures();
    await site.open();
    for (const [name, font] of Object.entries(fonts)) {
        site.cli(...font.make, '--save', `${name}.sm`, '--background', '203040', '--text', font.text, `${name}-line.png`, '--css-page', `${name}-page.html`);
        font.line = decode(readFileSync(inFolder(`${name}-line.png`)));
        font.height = font.line.height;
    }
    await firefox.open();
});
after(() => Promise.all([site.close(), firefox.close(), dense?.close()]));

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
        await page.goto(`http://127.0.0.1:${site.server.address().port}/${file}`);
        return shotOf(page);
    },
    firefox: async (file, density) => {
        await firefox.setDensity(density);
        await firefox.goto(`http://127.0.0.1:${site.server.address().port}/${file}`);
        await firefox.run('return document.fonts.ready.then(() => document.fonts.size)');
        // The pictures inside of glyphs come when they are decoded.
        for (let last = await firefox.shot(); ;) {
            await new Promise((done) => { setTimeout(done, 150); });
            const shot = await firefox.shot();
            if (shot.equals(last)) return shot;
            last = shot;
        }
    },
};

async function drawn(browser, name, size, density) {
    const png = await browsers[browser](writePage(name, size), density);
    keep(png, `${name}-${browser}-${size}x${density}`, 'font-files');
    return decode(png);
}

// Of each channel of each pixel in the rectangle and in one of the same size elsewhere: the largest and the mean.
function difference(a, b, width, height, [ax, ay], [bx, by]) {
    let most = 0;
    let sum = 0;
    for (let y = 0; y < height; ++y) {
        for (let x = 0; x < width; ++x) {
            for (let c = 0; c < 3; ++c) {
                const d = Math.abs(a.data[((ay + y) * a.width + ax + x) * 4 + c] - b.data[((by + y) * b.width + bx + x) * 4 + c]);
                most = Math.max(most, d);
                sum += d;
            }
        }
    }
    return { most, mean: sum / (width * height * 3) };
}

const exact = 2; // levels of a channel

for (const browser of Object.keys(browsers)) {
    for (const name of Object.keys(fonts)) {
        test(`${browser} draws the ${name} font as lettrino-cli sets it`, async () => {
            // On a screen of density 1 Chromium rounds advances to 1/64 of a size above 256.
            if (browser === 'chromium' && name === 'huge') fonts.huge.line = await single('huge', 'V');
            const { line } = fonts[name];
            const picture = await drawn(browser, name, 1, 1);
            const height = Math.min(line.height, picture.height - 20);
            const { most } = difference(picture, line, line.width, height, [20, 20], [0, 0]);
            assert.ok(most <= exact, `off by ${most}`);
        });
    }
    test(`${browser} draws half of the size on a screen of twice the density pixel by pixel`, async () => {
        const { line } = fonts.plain;
        const picture = await drawn(browser, 'plain', 0.5, 2);
        // The baseline comes to a whole pixel of the page, which is two of the screen.
        const most = Math.min(...[0, 1].map((dy) => difference(picture, line, line.width, line.height, [40, 40 + dy], [0, 0]).most));
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

// One letter instead of the font's line.
async function single(name, text) {
    fonts[name].text = text;
    site.cli('--open', `${name}.sm`, '--background', '203040', '--text', text, `${name}-line.png`);
    return decode(readFileSync(inFolder(`${name}-line.png`)));
}

const words = 'The quick brown fox jumps over the lazy dog, and AVATARS wait. '.repeat(5).trim();

function writeArticle() {
    writeFileSync(inFolder('article.html'), `<!DOCTYPE html><meta charset="utf-8"><link rel="stylesheet" href="plain-page.css">
<style>body { margin: 20px; width: 900px; background: #203040; color: #fff; font: 18px sans-serif; }
p { margin: 0 0 20px; } .font-plain-page { font-size: 32px; } #justified { text-align: justify; }</style>
<h1 class="font-plain-page" style="font-size: 64px">Headline</h1><p class="font-plain-page" id="left">${words}</p>
<p class="font-plain-page" id="justified">${words}</p><p>Text beside it.</p>`);
    return 'article.html';
}

// Runs in the page: lines of a paragraph, as the right edges of their last words; what is selected; what is found.
const tryArticle = `
const edges = (id) => {
    const node = document.getElementById(id).firstChild;
    const range = document.createRange();
    const lines = new Map();
    for (const match of node.data.matchAll(/\\S+/g)) {
        range.setStart(node, match.index);
        range.setEnd(node, match.index + match[0].length);
        const { top, right } = range.getBoundingClientRect();
        lines.set(top, Math.max(right, lines.get(top) ?? 0));
    }
    return [...lines.values()];
};
const found = [window.find('AVATARS'), String(getSelection())];
const range = document.createRange();
range.selectNodeContents(document.getElementById('left'));
range.setEnd(range.startContainer.firstChild ?? range.startContainer, 40);
getSelection().removeAllRanges();
getSelection().addRange(range);
return [edges('left'), edges('justified'), found, String(getSelection())];`;

function assertArticle([left, justified, found, selected]) {
    assert.ok(left.length >= 4, 'it wraps');
    assert.equal(left.length, justified.length);
    assert.ok(Math.max(...left.map((edge) => Math.abs(edge - 920))) > 5, 'ragged');
    assert.ok(justified.slice(0, -1).every((edge) => Math.abs(edge - 920) < 1), `justified to ${justified}`);
    assert.deepEqual(found, [true, 'AVATARS']);
    assert.equal(selected, words.slice(0, 40));
}

test('chromium wraps, justifies, selects, copies and finds', async () => {
    const page = await site.page(writeArticle());
    await page.evaluate(() => document.fonts.ready);
    assertArticle(await page.evaluate(`(() => {${tryArticle}})()`));
    keep(await page.screenshot(), 'article-chromium', 'font-files');
    await page.context().grantPermissions(['clipboard-read', 'clipboard-write']);
    await page.keyboard.press('Control+C');
    assert.equal(await page.evaluate(() => navigator.clipboard.readText()), words.slice(0, 40));
    await page.context().close();
});

test('firefox wraps, justifies, selects and finds', async () => {
    writeArticle();
    await browsers.firefox('article.html', 1);
    assertArticle(await firefox.run(tryArticle));
    keep(await firefox.shot(), 'article-firefox', 'font-files');
});
