// SPDX-License-Identifier: Apache-2.0
// The studio as a designer uses it, in Chromium. ZVEX_STUDIO is the folder of the built page and ZVEX_ZVTEXT the native
// program, whose pixels the exported pictures must have. With ZVEX_SHOTS, screenshots go into that folder.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

import { chromium } from 'playwright-core';
import { PNG } from 'pngjs';

import { serve } from './serve.mjs';

const { ZVEX_STUDIO, ZVEX_ZVTEXT, ZVEX_SHOTS } = process.env;
const FONT = join(ZVEX_STUDIO, 'fonts/DejaVuSans-Bold.ttf');
const OTHER_FONT = '/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf';
const QUIET = ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
    '--disable-component-update', '--disable-sync'];
const scratch = mkdtempSync(join(tmpdir(), 'studio-'));
let server, browser, page, complaints;

before(async () => {
    server = await serve(ZVEX_STUDIO);
    browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: QUIET });
});
after(async () => {
    await browser?.close();
    await server?.close();
    rmSync(scratch, { recursive: true, force: true });
});

async function open(hash = '') {
    await page?.context().close();
    const context = await browser.newContext({ viewport: { width: 1360, height: 900 }, acceptDownloads: true });
    page = await context.newPage();
    complaints = [];
    page.on('console', (message) => message.type() === 'error' && complaints.push(message.text()));
    page.on('pageerror', (error) => complaints.push(String(error)));
    page.on('request', (request) => {
        if (!/^(blob|data):/.test(request.url()) && !request.url().startsWith(server.address)) complaints.push(`request to ${request.url()}`);
    });
    await page.goto(server.address + hash);
    await page.waitForSelector('.preview canvas');
}

const pixels = () => page.evaluate(() => {
    const canvas = document.querySelector('.preview canvas');
    const { data } = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
    let sum = 0;
    for (let i = 0; i < data.length; ++i) sum = (sum * 31 + data[i]) >>> 0;
    return `${canvas.width}x${canvas.height}:${sum}`;
});
// What the newest settings look like.
async function settled() {
    await page.waitForTimeout(50);
    await page.waitForSelector('.preview[aria-busy=false] canvas');
    return pixels();
}
async function changed(from, act) {
    await act();
    let now = await settled();
    for (let tries = 0; tries < 100 && now === from; ++tries) now = await settled();
    assert.notEqual(now, from, 'the picture stayed the same');
    return now;
}
async function download(name) {
    const [file] = await Promise.all([page.waitForEvent('download'), page.getByRole('button', { name, exact: true }).click()]);
    const path = join(scratch, file.suggestedFilename());
    await file.saveAs(path);
    return readFileSync(path);
}
function native(text, font, size, style, ...more) {
    const out = join(scratch, 'native.rgba');
    execFileSync(ZVEX_ZVTEXT, ['render', '--font', font, '--size', String(size), '--style', JSON.stringify(style), '--no-fallback', '--format', 'raw', '-o', out, ...more, '--', text]);
    return readFileSync(out);
}
const drop = (name, bytes) => page.evaluate(([name, base64]) => {
    const data = new DataTransfer();
    data.items.add(new File([Uint8Array.from(atob(base64), (letter) => letter.charCodeAt(0))], name));
    document.querySelector('.app').dispatchEvent(new DragEvent('drop', { dataTransfer: data, bubbles: true, cancelable: true }));
}, [name, Buffer.from(bytes).toString('base64')]);

test('a preset, a slider, undo; exports have the bytes of zvtext; the link brings them back', async () => {
    await open();
    let now = await changed(await settled(), () => page.click('[data-preset=comic]'));
    const untouched = now;
    const slider = page.locator('[data-key=width] input[type=range]').first(), box = await slider.boundingBox();
    await page.mouse.move(box.x + 4, box.y + box.height / 2);
    await page.mouse.down();
    now = await changed(now, () => page.mouse.move(box.x + box.width / 3, box.y + box.height / 2));
    now = await changed(now, () => page.mouse.move(box.x + box.width / 8, box.y + box.height / 2));
    await page.mouse.up();
    assert.equal(await changed(now, () => page.keyboard.press('Control+z')), untouched, 'one drag is one step');
    assert.equal(await changed(untouched, () => page.getByRole('button', { name: 'Redo' }).click()), now);

    const style = JSON.parse(await download('Download style'));
    for (const [button, times] of [['PNG 1×', 1], ['PNG 2×', 2]]) {
        const png = PNG.sync.read(await download(button));
        const expected = native('Golden words', FONT, 120, style, '--scale', String(times));
        assert.ok(expected.equals(png.data), `${button}: ${png.width}x${png.height}`);
    }
    await page.getByRole('button', { name: 'Copy link' }).click();
    await page.waitForFunction(() => location.hash.length > 20);
    const hash = await page.evaluate(() => location.hash);
    await open(hash);
    assert.equal(await settled(), now);
    assert.deepEqual(complaints, []);
});

test('fonts and styles by drop, Arabic words, errors at their keys', async () => {
    await open();
    await drop('DejaVuSans.ttf', readFileSync(OTHER_FONT));
    await page.waitForFunction(() => document.querySelector('.status').textContent.includes('is loaded'));
    let now = await settled();
    const style = { color: '#123456', effects: [{ type: 'outer-glow', size: 9 }, { type: 'stroke', width: 3 }] };
    now = await changed(now, () => drop('mine.json', `// mine\n${JSON.stringify(style).replace('}]', '},]')}`));
    now = await changed(now, () => page.fill('#text', "مرحبا it's ไทย"));
    const png = PNG.sync.read(await download('PNG 1×'));
    assert.ok(native("مرحبا it's ไทย", OTHER_FONT, 120, style).equals(png.data));
    assert.match(await page.locator('.status').textContent(), /no font has U\+0E44/);
    const code = (await page.locator('pre').textContent()).replace('zvtext', ZVEX_ZVTEXT).replace('DejaVuSans.ttf', OTHER_FONT);
    rmSync(join(scratch, 'words.png'));
    execFileSync('sh', ['-c', code], { cwd: scratch });
    assert.ok(PNG.sync.read(readFileSync(join(scratch, 'words.png'))).data.equals(png.data), code);

    for (const effect of ['bevel', 'linear-gradient', 'pattern']) {
        now = await changed(now, () => page.getByLabel('Add effect').selectOption(effect));
    }
    now = await changed(now, async () => {
        const [chooser] = await Promise.all([page.waitForEvent('filechooser'), page.getByRole('button', { name: 'Choose PNG…' }).click()]);
        await chooser.setFiles({ name: 'own.png', mimeType: 'image/png', buffer: PNG.sync.write(Object.assign(new PNG({ width: 3, height: 3 }), { data: Buffer.alloc(36, 200) })) });
        await page.waitForFunction(() => document.querySelector('.status').textContent.startsWith('own.png'));
    });
    await page.getByLabel('Code for').selectOption('JavaScript');
    assert.match(await page.locator('pre').textContent(), /addFile\("own.png", pngBytes\)/);
    now = await changed(now, () => page.getByRole('button', { name: 'Switch outer glow off' }).click());
    await page.locator('[data-effect=stroke] [data-key=width] input[type=number]').fill('500');
    const error = page.locator('[data-effect=stroke] [data-key=width] .error');
    await error.waitFor();
    assert.match(await error.textContent(), /500/);
    await drop('broken.json', '{"color": }');
    await page.waitForFunction(() => document.querySelector('.status').textContent.startsWith('broken.json:'));
    assert.deepEqual(complaints, []);
});

test('layers by keyboard; no serious fault for assistive tools; three widths', async () => {
    await open();
    let now = await changed(await settled(), () => page.click('[data-preset=royal]'));
    now = await changed(now, async () => { await page.getByRole('button', { name: 'Move layer 1 down' }).focus(); await page.keyboard.press('Enter'); });
    now = await changed(now, () => page.getByRole('button', { name: 'Remove layer 3' }).press('Space'));
    now = await changed(now, () => page.locator('.dial').first().press('PageUp'));
    now = await changed(now, () => page.locator('.handle').first().press('ArrowRight'));
    await page.evaluate(readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8'));
    for (const width of [1360, 820, 390]) {
        await page.setViewportSize({ width, height: 900 });
        const { violations } = await page.evaluate(() => axe.run());
        const serious = violations.filter(({ impact }) => impact === 'serious' || impact === 'critical');
        assert.deepEqual(serious.map(({ id, nodes }) => `${id}: ${nodes[0].html}`), []);
        assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), `${width}: nothing sticks out`);
        for (let i = 0; i < 30; ++i) {
            await page.keyboard.press('Shift+Tab');
            const hidden = await page.evaluate(() => {
                const focus = document.activeElement, { left, top, height } = focus.getBoundingClientRect();
                const covers = document.elementFromPoint(left + 2, top + height / 2)?.closest('.preview');
                return covers && focus !== document.body && !covers.contains(focus) ? focus.outerHTML : '';
            });
            assert.equal(hidden, '', `${width}: the focus is behind the preview`);
        }
        if (ZVEX_SHOTS) await page.screenshot({ path: join(ZVEX_SHOTS, `studio-${width}.png`) });
    }
    assert.deepEqual(complaints, []);
});

test('works offline after the first load', async () => {
    await open();
    await page.evaluate(async () => {
        await navigator.serviceWorker.ready;
        while (!navigator.serviceWorker.controller && (await caches.keys()).length === 0) await new Promise((next) => setTimeout(next, 50));
    });
    const online = await settled();
    await server.close();
    await page.reload();
    assert.equal(await settled(), online);
    server = await serve(ZVEX_STUDIO);
});

test('the picture follows a drag: 1024 x 256, three effects', async () => {
    await open();
    const style = { effects: [{ type: 'outer-shadow', size: 10 }, { type: 'stroke', width: 4 }, { type: 'linear-gradient', stops: [{ color: '#f00', position: 0 }, { color: '#00f', position: 100 }] }] };
    await changed(await settled(), () => drop('three.json', JSON.stringify(style)));
    await page.fill('input[inputmode=numeric]', '190');
    await changed(await settled(), () => page.fill('#text', 'Golden wor'));
    const { pictures, seconds, longest } = await page.evaluate(async () => {
        const slider = document.querySelector('[data-effect=outer-shadow] [data-key=distance] input[type=range]');
        const canvas = document.querySelector('.preview canvas').getContext('2d'), put = canvas.putImageData;
        let pictures = 0, longest = 0, last = performance.now();
        canvas.putImageData = function (...rest) { ++pictures; return put.apply(this, rest); };
        const begin = last;
        for (let i = 0; i < 120; ++i) {
            slider.value = String(20 + i);
            slider.dispatchEvent(new Event('input', { bubbles: true }));
            await new Promise(requestAnimationFrame);
            const now = performance.now();
            longest = Math.max(longest, now - last);
            last = now;
        }
        return { pictures, seconds: (last - begin) / 1000, longest };
    });
    console.log(`${(pictures / seconds).toFixed(1)} pictures a second, longest frame ${longest.toFixed(0)} ms`);
    assert.ok(pictures > 10, 'pictures are drawn during the drag');
    if (process.env.ZVEX_TEST_ALL) assert.ok(pictures / seconds >= 30);
});
