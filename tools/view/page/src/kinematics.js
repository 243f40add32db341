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
  constructor({joints, flange, bones, reach}) {
    this.joints = joints;
    this.bones = bones;
    this.reach = reach;
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
