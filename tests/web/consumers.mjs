// Engines that read game fonts, each run on the very snippet of the guide. A consumer draws a line into a picture of
// 800 by 200, from 20, 20 on, on a ground of #203040.
import { spawnSync } from 'node:child_process';
import { copyFileSync, existsSync, mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { decode } from './pictures.mjs';

const here = dirname(fileURLToPath(import.meta.url));
const guide = readFileSync(join(here, '../../docs/engines.md'), 'utf8');

export const ground = [0x20, 0x30, 0x40];
export const line = 'AVATAR Tomorrow, 12';

// The guide's snippet for an engine, with another line and size in it.
export function snippet(engine, text = line, size = 64) {
    const found = guide.match(new RegExp('```\\w+ ' + engine + '\\n([\\s\\S]*?)```'));
    if (!found) throw new Error(`the guide has no snippet for ${engine}`);
    return found[1].replaceAll(line, text).replaceAll('fontSize: 64', `fontSize: ${size}`);
}

// An engine of the browser, in a page of its own.
async function inBrowser(site, library, code, ready) {
    const name = `page-${Math.random().toString(36).slice(2)}.html`;
    if (!existsSync(join(site.folder, library))) copyFileSync(join(here, 'node_modules', library === 'pixi.min.js' ? 'pixi.js' : 'phaser', 'dist', library), join(site.folder, library));
    writeFileSync(join(site.folder, name), '<!DOCTYPE html><meta charset="utf-8"><style>body{margin:0;background:#000}canvas{display:block}</style>' +
        `<script>addEventListener('error', (event) => { window.failed ??= event.message; });</script><script src="${library}"></script><script type="module">try {\n${code}\n} catch (error) { window.failed = String(error.message ?? error); }\nwindow.loaded = true;</script>`);
    const page = await site.page(name);
    await page.waitForFunction('window.loaded');
    await page.waitForFunction(`window.failed || (${ready})`, null, { timeout: 8000 });
    await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
    const failure = await page.evaluate('window.failed') ?? page.failures[0];
    const png = failure ? null : await page.screenshot({ clip: { x: 0, y: 0, width: 800, height: 200 } });
    await page.context().close();
    if (failure) throw new Error(failure);
    return decode(png);
}

export const pixi = (site, file, text, size) => inBrowser(site, 'pixi.min.js',
    snippet('pixi', text, size).replaceAll('demo.fnt', file).replaceAll("'demo'", `'${file.replace(/\.\w+$/, '')}'`), 'window.loaded');

export const phaser = (site, file, text, type = 'AUTO') => {
    const name = file.replace(/\.\w+$/, '');
    return inBrowser(site, 'phaser.min.js',
        snippet('phaser', text).replace('new Phaser.Game({', `window.game = new Phaser.Game({ type: Phaser.${type}, banner: false, audio: { noAudio: true },`)
            .replaceAll('demo_0.png', `${name}_0.png`).replaceAll('demo.xml', file).replaceAll("'demo'", `'${name}'`),
        'window.game?.scene?.scenes[0]?.children?.list.length > 0');
};

// LÖVE on a virtual screen, which needs a display for its pictures.
export async function love(folder, file, text) {
    const game = join(folder, `love-${Math.random().toString(36).slice(2)}`);
    mkdirSync(game);
    const name = file.replace(/\.\w+$/, '');
    copyFileSync(join(folder, file), join(game, 'demo.fnt'));
    for (let i = 0; existsSync(join(folder, `${name}_${i}.png`)); ++i) copyFileSync(join(folder, `${name}_${i}.png`), join(game, `${name}_${i}.png`));
    writeFileSync(join(game, 'conf.lua'), 'function love.conf(t) t.identity = "love-test" t.window.width = 800 t.window.height = 200 t.modules.audio = false t.modules.sound = false t.modules.joystick = false end');
    // What the snippet draws goes onto a canvas, as exact as the engine is, and no window system between.
    writeFileSync(join(game, 'main.lua'), snippet('love', text).replaceAll(`"${line}"`, JSON.stringify(text ?? line)) + `
local draw = love.draw
function love.errorhandler(message) io.stderr:write("FAILED " .. tostring(message) .. "\\n") return function() return 1 end end
function love.draw()
    local canvas = love.graphics.newCanvas(800, 200, { dpiscale = 1 })
    love.graphics.setCanvas(canvas)
    love.graphics.clear(love.graphics.getBackgroundColor())
    draw()
    love.graphics.setCanvas()
    canvas:newImageData():encode("png", "shot.png")
    love.event.quit()
end`);
    const run = spawnSync('xvfb-run', ['-a', '-s', '-screen 0 1024x768x24', 'love', game],
        { encoding: 'utf8', timeout: 60000, env: { ...process.env, HOME: folder, XDG_DATA_HOME: join(game, 'data') } });
    const shot = join(game, 'data/love/love-test/shot.png');
    if (!existsSync(shot)) throw new Error(`love: ${run.stderr.match(/FAILED (.*)/)?.[1] ?? run.stderr + run.stdout}`);
    return decode(readFileSync(shot));
}

// What Godot's server prints for a script.
export function godot(folder, code) {
    const script = join(folder, 'script.gd');
    writeFileSync(script, code);
    const run = spawnSync('godot3-server', ['-s', script], { cwd: folder, encoding: 'utf8', timeout: 60000, env: { ...process.env, HOME: folder } });
    return run.stdout + run.stderr;
}
