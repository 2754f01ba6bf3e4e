#!/usr/bin/env node
// SPDX-License-Identifier: Apache-2.0
// Renders titles over HTTP, for this machine alone: title-server.mjs FONT [PORT], then GET /title?text=Words&size=120&preset=gold
// gives a PNG. The pictures are drawn in a worker, one by one; a few requests wait, others get status 503. What is not a title
// that it draws gets status 400 and a line that says why.
import {readFile} from 'node:fs/promises';
import {createServer} from 'node:http';
import {pathToFileURL} from 'node:url';

import {loadWorker} from 'zvex/worker';

const MAX_CHARACTERS = 200, MIN_SIZE = 8, MAX_SIZE = 256;
const COLUMN = 1600, MAX_LINES = 8;  // so no picture is larger than about 1800 x 2700 pixels
const MAX_WAITING = 20;
const MAX_MILLISECONDS = 5000;       // for one picture; a worker that takes longer is replaced

class Refusal extends Error {
  constructor(status, message) {
    super(message);
    this.status = status;
  }
}

function optionsOf(query) {
  for (const name of query.keys())
    if (!['text', 'size', 'preset', 'color'].includes(name)) throw new Refusal(400, `${name}: is not one of text, size, preset, color`);
  const text = query.get('text') ?? '', size = Number(query.get('size') ?? 96);
  const length = [...text].length;
  if (length < 1 || length > MAX_CHARACTERS) throw new Refusal(400, `text: write 1 to ${MAX_CHARACTERS} characters`);
  if (!(size >= MIN_SIZE && size <= MAX_SIZE)) throw new Refusal(400, `size: write ${MIN_SIZE} to ${MAX_SIZE} pixels`);
  const given = {preset: query.get('preset') ?? undefined, color: query.get('color') ?? undefined};
  return {text, size, ...given, font: 'title', width: COLUMN, 'max-lines': MAX_LINES, trim: true};
}

export async function startTitleServer(fontFile, port = 0) {
  const font = await readFile(fontFile);
  let worker = null, waiting = 0;

  async function start() {
    const zvex = await loadWorker();
    await zvex.addFont('title', font);
    return zvex;
  }

  async function draw(options) {
    worker ??= start();
    const zvex = await worker;
    const late = setTimeout(() => zvex.terminate(), MAX_MILLISECONDS);
    try {
      return await zvex.encodePng(await zvex.render(options));
    } catch (error) {
      if (error.option !== 'worker' && error.option !== 'instance') throw new Refusal(400, error.message);
      worker = null;  // a new one for the next request
      zvex.terminate();
      throw new Refusal(503, 'the title took too long');
    } finally {
      clearTimeout(late);
    }
  }

  async function answer(request) {
    const [path, ...query] = request.url.split('?');
    if (path !== '/title') throw new Refusal(404, 'GET /title?text=Words');
    if (request.method !== 'GET') throw new Refusal(405, 'GET only');
    const options = optionsOf(new URLSearchParams(query.join('?')));
    if (waiting >= MAX_WAITING) throw new Refusal(503, 'too many requests wait');
    ++waiting;
    try {
      return await draw(options);
    } finally {
      --waiting;
    }
  }

  await (worker = start());
  const server = createServer(async (request, response) => {
    try {
      const png = await answer(request);
      response.writeHead(200, {'content-type': 'image/png', 'content-length': png.length}).end(png);
    } catch (error) {
      if (!(error instanceof Refusal)) console.error(`title-server: ${request.url}: ${error.stack}`);
      const message = error instanceof Refusal ? error.message : 'the title could not be drawn';
      response.writeHead(error.status ?? 500, {'content-type': 'text/plain; charset=utf-8'}).end(`${message}\n`);
    }
  });
  await new Promise((resolve, reject) => server.once('error', reject).listen(port, '127.0.0.1', resolve));
  return {
    port: server.address().port,
    async close() {
      server.close();
      server.closeAllConnections?.();
      (await worker)?.terminate();
    },
  };
}

if (process.argv[1] && import.meta.url === pathToFileURL(process.argv[1]).href) {
  const [font, port] = process.argv.slice(2);
  if (!font) {
    console.error('usage: title-server.mjs FONT [PORT]');
    process.exit(2);
  }
  try {
    const server = await startTitleServer(font, Number(port ?? 8080));
    console.log(`http://127.0.0.1:${server.port}/title?text=Words&size=120&preset=gold`);
  } catch (error) {
    console.error(`title-server: ${error.message}`);
    process.exit(1);  // the worker may run
  }
}
