// SPDX-License-Identifier: Apache-2.0
// Runs in the worker that web/worker.js starts: answers {call, values} with {value} or {error}, moving the bytes of pictures.
import {ZvexError, load} from './zvex.js';

let zvex;

async function answer({call, values}) {
  try {
    if (call === 'load') {
      zvex = await load(values[0]);
      return [{}];
    }
    const value = zvex[call](...values);
    const bytes = value instanceof Uint8Array ? value : value?.data;
    return [{value}, bytes ? [bytes.buffer] : []];
  } catch (error) {
    return [{error: {option: error instanceof ZvexError ? error.option : 'worker', reason: error.reason ?? error.message}}];
  }
}

if (typeof self !== 'undefined' && typeof self.postMessage === 'function') {
  self.onmessage = async ({data}) => self.postMessage(...(await answer(data)));
} else {
  const threads = 'node:worker_threads';  // a name that bundlers leave alone
  const {parentPort} = await import(/* @vite-ignore */ threads);
  parentPort.on('message', async (data) => parentPort.postMessage(...(await answer(data))));
}
