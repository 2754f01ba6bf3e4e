// SPDX-License-Identifier: Apache-2.0
// One form control for each kind of setting.

import type { ComponentChildren, JSX } from 'preact';
import { useId, useState } from 'preact/hooks';

import type { Rgba } from './color';
import { colorText, opaqueText, parseColor } from './color';
import type { Item, Json } from './document';
import { isItem } from './document';
import type { Control, NumberControl, PairControl } from './schema';
import { Dial } from './Dial';
import { StopsBar } from './StopsBar';

export interface Edit {
    /** The setting; undefined is none. */
    value: Json | undefined;
    /** Sets it, or takes it away. Changes with `live` are one step of the history, up to the next `settle`. */
    change: (value: Json | undefined, live?: boolean) => void;
    settle: () => void;
}
export interface SettingProps extends Edit {
    control: Control;
    /** What the renderer said about this setting. */
    error: string | undefined;
    pickFile: () => Promise<string | null>;
}

const settlers = ({ settle }: Edit) => ({ onChange: settle, onPointerUp: settle, onBlur: settle });

export function Setting(props: SettingProps): JSX.Element {
    const { control, value, change, error } = props;
    const id = useId();
    const isSet = value !== undefined;
    return (
        <div class={`setting ${isSet ? 'is-set' : ''}`} data-key={control.key}>
            <div class="setting-head">
                <label id={`${id}-label`} for={id}>{control.label}{control.unit && <small> {control.unit}</small>}</label>
                {isSet && !control.required && (
                    <button type="button" class="reset" aria-label={`Reset ${control.label}`} title="Back to the default"
                        onClick={() => change(undefined)}>↺</button>
                )}
            </div>
            <Field {...props} id={id} />
            {control.help && <p class="help" id={`${id}-help`}>{control.help}</p>}
            {error !== undefined && <p class="error" role="alert">{error}</p>}
        </div>
    );
}

function Field(props: SettingProps & { id: string }): JSX.Element {
    const { control, id, value, change, pickFile } = props;
    const shown = value ?? control.fallback;
    const describedBy = control.help ? `${id}-help` : undefined;
    switch (control.kind) {
        case 'number': return <NumberField {...props} control={control} describedBy={describedBy} />;
        case 'angle': return <Dial id={id} label={control.label} degrees={numberOf(shown, 0)} edit={props} />;
        case 'switch':
            return <input id={id} type="checkbox" aria-describedby={describedBy} checked={shown === true}
                onChange={(event) => change(event.currentTarget.checked)} />;
        case 'choice':
            return (
                <select id={id} aria-describedby={describedBy} value={typeof shown === 'string' ? shown : ''}
                    onChange={(event) => change(event.currentTarget.value || undefined)}>
                    {shown === undefined && <option value="">default</option>}
                    {control.options.map((option) => <option key={option} value={option}>{option}</option>)}
                </select>
            );
        case 'color': return <ColorField id={id} label={control.label} text={textOf(shown)} edit={props} />;
        case 'tint': return <TintField {...props} />;
        case 'stops': return <StopsBar id={id} label={control.label} value={value} edit={props} />;
        case 'pair': return <PairField {...props} control={control} />;
        case 'ground': return <GroundField {...props} />;
        case 'file':
            return (
                <div class="row">
                    <output id={id}>{textOf(value) || 'none'}</output>
                    <button type="button" onClick={() => void pickFile().then((name) => name !== null && change(name))}>Choose PNG…</button>
                </div>
            );
        case 'words':
            return <input id={id} type="text" aria-describedby={describedBy} value={textOf(shown)}
                onInput={(event) => change(event.currentTarget.value || undefined, true)} {...settlers(props)} />;
    }
}

export function textOf(value: Json | undefined): string {
    return typeof value === 'string' ? value : '';
}

export function numberOf(value: Json | undefined, otherwise: number): number {
    return typeof value === 'number' && Number.isFinite(value) ? value : otherwise;
}

// A slider of 300 steps. Ranges over 1000 are logarithmic: a slider from 0 to 10000 px would be of no use.
const STEPS = 300;
function slider({ min, max, whole }: Pick<NumberControl, 'min' | 'max' | 'whole'>) {
    const span = max - min, curved = span > 1000;
    const fine = whole ? 1 : span <= 2 ? 0.01 : span <= 20 ? 0.05 : curved ? 1 : 0.5;
    return {
        fine,
        position: (value: number) => (curved ? Math.log1p(value - min) / Math.log1p(span) : (value - min) / span) * STEPS,
        value: (position: number) => {
            const exact = min + (curved ? Math.expm1((position / STEPS) * Math.log1p(span)) : (position / STEPS) * span);
            return Number(Math.min(max, Math.max(min, Math.round(exact / fine) * fine)).toFixed(4));
        },
    };
}

function NumberField({ control, id, describedBy, ...edit }: Edit & { control: NumberControl; id: string; describedBy: string | undefined }) {
    const scale = slider(control), lowest = control.min, otherwise = numberOf(control.fallback, lowest);
    const shown = numberOf(edit.value, otherwise);
    return (
        <div class="row">
            <input type="range" min={0} max={STEPS} step="any" aria-labelledby={`${id}-label`} aria-describedby={describedBy}
                aria-valuetext={`${shown} ${control.unit}`} value={scale.position(shown)}
                onKeyDown={(event) => {
                    const step = { ArrowRight: 1, ArrowUp: 1, ArrowLeft: -1, ArrowDown: -1, PageUp: 10, PageDown: -10 }[event.key];
                    if (step === undefined) return;
                    event.preventDefault();
                    const next = shown + step * (control.whole ? 1 : scale.fine);
                    edit.change(Number(Math.min(control.max, Math.max(lowest, next)).toFixed(4)), true);
                }}
                onInput={(event) => edit.change(scale.value(Number(event.currentTarget.value)), true)} {...settlers(edit)} />
            <input id={id} type="number" min={lowest} max={control.max} step={control.whole ? 1 : 'any'} value={shown}
                onInput={(event) => {
                    const typed = event.currentTarget.valueAsNumber;
                    if (Number.isFinite(typed)) edit.change(typed, true);
                }} {...settlers(edit)} />
        </div>
    );
}

function PairField({ control, id, ...edit }: Edit & { control: PairControl; id: string }) {
    const pair = Array.isArray(edit.value) ? edit.value : [0, 0];
    return (
        <div class="row wrap" role="group" aria-labelledby={`${id}-label`}>
            {['→', '↓'].map((name, i) => (
                <label key={name} class="inline"><span aria-hidden="true">{name}</span>
                    <input id={i === 0 ? id : undefined} aria-label={`${control.label}: ${i === 0 ? 'to the right' : 'down'}`} type="number" step={1} min={control.min} max={control.max} value={numberOf(pair[i], 0)}
                        onInput={(event) => {
                            const typed = event.currentTarget.valueAsNumber;
                            if (Number.isFinite(typed)) edit.change(pair.map((old, j) => (j === i ? Math.round(typed) : old)), true);
                        }} {...settlers(edit)} />
                </label>
            ))}
        </div>
    );
}

export function ColorField({ id, label, text, edit }: { id: string; label: string; text: string; edit: Edit }): JSX.Element {
    const [draft, setDraft] = useState<string | null>(null);
    const color: Rgba = parseColor(text) ?? { red: 0, green: 0, blue: 0, alpha: 1 };
    return (
        <div class="row color">
            <input id={id} type="color" value={opaqueText(color)} aria-label={label}
                onInput={(event) => {
                    const chosen = parseColor(event.currentTarget.value);
                    if (chosen) edit.change(colorText({ ...chosen, alpha: color.alpha }), true);
                }} {...settlers(edit)} />
            <input type="range" class="alpha" min={0} max={255} step={1} aria-label={`${label}: alpha`} value={Math.round(color.alpha * 255)}
                onInput={(event) => edit.change(colorText({ ...color, alpha: Number(event.currentTarget.value) / 255 }), true)} {...settlers(edit)} />
            <input type="text" size={9} spellcheck={false} aria-label={`${label}: as text`} placeholder="none" value={draft ?? text}
                onInput={(event) => {
                    const typed = event.currentTarget.value;
                    setDraft(typed);
                    if (parseColor(typed)) edit.change(typed, true);
                }}
                onBlur={() => { setDraft(null); edit.settle(); }} />
        </div>
    );
}

function TintField(props: SettingProps & { id: string }) {
    const { id, control, value, change, settle } = props;
    const tint: Item = isItem(value) ? value : {};
    const part = (key: string): Edit => ({
        value: tint[key],
        settle,
        change: (next, live) => change({ color: '#ffffff', ...tint, [key]: next }, live),
    });
    const opacity: NumberControl = {
        kind: 'number', key: 'opacity', label: `${control.label}: opacity`, help: '', unit: '', fallback: 1, required: false, min: 0, max: 1, whole: false,
    };
    return (
        <div role="group" aria-labelledby={`${id}-label`}>
            <ColorField id={id} label={control.label} text={textOf(tint.color)} edit={part('color')} />
            <label class="inline" id={`${id}o-label`} for={`${id}o`}>Opacity</label>
            <NumberField control={opacity} id={`${id}o`} describedBy={undefined} {...part('opacity')} />
        </div>
    );
}

function GroundField(props: SettingProps & { id: string }) {
    const { id, control, value, change } = props;
    if (control.kind !== 'ground') return <></>;
    if (!isItem(value)) {
        return <ColorField id={id} label={control.label} text={textOf(value)} edit={props} />;
    }
    return <p class="row"><output id={id}>{textOf(value.type)}</output>
        <button type="button" onClick={() => change('#ffffff')}>Use a colour instead</button></p>;
}

/** A button with a symbol and words for those who cannot see it. */
export function SymbolButton({ name, children, ...rest }: { name: string; children: ComponentChildren } & JSX.HTMLAttributes<HTMLButtonElement> & { disabled?: boolean }): JSX.Element {
    return <button type="button" class="symbol" aria-label={name} title={name} {...rest}>{children}</button>;
}
