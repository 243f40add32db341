#!/usr/bin/env node
// How many frames a second the live view draws of a moving arm that pushes its state every 5 ms, and whether it falls
// behind: live_view.mjs ZK SIMULATOR [SECONDS [CHROMIUM]]. Without a graphics card the processor draws; what the page's
// own thread takes for a frame then says how many a card could show.
import {spawn} from 'node:child_process';
import {once} from 'node:events';
import {createConnection} from 'node:net';
import {createInterface} from 'node:readline';
import {setTimeout as sleep} from 'node:timers/promises';
import {Browser} from '../tests/view/browser.mjs';

const [zk, simulator, seconds = '30', chromium = 'chromium'] = process.argv.slice(2);
const children = [];

async function start(program, ...words) {
  const child = spawn(program, words, {stdio: ['pipe', 'pipe', 'inherit']});
  children.push(child);
  const [line] = await once(createInterface({input: child.stdout}), 'line');
  return line;
}

const line = await start(simulator, '--model', 'ZK65-B', '--port', '0', '--push-port', '0', '--quiet', '--until-eof');
const [, port] = line.match(/ port=(\d+)/);
const url = await start(zk, 'view', '--port', '0', `127.0.0.1:${port}`);
const arm = createConnection(port, '127.0.0.1');
arm.resume();
const move = (angle) => arm.write(`${JSON.stringify({command: 'movej', joint: [angle * 1000, 30000, 60000, 0, 60000, 0],
                                                     v: 20, r: 0, trajectory_connect: 0})}\r\n`);
for (let i = 0; i < 1000; ++i) move(i % 2 ? 120 : -120);

const browser = new Browser(chromium);
const page = await browser.open(url, {width: 1280, height: 800});
await page.until('window.zkView?.cards[0].drawn');
await sleep(5000);  // shaders are compiled, and the picture is as coarse as the machine needs
await page.value(`(() => {
  const [card] = zkView.cards, {pulse} = card, beat = pulse.beat.bind(pulse);
  window.measured = {frames: 0, lags: []};
  pulse.beat = (state) => { beat(state); measured.lags.push(pulse.lag); };
  const {stage} = card, draw = stage.draw.bind(stage);
  stage.draw = () => { const drew = draw(); measured.frames += drew; return drew; };
})()`);
await page.send('Performance.enable');
const busy = async () => {
  const {metrics} = await page.send('Performance.getMetrics');
  return metrics.find(({name}) => name === 'TaskDuration').value;
};
const before = await busy();
await sleep(Number(seconds) * 1000);
const taken = await busy() - before;
const {frames, lags} = await page.value('measured');
console.log(`the page's thread worked ${(1000 * taken / frames).toFixed(1)} ms for a frame`);
const share = (values, part) => [...values].sort((a, b) => a - b)[Math.floor((values.length - 1) * part)];
const halves = [lags.slice(0, lags.length / 2), lags.slice(lags.length / 2)];
console.log(`${(frames / seconds).toFixed(1)} frames/s, ${(lags.length / seconds).toFixed(1)} states/s`);
halves.forEach((half, i) => console.log(`lag in the ${i ? 'second' : 'first'} half: median ${share(half, 0.5).toFixed(1)} ms, ` +
                                        `99 % ${share(half, 0.99).toFixed(1)} ms`));
console.log(`the picture: ${await page.value('JSON.stringify(zkView.cards[0].stage.quality)')}`);
await browser.close();
arm.destroy();
for (const child of children) child.kill();
