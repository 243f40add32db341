import 'uplot/dist/uPlot.min.css';
import './style.css';
import {Card} from './card.js';
import {Control} from './control.js';
import {write} from './dom.js';
import {Feed} from './feed.js';
import {Player} from './player.js';
import {Judge} from './quality.js';
import {Theme} from './theme.js';

const part = (name) => document.getElementById(name);
const judge = new Judge(new URLSearchParams(location.search).get('picture') === 'best');

let cards = [], player = null;

function say(text) {
  write(part('notice'), text);
  part('notice').hidden = !text;
}

const control = new Control(part('control'), say);
const theme = new Theme(part('theme'), () => cards.forEach((card) => card.dress()));

function welcome({arms, control: mayStop, recording}) {
  say('');
  const known = cards.map(({name}) => name).join();
  if (cards.length && known === arms.join()) return;
  cards = arms.map((name, i) => new Card(i, name, judge.quality));
  part('arms').replaceChildren(...cards.map(({root}) => root));
  write(part('summary'), cards.length === 1 ? '' : `${cards.length} arms`);
  write(part('mode'), recording ? 'This is a recording: no arm is connected.'
    : mayStop ? 'This view can stop arms, and nothing else.' : 'This view only looks: it never moves an arm.');
  write(part('title'), recording ? 'Recording' : 'Live view');
  document.title = arms.join(', ');
  focus();
  if (mayStop) control.open(cards);
  player = recording ? new Player(part('player'), cards[0], recording) : null;
  window.zkView = {cards, player};
}

// #arm=2 shows the third arm alone, and so does a click on its name; another one shows all again.
function focus() {
  const chosen = new URLSearchParams(location.hash.slice(1)).get('arm');
  const alone = cards.length > 1 && cards[chosen];
  for (const card of cards) card.root.hidden = alone && card !== alone;
  part('arms').className = `arms of${alone ? 1 : Math.min(cards.length, 4)}`;
  cards.forEach(({title, number}) => (title.firstChild.href = alone ? '#' : `#arm=${number}`));
}
addEventListener('hashchange', focus);

const to = (method) => (facts) => cards[facts.arm]?.[method](facts);

function setArm(facts) {
  to('setArm')(facts);
  player?.load().catch(() => say('The recording did not come: load the page again.'));
}

new Feed({
  welcome, arm: setArm, state: to('take'), link: to('setLink'), errors: to('setErrors'), target: to('setTarget'),
  frames: to('setFrames'), fences: to('setFences'), gripper: to('setGripper'), signals: to('setSignals'),
}, (refused) => say(refused ? 'The view does not take this page: five are open already, or it has ended.'
                            : 'The view has ended or does not answer. It is tried again.'));

function frame(now) {
  let drew = false;
  player?.advance(now);
  for (const card of cards) drew = card.draw(now) || drew;
  if (judge.judge(now, drew)) cards.forEach((card) => card.setQuality(judge.quality));
  requestAnimationFrame(frame);
}

requestAnimationFrame(frame);
setInterval(() => cards.forEach((card) => card.watch()), 50);
theme.apply();
