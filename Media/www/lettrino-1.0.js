/* Lettrino 1.0 run-time: draws the text of a page with a colour font.

   LT_ToColourFont(element, font)  element: a jQuery object; font: the array of an exported script
   LT_Resize(element, font)        the same after a change of the window

   The script's numbers and the font's picture become a font file, put together here, whose glyphs are pictures. The
   browser then draws the page's own text with it: the page's elements stay as they are, and breaking, selecting,
   printing, typing and whatever the page changes later are the browser's business.

   Where a script may not read pixels (pages opened as files, browsers that hide them) the font file holds the widths
   alone, and cuttings of the picture lie above each letter: see "Without pixels". */
(function () {
'use strict';

const CAP_SHARE = 0.7;   // of the font size is the height of capitals
const SPACE = 32;
const NO_BREAK_SPACE = 160;
const pairOf = (left, right) => left * 65536 + right;
const UNITS = [SPACE, 48, NO_BREAK_SPACE];   // by whose widths browsers measure tabs, "ch" and the like

// ---------------------------------------------------------------------------------------------------------------------
// Bytes, as font files have them: the highest first.

class Bytes {
    constructor() {
        this.view = new DataView(new ArrayBuffer(1024));
        this.length = 0;
    }
    take(count) {
        const at = this.length;
        this.length += count;
        if (this.length > this.view.byteLength) {
            const larger = new Uint8Array(2 * this.length);
            larger.set(new Uint8Array(this.view.buffer, 0, at));
            this.view = new DataView(larger.buffer);
        }
        return at;
    }
    put(size, values) {
        for (const value of values) {
            const at = this.take(size);
            if (size === 1) this.view.setUint8(at, value);
            else if (size === 2) this.view.setUint16(at, value);   // of what is below 0, its two's complement
            else this.view.setUint32(at, value);
        }
        return this;
    }
    u8(...values) { return this.put(1, values); }
    u16(...values) { return this.put(2, values); }
    u32(...values) { return this.put(4, values); }
    text(ascii) { for (const c of ascii) this.u8(c.charCodeAt(0)); return this; }
    zeros(count) { this.take(count); return this; }
    align() { return this.zeros(-this.length & 3); }
    add(more) {
        const bytes = more instanceof Bytes ? more.all() : more;
        const at = this.take(bytes.length);
        new Uint8Array(this.view.buffer).set(bytes, at);
        return this;
    }
    all() { return new Uint8Array(this.view.buffer, 0, this.length); }
}

// ---------------------------------------------------------------------------------------------------------------------
// The font file (OpenType 1.9). `face` is {unit, ppem, zoom, ascent, descent, cap, glyphs, amounts}, in pixels of the
// font. A pixel is `unit` units; pictures have `zoom` of their own pixels for one; glyphs[0] stands for what is missing.
// Of an `exact` face the advances stand where no browser rounds them, but for those of UNITS, which have a twin for
// drawing.

function sumOf(bytes) {
    const view = new DataView(bytes.buffer, bytes.byteOffset);
    let sum = 0;
    for (let at = 0; at < bytes.length; at += 4) sum = sum + view.getUint32(at) | 0;
    return sum;
}

function assemble(tables) {
    const tags = Object.keys(tables).sort();
    const power = 31 - Math.clz32(tags.length);   // what a binary search begins with
    const file = new Bytes().u32(0x00010000).u16(tags.length, 16 << power, power, 16 * tags.length - (16 << power));
    let place = 12 + 16 * tags.length;
    for (const tag of tags) {
        const length = tables[tag].length;
        file.text(tag).u32(sumOf(tables[tag].align().all()), place, length);
        place += tables[tag].length;
    }
    const head = file.length + tags.slice(0, tags.indexOf('head')).reduce((sum, tag) => sum + tables[tag].length, 0);
    for (const tag of tags) file.add(tables[tag]);
    file.view.setUint32(head + 8, 0xB1B0AFBA - sumOf(file.all()));   // checkSumAdjustment
    return file.all();
}

function metricTables(face) {
    const {unit, glyphs} = face;
    const upem = unit * face.ppem;
    const part = (share) => Math.round(upem * share);
    const ascent = Math.max(face.ascent, 0) * unit;
    const descent = Math.max(face.descent, 0) * unit;
    const boxes = glyphs.filter((glyph) => glyph.box).map((glyph) => glyph.box);
    const most = (list) => Math.max(0, ...list);
    const bounds = [-most(boxes.map((b) => -b.left)), -most(boxes.map((b) => -b.bottom)), most(boxes.map((b) => b.left + b.width)),
        most(boxes.map((b) => b.bottom + b.height))].map((edge) => edge * unit);
    const widest = most(glyphs.map((glyph) => glyph.advance)) * unit;
    const x = glyphs.find((glyph) => glyph.code === 120 && glyph.box);
    const xHeight = (x ? x.box.bottom + x.box.height : face.cap * CAP_SHARE) * unit;
    const codes = glyphs.slice(1).map((glyph) => glyph.code);
    const hmtx = new Bytes();
    for (const glyph of glyphs) hmtx.u16(isPlaced(face, glyph) ? 0 : glyph.advance * unit, glyph.box ? glyph.box.left * unit : 0);
    return {
        head: new Bytes().u32(0x00010000, 0x00010000, 0, 0x5F0F3CF5).u16(3, upem).zeros(16).u16(...bounds, 0, 8, 2, 1, 0),
        hhea: new Bytes().u32(0x00010000).u16(ascent, -descent, 0, widest, bounds[0], 0, bounds[2], 1).zeros(14).u16(glyphs.length),
        maxp: new Bytes().u32(0x00010000).u16(glyphs.length, 4, 1, 0, 0, 2).zeros(16),
        hmtx,
        'OS/2': new Bytes().u16(4, part(0.5), 400, 5, 0, part(0.65), part(0.6), 0, part(0.075), part(0.65), part(0.6), 0, part(0.35),
            part(0.05), part(0.25)).zeros(12).u32(3, 0, 0, 0).text('NONE').u16(0xC0, codes[0], codes[codes.length - 1],
            ascent, -descent, 0, ascent, descent).u32(1, 0).u16(xHeight, Math.max(face.cap, 0) * unit, 0, SPACE, 2),
        post: new Bytes().u32(0x00030000, 0).u16(part(-0.1), part(0.05)).zeros(20),
        name: nameTable('ColourFont')
    };
}

function nameTable(family) {
    const ids = [1, 4, 6];
    const table = new Bytes().u16(0, ids.length, 6 + 12 * ids.length);
    for (const id of ids) table.u16(3, 1, 0x409, id, 2 * family.length, 0);   // all three at the same place
    for (const c of family) table.u16(c.charCodeAt(0));
    return table;
}

// Format 4, each character a segment.
function cmapTable(glyphs) {
    const segments = glyphs.map((glyph, i) => [glyph.code, i - glyph.code]).filter((_, i) => i && !glyphs[i].twin).concat([[0xFFFF, 1]]);
    const codes = segments.map((segment) => segment[0]);
    const count = segments.length;
    const power = 31 - Math.clz32(count);
    return new Bytes().u16(0, 1, 3, 1).u32(12).u16(4, 16 + 8 * count, 0, 2 * count, 2 << power, power, 2 * count - (2 << power))
        .u16(...codes, 0, ...codes, ...segments.map((segment) => segment[1])).zeros(2 * count);
}

// Each outline is the rectangle of the glyph's picture: renderers place and bound pictures by it.
function outlineTables(face) {
    const glyf = new Bytes();
    const loca = new Bytes();
    for (const glyph of face.glyphs) {
        loca.u32(glyf.length);
        if (!glyph.box) continue;
        const [x, y, w, h] = [glyph.box.left, glyph.box.bottom, glyph.box.width, glyph.box.height].map((v) => v * face.unit);
        glyf.u16(1, x, y, x + w, y + h, 3, 0).u8(1, 1, 1, 1).u16(x, 0, w, 0, y, h, 0, -h).align();
    }
    loca.u32(glyf.length);
    return {glyf, loca};
}

// Pair positioning by classes, each glyph one: the distances stand in a table of left by right. Its offsets have 16
// bits, so there are several subtables of it, each behind an extension that leads to it by 32.
function pairLookup(face) {
    const LEFTS = 64;
    const count = face.glyphs.length;
    const subtables = [];
    for (let first = 1; first < count; first += LEFTS) {
        const lefts = face.glyphs.slice(first, first + LEFTS);
        const end = 16 + 2 * lefts.length * count;
        const table = new Bytes().u16(2, end, 4, 0, end + 10, end + 16 + 2 * lefts.length, lefts.length, count);
        for (const left of lefts) {
            for (const right of face.glyphs) table.u16((face.amounts.get(pairOf(left.code, right.code)) || 0) * face.unit);
        }
        table.u16(2, 1, first, first + lefts.length - 1, 0);
        table.u16(1, first, lefts.length, ...lefts.keys());
        table.u16(1, 0, count, ...face.glyphs.keys());
        subtables.push(table);
    }
    const lookup = new Bytes().u16(9, 0, subtables.length, ...subtables.map((_, i) => 6 + 2 * subtables.length + 8 * i));
    let place = 6 + 10 * subtables.length;
    subtables.forEach((table, i) => {
        lookup.u16(1, 2).u32(place - (6 + 2 * subtables.length + 8 * i));
        place += table.length;
    });
    subtables.forEach((table) => lookup.add(table));
    return lookup;
}

// Advances that hmtx has no room for, as they are below 0, or none precise enough, as the browser rounds what is there.
const isPlaced = (face, glyph) => glyph.advance < 0 || (face.exact && (glyph.twin || !UNITS.includes(glyph.code)));

function advanceLookup(face, placed) {
    const lookup = new Bytes().u16(1, 0, 1, 8, 2, 8 + 2 * placed.length, 4, placed.length);
    for (const i of placed) lookup.u16(face.glyphs[i].advance * face.unit);
    return lookup.u16(1, placed.length, ...placed);
}

function twinLookup({glyphs}) {
    const twins = [...glyphs.keys()].filter((i) => glyphs[i].twin);
    const own = twins.map((twin) => glyphs.findIndex((glyph) => glyph.code === glyphs[twin].code));
    return new Bytes().u16(1, 0, 1, 8, 2, 6 + 2 * twins.length, twins.length, ...twins, 1, own.length, ...own);
}

// GPOS or GSUB of features with one lookup each; the tags in their order.
function layoutTable(features) {
    const count = features.length;
    const scripts = ['DFLT', 'hebr'];   // shapers of Hebrew pass over a GPOS that doesn't name it
    const language = 2 + 6 * scripts.length;   // is one for both
    const featureList = 10 + language + 10 + 2 * count;
    const lookupList = featureList + 2 + 12 * count;
    const table = new Bytes().u16(1, 0, 10, featureList, lookupList);
    table.u16(scripts.length);
    scripts.forEach((script) => table.text(script).u16(language));
    table.u16(4, 0, 0, 0xFFFF, count, ...features.keys());
    table.u16(count);
    features.forEach(([tag], i) => table.text(tag).u16(2 + 6 * count + 6 * i));
    features.forEach((_, i) => table.u16(0, 1, i));
    table.u16(count);
    let place = 2 + 2 * count;
    for (const [, lookup] of features) {
        table.u16(place);
        place += lookup.length;
    }
    for (const [, lookup] of features) table.add(lookup);
    return table;
}

function layoutTables(face) {
    const placed = [...face.glyphs.keys()].filter((i) => i && isPlaced(face, face.glyphs[i]));
    const features = [];
    if (placed.length) features.push(['dist', advanceLookup(face, placed)]);   // whatever the page says of kerning
    if (face.amounts.size) features.push(['kern', pairLookup(face)]);
    const tables = {};
    if (features.length) tables.GPOS = layoutTable(features);
    if (face.exact) tables.GSUB = layoutTable([['ccmp', twinLookup(face)]]);
    return tables;
}

// The same PNG files in the two tables that between them all browsers draw: Firefox the second, the others the first.
function sbixTable(face) {
    const {glyphs} = face;
    const table = new Bytes().u16(1, 1).u32(1, 12).u16(face.ppem * face.zoom, 72);
    const offsets = table.take(4 * (glyphs.length + 1));
    glyphs.forEach((glyph, i) => {
        table.view.setUint32(offsets + 4 * i, table.length - 12);
        if (glyph.png) table.u32(0).text('png ').add(Uint8Array.from(atob(glyph.png), (c) => c.charCodeAt(0)));
    });
    table.view.setUint32(offsets + 4 * glyphs.length, table.length - 12);
    return table;
}

function svgTable(face) {
    const drawn = [...face.glyphs.keys()].filter((i) => face.glyphs[i].png);
    const documents = drawn.map((i) => {
        const {box, png} = face.glyphs[i];
        const attributes = Object.entries({x: box.left, y: -box.bottom - box.height, width: box.width, height: box.height})
            .map(([name, pixels]) => ` ${name}="${pixels * face.unit}"`).join('');
        return `<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink"><g id="glyph${i}">` +
            `<image preserveAspectRatio="none"${attributes} xlink:href="data:image/png;base64,${png}"/></g></svg>`;
    });
    const table = new Bytes().u16(0).u32(10, 0).u16(drawn.length);
    let place = 2 + 12 * drawn.length;
    drawn.forEach((glyph, i) => {
        table.u16(glyph, glyph).u32(place, documents[i].length);
        place += documents[i].length;
    });
    const encoder = new TextEncoder();
    for (const text of documents) table.add(encoder.encode(text));
    return table;
}

function fontFile(face) {
    const tables = Object.assign(metricTables(face), outlineTables(face), layoutTables(face), {cmap: cmapTable(face.glyphs)});
    if (face.glyphs.some((glyph) => glyph.png)) Object.assign(tables, {sbix: sbixTable(face), 'SVG ': svgTable(face)});
    return assemble(tables);
}

// ---------------------------------------------------------------------------------------------------------------------
// From the script's array and the picture to a font file's `face`.

// What is drawn must be what is read: some browsers give a script noise instead.
function readsTrue(context) {
    context.canvas.width = context.canvas.height = 16;
    const colours = Array.from({length: 16}, (_, i) => [16 * i, 255 - 16 * i, (40 * i) % 256]);
    colours.forEach((rgb, i) => {
        context.fillStyle = `rgb(${rgb})`;
        context.fillRect(i, 0, 1, 16);
    });
    const {data} = context.getImageData(0, 0, 16, 16);
    return data.every((value, at) => at % 4 === 3 || Math.abs(value - colours[(at >> 2) % 16][at % 4]) < 8);
}

// The part with ink, its edges in whole pixels of the font; null without ink.
function inkOf({data, width, height}, zoom) {
    let [left, top, right, bottom] = [width, height, 0, 0];
    for (let y = 0, at = 3; y < height; ++y) {
        for (let x = 0; x < width; ++x, at += 4) {
            if (!data[at]) continue;
            if (x < left) left = x;
            if (x >= right) right = x + 1;
            if (y < top) top = y;
            bottom = y + 1;
        }
    }
    if (!right) return null;
    const [x, y] = [Math.floor(left / zoom), Math.floor(top / zoom)];
    return {x, y, width: Math.ceil(right / zoom) - x, height: Math.ceil(bottom / zoom) - y};
}

// Cuts each glyph once into a picture of its own. False where the pixels may not be read.
function cut(face, source, image) {
    const context = document.createElement('canvas').getContext('2d', {willReadFrequently: true});
    const [scaleX, scaleY] = [image.naturalWidth / source.Resolution[0], image.naturalHeight / source.Resolution[1]];
    face.zoom = Math.max(Math.round(scaleX), 1);   // the page's maker may have put a larger picture there
    const zoom = face.zoom;
    try {
        if (!readsTrue(context)) return false;
        for (const glyph of face.glyphs) {
            if (!(glyph.width > 0 && glyph.height > 0)) continue;
            const [width, height] = [glyph.width * zoom, glyph.height * zoom];
            Object.assign(context.canvas, {width, height});
            context.drawImage(image, glyph.x * scaleX, glyph.y * scaleY, glyph.width * scaleX, glyph.height * scaleY, 0, 0, width, height);
            const pixels = context.getImageData(0, 0, width, height);
            const ink = inkOf(pixels, zoom);
            if (!ink) continue;
            Object.assign(context.canvas, {width: ink.width * zoom, height: ink.height * zoom});
            context.putImageData(pixels, -ink.x * zoom, -ink.y * zoom);
            glyph.png = context.canvas.toDataURL('image/png').slice('data:image/png;base64,'.length);
            glyph.box = {left: glyph.before + ink.x, bottom: face.ascent - ink.y - ink.height, width: ink.width, height: ink.height};
        }
        return true;
    } catch (error) {
        if (error.name !== 'SecurityError') throw error;
        return false;
    }
}

function describe(source) {
    const height = source.GlyphHeight[0];
    const baseline = source.Baseline[0];
    const cap = source.CapHeight[0];
    const glyphs = new Map();   // the first of each character counts
    for (const [code, x, y, width, rows, before, after] of source.Glyph) {
        if (code <= SPACE || code >= 0xFFFE || glyphs.has(code) || (code >= 0xD800 && code < 0xE000)) continue;
        glyphs.set(code, {code, x, y, width, height: rows, before, advance: before + width + after});
    }
    for (const code of [SPACE, NO_BREAK_SPACE]) if (!glyphs.has(code)) glyphs.set(code, {code, advance: source.SpaceWidth});
    const amounts = new Map();
    source.Kerning.forEach(([left, right, amount]) => {   // passes over the stray first element
        const pair = pairOf(left, right);
        if (!amounts.has(pair)) amounts.set(pair, amount);
    });
    const size = cap > 0 ? cap / CAP_SHARE : height;   // at which the font stands at its own size
    const ppem = Math.max(Math.round(size), 1);
    const listed = [...glyphs.values()].sort((a, b) => a.code - b.code);
    const farthest = Math.max(...listed.map((g) => Math.abs(g.before || 0) + (g.width || 0)), ...listed.map((g) => Math.abs(g.advance)),
        ...listed.map((g) => g.height || 0), 1) + Math.abs(baseline) + Math.abs(height);
    return {
        ppem, size, cap, zoom: 1, ascent: height - baseline, descent: baseline, amounts,
        unit: Math.min(Math.floor(16384 / ppem), Math.floor(32767 / farthest)),
        glyphs: [{code: 0, advance: 0, box: {left: 0, bottom: 0, width: 1, height: 1}}].concat(listed)
    };
}

// ---------------------------------------------------------------------------------------------------------------------
// Fonts and where they are used.

const fonts = new Map();        // the script's array: its font
const families = new Map();     // font-family as the browser tells it: its font
const given = new WeakMap();    // element of another family that was passed to LT_ToColourFont: its font
let density = window.devicePixelRatio;   // of the screen that widths were last measured on

function prepare(source) {
    let font = fonts.get(source);
    if (font) return font;
    font = {source, name: 'LT_Font' + fonts.size, face: describe(source), names: new Set(), faces: [], waiting: [],
        ready: false, whole: false};
    fonts.set(source, font);
    const fail = (reason) => console.error('Lettrino: ' + source.Bitmap + ' ' + reason + '; its text stays plain.');
    if (font.face.unit < 1) {
        fail('has glyphs too large for a font file');
        return font;
    }
    const image = new Image();
    image.onload = () => finish(font, image).catch((error) => fail('is no picture of a font (' + error + ')'));
    image.onerror = () => {
        if (!image.crossOrigin) return fail('can\'t be loaded');
        image.crossOrigin = null;   // shown all the same, but not read
        image.src = source.Bitmap;
    };
    const {protocol, origin} = new URL(source.Bitmap, document.baseURI);
    if (/^http/.test(protocol) && origin !== location.origin) image.crossOrigin = 'anonymous';
    image.src = source.Bitmap;
    return font;
}

async function finish(font, image) {
    const start = performance.now();
    font.whole = cut(font.face, font.source, image);
    if (!font.whole) addCuttings(font);
    await load(font);
    performance.measure('LT_Draw', {start});   // on the page's time line
    font.ready = true;
    if (!font.whole) follow();
    quietly(() => font.waiting.splice(0).forEach(apply));
}

async function load(font) {
    if (font.whole && !font.face.exact && await roundsWidths(font)) {
        const twins = font.face.glyphs.filter((glyph) => UNITS.includes(glyph.code))
            .map((glyph) => Object.assign({}, glyph, {twin: true}));
        Object.assign(font.face, {exact: true, glyphs: font.face.glyphs.concat(twins)});
    }
    font.file = fontFile(font.face);
    const old = font.faces;
    font.faces = await Promise.all([...font.names].map((name) => addFace(font, name)));
    old.forEach((face) => document.fonts.delete(face));
}

// Of all weights and slants, so that the browser makes nothing bold or oblique. The strike's size is a whole number; the
// size at which capitals have their share is not, and the rest is the browser's to adjust.
async function addFace({face, file}, name) {
    const added = new FontFace(name, file, {weight: '1 1000', stretch: '50% 200%', style: 'oblique -90deg 90deg',
        sizeAdjust: face.ppem / face.size * 100 + '%'});
    await added.load();
    document.fonts.add(added);
    return added;
}

// Chromium gives letters of pictures whole pixels of width on screens of ordinary density. Tried with one letter.
async function roundsWidths({face, name}) {
    const letter = face.glyphs.find((glyph) => glyph.png && glyph.advance > 0);
    if (!letter) return false;
    const few = Object.assign({}, face, {glyphs: [face.glyphs[0], letter], amounts: new Map()});
    const trial = await addFace({face, file: fontFile(few)}, name);
    const scale = 9.4 / letter.advance;   // to a width that is far from whole
    const box = document.createElement('span');
    box.textContent = String.fromCharCode(letter.code);
    box.style.cssText = 'position:absolute;visibility:hidden;white-space:pre;letter-spacing:0;text-transform:none;' +
        `text-rendering:auto;font:${face.size * scale}px ${name}`;
    document.documentElement.append(box);
    const rounds = Math.abs(box.getBoundingClientRect().width - 9.4) > 0.25;
    box.remove();
    document.fonts.delete(trial);
    return rounds;
}

// A name under which the page asks for the font.
function claim(font, name) {
    if (font.names.has(name)) return;
    font.names.add(name);
    if (font.file) addFace(font, name).then((face) => font.faces.push(face));
}

// The name that an exported script has for its array is the family; of a script that was packed with others, the
// picture's name tells.
function isNameOf(family, source) {
    return (Object.prototype.hasOwnProperty.call(window, family) && window[family] === source) ||
        family === source.Bitmap.replace(/^.*\//, '').replace(/\.[^.]*$/, '');
}

function use(elements, source) {
    const font = prepare(source);
    for (const element of elements.nodeType ? [elements] : Array.from(elements)) {
        if (element.nodeType !== Node.ELEMENT_NODE) continue;
        const family = getComputedStyle(element).fontFamily;
        if (isNameOf(family, source)) {
            families.set(family, font);
            claim(font, font.codes ? font.name : family);
        } else if (!given.has(element)) {
            given.set(element, font);
            claim(font, font.name);
        }
        if (font.ready) quietly(() => apply(element));
        else font.waiting.push(element);
    }
}

function apply(element) {
    if (/^lt-/.test(element.localName)) return;
    const css = getComputedStyle(element);
    const font = given.get(element) || families.get(css.fontFamily);
    if (font && font.whole) {
        if (font.ready && given.has(element) && !element.style.fontFamily.startsWith(font.name)) {
            element.style.fontFamily = font.name + ', ' + css.fontFamily;
        }
    } else if (!font || font.ready) {
        drawApart(element, font, css);
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Without pixels. The page's texts stay where they are, but empty; after each stands the same text, its letters with
// cuttings of the picture above them. The font file, which has widths and no ink, keeps the lines as they shall be.

const drawn = new WeakMap();   // text of the page: {text, box}
const texts = new WeakMap();   // box: text of the page
const LETTERS = /\P{M}\p{M}*|\p{M}+/gu;   // with their marks
// Numbers as Unicode's bidirectional algorithm keeps them together (W4, W5) after letters that run from right to left,
// which cuttings between the figures prevent.
const NUMBERS = /([#$%\xA2-\xA5\xB0\xB1]*\d+(?:[.,:/+\xA0-]\d+)*[#$%\xA2-\xA5\xB0\xB1]*)/;
const RIGHT_TO_LEFT = /[\u0590-\u08FF\uFB1D-\uFDFF\uFE70-\uFEFC]/;
const PLAIN = /^(script|style|noscript|template|title|head|textarea|input|select|option|canvas)$/;

function addCuttings(font) {
    const {source, face, name} = font;
    const em = (pixels) => pixels / face.size + 'em';
    const url = new URL(source.Bitmap, document.baseURI).href.replace(/"/g, '%22');
    // The font file has no ink for a hyphen at the end of a line; the page's own font gives one of another code.
    const rules = ['lt-text{text-transform:none;font-variant-caps:normal;text-rendering:geometricPrecision;font-kerning:none;' +
        'hyphenate-character:"\\2010"}',
        'lt-n>lt-n{direction:ltr;unicode-bidi:isolate}:not(lt-n)>lt-n::before,:not(lt-n)>lt-n::after{content:"\\200F"}',
        'lt-c{position:relative;white-space:nowrap}',
        `.${name} lt-c::before{content:"";position:absolute;top:0;pointer-events:none;background-image:url("${url}");` +
        `background-size:${em(source.Resolution[0])} ${em(source.Resolution[1])};` +
        '-webkit-print-color-adjust:exact;print-color-adjust:exact}'];
    for (const glyph of face.glyphs) {
        if (!(glyph.width > 0 && glyph.height > 0)) continue;
        rules.push(`.${name} .g${glyph.code}::before{left:${em(glyph.before)};width:${em(glyph.width)};height:${em(glyph.height)};` +
            `background-position:${em(-glyph.x)} ${em(-glyph.y)}}`);
    }
    for (const glyph of face.glyphs) {
        if (glyph.advance >= 0) continue;
        rules.push(`.${name} .g${glyph.code}{margin-right:${em(glyph.advance)}}`);   // no element is narrower than nothing
        glyph.advance = 0;
    }
    font.codes = new Set(face.glyphs.slice(1).map((glyph) => glyph.code));
    if (source.SpaceWidth >= 0) font.codes.delete(SPACE);   // lines break at blanks that are no elements
    font.names = new Set([name]);   // under its own name letters without cuttings would vanish
    document.head.appendChild(document.createElement('style')).append(rules.join('\n'));
}

const observer = new MutationObserver((records) => quietly(() => followUp(records)));

function follow() {
    observer.observe(document, {subtree: true, childList: true, characterData: true, attributes: true,
        attributeFilter: ['class', 'style']});
    document.addEventListener('load', ({target}) => { if (isStyleSheet(target)) quietly(() => applyBelow(document.documentElement)); }, true);
}

const isStyleSheet = (node) => /^(style|link)$/.test(node.localName);

function applyBelow(element) {
    apply(element);
    element.querySelectorAll('*').forEach(apply);
}

// Does work that the observer is not to hear of, after all that the page did before it.
function quietly(work) {
    followUp(observer.takeRecords());
    work();
    observer.takeRecords();
}

function followUp(records) {
    const changed = new Set();
    for (const {type, target, addedNodes, removedNodes} of records) {
        if (type === 'characterData') forget(target, false);   // what the page wrote is what counts, also if it is empty
        for (const node of removedNodes) forget(node, true);
        changed.add(type === 'characterData' ? target.parentElement : target);
        if ([...addedNodes, ...removedNodes].some(isStyleSheet)) changed.add(document.documentElement);
    }
    for (const node of changed) {
        if (!node || !node.isConnected || node.nodeType !== Node.ELEMENT_NODE) continue;
        applyBelow(node);
    }
}

function transformed(text, how) {
    if (how === 'uppercase') return text.toUpperCase();
    if (how === 'lowercase') return text.toLowerCase();
    if (how === 'capitalize') return text.replace(/(^|\s)\S/g, (c) => c.toUpperCase());
    return text;
}

function drawApart(element, font, css) {
    const plain = !font || PLAIN.test(element.localName) || element.isContentEditable || !(element instanceof HTMLElement) ||
        css.writingMode !== 'horizontal-tb';
    for (const node of [...element.childNodes]) {
        if (node.nodeType !== Node.TEXT_NODE) continue;
        const now = drawn.get(node);
        if (now && (plain || now.transform !== css.textTransform || now.font !== font)) forget(node, true);
        if (!plain && (node.data.trim() || isBlankBetween(node))) drawText(node, font, css);
    }
}

const isInline = (node) => node && (node.nodeType === Node.TEXT_NODE ||
    (node.nodeType === Node.ELEMENT_NODE && getComputedStyle(node).display === 'inline'));

// And not one that stands between blocks to order the source.
const isBlankBetween = (node) => Boolean(node.data) && isInline(node.previousSibling) && isInline(node.nextSibling);

// The last one before a text in its block, also in another element; empty where a line begins.
function characterBefore(node) {
    let at = node;
    for (;;) {
        while (!at.previousSibling) {
            at = at.parentElement;
            if (!at || getComputedStyle(at).display !== 'inline') return '';
        }
        at = at.previousSibling;
        while (at.lastChild && getComputedStyle(at).display === 'inline') at = at.lastChild;
        if (at.nodeType === Node.TEXT_NODE && at.data) return at.data.slice(-1);
        if (at.nodeType === Node.ELEMENT_NODE && (at.localName === 'br' || getComputedStyle(at).display !== 'inline')) return '';
    }
}

// Each character alone, or with the marks that it is one with.
const lettersOf = (text) => (text.match(LETTERS) || []).flatMap((one) => (one.normalize('NFC').length === 1 ? [one] : [...one]));

function drawText(node, font, css) {
    const box = document.createElement('lt-text');
    box.className = font.name;
    box.style.fontFamily = font.name + ', ' + css.fontFamily;
    const text = transformed(node.data, css.textTransform);
    let rightToLeft = css.direction === 'rtl' && !/override/.test(css.unicodeBidi);   // how the last letter runs
    let before = characterBefore(node).charCodeAt(0);
    let last = null;
    text.split(NUMBERS).forEach((piece, i) => {
        const into = i % 2 && rightToLeft ? box.appendChild(document.createElement('lt-n')).appendChild(document.createElement('lt-n')) : box;
        for (const character of lettersOf(piece)) {
            const composed = character.normalize('NFC');
            const code = composed.charCodeAt(0);
            if (composed.length > 1 || !font.codes.has(code)) {
                if (into.lastChild && into.lastChild.nodeType === Node.TEXT_NODE) into.lastChild.data += character;
                else into.append(character);
                before = 0;
                last = null;
                continue;
            }
            const letter = into.appendChild(document.createElement('lt-c'));
            letter.className = 'g' + code;
            letter.textContent = character;
            // Browsers don't kern across elements. The room is taken at the end of a letter, as any other may begin a line.
            const amount = font.face.amounts.get(pairOf(before, code));
            if (amount && last) last.style.marginRight = amount / font.face.size + 'em';
            else if (amount) letter.style.marginLeft = amount / font.face.size + 'em';
            last = letter;
            // Not every browser breaks after a hyphen across elements; none does before a digit.
            if (before === 45 && !/\d/.test(character)) letter.before(document.createElement('wbr'));
            before = code;
        }
        const strong = piece.match(/\p{L}/gu);
        if (strong) rightToLeft = RIGHT_TO_LEFT.test(strong.pop());
    });
    drawn.set(node, {text: node.data, box, font, transform: css.textTransform});
    texts.set(box, node);
    node.after(box);
    node.data = '';
}

// The box of a text goes, or the one whose text is `node`; an emptied text comes back if it shall be restored.
function forget(node, restore) {
    const text = texts.get(node) || node;
    const state = drawn.get(text);
    if (!state) return;
    drawn.delete(text);
    state.box.remove();
    if (restore && !text.data) text.data = state.text;
}

// ---------------------------------------------------------------------------------------------------------------------

// What an exported script needs of jQuery, on pages without it.
if (!window.$) {
    window.$ = (what) => {
        const list = typeof what === 'string' ? Array.from(document.querySelectorAll(what)) : [what];
        return Object.assign(list, {
            ready(work) {
                if (document.readyState === 'loading') document.addEventListener('DOMContentLoaded', work);
                else setTimeout(work);
            },
            resize(work) { window.addEventListener('resize', work); },
            each(work) { list.forEach((one, i) => work.call(one, i, one)); },
            css(name) { return getComputedStyle(list[0]).getPropertyValue(name); }
        });
    };
}

window.LT_ToColourFont = use;

// Sizes follow by themselves; a window that moved to another screen may need other widths.
window.LT_Resize = (elements, source) => {
    use(elements, source);
    if (density === window.devicePixelRatio) return;
    density = window.devicePixelRatio;
    fonts.forEach((font) => { if (font.ready && font.whole && !font.face.exact) load(font); });
};
})();
