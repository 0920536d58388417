/* The page on which a colour font is tried: a text, its size, its letter spacing and the background, seen at once. */
$(function () {
'use strict';

var START_TEXT = 'Hello World';
var GREY_SHARE = 0.08;   // of the picker's width is a strip of greys, at its left

var place = {x: 0, y: 0};   // of the marker in the picker, 0 to 1; the start is white

// The colour at a place of colourpicker.png, which is drawn by the same rule: hues from left to right, each from white
// through the pure colour to black from top to bottom.
function colourAt(x, y) {
    var lightness = 100 - y * 100;
    if (x < GREY_SHARE) return 'hsl(0, 0%, ' + lightness + '%)';
    return 'hsl(' + (x - GREY_SHARE) / (1 - GREY_SHARE) * 360 + ', 100%, ' + lightness + '%)';
}

function show() {
    var size = +$('#size').val();
    var spacing = +$('#spacing').val();
    $('#sizeValue').text(size + ' px');
    $('#spacingValue').text(spacing + ' px');
    $('#sample').css({fontSize: size + 'px', letterSpacing: spacing + 'px'}).empty();
    $('#text').val().split('\n').forEach(function (line, i) {
        if (i) $('#sample').append('<br>');
        $('#sample').append(document.createTextNode(line));
    });
    LT_ToColourFont($('#sample'), tryFont);
}

function showBackground() {
    $('#sheet').css('background-color', colourAt(place.x, place.y));
    var colour = $('#sheet').css('background-color');
    $('#backgroundValue').text(colour);
    $('#picker').attr({'aria-valuenow': Math.round(place.x * 100), 'aria-valuetext': colour});
    $('#marker').css({left: place.x * 100 + '%', top: place.y * 100 + '%'});
}

function moveTo(x, y) {
    place = {x: Math.min(Math.max(x, 0), 1), y: Math.min(Math.max(y, 0), 1)};
    showBackground();
}

var picker = $('#picker')[0];
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

$('#text').val(START_TEXT);
$('#size').val(Math.round(Math.min(Math.max(tryFont.CapHeight[0] / 0.7, 24), 120)) || 72);
$('#spacing').val(0);
$('#text, #size, #spacing').on('input change', show);
show();
showBackground();
});
