// SPDX-License-Identifier: Apache-2.0
// Scenes as lines of a batch, and zvtext's pictures of them: the oracle for WebAssembly.
import {execFileSync} from 'node:child_process';
import {createHash} from 'node:crypto';
import {existsSync, mkdirSync, readFileSync, writeFileSync} from 'node:fs';
import {join} from 'node:path';

export const root = new URL('../..', import.meta.url).pathname;
export const folder = join(root, 'build/web-tests');  // the scenes' files are relative to it
const zvtext = process.env.ZVTEXT ?? join(root, 'build/release/tools/zvtext/zvtext');

const sans = 'DejaVuSans-Bold.ttf';
const emoji = 'NotoColorEmoji.ttf';

export function fontPath(name) {
  const places = ['dejavu', 'noto', '../opentype/noto'].map((place) => `/usr/share/fonts/truetype/${place}/${name}`);
  const found = places.find(existsSync);
  if (!found) throw new Error(`no ${name} among ${places}`);
  return found;
}

// The value of a key in the first, second or third setting of an effect.
function valueOf(schema, setting, parts) {
  const {$ref: reference} = schema.anyOf?.[0] ?? schema;
  const part = reference ? parts[reference.split('/').pop()] : schema;
  const [type] = [part.type].flat();
  const colors = ['#ff8800', '#80204060', 'hsl(200 100% 40%)'];
  if (reference === '#/$defs/color') return colors[setting];
  if (part.enum) return part.enum[setting % (part.enum.length - 1)];
  if (type === 'boolean') return setting === 1;
  if (type === 'string') return 'patterns/checks.png';
  if (part.properties) return objectOf(part, setting, parts);
  if (part.items)
    return [0, 1, 2].map((i) => ({color: colors[(i + setting) % 3], position: 45 * i + setting, opacity: 1 - 0.2 * i}));
  const low = part.minimum ?? part.exclusiveMinimum ?? -100, wide = Math.min((part.maximum ?? 260) - low, low < 0 ? 400 : 40);
  const value = low + wide * [0.15, 0.4, 1][setting];
  return type === 'integer' ? Math.round(value) : value;
}

function objectOf(schema, setting, parts) {
  return Object.fromEntries(Object.entries(schema.properties).map(([key, part]) => [key, valueOf(part, setting, parts)]));
}

function effectScenes({properties, $defs}) {
  const effects = Object.keys(properties).filter((key) => properties[key].oneOf?.[1].$ref === `#/$defs/${key}`);
  return effects.flatMap((effect) => [0, 1, 2].map((setting) =>
      ({text: 'Wäg 7', font: sans, size: 64, color: '#c0a01030', [effect]: objectOf($defs[effect], setting, $defs)})));
}

function galleryScenes() {
  const parts = JSON.parse(readFileSync(join(root, 'tools/zvtext/gallery/scenes.json'), 'utf8'));
  return parts.flatMap(({scenes}) => scenes).map(({text, font, options}) => {
    const scene = {text, font, fallback: [fontPath(emoji)]};
    for (let i = 0; i < options.length; i += 2) scene[options[i].slice(2)] = options[i + 1];
    return scene;
  });
}

const layoutScenes = [
  {text: 'Lines that wrap at blanks, and Wörter mit Trennung', font: sans, size: 31, width: 260, align: 'center', padding: 7},
  {text: 'ภาษาไทยไม่มีช่องว่างระหว่างคำ', font: 'NotoSansThai-Bold.ttf', size: 40, width: 200},
  {text: 'abc \u05d0\u05d1\u05d2 123 \u05d3\u05d4', font: sans, size: 50, 'max-lines': 1, gravity: 'bottom', height: 150},
  {text: 'தமிழ் ஸ்ரீ', font: 'NotoSansTamil-Bold.ttf', size: 80, features: '-liga', 'letter-spacing': 0.1},
  {text: 'Huge', font: 'DejaVuSerif-Bold.ttf', size: 700, stroke: {width: 20}, trim: true},
  {text: 'tiny plain text', font: sans, size: 9, 'text-rendering': 'plain', scale: 1.7},
  {text: '👩🏽‍🚀🇫🇷 emoji', font: sans, fallback: [fontPath(emoji)], size: 110, 'outer-shadow': 'distance=9,size=12'},
];

// The scenes, for a package whose presets and schema of options are given; fonts by their paths.
export function scenesFor(presets, optionsSchema) {
  const named = Object.keys(presets).map((preset) => ({text: 'Präset', font: sans, preset}));
  return [...named, ...effectScenes(optionsSchema), ...galleryScenes(), ...layoutScenes].map((scene) =>
      ({...scene, font: fontPath(scene.font), 'no-fallback': true}));
}

// Names that scenes read, except fonts.
export const files = ['patterns/checks.png', 'patterns/stripes.png', 'patterns/dots.png', 'styles/gold.json', 'styles/sticker.json',
                      'styles/comic.json'];

// Renders the scenes with zvtext; returns a digest of each one's raw RGBA bytes.
export function nativeDigests(scenes) {
  mkdirSync(folder, {recursive: true});
  if (!files.every((file) => existsSync(join(folder, file)))) execFileSync(zvtext, ['gallery', folder], {stdio: 'ignore'});
  const lines = scenes.map((scene, i) => JSON.stringify({...scene, output: `raw/${i}.raw`})).join('\n');
  writeFileSync(join(folder, 'scenes.jsonl'), lines);
  const fonts = ['--allow-read', '/usr/share/fonts'];
  execFileSync(zvtext, ['batch', 'scenes.jsonl', '--format', 'raw', '--quiet', '--jobs', '0', ...fonts],
               {cwd: folder, stdio: ['ignore', 'ignore', 'inherit']});
  return scenes.map((scene, i) => digest(readFileSync(join(folder, `raw/${i}.raw`))));
}

export const digest = (bytes) => createHash('sha256').update(bytes).digest('hex');
