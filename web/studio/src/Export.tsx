// SPDX-License-Identifier: Apache-2.0
// What leaves the page: the style, pictures, a link, and code that draws the same.

import type { JSX } from 'preact';
import { useState } from 'preact/hooks';

import type { Language } from './codes';
import { LANGUAGES, codeFor, styleText } from './codes';
import type { Session } from './document';
import { toHash } from './share';

export interface ExportProps {
    session: Session;
    /** The picture as PNG, so many times as large. */
    png: (times: number) => Promise<Uint8Array<ArrayBuffer>>;
    say: (message: string) => void;
}

export function Export({ session, png, say }: ExportProps): JSX.Element {
    const [language, setLanguage] = useState<Language>('Command line');
    const copy = (what: string, text: string) =>
        void navigator.clipboard.writeText(text).then(() => say(`${what} copied.`), () => say(`The browser does not let this page copy.`));
    const share = async () => {
        const hash = await toHash(session);
        history.replaceState(null, '', hash);
        copy('Link', location.href);
    };
    const savePng = async (times: number) =>
        save(new Blob([await png(times)], { type: 'image/png' }), times === 1 ? 'words.png' : `words@${times}x.png`);
    const code = codeFor(language, session);
    return (
        <section aria-labelledby="export-title">
            <h2 id="export-title">Take away</h2>
            <div class="row wrap">
                <button type="button" onClick={() => copy('Style', styleText(session.style))}>Copy style</button>
                <button type="button" onClick={() => save(new Blob([styleText(session.style)], { type: 'application/json' }), 'style.json')}>Download style</button>
                <button type="button" onClick={() => void share()}>Copy link</button>
                {[1, 2, 4].map((times) => (
                    <button type="button" key={times} onClick={() => void savePng(times).catch((error: unknown) => say(String(error)))}>PNG {times}×</button>
                ))}
            </div>
            <div class="row wrap">
                <label class="inline">Code for{' '}
                    <select value={language} onChange={(event) => setLanguage(event.currentTarget.value as Language)}>
                        {LANGUAGES.map((name) => <option key={name} value={name}>{name}</option>)}
                    </select>
                </label>
                <button type="button" onClick={() => copy('Code', code)}>Copy code</button>
            </div>
            <pre tabIndex={0} aria-label={`Code: ${language}`}>{code}</pre>
        </section>
    );
}

export function save(blob: Blob, name: string): void {
    const link = document.createElement('a');
    link.href = URL.createObjectURL(blob);
    link.download = name;
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 10_000);
}
