// The exported page in a real browser: the right glyphs in the right places, and text that is still text.
import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { Site } from './browser.mjs';

const site = new Site();
let fontSize;   // at which the font stands at its own size

before(async () => {
    await site.open();
    site.cli('--family', 'DejaVu Serif', '--weight', '700', '--italic', '--height', '100', '--colour', '2060C0',
        '--select', '33-126', '--generate', '--kern', '--save', 'f.sm', '--minimal-html', 'demo.html');
    fontSize = JSON.parse(site.cli('--open', 'f.sm', '--info')).capHeight / 0.7;
});
after(() => site.close());

// A page with this body, its font drawn.
async function open(body, options) {
    const name = `page${Math.random().toString(36).slice(2)}.html`;
    writeFileSync(join(site.folder, name), '<!DOCTYPE html><meta charset="utf-8"><script src="https://cdn/jquery.js"></script>' +
        `<script src="lettrino-1.0.js"></script><script src="demo.js"></script><style>body{margin:20px;background:#fff}
        .f{font-family:demo;font-size:${fontSize}px;line-height:130px;margin:0}</style>${body}`);
    const page = await site.page(name, options);
    if (body.includes('class="f"')) await page.waitForSelector('.LT_Text', { state: 'attached' });
    return page;
}

function lineOf(text) {
    site.cli('--open', 'f.sm', '--text', text, 'line.png');
    return readFileSync(join(site.folder, 'line.png'));
}

// The whole window: ink may lie outside its element.
const shot = (page, name) => site.shot(page, name);

function assertSame(result, what, mean = 0.5, off = 0.002) {
    const [[w1, h1], [w2, h2]] = result.sizes;
    assert.ok(Math.abs(w1 - w2) <= 1 && Math.abs(h1 - h2) <= 1, `${what}: ${w1} x ${h1} and ${w2} x ${h2}`);
    assert.ok(result.mean <= mean && result.off <= off, `${what}: ${JSON.stringify(result)}`);
}

// Where each line of drawn words starts and ends, and the words on it.
function lines(page, selector = '.f') {
    return page.evaluate((s) => {
        const found = new Map();
        for (const word of document.querySelectorAll(`${s} .LT_Text`)) {
            const box = word.getBoundingClientRect();
            const line = found.get(Math.round(box.top)) ?? { words: [], left: box.left, right: box.right };
            line.words.push(word.textContent);
            line.left = Math.min(line.left, box.left);
            line.right = Math.max(line.right, box.right);
            found.set(Math.round(box.top), line);
        }
        return [...found.values()];
    }, selector);
}

test('the minimal page draws its headline as lettrino-cli sets it', async () => {
    const page = await site.page('demo.html');
    await page.waitForSelector('.LT_Text', { state: 'attached' });
    assert.deepEqual(page.failures, []);
    await page.addStyleTag({ content: 'p { display: none } body { margin: 20px; white-space: nowrap }' });
    await page.setViewportSize({ width: 1500, height: 300 });
    const headline = await shot(page, 'minimal');
    // The page rounds its font size, so its scale is near 1 but not 1.
    assertSame(await site.compare(headline, lineOf('Render Colour Fonts With Lettrino')), 'headline', 6, 0.05);
});

for (const text of ['Hello World', 'AVATAR To Ty Wa', 'fjord {j} "Quay" T,V.', 'a  b\n c']) {
    test(`glyphs, spacings, kerning and spaces of ${JSON.stringify(text)}`, async () => {
        const page = await open(`<p class="f">${text}</p>`);
        const collapsed = text.replace(/\s+/g, ' ');
        assertSame(await site.compare(await shot(page, 'line'), lineOf(collapsed)), text);
    });
}

test('words nest in inline elements, and kerning crosses their edges', async () => {
    const page = await open('<p class="f">Hello <b style="font-weight:400">AV<i style="font-style:normal">AT</i>A</b>R</p>');
    assertSame(await site.compare(await shot(page, 'nested'), lineOf('Hello AVATAR')), 'nested');
});

test('no kerning across lines and blocks', async () => {
    const page = await open('<p class="f">A<br>V</p><p class="f">A</p><p class="f">V</p>');
    const margins = await page.$$eval('.LT_Text', (words) => words.map((word) => word.style.marginLeft));
    assert.deepEqual(margins, ['', '', '', '']);
});

test('the font size is the scale, by capitals of 70 percent, and letter spacing is added', async () => {
    const page = await open(['', 'font-size:40px', 'font-size:20px', 'letter-spacing:7px'].map((style) => `<p class="f" style="${style}">Hamburg</p>`).join(''));
    const widths = await page.$$eval('.LT_Text', (words) => words.map((word) => word.getBoundingClientRect().width));
    for (const [i, expected] of [[1, widths[0] * 40 / fontSize], [2, widths[1] / 2], [3, widths[0] + 7 * 7]])
        assert.ok(Math.abs(widths[i] - expected) < 0.5, `${i}: ${widths}`);
});

test('lines break at blanks and align as the page says, again after a resize', async () => {
    const text = 'one two-three four five six seven eight nine ten';
    const page = await open(`<p class="f">${text}</p>`);
    const wide = await lines(page);
    await page.setViewportSize({ width: 500, height: 700 });
    const narrow = await lines(page);
    assert.ok(narrow.length > wide.length && narrow.length >= 4);
    assert.equal(narrow.flatMap((line) => line.words).join(' '), text);
    const room = await page.$eval('.f', (p) => { const box = p.getBoundingClientRect(); return [box.left, box.right]; });
    for (const line of narrow) {
        assert.ok(line.right <= room[1] + 0.5, 'a line is too long');
        assert.ok(Math.abs(line.left - room[0]) < 0.5);
    }
    for (const [align, error] of [['right', (l) => l.right - room[1]], ['center', (l) => l.left + l.right - room[0] - room[1]]]) {
        await page.$eval('.f', (p, a) => { p.style.textAlign = a; }, align);
        for (const line of await lines(page)) assert.ok(Math.abs(error(line)) < 1, align);
    }
    await shot(page, 'narrow');
});

test('a size that follows the window is drawn anew', async () => {
    const page = await open('<p class="f" style="font-size:5vw">Hamburg</p>');
    const size = () => page.$eval('.LT_Text lt-glyph', (c) => c.getBoundingClientRect().height);
    const before = await size();
    await page.setViewportSize({ width: 600, height: 700 });
    await page.waitForFunction((h) => document.querySelector('.LT_Text lt-glyph').getBoundingClientRect().height < h * 0.6, before);
    assert.equal(await page.textContent('.f'), 'Hamburg');
});

test('sharp on a dense screen', async () => {
    // At half its size on a screen of two pixels to one, every pixel of the font is a pixel of the screen.
    const page = await open(`<p class="f" style="font-size:${fontSize / 2}px">Hello World</p>`, { deviceScaleFactor: 2 });
    assertSame(await site.compare(await shot(page, 'dense'), lineOf('Hello World')), 'dense');
});

test('characters that the font lacks stay readable', async () => {
    const page = await open('<p class="f" style="color:rgb(200,0,0)">na\u00EFve \u20AC5 \u4F60</p>');
    assert.equal(await page.textContent('.f'), 'na\u00EFve \u20AC5 \u4F60');
    const plain = await page.$$eval('.LT_Plain', (spans) => spans.map((s) => [s.textContent, getComputedStyle(s).webkitTextFillColor]));
    assert.deepEqual(plain, [['\u00EF', 'rgb(200, 0, 0)'], ['\u20AC', 'rgb(200, 0, 0)'], ['\u4F60', 'rgb(200, 0, 0)']]);
    await shot(page, 'lacking');
});

test('text is selected, searched and read as text', async () => {
    const page = await open('<p class="f">Hello wide World, <b>AV</b>ATAR</p>');
    await page.evaluate(() => getSelection().selectAllChildren(document.querySelector('.f')));
    assert.equal(await page.evaluate(() => String(getSelection())), 'Hello wide World, AVATAR');
    await page.evaluate(() => getSelection().removeAllRanges());
    assert.ok(await page.evaluate(() => window.find('wide World, AVA')));
    assert.match(await page.locator('body').ariaSnapshot(), /Hello wide World, (\S*)AV/);
});

test('other elements, and other names, are left alone', async () => {
    const page = await open('<p class="f">A</p><p id="o">plain</p><textarea class="f">text</textarea><button style="font-family:demo,serif">x</button>');
    assert.equal(await page.locator('.LT_Text').count(), 1);
    assert.equal(await page.inputValue('textarea'), 'text');
    const globals = await page.evaluate(() => {
        const frame = document.body.appendChild(document.createElement('iframe'));
        return Object.keys(window).filter((name) => !(name in frame.contentWindow) && !/^(\$|jQuery\d*|demo|0)$/.test(name));
    });
    assert.deepEqual(globals.sort(), ['LT_Resize', 'LT_ToColourFont']);
});

test('text that the page changes later is drawn on the next call', async () => {
    const page = await open('<p class="f">Hello</p>');
    await page.evaluate(() => { $('.f').text('World'); LT_ToColourFont($('.f'), demo); LT_ToColourFont($('.f'), demo); });
    assertSame(await site.compare(await shot(page, 'changed'), lineOf('World')), 'changed');
});
