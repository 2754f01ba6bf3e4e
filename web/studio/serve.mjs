// SPDX-License-Identifier: Apache-2.0
// Serves a folder of static files on loopback: node serve.mjs FOLDER [PORT].
import { createReadStream } from 'node:fs';
import { stat } from 'node:fs/promises';
import { createServer } from 'node:http';
import { extname, join, normalize, resolve, sep } from 'node:path';
import { fileURLToPath } from 'node:url';

const TYPES = {
    '.html': 'text/html; charset=utf-8', '.js': 'text/javascript', '.css': 'text/css', '.wasm': 'application/wasm',
    '.json': 'application/json', '.ttf': 'font/ttf', '.png': 'image/png',
};

export async function serve(folder, port = 0) {
    const root = resolve(folder);
    const server = createServer(async (request, answer) => {
        try {
            const path = decodeURIComponent(new URL(request.url, 'http://localhost').pathname);
            const file = normalize(join(root, path.endsWith('/') ? `${path}index.html` : path));
            if (!file.startsWith(root + sep) || !(await stat(file)).isFile()) throw new Error('no such file');
            answer.writeHead(200, { 'Content-Type': TYPES[extname(file)] ?? 'application/octet-stream', 'Cache-Control': 'no-cache' });
            createReadStream(file).pipe(answer);
        } catch {
            answer.writeHead(404, { 'Content-Type': 'text/plain' }).end('not found\n');
        }
    });
    await new Promise((done, failed) => server.once('error', failed).listen(port, '127.0.0.1', done));
    return { address: `http://127.0.0.1:${server.address().port}/`, close: () => new Promise((done) => { server.closeAllConnections(); server.close(done); }) };
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
    const [folder, port] = process.argv.slice(2);
    try {
        console.log(`The studio is at ${(await serve(folder, Number(port ?? 8080))).address} (Ctrl-C ends it)`);
    } catch (error) {
        console.error(`studio: ${error.message}`);
        process.exit(1);
    }
}
