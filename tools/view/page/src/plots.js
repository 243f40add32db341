// The last minute: a sample every 50 ms, drawn four times a second.
import uPlot from 'uplot';
import {jointColours} from './colours.js';
import {element} from './dom.js';

const samples = 1200, everyMs = 50;
const kinds = [
  {title: 'Joints', unit: '°', of: (state) => state.q, least: 2},
  {title: 'Speeds', unit: '°/s', of: (state) => state.speed, least: 5},
  {title: 'Currents', unit: 'A', of: (state) => state.current, least: 0.5},
];

const colour = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();

export class Plots {
  constructor(box, jointCount) {
    this.next = 0;
    this.plots = kinds.map((kind) => this.make(box, kind, jointCount));
    new ResizeObserver(() => this.resize()).observe(box);
    this.drawn = 0;
    this.dress();
  }

  make(box, kind, jointCount) {
    const holder = element('figure', {}, element('figcaption', {}, kind.title, element('small', {}, ` ${kind.unit}`)));
    box.append(holder);
    return {kind, holder, data: Array.from({length: jointCount + 1}, () => []), chart: null};
  }

  // The charts anew, in the colours of the theme.
  dress() {
    for (const plot of this.plots) {
      plot.chart?.destroy();
      plot.chart = new uPlot(this.options(plot), plot.data, plot.holder);
    }
    this.resize();
  }

  options({kind, data}) {
    const axis = {stroke: () => colour('--faint'), font: '11px system-ui', ticks: {show: false},
                  grid: {stroke: () => colour('--line'), width: 1}};
    return {
      width: 300, height: 120, legend: {show: false}, padding: [6, 16, 0, 0],
      cursor: {show: false}, select: {show: false},
      scales: {x: {time: false, range: () => [-60, 0]},
               y: {range: (_, low, high) => uPlot.rangeNum(Math.min(low ?? 0, -kind.least / 2),
                                                           Math.max(high ?? 0, kind.least / 2), 0.12, true)}},
      axes: [{...axis, size: 20, space: 60, values: (_, ticks) => ticks.map((at) => (at === 0 ? 'now' : `${at} s`))},
             {...axis, size: 42, space: 26}],
      series: [{}, ...data.slice(1).map((_, i) => ({stroke: jointColours[i], width: 1.6, points: {show: false}}))],
    };
  }

  resize() {
    for (const {chart, holder} of this.plots) {
      const width = Math.floor(holder.clientWidth), height = Math.max(holder.clientHeight - 22, 90);
      if (width > 0) chart.setSize({width, height});
    }
  }

  add(state) {
    if (state.t < this.next) return;
    this.next = state.t + everyMs - 2;
    for (const {kind, data} of this.plots) {
      const values = kind.of(state) ?? [];
      data[0].push(state.t);
      for (let i = 1; i < data.length; ++i) data[i].push(values[i - 1] ?? null);
      if (data[0].length > samples) for (const column of data) column.shift();
    }
    this.newest = state.t;
  }

  clear() {
    this.next = 0;
    for (const {data} of this.plots) for (const column of data) column.length = 0;
  }

  // Draws the next of the plots: all at once would cost a frame of the picture.
  draw() {
    this.drawn = (this.drawn + 1) % this.plots.length;
    const {chart, data} = this.plots[this.drawn];
    chart.setData([data[0].map((time) => (time - this.newest) / 1000), ...data.slice(1)]);
  }
}
