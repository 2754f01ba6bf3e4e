// SPDX-License-Identifier: Apache-2.0
// Files that are dropped on the page or chosen: styles, fonts and patterns, told apart by their first bytes.

import type { Item } from './document';
import { isItem } from './document';

export type Dropped = { kind: 'style'; style: Item } | { kind: 'font' | 'pattern'; bytes: Uint8Array<ArrayBuffer> };

const MOST_BYTES = 64 << 20;
const FONT_STARTS = ['\0\u0001\0\0', 'OTTO', 'ttcf', 'true', 'wOFF', 'wOF2'];

export async function readDropped(file: File): Promise<Dropped> {
    if (file.size > MOST_BYTES) throw new Error('The file has more than 64 MB.');
    const bytes = new Uint8Array(await file.arrayBuffer());
    const start = String.fromCharCode(...bytes.subarray(0, 4));
    if (FONT_STARTS.includes(start)) return { kind: 'font', bytes };
    if (start === '\u0089PNG') return { kind: 'pattern', bytes };
    return { kind: 'style', style: parseStyle(new TextDecoder().decode(bytes)) };
}

/** Style files may have comments and trailing commas. */
export function parseStyle(text: string): Item {
    let value: unknown;
    try {
        value = JSON.parse(withoutComments(text));
    } catch (error) {
        throw new Error(`No font, PNG or style: ${error instanceof Error ? error.message : String(error)}`);
    }
    if (!isItem(value)) throw new Error('A style is an object: {...}');
    return value as Item;
}

// Strings are matched first, so that nothing within them is taken for a comment or a comma at the end.
function withoutComments(text: string): string {
    const bare = text.replace(/"(?:[^"\\]|\\.)*"|\/\/[^\n]*|\/\*[^]*?\*\//g, (part) => (part.startsWith('"') ? part : ' '));
    return bare.replace(/"(?:[^"\\]|\\.)*"|,(?=\s*[}\]])/g, (part) => (part === ',' ? '' : part));
}
