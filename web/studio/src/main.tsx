// SPDX-License-Identifier: Apache-2.0
import { render } from 'preact';

import { App } from './App';
import type { Session } from './document';
import { marked } from './document';
import { fromHash } from './share';
import { DEFAULT_FONT, Studio } from './studio';

async function start(root: HTMLElement): Promise<void> {
    const studio = await Studio.start();
    const first: Session = { text: 'Golden words', font: DEFAULT_FONT, sizes: [120, 48], style: marked(studio.presets.get('gold') ?? {}) };
    const shared = location.hash.length > 1 ? await fromHash(location.hash) : null;
    const notes: string[] = [];
    if (location.hash.length > 1 && shared === null) notes.push('The link is damaged; this is a new style.');
    const session = shared ?? first;
    if (!studio.fonts.includes(session.font)) {
        notes.push(`The link's font, ${session.font}, is not part of it: drop the file here.`);
        session.font = DEFAULT_FONT;
    }
    root.replaceChildren();
    render(<App studio={studio} start={session} note={notes.join(' ')} />, root);
    if ('serviceWorker' in navigator) await navigator.serviceWorker.register('offline.js');
}

const root = document.getElementById('root')!;
start(root).catch((error: unknown) => {
    root.textContent = `The studio could not start: ${error instanceof Error ? error.message : String(error)}`;
});
