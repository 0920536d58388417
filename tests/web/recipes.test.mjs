// Pages that lettrino-cli serves while it watches: open ones load themselves anew when a picture of the font changes,
// the exported page as well as a game's own beside it.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { writeFileSync } from 'node:fs';
import { request } from 'node:http';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { Site } from './browser.mjs';
import { colourAt, drawPicture } from './pictures.mjs';

const site = new Site();
let watching;
let address;

const draw = (...colour) => drawPicture(join(site.folder, 'A.png'), 40, 60, () => [...colour, 255]);

const game = '<!DOCTYPE html><meta charset="utf-8"><body style="margin:0"><img src="demo_0.png"></body>';

before(async () => {
    await site.open();
    draw(255, 0, 0);
    writeFileSync(join(site.folder, 'demo.steps'), 'picture A=A.png\nhtml demo.html\nfnt-for pixi\nfnt demo.fnt\n');
    writeFileSync(join(site.folder, 'game.html'), game);
    watching = spawn(process.env.LETTRINO_CLI, ['--steps', 'demo.steps', '--watch', '--serve', '0'], { cwd: site.folder });
    let log = '';
    watching.stderr.on('data', (text) => { log += text; });
    while (!/done in/.test(log)) await new Promise((soon) => setTimeout(soon, 30));
    address = log.match(/serving at (\S+)/)[1];
});
after(async () => {
    watching?.kill('SIGINT');
    await site.close();
});

// The mark is gone when the page was loaded anew.
async function reloads(page, change) {
    await page.evaluate(() => { window.mark = true; });
    await page.waitForTimeout(700); // it knows by now which run it shows
    assert.equal(await page.evaluate(() => window.mark), true, 'without a change it stays');
    await change();
    await page.waitForFunction(() => !window.mark, { timeout: 20000 });
}

// Its page of the web, and one that shows the picture of the game font beside it.
for (const [path, picture, ...colour] of [['demo.html', 'demo.png', 0, 0, 255], ['game.html', 'demo_0.png', 0, 255, 0]]) {
    test(`${path} shows a changed letter by itself`, async () => {
        const page = await (await site.browser.newContext()).newPage();
        await page.goto(address + path);
        await reloads(page, () => draw(...colour));
        const png = Buffer.from(await page.evaluate(async (name) => [...new Uint8Array(await (await fetch(name)).arrayBuffer())], picture));
        assert.deepEqual(colourAt(png, 0.2, 0.2), colour);
        await page.context().close();
    });
}

test('nothing outside of the folder is served, and nothing to a site of another name', async () => {
    const status = (path, host) => new Promise((done) => {
        const { port } = new URL(address);
        request({ host: '127.0.0.1', port, path, headers: host ? { Host: host } : {} }, (answer) => {
            answer.resume();
            done(answer.statusCode);
        }).end();
    });
    assert.equal(await status('/demo.js'), 200);
    assert.match(await (await fetch(address)).text(), /<a href="\/demo.html">demo.html</);
    assert.equal(await status('/../../../../etc/hostname'), 404);
    assert.equal(await status('/%2e%2e/%2e%2e/%2e%2e/%2e%2e/etc/hostname'), 404);
    assert.equal(await status('/demo.js', 'evil.example'), 403);
});
