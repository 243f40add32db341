// The live view against simulated arms, in headless Chromium: view_test.mjs ZK SIMULATOR CHROMIUM.
import assert from 'node:assert/strict';
import {execFile, spawn} from 'node:child_process';
import {once} from 'node:events';
import {createConnection} from 'node:net';
import {existsSync, mkdtempSync, rmSync, statSync, truncateSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {createInterface} from 'node:readline';
import {after, test} from 'node:test';
import {setTimeout as sleep} from 'node:timers/promises';
import {promisify} from 'node:util';
import {Browser} from './browser.mjs';
import {pixelsOf} from './png.mjs';

const [zk, simulator, chromium] = process.argv.slice(2);
const scratch = mkdtempSync(join(tmpdir(), 'zk_view_test_'));
const tools = {tool: '0.02,0.01,0.12,0.3,0.2,0.1', work: '0.1,0.2,0.05,0.1,0.2,0.4', install: '0,20,30'};
const models = ['ZK65-B', 'ZK75-B', '63-B', 'ORB65-B', '62-B', '72-B', 'ORB63-B'];
const postures = [[20, 30, -40, 25, 35, 10, 15], [-60, -20, 60, 40, -30, 70, -40], [100, 45, 30, -60, 50, -80, 20]];
const children = [];
const run = promisify(execFile);

after(async () => {
  await browser.close();
  for (const child of children) {
    if (child.exitCode !== null || child.signalCode !== null) continue;
    const ended = once(child, 'exit');
    child.kill('SIGCONT');
    child.kill();
    await ended;
  }
  rmSync(scratch, {recursive: true});
});

async function start(program, words) {
  const child = spawn(program, words, {stdio: ['pipe', 'pipe', 'inherit']});
  children.push(child);
  const [line] = await once(createInterface({input: child.stdout}), 'line');
  return {child, line};
}

// Simulated arms in one process: {child, ports}.
async function simulate(arms) {
  const file = join(scratch, `arms${children.length}.json`);
  writeFileSync(file, JSON.stringify(arms.map((arm) => ({...arm, port: 0, 'push-port': 0}))));
  const {child, line} = await start(simulator, ['--arms', file, '--quiet', '--until-eof']);
  return {child, ports: [...line.matchAll(/ port=(\d+)/g)].map(([, port]) => port)};
}

// The view: its address and the token.
async function watch(ports, ...options) {
  const {child, line} = await start(zk, ['view', ...options.includes('--port') ? [] : ['--port', '0'], ...options, ...ports.map((port) => `127.0.0.1:${port}`)]);
  const [, url, token] = line.match(/(http:\/\/[^#]+)(?:#token=(.*))?/);
  return {child, url, token};
}

async function ask(port, request) {
  const socket = createConnection(port, '127.0.0.1');
  const lines = createInterface({input: socket});
  socket.write(`${JSON.stringify(request)}\r\n`);
  const [line] = await once(lines, 'line');
  socket.destroy();
  return JSON.parse(line);
}

const moveTo = (port, degrees, v) => ask(port, {command: 'movej', joint: degrees.map((angle) => angle * 1000), v, r: 0,
                                                trajectory_connect: 0});

// The events of a view, as a page gets them that says how far it has come, or that does not.
async function* events(url, keepsUp = true) {
  const abort = new AbortController();
  const answer = await fetch(`${url}events`, {signal: abort.signal});
  let text = '', viewer = 0, reported = 0;
  try {
    for await (const bytes of answer.body) {
      const whole = (text + Buffer.from(bytes).toString()).split('\n\n');
      text = whole.pop();
      for (const event of whole) {
        const [, name, id, data] = event.match(/^event: (\w+)\n(?:id: (\d+)\n)?data: (.*)$/) ?? [];
        if (!name) continue;
        const made = {name, id: Number(id), ...JSON.parse(data)};
        if (name === 'welcome') viewer = made.viewer;
        if (keepsUp && made.id > reported + 20) await see(url, viewer, reported = made.id);
        yield made;
      }
    }
  } finally {
    abort.abort();
  }
}

const see = (url, viewer, id) => fetch(`${url}seen?viewer=${viewer}&event=${id}`, {method: 'POST'});

async function firstEvent(url, wanted) {
  for await (const event of events(url)) if (wanted(event)) return event;
  throw new Error('the events have ended');
}

const turned = ([w, x, y, z], [a, b, c]) => {
  const cross = [y * c - z * b, z * a - x * c, x * b - y * a].map((value) => 2 * value);
  return [a + w * cross[0] + y * cross[2] - z * cross[1], b + w * cross[1] + z * cross[0] - x * cross[2],
          c + w * cross[2] + x * cross[1] - y * cross[0]];
};

// Column-major matrices, as WebGL has them.
const times = (m, [x, y, z, w]) => [0, 1, 2, 3].map((i) => m[i] * x + m[4 + i] * y + m[8 + i] * z + m[12 + i] * w);

// Where the tip of the drawn tool is, as the middle of the pixels of its colour near a place.
function tipNear({width, height, at}, [x, y], reach) {
  let sum = [0, 0], count = 0;
  for (let v = Math.max(0, y - reach | 0); v < Math.min(height, y + reach); ++v) {
    for (let u = Math.max(0, x - reach | 0); u < Math.min(width, x + reach); ++u) {
      const [red, green, blue] = at(u, v);
      if (Math.hypot(red - 0xff, green - 0x2e, blue - 0x88) > 60) continue;
      sum = [sum[0] + u + 0.5, sum[1] + v + 0.5];
      ++count;
    }
  }
  return count > 8 ? sum.map((value) => value / count) : null;
}

const browser = new Browser(chromium);

// Where a place of the room is on the page, by the camera of a card.
async function projected(page, card, place) {
  const {world, projection, box} = await page.value(`(() => {
    const {camera, box} = ${card}.stage, {x, y, width, height} = box.getBoundingClientRect();
    return {world: camera.matrixWorldInverse.elements, projection: camera.projectionMatrix.elements, box: {x, y, width, height}};
  })()`);
  const [x, y, , w] = times(projection, times(world, [...place, 1]));
  return [box.x + (x / w + 1) / 2 * box.width, box.y + (1 - y / w) / 2 * box.height];
}

async function checkTip(page, url, number, degrees, plain) {
  const card = `zkView.cards[${number}]`;
  const reached = ({name, arm, q}) =>
    name === 'state' && arm === number && q.every((angle, i) => Math.abs(angle - degrees[i]) < 2e-3);
  const {work} = await firstEvent(url, ({name, arm}) => name === 'arm' && arm === number);
  const state = await firstEvent(url, reached);
  await page.value(`location.hash = '#arm=${number}'`);
  await checkDrawn(page, card, work, state, `${models[number]} at ${degrees}`, plain);
}

// The tool's tip is drawn where a state, or a later one of the same posture, says.
async function checkDrawn(page, card, work, {n, p}, what, plain = false) {
  // Sharp, the tip large enough for its pixels to be counted, and without the path, which has its colour.
  await page.until(`${card}.stage?.path`);
  await page.value(`${card}.stage.setQuality({shadows: false, plain: ${plain}, sharpness: 1});
                    ${card}.stage.path.root.visible = false;
                    ${card}.stage.tip.scale.setScalar(2)`);
  await page.until(`${card}.drawn >= ${n}`);
  const place = turned(work.q, p).map((value, i) => value + work.p[i]);
  const expected = await projected(page, card, place);
  // What is drawn reaches the screen later, and on a slow machine much later.
  let drawn = null, isThere = false;
  for (const end = Date.now() + 60000; !isThere && Date.now() < end;) {
    drawn = tipNear(pixelsOf(await page.picture()), expected, 60);
    isThere = !!drawn && Math.hypot(drawn[0] - expected[0], drawn[1] - expected[1]) < 2;
  }
  assert.ok(isThere, `${what}: drawn at ${drawn}, expected at ${expected}`);
}

test('the tool tip is drawn where the stream says', async () => {
  const {ports} = await simulate(models.map((model) => ({model, ...tools, 'push-cycle': 10})));
  const {url} = await watch(ports);
  const page = await browser.open(`${url}#arm=0`, {width: 480, height: 420});
  await page.until('window.zkView?.cards.every((card) => card.arm && card.state)');
  const counts = await page.value('zkView.cards.map((card) => card.arm.jointCount)');
  for (const [i, posture] of postures.entries()) {
    const targets = counts.map((count) => posture.slice(0, count));
    await Promise.all(ports.map((port, number) => moveTo(port, targets[number], 100)));
    for (const number of ports.keys()) await checkTip(page, url, number, targets[number], i === 1);
  }
  assert.deepEqual(page.complaints, []);
});

// A recording of moves through the postures, and of an error after them: {file, states}.
async function record() {
  const {ports: [port]} = await simulate([{model: 'ZK65-B', ...tools}]);
  const file = join(scratch, 'run.mcap'), arm = ['--arm', `127.0.0.1:${port}`];
  const recorder = spawn(zk, ['record', '-o', file, ...arm], {stdio: 'ignore'}), ended = once(recorder, 'exit');
  children.push(recorder);
  while (!existsSync(file)) await sleep(20);
  for (const posture of postures)
    await run(zk, ['move', 'joints', ...posture.slice(0, 6), '-y', '--speed', 100, '--max-step', 720, ...arm]);
  await ask(port, {command: 'zk_sim_fault', arm_err: 4100});
  await run(zk, ['doctor', ...arm]).catch(() => {});  // states go on
  recorder.kill('SIGINT');
  await ended;
  const {stdout} = await run(zk, ['export', file]);
  const [names, ...rows] = stdout.trim().split('\n').map((line) => line.split(','));
  const place = ['x_m', 'y_m', 'z_m'].map((name) => names.indexOf(name));
  return {file, states: rows.map((row, i) => ({n: i + 1, p: place.map((column) => Number(row[column]))}))};
}

test('a recording is played, and the slider moves the arm to the recorded place', async () => {
  const {file, states} = await record();
  const view = await start(zk, ['view', '--port', '0', file]);
  const {work} = await firstEvent(view.line, ({name}) => name === 'arm');
  const page = await browser.open(view.line, {width: 480, height: 420});
  await page.until('window.zkView?.player?.states');
  for (const share of [0.9, 0.2, 0.5]) {
    const i = Math.floor(states.length * share);
    await page.value(`(() => {
      const {slider, states, width} = zkView.player;
      slider.value = states[${i} * width];
      slider.dispatchEvent(new Event('input'));
    })()`);
    await page.until(`zkView.cards[0].state.n === ${i + 1} && !zkView.cards[0].fresh`);
    await checkDrawn(page, 'zkView.cards[0]', work, states[i], `the recording at ${share}`);
  }
  assert.equal(await page.value('document.querySelector(".errors").textContent'), '');
  await page.value(`document.querySelector('.mark.bad').click()`);
  await page.until(`document.querySelector('.errors').textContent.includes('0x1004')`);
  await page.value(`document.querySelector('.player select').value = '4'; document.querySelector('.player button').click()`);
  await page.until(`zkView.cards[0].state.n === ${states.length} && !zkView.player.plays`);
  assert.deepEqual(page.complaints, []);

  truncateSync(file, Math.floor(statSync(file).size * 0.6));  // as a recorder leaves it that was killed
  const cut = await browser.open((await start(zk, ['view', '--port', '0', file])).line);
  await cut.until('window.zkView?.player?.states');
  assert.ok(await cut.value(`zkView.player.count`) < states.length);
  assert.match(await cut.value(`document.querySelector('.player').textContent`), /cut short/);
});

test('a banner says that the states have stopped, and goes when they come again', async () => {
  const {child, ports} = await simulate([{model: 'ZK65-B'}]);
  const {url} = await watch(ports);
  const page = await browser.open(url, {width: 500, height: 900, dark: true});
  await page.until('window.zkView?.cards[0].state');
  await page.until('document.querySelector(".banner").hidden');
  child.kill('SIGSTOP');
  await page.until('!document.querySelector(".banner").hidden');
  child.kill('SIGCONT');
  await page.until('document.querySelector(".banner").hidden');
  await ask(ports[0], {command: 'zk_sim_fault', arm_err: 4100});
  await page.until('document.querySelector(".errors").textContent.includes("0x1004")');
  child.kill('SIGKILL');
  await page.until('zkView.cards[0].link.state === "lost" && !document.querySelector(".banner").hidden');
  assert.deepEqual(page.complaints, []);
});

test('who knows the token stops a moving arm', async () => {
  const {ports: [port]} = await simulate([{model: 'ZK65-B'}]);
  const {url, token} = await watch([port], '--control');
  const page = await browser.open(url);
  await page.until('window.zkView?.cards[0].state');
  await moveTo(port, [170, 0, 0, 0, 0, 0], 4);
  const moves = 'zkView.cards[0].state.doing === 2';
  await page.until(moves);
  const press = 'document.querySelector(".stop").click()';
  await page.value(press);
  const stop = (given) => fetch(`${url}stop?arm=0`, {method: 'POST', headers: {'X-Token': given}});
  for (const wrong of ['', token.slice(1), `${token}a`]) assert.equal((await stop(wrong)).status, 403);
  await page.value('zkView.cards[0].state = {...zkView.cards[0].state, doing: -1}');
  await page.until(moves);  // it goes on
  await page.value(`document.querySelector('.control input').value = '${token}';
                    document.querySelector('.control button').click()`);
  await page.until('!document.querySelector(".stop").disabled');
  await page.value(press);
  await page.until('zkView.cards[0].state.doing === 0');
  assert.ok(await page.value('zkView.cards[0].state.q[0] < 160'));
});

test('a page comes again when the view was started again with the stop', async () => {
  const {ports} = await simulate([{model: '62-B'}]);
  const before = await watch(ports);
  const page = await browser.open(before.url);
  await page.until('window.zkView?.cards[0].state');
  before.child.kill();
  await once(before.child, 'exit');
  const {port} = new URL(before.url);
  await watch(ports, '--control', '--port', port);
  const offers = () => page.until('document.querySelector(".stop") && window.zkView?.cards[0].state');
  await offers().catch(offers);  // a question fails that the coming page interrupts
});

test('a view without control stops nothing, and answers to this machine alone', async () => {
  const {ports} = await simulate([{model: '62-B'}]);
  const {url, token} = await watch(ports);
  assert.equal(token, undefined);
  assert.equal((await fetch(`${url}stop?arm=0`, {method: 'POST', headers: {'X-Token': ''}})).status, 403);
  const {host, port} = new URL(url);
  for (const request of ['GET / HTTP/1.1\r\nHost: elsewhere.example', `POST /stop?arm=0 HTTP/1.1\r\nHost: ${host}`]) {
    const socket = createConnection(port, '127.0.0.1');
    socket.write(`${request}\r\nConnection: close\r\n\r\n`);
    const [line] = await once(createInterface({input: socket}), 'line');
    assert.match(line, /403/);
  }
});

test('a viewer that does not keep up misses states', async () => {
  const {ports} = await simulate([{model: 'ZK65-B'}]);
  const {url} = await watch(ports);
  const slow = events(url, false);
  const next = async (wanted) => {
    for (;;) {
      const {value} = await slow.next();
      if (wanted(value)) return value;
    }
  };
  const {viewer} = await next(({name}) => name === 'welcome');
  const first = await next(({name}) => name === 'state');
  await firstEvent(url, ({name, n}) => name === 'state' && n > first.n + 400);
  await see(url, viewer, 1e9);
  const kept = [first];
  while (kept.at(-1).n < first.n + 400) kept.push(await next(({name}) => name === 'state'));
  assert.ok(kept.length < 200, `${kept.length} states were kept`);
  await slow.return();
});

test('a view that did not run for a while leaves no state out', async () => {
  const {ports} = await simulate([{model: 'ZK65-B', 'push-cycle': 4}]);
  const {child, url} = await watch(ports);
  const numbers = [];
  for await (const {name, n} of events(url)) {
    if (name !== 'state') continue;
    numbers.push(n);
    if (numbers.length > 40) break;
    if (numbers.length !== 5) continue;
    child.kill('SIGSTOP');
    await sleep(300);
    child.kill('SIGCONT');
  }
  assert.deepEqual(numbers, numbers.map((_, i) => numbers[0] + i));
});

test('a sixth page is refused, so that a browser keeps a connection for the stop', async () => {
  const {ports} = await simulate([{model: 'ZK65-B'}]);
  const {url} = await watch(ports);
  const open = [];
  for (let i = 0; i < 5; ++i) {
    open.push(events(url));
    await open[i].next();
  }
  assert.equal((await fetch(`${url}events`)).status, 503);
  await Promise.all(open.map((stream) => stream.return()));
});

test('an arm that does not answer ends the view at the start', async () => {
  const child = spawn(zk, ['view', '--port', '0', '127.0.0.1:1'], {stdio: ['ignore', 'ignore', 'pipe']});
  const [text, [status]] = await Promise.all([child.stderr.toArray(), once(child, 'exit')]);
  assert.equal(status, 3);
  assert.equal(text.join('').split('127.0.0.1').length, 2);  // its address, once
});
