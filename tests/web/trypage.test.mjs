// The page on which a font is tried, used as its reader would.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { Site } from './browser.mjs';

const site = new Site();

before(async () => {
    await site.open();
    site.cli('--family', 'DejaVu Sans', '--weight', '700', '--height', '90', '--colour', 'C03050', '--select', '33-126',
        '--generate', '--kern', '--html', 'demo.html');
});
after(() => site.close());

async function open(options) {
    const page = await site.page('demo.html', options);
    await page.waitForSelector('.LT_Text', { state: 'attached' });
    assert.deepEqual(page.failures, []);
    return page;
}

const background = (page) => page.$eval('#sheet', (sheet) => getComputedStyle(sheet).backgroundColor);
const drawnText = (page) => page.$$eval('#sample .LT_Text', (words) => words.map((word) => word.textContent));

test('text, size and spacing are seen at once', async () => {
    const page = await open();
    assert.equal(await page.title(), 'demo - try this colour font');
    assert.deepEqual(await drawnText(page), ['Hello', 'World']);
    await page.fill('#text', 'Two lines\nhere');
    assert.deepEqual(await drawnText(page), ['Two', 'lines', 'here']);
    const width = () => page.$eval('#sample .LT_Text', (word) => word.getBoundingClientRect().width);
    await page.fill('#size', '100');
    const natural = await width();
    await page.fill('#spacing', '10');
    assert.ok(Math.abs(await width() - natural - 30) < 0.5);
    await page.fill('#size', '50');
    assert.ok(Math.abs(await width() - natural / 2 - 30) < 0.5);
    assert.equal(await page.textContent('#sizeValue'), '50 px');
    await site.shot(page, 'try', { fullPage: true });
});

test('the background by the colour picker, which shows what it gives', async () => {
    const page = await open();
    assert.equal(await background(page), 'rgb(255, 255, 255)');
    const picture = await page.locator('#picker img').screenshot();
    for (const [x, y] of [[0.02, 0.5], [0.08 + 0.92 / 3, 0.5], [0.9, 0.25], [0.5, 0.75]]) {
        const box = await page.locator('#picker').boundingBox();
        await page.mouse.click(box.x + box.width * x, box.y + box.height * y);
        const chosen = (await background(page)).match(/\d+/g).map(Number);
        const shown = await site.colour(picture, x, y);
        assert.ok(chosen.every((value, i) => Math.abs(value - shown[i]) <= 12), `${chosen} and ${shown}`);
    }
});

test('by keyboard alone', async () => {
    const page = await open();
    const focus = () => page.evaluate(() => document.activeElement.id);
    const order = [];
    for (let i = 0; i < 4; ++i) {
        await page.keyboard.press('Tab');
        order.push(await focus());
    }
    assert.deepEqual(order, ['text', 'size', 'spacing', 'picker']);
    const before = await background(page);
    for (let i = 0; i < 5; ++i) await page.keyboard.press('Shift+ArrowDown');
    await page.keyboard.press('Shift+ArrowRight');
    assert.notEqual(await background(page), before);
    assert.match(await page.getAttribute('#picker', 'aria-valuetext'), /^rgb/);
});

test('fits the width of a phone', async () => {
    const page = await open({ viewport: { width: 360, height: 740 }, deviceScaleFactor: 2, hasTouch: true, isMobile: true });
    await page.fill('#text', 'A rather long line of text for a phone');
    const [scroll, client] = await page.evaluate(() => [document.documentElement.scrollWidth, document.documentElement.clientWidth]);
    assert.ok(scroll <= client, `${scroll} in ${client}`);
    await site.shot(page, 'try-phone', { fullPage: true });
});
