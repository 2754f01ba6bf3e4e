// SPDX-License-Identifier: Apache-2.0
// The same picture for other programs: the command line, Java, Python and JavaScript.

import type { Item, Json, Session } from './document';
import { isItem, plain } from './document';

export type Language = 'Command line' | 'JavaScript' | 'Python' | 'Java';
export const LANGUAGES: readonly Language[] = ['Command line', 'JavaScript', 'Python', 'Java'];

/** The style as a file of its own. */
export function styleText(style: Item): string {
    return `${JSON.stringify(plain(style), null, 2)}\n`;
}

/** The names of the patterns' files. */
function filesOf(value: Json | undefined): string[] {
    if (Array.isArray(value)) return value.flatMap(filesOf);
    if (!isItem(value)) return [];
    return Object.entries(value).flatMap(([key, inner]) => (key === 'file' && typeof inner === 'string' ? [inner] : filesOf(inner)));
}

/** The page has no other fonts to fall back to; neither have these. */
export function codeFor(language: Language, session: Session): string {
    const { text, font } = session, size = session.sizes[0] ?? 96, style = JSON.stringify(plain(session.style));
    switch (language) {
        case 'Command line':
            return `zvtext render --font ${shell(font)} --size ${size} --no-fallback -o words.png \\\n    --style ${shell(style)} \\\n    -- ${shell(text)}\n`;
        case 'JavaScript':
            return `import { load } from 'zvex';\n\nconst zvex = await load();\nzvex.addFont(${JSON.stringify(font)}, fontBytes);\n` +
                [...new Set(filesOf(plain(session.style)))].map((file) => `zvex.addFile(${JSON.stringify(file)}, pngBytes);\n`).join('') +
                `const picture = zvex.render({\n  text: ${JSON.stringify(text)},\n  font: ${JSON.stringify(font)},\n  size: ${size},\n` +
                `  style: ${style},\n});\n`;
        case 'Python':
            return `import zvex\n\npicture = zvex.render(${python(text)}, font=${python(font)}, size=${size}, no_fallback=True,\n` +
                `                      style=${python(plain(session.style))})\npicture.save("words.png")\n`;
        case 'Java':
            return `try (ZvText title = new ZvText()) {\n    title.font(${JSON.stringify(font)}).size(${size}).text(${java(text)})\n` +
                `        .style(ZvStyle.parse(${java(style)}))\n        .picture().writePng(out);\n}\n`;
    }
}

/** One word of a POSIX shell. */
function shell(text: string): string {
    return `'${text.replaceAll("'", "'\\''")}'`;
}

function python(value: Json | undefined): string {
    if (value === null || value === undefined) return 'None';
    if (typeof value === 'boolean') return value ? 'True' : 'False';
    if (Array.isArray(value)) return `[${value.map(python).join(', ')}]`;
    if (isItem(value)) return `{${Object.entries(value).map(([key, inner]) => `${python(key)}: ${python(inner)}`).join(', ')}}`;
    return JSON.stringify(value);
}

// JSON escapes are Java's, but for the two line ends that JSON leaves as they are.
function java(text: string): string {
    return JSON.stringify(text).replaceAll('\u2028', '\\u2028').replaceAll('\u2029', '\\u2029');
}
