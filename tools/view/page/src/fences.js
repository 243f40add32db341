// The fence and the wall in use, and fences that the controller keeps by name. Of some forms it reports no lengths:
// these are not drawn, and the panel says so.
import * as three from 'three';

const colours = {fence: '#d3a000', wall: '#e5484d', named: '#8a94a6'};
const planeSize = 3;

function planeAt(points) {
  const [a, b, c] = points.map((p) => new three.Vector3(...p));
  const normal = b.clone().sub(a).cross(c.clone().sub(a));
  if (normal.lengthSq() < 1e-12) return null;
  const mesh = new three.Mesh(new three.PlaneGeometry(planeSize, planeSize));
  mesh.quaternion.setFromUnitVectors(new three.Vector3(0, 0, 1), normal.normalize());
  mesh.position.copy(a).add(b).add(c).divideScalar(3);
  return mesh;
}

function shapeOf({form, min, max, centre, radius, points}) {
  if (form === 'plane') return planeAt(points);
  const mesh = new three.Mesh();
  if (form === 'cuboid') {
    mesh.geometry = new three.BoxGeometry(...max.map((value, i) => Math.max(value - min[i], 1e-4)));
    mesh.position.set(...max.map((value, i) => (value + min[i]) / 2));
    return mesh;
  }
  if (form !== 'sphere' || !(radius > 0)) return null;
  mesh.geometry = new three.IcosahedronGeometry(radius, 4);
  mesh.position.set(...centre);
  return mesh;
}

export class Fences {
  constructor() {
    this.root = new three.Group();
  }

  show({fence, wall, named = []}) {
    this.root.clear();
    for (const item of named) this.add(item, colours.named, 0);
    if (fence?.known) this.add(fence, colours.fence, 0.07);
    if (wall?.known) this.add(wall, colours.wall, 0.09);
  }

  add(item, colour, opacity) {
    const shape = shapeOf(item);
    if (!shape) return;
    const edges = new three.LineSegments(new three.EdgesGeometry(shape.geometry, item.form === 'sphere' ? 1 : 20),
      new three.LineBasicMaterial({color: colour, transparent: true, opacity: item.form === 'sphere' ? 0.15 : 0.8}));
    edges.position.copy(shape.position);
    edges.quaternion.copy(shape.quaternion);
    this.root.add(edges);
    if (opacity === 0) return;
    shape.material = new three.MeshBasicMaterial({color: colour, transparent: true, opacity, depthWrite: false,
                                                  side: three.DoubleSide});
    this.root.add(shape);
  }
}
