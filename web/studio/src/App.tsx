// SPDX-License-Identifier: Apache-2.0
import type { JSX } from 'preact';
import { useCallback, useEffect, useMemo, useRef, useState } from 'preact/hooks';

import type { Edit } from './controls';
import type { Item, Path, Session } from './document';
import { History, marked, markedPath, plain, valueAt, withValue } from './document';
import type { Options } from './engine';
import { NewestFirst, ZvexError } from './engine';
import { Export } from './Export';
import type { LayersProps } from './Layers';
import { Layers, Settings } from './Layers';
import type { Drawn, Ground } from './Preview';
import { GROUNDS, Preview } from './Preview';
import { Presets } from './Presets';
import { readDropped } from './files';
import type { Studio } from './studio';

const SLOW_MS = 300;

interface Problem { message: string; path: Path }

export function App({ studio, start, note }: { studio: Studio; start: Session; note: string }): JSX.Element {
    const history = useMemo(() => new History<Session>(start), []);
    const [session, show] = useState(start);
    const [before, setBefore] = useState(start);
    const [showsBefore, setShowsBefore] = useState(false);
    const [grounds, setGrounds] = useState<Ground[]>(['light', 'dark']);
    const [photo, setPhoto] = useState<string | null>(null);
    const [fonts, setFonts] = useState(studio.fonts);
    const [message, say] = useState(note);
    const [showsHelp, setShowsHelp] = useState(false);
    const { drawn, problem, slow, isCurrent } = usePictures(studio, showsBefore ? before : session);

    const change = useCallback((next: Session, group: string | null = null) => { history.change(next, group); show(history.present); }, []);
    const step = (move: 'undo' | 'redo') => { history[move](); show(history.present); };
    const editAt = useCallback((path: Path): Edit => ({
        value: valueAt(history.present.style, path),
        change: (value, live = false) => {
            const style = withValue(history.present.style, path, value);
            change({ ...history.present, style }, live ? path.join('/') : null);
        },
        settle: () => history.settle(),
    }), []);
    const errorAt = (path: Path) =>
        problem && !showsBefore && path.join('/') === problem.path.slice(0, path.length).join('/') ? problem.message : undefined;

    const take = async (files: Iterable<File>) => {
        for (const file of files) {
            try {
                const dropped = await readDropped(file);
                if (dropped.kind === 'style') change({ ...history.present, style: marked(dropped.style) });
                else if (dropped.kind === 'pattern') {
                    await studio.addFile(file.name, dropped.bytes);
                    setPhoto(URL.createObjectURL(file));
                } else {
                    await studio.addFont(file.name, dropped.bytes);
                    setFonts(studio.fonts);
                    change({ ...history.present, font: file.name });
                }
                say(`${file.name} is loaded.`);
            } catch (error) {
                say(`${file.name}: ${error instanceof Error ? error.message : String(error)}`);
            }
        }
    };
    const pickFile = () => pick('image/png', async (file) => {
        await take([file]);
        return file.name;
    });
    useShortcuts(step);

    return (
        <div class="app" onDragOver={(event) => event.preventDefault()}
            onDrop={(event) => { event.preventDefault(); void take(event.dataTransfer?.files ?? []); }}>
            <header>
                <h1>Style studio</h1>
                <div class="row" role="group" aria-label="History">
                    <button type="button" disabled={!history.canUndo} onClick={() => step('undo')}>Undo</button>
                    <button type="button" disabled={!history.canRedo} onClick={() => step('redo')}>Redo</button>
                    <button type="button" aria-pressed={showsBefore} onClick={() => setShowsBefore(!showsBefore)}>{showsBefore ? 'Show after' : 'Show before'}</button>
                    <button type="button" onClick={() => { setBefore(session); say('Changes are now compared with this style.'); }}>Compare from here</button>
                </div>
            </header>
            <main>
                <div class="stage">
                    <Preview drawn={drawn} grounds={grounds} photo={photo} slow={slow} isCurrent={isCurrent} />
                    {problem && <p class="error" role="alert">{problem.message}</p>}
                    <p class="status" role="status">{[message, ...(drawn[0]?.picture?.warnings ?? []).map((warning) => warning.split(';')[0])].join(' ')}</p>
                    <Words session={session} fonts={fonts} change={change} settle={() => history.settle()} take={take} />
                    <fieldset class="row wrap">
                        <legend>Grounds</legend>
                        {GROUNDS.map((ground) => (
                            <label class="inline" key={ground}><input type="checkbox" checked={grounds.includes(ground)}
                                onChange={() => setGrounds(GROUNDS.filter((each) => (each === ground) !== grounds.includes(each)))} /> {ground}</label>
                        ))}
                    </fieldset>
                    <Export session={session} say={say} png={(times) => studio.png(requestOf(session, session.sizes[0] ?? 96), times)} />
                </div>
                <div class={`panel ${showsHelp ? '' : 'hides-help'}`}>
                    <label class="inline"><input type="checkbox" checked={showsHelp} onChange={() => setShowsHelp(!showsHelp)} /> Explain every setting</label>
                    <Presets studio={studio} choose={(name) => change({ ...session, style: marked(studio.presets.get(name) ?? {}) })} />
                    <Layers schema={studio.schema} style={session.style} editAt={editAt} errorAt={errorAt} pickFile={pickFile} />
                    <TextSettings schema={studio.schema} session={session} editAt={editAt} errorAt={errorAt} pickFile={pickFile} />
                </div>
            </main>
        </div>
    );
}

function requestOf(session: Session, size: number): Options {
    return { text: session.text, font: session.font, size, style: plain(session.style) };
}

// The newest pictures that are ready, and what the newest request was refused for.
function usePictures(studio: Studio, session: Session) {
    const queue = useMemo(() => new NewestFirst(), []);
    const [drawn, setDrawn] = useState<Drawn[]>([]);
    const [problem, setProblem] = useState<Problem | null>(null);
    const [slow, setSlow] = useState(false);
    const [answered, setAnswered] = useState<Session | null>(null);
    const newest = useRef(session);
    newest.current = session;
    useEffect(() => {
        const timer = setTimeout(() => setSlow(true), SLOW_MS);
        const work = () => Promise.all(session.sizes.map(async (size) => ({ size, picture: await studio.engine.render(requestOf(session, size)) })));
        const finish = () => { clearTimeout(timer); setSlow(false); setAnswered(session); };
        queue.ask('pictures', work).then((pictures) => {
            if (pictures === undefined) return;
            setDrawn(pictures);
            setProblem(null);
            if (newest.current === session) finish();
        }, (error: unknown) => {
            setProblem(problemOf(error, session.style));
            finish();
        });
        return () => clearTimeout(timer);
    }, [studio, session]);
    return { drawn, problem, slow, isCurrent: answered === session };
}

// Of a style, the reason begins with the place: "effects[1].width: 500 is not ..."
function problemOf(error: unknown, style: Item): Problem {
    if (!(error instanceof ZvexError)) return { message: String(error), path: [] };
    const [place = ''] = error.option === 'style' ? error.reason.split(': ', 1) : [error.option];
    const path = [...place.matchAll(/[^.[\]]+/g)].map(([step]) => (/^\d+$/.test(step) ? Number(step) : step));
    return { message: error.reason, path: markedPath(style, path) };
}

function Words({ session, fonts, change, settle, take }: {
    session: Session;
    fonts: string[];
    change: (next: Session, group?: string | null) => void;
    settle: () => void;
    take: (files: Iterable<File>) => Promise<void>;
}): JSX.Element {
    const [draft, setDraft] = useState<string | null>(null);
    return (
        <section class="words" aria-label="Words">
            <label for="text">Text</label>
            <textarea id="text" dir="auto" rows={2} maxLength={2000} value={session.text} onBlur={settle}
                onInput={(event) => change({ ...session, text: event.currentTarget.value }, 'text')} />
            <div class="row wrap">
                <label class="inline">Font{' '}
                    <select value={session.font} onChange={(event) => change({ ...session, font: event.currentTarget.value })}>
                        {fonts.map((name) => <option key={name} value={name}>{name}</option>)}
                    </select>
                </label>
                <label class="button">Load files…
                    <input type="file" multiple accept=".ttf,.otf,.ttc,.otc,.json,.png" onChange={(event) => void take(event.currentTarget.files ?? [])} />
                </label>
                <label class="inline">Sizes in px{' '}
                    <input type="text" inputMode="numeric" size={12} value={draft ?? session.sizes.join(', ')}
                        onInput={(event) => {
                            setDraft(event.currentTarget.value);
                            const sizes = event.currentTarget.value.split(/[\s,;]+/).map(Number).filter((size) => size > 0 && size <= 1000).slice(0, 6);
                            if (sizes.length > 0) change({ ...session, sizes }, 'sizes');
                        }}
                        onBlur={() => { setDraft(null); settle(); }} />
                </label>
            </div>
        </section>
    );
}

function TextSettings({ schema, session, ...rest }: Omit<LayersProps, 'style'> & { session: Session }): JSX.Element {
    return (
        <section aria-labelledby="text-title">
            <h2 id="text-title">Whole text</h2>
            <Settings {...rest} controls={schema.style.filter(({ key }) => key !== 'size')} owner={session.style} path={[]} />
        </section>
    );
}

function useShortcuts(step: (move: 'undo' | 'redo') => void): void {
    const current = useRef(step);
    current.current = step;
    useEffect(() => {
        const onKey = (event: KeyboardEvent) => {
            if (!(event.ctrlKey || event.metaKey) || event.key.toLowerCase() !== 'z') return;
            event.preventDefault();
            current.current(event.shiftKey ? 'redo' : 'undo');
        };
        addEventListener('keydown', onKey);
        return () => removeEventListener('keydown', onKey);
    }, []);
}

function pick(accept: string, use: (file: File) => Promise<string>): Promise<string | null> {
    return new Promise((resolve) => {
        const input = document.createElement('input');
        input.type = 'file';
        input.accept = accept;
        input.oncancel = () => resolve(null);
        input.onchange = () => { const file = input.files?.[0]; resolve(file ? use(file) : null); };
        input.click();
    });
}
