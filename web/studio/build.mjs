// SPDX-License-Identifier: Apache-2.0
// Builds the studio into a folder of static files: node build.mjs PACKAGE FONT OUTPUT, where PACKAGE is the folder of the
// built npm package and FONT the font that the page begins with.
import { createHash } from 'node:crypto';
import { cp, mkdir, readFile, readdir, rm, writeFile } from 'node:fs/promises';
import { basename, dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

import { build } from 'esbuild';

const here = dirname(fileURLToPath(import.meta.url));
const [packageFolder, font, output] = process.argv.slice(2);
if (output === undefined) {
    console.error('build.mjs: PACKAGE, FONT and OUTPUT are needed');
    process.exit(2);
}
await rm(output, { recursive: true, force: true });
await mkdir(join(output, 'fonts'), { recursive: true });
await build({
    entryPoints: [join(here, 'src/main.tsx')],
    outfile: join(output, 'studio.js'),
    bundle: true, minify: true, format: 'esm', target: 'es2022', jsx: 'automatic', jsxImportSource: 'preact',
    alias: { 'zvex/worker': './zvex/worker.js' }, external: ['./zvex/worker.js'], logLevel: 'warning',
});
await cp(packageFolder, join(output, 'zvex'), { recursive: true, filter: (path) => !/\.d\.ts$|package\.json$|README/.test(path) });
await cp(font, join(output, 'fonts', basename(font)));
for (const name of ['index.html', 'studio.css']) await cp(join(here, name), join(output, name));

const files = (await readdir(output, { recursive: true, withFileTypes: true }))
    .filter((entry) => entry.isFile())
    .map((entry) => join(entry.parentPath ?? entry.path, entry.name).slice(output.length + 1)).sort();
const digest = createHash('sha256');
for (const name of files) digest.update(name).update(await readFile(join(output, name)));
const offline = await readFile(join(here, 'offline.js'), 'utf8');
await writeFile(join(output, 'offline.js'), offline
    .replace('@NAME@', `studio-${digest.digest('hex').slice(0, 16)}`)
    .replace("'@FILES@'", ['./', ...files].map((name) => JSON.stringify(name)).join(', ')));
