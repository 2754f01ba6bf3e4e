// SPDX-License-Identifier: Apache-2.0
// A session as the hash of a link: JSON, deflated, in URL-safe base64. Nothing is sent: browsers keep the hash to themselves.

import type { Item, Session } from './document';
import { isItem, marked, plain } from './document';

const MOST_BYTES = 1 << 20;

async function through(bytes: Uint8Array<ArrayBuffer>, stream: GenericTransformStream): Promise<Uint8Array<ArrayBuffer>> {
    const parts: Uint8Array<ArrayBuffer>[] = [];
    let length = 0;
    const reader = (new Blob([bytes]).stream().pipeThrough(stream) as ReadableStream<Uint8Array<ArrayBuffer>>).getReader();
    for (let step = await reader.read(); !step.done; step = await reader.read()) {
        parts.push(step.value);
        length += step.value.length;
        if (length > MOST_BYTES) throw new Error('The link holds too much.');
    }
    return new Uint8Array(await new Blob(parts).arrayBuffer());
}

export async function toHash(session: Session): Promise<string> {
    const json = JSON.stringify({ ...session, style: plain(session.style) });
    const bytes = await through(new TextEncoder().encode(json), new CompressionStream('deflate-raw'));
    const text = Array.from(bytes, (byte) => String.fromCharCode(byte)).join('');
    return `#${btoa(text).replaceAll('+', '-').replaceAll('/', '_').replaceAll('=', '')}`;
}

/** Null if the hash is no session. */
export async function fromHash(hash: string): Promise<Session | null> {
    try {
        const text = atob(hash.slice(1).replaceAll('-', '+').replaceAll('_', '/'));
        const bytes = await through(Uint8Array.from(text, (letter) => letter.charCodeAt(0)), new DecompressionStream('deflate-raw'));
        return session(JSON.parse(new TextDecoder().decode(bytes)) as unknown);
    } catch {
        return null;
    }
}

function session(value: unknown): Session | null {
    if (!isItem(value) || typeof value.text !== 'string' || typeof value.font !== 'string' || !isItem(value.style)) return null;
    const sizes = Array.isArray(value.sizes) ? value.sizes.filter((size): size is number => typeof size === 'number') : [];
    return sizes.length === 0 ? null : { text: value.text, font: value.font, sizes, style: marked(value.style as Item) };
}
