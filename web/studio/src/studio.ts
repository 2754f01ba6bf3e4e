// SPDX-License-Identifier: Apache-2.0
// What the page works with: the renderer, its presets and schema, and the files that it was given.

import type { Item } from './document';
import { isItem } from './document';
import type { Options, ZvexWorker } from './engine';
import { loadWorker } from './engine';
import { DEFAULT_PATTERN, Schema } from './schema';

export const DEFAULT_FONT = 'DejaVuSans-Bold.ttf';

// What a new pattern shows until a file is chosen.
async function checks(): Promise<Uint8Array<ArrayBuffer>> {
    const side = 8, canvas = new OffscreenCanvas(2 * side, 2 * side), ink = canvas.getContext('2d')!;
    ink.fillStyle = '#f2f2f2';
    ink.fillRect(0, 0, 2 * side, 2 * side);
    ink.fillStyle = '#4a6fa5';
    for (const at of [0, side]) ink.fillRect(at, at, side, side);
    return new Uint8Array(await (await canvas.convertToBlob({ type: 'image/png' })).arrayBuffer());
}

export class Studio {
    fonts: string[] = [];
    private constructor(
        readonly engine: ZvexWorker,
        readonly schema: Schema,
        readonly presets: ReadonlyMap<string, Item>,
    ) {}

    static async start(): Promise<Studio> {
        const font = fetch(`fonts/${DEFAULT_FONT}`).then((answer) => answer.arrayBuffer());
        const engine = await loadWorker();
        const presets = new Map(Object.entries(await engine.presets()).filter((entry): entry is [string, Item] => isItem(entry[1])));
        const studio = new Studio(engine, new Schema(await engine.schema() as Item), presets);
        await studio.addFont(DEFAULT_FONT, new Uint8Array(await font));
        await studio.addFile(DEFAULT_PATTERN, await checks());
        return studio;
    }

    async addFont(name: string, bytes: Uint8Array<ArrayBuffer>): Promise<void> {
        await this.engine.addFont(name, bytes);
        this.fonts = [...this.fonts.filter((font) => font !== name), name];
    }
    addFile(name: string, bytes: Uint8Array<ArrayBuffer>): Promise<void> {
        return this.engine.addFile(name, bytes);
    }
    /** The bytes are the renderer's own: a canvas would lose colours where the picture is translucent. */
    async png(request: Options, times: number): Promise<Uint8Array> {
        return this.engine.encodePng(await this.engine.render({ ...request, scale: times }));
    }
}
