// Plays a recording: its states are here, and a slider chooses the time that is shown.
import {element, write} from './dom.js';

const speeds = [0.25, 0.5, 1, 2, 4];
const shownBefore = 60, sampleEvery = 0.1;  // seconds of the plots and of the path

const clock = (seconds) => `${Math.floor(seconds / 60)}:${(seconds % 60).toFixed(1).padStart(4, '0')}`;

export class Player {
  constructor(bar, card, recording) {
    Object.assign(this, {card, ...recording, time: 0, at: -1, plays: false, states: null});
    this.width = this.columns.reduce((sum, [, size]) => sum + size, 0);
    this.button = element('button', {type: 'button', title: 'Play or pause (space)', onclick: () => this.toggle()});
    this.slider = element('input', {type: 'range', min: 0, max: this.seconds, step: 'any', value: 0,
                                    ariaLabel: 'Time', oninput: () => this.go(Number(this.slider.value))});
    this.clock = element('output');
    this.speed = element('select', {title: 'Speed'}, ...speeds.map((speed) =>
      element('option', {value: speed, selected: speed === 1}, `${speed}×`)));
    bar.replaceChildren(this.button, element('.track', {}, this.slider, ...this.marks.map((mark) => this.mark(mark))),
                        this.clock, this.speed,
                        this.isWhole ? '' : element('p', {}, 'The recording is cut short: it plays as far as it goes.'));
    bar.hidden = false;
    addEventListener('keydown', (event) => {
      if (event.key !== ' ' || event.target.closest('button, select')) return;
      event.preventDefault();
      this.toggle();
    });
    this.show();
  }

  mark({t, isError, text}) {
    return element(isError ? 'button.mark.bad' : 'button.mark', {type: 'button', title: `${clock(t)}  ${text}`,
      style: `--share: ${this.seconds ? t / this.seconds : 0}`, onclick: () => this.go(t)});
  }

  async load() {
    const answer = await fetch('recording');
    this.states = new Float32Array(await answer.arrayBuffer());
    this.count = this.states.length / this.width;
    this.go(0);
  }

  toggle() {
    this.plays = !this.plays;
    if (this.plays && this.time >= this.seconds) this.go(0);
    this.show();
  }

  // A state as the stream of an arm has it. What a recording does not hold is as with an arm at rest.
  state(i) {
    const state = {n: i + 1, on: [], doing: 0};
    let at = i * this.width;
    for (const [name, size] of this.columns) {
      state[name] = size === 1 ? this.states[at] : [...this.states.subarray(at, at + size)];
      at += size;
    }
    state.t *= 1000;
    return {...state, zeroForce: state.force, forceFrame: 0};
  }

  // The last state up to a time, and at least the first.
  index(time) {
    let low = 0, high = this.count;
    while (high - low > 1) {
      const middle = (low + high) >> 1;
      if (this.states[middle * this.width] <= time + 1e-4) low = middle;
      else high = middle;
    }
    return low;
  }

  go(time) {
    this.time = Math.min(Math.max(time, 0), this.seconds);
    this.show();
    if (!this.states) return;
    const next = this.index(this.time);
    if (next < this.at || next > this.at + 200) this.jump(next);
    while (this.at < next) this.card.put(this.state(++this.at));
    const errors = this.errors.findLast(({t}) => t <= this.time + 1e-4) ?? {list: []};
    if (errors !== this.shownErrors) this.card.setErrors(errors);
    this.shownErrors = errors;
  }

  // To another time: plots and path hold what was before it.
  jump(next) {
    const end = this.states[next * this.width], before = [];
    for (let at = Math.max(end - shownBefore, 0); at < end; at += sampleEvery) before.push(this.state(this.index(at)));
    this.card.rewind(before);
    this.at = next - 1;
  }

  // With each frame of the screen.
  advance(now) {
    const passed = now - (this.last ?? now);
    this.last = now;
    if (!this.plays || !this.states) return;
    this.go(this.time + passed / 1000 * Number(this.speed.value));
    if (this.time >= this.seconds) this.toggle();
  }

  show() {
    this.slider.value = this.time;
    write(this.clock, `${clock(this.time)} / ${clock(this.seconds)}`);
    write(this.button, this.plays ? '❚❚' : '▶');
    this.button.ariaLabel = this.plays ? 'Pause' : 'Play';
  }
}
