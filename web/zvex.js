// SPDX-License-Identifier: Apache-2.0
// The module zvex for browsers and Node: loads zvex.wasm and calls what web/Module.cpp exports. Types and contracts are in
// web/zvex.d.ts.

// (module (func (result v128) i32.const 0 i8x16.splat)) and (module (func try end)).
const SIMD = [0, 97, 115, 109, 1, 0, 0, 0, 1, 5, 1, 96, 0, 1, 123, 3, 2, 1, 0, 10, 8, 1, 6, 0, 65, 0, 253, 15, 11];
const EXCEPTIONS = [0, 97, 115, 109, 1, 0, 0, 0, 1, 4, 1, 96, 0, 0, 3, 2, 1, 0, 10, 7, 1, 5, 0, 6, 64, 11, 11];

export class ZvexError extends Error {
  constructor(option, reason) {
    super(`${option}: ${reason}`);
    this.name = 'ZvexError';
    this.option = option;
    this.reason = reason;
  }
}

const isBytes = (value) => value instanceof ArrayBuffer || ArrayBuffer.isView(value);

function bytesOf(option, value) {
  if (!isBytes(value)) throw new ZvexError(option, 'is neither an ArrayBuffer nor a typed array');
  try {
    return value instanceof ArrayBuffer ? new Uint8Array(value) : new Uint8Array(value.buffer, value.byteOffset, value.byteLength);
  } catch {
    throw new ZvexError(option, 'was moved away: its bytes are gone');
  }
}

// The bytes of a URL, a Response, a buffer, or a promise of one.
async function read(option, from) {
  const given = await from;
  if (isBytes(given)) return bytesOf(option, given);
  try {
    if (typeof Response !== 'undefined' && given instanceof Response) return await bytesOfResponse(given);
    const url = new URL(given, globalThis.location?.href);
    if (url.protocol !== 'file:') return await bytesOfResponse(await fetch(url));
    const files = 'node:fs/promises';  // a name that bundlers leave alone
    return new Uint8Array(await (await import(/* @vite-ignore */ files)).readFile(url));
  } catch (error) {
    throw new ZvexError(option, `cannot be read: ${error.message}`);
  }
}

async function bytesOfResponse(response) {
  if (!response.ok) throw new Error(`${response.url} answered ${response.status}`);
  return new Uint8Array(await response.arrayBuffer());
}

async function compiled(wasm) {
  const given = await wasm;
  if (given instanceof WebAssembly.Module) return given;
  if (!WebAssembly.validate(new Uint8Array(SIMD)) || !WebAssembly.validate(new Uint8Array(EXCEPTIONS)))
    throw new ZvexError('wasm', 'this browser or Node is too old: it lacks WebAssembly with SIMD and exceptions');
  try {
    return await WebAssembly.compile(await read('wasm', given));
  } catch (error) {
    throw error instanceof ZvexError ? error : new ZvexError('wasm', `cannot be compiled: ${error.message}`);
  }
}

// What the compiled C library asks for. There are no files, and nothing reads what it prints.
function systemOf(memory) {
  const view = () => new DataView(memory().buffer);
  const badFile = () => 8, noCall = () => -52;
  let high = 0;  // the upper half of a 64-bit result
  return {
    fd_write(file, parts, count, written) {
      let size = 0;
      for (let i = 0; i < count; ++i) size += view().getUint32((parts >>> 0) + 8 * i + 4, true);
      view().setUint32(written >>> 0, size, true);
      return 0;
    },
    clock_time_get(clock, precision, time) {
      view().setBigUint64(time >>> 0, BigInt(Date.now()) * 1000000n, true);
      return 0;
    },
    environ_sizes_get(count, size) {
      view().setUint32(count >>> 0, 0, true);
      view().setUint32(size >>> 0, 0, true);
      return 0;
    },
    environ_get: () => 0,
    fd_close: badFile,
    fd_read: badFile,
    fd_seek: badFile,
    proc_exit(status) {
      throw new Error(`it ended with status ${status}`);
    },
    emscripten_notify_memory_growth() {},
    getTempRet0: () => high,
    setTempRet0(value) {
      high = value;
    },
    __syscall_stat64: noCall,
    __syscall_lstat64: noCall,
    __syscall_fstat64: noCall,
    __syscall_fstatat64: noCall,
  };
}

// JSON of the options, without halves of surrogate pairs. NaN and infinity become arrays, which no option takes.
function jsonOf(options) {
  if (typeof options !== 'object' || options === null) throw new ZvexError('options', 'is not an object');
  let json;
  try {
    json = JSON.stringify(options, (key, value) => typeof value !== 'number' || Number.isFinite(value) ? value : [`${value}`]);
  } catch (error) {
    throw new ZvexError('options', error.message);
  }
  return json.replace(/\\\\|\\ud[89a-f][0-9a-f]{2}/g, (part) => (part === '\\\\' ? part : '\ufffd'));
}

// Positions in the text, counted in code points, as indexes of the string.
function toIndexes(lines, text) {
  if (!/[\ud800-\udbff]/.test(text)) return;
  const indexes = [];
  let index = 0;
  for (const character of text) {
    indexes.push(index);
    index += character.length;
  }
  indexes.push(index);
  for (const line of lines) {
    for (const span of [line, ...line.clusters]) {
      span.start = indexes[span.start];
      span.end = indexes[span.end];
    }
  }
}

class Zvex {
  #exports;
  #failed = null;
  #described = null;

  constructor(exports) {
    this.#exports = exports;
  }

  addFont(name, bytes) {
    this.#add('font', name, bytes, true);
  }

  addFile(name, bytes) {
    this.#add('file', name, bytes, false);
  }

  render(options) {
    const picture = this.#make(options, true);
    const start = this.#call('zvex_pixels');
    picture.data = new Uint8ClampedArray(this.#memory(), start, 4 * picture.width * picture.height).slice();
    return picture;
  }

  measure(options) {
    return this.#make(options, false);
  }

  presets() {
    return structuredClone(this.#describe().presets);
  }

  schema() {
    return structuredClone(this.#describe().style);
  }

  optionsSchema() {
    return structuredClone(this.#describe().options);
  }

  encodePng(picture, settings) {
    const {dpi = 72} = settings ?? {};
    const {width, height} = picture ?? {};
    const data = bytesOf('data', picture?.data);
    if (!(Number.isInteger(width) && Number.isInteger(height) && width > 0 && height > 0 && data.length === 4 * width * height))
      throw new ZvexError('data', `${data.length} bytes are not four for each of ${width} x ${height} pixels`);
    if (!(dpi >= 1 && dpi <= 10000)) throw new ZvexError('dpi', `${dpi} is not a number from 1 to 10000`);
    return this.#with([data], (pixels) => {
      this.#ask('zvex_encode_png', pixels, width, height, dpi);
      return this.#answer().slice();
    });
  }

  get memory() {
    return this.#memory().byteLength;
  }

  addIcu(bytes) {
    const data = bytesOf('icu', bytes);
    const memory = this.#allocate(data.length);  // malloc aligns to 16 bytes; never released
    new Uint8Array(this.#memory(), memory).set(data);
    this.#ask('zvex_add_icu', memory);
  }

  #add(option, name, bytes, font) {
    if (typeof name !== 'string' || name === '') throw new ZvexError('name', 'is not a name');
    this.#with([new TextEncoder().encode(name), bytesOf(option, bytes)], (text, data, textSize, size) =>
        this.#ask('zvex_add', text, textSize, data, size, font));
  }

  #make(options, draws) {
    this.#with([new TextEncoder().encode(jsonOf(options))], (json, size) => this.#ask('zvex_render', json, size, draws));
    const made = this.#json();
    toIndexes(made.lines, options.text);
    return made;
  }

  #describe() {
    if (this.#described === null) {
      this.#ask('zvex_describe');
      this.#described = this.#json();
    }
    return this.#described;
  }

  #memory() {
    return this.#exports.memory.buffer;
  }

  #allocate(size) {
    const memory = this.#call('zvex_allocate', Math.max(size, 1));
    if (memory === 0) throw new ZvexError('text', 'not enough memory');
    return memory;
  }

  // Calls `action` with the places of copies of the pieces, then their sizes.
  #with(pieces, action) {
    const places = [];
    try {
      for (const piece of pieces) places.push(this.#allocate(piece.length));
      places.forEach((place, i) => new Uint8Array(this.#memory(), place).set(pieces[i]));
      return action(...places, ...pieces.map((piece) => piece.length));
    } finally {
      if (this.#failed === null) for (const place of places) this.#call('zvex_release', place);
    }
  }

  #ask(name, ...values) {
    if (this.#call(name, ...values)) return;
    const {option, reason} = this.#json();
    throw new ZvexError(option, reason.replace(/\["(NaN|-?Infinity)"\]/, '$1'));
  }

  // Unsigned places of up to 4 GB come as negative numbers.
  #call(name, ...values) {
    if (this.#failed !== null) throw new ZvexError('instance', `must be loaded anew: ${this.#failed}`);
    try {
      return this.#exports[name](...values) >>> 0;
    } catch (error) {
      this.#failed = error.message;
      throw new ZvexError('instance', `must be loaded anew: ${this.#failed}`);
    }
  }

  #answer() {
    return new Uint8Array(this.#memory(), this.#call('zvex_answer'), this.#call('zvex_answer_size'));
  }

  #json() {
    return JSON.parse(new TextDecoder().decode(this.#answer()));
  }
}

export async function load({wasm = new URL('./zvex.wasm', import.meta.url), icu = new URL('./icu.dat', import.meta.url)} = {}) {
  const [module, ...data] = await Promise.all([compiled(wasm), ...[icu ?? []].flat().map((part) => read('icu', part))]);
  let exports;
  const system = systemOf(() => exports.memory);
  const {exports: made} = await WebAssembly.instantiate(module, {wasi_snapshot_preview1: system, env: system});
  exports = made;
  exports._initialize();
  const zvex = new Zvex(exports);
  for (const part of data) zvex.addIcu(part);
  return zvex;
}
