// SPDX-License-Identifier: Apache-2.0
// Colours of styles: #rgb, #rrggbb, #aarrggbb (alpha first), and what else CSS understands.

export interface Rgba { red: number; green: number; blue: number; alpha: number }

const hex = (value: number): string => Math.round(value).toString(16).padStart(2, '0');

export function parseColor(text: string): Rgba | null {
    const digits = /^#([0-9a-f]{3}|[0-9a-f]{6}|[0-9a-f]{8})$/i.exec(text.trim())?.[1];
    if (digits === undefined) return parseCss(text);
    const full = digits.length === 3 ? [...digits].map((digit) => digit + digit).join('') : digits;
    const bytes = (full.length === 6 ? `ff${full}` : full).match(/../g)!.map((pair) => parseInt(pair, 16));
    return { alpha: bytes[0]! / 255, red: bytes[1]!, green: bytes[2]!, blue: bytes[3]! };
}

// The browser writes every colour as rgb() or rgba() when it is asked for it.
function parseCss(text: string): Rgba | null {
    if (text.trim().startsWith('#') || !CSS.supports('color', text)) return null;
    const probe = document.createElement('i');
    probe.style.color = text;
    document.body.append(probe);
    const numbers = getComputedStyle(probe).color.match(/[\d.]+/g)?.map(Number) ?? [];
    probe.remove();
    const [red, green, blue, alpha = 1] = numbers;
    return red === undefined || green === undefined || blue === undefined ? null : { red, green, blue, alpha };
}

/** The shortest usual form: #rrggbb, or #aarrggbb where it is not opaque. */
export function colorText({ red, green, blue, alpha }: Rgba): string {
    const opaque = hex(red) + hex(green) + hex(blue);
    return alpha >= 1 ? `#${opaque}` : `#${hex(alpha * 255)}${opaque}`;
}

/** For `<input type="color">`, which knows no alpha. */
export function opaqueText(color: Rgba): string {
    return colorText({ ...color, alpha: 1 });
}

export function cssText({ red, green, blue, alpha }: Rgba): string {
    return `rgba(${red}, ${green}, ${blue}, ${alpha})`;
}
