// Drives a headless Chromium by its DevTools protocol, over a pipe.
import {spawn} from 'node:child_process';
import {once} from 'node:events';
import {mkdtempSync, rmSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {setTimeout as sleep} from 'node:timers/promises';

export class Browser {
  constructor(program = 'chromium') {
    this.profile = mkdtempSync(join(tmpdir(), 'zk_view_'));
    this.process = spawn(program, ['--headless=new', '--no-sandbox', '--use-gl=angle', '--use-angle=swiftshader',
      '--enable-unsafe-swiftshader', '--hide-scrollbars', '--no-first-run', '--disable-extensions', '--remote-debugging-pipe',
      `--user-data-dir=${this.profile}`, 'about:blank'], {stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe']});
    this.waiting = new Map();
    this.listeners = [];
    this.last = 0;
    let text = '';
    this.process.stdio[4].setEncoding('utf8').on('data', (more) => {
      const messages = (text + more).split('\0');
      text = messages.pop();
      for (const message of messages) this.take(JSON.parse(message));
    });
  }

  take(message) {
    const waiting = this.waiting.get(message.id);
    if (!waiting) {
      for (const listener of this.listeners) listener(message);
      return;
    }
    this.waiting.delete(message.id);
    if (message.error) waiting.reject(new Error(message.error.message));
    else waiting.resolve(message.result);
  }

  send(method, params = {}, sessionId = undefined) {
    const id = ++this.last;
    this.process.stdio[3].write(`${JSON.stringify({id, method, params, sessionId})}\0`);
    return new Promise((resolve, reject) => this.waiting.set(id, {resolve, reject}));
  }

  // Opens a page of this size. What it writes on its console as an error, or throws, is in its `complaints`.
  async open(url, {width = 1360, height = 860, dark = false} = {}) {
    const {targetId} = await this.send('Target.createTarget', {url: 'about:blank'});
    const {sessionId} = await this.send('Target.attachToTarget', {targetId, flatten: true});
    const page = new Page(this, sessionId);
    await page.send('Runtime.enable');
    await page.send('Log.enable');
    await page.send('Page.enable');
    await page.send('Emulation.setDeviceMetricsOverride', {width, height, deviceScaleFactor: 1, mobile: false});
    await page.send('Emulation.setEmulatedMedia', {features: [{name: 'prefers-color-scheme', value: dark ? 'dark' : 'light'}]});
    await page.send('Page.navigate', {url});
    return page;
  }

  async close() {
    const ended = once(this.process, 'close');
    this.send('Browser.close').catch(() => {});
    await ended;
    rmSync(this.profile, {recursive: true, force: true, maxRetries: 20, retryDelay: 50});
  }
}

class Page {
  constructor(browser, session) {
    this.browser = browser;
    this.session = session;
    this.complaints = [];
    browser.listeners.push(({sessionId, method, params}) => {
      if (sessionId !== session) return;
      if (method === 'Runtime.exceptionThrown') this.complaints.push(params.exceptionDetails.exception?.description ?? params.exceptionDetails.text);
      if (method === 'Log.entryAdded' && params.entry.level === 'error') this.complaints.push(params.entry.text);
      if (method === 'Runtime.consoleAPICalled' && ['error', 'warning'].includes(params.type))
        this.complaints.push(params.args.map(({value}) => value).join(' '));
    });
  }

  send(method, params) {
    return this.browser.send(method, params, this.session);
  }

  // The value of an expression in the page.
  async value(expression) {
    const {result, exceptionDetails} = await this.send('Runtime.evaluate', {expression, returnByValue: true, awaitPromise: true});
    if (exceptionDetails) throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
    return result.value;
  }

  // Waits until an expression holds.
  async until(expression, patience = 30000) {
    const end = Date.now() + patience;
    while (!(await this.value(`!!(${expression})`))) {
      if (Date.now() > end) throw new Error(`never true: ${expression}; the page says: ${this.complaints.join('; ')}`);
      await sleep(50);
    }
  }

  // A picture of the page, as PNG.
  async picture(clip = undefined) {
    const {data} = await this.send('Page.captureScreenshot', {format: 'png', clip: clip && {...clip, scale: 1}});
    return Buffer.from(data, 'base64');
  }
}
