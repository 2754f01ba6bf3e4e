// SPDX-License-Identifier: Apache-2.0
// Runs in the browser that browser.test.mjs starts.
const bytesAt = async (url) => new Uint8Array(await (await fetch(url)).arrayBuffer());

async function drawAll({scenes, files}) {
  const {load} = await import('../zvex/zvex.js');
  const zvex = await load({icu: ['/zvex/icu.dat', '/zvex/dictionaries.dat']});
  for (const file of files) zvex.addFile(file, await bytesAt(`/files/${file}`));
  for (const font of new Set(scenes.flatMap((scene) => [scene.font, ...(scene.fallback ?? [])])))
    zvex.addFont(font, await bytesAt(font));
  const digests = [];
  for (const scene of scenes) {
    const hash = new Uint8Array(await crypto.subtle.digest('SHA-256', zvex.render(scene).data));
    digests.push(Array.from(hash, (byte) => byte.toString(16).padStart(2, '0')).join(''));
  }
  return digests;
}

async function until(condition) {
  for (let tries = 0; tries < 400; ++tries) {
    if (condition()) return;
    await new Promise((resolve) => setTimeout(resolve, 50));
  }
  throw new Error(`waited for ${condition}`);
}

// Drops a font on the example's page; returns what it says and how many colours it shows.
async function useExample({font}) {
  const frame = document.createElement('iframe');
  frame.src = '/browser/index.html';
  document.documentElement.append(frame);
  const element = (id) => frame.contentDocument?.getElementById(id);
  await until(() => element('preset')?.options.length > 20);
  await until(() => element('state').textContent === 'Choose a font.');
  const chosen = new DataTransfer();
  chosen.items.add(new File([await bytesAt(font)], 'font.ttf'));
  element('font').files = chosen.files;
  element('font').dispatchEvent(new Event('change'));
  await until(() => element('state').textContent !== 'Choose a font.');
  const canvas = element('picture');
  const {data} = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
  return {state: element('state').textContent, colours: new Set(new Uint32Array(data.buffer)).size};
}

let report;
try {
  const job = await (await fetch('/job')).json();
  report = {digests: await drawAll(job), page: await useExample(job)};
} catch (error) {
  report = {error: error.stack};
}
await fetch('/report', {method: 'POST', body: JSON.stringify(report)});
