/* The page on which a colour font is tried: a text, its size, its letter spacing and the background, seen at once. */
document.addEventListener('DOMContentLoaded', function () {
'use strict';

if (!window.tryFont || !tryFont.Bitmap || !window.LT_ToColourFont) return;   // the page tells why

var START_TEXT = 'Hello World';
var GREY_SHARE = 0.08;   // of the picker's width is a strip of greys, at its left

var at = function (id) { return document.getElementById(id); };
var sample = at('sample');
var picker = at('picker');
var place = {x: 0, y: 0};   // of the marker in the picker, 0 to 1; the start is white

// The colour at a place of colourpicker.png, which is drawn by the same rule: hues from left to right, each from white
// through the pure colour to black from top to bottom.
function colourAt(x, y) {
    var lightness = 100 - y * 100;
    if (x < GREY_SHARE) return 'hsl(0, 0%, ' + lightness + '%)';
    return 'hsl(' + (x - GREY_SHARE) / (1 - GREY_SHARE) * 360 + ', 100%, ' + lightness + '%)';
}

function show() {
    var size = +at('size').value;
    var spacing = +at('spacing').value;
    at('sizeValue').textContent = size + ' px';
    at('spacingValue').textContent = spacing + ' px';
    sample.style.fontSize = size + 'px';
    sample.style.letterSpacing = spacing + 'px';
    sample.textContent = '';
    at('text').value.split('\n').forEach(function (line, i) {
        if (i) sample.appendChild(document.createElement('br'));
        sample.appendChild(document.createTextNode(line));
    });
    LT_ToColourFont(sample, tryFont);
}

function showBackground() {
    at('sheet').style.backgroundColor = colourAt(place.x, place.y);
    var colour = getComputedStyle(at('sheet')).backgroundColor;
    at('backgroundValue').textContent = colour;
    picker.setAttribute('aria-valuenow', Math.round(place.x * 100));
    picker.setAttribute('aria-valuetext', colour);
    at('marker').style.left = place.x * 100 + '%';
    at('marker').style.top = place.y * 100 + '%';
}

function moveTo(x, y) {
    place = {x: Math.min(Math.max(x, 0), 1), y: Math.min(Math.max(y, 0), 1)};
    showBackground();
}

function follow(event) {
    var box = picker.getBoundingClientRect();
    moveTo((event.clientX - box.left) / box.width, (event.clientY - box.top) / box.height);
}
picker.addEventListener('pointerdown', function (event) {
    picker.setPointerCapture(event.pointerId);
    follow(event);
});
picker.addEventListener('pointermove', function (event) {
    if (event.buttons) follow(event);
});
picker.addEventListener('keydown', function (event) {
    var step = event.shiftKey ? 0.1 : 0.02;
    var move = {ArrowLeft: [-step, 0], ArrowRight: [step, 0], ArrowUp: [0, -step], ArrowDown: [0, step]}[event.key];
    if (!move) return;
    event.preventDefault();
    moveTo(place.x + move[0], place.y + move[1]);
});

at('text').value = START_TEXT;
at('size').value = Math.round(Math.min(Math.max(tryFont.CapHeight[0] / 0.7, 24), 120)) || 72;
at('spacing').value = 0;
['text', 'size', 'spacing'].forEach(function (id) { at(id).addEventListener('input', show); });
show();
showBackground();

var picture = new Image();
picture.onerror = function () { tell('The picture ' + tryFont.Bitmap + ' is not beside this page, or can\'t be read.'); };
picture.src = tryFont.Bitmap;
});
