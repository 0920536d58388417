// Draws Media/skins/About.png, the ground of the About dialog: a letter of small pictures at the left, and room for the
// text at the right. Twice the size of the dialog, for screens of high density. Needs rsvg-convert (librsvg2-bin).
import { execFileSync } from 'node:child_process';
import { fileURLToPath } from 'node:url';

const width = 680;
const height = 420;

// Each tile is drawn in a square of 100 by 100.
const tiles = {
    sun: `<path fill="#ffc93c" d="M0 0h100v100H0z"/>
        ${[...Array(12).keys()].map((i) => `<path stroke="#fff3c4" stroke-width="5" stroke-linecap="round"
            d="M50 14v9" transform="rotate(${i * 30} 50 50)"/>`).join('')}
        <circle cx="50" cy="50" r="20" fill="#fff3c4"/>`,
    hills: `<path fill="#ff7a45" d="M0 0h100v100H0z"/><path fill="#ffb08a" d="M0 70l30-26 22 20 26-30 22 22v44H0z"/>
        <path fill="#c9482a" d="M0 100V84l26-22 20 18 30-24 24 20v24z"/>`,
    flower: `<path fill="#ef4a6b" d="M0 0h100v100H0z"/>
        ${[...Array(6).keys()].map((i) => `<circle cx="50" cy="27" r="13" fill="#ffd1da"
            transform="rotate(${i * 60} 50 50)"/>`).join('')}
        <circle cx="50" cy="50" r="12" fill="#ffc93c"/>`,
    sea: `<path fill="#35b6a6" d="M0 0h100v100H0z"/><path fill="#f4fffd" d="M52 18v38H26zM57 26l18 30H57z"/>
        <path fill="#0a5c58" d="M24 61h54l-8 14H32z"/>
        <path fill="#0f7d77" d="M0 76q12.5-12 25 0t25 0 25 0 25 0v24H0z"/>`,
    kite: `<path fill="#4f9df5" d="M0 0h100v100H0z"/><path fill="#d8ebff" d="M0 100q50-44 100-40v40z"/>
        <path fill="#fff" d="M62 16l18 22-26 20-8-28z"/><path fill="none" stroke="#fff" stroke-width="3" d="M54 58q-10 8-6 16t-8 14"/>`,
};
const colours = ['#ffc93c', '#ff7a45', '#ef4a6b', '#35b6a6', '#4f9df5', '#26304a'];

const tile = (name, x, y, size) =>
    `<svg x="${x}" y="${y}" width="${size}" height="${size}" viewBox="0 0 100 100">${tiles[name]}</svg>`;

// A row of colours along the lower edge, which fades to the right.
const small = 20;
const strip = [...Array(width / small).keys()].map((i) => {
    const colour = colours[(i * 7 + (i >> 2)) % colours.length];
    const opacity = (1 - i * small / width) ** 2;
    return `<rect x="${i * small}" y="${height - small}" width="${small}" height="${small}" fill="${colour}"
        opacity="${opacity.toFixed(3)}"/>`;
}).join('');

const side = 72;
const left = 32;
const top = 84;
const svg = `<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 ${width} ${height}">
    <linearGradient id="ground" x2="1" y2="0.3"><stop stop-color="#f3ece1"/><stop offset="0.45" stop-color="#fdfbf8"/>
        <stop offset="1" stop-color="#fff"/></linearGradient>
    <rect width="${width}" height="${height}" fill="url(#ground)"/>
    <path fill="#26304a" opacity="0.1" d="M${left + 5} ${top + 6}h${side}v${2 * side}h${2 * side}v${side}h${-3 * side}z"/>
    ${tile('sun', left, top, side)}${tile('hills', left, top + side, side)}${tile('flower', left, top + 2 * side, side)}
    ${tile('sea', left + side, top + 2 * side, side)}${tile('kite', left + 2 * side, top + 2 * side, side)}
    ${strip}
</svg>`;

const target = fileURLToPath(new URL('../Media/skins/About.png', import.meta.url));
execFileSync('rsvg-convert', ['--width', String(width * 2), '--height', String(height * 2), '--output', target],
    { input: svg });
