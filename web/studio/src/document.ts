// SPDX-License-Identifier: Apache-2.0
// What the page edits. A style is kept as its file holds it. Effects and layers carry two marks of the page's own, which
// no style key can equal: a number that stays with an item when its place changes, and whether it is switched off.

export type Json = null | boolean | number | string | Json[] | Item;
export interface Item { [key: string]: Json | undefined }
export type Path = readonly (string | number)[];

export const ID = '#id';
export const OFF = '#off';

export interface Session {
    text: string;
    font: string;
    sizes: number[];
    style: Item;
}

let lastId = 0;

export function isItem(value: unknown): value is Item {
    return typeof value === 'object' && value !== null && !Array.isArray(value);
}

export function itemsAt(owner: Item, key: string): Item[] {
    const list = owner[key];
    return Array.isArray(list) ? list.filter(isItem) : [];
}

/** The style with a mark on every effect and layer. */
export function marked(style: Item): Item {
    const mark = (item: Item): Item => ({ ...marked(item), [ID]: ++lastId });
    const copy: Item = { ...style };
    for (const key of ['layers', 'effects']) if (Array.isArray(copy[key])) copy[key] = itemsAt(copy, key).map(mark);
    return copy;
}

/** The style as a file holds it: without marks, and without what is switched off. */
export function plain(style: Item): Item {
    const strip = (value: Json | undefined): Json | undefined => {
        if (Array.isArray(value)) {
            return value.filter((item) => !(isItem(item) && item[OFF])).map((item) => strip(item) as Json);
        }
        if (!isItem(value)) return value;
        const copy: Item = {};
        for (const [key, inner] of Object.entries(value)) if (!key.startsWith('#')) copy[key] = strip(inner);
        return copy;
    };
    return strip(style) as Item;
}

/** The path in `style` of a path in `plain(style)`: items that are switched off count only in the first. */
export function markedPath(style: Item, path: Path): Path {
    let at: Json | undefined = style;
    return path.map((step) => {
        let key = step;
        if (Array.isArray(at) && typeof step === 'number') {
            const on = at.flatMap((item, i) => (isItem(item) && item[OFF] ? [] : [i]));
            key = on[step] ?? step;
        }
        at = Array.isArray(at) ? at[key as number] : isItem(at) ? at[key] : undefined;
        return key;
    });
}

export function valueAt(root: Json | undefined, path: Path): Json | undefined {
    let at = root;
    for (const key of path) {
        at = Array.isArray(at) ? at[key as number] : isItem(at) ? at[key] : undefined;
    }
    return at;
}

/** A copy of `root` with the value at the path replaced, or taken away if it is undefined. */
export function withValue<T extends Json>(root: T, path: Path, value: Json | undefined): T {
    const [key, ...rest] = path;
    if (key === undefined) return value as T;
    if (Array.isArray(root)) {
        const copy = [...root];
        if (rest.length === 0 && value === undefined) copy.splice(key as number, 1);
        else copy[key as number] = withValue((copy[key as number] ?? {}) as Json, rest, value);
        return copy as T;
    }
    const copy: Item = { ...(root as Item) };
    if (rest.length === 0 && value === undefined) delete copy[key];
    else copy[key] = withValue((copy[key] ?? {}) as Json, rest, value);
    return copy as T;
}

export function moved<T>(list: readonly T[], from: number, to: number): T[] {
    const copy = [...list];
    const [item] = copy.splice(from, 1);
    if (item !== undefined) copy.splice(to, 0, item);
    return copy;
}

export function duplicated(list: readonly Item[], index: number): Item[] {
    const copy = [...list];
    const item = list[index];
    if (item) copy.splice(index + 1, 0, { ...marked(item), [ID]: ++lastId });
    return copy;
}

export function newItem(settings: Item): Item {
    return { ...settings, [ID]: ++lastId };
}

/** Steps to go back and forth. Changes of one group, such as those of one drag, are one step. */
export class History<T> {
    private past: T[] = [];
    private future: T[] = [];
    private group: string | null = null;
    constructor(public present: T) {}

    change(next: T, group: string | null = null): void {
        if (next === this.present) return;
        if (group === null || group !== this.group) {
            this.past = [...this.past.slice(-199), this.present];
        }
        this.future = [];
        this.present = next;
        this.group = group;
    }
    /** Ends a group: the next change is a step of its own. */
    settle(): void {
        this.group = null;
    }
    undo(): void {
        this.step(this.past, this.future);
    }
    redo(): void {
        this.step(this.future, this.past);
    }
    get canUndo(): boolean {
        return this.past.length > 0;
    }
    get canRedo(): boolean {
        return this.future.length > 0;
    }

    private step(from: T[], to: T[]): void {
        const next = from.pop();
        if (next === undefined) return;
        to.push(this.present);
        this.present = next;
        this.group = null;
    }
}
