// SPDX-License-Identifier: Apache-2.0
// The example's server, with the package installed beside it.
import assert from 'node:assert/strict';
import {execFile} from 'node:child_process';
import {cpSync, mkdirSync, rmSync, symlinkSync} from 'node:fs';
import {join} from 'node:path';
import test from 'node:test';
import {pathToFileURL} from 'node:url';
import {promisify} from 'node:util';

import {fontPath, root} from './scenes.mjs';

test('the server draws titles, refuses by name, and lives on', async () => {
  const folder = join(root, 'build/web-server');
  rmSync(folder, {recursive: true, force: true});
  mkdirSync(join(folder, 'node_modules'), {recursive: true});
  symlinkSync(join(root, 'out/npm'), join(folder, 'node_modules/zvex'));
  cpSync(join(root, 'examples/node'), folder, {recursive: true});
  const {startTitleServer} = await import(pathToFileURL(join(folder, 'title-server.mjs')));
  const server = await startTitleServer(fontPath('DejaVuSans-Bold.ttf'));
  const ask = (query, path = 'title', options) => fetch(`http://127.0.0.1:${server.port}/${path}?${query}`, options);
  try {
    const refusals = {'': /^text:/, 'text=a&size=9999': /^size:/, 'text=a&size=x': /^size:/, 'text=a&preset=none': /^preset:/,
                      'text=a&color=reddish': /^color:/, 'text=a&font=b': /^font:/, [`text=${'a'.repeat(201)}`]: /^text:/};
    for (const [query, message] of Object.entries(refusals)) {
      const response = await ask(query);
      assert.equal(response.status, 400, query);
      assert.match(await response.text(), message);
    }
    for (const path of ['elsewhere', '/', '%ff']) assert.equal((await ask('text=a', path)).status, 404, path);
    assert.equal((await ask('text=a', 'title', {method: 'POST'})).status, 405);
    const wrong = {'none.ttf': /^title-server: ENOENT.*\n$/, [fontPath('DejaVuSans-Bold.ttf')]: /^title-server: .*EADDRINUSE.*\n$/};
    for (const [font, stderr] of Object.entries(wrong)) {
      const started = promisify(execFile)(process.execPath, [join(folder, 'title-server.mjs'), font, `${server.port}`]);
      await assert.rejects(started, {code: 1, stderr});
    }
    const statuses = await Promise.all(Array.from({length: 60}, async (_, i) => {
      const response = await ask(`text=Title ${i}&size=120&preset=gold`);
      const bytes = new Uint8Array(await response.arrayBuffer());
      if (response.status === 200) assert.deepEqual([...bytes.subarray(0, 4)], [137, 80, 78, 71]);
      return response.status;
    }));
    assert.ok(statuses.filter((status) => status === 200).length >= 20, `${statuses}`);
    assert.ok(statuses.every((status) => status === 200 || status === 503), `${statuses}`);
  } finally {
    await server.close();
  }
});
