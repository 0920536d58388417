#!/usr/bin/env node
// Draws the pictures of docs/sheets.md, in docs/pictures: an alphabet in crayon as if photographed by lamplight, a line of
// text in the font that is cut from it, and a game with that font. Run by hand when the cutter changes; needs rsvg-convert
// (librsvg2-bin), convert (imagemagick), a built lettrino-cli and the web tests' modules.
import { execFileSync } from 'node:child_process';
import { copyFileSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { Site } from '../tests/web/browser.mjs';

const root = join(dirname(fileURLToPath(import.meta.url)), '..');
const cli = join(root, 'build-release/bin/lettrino-cli');
const pictures = join(root, 'docs/pictures');
const photo = join(pictures, 'sheet-photo.jpg');
const lines = ['ABCDEFGH', 'IJKLMNOP', 'QRSTUVW', 'XYZ!?.'];

// Width and strokes of each letter, 100 high from the top of the capitals to the base line.
const strokes = {
  A: [74, 'M0 100 L36 0 L74 100 M15 64 L60 62'], B: [66, 'M5 100 L6 1 C66 -4 62 48 8 47 C82 46 78 104 5 98'],
  C: [68, 'M66 18 C46 -10 0 -2 0 50 C0 106 46 106 68 80'], D: [72, 'M6 100 L5 2 C90 -4 86 106 6 98'],
  E: [62, 'M60 2 L5 1 L6 98 L62 97 M6 50 L48 49'], F: [60, 'M60 2 L5 1 L6 100 M6 49 L46 50'],
  G: [70, 'M66 18 C46 -10 0 -2 0 50 C0 108 62 110 68 74 L68 56 L42 57'], H: [66, 'M5 0 L6 100 M63 1 L62 100 M6 51 L62 50'],
  I: [10, 'M6 0 L5 100'], J: [48, 'M44 0 L45 70 C45 106 2 106 0 76'], K: [64, 'M5 0 L6 100 M60 0 L8 56 M22 44 L64 100'],
  L: [58, 'M5 0 L6 98 L58 97'], M: [88, 'M0 100 L11 0 L43 68 L76 0 L88 100'], N: [66, 'M5 100 L6 1 L62 99 L63 0'],
  O: [76, 'M38 0 C-14 2 -12 100 38 100 C88 100 88 0 34 1'], P: [64, 'M6 100 L5 2 C80 -6 78 60 6 54'],
  Q: [78, 'M38 0 C-14 2 -12 100 38 100 C88 100 88 0 34 1 M48 74 L76 110'], R: [66, 'M6 100 L5 2 C78 -6 76 58 6 54 M28 55 L64 100'],
  S: [62, 'M58 16 C42 -12 2 0 6 26 C10 52 62 46 60 74 C58 106 12 108 0 82'], T: [72, 'M0 3 L72 1 M36 2 L35 100'],
  U: [66, 'M5 0 L6 62 C6 114 62 112 62 62 L63 0'], V: [72, 'M0 0 L36 100 L72 1'], W: [94, 'M0 0 L23 100 L47 30 L71 100 L94 1'],
  X: [66, 'M0 0 L64 100 M66 1 L0 100'], Y: [68, 'M0 0 L34 52 L68 1 M34 52 L33 100'], Z: [64, 'M2 3 L62 1 L0 98 L64 97'],
  '!': [10, 'M6 0 L5 64 M5 96 L6 97'], '?': [50, 'M0 20 C6 -12 56 -8 48 26 C44 42 24 42 25 66 M25 96 L26 97'], '.': [10, 'M5 96 L6 97'],
};
const crayons = ['#c8313a', '#2b62b8', '#2f8f4e', '#7a3a9c', '#c46a16'];

// Letters that were drawn far apart, closer.
const cut = ['--sheet-text', lines.join('\n'), '--spacing', '7,7', '--sheet', photo, '--kern-optical'];

// Always the same ones, from -1 to 1.
let seed = 11;
const stray = () => (seed = seed * 16807 % 2147483647) / 1073741823.5 - 1;

function drawing() {
  let letters = '';
  lines.forEach((line, row) => {
    let x = 120 + 20 * stray();
    for (const [place, c] of [...line].entries()) {
      const [width, path] = strokes[c];
      const size = 1.25 + 0.05 * stray();
      const y = 100 + row * 205 + 6 * stray();
      letters += `<path d="${path}" transform="translate(${x} ${y}) scale(${size}) rotate(${1.5 * stray()} 40 100)"
        stroke="${crayons[(row * 3 + place) % crayons.length]}"/>`;
      x += width * size + 48 + 14 * stray();
    }
  });
  return `<svg xmlns="http://www.w3.org/2000/svg" width="1400" height="960"><defs>
    <filter id="crayon" filterUnits="userSpaceOnUse" x="0" y="0" width="1400" height="960">
      <feTurbulence type="fractalNoise" baseFrequency="0.02" numOctaves="2" seed="5" result="hand"/>
      <feDisplacementMap in="SourceGraphic" in2="hand" scale="10" xChannelSelector="R" yChannelSelector="G" result="drawn"/>
      <feTurbulence type="fractalNoise" baseFrequency="0.45 0.3" numOctaves="2" seed="9" result="wax"/>
      <feColorMatrix in="wax" values="0 0 0 0 0  0 0 0 0 0  0 0 0 0 0  0 -2.4 0 0 2.1" result="cover"/>
      <feComposite in="drawn" in2="cover" operator="in"/></filter></defs>
    <g fill="none" stroke-width="15" stroke-linecap="round" stroke-linejoin="round" filter="url(#crayon)">${letters}</g></svg>`;
}

// Uneven light, grain, and a camera that is not held quite straight.
function takePhoto(work) {
  const [ink, light] = [join(work, 'ink.png'), join(work, 'light.png')];
  execFileSync('rsvg-convert', ['--output', ink], { input: drawing() });
  execFileSync('rsvg-convert', ['--output', light], { input: `<svg xmlns="http://www.w3.org/2000/svg" width="1400" height="960">
    <radialGradient id="lamp" cx="0.32" cy="0.3" r="0.95"><stop offset="0" stop-color="#fbf6ea"/><stop offset="1" stop-color="#cfc4ae"/>
    </radialGradient><rect width="1400" height="960" fill="url(#lamp)"/></svg>` });
  execFileSync('convert', [light, ink, '-compose', 'multiply', '-composite', '-virtual-pixel', 'edge', '-distort', 'SRT', '1.2',
    '-blur', '0x0.7', '-seed', '4', '-attenuate', '0.18', '+noise', 'Gaussian', '-strip', '-quality', '86', photo]);
}

// What the game's page runs.
function game() {
  function create() {
    const g = this.add.graphics();
    g.fillGradientStyle(0x9AD8F5, 0x9AD8F5, 0xE8F7DA, 0xE8F7DA).fillRect(0, 0, 760, 300);
    g.fillStyle(0x79B85A).fillEllipse(180, 330, 620, 180).fillStyle(0x5F9F48).fillEllipse(620, 340, 560, 170);
    g.fillStyle(0xFFE27A).fillCircle(676, 64, 34);
    for (const [x, y] of [[120, 70], [430, 46]]) g.fillStyle(0xFFFFFF, 0.9).fillEllipse(x, y, 90, 30).fillEllipse(x + 26, y - 12, 60, 34);
    this.add.bitmapText(380, 96, 'crayon', 'PAPER KINGDOM').setOrigin(0.5, 0).setScale(0.5);
    this.add.bitmapText(380, 196, 'crayon', 'READY? JUMP!').setOrigin(0.5, 0).setScale(0.36);
    window.ready = true;
  }
  function preload() { this.load.bitmapFont('crayon', 'crayon_0.png', 'crayon.xml'); }
  new Phaser.Game({ width: 760, height: 300, banner: false, audio: { noAudio: true }, scene: { preload, create } });
}

async function drawGame() {
  const site = await new Site().open();
  try {
    copyFileSync(join(root, 'tests/web/node_modules/phaser/dist/phaser.min.js'), join(site.folder, 'phaser.min.js'));
    site.cli(...cut, '--fnt-for', 'phaser', '--fnt', 'crayon.xml');
    writeFileSync(join(site.folder, 'game.html'), `<!DOCTYPE html><style>body{margin:0}canvas{display:block}</style>
      <script src="phaser.min.js"></script><script>(${game})()</script>`);
    const page = await site.page('game.html', { viewport: { width: 760, height: 300 } });
    await page.waitForFunction('window.ready');
    await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
    await page.screenshot({ path: join(pictures, 'sheet-game.png') });
  } finally {
    await site.close();
  }
}

process.env.LETTRINO_CLI = cli;
const work = mkdtempSync(join(tmpdir(), 'sheet-'));
takePhoto(work);
execFileSync(cli, [...cut, '--text', 'DRAW WITH ANY CRAYON!', join(work, 'text.png')], { stdio: 'inherit' });
execFileSync('convert', [join(work, 'text.png'), '-resize', '760x', '-strip', join(pictures, 'sheet-text.png')]);
await drawGame();
rmSync(work, { recursive: true });
