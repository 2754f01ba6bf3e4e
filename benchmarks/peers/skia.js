// SPDX-License-Identifier: Apache-2.0
// Skia's side of scripts/compare, through the npm package: answers requests in lines on standard input
// (README.md). Run with `node --expose-gc`.
//
// Timed: a new canvas, its settings, drawing, and reading all of it back as it is stored, premultiplied, which is
// the package's fastest way. The package draws when the canvas is read; with the word `unread` in the request
// only one pixel is, which leaves out copying the canvas. The bevel is an SVG lighting filter, its timing begins
// with parsing the SVG.
'use strict';
const fs = require('fs');
const readline = require('readline');
const {GlobalFonts, clearAllCache, createCanvas, loadImage} = require('@napi-rs/canvas');

const kText = 'Hamburgefonst';
const kFont = '/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf';
const kOrange = '#ff8800', kDark = '#202020', kBlack = '#000000', kGlow = '#0060ff';

const fill = (context, k) => context.fillText(kText, 10 * k, 192 * k);

function useShadow(context, color, offset, blur) {
    context.shadowColor = color;
    context.shadowOffsetX = context.shadowOffsetY = offset;
    context.shadowBlur = blur;
}

// Half of the line lies under the fill that follows.
function strokeOutside(context, k) {
    context.strokeStyle = kDark;
    context.lineJoin = 'round';
    context.lineWidth = 16 * k;
    context.strokeText(kText, 10 * k, 192 * k);
}

// From the left of the text to its right, in the part that lies on the canvas.
function useGradient(context, k) {
    const gradient = context.createLinearGradient(21 * k, 0, 1024 * k, 0);
    gradient.addColorStop(0, '#ff0000');
    gradient.addColorStop(1, '#0000ff');
    context.fillStyle = gradient;
}

// Blurred coverage as a height field under a light from the upper left, times the glyphs; only in `rows` rows from `top`.
const bevel = ({word, x, y, size, width, height, top, rows}) => Buffer.from(`
<svg xmlns="http://www.w3.org/2000/svg" width="${width}" height="${height}">
  <filter id="bevel" filterUnits="userSpaceOnUse" x="0" y="${top}" width="${width}" height="${rows}">
    <feGaussianBlur in="SourceAlpha" stdDeviation="${size / 24}"/>
    <feDiffuseLighting surfaceScale="${size / 24}" diffuseConstant="1.3" lighting-color="#fff" result="light">
      <feDistantLight azimuth="225" elevation="30"/>
    </feDiffuseLighting>
    <feComposite in="SourceGraphic" in2="light" operator="arithmetic" k1="1" k2="0" k3="0" k4="0"/>
  </filter>
  <text x="${x}" y="${y}" font-family="Peer" font-size="${size}" fill="${kOrange}" filter="url(#bevel)">${word}</text>
</svg>`);

const scenes = {
    S1: fill,
    S2(context, k) {
        strokeOutside(context, k);
        fill(context, k);
    },
    S3(context, k) {
        useShadow(context, kBlack, 8 * k, 20 * k);
        fill(context, k);
    },
    S4(context, k) {
        useGradient(context, k);
        fill(context, k);
    },
    S5(context, k) {
        useShadow(context, kBlack, 8 * k, 20 * k);
        fill(context, k);
        context.shadowColor = 'transparent';
        strokeOutside(context, k);
        useGradient(context, k);
        fill(context, k);
    },
    S6(context, k) {
        useShadow(context, kGlow, 0, 20 * k);
        fill(context, k);
    },
    async S7(context, k) {
        const lit = {word: kText, x: 10 * k, y: 192 * k, size: 120 * k, top: 97 * k, rows: 125 * k};
        context.drawImage(await loadImage(bevel({...lit, width: 1024 * k, height: 256 * k})), 0, 0);
    },
};

// --- Titles: looks of benchmarks/Titles.h, each word on a canvas of its own, as large as its ink and margins.

const reach = {
    plain: () => ({side: 0, top: 0, bottom: 0}),
    stroke: u => ({side: u, top: u, bottom: u}),
    shadow: u => ({side: 3 * u, top: 2 * u, bottom: 4 * u}),
    bevel: () => ({side: 0, top: 0, bottom: 0}),
};

let measuring;

async function drawTitle(word, look, size) {
    const unit = size / 16, margin = reach[look](unit);
    measuring ??= createCanvas(1, 1).getContext('2d');
    measuring.font = `${size}px Peer`;
    const ink = measuring.measureText(word);
    const left = Math.ceil(ink.actualBoundingBoxLeft) + margin.side, top = Math.ceil(ink.actualBoundingBoxAscent) + margin.top;
    const width = left + Math.ceil(ink.actualBoundingBoxRight) + margin.side;
    const height = top + Math.ceil(ink.actualBoundingBoxDescent) + margin.bottom;
    const canvas = createCanvas(width, height), context = canvas.getContext('2d');
    if (look === 'bevel') {
        const lit = {word, x: left, y: top, size, width, height, top: 0, rows: height};
        context.drawImage(await loadImage(bevel(lit)), 0, 0);
        return canvas;
    }
    context.font = `${size}px Peer`;
    context.fillStyle = kOrange;
    if (look === 'shadow') {
        context.shadowColor = kBlack;
        context.shadowOffsetY = unit;
        context.shadowBlur = 2 * unit;
        context.fillText(word, left, top);
        context.shadowColor = 'transparent';
    }
    if (look !== 'plain') {
        context.strokeStyle = kDark;
        context.lineJoin = 'round';
        context.lineWidth = 2 * unit;
        context.strokeText(word, left, top);
    }
    context.fillText(word, left, top);
    return canvas;
}

async function answerTitles(look, size, way, ...words) {
    if (!(look in reach)) return 'none';
    const begin = process.hrtime.bigint();
    for (const word of words) {
        const canvas = await drawTitle(word, look, Number(size));
        if (way === 'unread') canvas.getContext('2d').getImageData(0, 0, 1, 1);
        else canvas.data();
    }
    return (Number(process.hrtime.bigint() - begin) / 1e6).toFixed(6);
}

async function writeTitle(file, look, size, way, word) {
    if (!(look in reach)) return 'none';
    const canvas = await drawTitle(word, look, Number(size));
    fs.writeFileSync(file, canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data);
    return `written ${canvas.width}`;
}

async function answer(scene, size, word, ...rest) {
    if (scene === 'titles') return answerTitles(size, word, ...rest);
    if (scene === 'title') return writeTitle(size, word, ...rest);
    if (!(scene in scenes)) return 'none';
    const k = size === 'large' ? 4 : 1;
    clearAllCache();
    const begin = process.hrtime.bigint();
    const canvas = createCanvas(1024 * k, 256 * k);
    const context = canvas.getContext('2d');
    context.font = `${120 * k}px Peer`;
    context.fillStyle = kOrange;
    await scenes[scene](context, k);
    const pixels = word === 'unread' ? context.getImageData(0, 0, 1, 1).data : canvas.data();
    const milliseconds = Number(process.hrtime.bigint() - begin) / 1e6;
    if (pixels.length === 0) return 'none';
    if (!word || word === 'unread') return milliseconds.toFixed(6);
    fs.writeFileSync(word, context.getImageData(0, 0, 1024 * k, 256 * k).data);
    return 'written';
}

async function main() {
    if (!GlobalFonts.registerFromPath(kFont, 'Peer')) throw new Error(`cannot load ${kFont}`);
    for await (const line of readline.createInterface({input: process.stdin})) {
        console.log(await answer(...line.split(' ')));
        // Canvases and buffers are given back in the rounds after a collection, not by it: this keeps one
        // render's garbage out of the next one's time, and its memory at hand.
        global.gc();
        for (let i = 0; i < 3; ++i) await new Promise(setImmediate);
    }
}

main();
