// The npm package as a program meets it that has installed it: node package_test.mjs PACKAGE PROGRAM CHECKOUT MAKE_EXAM
// PROGRAM is torva35 as built for this machine, which has to write the same; MAKE_EXAM makes random tests, under Node.
import assert from 'node:assert/strict';
import { execFileSync, spawnSync } from 'node:child_process';
import { cpSync, existsSync, mkdirSync, mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';
import test, { after } from 'node:test';

const [tarball, program, checkout, makeExam] = process.argv.slice(2);
const examples = join(checkout, 'examples');
const data = join(checkout, 'tests/data');
const tsc = '/usr/share/nodejs/typescript/bin/tsc';
const home = mkdtempSync(join(tmpdir(), 'torva35-package-'));
after(() => rmSync(home, { recursive: true }));
mkdirSync(join(home, 'node_modules/torva35'), { recursive: true });
execFileSync('tar', ['-xzf', tarball, '--strip-components=1', '-C', join(home, 'node_modules/torva35')]);
const { load } = await import(pathToFileURL(join(home, 'node_modules/torva35/torva35.js')));

const given = (folder, ...names) => names.map((name) => ({ name, content: readFileSync(join(folder, name)) }));

/** What the program writes for these files: its lines, and each output by the name of its option. */
function byProgram(folder, names, flags = []) {
  const out = mkdtempSync(join(home, 'out-'));
  const outputs = ['json', 'csv', 'html', 'answers', 'save', 'reader'];
  const paths = Object.fromEntries(outputs.map((name) => [name, join(out, name)]));
  const run = spawnSync(program, [...names, ...flags, ...outputs.flatMap((name) => [`--${name}`, paths[name]])], { cwd: folder });
  return { ...paths, lines: run.stderr.toString().split('\n').filter((line) => /: (note|warning|error): /.test(line)), status: run.status };
}

test('gives what the program writes, byte for byte', async () => {
  const samples = readdirSync(examples).filter((name) => name.endsWith('.xml')).sort();
  const sets = [...samples.map((name) => [name]), samples];
  for (const names of sets) {
    const expected = byProgram(examples, names, ['--id-digits', '6', '--language', 'fr']);
    const exam = await load(given(examples, ...names));
    const page = { idDigits: 6, language: 'fr' };
    const is = (content, path, what) => assert.deepEqual(Buffer.from(content), readFileSync(path), `${what} of ${names}`);
    is(exam.json, expected.json, 'JSON');
    is(exam.csv, expected.csv, 'CSV');
    is(exam.studentPage(page), expected.html, 'the sheet');
    is(exam.teacherPage(page), expected.answers, 'the keys');
    is(exam.lmf(), expected.save, 'the LMF file');
    const files = exam.readerFiles(page);
    assert.ok(files.length > 0);
    for (const { path, content } of files) is(content, join(expected.reader, path), path);
    assert.deepEqual(exam.lines, expected.lines);
    exam.close();
    assert.throws(() => exam.json, /closed/);
  }
});

test('says of a bad file what the program says, and gives no sheet', async () => {
  const names = readdirSync(data).filter((name) => name.endsWith('.xml'));
  assert.ok(names.length > 0);
  for (const name of names) {
    const exam = await load(given(data, name));
    assert.deepEqual(exam.lines, [byProgram(data, [name]).lines[0]]);
    assert.equal(exam.result.status, 'refused');
    assert.throws(() => exam.csv, /no sheet/);
    exam.close();
  }
  const exam = await load([{ name: 'empty.xml', content: '' }, { content: new Uint8Array([0, 255]) }]);
  assert.equal(exam.result.status, 'refused');
  exam.close();
});

test('gives the same JSON as the program for 200 random tests', async () => {
  for (let seed = 0; seed < 200; ++seed) {
    const folder = mkdtempSync(join(home, 'exam-'));
    const versions = (seed % 3) + 1;
    execFileSync(process.execPath, ['--no-experimental-fetch', makeExam, String(seed), '8', String(versions), folder]);
    const names = ['A.xml', 'B.xml', 'C.xml'].slice(0, versions);
    const exam = await load(given(folder, ...names));
    const expected = spawnSync(program, [...names, '--quiet', '--json', '-'], { cwd: folder, maxBuffer: 2 ** 26 }).stdout;
    assert.ok(expected.length > 0);
    assert.equal(exam.json, expected.toString(), `seed ${seed}`);
    exam.close();
  }
});

test('takes options, and refuses wrong ones', async () => {
  const exam = await load(given(examples, 'sample-test.xml', 'sample-test-b.xml'), { versionNames: ['Q', 'R'], title: 'Ünit' });
  assert.deepEqual(exam.result.versions.map(({ name }) => name), ['Q', 'R']);
  assert.equal(exam.result.title, 'Ünit');
  assert.ok(exam.result.rows.length > 2);
  exam.make({ maxQuestions: 2 });
  assert.ok(exam.result.files.every(({ questions }) => questions.filter(({ fate }) => fate === 'kept').length <= 2));
  assert.throws(() => exam.make({ maxQuestions: -1 }), TypeError);
  assert.throws(() => exam.make({ objectives: ['none'] }), TypeError);
  assert.throws(() => exam.studentPage({ idDigits: 21 }), TypeError);
  exam.close();
});

test('the quick start of the README runs as it stands', async () => {
  const [, code] = readFileSync(join(checkout, 'README.md'), 'utf8').match(/<!-- quick start: javascript -->\n```js\n([^]*?)```/);
  assert.ok(code.trim().split('\n').length <= 5);
  writeFileSync(join(home, 'start.mjs'), code);
  const said = execFileSync(process.execPath, [join(home, 'start.mjs')], { cwd: checkout }).toString();
  const names = ['examples/sample-test.xml', 'examples/sample-test-b.xml'];
  const expected = execFileSync(program, ['--quiet', '--csv', '-', ...names], { cwd: checkout }).toString();
  assert.equal(said, `${expected}\n`);
});

test('its types are those of what it does', { skip: !existsSync(tsc) && 'no TypeScript (node-typescript)' }, () => {
  const usage = join(checkout, 'tests/web/usage.ts');
  cpSync(usage, join(home, 'usage.mts'));
  const options = ['--strict', '--noEmit', '--target', 'es2022', '--module', 'nodenext', '--lib', 'es2022,dom'];
  const done = spawnSync(process.execPath, [tsc, ...options, join(home, 'usage.mts')], { cwd: home });
  assert.equal(done.status, 0, String(done.stdout));
});

/** An export of `count` questions, each with `length` letters more than a line. */
const generated = (count, length) =>
  `<?xml version='1.0' encoding='utf-8'?>\n<examview type='test'><header><title>Large</title></header>` +
  Array.from({ length: count }, (_, i) => `<question type='tf' question-id='${i + 1}' bank-id='0'>\n<text>Question ${i} ` +
    `${'x'.repeat(length)}</text>\n<answer>${i % 2 ? 'T' : 'F'}</answer></question>\n`).join('') + '</examview>\n';

test('loads 30 MB; hostile files are refused; a hundred loads take no more memory than the first ones', async () => {
  const large = generated(200, 150000);
  assert.ok(large.length > 30e6);
  const exam = await load([{ name: 'large.xml', content: large }]);
  assert.equal(exam.result.files[0].questions.length, 200);
  exam.close();

  const hostile = ['xml_load', 'lmf_open'].flatMap((name) => {
    const folder = join(checkout, 'fuzz/corpus', name);
    return readdirSync(folder).map((file) => given(folder, file));
  });
  assert.ok(hostile.length >= 10);

  const { init } = await import(pathToFileURL(join(home, 'node_modules/torva35/torva35.js')));
  const module = await init();
  const probe = () => module._malloc(64 * 1024 * 1024);
  const statuses = new Set();
  const loads = async (count) => {
    for (let i = 0; i < count; ++i) {
      for (const files of [given(examples, 'sample-test.xml', 'sample-test-b.xml'), hostile[i % hostile.length]]) {
        const exam = await load(files);
        statuses.add(exam.result.status);
        exam.close();
      }
    }
    const size = module.HEAPU8.length;
    // Where a large block would come to lie tells how far small ones have spread.
    const at = probe();
    module._free(at);
    return { size, at, files: module.FS.readdir('/tmp').length };
  };
  const before = await loads(hostile.length);
  assert.deepEqual(await loads(100), before);
  assert.deepEqual([...statuses].sort(), ['done', 'refused']);
});
