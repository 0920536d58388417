// Pages that lettrino-cli serves while it watches: open ones load themselves anew when a picture of the font changes,
// the exported page as well as a game's own beside it.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { copyFileSync, writeFileSync } from 'node:fs';
import { request } from 'node:http';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { keep, Site } from './browser.mjs';
import { drawPicture } from './pictures.mjs';

const site = new Site();
let watching;
let address;

const draw = (...colour) => drawPicture(join(site.folder, 'A.png'), 40, 60, () => [...colour, 255]);

const game = `<!DOCTYPE html><meta charset="utf-8"><body><script src="pixi.js"></script><script>
(async () => {
    const app = new PIXI.Application();
    await app.init({ width: 200, height: 120, background: '#203040', preference: 'webgl' });
    document.body.append(app.canvas);
    await PIXI.Assets.load('demo.fnt');
    app.stage.addChild(new PIXI.BitmapText({ text: 'AA', style: { fontFamily: 'demo', fontSize: 60 }, x: 20, y: 20 }));
    app.render();
    window.ready = true;
})();
</script></body>`;

before(async () => {
    await site.open();
    draw(255, 0, 0);
    writeFileSync(join(site.folder, 'demo.steps'), 'picture A=A.png\nhtml demo.html\nfnt-for pixi\nfnt demo.fnt\n');
    writeFileSync(join(site.folder, 'game.html'), game);
    copyFileSync(new URL('./node_modules/pixi.js/dist/pixi.min.js', import.meta.url), join(site.folder, 'pixi.js'));
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

async function openServed(path) {
    const context = await site.browser.newContext({ viewport: { width: 900, height: 500 } });
    const page = await context.newPage();
    await page.goto(address + path);
    return page;
}

test('the try page shows a changed letter by itself', async () => {
    const page = await openServed('demo.html');
    await reloads(page, () => draw(0, 0, 255));
    const picture = await page.evaluate(async () => {
        const image = new Image();
        image.src = 'demo.png';
        await image.decode();
        const canvas = new OffscreenCanvas(image.width, image.height);
        const context = canvas.getContext('2d');
        context.drawImage(image, 0, 0);
        return [...context.getImageData(30, 30, 1, 1).data];
    });
    assert.deepEqual(picture, [0, 0, 255, 255]);
    await page.context().close();
});

test('so does a game of PixiJS beside it', async () => {
    const page = await openServed('game.html');
    await page.waitForFunction(() => window.ready, { timeout: 20000 });
    await reloads(page, () => draw(0, 255, 0));
    await page.waitForFunction(() => window.ready, { timeout: 20000 });
    const png = await page.screenshot({ clip: { x: 8, y: 8, width: 200, height: 120 } });
    assert.deepEqual(await site.colour(keep(png, 'served-game'), 0.2, 0.4), [0, 255, 0]);
    await page.context().close();
});

test('nothing outside of the folder is served, and nothing to a site of another name', async () => {
    const status = (path, host) => new Promise((done) => {
        const { port } = new URL(address);
        request({ host: '127.0.0.1', port, path, headers: host ? { Host: host } : {} }, (answer) => {
            answer.resume();
            done(answer.statusCode);
        }).end();
    });
    assert.equal(await status('/demo.js'), 200);
    assert.equal(await status('/../../../../etc/hostname'), 404);
    assert.equal(await status('/%2e%2e/%2e%2e/%2e%2e/%2e%2e/etc/hostname'), 404);
    assert.equal(await status('/demo.js', 'evil.example'), 403);
});
