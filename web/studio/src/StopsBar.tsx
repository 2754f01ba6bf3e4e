// SPDX-License-Identifier: Apache-2.0
// The stops of a gradient as handles on a bar: drag them, or move them with the arrow keys. A click on the bar adds one.

import type { JSX } from 'preact';
import { useState } from 'preact/hooks';

import { cssText, parseColor } from './color';
import type { Edit } from './controls';
import { ColorField, numberOf, textOf } from './controls';
import type { Item, Json } from './document';
import { isItem } from './document';

const MOST_STOPS = 256;

const clamp = (percent: number): number => Number(Math.min(100, Math.max(0, percent)).toFixed(1));
const positionOf = (stop: Item): number => numberOf(stop.position, 0);

function cssOf(stop: Item): string {
    const color = parseColor(textOf(stop.color)) ?? { red: 0, green: 0, blue: 0, alpha: 1 };
    return cssText({ ...color, alpha: color.alpha * numberOf(stop.opacity, 1) });
}

export function StopsBar({ id, label, value, edit }: { id: string; label: string; value: Json | undefined; edit: Edit }): JSX.Element {
    const [chosen, setChosen] = useState(0);
    const stops = Array.isArray(value) ? value.filter(isItem) : [];
    const index = Math.min(chosen, stops.length - 1), stop = stops[index];

    // Stops never fall in position: a handle stops at its neighbours.
    const move = (i: number, percent: number) => {
        const least = i > 0 ? positionOf(stops[i - 1]!) : 0, most = i + 1 < stops.length ? positionOf(stops[i + 1]!) : 100;
        set(i, 'position', Math.min(most, Math.max(least, clamp(percent))));
    };
    const set = (i: number, key: string, next: Json | undefined) =>
        edit.change(stops.map((old, j) => (j === i ? without({ ...old, [key]: next }) : old)), true);
    const add = (percent: number) => {
        if (stops.length >= MOST_STOPS) return;
        const position = clamp(percent), after = stops.filter((other) => positionOf(other) <= position).length;
        const like = stops[Math.max(0, after - 1)] ?? { color: '#ffffff' };
        edit.change([...stops.slice(0, after), { ...like, position }, ...stops.slice(after)]);
        setChosen(after);
    };
    const remove = (i: number) => {
        if (stops.length < 2) return;
        edit.change(stops.filter((_, j) => j !== i));
        setChosen(Math.max(0, i - 1));
    };
    const percentAt = (bar: Element, clientX: number) => {
        const box = bar.getBoundingClientRect();
        return ((clientX - box.left) / box.width) * 100;
    };
    const ramp = stops.map((each) => `${cssOf(each)} ${positionOf(each)}%`).join(', ');

    return (
        <div class="stops" role="group" aria-labelledby={`${id}-label`}>
            <div class="bar checks" onDblClick={(event) => add(percentAt(event.currentTarget, event.clientX))} title="Double-click adds a stop">
                <div class="ramp" style={{ backgroundImage: stops.length > 1 ? `linear-gradient(to right, ${ramp})` : 'none', backgroundColor: stop && stops.length === 1 ? cssOf(stop) : 'transparent' }} />
                {stops.map((each, i) => (
                    <button type="button" key={i} class={`handle ${i === index ? 'is-chosen' : ''}`} role="slider"
                        aria-label={`${label}: stop ${i + 1} of ${stops.length}`} aria-valuemin={0} aria-valuemax={100}
                        aria-valuenow={positionOf(each)} aria-valuetext={`${positionOf(each)} %, ${textOf(each.color)}`}
                        style={{ left: `${positionOf(each)}%` }}
                        onFocus={() => setChosen(i)}
                        onPointerDown={(event) => { event.currentTarget.setPointerCapture(event.pointerId); setChosen(i); }}
                        onPointerMove={(event) => event.currentTarget.hasPointerCapture(event.pointerId) && move(i, percentAt(event.currentTarget.parentElement!, event.clientX))}
                        onPointerUp={edit.settle} onBlur={edit.settle}
                        onKeyDown={(event) => {
                            const step = { ArrowRight: 1, ArrowUp: 1, ArrowLeft: -1, ArrowDown: -1, PageUp: 10, PageDown: -10 }[event.key];
                            if (step !== undefined) move(i, positionOf(each) + step);
                            else if (event.key === 'Delete' || event.key === 'Backspace') remove(i);
                            else return;
                            event.preventDefault();
                        }}>
                        <span style={{ backgroundColor: cssOf(each) }} />
                    </button>
                ))}
            </div>
            {stop && (
                <ColorField id={id} label={`Stop ${index + 1}`} text={textOf(stop.color)}
                    edit={{ value: stop.color, settle: edit.settle, change: (next) => set(index, 'color', next) }} />
            )}
            <div class="row wrap">
                {stop && (
                    <label class="inline">at <input type="number" min={0} max={100} step="any" value={positionOf(stop)}
                        onInput={(event) => Number.isFinite(event.currentTarget.valueAsNumber) && move(index, event.currentTarget.valueAsNumber)}
                        onBlur={edit.settle} /> %</label>
                )}
                {stop && (
                    <label class="inline">opacity <input type="number" min={0} max={1} step="any" value={numberOf(stop.opacity, 1)}
                        onInput={(event) => Number.isFinite(event.currentTarget.valueAsNumber) && set(index, 'opacity', event.currentTarget.valueAsNumber)}
                        onBlur={edit.settle} /></label>
                )}
                <button type="button" onClick={() => add(stop ? (positionOf(stop) + positionOf(stops[index + 1] ?? { position: 100 })) / 2 : 0)}>Add stop</button>
                {stops.length > 1 && <button type="button" onClick={() => remove(index)}>Remove stop</button>}
                {stops.length === 0 && <span class="help">none: one colour</span>}
            </div>
        </div>
    );
}

function without(item: Item): Item {
    return Object.fromEntries(Object.entries(item).filter(([, value]) => value !== undefined));
}
