// SPDX-License-Identifier: Apache-2.0
// The renderer, in a worker of its own, so that the page never waits for a picture.

export { ZvexError, loadWorker } from 'zvex/worker';
export type { ZvexWorker } from 'zvex/worker';
export type { Options, Picture, PresetName } from 'zvex';

interface Waiting {
    run: () => Promise<void>;
    drop: () => void;
}

/**
 * Runs one request at a time. Of those that wait under one name, only the newest is kept: while a slider moves, each
 * picture shows the slider's place at its start and none is drawn for a place that was left.
 */
export class NewestFirst {
    private waiting = new Map<string, Waiting>();
    private busy = false;

    /** Undefined if a newer request of that name took its place. */
    ask<T>(name: string, work: () => Promise<T>): Promise<T | undefined> {
        return new Promise((resolve, reject) => {
            this.waiting.get(name)?.drop();
            this.waiting.set(name, { run: () => work().then(resolve, reject), drop: () => resolve(undefined) });
            void this.runAll();
        });
    }

    private async runAll(): Promise<void> {
        if (this.busy) return;
        this.busy = true;
        for (let next = this.take(); next; next = this.take()) await next.run();
        this.busy = false;
    }
    private take(): Waiting | undefined {
        for (const [name, waiting] of this.waiting) {
            this.waiting.delete(name);
            return waiting;
        }
        return undefined;
    }
}
