// SPDX-License-Identifier: Apache-2.0
// The module zvex/worker: the module zvex in a worker, with promises. Types and contracts are in web/worker.d.ts.
import {ZvexError} from './zvex.js';

export {ZvexError};

// The calls, with the number of values before {signal, transfer}.
const CALLS = {addFont: 2, addFile: 2, render: 1, measure: 1, presets: 0, schema: 0, optionsSchema: 0, encodePng: 1};

// The worker has one request at a time: those that wait can still be given up.
class Requests {
  #worker;
  #waiting = [];
  #current = null;
  #ended = null;

  constructor(worker) {
    this.#worker = worker;
    worker.onmessage = ({data}) => this.#settle(data);
    worker.onerror = (event) => this.end(event.message || 'it cannot be started');
  }

  send(call, values, {signal, transfer = []} = {}) {
    return new Promise((resolve, reject) => {
      if (signal?.aborted) return reject(signal.reason);
      if (this.#ended !== null) return reject(this.#ended);
      const request = {message: {call, values}, transfer, resolve, reject, signal};
      request.giveUp = () => {
        this.#waiting = this.#waiting.filter((other) => other !== request);
        reject(signal.reason);
      };
      signal?.addEventListener('abort', request.giveUp);
      this.#waiting.push(request);
      this.#next();
    });
  }

  end(reason) {
    if (this.#ended !== null) return;
    this.#ended = new ZvexError('worker', reason);
    this.#worker.terminate();
    for (const request of [this.#current, ...this.#waiting]) request?.reject(this.#ended);
    this.#waiting = [];
  }

  #next() {
    if (this.#current !== null || this.#waiting.length === 0) return;
    this.#current = this.#waiting.shift();
    const {message, transfer, signal, giveUp, reject} = this.#current;
    signal?.removeEventListener('abort', giveUp);
    try {
      this.#worker.postMessage(message, transfer);
    } catch (error) {  // values that cannot be copied
      this.#current = null;
      reject(new ZvexError('options', error.message));
      this.#next();
    }
  }

  #settle({error, value}) {
    const {resolve, reject} = this.#current;
    this.#current = null;
    if (error) reject(new ZvexError(error.option, error.reason));
    else resolve(value);
    this.#next();
  }
}

// A worker of the browser, or Node's under the same names.
async function startWorker() {
  if (typeof Worker !== 'undefined') return new Worker(new URL('./worker-thread.js', import.meta.url), {type: 'module'});
  const threads = 'node:worker_threads';  // a name that bundlers leave alone
  const node = new (await import(/* @vite-ignore */ threads)).Worker(new URL('./worker-thread.js', import.meta.url));
  const worker = {postMessage: (message, transfer) => node.postMessage(message, transfer), terminate: () => node.terminate()};
  node.on('message', (data) => worker.onmessage({data}));
  node.on('error', (error) => worker.onerror(error));
  return worker;
}

export async function loadWorker({wasm, icu, worker} = {}) {
  const requests = new Requests(worker ?? (await startWorker()));
  const zvex = {terminate: () => requests.end('it was terminated')};
  for (const [call, count] of Object.entries(CALLS)) {
    zvex[call] = (...values) => {
      const {signal, transfer, ...settings} = values[count] ?? {};
      return requests.send(call, [...values.slice(0, count), settings], {signal, transfer});
    };
  }
  const place = (from) => (from instanceof URL ? from.href : from);
  try {
    await requests.send('load', [{wasm: place(wasm), icu: Array.isArray(icu) ? icu.map(place) : place(icu)}]);
  } catch (error) {
    zvex.terminate();
    throw error;
  }
  return zvex;
}
