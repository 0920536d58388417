// The page on which a font is tried, used as its reader would, also where something is missing.
import assert from 'node:assert/strict';
import { cpSync, mkdirSync, rmSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { colourAt } from './pictures.mjs';
import { browsers, Tabs, ways } from './tabs.mjs';

const tabs = new Tabs();
const { site } = tabs;
const inFolder = (...names) => join(site.folder, ...names);

before(async () => {
    await tabs.open();
    site.cli('--family', 'DejaVu Sans', '--weight', '700', '--height', '90', '--colour', 'C03050', '--select', '33-126',
        '--generate', '--kern', '--save', 'f.sm', '--html', 'demo.html');
});
after(() => tabs.close());

const open = (way, options) => tabs.tab(way, 'demo.html', options);
const background = (tab) => tab.run(() => getComputedStyle(document.getElementById('sheet')).backgroundColor);
const fill = (tab, id, value) => tab.run((i, v) => {
    document.getElementById(i).value = v;
    document.getElementById(i).dispatchEvent(new Event('input', { bubbles: true }));
}, id, value);
const width = (tab) => tab.run(() => {
    const range = document.createRange();
    range.selectNodeContents(document.getElementById('sample'));
    return range.getBoundingClientRect().width;
});

for (const way of ways) {
    test(`${way}: text, size and spacing are seen at once`, async () => {
        const tab = await open(way);
        assert.equal(await tab.run(() => document.title), 'demo - try this colour font');
        assert.equal(await tab.run(() => document.getElementById('sample').textContent), 'Hello World');
        assert.ok(await tab.run(() => document.getElementById('trouble').hidden));
        tabs.keep(await tab.shot(), `try-${way}`);
        await fill(tab, 'text', 'Two lines\nhere');
        assert.equal(await tab.run(() => document.getElementById('sample').innerText), 'Two lines\nhere');
        await fill(tab, 'text', 'lines');
        await fill(tab, 'size', 100);
        const natural = await width(tab);
        await fill(tab, 'spacing', 10);
        assert.ok(Math.abs(await width(tab) - natural - 50) < 0.5);
        await fill(tab, 'size', 50);
        assert.ok(Math.abs(await width(tab) - natural / 2 - 50) < 0.5);
        assert.equal(await tab.run(() => document.getElementById('sizeValue').textContent), '50 px');
        await tab.close();
    });
}

test('the background by the colour picker, which shows what it gives', async () => {
    const tab = await open('chromium');
    assert.equal(await background(tab), 'rgb(255, 255, 255)');
    const picture = await tab.page.locator('#picker img').screenshot();
    for (const [x, y] of [[0.02, 0.5], [0.08 + 0.92 / 3, 0.5], [0.9, 0.25], [0.5, 0.75]]) {
        const box = await tab.page.locator('#picker').boundingBox();
        await tab.page.mouse.click(box.x + box.width * x, box.y + box.height * y);
        const chosen = (await background(tab)).match(/\d+/g).map(Number);
        const shown = colourAt(picture, x, y);
        assert.ok(chosen.every((value, i) => Math.abs(value - shown[i]) <= 12), `${chosen} and ${shown}`);
    }
    await tab.close();
});

test('by keyboard alone', async () => {
    const tab = await open('chromium');
    const order = [];
    for (let i = 0; i < 4; ++i) {
        await tab.page.keyboard.press('Tab');
        order.push(await tab.run(() => document.activeElement.id));
    }
    assert.deepEqual(order, ['text', 'size', 'spacing', 'picker']);
    const before = await background(tab);
    for (let i = 0; i < 5; ++i) await tab.page.keyboard.press('Shift+ArrowDown');
    await tab.page.keyboard.press('Shift+ArrowRight');
    assert.notEqual(await background(tab), before);
    assert.match(await tab.page.getAttribute('#picker', 'aria-valuetext'), /^rgb/);
    await tab.close();
});

test('fits the width of a phone', async () => {
    const tab = await open('chromium', { viewport: { width: 360, height: 740 }, deviceScaleFactor: 2, hasTouch: true, isMobile: true });
    await fill(tab, 'text', 'A rather long line of text for a phone');
    const [scroll, client] = await tab.run(() => [document.documentElement.scrollWidth, document.documentElement.clientWidth]);
    assert.ok(scroll <= client, `${scroll} in ${client}`);
    tabs.keep(await tab.shot(), 'try-phone');
    await tab.close();
});

// What the page tells, in a folder of its own from which something was taken.
async function troubleWithout(browser, name) {
    rmSync(inFolder('broken'), { recursive: true, force: true });
    mkdirSync(inFolder('broken'));
    for (const file of ['demo.html', 'demo.js', 'demo.png', 'lettrino-1.0.js', 'try.js', 'try.css', 'colourpicker.png'])
        if (file !== name) cpSync(inFolder(file), inFolder('broken', file));
    return troubleOf(browser, 'broken/demo.html');
}

async function troubleOf(browser, page) {
    const tab = await tabs.tab(browser, page, { fonts: 0 });
    await tab.run(() => new Promise((done) => { setTimeout(done, 150); }));
    const text = await tab.run(() => document.getElementById('trouble').textContent);
    const shown = await tab.run(() => document.getElementById('trouble').getBoundingClientRect().height > 20 && document.getElementById('sample').innerText);
    tabs.keep(await tab.shot(), `trouble-${browser}-${page}-${text.slice(0, 30)}`);
    await tab.close();
    assert.equal(shown, text ? 'Hello World' : false);
    return text;
}

for (const browser of browsers) {
    test(`${browser}: the page tells what is wrong with it`, async () => {
        for (const name of ['lettrino-1.0.js', 'demo.js', 'try.js', 'demo.png'])
            assert.ok((await troubleWithout(browser, name)).includes(name), name);
        assert.equal(await troubleWithout(browser, 'try.css'), '');
    });

    test(`${browser}: names that the command line warns of are told on the page, those that it takes are drawn`, async () => {
        for (const name of ['class', 'Serif', 'inherit', 'monospace', 'name', 'my-font', 'Caf\u00E9']) {
            const warned = site.warnings('--open', 'f.sm', '--html', `${name}.html`);
            assert.match(warned, /warning/, name);
            assert.match(await troubleOf(browser, `${name}.html`), /Not found|no name|something else/, name);
        }
        for (const name of ['Fancy', 'demo_2', '_x', 'nameOf']) {
            assert.equal(site.warnings('--open', 'f.sm', '--html', `${name}.html`), '');
            const tab = await tabs.tab(browser, `${name}.html`);
            assert.ok(await tab.run(() => document.getElementById('trouble').hidden), name);
            await tab.close();
        }
    });
}

test('without scripts the page says so, and shows its text', async () => {
    const context = await site.browser.newContext({ javaScriptEnabled: false });
    const page = await context.newPage();
    await page.goto(tabs.address('chromium', 'demo.html'));
    assert.match(await page.locator('body').innerText(), /Scripts are switched off[^]*Hello World/);
    tabs.keep(await page.screenshot(), 'try-without-scripts');
    await context.close();
});
