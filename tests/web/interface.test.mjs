// SPDX-License-Identifier: Apache-2.0
// What the package promises beside pixels: errors that name the option and leave the instance usable, metrics, memory, the worker.
import assert from 'node:assert/strict';
import {execFileSync} from 'node:child_process';
import {readFileSync} from 'node:fs';
import test from 'node:test';

import {ZvexError, load} from '../../out/npm/zvex.js';
import {loadWorker} from '../../out/npm/worker.js';
import {digest, fontPath} from './scenes.mjs';

const font = readFileSync(fontPath('DejaVuSans-Bold.ttf'));
const scene = {text: 'Zv', font: 'sans', size: 40, stroke: {width: 3}};

async function loaded(options) {
  const zvex = await load(options);
  zvex.addFont('sans', font);
  return zvex;
}

// Calls `action`; returns the option that its ZvexError names.
function refused(action) {
  try {
    action();
  } catch (error) {
    assert.ok(error instanceof ZvexError, error.stack);
    assert.ok(error.reason.length > 3 && error.message === `${error.option}: ${error.reason}`, error.message);
    return error.option;
  }
  return 'nothing';
}

test('wrong options, hostile bytes and absurd sizes are refused by name, and the instance works on', async () => {
  const zvex = await loaded();
  const expected = digest(zvex.render(scene).data);
  const detached = new Uint8Array(100);
  structuredClone(detached.buffer, {transfer: [detached.buffer]});
  const circle = {};
  circle.circle = circle;
  const png = zvex.encodePng(zvex.render(scene));
  for (let end = 0, i = 0; end < png.length; end += 97, ++i) zvex.addFile(`cut${i}.png`, png.slice(0, end));
  const draw = (more) => () => zvex.render({...scene, ...more});
  const cases = {
    text: [draw({text: ''}), draw({text: undefined}), draw({text: 7}), draw({text: NaN}), draw({text: 'a\0b'})],
    size: [draw({size: -1}), draw({size: NaN}), draw({size: 1e9}), draw({size: {}})],
    font: [draw({font: 'sanz'}), draw({font: undefined}), draw({font: 'sans#1'}), () => zvex.addFont('empty', new Uint8Array()),
           () => zvex.addFont('none', 'a string'), () => zvex.addFont('detached', detached),
           () => zvex.addFont('cut', font.subarray(0, 2000)), () => zvex.addFont('text', new TextEncoder().encode('no font'))],
    'stroke.width': [draw({stroke: {width: 1e9}}), draw({stroke: {width: NaN}})],
    colour: [draw({colour: 'red'})],
    preset: [draw({preset: 'golden'})],
    style: [draw({stroke: null, style: {layers: [{spread: 'wide'}]}})],
    width: [draw({size: 3000, width: 32767, height: 32767})],
    'text-file': [draw({text: undefined, 'text-file': '-'})],
    options: [draw(circle), draw({stroke: JSON.parse('['.repeat(20) + ']'.repeat(20))}), () => zvex.render(), () => zvex.measure('text')],
    name: [() => zvex.addFont('', font), () => zvex.addFont('sans', font.subarray(0, -1)), () => zvex.addFile(7, font)],
    data: [() => zvex.encodePng(), () => zvex.encodePng({width: 2, height: 2, data: new Uint8Array(15)}),
           () => zvex.encodePng({width: 1e6, height: 1e6, data: new Uint8Array(4)})],
    dpi: [() => zvex.encodePng(zvex.render(scene), {dpi: 0})],
    pattern: [draw({pattern: 'none.png'}), draw({pattern: 'cut0.png'}), draw({pattern: 'cut5.png'})],
  };
  for (const [option, actions] of Object.entries(cases)) {
    for (const action of actions) assert.equal(refused(action), option, String(action));
    assert.equal(digest(zvex.render(scene).data), expected, `after ${option}`);
  }
  for (let end = 16; end < font.length; end += font.length >> 6) {  // some of these can be drawn
    refused(() => zvex.addFont(`cut${end}`, font.subarray(0, end)));
    refused(draw({font: `cut${end}`}));
  }
  assert.equal(digest(zvex.render(scene).data), expected, 'after cut fonts');
});

// zvex.wasm with less memory: the upper limit of its memory section, 65536 pages in three bytes, becomes 1024.
function withLittleMemory() {
  const wasm = new Uint8Array(readFileSync(new URL('../../out/npm/zvex.wasm', import.meta.url)));
  let at = 8, id, size;
  const number = () => {
    let value = 0;
    for (let shift = 0, byte = 128; byte & 128; shift += 7) value |= ((byte = wasm[at++]) & 127) << shift;
    return value;
  };
  for (; [id, size] = [wasm[at++], number()], id !== 5;) at += size;
  at += 2;  // one memory, with a limit
  number();
  assert.deepEqual([...wasm.subarray(at, at + 3)], [128, 128, 4]);
  wasm.set([128, 136, 0], at);
  return wasm;
}

test('a picture or a font too large for the memory leaves an instance that draws', async () => {
  const zvex = await loaded({wasm: withLittleMemory()});
  const expected = digest(zvex.render(scene).data);
  for (const [width, preset] of [[2000, 'gold'], [3000, 'neon'], [9000, 'triple'], [30000, 'comic']]) {
    const huge = {text: 'Z', font: 'sans', size: 900, preset, width, height: 3000};
    assert.equal(refused(() => zvex.render(huge)), 'text');
    assert.equal(digest(zvex.render(scene).data), expected);
  }
  assert.equal(refused(() => zvex.addFont('large', new Uint8Array(80e6))), 'text');
  assert.equal(refused(() => zvex.encodePng({width: 5000, height: 5000, data: new Uint8Array(1e8)})), 'text');
  assert.equal(digest(zvex.render(scene).data), expected);
});

test('memory stays flat over thousands of renders', async () => {
  const zvex = await loaded();
  const draw = (i) => zvex.render({...scene, text: `${i % 700}`, size: 20 + i % 30, 'outer-shadow': {size: i % 9}});
  for (let i = 0; i < 1000; ++i) draw(i);
  const before = zvex.memory;
  for (let i = 0; i < Number(process.env.ZVEX_TEST_RENDERS ?? 5000); ++i) draw(i);
  assert.equal(zvex.memory, before);
});

test('metrics count in indexes of the string, measure() has render()\'s, numbers read as everywhere', async () => {
  const zvex = await loaded();
  const text = '\u{1F600}a\n\u{1F600}\ud800b';
  const picture = zvex.render({...scene, text, padding: 5});
  const {data, ...metrics} = picture;
  assert.deepEqual(zvex.measure({...scene, text, padding: 5}), metrics);
  assert.equal(data.length, 4 * picture.width * picture.height);
  assert.deepEqual(picture.lines.map(({start, end}) => text.slice(start, end)), ['\u{1F600}a', '\u{1F600}\ud800b']);
  assert.deepEqual(picture.lines[1].clusters.map(({start, end}) => text.slice(start, end)), ['\u{1F600}', '\ud800', 'b']);
  assert.ok(picture.origin.x >= 5 && picture.origin.y === picture.baseline, JSON.stringify(metrics));
  const reason = (size) => {
    try {
      zvex.measure({...scene, size});
    } catch (error) {
      return error.reason.split(' ')[0];
    }
  };
  assert.deepEqual([-1.5, -1e-7, 1.25e21, -123456.789].map(reason), ['\'-1.5\'', '\'-1e-07\'', '\'1.25e+21\'', '\'-123456.789\'']);
  assert.deepEqual([NaN, -Infinity].map(reason), ['NaN', '-Infinity']);
  for (const size of ['+40', ' 40', '0x40', '1e400', 'inf', '']) assert.equal(refused(() => zvex.measure({...scene, size})), 'size', size);
  assert.equal(digest(zvex.render({...scene, size: '4e1px'}).data), digest(zvex.render(scene).data));
});

test('a browser without SIMD, a file that is missing, data that is none: errors that say so', async () => {
  const {validate} = WebAssembly;
  WebAssembly.validate = () => false;
  await assert.rejects(load(), /too old.*SIMD/);
  WebAssembly.validate = validate;
  await assert.rejects(load({wasm: new URL('none.wasm', import.meta.url)}), {option: 'wasm'});
  await assert.rejects(load({wasm: new Uint8Array(9)}), {option: 'wasm', reason: /cannot be compiled/});
  await assert.rejects(load({icu: new Uint8Array(64)}), {option: 'icu'});
  const zvex = await loaded({icu: null});
  assert.equal(zvex.render(scene).lines.length, 1);
  assert.equal(refused(() => zvex.render({...scene, width: 100})), 'text');
});

test('the worker answers in order, moves bytes, gives up what waits, and ends', async () => {
  const zvex = await loadWorker();
  const bytes = new Uint8Array(font);
  await zvex.addFont('sans', bytes, {transfer: [bytes.buffer]});
  assert.equal(bytes.length, 0);
  const direct = await loaded();
  const given = new AbortController();
  const first = zvex.render(scene), second = zvex.render(scene, {signal: given.signal}), third = zvex.measure(scene);
  given.abort();
  await assert.rejects(second, {name: 'AbortError'});
  const picture = await first;
  assert.deepEqual(picture, direct.render(scene));
  assert.equal((await third).width, picture.width);
  assert.deepEqual(await zvex.encodePng(picture, {dpi: 144}), direct.encodePng(picture, {dpi: 144}));
  assert.deepEqual(Object.keys(await zvex.presets()), Object.keys(direct.presets()));
  await assert.rejects(zvex.render({...scene, size: 0}), {name: 'ZvexError', option: 'size'});
  await assert.rejects(zvex.render({...scene, text: () => 1}), {name: 'ZvexError', option: 'options'});
  const last = zvex.render(scene);
  zvex.terminate();
  await assert.rejects(last, {option: 'worker'});
  await assert.rejects(zvex.schema(), {option: 'worker'});
});

test('the package can be installed and has types for every option', () => {
  const listed = JSON.parse(execFileSync('npm', ['pack', '--dry-run', '--json'], {cwd: new URL('../../out/npm', import.meta.url)}));
  const names = listed[0].files.map(({path}) => path);
  for (const name of ['zvex.wasm', 'zvex.d.ts', 'worker.d.ts', 'options.d.ts', 'icu.dat', 'LICENSE']) assert.ok(names.includes(name), name);
  const types = readFileSync(new URL('../../out/npm/options.d.ts', import.meta.url), 'utf8');
  assert.match(types, /"max-lines"\?: number \| null;/);
  assert.match(types, /"tab-stops"\?: Array<number> \| number \| string \| null;/);
  assert.match(types, /"stroke"\?: string \| OptionStroke \| null;/);
  assert.match(types, /export type PresetName = .*"gold"/);
});
