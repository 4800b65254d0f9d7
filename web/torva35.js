// From the files of a printed multiple-choice test to a bubble sheet that grades right: the library in WebAssembly, for
// browsers and Node. What it gives is described in index.d.ts.
import createModule from './torva35-module.js';

/** What a call on a handle gives; the numbers of torva35_c.h. */
const OK = 0;
const WRONG_CALL = 1;
const NO_RESULT = [WRONG_CALL, 2, 7];
const TEXT_BYTES = 8;

export const languages = ['en', 'de', 'fr', 'es'];

const encoder = new TextEncoder();
const decoder = new TextDecoder('utf-8', { ignoreBOM: true });

let loading = null;

/** Reads the module's file, which lies beside this one. */
async function moduleFile() {
  const url = new URL('./torva35.wasm', import.meta.url);
  if (url.protocol === 'file:' && typeof process === 'object') {
    const { readFile } = await import('node:fs/promises');
    return readFile(url);
  }
  const answer = await fetch(url);
  if (!answer.ok) throw new Error(`${url}: ${answer.status}`);
  return answer.arrayBuffer();
}

/** Loads the module. Calls after the first one give the same one, unless that has failed. */
export function init(wasm) {
  loading ??= start(wasm).catch((error) => {
    loading = null;
    throw error;
  });
  return loading;
}

async function start(wasm) {
  const wasmBinary = wasm ?? (await moduleFile());
  if (typeof globalThis.crypto !== 'object') {
    globalThis.crypto = (await import('node:crypto')).webcrypto;
  }
  return createModule({ wasmBinary, ask: () => 0 });
}

/** Adds up what the names of objectives stand for. */
function objectivesOf(names) {
  const values = { learning: 1, local: 2, state: 4, national: 8 };
  return (names ?? []).reduce((sum, name) => {
    if (!(name in values)) throw new TypeError(`no such objectives: ${name}`);
    return sum | values[name];
  }, 0);
}

function wholeNumber(value, most, name) {
  const number = value ?? 0;
  if (!Number.isInteger(number) || number < 0 || number > most) throw new TypeError(`${name} is out of range: ${value}`);
  return number;
}

async function bytesOf(content) {
  if (typeof content === 'string') return encoder.encode(content);
  if (content instanceof Uint8Array) return content;
  if (typeof content.arrayBuffer === 'function') return new Uint8Array(await content.arrayBuffer());
  return new Uint8Array(content);
}

export class Exam {
  #module;
  #handle;
  #result = null;

  constructor(module) {
    this.#module = module;
    this.#handle = module._torva35_exam_new();
    if (this.#handle === 0) throw new Error('out of memory');
  }

  /** Puts bytes where the module can read them, for the time of the call: `call(address)`. */
  #withBytes(bytes, call) {
    const address = this.#module._malloc(bytes.length || 1);
    if (address === 0) throw new Error('out of memory');
    try {
      this.#module.HEAPU8.set(bytes, address);
      return call(address);
    } finally {
      this.#module._free(address);
    }
  }

  /** The same with texts, one after another as the C interface has them: `call(address)`. */
  #withTexts(texts, call) {
    const encoded = texts.map((text) => encoder.encode(text));
    const table = texts.length * TEXT_BYTES;
    const bytes = new Uint8Array(encoded.reduce((size, text) => size + text.length, table));
    return this.#withBytes(bytes, (address) => {
      const heap = this.#module.HEAPU8;
      const view = new DataView(heap.buffer, address, table);
      let at = address + table;
      encoded.forEach((text, i) => {
        heap.set(text, at);
        view.setUint32(i * TEXT_BYTES, at, true);
        view.setUint32(i * TEXT_BYTES + 4, text.length, true);
        at += text.length;
      });
      return call(address);
    });
  }

  /** A copy of the bytes of a text. */
  #bytesAt(address) {
    const view = new DataView(this.#module.HEAPU8.buffer, address, TEXT_BYTES);
    const begin = view.getUint32(0, true);
    return this.#module.HEAPU8.slice(begin, begin + view.getUint32(4, true));
  }

  #textAt(address) {
    return decoder.decode(this.#bytesAt(address));
  }

  /** Runs a call that fills in `count` texts, and gives their bytes. */
  #contents(count, call) {
    this.#open();
    return this.#withBytes(new Uint8Array(count * TEXT_BYTES), (address) => {
      this.#check(call(address));
      return Array.from({ length: count }, (_, i) => this.#bytesAt(address + i * TEXT_BYTES));
    });
  }

  #text(call) {
    return decoder.decode(this.#contents(1, call)[0]);
  }

  #open() {
    if (this.#handle === 0) throw new Error('the exam is closed');
  }

  #check(code) {
    if (code !== OK) throw new Error(this.error);
  }

  add(content, name = '') {
    this.#open();
    const title = encoder.encode(name);
    this.#withBytes(title, (nameAt) =>
      this.#withBytes(content, (at) =>
        this.#check(this.#module._torva35_exam_add_content(this.#handle, at, content.length, nameAt, title.length)),
      ),
    );
  }

  make(options = {}) {
    this.#open();
    let thrown = null;
    this.#module.ask = (dialog, buttons, count) => {
      const text = (which) => this.#textAt(this.#module._torva35_web_dialog_text(dialog, which));
      const asked = { title: text(0), text: text(1), file: text(2), buttons: [] };
      for (let i = 0; i < count; ++i) asked.buttons.push(this.#textAt(buttons + i * TEXT_BYTES));
      try {
        return options.ask ? (options.ask(asked) ?? -1) : 0;
      } catch (error) {
        thrown = error;
        return -1;
      }
    };
    this.#result = null;
    const names = options.versionNames ?? [];
    const most = wholeNumber(options.maxQuestions, 2 ** 31 - 1, 'maxQuestions');
    const objectives = objectivesOf(options.objectives);
    const code = this.#withTexts([options.title ?? '', options.state ?? '', ...names], (texts) =>
      this.#module._torva35_web_make(this.#handle, texts, names.length, most, objectives, Number(Boolean(options.oddOnly)),
        Number(Boolean(options.renumber))),
    );
    if (thrown !== null) throw thrown;
    if (NO_RESULT.includes(code)) throw new Error(this.error);
    return code === OK;
  }

  get error() {
    this.#open();
    return this.#withBytes(new Uint8Array(TEXT_BYTES), (address) => {
      this.#module._torva35_exam_error(this.#handle, address);
      return this.#textAt(address);
    });
  }

  get json() {
    return this.#text((text) => this.#module._torva35_exam_json(this.#handle, text));
  }

  get result() {
    return (this.#result ??= JSON.parse(this.json));
  }

  get lines() {
    return this.result.findings.map((finding) => lineOf(finding, this.result.files));
  }

  get csv() {
    return this.#text((text) => this.#module._torva35_exam_csv(this.#handle, text));
  }

  #page(kind, page) {
    const digits = wholeNumber(page.idDigits, 20, 'idDigits');
    const letters = wholeNumber(page.nameLetters, 30, 'nameLetters');
    const version = wholeNumber(page.version, 2 ** 31 - 1, 'version');
    return this.#text((text) =>
      this.#withTexts([page.language ?? '', page.title ?? ''], (texts) =>
        this.#module._torva35_web_page(this.#handle, kind, texts, digits, letters, version, text),
      ),
    );
  }

  studentPage(page = {}) {
    return this.#page(0, page);
  }

  teacherPage(page = {}) {
    return this.#page(1, page);
  }

  lmf() {
    this.#open();
    const path = '/tmp/torva35.lmf';
    this.#withTexts([path], (texts) => {
      const at = new DataView(this.#module.HEAPU8.buffer, texts, 4).getUint32(0, true);
      this.#check(this.#module._torva35_exam_save_lmf(this.#handle, at, path.length));
    });
    const content = this.#module.FS.readFile(path);
    this.#module.FS.unlink(path);
    return content;
  }

  readerFiles(page = {}) {
    this.#page(2, page);
    const count = this.#module._torva35_exam_reader_file_count(this.#handle);
    return Array.from({ length: count }, (_, i) => {
      const [path, content] = this.#contents(2, (text) =>
        this.#module._torva35_exam_reader_file(this.#handle, i, text, text + TEXT_BYTES),
      );
      return { path: decoder.decode(path), content };
    });
  }

  close() {
    if (this.#handle !== 0) this.#module._torva35_exam_free(this.#handle);
    this.#handle = 0;
  }
}

/** What stands on one line: characters that would end it or have no picture are blanks. */
function oneLine(text) {
  // eslint-disable-next-line no-control-regex
  return text.replace(/[\u0000-\u001f\u007f-\u009f\u2028\u2029]/g, ' ');
}

/** The line that the program prints for a finding. */
export function lineOf(finding, files) {
  let place = finding.file >= 0 ? oneLine(files[finding.file].name) : 'torva35';
  if (finding.line > 0) place += `:${finding.line}`;
  if (finding.column > 0) place += `:${finding.column}`;
  const number = finding.number > 0 ? `question ${finding.number}` : '';
  const said = finding.text.includes(number);
  return `${place}: ${finding.severity}: ${said ? '' : `${number}: `}${oneLine(finding.text)}`;
}

/** Reads the files, the first one being the test and the others its versions, and makes the sheet. */
export async function load(files, options = {}) {
  const contents = await Promise.all(
    files.map(async (file) => ({ name: file.name ?? '', content: await bytesOf(file.content ?? file) })),
  );
  const exam = new Exam(await init());
  try {
    for (const { name, content } of contents) exam.add(content, name);
    exam.make(options);
    return exam;
  } catch (error) {
    // What traps leaves the module in the middle of its work: the next one is a new one.
    if (error instanceof WebAssembly.RuntimeError || error instanceof RangeError) loading = null;
    else exam.close();
    throw error;
  }
}
