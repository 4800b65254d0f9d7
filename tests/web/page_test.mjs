// The page in a headless Chromium, opened from the disk: node page_test.mjs PACKAGE_FOLDER PROGRAM CHECKOUT AXE
// PROGRAM is torva35 as built for this machine, which has to write the same. AXE is the script of axe-core, if it is there.
import assert from 'node:assert/strict';
import { execFileSync, spawnSync } from 'node:child_process';
import { existsSync, mkdtempSync, readFileSync, rmSync, statSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { gzipSync } from 'node:zlib';
import test, { after, before } from 'node:test';
import { Chromium } from './chromium.mjs';

const [folder, program, checkout, axe] = process.argv.slice(2);
const examples = join(checkout, 'examples');
const data = join(checkout, 'tests/data');
const page = join(folder, 'index.html');
const out = mkdtempSync(join(tmpdir(), 'torva35-page-'));
let browser;

before(async () => {
  browser = await Chromium.start();
});
after(async () => {
  await browser.close();
  rmSync(out, { recursive: true });
});

/** Opens the page anew, with what it would print and save kept where the test finds it. */
async function open(language = 'en') {
  await browser.open('about:blank');
  await browser.open(pathToFileURL(page).href);
  await browser.run(`saved = {}; printed = [];
    URL.createObjectURL = (blob) => (lastBlob = blob, 'blob:none');
    HTMLAnchorElement.prototype.click = function () { saved[this.download] = lastBlob; };
    new MutationObserver((changes) => changes.forEach(({ addedNodes }) => addedNodes.forEach((frame) => {
      if (frame.tagName === 'IFRAME') frame.addEventListener('load', () => (frame.contentWindow.print = () => printed.push(frame.srcdoc)), { capture: true });
    }))).observe(document.body, { childList: true });
    document.getElementById('language').value = '${language}';
    document.getElementById('language').dispatchEvent(new Event('change'))`);
}

/** Drops files as a user does, and waits for what came of them. */
async function drop(...paths) {
  const contents = paths.map((path) => ({ name: path.split('/').at(-1), base64: readFileSync(path).toString('base64') }));
  await browser.run(`{
    const transfer = new DataTransfer();
    for (const { name, base64 } of ${JSON.stringify(contents)}) {
      transfer.items.add(new File([Uint8Array.from(atob(base64), (byte) => byte.charCodeAt(0))], name));
    }
    document.getElementById('drop').dispatchEvent(new DragEvent('drop', { dataTransfer: transfer, bubbles: true, cancelable: true }));
  }`);
  const names = JSON.stringify(contents.map(({ name }) => name));
  await browser.until(`!document.getElementById('outcome').hidden && ${names}.every((name) =>
    document.getElementById('questions').textContent.includes(name))`);
}

const texts = (selector) => browser.run(`[...document.querySelectorAll('${selector}')].map((each) => each.textContent)`);

/** Presses an output's button and gives what was saved as a file of this name. */
async function save(output, name) {
  await browser.run(`document.querySelector('[data-output="${output}"]').click()`);
  await browser.until(`saved['${name}']`);
  const base64 = await browser.run(`saved['${name}'].arrayBuffer().then((bytes) => btoa(Array.from(new Uint8Array(bytes), (byte) => String.fromCharCode(byte)).join('')))`);
  return Buffer.from(base64, 'base64');
}

const samples = ['sample-test.xml', 'sample-test-b.xml', 'sample-test-c.xml'];

test('drops, findings, versions and downloads are those of the program', async () => {
  await open();
  await drop(...samples.map((name) => join(examples, name)));
  await browser.run(`document.querySelector('[name="idDigits"]').value = 5`);
  const at = (name) => join(out, name);
  const run = spawnSync(program, [...samples, '--id-digits', '5', '--html', at('sheet.html'), '--answers', at('answers'), '--csv', at('csv'),
    '--json', at('json'), '--save', at('lmf'), '--reader', at('reader')], { cwd: examples });
  assert.equal(run.status, 0, String(run.stderr));
  const lines = run.stderr.toString().split('\n').filter((line) => /: (note|warning|error): /.test(line));
  assert.ok(lines.length > 5);
  assert.deepEqual(await texts('#findings li'), lines);

  const csv = readFileSync(at('csv'), 'utf8').trim().split('\n');
  assert.equal((await texts('#versions tbody td.right')).length, csv.length - 1);

  const base = samples[0].replace('.xml', '');
  for (const [output, ending, path] of [['CSV', '.csv', 'csv'], ['JSON', '.json', 'json'], ['LMF', '.lmf', 'lmf'],
    ['sheet', '-sheet.html', 'sheet.html'], ['answers', '-answers.html', 'answers']]) {
    assert.deepEqual(await save(output, base + ending), readFileSync(at(path)), output);
  }
  writeFileSync(at('reader.zip'), await save('reader', `${base}-reader.zip`));
  execFileSync('cmake', ['-E', 'make_directory', at('unpacked')]);
  execFileSync('cmake', ['-E', 'tar', 'xf', at('reader.zip')], { cwd: at('unpacked') });
  assert.equal(execFileSync('diff', ['-r', at('reader'), at('unpacked')]).length, 0);

  // What is printed, and that it prints.
  await browser.run(`document.querySelector('[data-output="printSheet"]').click()`);
  await browser.until('printed.length > 0');
  assert.equal(await browser.run('printed[0]'), readFileSync(at('sheet.html'), 'utf8'));
  await browser.open(pathToFileURL(at('sheet.html')).href);
  const { data: pdf } = await browser.send('Page.printToPDF', { preferCSSPageSize: true });
  const bytes = Buffer.from(pdf, 'base64').toString('latin1');
  assert.ok(bytes.startsWith('%PDF-'));
  assert.deepEqual(bytes.match(/\/Count \d+/g), ['/Count 1'], 'one sheet of paper');
  assert.deepEqual(browser.errors, []);
});

test('a bad file gets the line of the program, and can be taken away', async () => {
  await open();
  const bad = join(data, 'broken-test.xml');
  await drop(bad);
  const [line] = spawnSync(program, ['broken-test.xml'], { cwd: data }).stderr.toString().split('\n');
  assert.deepEqual(await texts('#findings li'), [line]);
  assert.ok(await browser.run(`document.getElementById('made').hidden`));
  await drop(join(examples, samples[0]));
  await browser.run(`document.querySelector('#files li:last-child button:last-child, #files button').click()`);
  await browser.until(`document.querySelectorAll('#files li').length === 1`);
  assert.deepEqual(browser.errors, []);
});

test('a key that would grade wrong is held back until the user wants it', async () => {
  await open();
  const path = join(out, 'wrong.xml');
  writeFileSync(path, `<examview type='test'><question type='mc' question-id='1'><text>Q</text><choices><choice>a</choice><choice>b</choice></choices><answer>B D</answer></question><question type='tf' question-id='2'><text>R</text><answer>T</answer></question></examview>`);
  await drop(path);
  const disabled = () => browser.run(`[...document.querySelectorAll('#buttons button')].filter((each) => each.disabled).map((each) => each.dataset.output)`);
  assert.ok((await texts('#findings .error')).length > 0);
  assert.deepEqual(await disabled(), ['printSheet', 'sheet', 'CSV', 'LMF', 'reader']);
  await browser.run(`document.getElementById('force').click()`);
  assert.deepEqual(await disabled(), []);
});

test('has a name for all that is used, in each language, and fits a phone', async () => {
  await browser.send('Emulation.setDeviceMetricsOverride', { width: 360, height: 740, deviceScaleFactor: 1, mobile: true });
  for (const language of ['en', 'de', 'fr', 'es']) {
    await open(language);
    await drop(join(examples, samples[0]), join(examples, samples[1]));
    assert.equal(await browser.run('document.documentElement.lang'), language);
    assert.ok(await browser.run('document.documentElement.scrollWidth <= innerWidth'), `too wide in ${language}`);
    assert.deepEqual(await texts('[data-word]:empty'), []);
    const { nodes } = await browser.send('Accessibility.getFullAXTree');
    const used = ['button', 'textbox', 'spinbutton', 'checkbox', 'combobox', 'radio', 'table', 'region', 'heading'];
    const nameless = nodes.filter(({ ignored, role, name }) => !ignored && used.includes(role?.value) && !name?.value && role.value !== 'table');
    assert.deepEqual(nameless.map(({ role }) => role.value), []);
    assert.equal(nodes.filter(({ role }) => role?.value === 'status').length, 1);
  }
  await browser.send('Emulation.clearDeviceMetricsOverride');
});

test('the focus stays where the user works, and nothing old stays after a failure', async () => {
  const focused = () => browser.run('document.activeElement.id');
  const press = async (id) => {
    await browser.run(`document.getElementById('${id}').focus(); document.getElementById('${id}').click()`);
    await browser.run('new Promise((resolve) => setTimeout(resolve, 300))');
    return focused();
  };
  await open();
  await drop(...samples.map((name) => join(examples, name)));
  assert.equal(await press('dialog-1-1'), 'dialog-1-1');
  assert.equal(await press('first-1'), 'remove-0');
  assert.match((await texts('#files li'))[0], /^sample-test-b/);
  assert.equal(await press('remove-2'), 'remove-1');
  await browser.run(`File.prototype.arrayBuffer = () => Promise.reject(new Error('gone'))`);
  assert.equal(await press('remove-1'), 'remove-0');
  await browser.until(`document.getElementById('status').textContent.includes('gone')`);
  assert.ok(await browser.run(`document.getElementById('outcome').hidden`));
});

test('axe finds nothing', { skip: !existsSync(axe) && 'axe-core is not there' }, async () => {
  const wrong = join(out, 'wrong.xml');
  const shown = { nothing: [], refused: [join(data, 'broken-test.xml')], sheet: samples.map((name) => join(examples, name)), withheld: [wrong] };
  for (const [scheme, width] of [['light', 1200], ['dark', 360]]) {
    await browser.send('Emulation.setEmulatedMedia', { features: [{ name: 'prefers-color-scheme', value: scheme }] });
    await browser.send('Emulation.setDeviceMetricsOverride', { width, height: 800, deviceScaleFactor: 1, mobile: width < 500 });
    for (const [what, paths] of Object.entries(shown)) {
      await open();
      if (paths.length > 0) await drop(...paths);
      await browser.run(`document.querySelectorAll('details').forEach((each) => (each.open = true))`);
      await browser.run(readFileSync(axe, 'utf8'));
      const found = await browser.run(`axe.run().then(({ violations }) => violations.map(({ id, impact, nodes }) => [id, impact, nodes[0].html]))`);
      assert.deepEqual(found, [], `${what}, ${scheme}`);
    }
  }
  await browser.send('Emulation.clearDeviceMetricsOverride');
  await browser.send('Emulation.setEmulatedMedia', { features: [] });
});

test('is small', () => {
  assert.ok(gzipSync(readFileSync(page)).length < 1.5e6, String(statSync(page).size));
});
