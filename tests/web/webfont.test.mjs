// The exported script and its run-time: the right glyphs in the right places, in every way a browser may draw them.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { count, decode, drawPicture } from './pictures.mjs';
import { browsers, Tabs, ways } from './tabs.mjs';

const tabs = new Tabs();
const { site } = tabs;
let size; // at which the font stands at its own size

before(async () => {
    await tabs.open();
    site.cli('--family', 'DejaVu Serif', '--weight', '700', '--italic', '--height', '102', '--colour', '2060C0',
        '--select', '33-126', '--generate', '--kern', '--save', 'f.sm', '--minimal-html', 'demo.html');
    site.cli('--family', 'DejaVu Serif', '--height', '100', '--colour', '2060C0', '--select', '33-126', '--generate', '--kern',
        '--save', 'whole.sm', '--minimal-html', 'whole.html');
    size = JSON.parse(site.cli('--open', 'f.sm', '--info')).capHeight / 0.7;
});
after(() => tabs.close());

const open = (way, body, { head, jQuery, ...options } = {}) => tabs.tab(way, tabs.write(body, { head, jQuery, size }), options);

// The edges of each line of a paragraph, without its blanks.
async function linesOf(tab) {
    const lines = {};
    for (const { character, left, right, top } of await tab.rects('.f')) {
        if (character === ' ') continue;
        const line = (lines[Math.round(top)] ??= { left, right });
        Object.assign(line, { left: Math.min(line.left, left), right: Math.max(line.right, right) });
    }
    return Object.values(lines);
}

for (const way of ways) {
    test(`${way}: lines are as lettrino-cli sets them`, async () => {
        const bodies = { 'Hello World': null, 'AVATAR To Ty Wa': null, 'fjord {j} "Quay" T,V.': null, 'a b c': '<i style="font-weight:900">a  b\n c</i>',
            'Hello AVATAR': 'Hello <b style="font-weight:400">AV<i style="font-style:normal">AT</i>A</b>R', 'AVATAR To': '<span style="text-transform:uppercase">Avatar</span> To' };
        for (const [text, body] of Object.entries(bodies)) {
            const tab = await open(way, `<p class="f">${body ?? text}</p>`);
            await tabs.assertDrawn(tab, text, `line-${way}-${text}`);
            const { whole, troubles } = await tab.run(() => ({ whole: !document.querySelector('lt-c'), troubles: window.troubles }));
            assert.deepEqual(troubles, []);
            assert.equal(whole, browsers.includes(way), 'drawn in the way that is meant');
            await tab.close();
        }
    });

    test(`${way}: sharp on a dense screen`, async () => {
        // At half its size on a screen of two pixels to one, every pixel of the font is a pixel of the screen.
        const tab = await open(way, `<p class="f" style="font-size:${size / 2}px">Hello World</p>`, { deviceScaleFactor: 2 });
        // Cuttings stand on whole pixels of the page.
        const most = way === 'chromium on a file' ? { mean: 8, off: 0.1 } : undefined;
        await tabs.assertDrawn(tab, 'Hello World', `dense-${way}`, most);
        await tab.close();
    });

    test(`${way}: characters that the font lacks stay readable`, async () => {
        const text = 'na\u00EFve \u20AC5 \u4F60 \u{1F600}';
        const tab = await open(way, `<p class="f" style="color:rgb(200,0,0);font-size:60px">${text}</p>`);
        assert.equal(await tab.run(() => document.querySelector('.f').textContent), text);
        const red = count(tabs.keep(await tab.shot(), `lacking-${way}`), (r, g, b) => r > 150 && g < 60 && b < 60);
        assert.ok(red > 300, `${red} red pixels`);
        await tab.close();
    });

    test(`${way}: other elements and names, and what is drawn by hand`, async () => {
        const tab = await open(way, `<p class="f">A</p><p id="o">plain</p><textarea class="f">text</textarea>
            <p class="g" style="font:700 ${size}px serif">AVATAR</p><script>$(function () { LT_ToColourFont($('.g'), demo); });</script>`, { fonts: 1 });
        await tab.run(() => new Promise((done) => { setTimeout(done, 200); }));
        assert.equal(await tab.run(() => document.querySelector('textarea').value), 'text');
        await tab.run(() => { for (const other of document.querySelectorAll('.f,#o,textarea')) other.remove(); });
        await tabs.assertDrawn(tab, 'AVATAR', `by-hand-${way}`);
        const globals = await tab.run(() => {
            const frame = document.body.appendChild(document.createElement('iframe'));
            return Object.keys(window).filter((name) => !(name in frame.contentWindow) && !/^(\$|jQuery\d*|demo|troubles|0)$/.test(name));
        });
        assert.deepEqual(globals.sort(), ['LT_Resize', 'LT_ToColourFont']);
        await tab.close();
    });
}

// Fonts that are not as the program makes most of them: without a cap height, and with another picture.
for (const way of ways) {
    test(`${way}: without capitals the size is the glyphs' own, and a larger picture is drawn at the font's`, async () => {
        site.cli('--family', 'DejaVu Serif', '--height', '100', '--colour', '2060C0', '--select', 'a-z', '--generate',
            '--save', 'small.sm', '--minimal-html', 'small.html');
        site.cli('--open', 'f.sm', '--minimal-html', 'large.html');
        const picture = join(site.folder, 'large.png');
        const { data, width, height } = decode(readFileSync(picture));
        const at = (x, y) => 4 * ((y >> 1) * width + (x >> 1));
        drawPicture(picture, 2 * width, 2 * height, (x, y) => data.subarray(at(x, y), at(x, y) + 4));
        for (const [font, text, px, line] of [['small', 'wavy', 100, site.lineOf('wavy', 'small.sm')], ['large', 'AVATAR', size, site.lineOf('AVATAR')]]) {
            const tab = await tabs.tab(way, tabs.write(`<p class="f">${text}</p>`, { font, size: px }));
            await tabs.assertDrawn(tab, line, `${font}-${way}`, { size: 2, mean: 12, off: 1 }); // soft edges
            await tab.close();
        }
    });
}

for (const browser of browsers) {
    test(`${browser}: the minimal page draws its headline`, async () => {
        const tab = await tabs.tab(browser, 'whole.html'); // which finds no jQuery here
        await tab.run(() => document.head.append(Object.assign(document.createElement('style'),
            { textContent: 'p { display: none } body { margin: 20px; white-space: nowrap }' })));
        await tab.resize(1500, 300);
        const line = site.lineOf('Render Colour Fonts With Lettrino', 'whole.sm');
        await tabs.assertDrawn(tab, line, `minimal-${browser}`);
        await tab.close();
    });

    for (const jQuery of ['jquery-1.9.js', 'jquery-4.js', '']) {
        test(`${browser}: with ${jQuery || 'no jQuery'}`, async () => {
            const tab = await open(browser, '<p class="f">AVATAR</p>', { jQuery });
            await tabs.assertDrawn(tab, 'AVATAR', `${jQuery || 'no-jquery'}-${browser}`);
            await tab.resize(900, 700);
            assert.deepEqual(await tab.run(() => window.troubles), []);
            await tab.close();
        });
    }
}

for (const way of ways) {
    test(`${way}: lines break at blanks and align as the page says, again after a resize`, async () => {
        const text = 'one two-three four five six seven eight nine ten';
        const tab = await open(way, `<p class="f">${text}</p>`);
        const wide = await linesOf(tab);
        await tab.resize(600, 700);
        const narrow = await linesOf(tab);
        assert.ok(narrow.length > wide.length && narrow.length >= 4);
        assert.equal(await tab.run(() => document.querySelector('.f').innerText), text);
        const [left, right] = await tab.run(() => { const box = document.querySelector('.f').getBoundingClientRect(); return [box.left, box.right]; });
        for (const line of narrow) assert.ok(line.right <= right + 0.5 && Math.abs(line.left - left) < 0.5);
        for (const [align, error] of [['right', (l) => l.right - right], ['center', (l) => l.left + l.right - left - right]]) {
            await tab.run((how) => { document.querySelector('.f').style.textAlign = how; }, align);
            for (const line of await linesOf(tab)) assert.ok(Math.abs(error(line)) < 1, align);
        }
        tabs.keep(await tab.shot(), `narrow-${way}`);
        await tab.close();
    });
}
