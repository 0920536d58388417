#!/usr/bin/env node
// Draws docs/pictures/kerning.png: six fonts of pictures, whose letters are drawn here, each set without kerning, with
// letters that touch, and with optical kerning. Run by hand when the kerning changes; needs rsvg-convert
// (librsvg2-bin), convert (imagemagick) and a built lettrino-cli.
import { execFileSync } from 'node:child_process'
import { mkdirSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs'
import { tmpdir } from 'node:os'
import { dirname, join } from 'node:path'
import { fileURLToPath } from 'node:url'

const root = join(dirname(fileURLToPath(import.meta.url)), '..')
const cli = join(root, 'build-release/bin/lettrino-cli')
const work = mkdtempSync(join(tmpdir(), 'kerning-'))
const text = 'AVATAR Toy LTD. Yellow Wave'
const characters = [...new Set(text.replaceAll(' ', '') + 'HINEOUnohuim')]
const size = 96

const letter = (c, attributes) =>
  `<text x="60" y="92" font-size="88" ${attributes}>${c}</text>`
const rough = '<filter id="rough" x="-20%" y="-20%" width="140%" height="140%"><feTurbulence type="fractalNoise"' +
  ' baseFrequency="0.06" numOctaves="3" seed="7" result="noise"/><feDisplacementMap in="SourceGraphic" in2="noise" scale="9"' +
  ' xChannelSelector="R" yChannelSelector="G"/></filter>'
const grain = '<filter id="grain" x="0" y="0" width="1" height="1"><feTurbulence type="fractalNoise"' +
  ' baseFrequency="0.01 0.16" numOctaves="3" seed="3"/><feColorMatrix values="0 0 0 0 0.30  0 0 0 0 0.14  0 0 0 0 0.03' +
  '  5 0 0 0 -2"/><feComposite in2="SourceGraphic" operator="in" result="lines"/><feMerge>' +
  '<feMergeNode in="SourceGraphic"/><feMergeNode in="lines"/></feMerge></filter>'
const soft = '<filter id="soft" x="-20%" y="-20%" width="150%" height="150%"><feGaussianBlur in="SourceAlpha"' +
  ' stdDeviation="2"/><feOffset dx="5" dy="4"/><feComponentTransfer result="shade"><feFuncA type="linear" slope="0.6"/>' +
  '</feComponentTransfer><feMerge><feMergeNode in="shade"/><feMergeNode in="SourceGraphic"/></feMerge></filter>'
const drawings = {
  wood: c => grain + letter(c, 'font-family="DejaVu Serif" font-weight="700" fill="#c98a4b" filter="url(#grain)"'),
  balloons: c =>
    letter(c, 'font-family="DejaVu Sans" font-weight="700" fill="#e0405a" stroke="#e0405a" stroke-width="9" stroke-linejoin="round"') +
    letter(c, 'font-family="DejaVu Sans" fill="none" stroke="#ff9fb0" stroke-width="2" stroke-linejoin="round" transform="translate(4 -3)"'),
  pixels: c => letter(c, 'font-family="DejaVu Sans Mono" font-weight="700" fill="#207848" text-rendering="geometricPrecision"'),
  brush: c => rough + letter(c, 'font-family="DejaVu Sans" font-style="oblique" fill="#183880" stroke="#183880" stroke-width="3" filter="url(#rough)"'),
  outline: c => letter(c, 'font-family="Liberation Serif" font-weight="700" fill="none" stroke="#703090" stroke-width="2.5"'),
  shadow: c => soft + letter(c, 'font-family="Liberation Sans" font-weight="700" fill="#e09020" filter="url(#soft)"'),
}

const lines = []
for (const [name, draw] of Object.entries(drawings)) {
  const folder = join(work, name)
  mkdirSync(folder)
  for (const c of characters) {
    const file = join(folder, `x${c.codePointAt(0)}.png`)
    const svg = `<svg xmlns="http://www.w3.org/2000/svg" width="220" height="128">${draw(c)}</svg>`
    execFileSync('rsvg-convert', ['--output', file], { input: svg })
    // Square dots: as few pixels as an old game had, enlarged.
    if (name === 'pixels') {
      execFileSync('convert', [file, '-filter', 'Box', '-resize', '44x', '-channel', 'A', '-threshold', '45%', '+channel',
        '-filter', 'Point', '-resize', '220x128!', file])
    }
  }
  const font = join(work, `${name}.sm`)
  const pictures = characters.flatMap(c => ['--picture', `U+${c.codePointAt(0).toString(16)}=${join(folder, `x${c.codePointAt(0)}.png`)}`])
  const spacing = name === 'pixels' ? '5,0' : '2,2'
  execFileSync(cli, ['--height', String(size), '--spacing', spacing, ...pictures, '--save', font])
  for (const [i, kerning] of [[], ['--kern'], ['--kern-optical']].entries()) {
    const line = join(work, `${name}${i}.png`)
    execFileSync(cli, ['--open', font, ...kerning, '--text', text, line])
    lines.push(line)
  }
}
// One row for each font; its three lines below one another, small captions are in the guide.
execFileSync('convert', [...lines, '-resize', '34%', '-background', 'white', '-gravity', 'West', '-extent', '650x36',
  join(work, 'line%02d.png')])
const rows = []
for (let font = 0; font < 6; ++font) {
  const row = join(work, `row${font}.png`)
  execFileSync('convert', [0, 1, 2].map(i => join(work, `line${String(font * 3 + i).padStart(2, '0')}.png`)).concat(
    ['-append', '-bordercolor', 'white', '-border', '8x10', row]))
  rows.push(row)
}
const pairs = [0, 1, 2].map(i => {
  const file = join(work, `pair${i}.png`)
  execFileSync('convert', [rows[2 * i], rows[2 * i + 1], '+append', file])
  return file
})
execFileSync('convert', [...pairs, '-append', '-strip', join(root, 'docs/pictures/kerning.png')])
rmSync(work, { recursive: true })
