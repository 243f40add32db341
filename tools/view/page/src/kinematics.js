// Where the parts of an arm are: a product of turns about the axes that the server describes.
import {Matrix4, Quaternion, Vector3} from 'three';

const degree = Math.PI / 180;

export function matrixOf({p, q}) {
  return new Matrix4().compose(new Vector3(...p), new Quaternion(q[1], q[2], q[3], q[0]), new Vector3(1, 1, 1));
}

// A turn by some degrees about an axis through a point.
function turn({axis, point}, degrees) {
  const at = new Vector3(...point);
  const rotation = new Matrix4().makeRotationAxis(new Vector3(...axis).normalize(), degrees * degree);
  const moved = at.clone().sub(at.clone().applyMatrix4(rotation));
  return rotation.setPosition(moved);
}

export class Chain {
  constructor({joints, flange}) {
    this.joints = joints;
    this.flange = matrixOf(flange);
  }

  // How far each link has moved from where it is with all joints at 0. That of the last is where the flange goes.
  links(degrees) {
    let sum = new Matrix4();
    return this.joints.map((joint, i) => (sum = sum.clone().multiply(turn(joint, degrees[i] ?? 0))));
  }

  // base_T_flange
  flangeAt(degrees) {
    return this.links(degrees).at(-1).multiply(this.flange);
  }
}

// The feet of the shortest way between two lines: [on the first, on the second]. Of parallel lines: the one that begins
// at `near` on the first.
function shortest(a, b, near) {
  const across = new Vector3().crossVectors(a.axis, b.axis);
  const square = across.lengthSq();
  if (square < 1e-6) {
    const along = near.clone().sub(b.point).dot(b.axis);
    return [near.clone(), b.point.clone().addScaledVector(b.axis, along)];
  }
  const way = b.point.clone().sub(a.point);
  const s = new Vector3().crossVectors(way, b.axis).dot(across) / square;
  const t = new Vector3().crossVectors(way, a.axis).dot(across) / square;
  return [a.point.clone().addScaledVector(a.axis, s), b.point.clone().addScaledVector(b.axis, t)];
}

// The bones of an arm with all joints at 0: joints with their centre and axis, and segments of the links. Link 0 stands,
// link i turns with joint i. From joint to joint the way goes along one axis and straight over to the next.
export function skeleton(chain) {
  const lines = chain.joints.map(({axis, point}) =>
    ({axis: new Vector3(...axis).normalize(), point: new Vector3(...point)}));
  const end = new Vector3().setFromMatrixPosition(chain.flange);
  const joints = [], segments = [];
  let arrived = new Vector3();
  const add = (link, from, to) => {
    if (from.distanceTo(to) > 1e-3) segments.push({link, from: from.clone(), to: to.clone()});
  };
  lines.forEach((line, i) => {
    const [leaves, next] = i + 1 < lines.length ? shortest(line, lines[i + 1], arrived) : [end, end];
    const centre = arrived.clone().lerp(leaves, i + 1 < lines.length ? 0.5 : 0.35);
    add(i, arrived, centre);
    add(i + 1, centre, leaves);
    add(i + 1, leaves, next);
    joints.push({centre, axis: line.axis, inLine: arrived.distanceTo(leaves) > 1e-3});
    arrived = next;
  });
  return {joints, segments, reach: segments.reduce((sum, {from, to}) => sum + from.distanceTo(to), 0)};
}
