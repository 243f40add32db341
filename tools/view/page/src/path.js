// The path of the tool in the last minute.
import * as three from 'three';
import {Line2} from 'three/examples/jsm/lines/Line2.js';
import {LineGeometry} from 'three/examples/jsm/lines/LineGeometry.js';
import {LineMaterial} from 'three/examples/jsm/lines/LineMaterial.js';
import {tipColour} from './colours.js';

const lastingMs = 60000, mostPoints = 900, step = 0.003, longestStep = 0.03;

function isStraight(from, through, to) {
  const line = new three.Line3(from, to);
  return line.closestPointToPoint(through, true, new three.Vector3()).distanceTo(through) < step / 3;
}

// A broad line, or for a plain picture one a pixel wide, which costs a tenth.
function lineOf(plain) {
  const line = plain
    ? new three.Line(new three.BufferGeometry(), new three.LineBasicMaterial({vertexColors: true}))
    : new Line2(new LineGeometry(), new LineMaterial({linewidth: 2.4, vertexColors: true, transparent: true, opacity: 0.9,
                                                      worldUnits: false}));
  line.frustumCulled = false;
  line.visible = false;
  return line;
}

function plainGeometry(positions, colours) {
  const geometry = new three.BufferGeometry();
  geometry.setAttribute('position', new three.Float32BufferAttribute(positions, 3));
  geometry.setAttribute('color', new three.Float32BufferAttribute(colours, 3));
  return geometry;
}

function broadGeometry(positions, colours) {
  const geometry = new LineGeometry();
  geometry.setPositions(positions);
  geometry.setColors(colours);
  return geometry;
}

export class Path {
  constructor(plain) {
    this.root = new three.Group();
    this.clear();
    this.setPlain(plain);
  }

  setPlain(plain) {
    this.line?.geometry.dispose();
    this.line = lineOf(plain);
    this.geometry = plain ? plainGeometry : broadGeometry;
    this.root.clear().add(this.line);
    this.isOld = true;
  }

  clear() {
    this.points = [];
    this.isOld = true;
  }

  // The tool has come to this place. The last point moves along until the path bends or gets long there.
  follow(time, at) {
    const {points} = this, last = points.at(-1), fixed = points.at(-2);
    while (points.length && time - points[0].time > lastingMs) this.isOld = points.shift();
    if (last && at.distanceTo(last.at) < step) return;
    if (fixed && last.at.distanceTo(fixed.at) < longestStep && isStraight(fixed.at, last.at, at)) points.pop();
    points.push({time, at: at.clone()});
    if (points.length > mostPoints) points.shift();
    this.isOld = true;
  }

  draw() {
    if (!this.isOld) return;
    const {points, line} = this;
    this.isOld = false;
    line.visible = points.length > 1;
    if (!line.visible) return;
    const colour = new three.Color(tipColour), paper = new three.Color(
      document.documentElement.dataset.shade === 'dark' ? '#252a33' : '#eceae5');
    line.geometry.dispose();
    line.geometry = this.geometry(points.flatMap(({at}) => [at.x, at.y, at.z]),
                                  points.flatMap((_, i) => paper.clone().lerp(colour, i / points.length).toArray()));
  }
}
