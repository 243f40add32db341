// What is known of an arm, in words and numbers.
import {jointColours} from './colours.js';
import {element, write} from './dom.js';
import {Euler, Quaternion} from 'three';

const doings = ['at rest', 'along a line', 'joint motion', 'on a circle', 'on a spline', 'following joints',
                'following poses', 'following poses with force', 'dragged by current', 'stopping', 'slowing down',
                'paused', 'dragged by hand', 'dragged by hand', 'replaying'];
const owners = {arm: 'the arm', system: 'the system'};
const degrees = 180 / Math.PI;

const fixed = (value, digits) => (Object.is(Math.round(value * 10 ** digits), -0) ? 0 : value).toFixed(digits);

function section(title, ...content) {
  return element('section', {}, element('h3', {}, title), ...content);
}

function pairs(names) {
  const cells = names.map((name) => element('output'));
  const list = element('.pairs', {}, ...names.map((name, i) => element('span', {}, element('i', {}, name), cells[i])));
  return {list, cells};
}

export class Panel {
  constructor(box, {chain, jointCount, recorded}) {
    this.recorded = recorded;
    this.limits = Array.from({length: jointCount}, (_, i) => chain.joints?.[i] ?? {min: -360, max: 360});
    this.rows = this.limits.map((limit, i) => this.jointRow(limit, i));
    this.pose = pairs(['x', 'y', 'z', 'rx', 'ry', 'rz']);
    this.frames = element('p.faint');
    this.forces = pairs(['Fx', 'Fy', 'Fz', 'Mx', 'My', 'Mz']);
    this.forceSection = section('Force at the tool', this.forces.list);
    this.forceSection.hidden = true;
    this.signals = element('.signals');
    this.signalSection = section('Inputs and outputs', this.signals);
    this.signalSection.hidden = true;
    this.errors = element('.errors', {role: 'status'});
    this.notes = element('ul.notes');
    this.noteSection = section('What cannot be seen', this.notes);
    this.devices = element('p.devices');
    this.facts = {};
    box.append(this.errors,
      section('Joints', element('.joints', {}, this.head(), ...this.rows.map(({row}) => row))),
      section('Tool in the work frame', this.pose.list, this.frames, this.devices), this.forceSection,
      this.signalSection, this.noteSection);
    this.note();
  }

  head() {
    return element('.joint.head', {}, element('span'), element('span', {}, 'angle °'), element('span'),
                   element('span', {}, '°/s'), element('span', {}, 'A'), element('span', {}, '°C'));
  }

  jointRow({min, max}, i) {
    const cells = {angle: element('b'), speed: element('span'), current: element('span'), celsius: element('span')};
    const mark = element('u'), fill = element('s');
    const bar = element('.bar', {title: `${min}° to ${max}°`}, fill, mark,
                        element('small', {}, `${Math.round(min)}`), element('small', {}, `${Math.round(max)}`));
    const name = element('em', {style: `--colour: ${jointColours[i]}`}, `J${i + 1}`);
    const row = element('.joint', {style: `--colour: ${jointColours[i]}`}, name, cells.angle, bar, cells.speed,
                        cells.current, cells.celsius);
    return {row, cells, mark, fill, min, max};
  }

  show(state) {
    this.rows.forEach(({row, cells, mark, fill, min, max}, i) => {
      const angle = state.q[i], share = (value) => Math.min(Math.max((value - min) / (max - min), 0), 1) * 100;
      write(cells.angle, fixed(angle, 2));
      write(cells.speed, fixed(state.speed[i] ?? 0, 1));
      write(cells.current, fixed(state.current[i], 2));
      write(cells.celsius, fixed(state.celsius[i], 0));
      const zero = share(0), at = share(angle);
      mark.style.left = `${at}%`;
      fill.style.left = `${Math.min(zero, at)}%`;
      fill.style.width = `${Math.abs(at - zero)}%`;
      row.classList.toggle('near', angle - min < 5 || max - angle < 5);
      row.classList.toggle('bad', state.error[i] !== 0);
      row.classList.toggle('off', state.on[i] === 0);
    });
    this.showPose(state);
    this.showForce(state);
    this.showJointErrors(state);
  }

  showPose({p, quat}) {
    const turn = new Euler().setFromQuaternion(new Quaternion(quat[1], quat[2], quat[3], quat[0]), 'ZYX');
    const values = [...p.map((metres) => `${fixed(metres * 1000, 1)} mm`),
                    ...[turn.x, turn.y, turn.z].map((angle) => `${fixed(angle * degrees, 1)}°`)];
    values.forEach((text, i) => write(this.pose.cells[i], text));
  }

  showForce({force, zeroForce, forceFrame}) {
    this.forceSection.hidden = !force.some((value) => value !== 0);
    if (this.forceSection.hidden) return;
    zeroForce.forEach((value, i) => write(this.forces.cells[i], `${fixed(value, 1)} ${i < 3 ? 'N' : 'Nm'}`));
    const frame = ['of the sensor', 'of the work frame', 'of the tool'][forceFrame] ?? '';
    write(this.forceSection.firstChild, `Force at the tool, in the axes ${frame}`);
  }

  showJointErrors({error}) {
    const text = error.join();
    if (text === this.jointErrors) return;
    this.jointErrors = text;
    this.joints = error.flatMap((word, i) => (word ? [{of: `joint ${i + 1}`,
      word: `0x${word.toString(16).padStart(4, '0')}`, cause: `Joint ${i + 1} reports an error.`,
      remedy: 'Find the cause at the joint, then run zk clear.'}] : []));
    this.writeErrors();
  }

  setErrors({list}) {
    this.words = list;
    this.writeErrors();
  }

  writeErrors() {
    const all = [...(this.words ?? []), ...(this.joints ?? [])];
    this.errors.replaceChildren(...all.map(({of, word, cause, remedy}) => element('article', {},
      element('strong', {}, `Error ${word} of ${owners[of] ?? of}`), element('p', {}, cause), element('p.faint', {}, remedy))));
  }

  setFrames(facts) {
    const kilograms = facts.kilograms ? `, ${facts.kilograms.toFixed(2)} kg` : '';
    write(this.frames, `Tool “${facts.toolName}”${kilograms}; work frame “${facts.workName}”.`);
  }

  setGripper({on, opening, force}) {
    write(this.devices, on ? `Gripper: opening ${opening} of 1000, force ${force}.` : '');
  }

  setSignals({in: inputs, out, inVolts, outVolts, tool}) {
    this.signalSection.hidden = !inputs;
    if (!inputs) return;
    const row = (name, states, volts) => element('.row', {}, element('i', {}, name),
      ...states.map((on, i) => element(on > 0 ? 'b.on' : 'b', {title: `${name} ${i + 1}`}, `${i + 1}`)),
      element('span', {}, volts ? volts.map((value) => fixed(value, 1)).join('  ') + ' V' : ''));
    this.signals.replaceChildren(row('In', inputs, inVolts), row('Out', out, outVolts),
                                 ...(tool ? [row('Tool', tool.map(Number))] : []));
  }

  // Remembers what a fact leaves open, and says so.
  setOpen(name, facts) {
    this.facts[name] = facts;
    this.note();
  }

  note() {
    const {target, fences, chain} = this.facts, notes = [];
    if (chain && !chain.joints && !this.recorded) notes.push('The shape of this arm: its model has no geometry.');
    if (this.recorded) {
      if (chain && !chain.joints) notes.push('The shape of the arm: the recording does not name it, zk view --model does.');
      notes.push('Targets, fences, the gripper, inputs and outputs: a recording holds none of them.',
                 'The force without the weight of the tool: a recording holds what the sensor feels.');
      return this.writeNotes(notes);
    }
    if (target?.unknown) notes.push('Where a motion goes: the controller does not answer that question.');
    else if (target?.kind && !target.joints) notes.push('The posture at the target: no posture of the model reaches it.');
    else notes.push('Where streamed set-points go next, and motions that wait behind the current one.');
    for (const [what, name] of [[fences?.fence, 'fence'], [fences?.wall, 'wall']])
      if (what && !what.known) notes.push(`The size of the ${name} in use: of a ${what.form ?? 'form like this'} the controller reports none.`);
    if (fences?.unknown) notes.push('Fences and walls: the controller does not answer.');
    notes.push('What the gripper holds: a block as wide as its opening stands for it while it grips with a force.');
    this.writeNotes(notes);
  }

  writeNotes(notes) {
    this.notes.replaceChildren(...notes.map((text) => element('li', {}, text)));
  }

  static doing(state, moves, knows) {
    if (state.armError || state.systemError || state.error.some((word) => word !== 0)) return ['error', 'bad'];
    if (knows) return [doings[state.doing] ?? 'at rest', state.doing === 0 || state.doing === 11 ? 'calm' : 'busy'];
    return moves ? ['moving', 'busy'] : ['at rest', 'calm'];
  }
}
