// SPDX-License-Identifier: Apache-2.0
// The package in Chromium: the pictures are zvtext's, and the example's page draws under its own content security policy. The
// page under test reports to this server.
import assert from 'node:assert/strict';
import {spawn} from 'node:child_process';
import {mkdtempSync, readFileSync, rmSync} from 'node:fs';
import {createServer} from 'node:http';
import {tmpdir} from 'node:os';
import {extname, join} from 'node:path';
import test from 'node:test';

import {load} from '../../out/npm/zvex.js';
import {files, folder, fontPath, nativeDigests, root, scenesFor} from './scenes.mjs';

const policy = "default-src 'none'; script-src 'self' 'wasm-unsafe-eval'; worker-src 'self'; connect-src 'self'; style-src 'self'; " +
    "frame-src 'self'";
const types = {'.js': 'text/javascript', '.mjs': 'text/javascript', '.wasm': 'application/wasm', '.html': 'text/html', '.css': 'text/css'};
const places = {zvex: join(root, 'out/npm'), page: join(root, 'tests/web'), browser: join(root, 'examples/browser'),
                files: folder, usr: '/usr'};

// Serves the places, and `job` to the page; resolves with what the page reports.
async function inChromium(job) {
  let report;
  const reported = new Promise((resolve) => (report = resolve));
  const server = createServer(async (request, response) => {
    const {pathname} = new URL(request.url, 'http://localhost');
    if (pathname === '/job') return response.end(JSON.stringify(job));
    if (pathname === '/report') {
      report(JSON.parse(Buffer.concat(await request.toArray()).toString()));
      return response.end();
    }
    const [, place, ...rest] = decodeURIComponent(pathname).split('/');
    try {
      const file = join(places[place], ...rest);
      const body = readFileSync(file);
      response.writeHead(200, {'content-type': types[extname(file)] ?? 'application/octet-stream', 'content-security-policy': policy});
      response.end(body);
    } catch {
      response.writeHead(404).end();
    }
  });
  await new Promise((resolve) => server.listen(0, '127.0.0.1', resolve));
  const profile = mkdtempSync(join(tmpdir(), 'zvex-chromium-'));
  const chromium = spawn('chromium', ['--headless=new', '--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage', '--no-first-run',
                                      `--user-data-dir=${profile}`, `http://127.0.0.1:${server.address().port}/page/page.html`],
                         {stdio: 'ignore'});
  const ended = new Promise((resolve) => chromium.once('close', resolve));
  try {
    return await Promise.race([reported, ended.then((status) => assert.fail(`chromium ended with ${status}`))]);
  } finally {
    chromium.kill();
    await ended;
    server.closeAllConnections?.();
    server.close();
    rmSync(profile, {recursive: true, force: true, maxRetries: 5});
  }
}

test('Chromium draws zvtext\'s bytes, and the example\'s page draws', {timeout: 240000}, async () => {
  const zvex = await load();
  const scenes = scenesFor(zvex.presets(), zvex.optionsSchema());
  const expected = nativeDigests(scenes);
  const {digests, page, error} = await inChromium({scenes, files, font: fontPath('DejaVuSans-Bold.ttf')});
  assert.equal(error, undefined);
  assert.deepEqual(scenes.filter((scene, i) => digests[i] !== expected[i]), []);
  assert.match(page.state, /^\d+ x \d+ pixels in \d+ ms$/);
  assert.ok(page.colours > 50, JSON.stringify(page));
});
