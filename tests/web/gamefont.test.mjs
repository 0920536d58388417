// Exported game fonts in the engines that read them: the same line as lettrino-cli sets it, to within two levels of
// every channel of every pixel. And each trap that a reader lays: without what the export does about it the real
// reader fails or draws wrong.
import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import parseAscii from 'parse-bmfont-ascii';
import parseBinary from 'parse-bmfont-binary';
import { keep, Site } from './browser.mjs';
import { godot, ground, line, love, phaser, pixi, snippet } from './consumers.mjs';
import { decode, difference, encode, made, pictureSteps } from './pictures.mjs';

const site = new Site();
const inFolder = (name) => join(site.folder, name);
const read = (name, encoding) => readFileSync(inFolder(name), encoding);
const tolerance = 2;

// A family in one colour with thousands of pairs; and pictures, some of them transparent, that stand into one
// another and have codes up to U+3042.
const fonts = {
    plain: { text: line, size: 64, open: ['--open', 'plain.sm'] },
    pictures: { text: 'Ab \u0416\u20AC\u3042bA', size: 48, open: ['--open', 'pictures.sm'] },
};

before(async () => {
    await site.open();
    site.cli('--family', 'DejaVu Sans', '--weight', '700', '--height', '64', '--colour', 'F0C060', '--select', 'all', '--generate', '--kern', '--save', 'plain.sm');
    const steps = pictureSteps(site.folder, (i) => 28 + 5 * i,
        [['A', '3,-9'], ['b', '-4,2'], ['U+0416', '-7,-3'], ['U+20AC', '0,-12'], ['U+3042', '-5,4']]);
    site.cli(...steps, '--set-kerning', 'b,U+0416,-6', '--set-kerning', 'U+0416,U+20AC,5', '--set-kerning', 'U+20AC,U+3042,-11', '--save', 'pictures.sm');
    for (const font of Object.values(fonts)) {
        site.cli(...font.open, '--background', '203040', '--text', font.text, 'line.png');
        font.line = decode(read('line.png'));
        const { data, width, height } = font.line;
        assert.ok(width > 100 && height > 40);
        font.shown = made(800, 200, (x, y) => {
            const at = ((y - 20) * width + x - 20) * 4;
            return x >= 20 && x < 20 + width && y >= 20 && y < 20 + height ? data.subarray(at, at + 4) : [...ground, 255];
        });
    }
});
after(() => site.close());

const exported = (font, engine, form, file, ...more) => {
    site.cli(...fonts[font].open, '--fnt-for', engine, ...(form ? ['--fnt-form', form] : []), ...more, '--fnt', file);
    return file;
};

// The largest difference of any channel from the line at 20, 20 on the ground.
const offBy = (picture, font) => difference(picture, fonts[font].shown, 800, 200).most;

const consumers = [
    ['pixi', 'text', 'fnt', (file, font) => pixi(site, file, font.text, font.size)],
    ['pixi', 'xml', 'xml', (file, font) => pixi(site, file, font.text, font.size)],
    ['phaser', '', 'xml', (file, font) => phaser(site, file, font.text)],
    ['love', '', 'fnt', (file, font) => love(site.folder, file, font.text)],
];
for (const font of Object.keys(fonts)) {
    for (const [engine, form, extension, draw] of consumers) {
        if (engine === 'pixi' && form === 'xml' && font === 'pictures') continue; // the same reader as text behind it
        test(`${engine} ${form} draws the ${font} font as lettrino-cli sets it`, async () => {
            const picture = await draw(exported(font, engine, form, `${engine}-${font}-${form || 'own'}.${extension}`), fonts[font]);
            keep(encode(picture), `${engine}-${font}-${form || 'own'}`, 'engines');
            const off = offBy(picture, font);
            assert.ok(off <= tolerance, `off by ${off}`);
        });
    }
}

test('Godot 3 reads the same widths, metrics and kerning', () => {
    for (const [name, font] of Object.entries(fonts)) {
        const file = exported(name, 'godot', '', `godot-${name}.fnt`);
        const info = JSON.parse(site.cli(...font.open, '--info'));
        const pairs = [[65, 86], [0x0416, 0x20AC], [65, 65]];
        const script = snippet('godot', font.text).replace('demo.fnt', file)
            .replace('    quit()', `    print("pairs ${pairs.map((pair) => `", font.get_kerning_pair(${pair}), "`).join(' ')}")\n    quit()`);
        const out = godot(site.folder, script);
        const width = font.line.width;
        assert.match(out, new RegExp(`^${info.glyphHeight} ${info.glyphHeight - info.baseline} (\\d+)$`, 'm'), out);
        // The engine's width is from pen to pen; the last glyph's ink may lie elsewhere.
        const glyph = Object.fromEntries(info.glyphs.map((each) => [each.code, each]));
        const amount = (l, r) => info.kerning.find((pair) => pair.left === l && pair.right === r)?.amount ?? 0;
        const codes = [...font.text].map((c) => c.codePointAt(0));
        const pen = codes.reduce((sum, code, i) => sum + (glyph[code] ? glyph[code].before + glyph[code].width + glyph[code].after + amount(codes[i - 1], code) : info.spaceWidth), 0);
        assert.equal(Number(out.match(/^\d+ \d+ (\d+)$/m)[1]), pen);
        assert.ok(Math.abs(pen - width) < 30);
        // It keeps kerning with the other sign.
        assert.deepEqual(out.match(/^pairs (.*)$/m)[1].trim().split(/\s+/).map((n) => -Number(n) || 0), pairs.map((pair) => amount(...pair)));
    }
});

// These parsers are those of jimp.
test('the parsers find the same numbers in all forms', () => {
    for (const font of Object.keys(fonts)) {
        const [text, binary, json] = [['jimp', 'text', 'fnt'], ['jimp', 'binary', 'bin'], ['any', 'json', 'json']].map(([engine, form, extension]) => exported(font, engine, form, `a=b.${extension}`));
        const ascii = parseAscii(read(text, 'utf8'));
        const bytes = parseBinary(read(binary));
        const object = JSON.parse(read(json, 'utf8'));
        const info = JSON.parse(site.cli(...fonts[font].open, '--info'));
        assert.equal(ascii.info.face, 'a_b', 'which would end at its "="');
        assert.equal(ascii.chars.length, info.glyphs.length + 1);
        assert.equal(ascii.kernings.length, info.kerning.length);
        assert.deepEqual(ascii.chars, object.chars);
        assert.deepEqual(ascii.kernings, object.kernings);
        assert.deepEqual(ascii.pages, object.pages);
        for (const [i, each] of ascii.chars.entries()) assert.deepEqual({ ...bytes.chars[i] }, each);
        assert.deepEqual(bytes.kernings.map((pair) => ({ ...pair })), ascii.kernings);
        assert.deepEqual(bytes.pages, ascii.pages);
        assert.equal(read(binary)[4 + 5 + 2], 0xC2, 'Unicode, whichever end of the byte a reader begins at');
        for (const key of ['lineHeight', 'base', 'scaleW', 'scaleH', 'pages', 'packed', 'alphaChnl']) {
            assert.equal(ascii.common[key], object.common[key]);
            assert.equal(bytes.common[key], object.common[key]);
        }
    }
});

// What is exported otherwise than the font has it: how it would read without the repair, what the real reader makes of
// that, and that it draws the repaired file. What all files have (a space, Unicode, no mark) is drawn above.
const differs = async (draw) => assert.ok(offBy(await draw(), 'plain') > 50);
const fails = (expected) => (draw) => assert.rejects(draw, expected);
const inPixi = (file) => pixi(site, file, line, 64);
const inLove = (file) => love(site.folder, file, line);
const traps = [
    { what: 'PixiJS takes a page name for a number', engine: 'pixi', name: '8bit', face: '_8bit', rule: 'name-page', draw: inPixi,
        spoil: (text) => text.replace('file="_8bit_0.png"', 'file="8bit_0.png"'), then: fails(/Received|string/) },
    { what: 'PixiJS takes a face name for a number', engine: 'pixi', name: '3D Demo', face: '_3D_Demo', rule: 'name-face', draw: inPixi,
        spoil: (text) => text.replace('face="_3D_Demo"', 'face="3D Demo"'), then: differs },
    { what: 'PixiJS draws by the base', engine: 'pixi', name: 'base', rule: 'base', draw: inPixi,
        spoil: (text) => text.replace('base=64', 'base=49'), then: differs },
    { what: 'Phaser stumbles over a pair of a missing character', engine: 'phaser', name: 'pair', extension: 'xml', rule: 'pair-missing',
        open: ['--set-kerning', 'A,U+20AC,-5'], draw: (file) => phaser(site, file, line, 'CANVAS'),
        spoil: (text) => text.replace('<kerning first', '<kerning first="65" second="8364" amount="-5"/>\n    <kerning first'), then: fails(/kerning/) },
];
for (const trap of traps) {
    test(`trap: ${trap.what}`, async () => {
        const file = `${trap.name}.${trap.extension ?? 'fnt'}`;
        const steps = [...fonts.plain.open, ...(trap.open ?? []), '--fnt-for', trap.engine, '--fnt', file, '--check', trap.engine];
        const { findings } = JSON.parse(site.cli(...steps)).engines[0];
        assert.ok(findings.some((each) => each.rule === trap.rule && each.repaired), `nothing is told of ${trap.rule}`);
        const good = read(file, 'utf8');
        const spoilt = trap.spoil(good);
        assert.notEqual(spoilt, good);
        // The picture under the spoilt name, too, so that nothing but the name can be wrong.
        if (trap.face) writeFileSync(inFolder(`${trap.name}_0.png`), read(`${trap.face}_0.png`));
        // Engines of the browser find the font by its face.
        const draw = (content) => async () => {
            const drawn = trap.face ? `${trap.face}.fnt` : file;
            writeFileSync(inFolder(drawn), content);
            return trap.draw(drawn);
        };
        await trap.then(draw(spoilt));
        const off = offBy(await draw(good)(), 'plain');
        assert.ok(off <= tolerance, `repaired, but off by ${off}`);
    });
}

test('trap: a page too many for Phaser and for jimp in XML; LÖVE draws from several', async () => {
    for (const [engine, form] of [['phaser', 'xml'], ['jimp', 'xml']])
        assert.throws(() => exported('plain', engine, form, 'many.xml', '--fnt-max', '256'), /reads? (1|one)/);
    const file = exported('plain', 'love', '', 'many.fnt', '--fnt-max', '256');
    assert.ok((read(file, 'utf8').match(/^page /gm) ?? []).length > 2);
    assert.ok(offBy(await inLove(file), 'plain') <= tolerance);
});

test('what is bled into the gap is not drawn', async () => {
    const file = exported('plain', 'love', 'text', 'bleed.fnt', '--fnt-bleed', '2');
    assert.ok(offBy(await inLove(file), 'plain') <= tolerance);
});
