// SPDX-License-Identifier: Apache-2.0
// The controls of the page, read from the schema of style files: a key that the schema gains has a control without a
// change here.

import type { Item, Json } from './document';
import { isItem } from './document';

interface Common {
    key: string;
    /** The key in words. */
    label: string;
    help: string;
    unit: string;
    fallback: Json | undefined;
    required: boolean;
}
export interface NumberControl extends Common { kind: 'number'; min: number; max: number; whole: boolean }
export interface AngleControl extends Common { kind: 'angle' }
export interface SwitchControl extends Common { kind: 'switch' }
export interface ChoiceControl extends Common { kind: 'choice'; options: string[] }
export interface ColorControl extends Common { kind: 'color' }
export interface StopsControl extends Common { kind: 'stops' }
export interface TintControl extends Common { kind: 'tint' }
export interface PairControl extends Common { kind: 'pair'; min: number; max: number }
export interface WordsControl extends Common { kind: 'words' }
export interface FileControl extends Common { kind: 'file' }
/** A colour or one of some effects, such as the ground of the picture. */
export interface GroundControl extends Common { kind: 'ground'; effects: string[] }
export type Control = NumberControl | AngleControl | SwitchControl | ChoiceControl | ColorControl | StopsControl |
    TintControl | PairControl | WordsControl | FileControl | GroundControl;

export interface EffectKind { name: string; help: string; controls: Control[] }

const UNIT = /(?:,? in|(?<=\.) In) (px|deg|em|%)(?=$|[.;:,])/;
export const DEFAULT_PATTERN = 'checks.png';
const HIDDEN = new Set(['$schema', 'type', 'effects', 'layers', 'extends']);

export class Schema {
    readonly style: Control[];
    readonly layer: Control[];
    readonly effects = new Map<string, EffectKind>();
    readonly mostLayers: number;

    constructor(private readonly root: Item) {
        const layers = this.follow(this.child(root, 'properties', 'layers'));
        for (const name of this.namesIn(this.child(root, '$defs', 'effects', 'items'))) {
            const node = this.child(root, '$defs', name);
            this.effects.set(name, { name, help: text(node.description), controls: this.controls(node) });
        }
        this.style = this.controls(root);
        this.layer = this.controls(this.child(layers, 'items'));
        this.mostLayers = typeof layers.maxItems === 'number' ? layers.maxItems : 32;
    }

    private child(node: Item, ...keys: string[]): Item {
        let at: Item = node;
        for (const key of keys) {
            const next: Json | undefined = at[key];
            at = isItem(next) ? next : {};
        }
        return at;
    }

    /** The names that the alternatives of a node refer to. */
    private namesIn(node: Item): string[] {
        return alternatives(node).flatMap((option) => (typeof option.$ref === 'string' ? [nameOf(option.$ref)] : []));
    }

    /** The node that is meant: references followed, and null, which takes a setting away, left aside. */
    private follow(node: Item): Item {
        const options = alternatives(node).filter((option) => option.type !== 'null');
        if (options.length === 1) return this.follow({ ...node, oneOf: undefined, anyOf: undefined, ...options[0]! });
        if (typeof node.$ref !== 'string') return node;
        return { ...this.follow(this.child(this.root, '$defs', nameOf(node.$ref))), ...node };
    }

    private controls(owner: Item): Control[] {
        const required = Array.isArray(owner.required) ? owner.required : [];
        return Object.entries(this.child(owner, 'properties')).flatMap(([key, value]) => {
            const control = isItem(value) && !HIDDEN.has(key) ? this.control(key, this.follow(value)) : null;
            return control ? [{ ...control, required: required.includes(key) }] : [];
        });
    }

    private control(key: string, node: Item): Control | null {
        const help = text(node.description);
        const unit = UNIT.exec(help)?.[1] ?? '';
        const common: Common = { key, label: words(key), help: help.replace(UNIT, ''), unit, fallback: node.default, required: false };
        const target = typeof node.$ref === 'string' ? nameOf(node.$ref) : '';
        if (target === 'color' || target === 'stops' || target === 'tint') return { ...common, kind: target };
        const options = alternatives(node);
        if (options.length > 1) {
            const names = this.namesIn(node).filter((name) => this.effects.has(name));
            return names.length > 0 ? { ...common, kind: 'ground', effects: names } : { ...common, kind: 'color' };
        }
        if (Array.isArray(node.enum)) {
            return { ...common, kind: 'choice', options: node.enum.flatMap((option) => (typeof option === 'string' ? [option] : [])) };
        }
        const type = Array.isArray(node.type) ? node.type.find((name) => name !== 'null') : node.type;
        switch (type) {
            case 'boolean': return { ...common, kind: 'switch' };
            case 'string': return { ...common, kind: key === 'file' ? 'file' : 'words' };
            case 'array': return { ...common, kind: 'pair', ...range(this.child(node, 'items')) };
            case 'number':
            case 'integer':
                if (unit === 'deg' && node.maximum === undefined) return { ...common, kind: 'angle' };
                return { ...common, kind: 'number', ...range(node), whole: type === 'integer' };
            default: return null;
        }
    }
}

function alternatives(node: Item): Item[] {
    const list = node.oneOf ?? node.anyOf;
    return Array.isArray(list) ? list.filter(isItem) : [];
}

function nameOf(reference: string): string {
    return reference.slice(reference.lastIndexOf('/') + 1);
}

function text(value: Json | undefined): string {
    return typeof value === 'string' ? value : '';
}

function range(node: Item): { min: number; max: number } {
    const number = (value: Json | undefined, otherwise: number) => (typeof value === 'number' ? value : otherwise);
    return { min: number(node.minimum, number(node.exclusiveMinimum, 0)), max: number(node.maximum, 100) };
}

export function words(key: string): string {
    const spaced = key.replaceAll('-', ' ');
    return spaced.charAt(0).toUpperCase() + spaced.slice(1);
}

/** An effect with what it cannot be drawn without: a pattern's file, and colours where there is not one colour instead. */
export function firstSettings(kind: EffectKind): Item {
    const settings: Item = { type: kind.name }, hasColor = kind.controls.some((control) => control.kind === 'color');
    for (const control of kind.controls) {
        if (control.kind === 'file') settings[control.key] = DEFAULT_PATTERN;
        else if (control.kind === 'stops' && !hasColor) {
            settings[control.key] = [{ color: '#ffd166', position: 0 }, { color: '#d1495b', position: 100 }];
        }
    }
    return settings;
}
