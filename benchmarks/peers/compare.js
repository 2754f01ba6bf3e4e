// SPDX-License-Identifier: Apache-2.0
// Runs the same pictures through several renderers, in turn, and prints a table. scripts/compare calls it; README.md
// says how and what it asks of the programs.
'use strict';
const {spawn, spawnSync} = require('child_process');
const fs = require('fs');
const os = require('os');
const path = require('path');
const readline = require('readline');
const {setTimeout: pause} = require('timers/promises');
const {parseArgs} = require('util');
const {ImageData, createCanvas} = require('@napi-rs/canvas');

const kScenes = {
    S1: 'fill',
    S2: 'stroke 8, outside',
    S3: 'shadow (8, 8), blur 20',
    S4: 'linear gradient',
    S5: 'stroke, shadow, gradient',
    S6: 'outer glow 20',
    S7: 'bevel 10',
};
// How far a peer's ink may be from ours: in pixels at the small size, as a part of its amount, in levels of its mean
// colour. What is missing, misplaced or of another colour is far beyond. A blur, a halo and a light are not the same
// function everywhere: our glow stays full longer before it fades.
const kTolerance = {pixels: 2, amount: 0.05, level: 12};
const kLooser = {S6: {pixels: 9, amount: 0.4, level: 72}, S7: {pixels: 2, amount: 0.05, level: 56}};

const kSizes = {small: 1, large: 4};
const kWarmUps = 3;

// Small titles, as in benchmarks/Titles.h, and what gives each look to `zvtext batch` at a glyph size.
const kLooks = {
    plain: () => [],
    stroke: size => ['--stroke', `${size / 16}:#202020`],
    shadow: size => [...kLooks.stroke(size), '--outer-shadow', `angle=90,distance=${size / 16},size=${3 * size / 16},opacity=1`],
    bevel: size => ['--bevel', `size=${size / 12},depth=2,technique=soft,angle=135,altitude=30`],
};
const kTitleFont = '/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf';
const kTitleSizes = [16, 32, 64];
const kTitles = 100;        // of a request
const kBatchTitles = 2000;  // of a run of `zvtext batch`; the time of a run of kTitles is taken off
// At 16 pixels the phone's hinting and contrast show: another width for each letter, and more ink.
const kTitleTolerance = {pixels: 3, part: 0.06, amount: 0.35, level: 24};
// Between two pictures, so that what one program does in the background (Node frees its canvases there) does not run in
// the time of another on the same core.
const kPause = 5;

// Memory that was given back stays with the program, so that no time is spent on the system's first touch of fresh
// pages: the same for all, and Node's gain above all.
const kAllocator = 'glibc.malloc.mmap_threshold=33554432:glibc.malloc.trim_threshold=4294967296';

// --- Programs

class Program {
    constructor(command, cpu) {
        const env = {GLIBC_TUNABLES: kAllocator, ...process.env};
        this.child = spawn('taskset', ['-c', cpu, ...command], {env, stdio: ['pipe', 'pipe', 'inherit']});
        this.child.stdin.on('error', () => {});  // ends in `ask` instead
        this.answers = readline.createInterface({input: this.child.stdout})[Symbol.asyncIterator]();
    }

    async ask(request) {
        this.child.stdin.write(request + '\n');
        const {value, done} = await this.answers.next();
        if (done) throw new Error(`${this.child.spawnargs.join(' ')} ended at '${request}'`);
        return value;
    }

    async milliseconds(request) {
        const answer = await this.ask(request);
        const value = Number(answer);
        if (!(value > 0)) throw new Error(`${this.child.spawnargs.join(' ')}: '${request}' gave '${answer}'`);
        return value;
    }

    end() {
        this.child.stdin.end();
    }
}

// --- Pictures

// What tells two pictures of the same scene from others: how much ink, where, and of what colour on average.
function inkOf(pixels, width) {
    const ink = {amount: 0, left: Infinity, top: Infinity, right: 0, bottom: 0, red: 0, green: 0, blue: 0};
    for (let i = 0; i < pixels.length; i += 4) {
        const alpha = pixels[i + 3] / 255;
        ink.amount += alpha;
        ink.red += pixels[i] * alpha;
        ink.green += pixels[i + 1] * alpha;
        ink.blue += pixels[i + 2] * alpha;
        if (alpha < 0.25) continue;  // where a blur ends is a matter of its method
        const x = (i / 4) % width, y = Math.floor(i / 4 / width);
        ink.left = Math.min(ink.left, x);
        ink.top = Math.min(ink.top, y);
        ink.right = Math.max(ink.right, x + 1);
        ink.bottom = Math.max(ink.bottom, y + 1);
    }
    for (const channel of ['red', 'green', 'blue']) ink[channel] /= ink.amount;
    return ink;
}

// What differs too much between a peer's ink and ours, as text; empty when nothing does.
function differences(ink, ours, scene, scale) {
    const tolerance = kLooser[scene] ?? kTolerance;
    const faults = [];
    for (const side of ['left', 'top', 'right', 'bottom']) {
        if (!(Math.abs(ink[side] - ours[side]) <= tolerance.pixels * scale)) faults.push(side);
    }
    if (!(Math.abs(ink.amount / ours.amount - 1) <= tolerance.amount)) faults.push('amount');
    for (const channel of ['red', 'green', 'blue']) {
        if (!(Math.abs(ink[channel] - ours[channel]) <= tolerance.level)) faults.push(channel);
    }
    return faults.map(name => `${name} ${ink[name].toFixed(1)} (ours ${ours[name].toFixed(1)})`).join(', ');
}

// The picture of a request, or null where the program has none.
async function pictureOf(program, request, folder) {
    const file = path.join(folder, 'pixels');
    if (await program.ask(`${request} ${file}`) !== 'written') return null;
    const pixels = fs.readFileSync(file);
    fs.unlinkSync(file);
    return pixels;
}

function writePng(pixels, width, file) {
    const height = pixels.length / 4 / width, canvas = createCanvas(width, height);
    canvas.getContext('2d').putImageData(new ImageData(new Uint8ClampedArray(pixels), width, height), 0, 0);
    fs.writeFileSync(file, canvas.toBuffer('image/png'));
}

// The names of the programs that draw the scene; throws where one draws something else.
async function checkPictures(programs, scene, size, folder, pictures) {
    const width = 1024 * kSizes[size], able = [];
    let ours;
    for (const [name, program] of Object.entries(programs)) {
        const pixels = await pictureOf(program, `${scene} ${size}`, folder);
        if (pixels === null) continue;
        const ink = inkOf(pixels, width);
        if (pictures) writePng(pixels, width, path.join(pictures, `${scene}-${size}-${name.toLowerCase()}.png`));
        ours ??= ink;
        const faults = differences(ink, ours, scene, kSizes[size]);
        if (!(ink.amount > 1000) || faults) throw new Error(`${name} draws another ${scene} ${size}: ${faults}`);
        able.push(name);
    }
    return able;
}

// --- Times

const median = times => [...times].sort((a, b) => a - b)[times.length >> 1];

// Times by column. The programs take turns, each round beginning with another, so that whatever slows the machine
// down slows all of them down.
async function timesOf(columns, scene, size, rounds) {
    const times = columns.map(() => []);
    for (let round = -kWarmUps; round < rounds; ++round) {
        for (let i = 0; i < columns.length; ++i) {
            const column = (i + round + kWarmUps) % columns.length;
            const {program, word} = columns[column];
            await pause(kPause);
            const elapsed = await program.milliseconds([scene, size, ...word].join(' '));
            if (round >= 0) times[column].push(elapsed);
        }
    }
    return times;
}

const cell = times => times ? `${median(times).toFixed(2)} (${Math.min(...times).toFixed(2)})` : '';
const ratio = (ours, theirs) => theirs ? (median(ours) / median(theirs)).toFixed(2) : '';

function printHead(rounds) {
    console.log(`Milliseconds of one picture: the median of ${rounds} rounds, the least in brackets. ${os.cpus()[0].model}.\n`);
    console.log('| Scene | Size | Zvex | Skia | Skia, unread | Cairo | memset | Zvex / Skia | Zvex / Skia, unread | Zvex / Cairo |');
    console.log('|---|---|--:|--:|--:|--:|--:|--:|--:|--:|');
}

function printRow(scene, size, byName) {
    const {Zvex, Skia, Unread, Cairo, Memset} = byName;
    console.log(`| ${scene} ${kScenes[scene]} | ${size} | ${[Zvex, Skia, Unread, Cairo, Memset].map(cell).join(' | ')} | ` +
                `${[Skia, Unread, Cairo].map(theirs => ratio(Zvex, theirs)).join(' | ')} |`);
}

// --- Titles

// Different words each time, the same in each run.
function* wordsOf(seed) {
    const parts = 'ba ce di fo gu ha ji ko lu me na po qui ro se ta vu wy xa ze'.split(' '), seen = new Set();
    const below = limit => {
        seed = (Math.imul(seed, 1664525) + 1013904223) >>> 0;
        return Math.floor(seed / 2 ** 32 * limit);
    };
    while (true) {
        const word = Array.from({length: 2 + below(4)}, () => parts[below(parts.length)]).join('');
        if (!seen.has(word)) yield word[0].toUpperCase() + word.slice(1);
        seen.add(word);
    }
}
const take = (words, count) => Array.from({length: count}, () => words.next().value);

// Throws where a peer's title has another size of ink, amount or colour than ours. False if it draws none.
async function drawsSameTitle(ours, program, column, look, size, word, folder) {
    const inks = [];
    for (const [from, way] of [[ours, 'reused'], [program, column.way]]) {
        const file = path.join(folder, 'pixels');
        const [written, width] = (await from.ask(`title ${file} ${look} ${size} ${way} ${word}`)).split(' ');
        if (written !== 'written') return false;
        inks.push(inkOf(fs.readFileSync(file), Number(width)));
    }
    const [expected, ink] = inks, far = kTitleTolerance;
    const isFar = (a, b) => !(Math.abs(a - b) <= far.pixels + far.part * b);
    const colour = look === 'bevel' ? [] : ['red', 'green', 'blue'];
    if (isFar(ink.right - ink.left, expected.right - expected.left) || isFar(ink.bottom - ink.top, expected.bottom - expected.top) ||
        !(Math.abs(ink.amount / expected.amount - 1) <= far.amount) ||
        colour.some(name => !(Math.abs(ink[name] - expected[name]) <= far.level))) {
        throw new Error(`${column.name} draws another '${word}', ${look} ${size}: ${JSON.stringify(inks)}`);
    }
    return true;
}

// The milliseconds that kTitles titles more take a batch, which writes the pixels to nowhere.
function batchTime(options, look, size, words, folder) {
    const command = ['-c', options.cpu, path.resolve(options.programs, '../../tools/zvtext/zvtext'), 'batch', '-', '--font', kTitleFont,
                     '--size', size, '--color', '#ff8800', '--no-fallback', '--jobs', '1', '--format', 'raw', '--output', '-',
                     ...kLooks[look](size)].map(String);
    const run = some => {
        const input = some.map(text => JSON.stringify({text}) + '\n').join('');
        const begin = process.hrtime.bigint();
        const {status} = spawnSync('taskset', command, {input, cwd: folder, stdio: ['pipe', 'ignore', 'inherit']});
        if (status !== 0) throw new Error(`zvtext batch ended with ${status}`);
        return Number(process.hrtime.bigint() - begin) / 1e6;
    };
    const few = run(take(words, kTitles));
    return (run(take(words, kTitles + kBatchTitles)) - few) * kTitles / kBatchTitles;
}

async function compareTitles(options, programs, folder) {
    const columns = [
        {name: 'Zvex, reused', program: 'Zvex', way: 'reused'}, {name: 'Zvex, new', program: 'Zvex', way: 'new'},
        {name: 'zvtext batch'}, {name: 'Skia', program: 'Skia', way: 'read'},
        {name: 'Skia, unread', program: 'Skia', way: 'unread'}, {name: 'Pillow', program: 'Pillow', way: 'shaped'},
    ];
    console.log(`Titles a second: the median of ${options.rounds} rounds of ${kTitles}. ${os.cpus()[0].model}.\n`);
    console.log(`| Title | ${columns.map(column => column.name).join(' | ')} |\n|---${'|--:'.repeat(columns.length)}|`);
    const words = wordsOf(1);
    for (const look of Object.keys(kLooks)) {
        for (const size of kTitleSizes) {
            const able = [];
            for (const column of columns) {
                const program = programs[column.program];
                if (!program || await drawsSameTitle(programs.Zvex, program, column, look, size, 'Hamburg', folder)) able.push(column);
            }
            const times = new Map(able.map(column => [column, []]));
            for (let round = -kWarmUps; round < options.rounds; ++round) {
                for (let i = 0; i < able.length; ++i) {
                    const column = able[(i + round + kWarmUps) % able.length];
                    if (!column.program) continue;
                    const some = take(words, kTitles).join(' ');  // others each time: none has shaped them before
                    await pause(kPause);
                    const elapsed = await programs[column.program].milliseconds(`titles ${look} ${size} ${column.way} ${some}`);
                    if (round >= 0) times.get(column).push(elapsed);
                }
            }
            const batch = times.get(columns[2]);
            for (let round = 0; round < Math.min(options.rounds, 5); ++round) batch.push(batchTime(options, look, size, words, folder));
            const rates = columns.map(column => times.has(column) ? Math.round(kTitles * 1000 / median(times.get(column))) : '');
            console.log(`| ${size} px, ${look === 'shadow' ? 'stroke and shadow' : look} | ${rates.join(' | ')} |`);
        }
    }
}

// --- Command line

function readArguments() {
    const {values} = parseArgs({options: {
        programs: {type: 'string'},  // the folder of the built ones
        rounds: {type: 'string', default: '31'},
        scenes: {type: 'string', default: Object.keys(kScenes).join()},
        sizes: {type: 'string', default: Object.keys(kSizes).join()},
        pictures: {type: 'string'},
        titles: {type: 'boolean', default: false},
        cpu: {type: 'string', default: String(os.cpus().length - 1)},
    }});
    const list = (name, known) => values[name].split(',').map(word => {
        if (!(word in known)) throw new Error(`--${name}: '${word}' is not one of ${Object.keys(known).join()}`);
        return word;
    });
    const rounds = Number(values.rounds);
    if (!(Number.isInteger(rounds) && rounds > 0)) throw new Error(`--rounds: '${values.rounds}' is not a count`);
    return {...values, rounds, scenes: list('scenes', kScenes), sizes: list('sizes', kSizes)};
}

async function compare(options, programs, folder) {
    printHead(options.rounds);
    for (const size of options.sizes) {
        for (const scene of options.scenes) {
            const able = await checkPictures(programs, scene, size, folder, options.pictures);
            const columns = able.map(name => ({name, program: programs[name], word: []}));
            if (able.includes('Skia')) columns.push({name: 'Unread', program: programs.Skia, word: ['unread']});
            columns.push({name: 'Memset', program: programs.Zvex, word: ['memset']});
            const times = await timesOf(columns, scene, size, options.rounds);
            printRow(scene, size, Object.fromEntries(columns.map(({name}, i) => [name, times[i]])));
        }
    }
}

async function main() {
    const options = readArguments();
    if (options.pictures) fs.mkdirSync(options.pictures, {recursive: true});
    const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'compare-'));
    const programs = {
        Zvex: new Program([path.join(options.programs, 'peer_ours')], options.cpu),
        Skia: new Program([process.execPath, '--expose-gc', path.join(__dirname, 'skia.js')], options.cpu),
        ...(options.titles
            ? {Pillow: new Program(['/usr/bin/python3', path.join(__dirname, '../beside_pillow.py'), '--answer'], options.cpu)}
            : {Cairo: new Program([path.join(options.programs, 'peer_cairo')], options.cpu)}),
    };
    try {
        await (options.titles ? compareTitles : compare)(options, programs, folder);
    } finally {
        for (const program of Object.values(programs)) program.end();
        fs.rmSync(folder, {recursive: true});
    }
}

main().catch(error => {
    console.error(`compare: ${error.message}`);
    process.exitCode = 1;
});
