// The body of an arm, made from its bones: tapering capsules along the links and a drum on each joint's axis.
import * as three from 'three';
import {mergeGeometries} from 'three/examples/jsm/utils/BufferGeometryUtils.js';
import {jointColours} from './colours.js';

const up = new three.Vector3(0, 1, 0);

// Turns a shape that stands along y into one along the axis, about the centre.
function place(mesh, centre, axis) {
  mesh.position.copy(centre);
  mesh.quaternion.setFromUnitVectors(up, axis.clone().normalize());
  return mesh;
}

function arc(profile, radius, centre, from, to, steps) {
  for (let i = 0; i <= steps; ++i) {
    const angle = from + (to - from) * i / steps;
    profile.push(new three.Vector2(Math.max(radius * Math.cos(angle), 0), centre + radius * Math.sin(angle)));
  }
}

// From y = 0 to y = length, with round ends of these radii.
function capsule(length, first, last, corners) {
  const profile = [], steps = Math.round(corners / 6);
  arc(profile, first, 0, -Math.PI / 2, 0, steps);
  arc(profile, last, length, 0, Math.PI / 2, steps);
  return new three.LatheGeometry(profile, corners);
}

// A cylinder about y with rounded rims.
function drum(radius, height, corners) {
  const rim = Math.min(radius, height) * 0.16, profile = [new three.Vector2(0, -height / 2)];
  const steps = Math.round(corners / 12);
  const corner = (y, from) => {
    for (let i = 0; i <= steps; ++i) {
      const angle = from + Math.PI / 2 * i / steps;
      profile.push(new three.Vector2(radius - rim + rim * Math.cos(angle), y + rim * Math.sin(angle)));
    }
  };
  corner(-height / 2 + rim, -Math.PI / 2);
  corner(height / 2 - rim, 0);
  profile.push(new three.Vector2(0, height / 2));
  return new three.LatheGeometry(profile, corners);
}

// One shape in the place of all that are here, each in its colour: a draw call for each costs more than its triangles.
function merge(link, material) {
  link.updateMatrixWorld();
  const shapes = [];
  link.traverse((part) => {
    if (!part.isMesh) return;
    const {color} = part.material, count = part.geometry.attributes.position.count;
    const shape = part.geometry.applyMatrix4(part.matrixWorld);
    shape.setAttribute('color', new three.Float32BufferAttribute(Array(count).fill(color.toArray()).flat(), 3));
    shapes.push(shape);
  });
  link.clear();
  if (shapes.length) link.add(new three.Mesh(mergeGeometries(shapes), material));
}

export class Body {
  // look: {shell, joint, metal, ring(i)}, materials, and the one of merged links; corners: of what is round.
  constructor(chain, look) {
    this.chain = chain;
    const {joints, bones, reach} = chain;
    this.reach = reach;
    this.root = new three.Group();
    this.links = Array.from({length: joints.length + 1}, () => {
      const link = new three.Group();
      link.matrixAutoUpdate = false;
      this.root.add(link);
      return link;
    });
    const radius = (link) => reach * (0.056 - 0.026 * link / joints.length);
    this.tipRadius = radius(joints.length);
    bones.forEach(({link, ...bone}, i) => {
      const from = new three.Vector3(...bone.from), to = new three.Vector3(...bone.to);
      if (i === 0) from.lerp(to, Math.min(radius(0) / from.distanceTo(to), 0.9));  // flat on the ground
      const way = to.clone().sub(from);
      const mesh = new three.Mesh(capsule(way.length(), radius(link), radius(link + 0.6), look.corners), look.shell);
      this.links[link].add(place(mesh, from, way));
    });
    joints.forEach((joint, i) => this.addJoint(i, joint, radius(i + 0.4), look));
    this.addEnds(look, radius);
    if (look.merged) this.links.forEach((link) => merge(link, look.merged));
  }

  addJoint(i, joint, radius, look) {
    const {inLine} = joint, centre = new three.Vector3(...joint.centre);
    const axis = new three.Vector3(...joint.axis).normalize();
    const wide = radius * (inLine ? 1.1 : 1.16), long = radius * (inLine ? 1.1 : 2.5);
    this.links[i].add(place(new three.Mesh(drum(wide, long, look.corners), look.joint), centre, axis));
    // A band where what turns meets what stands.
    const bands = inLine ? [0] : [-0.36, 0.36];
    for (const at of bands) {
      const band = new three.Mesh(
        new three.CylinderGeometry(wide * 1.012, wide * 1.012, radius * 0.2, look.corners, 1, true), look.ring(i));
      this.links[i + 1].add(place(band, centre.clone().addScaledVector(axis, at * long), axis));
    }
    if (inLine) return;
    for (const side of [-1, 1]) {
      const cap = new three.Mesh(drum(wide * 0.72, radius * 0.1, look.corners), look.shell);
      this.links[i + 1].add(place(cap, centre.clone().addScaledVector(axis, side * long / 2), axis));
    }
  }

  addEnds(look, radius) {
    const foot = new three.Mesh(drum(radius(0) * 1.55, radius(0) * 0.36, look.corners), look.joint);
    this.links[0].add(place(foot, new three.Vector3(0, 0, radius(0) * 0.18), new three.Vector3(0, 0, 1)));
    const flange = new three.Group();
    flange.applyMatrix4(this.chain.flange);
    const plate = new three.Mesh(drum(this.tipRadius * 1.08, this.tipRadius * 0.5, look.corners), look.metal);
    flange.add(place(plate, new three.Vector3(0, 0, -this.tipRadius * 0.25), new three.Vector3(0, 0, 1)));
    this.links.at(-1).add(flange);
  }

  // Takes a posture, in degrees.
  pose(degrees) {
    this.chain.links(degrees).forEach((matrix, i) => {
      this.links[i + 1].matrix.copy(matrix);
      this.links[i + 1].matrixWorldNeedsUpdate = true;
    });
  }
}

const cornersOf = (plain) => (plain ? 12 : 36);

// plain: without reflections, for machines that have no graphics card.
export function solidLook(plain) {
  const paint = (color, roughness, metalness, glow) => new three.MeshStandardMaterial({color, roughness, metalness, ...glow});
  const rings = jointColours.map((colour) => paint(colour, 0.45, 0, {emissive: colour, emissiveIntensity: 0.25}));
  return {shell: paint('#f1efeb', 0.42, 0.02), joint: paint('#3d4249', 0.6, 0.1), metal: paint('#aab0b8', 0.3, plain ? 0 : 0.75),
          ring: (i) => rings[i], corners: cornersOf(plain),
          merged: plain && new three.MeshLambertMaterial({vertexColors: true})};
}

export function ghostLook(colour, plain) {
  const all = new three.MeshBasicMaterial({color: colour, transparent: true, opacity: 0.13, depthWrite: false});
  return {shell: all, joint: all, metal: all, ring: () => all, corners: cornersOf(plain), merged: plain && all};
}
