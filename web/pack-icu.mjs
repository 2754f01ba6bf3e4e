// SPDX-License-Identifier: Apache-2.0
// pack-icu.mjs ICUDATA TARGET PATTERN...: writes the items of ICU's data file whose names match a pattern as a data file of
// their own. The format: a header (its size in the first two bytes), then the table of contents (the number of items, for each
// the places of its name and its bytes, counted from the table), then names and bytes, items aligned to 16 bytes.
import {readFileSync, writeFileSync} from 'node:fs';

const [source, target, ...patterns] = process.argv.slice(2);
const data = readFileSync(source);
const table = data.readUInt16LE(0);
const count = data.readUInt32LE(table);
const placeOf = (item, field) => item < count ? table + data.readUInt32LE(table + 4 + 8 * item + 4 * field) : data.length;
const nameOf = (item) => data.toString('latin1', placeOf(item, 0), data.indexOf(0, placeOf(item, 0)));

const kept = [];
for (let item = 0; item < count; ++item) {
  if (patterns.some((pattern) => new RegExp(`^[^/]*/${pattern}$`).test(nameOf(item))))
    kept.push({name: Buffer.from(nameOf(item) + '\0', 'latin1'), bytes: data.subarray(placeOf(item, 1), placeOf(item + 1, 1))});
}
if (kept.length < patterns.length) throw new Error(`${source} lacks items of ${patterns}`);

const aligned = (size) => (size + 15) & ~15;
const contents = Buffer.alloc(4 + 8 * kept.length);
contents.writeUInt32LE(kept.length, 0);
let namePlace = contents.length;
let bytesPlace = aligned(table + namePlace + kept.reduce((sum, {name}) => sum + name.length, 0)) - table;
const pieces = [];
for (const [item, {name, bytes}] of kept.entries()) {
  contents.writeUInt32LE(namePlace, 4 + 8 * item);
  contents.writeUInt32LE(bytesPlace, 8 + 8 * item);
  pieces.push([table + namePlace, name], [table + bytesPlace, bytes]);
  namePlace += name.length;
  bytesPlace += aligned(bytes.length);
}
const packed = Buffer.alloc(table + bytesPlace);
for (const [place, piece] of [[0, data.subarray(0, table)], [table, contents], ...pieces]) piece.copy(packed, place);
writeFileSync(target, packed);
