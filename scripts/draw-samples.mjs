#!/usr/bin/env node
// Makes the two fonts that are shipped in Media/Fonts, where Open begins: "Plain", of a family, and "Balloons", of pictures
// drawn here. Run by hand; needs rsvg-convert (librsvg2-bin) and a built lettrino-cli.
import { execFileSync } from 'node:child_process'
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs'
import { tmpdir } from 'node:os'
import { dirname, join } from 'node:path'
import { fileURLToPath } from 'node:url'

const root = join(dirname(fileURLToPath(import.meta.url)), '..')
const cli = (...steps) => execFileSync(join(root, 'build-release/bin/lettrino-cli'), steps)
const fonts = join(root, 'Media/Fonts')
const work = mkdtempSync(join(tmpdir(), 'samples-'))

cli('--family', 'DejaVu Sans', '--weight', '700', '--height', '64', '--colour', '2060C0', '--select', 'A-Z,a-z,0-9,33-47,58,59,63',
  '--generate', '--kern-optical', '--save', join(fonts, 'Plain.sm'))

const colours = ['#e0405a', '#e08a20', '#3a9a50', '#2f70c0', '#8a50b0']
const pictures = [...'ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789!?.,'].flatMap((c, i) => {
  const file = join(work, `x${c.codePointAt(0)}.png`)
  const colour = colours[i % colours.length]
  const text = style => `<text x="60" y="92" font-size="84" font-family="DejaVu Sans" ${style}>${c}</text>`
  const svg = `<svg xmlns="http://www.w3.org/2000/svg" width="220" height="128">` +
    text(`font-weight="700" fill="${colour}" stroke="${colour}" stroke-width="9" stroke-linejoin="round"`) +
    text('fill="none" stroke="#fff" stroke-opacity="0.55" stroke-width="2.5" stroke-linejoin="round" transform="translate(4 -3)"') + '</svg>'
  execFileSync('rsvg-convert', ['--output', file], { input: svg })
  return ['--picture', `U+${c.codePointAt(0).toString(16)}=${file}`]
})
cli('--height', '80', '--spacing', '2,2', ...pictures, '--kern-optical', '--save', join(fonts, 'Balloons.sm'))

// A saved font tells the full path of its picture; these go to other machines.
for (const name of ['Plain', 'Balloons']) {
  const file = join(fonts, `${name}.sm`)
  const text = readFileSync(file, 'utf16le')
  writeFileSync(file, text.replace(join(fonts, `${name}.png`), `${name}.png`), 'utf16le')
}
rmSync(work, { recursive: true })
