// SPDX-License-Identifier: Apache-2.0
// The style as a list of layers with their effects. A style without layers is shown as one.

import type { JSX } from 'preact';

import type { Edit } from './controls';
import { Setting, SymbolButton, textOf } from './controls';
import type { Item, Path } from './document';
import { ID, OFF, duplicated, itemsAt, moved, newItem } from './document';
import type { Control, Schema } from './schema';
import { firstSettings, words } from './schema';

export interface LayersProps {
    schema: Schema;
    style: Item;
    editAt: (path: Path) => Edit;
    errorAt: (path: Path) => string | undefined;
    pickFile: () => Promise<string | null>;
}

export function Layers(props: LayersProps): JSX.Element {
    const { schema, style, editAt } = props;
    const layers = itemsAt(style, 'layers');
    const replace = (next: Item[]) => editAt([]).change({ ...withoutKeys(style, ['effects']), layers: next });
    const add = () => replace(layers.length > 0 ? [newItem({}), ...layers]
        : [newItem({ effects: [] }), newItem({ effects: itemsAt(style, 'effects') })]);
    const merge = () => editAt([]).change({ ...withoutKeys(style, ['layers']), effects: itemsAt(layers[0] ?? {}, 'effects') });
    return (
        <section aria-labelledby="layers-title">
            <div class="section-head">
                <h2 id="layers-title">{layers.length > 0 ? 'Layers, front to back' : 'Effects, lowest first'}</h2>
                <button type="button" disabled={layers.length >= schema.mostLayers} onClick={add}>Add layer</button>
            </div>
            {layers.length === 0
                ? <Effects {...props} owner={style} path={[]} />
                : layers.map((layer, i) => (
                    <details class={`card ${layer[OFF] ? 'is-off' : ''}`} open key={String(layer[ID])}>
                        <summary>Layer {i + 1}</summary>
                        <ItemButtons name={`layer ${i + 1}`} list={layers} index={i} change={replace}
                            remove={layers.length === 1 ? merge : undefined} canCopy={layers.length < schema.mostLayers} />
                        <Settings {...props} controls={schema.layer} owner={layer} path={['layers', i]} />
                        <h3>Effects, lowest first</h3>
                        <Effects {...props} owner={layer} path={['layers', i]} />
                    </details>
                ))}
        </section>
    );
}

function Effects(props: LayersProps & { owner: Item; path: Path }): JSX.Element {
    const { schema, owner, path, editAt } = props;
    const effects = itemsAt(owner, 'effects'), used = new Set(effects.map((effect) => effect.type));
    const replace = (next: Item[]) => editAt([...path, 'effects']).change(next);
    return (
        <div>
            {effects.map((effect, i) => {
                const kind = schema.effects.get(textOf(effect.type));
                const name = words(textOf(effect.type)).toLowerCase();
                return (
                    <details class={`card ${effect[OFF] ? 'is-off' : ''}`} open key={String(effect[ID])} data-effect={effect.type}>
                        <summary>{words(textOf(effect.type))}</summary>
                        <ItemButtons name={name} list={effects} index={i} change={replace} canCopy={false} />
                        {kind && <p class="help">{kind.help}</p>}
                        {kind && <Settings {...props} controls={kind.controls} owner={effect} path={[...path, 'effects', i]} />}
                    </details>
                );
            })}
            <select aria-label="Add effect" value="" onChange={(event) => {
                const kind = schema.effects.get(event.currentTarget.value);
                event.currentTarget.value = '';
                if (kind) replace([...effects, newItem(firstSettings(kind))]);
            }}>
                <option value="">Add effect…</option>
                {[...schema.effects.values()].filter(({ name }) => !used.has(name)).map(({ name }) => <option key={name} value={name}>{words(name)}</option>)}
            </select>
        </div>
    );
}

export function Settings({ controls, owner, path, editAt, errorAt, pickFile }: Pick<LayersProps, 'editAt' | 'errorAt' | 'pickFile'> & {
    controls: Control[];
    owner: Item;
    path: Path;
}): JSX.Element {
    return (
        <div class="settings">
            {controls.map((control) => {
                const at = [...path, control.key];
                return <Setting key={control.key} control={control} {...editAt(at)} value={owner[control.key]} error={errorAt(at)} pickFile={pickFile} />;
            })}
        </div>
    );
}

function ItemButtons({ name, list, index, change, remove, canCopy }: {
    name: string;
    list: Item[];
    index: number;
    change: (next: Item[]) => void;
    remove?: (() => void) | undefined;
    canCopy: boolean;
}): JSX.Element {
    const item = list[index]!, isOff = item[OFF] === true;
    return (
        <div class="row buttons">
            <SymbolButton name={`Move ${name} up`} disabled={index === 0} onClick={() => change(moved(list, index, index - 1))}>↑</SymbolButton>
            <SymbolButton name={`Move ${name} down`} disabled={index === list.length - 1} onClick={() => change(moved(list, index, index + 1))}>↓</SymbolButton>
            {canCopy && <SymbolButton name={`Duplicate ${name}`} onClick={() => change(duplicated(list, index))}>⧉</SymbolButton>}
            <SymbolButton name={`Switch ${name} ${isOff ? 'on' : 'off'}`} aria-pressed={isOff}
                onClick={() => change(list.map((old, i) => (i === index ? { ...old, [OFF]: !isOff } : old)))}>{isOff ? '○' : '●'}</SymbolButton>
            <SymbolButton name={`Remove ${name}`} onClick={remove ?? (() => change(list.filter((_, i) => i !== index)))}>✕</SymbolButton>
        </div>
    );
}

function withoutKeys(item: Item, keys: readonly string[]): Item {
    return Object.fromEntries(Object.entries(item).filter(([key]) => !keys.includes(key)));
}
