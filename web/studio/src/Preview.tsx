// SPDX-License-Identifier: Apache-2.0
// The pictures: each size on each ground.

import type { JSX } from 'preact';
import { useLayoutEffect, useRef } from 'preact/hooks';

import type { Picture } from './engine';

export const GROUNDS = ['light', 'dark', 'checks', 'photo'] as const;
export type Ground = (typeof GROUNDS)[number];

export interface Drawn { size: number; picture: Picture | null }

export function Preview({ drawn, grounds, photo, slow, isCurrent }: {
    drawn: Drawn[];
    grounds: Ground[];
    photo: string | null;
    slow: boolean;
    /** Whether the pictures show the newest settings. */
    isCurrent: boolean;
}): JSX.Element {
    return (
        <div class="preview" aria-busy={!isCurrent} role="region" aria-label="Pictures" tabIndex={0}>
            {slow && <p class="slow" role="status">Drawing… <progress aria-label="Drawing" /></p>}
            {grounds.map((ground) => (
                <div key={ground} class={`ground ${ground}`} data-ground={ground}
                    style={ground === 'photo' && photo !== null ? { backgroundImage: `url("${photo}")` } : {}}>
                    {drawn.map(({ size, picture }) => picture && (
                        <figure key={size}>
                            <PictureCanvas picture={picture} name={`${size} px on ${ground}`} />
                            <figcaption>{size} px</figcaption>
                        </figure>
                    ))}
                </div>
            ))}
        </div>
    );
}

export function PictureCanvas({ picture, name }: { picture: Picture; name: string }): JSX.Element {
    const canvas = useRef<HTMLCanvasElement>(null);
    // Before the page is painted, so that a canvas whose size changes never shows empty.
    useLayoutEffect(() => {
        const { width, height, data } = picture;
        const target = canvas.current?.getContext('2d');
        if (!target || width < 1 || height < 1) return;
        if (target.canvas.width !== width || target.canvas.height !== height) {
            target.canvas.width = width;
            target.canvas.height = height;
        }
        target.putImageData(new ImageData(data, width, height), 0, 0);
    }, [picture]);
    return <canvas ref={canvas} role="img" aria-label={name} width={picture.width} height={picture.height} />;
}
