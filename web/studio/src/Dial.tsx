// SPDX-License-Identifier: Apache-2.0
// A direction as a dial: 0 degrees is to the right, 90 to the top.

import type { JSX } from 'preact';

import type { Edit } from './controls';

const whole = (degrees: number): number => ((Math.round(degrees) % 360) + 360) % 360;

export function Dial({ id, label, degrees, edit }: { id: string; label: string; degrees: number; edit: Edit }): JSX.Element {
    const turnTo = (event: JSX.TargetedPointerEvent<SVGSVGElement>) => {
        const box = event.currentTarget.getBoundingClientRect();
        const x = event.clientX - box.left - box.width / 2, y = event.clientY - box.top - box.height / 2;
        edit.change(whole((Math.atan2(-y, x) * 180) / Math.PI), true);
    };
    const turnBy = (event: JSX.TargetedKeyboardEvent<SVGSVGElement>) => {
        const step = { ArrowRight: 1, ArrowUp: 1, ArrowLeft: -1, ArrowDown: -1, PageUp: 15, PageDown: -15 }[event.key];
        if (step === undefined) return;
        event.preventDefault();
        edit.change(whole(degrees + step), true);
    };
    const radians = (degrees * Math.PI) / 180, x = 24 + 18 * Math.cos(radians), y = 24 - 18 * Math.sin(radians);
    return (
        <div class="row">
            <svg class="dial" viewBox="0 0 48 48" role="slider" tabIndex={0} aria-labelledby={`${id}-label`} aria-valuemin={0} aria-valuemax={359}
                aria-valuenow={whole(degrees)} aria-valuetext={`${whole(degrees)} degrees`}
                onPointerDown={(event) => { event.currentTarget.setPointerCapture(event.pointerId); turnTo(event); }}
                onPointerMove={(event) => event.currentTarget.hasPointerCapture(event.pointerId) && turnTo(event)}
                onPointerUp={edit.settle} onKeyDown={turnBy} onBlur={edit.settle}>
                <circle cx={24} cy={24} r={22} />
                <line x1={24} y1={24} x2={x} y2={y} />
                <circle class="knob" cx={x} cy={y} r={4.5} />
            </svg>
            <input id={id} type="number" step="any" value={degrees} aria-label={`${label} in degrees`}
                onInput={(event) => {
                    const typed = event.currentTarget.valueAsNumber;
                    if (Number.isFinite(typed)) edit.change(typed, true);
                }}
                onChange={edit.settle} onBlur={edit.settle} />
        </div>
    );
}
