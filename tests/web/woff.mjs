// What the browser does not tell about a font: its tables. Reads WOFF 1.0, whose tables are compressed one by one.
import zlib from "node:zlib";

export function readTables(bytes) {
    if (bytes.toString("latin1", 0, 4) !== "wOFF") throw new Error("not a WOFF file");
    const tables = new Map();
    for (let i = 0; i < bytes.readUInt16BE(12); ++i) {
        const entry = 44 + i * 20;
        const offset = bytes.readUInt32BE(entry + 4);
        const packed = bytes.subarray(offset, offset + bytes.readUInt32BE(entry + 8));
        const length = bytes.readUInt32BE(entry + 12);
        tables.set(bytes.toString("latin1", entry, entry + 4), packed.length < length ? zlib.inflateSync(packed) : packed);
    }
    return tables;
}

// The glyph of a character, from a cmap subtable of format 4; 0 if there is none.
export function glyphOf(tables, code) {
    const cmap = tables.get("cmap");
    for (let i = 0; i < cmap.readUInt16BE(2); ++i) {
        const at = cmap.readUInt32BE(4 + i * 8 + 4);
        if (cmap.readUInt16BE(at) !== 4) continue;
        const segments = cmap.readUInt16BE(at + 6) / 2;
        for (let s = 0; s < segments; ++s) {
            const end = cmap.readUInt16BE(at + 14 + s * 2);
            const start = cmap.readUInt16BE(at + 16 + segments * 2 + s * 2);
            if (code > end || code < start) continue;
            const delta = cmap.readUInt16BE(at + 16 + segments * 4 + s * 2);
            const rangeAt = at + 16 + segments * 6 + s * 2;
            const range = cmap.readUInt16BE(rangeAt);
            if (range === 0) return (code + delta) & 0xffff;
            const glyph = cmap.readUInt16BE(rangeAt + range + (code - start) * 2);
            return glyph === 0 ? 0 : (glyph + delta) & 0xffff;
        }
    }
    return 0;
}

// The SVG document that serves a glyph, as text.
export function svgDocument(tables, glyph) {
    const svg = tables.get("SVG ");
    const list = svg.readUInt32BE(2);
    for (let i = 0; i < svg.readUInt16BE(list); ++i) {
        const record = list + 2 + i * 12;
        if (glyph < svg.readUInt16BE(record) || glyph > svg.readUInt16BE(record + 2)) continue;
        const offset = list + svg.readUInt32BE(record + 4);
        const bytes = svg.subarray(offset, offset + svg.readUInt32BE(record + 8));
        return (bytes[0] === 0x1f && bytes[1] === 0x8b ? zlib.gunzipSync(bytes) : bytes).toString();
    }
    return null;
}

export function unitsPerEm(tables) {
    return tables.get("head").readUInt16BE(18);
}
