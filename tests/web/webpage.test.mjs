// The run-time on pages as people make them: frameworks, printing, columns, selecting and typing, other scripts' ways of
// writing, and what it all costs beside the same page without the font.
import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { count } from './pictures.mjs';
import { browsers, Tabs, ways } from './tabs.mjs';

const tabs = new Tabs();
const { site } = tabs;
const inFolder = (name) => join(site.folder, name);
let size; // at which the font stands at its own size

before(async () => {
    await tabs.open();
    site.cli('--family', 'DejaVu Serif', '--weight', '700', '--height', '60', '--colour', '2060C0', '--select', '33-126,233',
        '--generate', '--kern', '--save', 'f.sm', '--minimal-html', 'demo.html');
    size = JSON.parse(site.cli('--open', 'f.sm', '--info')).capHeight / 0.7;
    writeReact();
});
after(() => tabs.close());

const open = (way, body, { head, ...options } = {}) => tabs.tab(way, tabs.write(body, { head, size }), options);

// How many of a picture's pixels have the font's colour.
const inkIn = (png) => count(png, (red, _, blue) => blue > 120 && red < 90 && blue - red > 60);

// --- Frameworks

// The package's modules as one script.
function writeReact() {
    const files = { react: 'react/cjs/react', scheduler: 'scheduler/cjs/scheduler', 'react-dom': 'react-dom/cjs/react-dom',
        'react-dom/client': 'react-dom/cjs/react-dom-client' };
    const modules = Object.entries(files).map(([name, file]) =>
        `"${name}": function (module, exports, require) {${readFileSync(new URL(`./node_modules/${file}.development.js`, import.meta.url))}}`);
    writeFileSync(inFolder('react.js'), `(function () {
var process = { env: { NODE_ENV: 'development' } }, made = {}, modules = {${modules.join(',\n')}};
function require(name) {
    if (!made[name]) modules[name](made[name] = { exports: {} }, made[name].exports, require);
    return made[name].exports;
}
window.React = require('react');
window.createRoot = require('react-dom/client').createRoot;
})();`);
    writeFileSync(inFolder('app.js'), `
const e = React.createElement;
let next = 0;
function App() {
    const [count, setCount] = React.useState(0);
    const [lines, setLines] = React.useState([{ id: 'first', text: 'first line' }]);
    window.state = { count, lines };
    return e('main', null,
        e('button', { id: 'count', onClick: () => setCount(count + 1) }, 'count'),
        e('button', { id: 'add', onClick: () => setLines([{ id: ++next, text: 'Line ' + next }].concat(lines).slice(0, 12)) }, 'add'),
        e('button', { id: 'remove', onClick: () => setLines(lines.filter((_, i) => i !== count % 5)) }, 'remove'),
        e('button', { id: 'change', onClick: () => setLines(lines.map((l, i) => i % 2 ? l : { ...l, text: l.text.split(' ')[0] + ' ' + count })) }, 'change'),
        e('h1', { className: 'f' }, 'Count ', count, ' of ', lines.length),
        e('p', { className: count % 4 ? 'f small' : 'plain' }, count % 3 ? 'Odd ' + count : null, ' tail ', count % 2 ? e('i', null, 'even') : 'odd'),
        e('ul', null, lines.map((l) => e('li', { key: l.id, className: 'f small' }, l.text, ' ', count % 2 ? e('b', null, count) : count))));
}
createRoot(document.getElementById('root')).render(e(App));`);
}

// Seconds that the application is used for: a click with each picture of the screen.
const seconds = Number(process.env.LETTRINO_REACT_SECONDS ?? 3);

for (const way of ways) {
    test(`${way}: a React application counts, adds and removes lines`, async (t) => {
        const tab = await open(way, '<div id="root"></div><p class="f">first</p><script src="react.js"></script><script src="app.js"></script>',
            { head: '<style>.small{font-size:20px} .plain{font:20px sans-serif}</style>' });
        let clicks = 0;
        for (let done = 0; done < seconds; done += 3) {
            clicks += await tab.run((length) => new Promise((finished) => {
                const names = ['count', 'add', 'change', 'count', 'remove'];
                const end = performance.now() + length * 1000;
                let made = 0;
                (function click() {
                    document.getElementById(names[made % 7 % 5])?.click();
                    ++made;
                    if (performance.now() < end) requestAnimationFrame(click); else setTimeout(finished, 100, made);
                })();
            }), Math.min(3, seconds - done));
        }
        const { texts, expected, troubles } = await tab.run(() => {
            const { count, lines } = window.state;
            return {
                texts: [...document.querySelectorAll('#root h1, #root p, #root li')].map((element) => element.textContent),
                expected: [`Count ${count} of ${lines.length}`, `${count % 3 ? 'Odd ' + count : ''} tail ${count % 2 ? 'even' : 'odd'}`,
                    ...lines.map((line) => `${line.text} ${count}`)],
                troubles: window.troubles,
            };
        });
        assert.deepEqual(troubles, []);
        assert.deepEqual(texts, expected);
        tabs.keep(await tab.shot(), `react-${way}`);
        await tab.run(() => { for (const one of document.querySelectorAll('button, #root p, ul, .f:not(h1)')) one.style.display = 'none'; });
        await tabs.assertDrawn(tab, expected[0], `react-headline-${way}`);
        t.diagnostic(`${clicks} clicks in ${seconds} s, none with an error`);
        await tab.close();
    });

    test(`${way}: what a page changes later is followed`, async () => {
        const tab = await open(way, '<p class="f">first</p><p id="late" style="font-size:30px">AVATAR</p>');
        await tab.run(() => {
            document.querySelector('.f').remove();
            Object.assign(document.getElementById('late'), { className: 'f', style: '' });
        });
        await tabs.assertDrawn(tab, 'AVATAR', `later-class-${way}`);
        await tab.run(() => { document.getElementById('late').firstChild.data = 'To We\u0301'; });
        await tabs.assertDrawn(tab, 'To W\xE9', `later-text-${way}`);
        await tab.run(() => { document.getElementById('late').firstChild.data = ''; });
        assert.equal(inkIn(await tab.shot()), 0, 'an emptied text is gone');
        await tab.run(() => { document.body.innerHTML = '<section><h2 class="f" style="margin:0">Quay</h2></section>'; });
        await tabs.assertDrawn(tab, 'Quay', `later-element-${way}`);
        await tab.run(() => { document.querySelector('h2').className = ''; });
        assert.equal(inkIn(await tab.shot()), 0);
        await tab.run((px) => { document.head.append(Object.assign(document.createElement('style'), { textContent: `h2{font:${px}px demo}` })); }, size);
        await tabs.assertDrawn(tab, 'Quay', `later-style-${way}`);
        await tab.close();
    });
}

// --- Printing, columns

const words = 'The quick brown fox jumps over the lazy dog, and AVATARS wait. ';
const paragraphs = (characters) => Array.from({ length: characters / 175 }, () => `<p class="f">${words.repeat(3).slice(0, 175)}</p>`).join('');
const small = '<style>.f{font-size:16px} p{margin:0 0 8px}</style>';

for (const browser of browsers) {
    test(`${browser}: prints each glyph once, and lines whole`, async () => {
        const tab = await open(browser, paragraphs(3500), { head: small });
        const pdf = tab.page ? await tab.page.pdf() : Buffer.from((await tabs.firefox.send('WebDriver:Print', {})).value, 'base64');
        await tab.close();
        if (tab.page) {
            const images = pdf.toString('latin1').match(/\/Subtype ?\/Image/g)?.length ?? 0;
            assert.ok(images > 0 && images <= 2 * 94, `${images} pictures`);
        }
        writeFileSync(inFolder('print.pdf'), pdf);
        const shown = await tabs.firefoxTab('firefox', {});
        await shown.goto(tabs.address('firefox', 'print.pdf'));
        let ink = 0;
        for (let tries = 0; ink < 5000 && tries < 50; ++tries) ink = inkIn(tabs.keep(await shown.shot(), `print-${browser}`));
        assert.ok(ink >= 5000, `${ink} pixels of ink on the first page`);
    });
}

for (const way of ways) {
    test(`${way}: columns don't slice lines`, async () => {
        const tab = await open(way, `<div style="columns:3;height:150px;width:1000px;border:1px solid">${paragraphs(700)}</div>`,
            { head: '<style>.f{font-size:17.3px} p{margin:0}</style>' });
        const { top, bottom } = await tab.run(() => document.querySelector('div').getBoundingClientRect());
        const rects = (await tab.rects('div')).filter(({ character }) => character !== ' ');
        assert.ok(rects.length > 500);
        for (const rect of rects) assert.ok(rect.top >= top - 4 && rect.bottom <= bottom + 4, `${rect.character} at ${rect.top}`);
        tabs.keep(await tab.shot(), `columns-${way}`);
        await tab.close();
    });
}

// --- Selecting, copying, typing

for (const way of ways) {
    test(`${way}: text is selected, copied and found as on a page without the font`, async () => {
        const tab = await open(way, `<main><p class="f">Hello wide World, <b>AV</b>ATAR</p><p class="f">Next, one-two</p></main>
            <div id="into" contenteditable style="font:20px sans-serif"></div>`);
        const select = () => tab.run(() => {
            getSelection().selectAllChildren(document.querySelector('main'));
            return [String(getSelection()), document.querySelector('main').innerText];
        });
        const texts = await select();
        assert.ok(await tab.run(() => (getSelection().removeAllRanges(), window.find('wide World, AVA'))));
        await select();
        tabs.keep(await tab.shot(), `selected-${way}`);
        await tab.shortcut('c');
        await tab.run(() => { document.getElementById('into').focus(); });
        await tab.shortcut('v');
        texts.push(await tab.run(() => document.getElementById('into').innerText));
        for (const text of texts) assert.equal(text.trim().replace(/\n+/g, '\n'), 'Hello wide World, AVATAR\nNext, one-two');
        await tab.close();
    });
}

for (const browser of browsers) {
    test(`${browser}: what is typed is drawn`, async () => {
        const tab = await open(browser, '<div class="f" contenteditable style="outline:none;caret-color:transparent">A</div>');
        await tab.run(() => { getSelection().selectAllChildren(document.querySelector('.f')); document.querySelector('.f').focus(); });
        await tab.type('AVATAR To');
        await tab.run(() => { getSelection().removeAllRanges(); document.activeElement.blur(); });
        await tabs.assertDrawn(tab, 'AVATAR To', `typed-${browser}`);
        await tab.close();
    });

    test(`${browser}: forced colours leave the pictures alone`, async () => {
        if (browser === 'firefox') await tabs.firefox.setPreference('browser.display.document_color_use', 2);
        const tab = await open(browser, '<p class="f">AVATAR</p>', { forcedColors: 'active' });
        await tabs.assertDrawn(tab, 'AVATAR', `forced-${browser}`);
        await tab.close();
        if (browser === 'firefox') await tabs.firefox.setPreference('browser.display.document_color_use', 0);
    });
}

// --- Writing in other ways

for (const way of ways) {
    test(`${way}: right to left, long words, soft hyphens, ellipses, blanks`, async () => {
        const tab = await open(way, `
            <p class="f" id="rtl" dir="rtl" style="width:900px">\u05E9\u05DC\u05D5\u05DD 12.50 Latin words \u05E2\u05D5\u05DC\u05DD</p>
            <p class="f" id="long" style="width:300px;overflow-wrap:anywhere">Donaudampfschiffahrt</p>
            <p class="f" id="shy" style="width:250px">Donau\u00ADdampf\u00ADschiff</p>
            <p class="f" id="hyphen" style="width:250px">one-two-three-four</p>
            <p class="f" id="dots" style="width:200px;overflow:hidden;white-space:nowrap;text-overflow:ellipsis">Donaudampfschiff</p>
            <p class="f"><span id="blank">a b</span></p><p class="f"><span id="fixed">a&nbsp;b</span></p>`,
        { head: '<style>.f{font-size:30px}</style>' });
        tabs.keep(await tab.shot(), `writing-${way}`);
        for (const rect of await tab.rects('#rtl')) assert.ok(rect.right - rect.left > 2, `'${rect.character}' takes room`);
        const rtl = (await tab.rects('#rtl')).filter((rect) => rect.character !== ' ').sort((a, b) => a.left - b.left);
        rtl.forEach((rect, i) => assert.ok(!i || rect.left > rtl[i - 1].right - 6, `${rect.character} on ${rtl[i - 1]?.character}`));
        assert.equal(rtl.map((rect) => rect.character).join('').match(/[a-z\d.]+/i)[0], 'Latinwords12.50');
        // Across letters that are elements Firefox breaks where words have a place for it alone.
        for (const id of way === 'firefox without pixels' ? ['shy', 'hyphen'] : ['long', 'shy', 'hyphen']) {
            const rects = (await tab.rects(`#${id}`)).filter((rect) => rect.right > rect.left);
            assert.ok(new Set(rects.map((rect) => Math.round(rect.top))).size > 1, `${id} breaks`);
            assert.ok(Math.max(...rects.map((rect) => rect.right)) < 20 + 300 + 2, `${id} stays inside`);
        }
        const width = (id) => tab.run((i) => document.getElementById(i).getBoundingClientRect().width, id);
        assert.ok(Math.abs(await width('blank') - await width('fixed')) < 0.1);
        await tab.close();
    });

    test(`${way}: blanks narrower than nothing`, async () => {
        writeFileSync(inFolder('tight.js'), readFileSync(inFolder('demo.js'), 'latin1').replace(/\bdemo\b(?!\.png)/g, 'tight').replace(/('SpaceWidth'\]=)-?\d+/, '$1-7'), 'latin1');
        writeFileSync(inFolder('tight.png'), readFileSync(inFolder('demo.png')));
        const tab = await tabs.tab(way, tabs.write('<p class="f"><span>ab</span></p><p class="f"><span>a b</span></p><p class="f"><span>a&nbsp;b</span></p>', { font: 'tight', size }));
        const [joined, blank, fixed] = await tab.run(() => [...document.querySelectorAll('span')].map((one) => one.getBoundingClientRect().width));
        tabs.keep(await tab.shot(), `tight-${way}`);
        const kerned = JSON.parse(site.cli('--open', 'f.sm', '--info')).kerning.find((pair) => pair.left === 97 && pair.right === 98)?.amount ?? 0;
        assert.ok(Math.abs(blank - (joined - kerned - 7)) < 0.6 && Math.abs(fixed - blank) < 0.6, `${[joined, blank, fixed]}`);
        await tab.close();
    });
}

for (const browser of browsers) {
    test(`${browser}: text of SVG, canvas and upright lines`, async () => {
        const loose = { mean: 4, off: 0.1 };
        const tab = await open(browser, `<p class="f">x</p><svg width="700" height="100"><text class="f" x="0" y="70" style="font-size:${size}px">AVATAR</text></svg>`);
        await tab.run(() => { document.querySelector('p').remove(); });
        await tabs.assertDrawn(tab, 'AVATAR', `svg-${browser}`, loose); // which Firefox scales
        await tab.run((px) => {
            document.body.innerHTML = '<canvas width="700" height="120"></canvas>';
            const context = document.querySelector('canvas').getContext('2d');
            context.font = `${px}px demo`;
            context.fillText('AVATAR', 10, 80);
        }, size);
        await tabs.assertDrawn(tab, 'AVATAR', `canvas-${browser}`, loose);
        await tab.run(() => { document.body.innerHTML = '<p class="f" style="writing-mode:vertical-rl;height:600px"><span>AVATAR To</span></p><p class="f"><span>AVATAR To</span></p>'; });
        const [upright, level] = await tab.run(() => [...document.querySelectorAll('span')].map((one) => one.getBoundingClientRect()).map(({ width, height }) => [width, height]));
        tabs.keep(await tab.shot(), `vertical-${browser}`);
        assert.ok(Math.abs(upright[1] - level[0]) < 1, `${upright} and ${level}`);
        await tab.close();
    });
}
