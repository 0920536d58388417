// Draws the same characters of the same colour fonts at the same size with colour_sheet and with headless Chromium,
// and compares the pictures, character by character:
//
//     node colour-fonts.mjs COLOUR_SHEET PAINT_FONT OUTPUT_FOLDER
//
// A character agrees if, over the pixels that either of the two inked, the mean difference of a colour channel is at
// most `mean` levels and the share of pixels with a channel more than 32 levels off at most `share`. Edges always
// differ a little, since the two rasterise outlines each in its own way. Where one disagrees, both pictures stay in
// the output folder.
//
// Chromium draws no glyphs that are SVG documents, so for these it is given the documents themselves.
import { execFileSync } from "node:child_process";
import fs from "node:fs";
import path from "node:path";
import { fileURLToPath } from "node:url";
import { launch } from "./browser.mjs";
import { decode, difference } from "./pictures.mjs";

const here = path.dirname(fileURLToPath(import.meta.url));
const [sheet, paintFont, output] = process.argv.slice(2);
const size = 100;
const cell = 240;
const perRow = 16;

const range = (first, last) => Array.from({ length: last - first + 1 }, (_, i) => first + i);
const letters = [...range(65, 90), ...range(97, 104), ...range(48, 57)];
const packaged = (scope, name, file) => path.join(here, "node_modules", scope, name, "files", file);
const fonts = [
    { name: "bungee-tint", family: "Bungee Tint", file: "bungee-tint-latin-400-normal.woff2" },
    { name: "foldit", family: "Foldit Thin", file: "foldit-latin-700-normal.woff2" },
    { name: "kalnia-glaze", family: "Kalnia Glaze Thin", file: "kalnia-glaze-latin-400-normal.woff2" },
    { name: "nabla", family: "Nabla", file: "nabla-latin-400-normal.woff", documents: true },
    { name: "nabla-variable", scope: "@fontsource-variable", folder: "nabla", family: "Nabla",
      file: "nabla-latin-full-normal.woff2" },
    { name: "noto-emoji", family: "Noto Color Emoji", path: "/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf",
      codes: [...range(48, 57), 0x23, 0x2a, 0xa9, 0xae, 0x2600, 0x2601, 0x2614, 0x2615, 0x2648, 0x2649, 0x264a, 0x264b,
              0x26a1, 0x26bd, 0x2705, 0x274c] },
];

// A font made for this, with every paint there is.
fs.mkdirSync(output, { recursive: true });
const everyPaint = path.join(output, "every-paint.ttf");
const paints = JSON.parse(execFileSync(paintFont, [everyPaint]));
fonts.push({ name: "every-paint", family: "Every Paint", path: everyPaint, codes: paints.map((_, i) => 0x100 + i),
             names: paints,
             // A cleared composite leaves nothing.
             empty: ["composite 0"],
             // Chromium cuts the colours of a gradient whose radius begins below 0 a little off; all else is below 3.
             mean: 4 });

const place = (i) => [(i % perRow) * cell, Math.floor(i / perRow) * cell];

// Runs in the page, which is the sheet: draws it as colour_sheet does.
async function draw({ font, codes, places, cell, size, pen, documents }) {
    const canvas = document.querySelector("canvas");
    const sheet = canvas.getContext("2d");
    sheet.fillStyle = "rgb(128,128,128)";
    sheet.fillRect(0, 0, canvas.width, canvas.height);
    sheet.fillStyle = "white";
    if (!documents) {
        const face = new FontFace("under test", `url(data:font/x;base64,${font})`);
        document.fonts.add(await face.load());
        sheet.font = `${size}px "under test"`;
        sheet.textRendering = "geometricPrecision";
    }
    for (const [i, [left, top]] of places.entries()) {
        if (documents) {
            const image = Object.assign(new Image(), { src: "data:image/svg+xml;charset=utf-8," + encodeURIComponent(documents[i]) });
            await image.decode();
            sheet.drawImage(image, left, top);
            continue;
        }
        sheet.save();
        sheet.beginPath();
        sheet.rect(left, top, cell, cell);
        sheet.clip();
        sheet.fillText(String.fromCharCode(codes[i]), left + pen.x, top + pen.y);
        sheet.restore();
    }
    return canvas.toDataURL().replace(/^.*,/, "");
}

// Of a font file: the units of an em, and of each character the glyph and the document with it.
function svgDocuments(file, codes) {
    const script = `
import json, sys
from fontTools.ttLib import TTFont
font = TTFont(sys.argv[1])
glyphs = [font.getGlyphID(font.getBestCmap()[int(code)]) for code in sys.argv[2:]]
find = lambda glyph: next(entry[0] for entry in font['SVG '].docList if entry[1] <= glyph <= entry[2])
print(json.dumps([font['head'].unitsPerEm, [[glyph, find(glyph)] for glyph in glyphs]]))`;
    return JSON.parse(execFileSync("/usr/bin/python3", ["-c", script, file, ...codes.map(String)], { maxBuffer: 1 << 28 }));
}

// One glyph of a document, alone, where the text would have it.
function glyphAlone(text, glyph, units, pen) {
    const scale = size / units;
    const box = `${-pen.x / scale} ${-pen.y / scale} ${cell / scale} ${cell / scale}`;
    const inside = text.replace(/<\?xml[^>]*\?>/, "");
    const style = `<style>[id^="glyph"]{display:none} #glyph${glyph}{display:inline}</style>`;
    return `<svg xmlns="http://www.w3.org/2000/svg" width="${cell}" height="${cell}" viewBox="${box}">${style}` +
        `<g color="white">${inside.replace(/<svg /, '<svg overflow="visible" ')}</g></svg>`;
}

const browser = await launch();
let failed = 0;
try {
    const page = await (await browser.newContext()).newPage();
    for (const font of fonts) {
        const file = font.path ?? packaged(font.scope ?? "@fontsource", font.folder ?? font.name, font.file);
        const codes = font.codes ?? letters;
        const png = path.join(output, `${font.name}.png`);
        const pen = JSON.parse(execFileSync(sheet, [file, font.family, size, cell, png, ...codes].map(String)));
        let documents = null;
        if (font.documents) {
            const [units, found] = svgDocuments(file, codes);
            documents = found.map(([glyph, text]) => glyphAlone(text, glyph, units, pen));
        }
        const ours = decode(fs.readFileSync(png));
        await page.setContent(`<canvas width="${ours.width}" height="${ours.height}"></canvas>`);
        const theirs = Buffer.from(await page.evaluate(draw, { font: fs.readFileSync(file, "base64"), codes, cell, size, pen, documents,
            places: codes.map((_, i) => place(i)) }), "base64");
        const picture = decode(theirs);
        const results = codes.map((code, i) => ({ code, ...difference(ours, picture, cell, cell, place(i), place(i), 128) }));
        const limits = { mean: font.mean ?? 3, share: font.share ?? 0.02 };
        const bad = results.filter((r) => r.mean > limits.mean || r.off > limits.share ||
            (r.inked === 0) !== (font.empty ?? []).includes(font.names?.[r.code - 0x100]));
        const worst = (key) => Math.max(...results.map((r) => r[key]));
        console.log(`${font.name}: ${results.length} characters, worst mean difference ` +
            `${worst("mean").toFixed(2)} (at most ${limits.mean}), worst share beyond 32 levels ` +
            `${(worst("off") * 100).toFixed(2)} % (at most ${limits.share * 100} %)`);
        fs.writeFileSync(path.join(output, `${font.name}-chromium.png`), theirs);
        if (bad.length === 0) continue;
        ++failed;
        console.log("  disagree: " + bad.map((r) =>
            `${font.names?.[r.code - 0x100] ?? r.code} (${r.mean.toFixed(2)}, ${(r.off * 100).toFixed(1)} %, ${r.inked} inked)`).join("; "));
    }
} finally {
    await browser.close();
}
process.exit(failed ? 1 : 0);
