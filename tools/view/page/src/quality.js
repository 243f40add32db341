// How good the picture is: as good as the machine can draw it sixty times a second.

// From the best to the cheapest. Each leaves out what costs a machine without a graphics card most: shadows, then
// reflections, round corners and smooth edges (plain), then pixels.
export const qualities = [
  {shadows: true, plain: false, sharpness: 1},
  {shadows: false, plain: false, sharpness: 1},
  {shadows: false, plain: true, sharpness: 1},
  {shadows: false, plain: true, sharpness: 0.7},
  {shadows: false, plain: true, sharpness: 0.5},
];

// The processor draws: the machine has no graphics card, or the browser does not use it.
export const drawnByProcessor = (() => {
  const gl = document.createElement('canvas').getContext('webgl');
  const name = gl?.getExtension('WEBGL_debug_renderer_info')?.UNMASKED_RENDERER_WEBGL;
  return !!name && /swiftshader|llvmpipe|software|basic render/i.test(gl.getParameter(name));
})();

// A sixtieth of a second, and a frame that is lost now and then: with a card for a hiccup, without one for want of power.
const slowFrameMs = drawnByProcessor ? 17.2 : 19, judgedFrames = drawnByProcessor ? 30 : 12, warmingFrames = 3;
const hiddenMs = 1000;  // a page that nobody saw for a while is not a slow one

export class Judge {
  // best: whatever it costs.
  constructor(best) {
    this.first = this.step = drawnByProcessor && !best ? qualities.findIndex(({plain}) => plain) : 0;
    this.paces = [];  // the mean time of a frame at each step
    this.done = best;
    this.restart();
  }

  get quality() {
    return qualities[this.step];
  }

  restart() {
    this.frames = -warmingFrames;
    this.spent = 0;
  }

  // Takes the time of a frame and whether it was drawn; returns whether the quality is another one now. A browser that
  // draws seldom whatever the picture costs gets the best one back.
  judge(now, drew) {
    const taken = drew && this.last ? now - this.last : 0;
    this.last = drew ? now : 0;
    if (!taken || taken > hiddenMs || this.done) return false;
    if (++this.frames > 0) this.spent += taken;
    if (this.frames < judgedFrames) return false;
    const pace = this.paces[this.step] = this.spent / this.frames;
    this.restart();
    if (pace <= slowFrameMs) return false;
    this.done = this.step === qualities.length - 1;
    if (!this.done) ++this.step;
    else if (pace > 0.9 * this.paces[this.first]) this.step = this.first;
    else return false;
    return true;
  }
}
