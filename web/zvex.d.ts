// SPDX-License-Identifier: Apache-2.0
import type {Options, PresetName, Style} from './options.js';

export type {Options, PresetName, Style};
export type * from './options.js';

/** Bytes of a file. They are copied. */
export type Bytes = ArrayBuffer | ArrayBufferView;
/** Where a file comes from: its URL, the answer to a request, or its bytes. */
export type From = string | URL | Response | Bytes | Promise<Response | Bytes>;

/** Says which option is wrong ("size", "layers[0].spread", "font") and why. The instance works on, unless the option is "instance". */
export class ZvexError extends Error {
  constructor(option: string, reason: string);
  readonly option: string;
  readonly reason: string;
}

/** Pixels of the picture, y growing downwards; right and bottom are exclusive. */
export interface Box {
  left: number;
  top: number;
  right: number;
  bottom: number;
}

/** A part of the text, as indexes of the string: text.slice(start, end). */
export interface Span {
  start: number;
  end: number;
  box: Box;
}

export interface Line extends Span {
  baseline: number;
  /** Characters that are drawn as one unit, in the order of the text. */
  clusters: Span[];
}

export interface Metrics {
  width: number;
  height: number;
  /** Left end of the first line, on its baseline. */
  origin: {x: number; y: number};
  /** Space for effects around the text's view. */
  margins: Box;
  /** Of the first line. */
  baseline: number;
  /** The lines that show. */
  lines: Line[];
  /** Such as characters that no font has. */
  warnings: string[];
}

export interface Pixels {
  width: number;
  height: number;
  /** Red, green, blue, alpha of each pixel, not premultiplied, as ImageData has them. */
  data: Uint8ClampedArray;
}

export interface Picture extends Metrics, Pixels {}

export interface LoadOptions {
  /** zvex.wasm, or what WebAssembly.compile made of it; the file beside this module by default. */
  wasm?: From | WebAssembly.Module | Promise<WebAssembly.Module>;
  /** ICU's data: icu.dat by default, which breaks lines of most scripts; with dictionaries.dat those of Thai, Lao, Khmer and
   * Burmese, too. null: none, for texts that are not wrapped. */
  icu?: From | From[] | null;
}

/** An instance with memory of its own, for one call at a time. */
export interface Zvex {
  /** Makes a font known by this name, for `font` and `fallback`; "NAME#2" is the third font of a collection. Throws ZvexError
   * if it cannot be drawn. Fonts stay as long as the instance; a name keeps its bytes. */
  addFont(name: string, bytes: Bytes): void;
  /** The same for the PNG of a pattern and for a style file. */
  addFile(name: string, bytes: Bytes): void;
  /** The options are those of the lines of zvtext batch. Text, font and look that stay the same are kept for the next call. */
  render(options: Options): Picture;
  /** The same without pixels; trim has no effect. */
  measure(options: Options): Metrics;
  /** The styles of the presets by their names. */
  presets(): Record<PresetName, Style>;
  /** The JSON Schema of style files, and that of the options. */
  schema(): object;
  optionsSchema(): object;
  /** A PNG of exactly these pixels. (A canvas premultiplies colours and rounds.) */
  encodePng(picture: Pixels, settings?: {dpi?: number}): Uint8Array;
  /** Bytes that the instance holds. They grow with the largest picture and never shrink: load anew after huge ones. */
  readonly memory: number;
}

/** Loads an instance. Throws ZvexError. */
export function load(options?: LoadOptions): Promise<Zvex>;
