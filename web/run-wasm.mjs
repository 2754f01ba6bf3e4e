#!/usr/bin/env -S node --experimental-wasi-unstable-preview1 --no-warnings
// SPDX-License-Identifier: Apache-2.0
// run-wasm.mjs PROGRAM.wasm ARGUMENT...: runs a program that emscripten has linked without JavaScript of its own. It sees the
// machine's files and environment.
import {readFileSync} from 'node:fs';
import {WASI} from 'node:wasi';

// Its exit ends this process at once: Node 20 may crash when it returns from a program whose memory has grown.
const wasi = new WASI({version: 'preview1', args: process.argv.slice(2), env: process.env, preopens: {'/': '/'}, returnOnExit: false});
const module = await WebAssembly.compile(readFileSync(process.argv[2]));
const imports = {wasi_snapshot_preview1: wasi.wasiImport, env: {emscripten_notify_memory_growth() {}}};
// Calls of Linux that the linked C library names but the tests never need: no such call.
for (const {module: from, name, kind} of WebAssembly.Module.imports(module))
  if (from === 'env' && kind === 'function') imports.env[name] ??= () => -52;
const instance = await WebAssembly.instantiate(module, imports);
wasi.start(instance);
