// A headless Chromium, driven through its DevTools protocol over a pipe: JSON messages, a NUL after each.
import { spawn } from 'node:child_process';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

export class Chromium {
  #process;
  #profile = mkdtempSync(join(tmpdir(), 'torva35-chromium-'));
  #waiting = new Map();
  #last = 0;
  #session;
  /** What the page has thrown or logged as an error. */
  errors = [];

  static async start() {
    const browser = new Chromium();
    const { targetId } = await browser.send('Target.createTarget', { url: 'about:blank' });
    browser.#session = (await browser.send('Target.attachToTarget', { targetId, flatten: true })).sessionId;
    for (const domain of ['Page', 'Runtime', 'DOM']) await browser.send(`${domain}.enable`);
    return browser;
  }

  constructor() {
    const flags = ['--headless=new', '--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage', '--remote-debugging-pipe',
      '--no-first-run', `--user-data-dir=${this.#profile}`];
    this.#process = spawn('chromium', flags, { stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe'] });
    let rest = '';
    this.#process.stdio[4].setEncoding('utf8').on('data', (part) => {
      const messages = (rest + part).split('\0');
      rest = messages.pop();
      for (const message of messages) this.#receive(JSON.parse(message));
    });
  }

  #receive({ id, method, params, result, error }) {
    if (method === 'Runtime.exceptionThrown') this.errors.push(params.exceptionDetails.exception?.description ?? params.exceptionDetails.text);
    if (method === 'Runtime.consoleAPICalled' && params.type === 'error') this.errors.push(params.args.map((arg) => arg.value).join(' '));
    if (!this.#waiting.has(id)) return;
    const { resolve, reject } = this.#waiting.get(id);
    this.#waiting.delete(id);
    if (error) reject(new Error(error.message));
    else resolve(result);
  }

  send(method, params = {}) {
    const id = ++this.#last;
    this.#process.stdio[3].write(JSON.stringify({ id, method, params, sessionId: this.#session }) + '\0');
    return new Promise((resolve, reject) => this.#waiting.set(id, { resolve, reject }));
  }

  /** The value of an expression, once a promise of it is there. */
  async run(expression) {
    const { result, exceptionDetails } = await this.send('Runtime.evaluate', { expression, awaitPromise: true, returnByValue: true });
    if (exceptionDetails) throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
    return result.value;
  }

  /** Waits until an expression is true. */
  async until(expression, milliseconds = 60000) {
    for (const end = Date.now() + milliseconds; Date.now() < end; ) {
      if (await this.run(`Boolean(${expression})`)) return;
      await new Promise((resolve) => setTimeout(resolve, 20));
    }
    throw new Error(`never true: ${expression}; the page: ${await this.run('document.body.innerText')}`);
  }

  async open(url) {
    await this.send('Page.navigate', { url });
    await this.until(`document.readyState === 'complete' && location.href.startsWith(${JSON.stringify(url)})`);
  }

  async close() {
    const ended = new Promise((resolve) => this.#process.once('exit', resolve));
    await this.send('Browser.close').catch(() => {});
    await ended;
    rmSync(this.#profile, { recursive: true, force: true, maxRetries: 5, retryDelay: 100 });
  }
}
