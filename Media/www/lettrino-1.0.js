/* Lettrino 1.0 run-time: draws the text of an element with a colour font.

   LT_ToColourFont(element, font)  element: a jQuery object; font: the array of an exported script
   LT_Resize(element, font)        the same after a change of the window

   The text stays text, selected, searched and read aloud as before; only its ink is made invisible. Each word is an
   inline element whose letter spacing gives it the colour font's width, so lines break and align as the page says,
   and cuttings of the font's picture lie above it. Characters that the font lacks stay as they are. */
(function () {
'use strict';

var CAP_SHARE = 0.7;   // of the font size is the height of capitals
var PLAIN = /^(SCRIPT|STYLE|NOSCRIPT|TEMPLATE|TITLE|HEAD|TEXTAREA|INPUT|SELECT|OPTION|CANVAS|SVG)$/i;
var BLANKS = /([ \t\n\r\f]+)/;
// So that a word is as wide as its characters together, in fractions of a pixel.
var EXACT = 'text-rendering:geometricPrecision;font-kerning:none;font-variant-ligatures:none;';
var RULES = '.LT_Text,.LT_Space{text-transform:none;' + EXACT + '}' +
    '.LT_Text{position:relative;white-space:nowrap;text-shadow:none;-webkit-text-fill-color:transparent}' +
    'lt-glyph{position:absolute;left:0;top:0;transform-origin:0 0;pointer-events:none;' +
    '-webkit-print-color-adjust:exact;print-color-adjust:exact}';

var fonts = new Map();       // the script's array: what is made of it
var drawn = new WeakMap();   // element: its state
var metrics = new Map();     // CSS font: its ascent and the widths of its characters

function prepare(source) {
    var font = fonts.get(source);
    if (font) return font;
    font = {
        name: 'LT_Font' + fonts.size, glyphs: new Map(), kerning: new Map(), image: new Image(), ready: false, waiting: new Set(),
        height: source.GlyphHeight[0], baseline: source.Baseline[0], cap: source.CapHeight[0],
        space: source.SpaceWidth
    };
    var px = function (pixels) { return pixels + 'px '; };
    var rules = RULES + '.' + font.name + ' lt-glyph{background-image:url("' +
        new URL(source.Bitmap, document.baseURI).href.replace(/"/g, '%22') + '");background-size:' +
        px(source.Resolution[0]) + px(source.Resolution[1]) + '}';   // also if the picture was made larger or smaller
    source.Glyph.forEach(function (g) {
        font.glyphs.set(String.fromCharCode(g[0]), {w: g[3], h: g[4], before: g[5], after: g[6]});
        rules += '.' + font.name + ' .g' + g[0] + '{width:' + px(g[3]) + ';height:' + px(g[4]) +
            ';background-position:' + px(-g[1]) + px(-g[2]) + '}';
    });
    document.head.appendChild(document.createElement('style')).append(rules);
    source.Kerning.forEach(function (pair) {   // passes over the stray first element
        font.kerning.set(String.fromCharCode(pair[0], pair[1]), pair[2]);
    });
    font.image.onload = function () {
        font.ready = true;
        timed(function () { font.waiting.forEach(function (element) { draw(element, font); }); });
        font.waiting.clear();
    };
    font.image.src = source.Bitmap;
    fonts.set(source, font);
    return font;
}

// All that decides how a text is drawn.
function styleOf(element) {
    var css = getComputedStyle(element);
    return {
        font: [css.fontStyle, css.fontWeight, css.fontStretch, css.fontSize, css.fontFamily].join(' '),
        fontStyle: css.fontStyle, fontWeight: css.fontWeight, fontSize: css.fontSize, fontFamily: css.fontFamily,
        spacing: parseFloat(css.letterSpacing) || 0,
        transform: css.textTransform,
        dense: window.devicePixelRatio || 1
    };
}

function sameStyle(a, b) {
    return a.font === b.font && a.spacing === b.spacing && a.transform === b.transform && a.dense === b.dense;
}

function transformed(text, how) {
    if (how === 'uppercase') return text.toUpperCase();
    if (how === 'lowercase') return text.toLowerCase();
    if (how === 'capitalize') return text.replace(/(^|\s)\S/g, function (c) { return c.toUpperCase(); });
    return text;
}

// The widths that the page's own font gives to `characters`, and its ascent, all measured in one layout.
function measure(style, characters) {
    var known = metrics.get(style.font);
    if (!known) metrics.set(style.font, known = {ascent: null, widths: new Map()});
    var missing = Array.from(characters).filter(function (c) { return !known.widths.has(c); });
    if (!missing.length && known.ascent !== null) return known;
    var box = document.createElement('div');
    box.style.cssText = 'position:absolute;left:0;top:0;visibility:hidden;white-space:pre;letter-spacing:0;' +
        'text-transform:none;line-height:normal;' + EXACT;
    ['fontStyle', 'fontWeight', 'fontSize', 'fontFamily'].forEach(function (name) { box.style[name] = style[name]; });
    var REPEAT = 8;   // one alone would be rounded
    var spans = missing.map(function (c) {
        var span = document.createElement('span');
        span.textContent = c.repeat(REPEAT);
        box.appendChild(span);
        return span;
    });
    var text = document.createElement('span');
    text.textContent = 'x';
    var foot = document.createElement('span');
    foot.style.cssText = 'display:inline-block;width:0;height:0';   // its lower edge stands on the baseline
    box.append(text, foot);
    document.body.appendChild(box);
    spans.forEach(function (span, i) { known.widths.set(missing[i], span.getBoundingClientRect().width / REPEAT); });
    known.ascent = foot.getBoundingClientRect().bottom - text.getBoundingClientRect().top;
    box.remove();
    return known;
}

// The character just before a text, in the same block and font: kerning crosses the edges of inline elements.
function characterBefore(node, style) {
    var root = node.parentElement;
    while (root.parentElement && getComputedStyle(root).display === 'inline') root = root.parentElement;
    var walker = document.createTreeWalker(root, NodeFilter.SHOW_TEXT | NodeFilter.SHOW_ELEMENT);
    walker.currentNode = node;
    for (var before = walker.previousNode(); before && before !== root; before = walker.previousNode()) {
        if (before.nodeType === Node.TEXT_NODE) {
            if (!before.data) continue;
            return styleOf(before.parentElement).fontFamily === style.fontFamily ? before.data.slice(-1) : '';
        }
        if (before.tagName === 'LT-GLYPH') continue;
        if (before.tagName === 'BR' || getComputedStyle(before).display !== 'inline') break;
    }
    return '';
}

function escaped(text) {
    return text.replace(/&/g, '&amp;').replace(/</g, '&lt;');
}

// One text as HTML: words, blanks and what the font lacks. `pen`: {font, scale, style, known, top}.
function htmlOf(text, previous, pen) {
    var html = '';
    text.split(BLANKS).forEach(function (token, i) {
        if (!token) return;
        if (i % 2) {
            html += '<span class="LT_Space" style="letter-spacing:' +
                (pen.font.space * pen.scale + pen.style.spacing - pen.known.widths.get(' ')) + 'px">' + token + '</span>';
            previous = '';
            return;
        }
        var start = 0;
        for (var end = 1; end <= token.length; ++end) {
            var has = pen.font.glyphs.has(token[start]);
            if (end < token.length && pen.font.glyphs.has(token[end]) === has) continue;
            var run = token.slice(start, end);
            html += has ? wordHtml(run, previous, pen) : '<span class="LT_Plain">' + escaped(run) + '</span>';
            previous = has ? run.slice(-1) : '';
            start = end;
        }
    });
    return html;
}

function wordHtml(text, previous, pen) {
    var own = 0;   // what the page's font would take
    var at = 0;
    var glyphs = '';
    for (var i = 0; i < text.length; ++i) {
        var g = pen.font.glyphs.get(text[i]);
        var left = Math.round((at + g.before * pen.scale) * pen.style.dense) / pen.style.dense;   // sharp: whole pixels
        if (g.w > 0 && g.h > 0) glyphs += '<lt-glyph class="g' + text.charCodeAt(i) +
            '" style="transform:translate(' + left + 'px,' + pen.top + 'px) scale(' + pen.scale + ')"></lt-glyph>';
        at += (g.before + g.w + g.after + (pen.font.kerning.get(text.substr(i, 2)) || 0)) * pen.scale + pen.style.spacing;
        own += pen.known.widths.get(text[i]);
    }
    var kern = (pen.font.kerning.get(previous + text[0]) || 0) * pen.scale;
    return '<span class="LT_Text ' + pen.font.name + '" style="letter-spacing:' + (at - own) / text.length + 'px' +
        (kern ? ';margin-left:' + kern + 'px' : '') + '">' + escaped(text) + glyphs + '</span>';
}

function draw(element, font) {
    if (!element.isConnected || PLAIN.test(element.tagName) || element.closest('.LT_Text,.LT_Space,.LT_Plain')) return;
    var style = styleOf(element);
    var texts = Array.from(element.childNodes).filter(function (node) {
        return node.nodeType === Node.TEXT_NODE && node.data;
    }).map(function (node) { return {node: node, text: transformed(node.data, style.transform)}; });
    if (!texts.length) return;
    var size = parseFloat(style.fontSize);
    var scale = font.cap > 0 ? size * CAP_SHARE / font.cap : size / font.height;
    var characters = new Set(' ');
    texts.forEach(function (part) { for (var c of part.text) if (font.glyphs.has(c)) characters.add(c); });
    var known = measure(style, characters);
    var top = known.ascent - (font.height - font.baseline) * scale;
    var pen = {font: font, scale: scale, style: style, known: known, top: top};
    var state = drawn.get(element) || {parts: []};
    state.parts = state.parts.filter(function (part) { return part.nodes[0].parentNode === element; });
    state.style = style;
    texts.forEach(function (part) {
        var template = document.createElement('template');
        template.innerHTML = htmlOf(part.text, characterBefore(part.node, style), pen);
        state.parts.push({text: part.node, nodes: Array.from(template.content.childNodes)});
        part.node.replaceWith(template.content);
    });
    drawn.set(element, state);
}

// Puts the texts back as the page had them, but for those that the page has replaced.
function undo(element, state) {
    state.parts.forEach(function (part) {
        if (part.nodes[0].parentNode !== element) return;
        part.nodes[0].before(part.text);
        part.nodes.forEach(function (node) { node.remove(); });
    });
    drawn.delete(element);
}

// Each drawing stands on the page's time line under this name.
function timed(work) {
    var start = performance.now();
    work();
    performance.measure('LT_Draw', {start: start});
}

window.LT_ToColourFont = function (element, source) {
    var font = prepare(source);
    timed(function () {
        Array.from(element).forEach(function (one) {
            if (font.ready) draw(one, font); else font.waiting.add(one);
        });
    });
};

window.LT_Resize = function (element, source) {
    var font = prepare(source);
    timed(function () {
        Array.from(element).forEach(function (one) {
            var state = drawn.get(one);
            if (!font.ready || !state || sameStyle(state.style, styleOf(one))) return;
            undo(one, state);
            draw(one, font);
        });
    });
};
})();
