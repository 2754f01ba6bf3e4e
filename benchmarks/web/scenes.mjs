// SPDX-License-Identifier: Apache-2.0
// scenes.mjs [ROUNDS [SCENE...]]: the pictures of benchmarks/Scenes.h, small, by scene_times as WebAssembly in Node and as a
// program of this machine with SSE2, in turn on one core. Prints a Markdown table: the median of the rounds, the least in
// brackets. Fails where the pixels differ. `scripts/web scenes` builds both and calls it.
import assert from 'node:assert/strict';
import {spawn} from 'node:child_process';
import {readFileSync} from 'node:fs';
import {cpus} from 'node:os';
import {createInterface} from 'node:readline';

const root = new URL('../..', import.meta.url).pathname;
const font = readFileSync('/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf');
const rounds = Number(process.argv[2] ?? 31);
const scenes = process.argv.length > 3 ? process.argv.slice(3) : ['S1', 'S2', 'S3', 'S4', 'S5', 'S6', 'S7'];
const warmUps = 60;  // until the engine has optimised the code
// Memory that was given back stays with the program, as it does with WebAssembly.
const env = {GLIBC_TUNABLES: 'glibc.malloc.mmap_threshold=33554432:glibc.malloc.trim_threshold=4294967296', ...process.env};

class Program {
  constructor(...command) {
    this.child = spawn('taskset', ['-c', String(cpus().length - 1), ...command, String(font.length)],
                       {env, stdio: ['pipe', 'pipe', 'inherit']});
    this.child.stdin.on('error', () => {});  // ends in `draw` instead
    this.child.stdin.write(font);
    this.answers = createInterface({input: this.child.stdout})[Symbol.asyncIterator]();
  }

  async draw(scene) {
    this.child.stdin.write(`${scene} 1\n`);
    const {value, done} = await this.answers.next();
    if (done) throw new Error(`${this.child.spawnargs.join(' ')} ended at ${scene}`);
    const [milliseconds, digest] = value.split(' ');
    return {milliseconds: Number(milliseconds), digest};
  }
}

const median = (values) => values.sort((a, b) => a - b)[values.length >> 1];
const cell = (times) => `${median(times).toFixed(2)} (${times[0].toFixed(2)})`;

const wasm = new Program(root + 'web/run-wasm.mjs', root + 'build/web/benchmarks/web/scene_times.wasm');
const native = new Program(root + 'build/release/benchmarks/web/scene_times');
console.log(`Milliseconds of one picture, 1024x256, the median of ${rounds}, the least in brackets. ${cpus()[0].model}, Node ${process.versions.node}.\n`);
console.log('| | WebAssembly | SSE2 | Ratio |\n|---|--:|--:|--:|');
for (const scene of scenes) {
  for (let i = 0; i < warmUps; ++i) await wasm.draw(scene);
  const times = [[], []];
  for (let round = -3; round < rounds; ++round) {
    const [ours, theirs] = [await wasm.draw(scene), await native.draw(scene)];
    assert.equal(ours.digest, theirs.digest, `${scene}: other pixels`);
    if (round < 0) continue;
    times[0].push(ours.milliseconds);
    times[1].push(theirs.milliseconds);
  }
  console.log(`| ${scene} | ${cell(times[0])} | ${cell(times[1])} | ${(median(times[0]) / median(times[1])).toFixed(2)} |`);
}
for (const {child} of [wasm, native]) child.stdin.end();
