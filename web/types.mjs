// SPDX-License-Identifier: Apache-2.0
// types.mjs PACKAGE TARGET: writes TypeScript types of the options and of style files, made from the schemas in the package.
import {writeFileSync} from 'node:fs';
import {resolve} from 'node:path';
import {pathToFileURL} from 'node:url';

const [folder, target] = process.argv.slice(2);
const {load} = await import(pathToFileURL(resolve(folder, 'zvex.js')));
const zvex = await load();

const typeName = (name) => name.replace(/(^|-)(.)/g, (match, dash, letter) => letter.toUpperCase());

function typeOf(schema, prefix) {
  const {$ref: reference, const: fixed, enum: choices, oneOf, anyOf, type} = schema;
  const kinds = oneOf ?? anyOf;
  if (reference === 'style.schema.json') return 'Style';
  if (reference) return prefix + typeName(reference.split('/').pop());
  if (fixed !== undefined) return JSON.stringify(fixed);
  if (choices) return choices.map((choice) => JSON.stringify(choice)).join(' | ');
  if (kinds && type === undefined) return kinds.map((kind) => typeOf(kind, prefix)).join(' | ');
  if (Array.isArray(type)) return type.map((one) => typeOf({...schema, type: one}, prefix)).join(' | ');
  if (type === 'array' && schema.minItems === schema.maxItems && schema.minItems)
    return `[${Array(schema.minItems).fill(typeOf(schema.items, prefix)).join(', ')}]`;
  if (type === 'array') return `Array<${typeOf(schema.items, prefix)}>`;
  if (type === 'object') return `{\n${membersOf(schema, prefix, '    ')}  }`;
  return type === 'integer' ? 'number' : type;
}

function noteOf({description, minimum, exclusiveMinimum, maximum, default: start}) {
  const range = maximum === undefined ? '' : `${exclusiveMinimum === undefined ? minimum : `above ${exclusiveMinimum}`} to ${maximum}`;
  const note = [description, range, start === undefined ? '' : `default ${JSON.stringify(start)}`].filter(Boolean).join('; ');
  return note.replaceAll('*/', '* /');
}

function membersOf({properties = {}, required = []}, prefix, indent) {
  return Object.entries(properties).map(([name, schema]) => {
    const note = noteOf(schema);
    return `${note ? `${indent}/** ${note} */\n` : ''}${indent}${JSON.stringify(name)}${required.includes(name) ? '' : '?'}: ` +
        `${typeOf(schema, prefix)};\n`;
  }).join('');
}

// Parts that are objects are interfaces, the others names of types.
function declarationOf(name, schema, prefix) {
  const note = noteOf(schema) ? `/** ${noteOf(schema)} */\n` : '';
  if (schema.type === 'object') return `${note}export interface ${name} {\n${membersOf(schema, prefix, '  ')}}\n`;
  return `${note}export type ${name} = ${typeOf(schema, prefix)};\n`;
}

const style = zvex.schema(), options = zvex.optionsSchema();
const parts = (schema, prefix) =>
    Object.entries(schema.$defs).map(([name, part]) => declarationOf(prefix + typeName(name), part, prefix));
writeFileSync(target, [
  '// Made from the schemas of zvex.wasm.\n',
  declarationOf('Options', options, 'Option'),
  ...parts(options, 'Option'),
  declarationOf('Style', style, 'Style'),
  ...parts(style, 'Style'),
  `export type PresetName = ${typeOf({enum: Object.keys(zvex.presets())}, '')};\n`,
].join('\n'));
