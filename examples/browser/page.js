// SPDX-License-Identifier: Apache-2.0
// Draws in a worker whenever a control changes; the newest request wins.
import {loadWorker} from '../zvex/worker.js';

const element = (id) => document.getElementById(id);
const zvex = await loadWorker();
let font = null, drawing = new AbortController();

for (const name of Object.keys(await zvex.presets())) element('preset').add(new Option(name, name, false, name === 'gold'));

async function draw() {
  drawing.abort();
  drawing = new AbortController();
  if (font === null || element('text').value === '') return;
  const options = {text: element('text').value, size: Number(element('size').value), preset: element('preset').value, font};
  try {
    const start = performance.now();
    const {data, width, height, warnings} = await zvex.render(options, {signal: drawing.signal});
    const canvas = element('picture');
    canvas.width = width;
    canvas.height = height;
    canvas.getContext('2d').putImageData(new ImageData(data, width, height), 0, 0);
    element('state').textContent = warnings[0] ?? `${width} x ${height} pixels in ${Math.round(performance.now() - start)} ms`;
  } catch (error) {
    if (error.name !== 'AbortError') element('state').textContent = error.message;
  }
}

element('font').addEventListener('change', async () => {
  const [file] = element('font').files;
  if (!file) return;
  const name = `${file.name} ${file.lastModified}`;
  try {
    await zvex.addFont(name, await file.arrayBuffer());
    font = name;
  } catch (error) {
    element('state').textContent = error.message;
  }
  draw();
});
for (const id of ['text', 'preset', 'size']) element(id).addEventListener('input', draw);
element('state').textContent = 'Choose a font.';
