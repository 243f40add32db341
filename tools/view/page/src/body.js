// The body of an arm, made from its bones: tapering capsules along the links and a drum on each joint's axis.
import * as three from 'three';
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
function capsule(length, first, last) {
  const profile = [];
  arc(profile, first, 0, -Math.PI / 2, 0, 6);
  arc(profile, last, length, 0, Math.PI / 2, 6);
  return new three.LatheGeometry(profile, 28);
}

// A cylinder about y with rounded rims.
function drum(radius, height) {
  const rim = Math.min(radius, height) * 0.16, profile = [new three.Vector2(0, -height / 2)];
  const corner = (y, from) => {
    for (let i = 0; i <= 3; ++i) {
      const angle = from + Math.PI / 2 * i / 3;
      profile.push(new three.Vector2(radius - rim + rim * Math.cos(angle), y + rim * Math.sin(angle)));
    }
  };
  corner(-height / 2 + rim, -Math.PI / 2);
  corner(height / 2 - rim, 0);
  profile.push(new three.Vector2(0, height / 2));
  return new three.LatheGeometry(profile, 36);
}

export class Body {
  // look: {shell, joint, metal, ring(i)}, materials. ghost: without the parts that only decorate.
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
      const mesh = new three.Mesh(capsule(way.length(), radius(link), radius(link + 0.6)), look.shell);
      this.links[link].add(place(mesh, from, way));
    });
    joints.forEach((joint, i) => this.addJoint(i, joint, radius(i + 0.4), look));
    this.addEnds(look, radius);
  }

  addJoint(i, joint, radius, look) {
    const {inLine} = joint, centre = new three.Vector3(...joint.centre);
    const axis = new three.Vector3(...joint.axis).normalize();
    const wide = radius * (inLine ? 1.1 : 1.16), long = radius * (inLine ? 1.1 : 2.5);
    this.links[i].add(place(new three.Mesh(drum(wide, long), look.joint), centre, axis));
    // A band where what turns meets what stands.
    const bands = inLine ? [0] : [-0.36, 0.36];
    for (const at of bands) {
      const band = new three.Mesh(new three.CylinderGeometry(wide * 1.012, wide * 1.012, radius * 0.2, 36, 1, true),
                                  look.ring(i));
      this.links[i + 1].add(place(band, centre.clone().addScaledVector(axis, at * long), axis));
    }
    if (inLine) return;
    for (const side of [-1, 1]) {
      const cap = new three.Mesh(drum(wide * 0.72, radius * 0.1), look.shell);
      this.links[i + 1].add(place(cap, centre.clone().addScaledVector(axis, side * long / 2), axis));
    }
  }

  addEnds(look, radius) {
    const foot = new three.Mesh(drum(radius(0) * 1.55, radius(0) * 0.36), look.joint);
    this.links[0].add(place(foot, new three.Vector3(0, 0, radius(0) * 0.18), new three.Vector3(0, 0, 1)));
    const flange = new three.Group();
    flange.applyMatrix4(this.chain.flange);
    const plate = new three.Mesh(drum(this.tipRadius * 1.08, this.tipRadius * 0.5), look.metal);
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

export function solidLook() {
  const shell = new three.MeshStandardMaterial({color: '#f1efeb', roughness: 0.42, metalness: 0.02});
  const joint = new three.MeshStandardMaterial({color: '#3d4249', roughness: 0.6, metalness: 0.1});
  const metal = new three.MeshStandardMaterial({color: '#aab0b8', roughness: 0.3, metalness: 0.75});
  const rings = jointColours.map((colour) =>
    new three.MeshStandardMaterial({color: colour, roughness: 0.45, emissive: colour, emissiveIntensity: 0.25}));
  return {shell, joint, metal, ring: (i) => rings[i]};
}

export function ghostLook(colour) {
  const all = new three.MeshBasicMaterial({color: colour, transparent: true, opacity: 0.13, depthWrite: false});
  return {shell: all, joint: all, metal: all, ring: () => all};
}
