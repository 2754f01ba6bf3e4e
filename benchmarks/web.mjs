// SPDX-License-Identifier: Apache-2.0
// node benchmarks/web.mjs [ZVTEXT]: the package in out/npm beside zvtext's batch: milliseconds for loading, for the first picture,
// and for a picture when warm (the median of many), each checked to have the same bytes. Texts change, so nothing is kept.
import assert from 'node:assert/strict';
import {execFileSync} from 'node:child_process';
import {mkdtempSync, readFileSync, rmSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';

import {load} from '../out/npm/zvex.js';

const zvtext = process.argv[2] ?? new URL('../build/release/tools/zvtext/zvtext', import.meta.url).pathname;
const font = '/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf';
const rounds = 60;
const scenes = {
  'gold, 96 px': {preset: 'gold', size: 96},
  'neon, 96 px': {preset: 'neon', size: 96},
  'plain, 1024x256': {size: 120, width: 1024, height: 256},
  'shadow, stroke, bevel, 1024x256': {size: 120, width: 1024, height: 256, 'outer-shadow': {distance: 6, size: 8}, stroke: {width: 4},
                                      bevel: {size: 5}},
  'glow of 50, 1024x256': {size: 120, width: 1024, height: 256, 'outer-glow': {size: 50, stops: [{color: '#fff', position: 0}, {color: '#f00', position: 100}]}},
};

const median = (values) => values.sort((a, b) => a - b)[values.length >> 1];
const timed = async (action) => {
  const start = performance.now();
  const made = await action();
  return [performance.now() - start, made];
};

const [loading, zvex] = await timed(() => load());
zvex.addFont(font, readFileSync(font));
const [first] = await timed(() => zvex.render({text: 'First', font, ...scenes['gold, 96 px']}));
console.log(`load ${loading.toFixed(0)} ms, first picture ${first.toFixed(0)} ms`);
const folder = mkdtempSync(join(tmpdir(), 'zvex-speed-'));
for (const [name, options] of Object.entries(scenes)) {
  const lines = Array.from({length: rounds}, (_, i) => ({text: `Title ${i}`, font, ...options}));
  const times = [];
  for (const line of [...lines, ...lines]) times.push((await timed(() => zvex.render(line)))[0]);
  const input = lines.map((line, i) => JSON.stringify({...line, output: `${i}.raw`})).join('\n');
  const answers = execFileSync(zvtext, ['batch', '-', '--format', 'raw', '--output-dir', folder, '--quiet', '--allow-read-anywhere'],
                               {input, encoding: 'utf8'}).trim().split('\n').map((line) => JSON.parse(line));
  assert.deepEqual(Buffer.from(zvex.render(lines[7]).data.buffer), readFileSync(join(folder, '7.raw')));
  const native = median(answers.map(({milliseconds}) => milliseconds));
  console.log(`${name.padEnd(34)} ${median(times.slice(rounds)).toFixed(2)} ms, zvtext ${native.toFixed(2)} ms`);
}
rmSync(folder, {recursive: true});
