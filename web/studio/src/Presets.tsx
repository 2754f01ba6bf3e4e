// SPDX-License-Identifier: Apache-2.0
import type { JSX } from 'preact';
import { useEffect, useState } from 'preact/hooks';

import type { Picture, PresetName } from './engine';
import { PictureCanvas } from './Preview';
import type { Studio } from './studio';

const THUMBNAIL_SIZE = 28;

export function Presets({ studio, choose }: { studio: Studio; choose: (name: string) => void }): JSX.Element {
    const [pictures, setPictures] = useState(new Map<string, Picture>());
    // One by one, so that the picture that is being edited waits for one of them at most.
    useEffect(() => {
        let stopped = false;
        void (async () => {
            for (const name of studio.presets.keys()) {
                if (stopped) return;
                const picture = await studio.engine.render({ text: 'Aa', font: studio.fonts[0]!, size: THUMBNAIL_SIZE, preset: name as PresetName }).catch(() => null);
                if (picture) setPictures((old) => new Map(old).set(name, picture));
            }
        })();
        return () => { stopped = true; };
    }, [studio]);
    return (
        <section aria-labelledby="presets-title">
            <h2 id="presets-title">Presets</h2>
            <div class="presets">
                {[...studio.presets.keys()].map((name) => (
                    <button type="button" key={name} onClick={() => choose(name)} data-preset={name}>
                        {pictures.has(name) && <span aria-hidden="true"><PictureCanvas picture={pictures.get(name)!} name="" /></span>}
                        <span>{name}</span>
                    </button>
                ))}
            </div>
        </section>
    );
}
