// One arm: its picture, its panel, its plots, and what is said when its states stop.
import {element, write} from './dom.js';
import {Pulse} from './feed.js';
import {Panel} from './panel.js';
import {Plots} from './plots.js';
import {Stage} from './stage.js';

const plotEveryMs = 80;
const numbersEveryMs = 200;  // as fast as one reads; each time the browser paints the panel anew

function stageIn(box, quality) {
  try {
    return new Stage(box, quality);
  } catch {
    box.append(element('p.empty', {}, 'This browser has no WebGL: the arm is not drawn.'));
    return null;
  }
}

export class Card {
  constructor(number, name, quality) {
    this.number = number;
    this.quality = quality;
    this.pulse = new Pulse();
    this.link = {state: 'up'};
    this.facts = {};  // what the picture was told, by method
    this.pill = element('span.pill', {}, '');
    this.rate = element('span.rate');
    this.banner = element('.banner', {role: 'alert', hidden: true});
    this.tools = element('.tools');
    this.title = element('h2', {}, element('a', {}, name));
    this.name = name;
    this.box = element('.stage', {}, element('canvas'),
      element('header', {}, this.title, this.pill, this.rate, this.tools), this.banner);
    this.panelBox = element('.panel');
    this.plotBox = element('.plots');
    this.root = element('article.card', {}, this.box, this.panelBox, this.plotBox);
    this.plotted = this.written = 0;
  }

  // The picture, made when it is first looked at.
  openStage() {
    if (this.stage !== undefined || !this.arm?.chain.joints) return;
    this.stage = stageIn(this.box, this.quality);
    this.stage?.setArm(this.arm);
    for (const [method, facts] of Object.entries(this.facts)) this.stage?.[method](facts);
  }

  setQuality(quality) {
    this.quality = quality;
    this.stage?.setQuality(quality);
  }

  tellStage(method, facts) {
    this.facts[method] = facts;
    this.stage?.[method](facts);
  }

  setArm(facts) {
    this.arm = facts;
    const chain = facts.chain;
    this.panelBox.replaceChildren();
    this.plotBox.replaceChildren();
    this.panel = new Panel(this.panelBox, facts);
    this.panel.setOpen('chain', chain);
    this.plots = new Plots(this.plotBox, facts.jointCount);
    if (chain.joints) this.stage?.setArm(facts);
    this.facts = {};
    if (chain.name) write(this.title.firstChild, `${this.name} · ${chain.name}`);
  }

  setFrames(facts) {
    if (facts.unknown || !this.arm) return;
    this.tellStage('setFrames', facts);
    this.panel.setFrames(facts);
  }
  setTarget(facts) {
    this.tellStage('setTarget', facts.joints ?? null);
    this.panel?.setOpen('target', facts);
  }
  setFences(facts) {
    this.tellStage('setFences', facts);
    this.panel?.setOpen('fences', facts);
  }
  setGripper(facts) {
    this.tellStage('setGripper', facts);
    this.panel?.setGripper(facts);
  }
  setSignals(facts) {
    this.panel?.setSignals(facts);
  }
  setErrors(facts) {
    this.panel?.setErrors(facts);
  }
  setLink({link}) {
    this.link = link;
    this.watch();
  }

  // A state has come.
  take(state) {
    this.pulse.beat(state);
    this.put(state);
  }

  // A state is drawn with the next frame of the screen, unless a newer one comes before.
  put(state) {
    this.addSpeed(state);
    this.state = state;
    this.fresh = true;
    this.plots?.add(state);
  }

  // From now on plots and path hold what came with these states, and later.
  rewind(states) {
    this.mark = null;
    this.plots?.clear();
    for (const state of states) this.put(state);
    this.stage?.retrace(states);
  }

  // Speeds that the controller does not push, from the way since a tenth of a second ago.
  addSpeed(state) {
    if (this.arm?.pushesSpeed) {
      state.speed = state.dq;
      return;
    }
    if (!this.mark || state.t - this.mark.t > 100) {
      const mark = this.mark, seconds = mark ? (state.t - mark.t) / 1000 : 0;
      this.speed = state.q.map((angle, i) => (mark && seconds < 0.5 ? (angle - mark.q[i]) / seconds : null));
      this.mark = state;
    }
    state.speed = this.speed;
  }

  // Draws what is new. Returns whether it drew.
  draw(now) {
    if (!this.root.offsetParent) return false;
    this.openStage();
    if (this.fresh && this.panel) {
      this.fresh = false;
      this.unread = true;
      this.stage?.show(this.state);
    }
    if (this.unread && now - this.written > numbersEveryMs) {
      this.unread = false;
      this.written = now;
      this.panel.show(this.state);
      this.showDoing();
    }
    if (this.plots && now - this.plotted > plotEveryMs && this.state) {
      this.plotted = now;
      this.plots.draw();
      write(this.rate, this.pulse.rate ? `${Math.round(this.pulse.rate)} states/s` : '');
    }
    const drew = !!this.stage?.draw();
    if (this.state && this.stage?.chain && !this.stage.stale) this.drawn = this.state.n;
    return drew;
  }

  showDoing() {
    const moves = this.state.speed.some((speed) => Math.abs(speed ?? 0) > 0.2);
    const [text, kind] = Panel.doing(this.state, moves, this.arm.pushesStatus);
    write(this.pill, text);
    this.pill.className = `pill ${kind}`;
  }

  // Says it when states stop.
  watch() {
    const silent = this.pulse.silence();
    const [text, advice] = this.link.state !== 'up' ? [this.link.text, this.link.advice]
      : silent ? [`No state for ${(silent / 1000).toFixed(1)} s: the picture is old.`, ''] : ['', ''];
    this.root.classList.toggle('stalled', !!text);
    this.banner.hidden = !text;
    if (!text) return;
    if (!this.banner.firstChild) this.banner.append(element('strong'), element('span'));
    write(this.banner.firstChild, text);
    write(this.banner.lastChild, advice ?? '');
  }

  dress() {
    this.stage?.dress();
    this.plots?.dress();
  }
}
