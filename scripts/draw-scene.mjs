// Draws the guide's scene of a game into PICTURE: Phaser, with two fonts of Lettrino's.
//
//   node scripts/draw-scene.mjs LETTRINO_CLI PICTURE
import { copyFileSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { Site } from '../tests/web/browser.mjs';

const [cli, picture] = process.argv.slice(2);
process.env.LETTRINO_CLI = cli;
const modules = join(dirname(fileURLToPath(import.meta.url)), '../tests/web/node_modules');

// What the scene's page runs.
function scene() {
    const width = 760;
    const height = 400;
    function preload() {
        this.load.bitmapFont('title', 'title_0.png', 'title.xml');
        this.load.bitmapFont('score', 'score_0.png', 'score.xml');
    }
    function hills(graphics, colour, base, swing, length) {
        graphics.fillStyle(colour);
        graphics.beginPath();
        graphics.moveTo(0, height);
        for (let x = 0; x <= width; x += 4) graphics.lineTo(x, base - swing * Math.sin(x / length + base) - swing / 2 * Math.sin(x / length * 2.3));
        graphics.lineTo(width, height);
        graphics.closePath();
        graphics.fillPath();
    }
    function create() {
        const g = this.add.graphics();
        g.fillGradientStyle(0x2B1B5A, 0x2B1B5A, 0xF08A5D, 0xF6B36B);
        g.fillRect(0, 0, width, 320);
        g.fillStyle(0xFFE29A, 1).fillCircle(600, 215, 46);
        for (let i = 0; i < 40; ++i) g.fillStyle(0xFFFFFF, 0.25 + (i * 37 % 60) / 100).fillRect(i * 131 % width, i * 53 % 130, 2, 2);
        hills(g, 0x7A3B69, 270, 26, 90);
        hills(g, 0x4B2A5E, 310, 18, 60);
        g.fillStyle(0x2E7D5B).fillRect(0, 340, width, 12);
        g.fillStyle(0x5D4037).fillRect(0, 352, width, 48);
        for (let x = 0; x < width; x += 32) g.lineStyle(2, 0x4A332C).strokeRect(x, 352, 32, 24).strokeRect(x - 16, 376, 32, 24);
        for (const [x, y, length] of [[120, 262, 3], [330, 214, 4], [560, 272, 3]]) {
            g.fillStyle(0x3BA06E).fillRoundedRect(x, y, length * 32, 10, 4);
            g.fillStyle(0x6D4C41).fillRoundedRect(x, y + 10, length * 32, 14, 4);
            for (let i = 0; i < length; ++i) {
                g.fillStyle(0xE0A526).fillEllipse(x + 16 + 32 * i, y - 18, 18, 22);
                g.fillStyle(0xFFD75E).fillEllipse(x + 15 + 32 * i, y - 18, 12, 17);
            }
        }
        g.fillStyle(0x38B6FF).fillRoundedRect(232, 304, 30, 36, 12);
        g.fillStyle(0xFFFFFF).fillCircle(252, 316, 5).fillCircle(241, 316, 5);
        g.fillStyle(0x102030).fillCircle(253, 317, 2).fillCircle(242, 317, 2);
        this.add.bitmapText(width / 2, 64, 'title', 'Sky Harbour').setOrigin(0.5, 0);
        this.add.bitmapText(16, 12, 'score', 'SCORE 012450');
        this.add.bitmapText(width - 16, 12, 'score', 'LEVEL 7  x 3').setOrigin(1, 0);
        this.add.bitmapText(width / 2, 366, 'score', 'Collect 8 more coins, then fly!').setOrigin(0.5, 0);
        window.ready = true;
    }
    new Phaser.Game({ width, height, banner: false, audio: { noAudio: true }, scene: { preload, create } });
}

const site = await new Site().open();
try {
    copyFileSync(join(modules, 'phaser/dist/phaser.min.js'), join(site.folder, 'phaser.min.js'));
    const nabla = createRequire(import.meta.url).resolve(join(modules, '@fontsource/nabla/files/nabla-latin-400-normal.woff2'));
    site.cli('--font-file', nabla, '--family', 'Nabla', '--colour-font', '--height', '96', '--select', 'A-Z,a-z', '--generate', '--fnt-for', 'phaser', '--fnt', 'title.xml');
    site.cli('--family', 'DejaVu Sans', '--weight', '700', '--height', '26', '--colour', 'FFF3D0', '--select', '33-126', '--generate', '--kern', '--fnt-for', 'phaser', '--fnt', 'score.xml');
    writeFileSync(join(site.folder, 'scene.html'), `<!DOCTYPE html><style>body{margin:0}canvas{display:block}</style><script src="phaser.min.js"></script><script>(${scene})()</script>`);
    const page = await site.page('scene.html', { viewport: { width: 760, height: 400 } });
    await page.waitForFunction('window.ready');
    await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
    await page.screenshot({ path: picture });
} finally {
    await site.close();
}
