// SPDX-License-Identifier: Apache-2.0
// Pictures of the package under Node are zvtext's, byte for byte.
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import test from 'node:test';

import {load} from '../../out/npm/zvex.js';
import {digest, files, folder, nativeDigests, root, scenesFor} from './scenes.mjs';

const icu = ['icu.dat', 'dictionaries.dat'].map((name) => new URL(`../../out/npm/${name}`, import.meta.url));

test('every preset, every effect at three settings, the gallery: zvtext\'s bytes', async () => {
  const zvex = await load({icu});
  const scenes = scenesFor(zvex.presets(), zvex.optionsSchema());
  assert.ok(scenes.length > 140, `${scenes.length} scenes`);
  const expected = nativeDigests(scenes);
  assert.ok(new Set(expected).size > 0.9 * scenes.length, 'scenes that look the same test nothing');
  for (const file of files) zvex.addFile(file, readFileSync(join(folder, file)));
  for (const font of new Set(scenes.flatMap((scene) => [scene.font, ...(scene.fallback ?? [])])))
    zvex.addFont(font, readFileSync(font));
  const differing = scenes.filter((scene, i) => digest(zvex.render(scene).data) !== expected[i]);
  assert.deepEqual(differing, []);
});

test('the schema of styles is the one in docs', async () => {
  const zvex = await load();
  assert.deepEqual(zvex.schema(), JSON.parse(readFileSync(join(root, 'docs/style.schema.json'), 'utf8')));
});
