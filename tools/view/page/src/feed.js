// The stream of events. It says now and then how far this page has come, so that the server sends no more than it draws.
export class Feed {
  // on: {welcome, arm, state, ...}: functions by the name of an event; broken(): the server does not answer.
  constructor(on, broken) {
    this.seen = 0;
    this.viewer = 0;
    this.source = new EventSource('events');
    this.source.onerror = () => broken(this.source.readyState === EventSource.CLOSED);
    for (const [name, listener] of Object.entries(on)) {
      this.source.addEventListener(name, (event) => {
        if (event.lastEventId) this.seen = Math.max(this.seen, Number(event.lastEventId));
        const data = JSON.parse(event.data);
        if (name === 'welcome') {
          this.viewer = data.viewer;
          this.seen = 0;
          if (this.isOfAnother(data)) return location.reload();
        }
        listener(data);
      });
    }
    setInterval(() => this.report(), 150);
  }

  // Whether the view was started again, with other arms, another recording, or another offer to stop.
  isOfAnother({viewer, ...facts}) {
    const before = this.facts;
    this.facts = JSON.stringify(facts);
    return before !== undefined && before !== this.facts;
  }

  report() {
    if (this.seen === this.reported) return;
    this.reported = this.seen;
    fetch(`seen?viewer=${this.viewer}&event=${this.seen}`, {method: 'POST'}).catch(() => {});
  }
}

// Notices when states stop coming: within half a second, or five of their usual intervals when they come slowly. Time
// in which this page was too busy to look does not count: states may wait behind its work.
export class Pulse {
  constructor() {
    this.looked = 0;
    this.silent = 0;
    this.interval = 0;
    this.last = 0;
    this.count = 0;
    this.rate = 0;
    this.since = performance.now();
    this.offset = Infinity;
    this.lag = 0;
  }

  beat(state) {
    const now = performance.now();
    if (this.last) this.interval += ((now - this.last) - this.interval) * 0.05;
    this.last = now;
    this.silent = 0;
    this.offset = Math.min(this.offset, now - state.t);
    this.lag = now - state.t - this.offset;
    ++this.count;
    if (now - this.since < 1000) return;
    this.rate = this.count * 1000 / (now - this.since);
    this.count = 0;
    this.since = now;
  }

  // Milliseconds since the last state, when that is too long; else 0. To be called every 50 ms.
  silence() {
    const now = performance.now();
    this.silent += Math.min(now - this.looked, 60);
    this.looked = now;
    return this.last && this.silent > Math.max(330, 5 * this.interval) ? now - this.last : 0;
  }
}
