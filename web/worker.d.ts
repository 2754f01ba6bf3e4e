// SPDX-License-Identifier: Apache-2.0
import type {Bytes, Metrics, Options, Picture, Pixels, PresetName, Style} from './zvex.js';

export {ZvexError} from './zvex.js';

/** `signal` gives the request up while it waits for others; the promise is rejected with the signal's reason. */
export interface Control {
  signal?: AbortSignal;
}

/** `transfer` lists buffers to move instead of copying, such as that of a font's bytes. */
export interface Transfer extends Control {
  transfer?: Transferable[];
}

/** An instance in a worker. Requests are answered one by one, in their order; errors are ZvexErrors. */
export interface ZvexWorker {
  addFont(name: string, bytes: Bytes, control?: Transfer): Promise<void>;
  addFile(name: string, bytes: Bytes, control?: Transfer): Promise<void>;
  render(options: Options, control?: Control): Promise<Picture>;
  measure(options: Options, control?: Control): Promise<Metrics>;
  presets(control?: Control): Promise<Record<PresetName, Style>>;
  schema(control?: Control): Promise<object>;
  optionsSchema(control?: Control): Promise<object>;
  encodePng(picture: Pixels, settings?: {dpi?: number} & Transfer): Promise<Uint8Array>;
  /** Ends the worker; requests that wait are rejected. */
  terminate(): void;
}

/** Starts a worker with an instance. `wasm` and `icu` as for load(); addresses are relative to the module's. `worker`: one of
 * the caller's that runs worker-thread.js, for bundlers that want to see its creation. */
export function loadWorker(options?: {
  wasm?: string | URL | Bytes | WebAssembly.Module;
  icu?: string | URL | Bytes | Array<string | URL | Bytes> | null;
  worker?: Worker;
}): Promise<ZvexWorker>;
