// The picture of one arm. It draws a state at a time, whoever has it: the stream or a recording.
import * as three from 'three';
import {OrbitControls} from 'three/examples/jsm/controls/OrbitControls.js';
import {RoomEnvironment} from 'three/examples/jsm/environments/RoomEnvironment.js';
import {Body, ghostLook, solidLook} from './body.js';
import {axisColours, ghostColour, tipColour} from './colours.js';
import {Fences} from './fences.js';
import {Chain, matrixOf} from './kinematics.js';
import {Path} from './path.js';

function triad(size) {
  const group = new three.Group();
  axisColours.forEach((colour, i) => {
    const rod = new three.Mesh(new three.CylinderGeometry(size * 0.028, size * 0.028, size, 10),
                               new three.MeshBasicMaterial({color: colour, toneMapped: false}));
    if (i === 0) rod.rotation.z = -Math.PI / 2;
    if (i === 2) rod.rotation.x = Math.PI / 2;
    rod.position.setComponent(i, size / 2);
    group.add(rod);
  });
  group.matrixAutoUpdate = false;
  return group;
}

// A ground that fades away, with lines a decimetre apart and stronger ones each half metre.
function grid(size, steps) {
  const positions = [], colours = [];
  const add = (a, b, strength) => {
    for (let i = 0; i < steps; ++i) {
      for (const t of [i / steps, (i + 1) / steps]) {
        const x = a[0] + (b[0] - a[0]) * t, y = a[1] + (b[1] - a[1]) * t;
        positions.push(x, y, 0);
        colours.push(1, 1, 1, strength * Math.max(0, 1 - Math.hypot(x, y) / size) ** 1.5);
      }
    }
  };
  for (let i = -Math.round(size * 10); i <= Math.round(size * 10); ++i) {
    const at = i / 10, half = Math.sqrt(Math.max(size * size - at * at, 0)), strength = i % 5 === 0 ? 0.55 : 0.2;
    add([at, -half], [at, half], strength);
    add([-half, at], [half, at], strength);
  }
  const geometry = new three.BufferGeometry();
  geometry.setAttribute('position', new three.Float32BufferAttribute(positions, 3));
  geometry.setAttribute('color', new three.Float32BufferAttribute(colours, 4));
  return new three.LineSegments(geometry,
    new three.LineBasicMaterial({vertexColors: true, transparent: true, depthWrite: false}));
}

export class Stage {
  constructor(box, quality) {
    this.box = box;
    this.canvas = box.querySelector('canvas');
    this.renderer = new three.WebGLRenderer({canvas: this.canvas, antialias: !quality.plain, alpha: true});
    this.renderer.shadowMap.enabled = true;
    this.renderer.shadowMap.type = three.PCFShadowMap;
    this.renderer.toneMapping = three.ACESFilmicToneMapping;
    this.scene = new three.Scene();
    this.camera = new three.PerspectiveCamera(30, 1, 0.02, 60);
    this.camera.up.set(0, 0, 1);
    this.controls = new OrbitControls(this.camera, this.canvas);
    this.controls.enableDamping = true;
    this.controls.dampingFactor = 0.12;
    this.controls.addEventListener('change', () => (this.stale = true));
    this.stale = true;
    this.labels = new Map();
    this.addLights();
    this.setQuality(quality);
    new ResizeObserver(() => this.resize()).observe(box);
  }

  addLights() {
    this.sun = new three.DirectionalLight('#fff4e6', 1.9);
    this.sun.castShadow = true;
    this.sun.shadow.mapSize.set(1024, 1024);
    this.sun.shadow.radius = 5;
    this.sun.shadow.bias = -0.001;
    this.sun.shadow.normalBias = 0.03;
    this.rim = new three.DirectionalLight('#cfe0ff', 0.7);
    // The light from all around: of a room that things reflect, or of one colour above and one below.
    this.room = new three.PMREMGenerator(this.renderer).fromScene(new RoomEnvironment(), 0.04).texture;
    this.scene.environment = this.room;
    this.sky = new three.HemisphereLight('#ffffff', '#8d8a84', 1);
    this.sky.visible = false;
    this.scene.add(this.sun, this.sun.target, this.rim, this.sky);
  }

  // The arm that the server describes: its chain, where it is mounted, and its frames.
  setArm({chain, mounting, tool, work}) {
    if (this.world) this.scene.remove(this.world);
    this.chain = new Chain(chain);
    this.world = new three.Group();
    this.base = new three.Group();
    this.base.applyMatrix4(matrixOf(mounting));
    this.target = null;
    this.addBodies();
    const reach = this.body.reach;
    const size = reach * 0.13;
    this.frames = {base: triad(size), work: triad(size), tool: triad(size)};
    this.frames.base.matrix.copy(matrixOf(mounting));
    this.tip = new three.Mesh(new three.SphereGeometry(reach * 0.011, 20, 14),
      new three.MeshBasicMaterial({color: tipColour, toneMapped: false, depthTest: false, transparent: true}));
    this.tip.renderOrder = 9;
    this.rod = new three.Mesh(new three.CylinderGeometry(0.45, 1, 1, 24), solidLook(this.quality.plain).metal);
    this.rod.castShadow = true;
    this.fences = new Fences();
    this.world.add(this.base, ...Object.values(this.frames), this.tip, this.rod, this.fences.root);
    this.path = new Path(this.quality.plain);
    this.world.add(this.path.root);
    this.addFingers(reach);
    this.addForce(reach);
    this.addGround(reach, matrixOf(mounting));
    this.scene.add(this.world);
    this.joints = new Array(chain.joints.length).fill(0);
    this.setFrames({tool, work});
    this.world.visible = false;  // until a state says where the arm is
    this.aim(reach);
  }

  addBodies() {
    const {plain} = this.quality;
    this.body = new Body(this.chain, solidLook(plain));
    this.ghost = new Body(this.chain, ghostLook(ghostColour, plain));
    this.ghost.root.visible = false;
    this.ghost.root.renderOrder = 2;
    this.body.root.traverse((part) => (part.castShadow = part.receiveShadow = !!part.isMesh));
    this.base.traverse((part) => part.geometry?.dispose());
    this.base.clear().add(this.body.root, this.ghost.root);
  }

  addForce(reach) {
    this.force = new three.ArrowHelper(new three.Vector3(0, 0, 1), new three.Vector3(), 0.1, '#f2811d', reach * 0.05,
                                       reach * 0.03);
    this.force.visible = false;
    this.world.add(this.force);
  }

  // An arm that hangs from a ceiling or a wall has the ground far below it.
  addGround(reach, mounting) {
    const stands = mounting.elements[10] > 0.8, height = stands ? 0 : -1.15 * reach;
    const shade = new three.Mesh(new three.CircleGeometry(reach * 1.3, 48),
                                 new three.ShadowMaterial({opacity: 0.2, depthWrite: false}));
    shade.receiveShadow = true;
    this.ground = new three.Group();
    this.ground.position.z = height - 0.001;
    this.ground.add(shade);
    this.addGrid();
    this.world.add(this.ground);
    this.middle = stands ? reach * 0.42 : -reach * 0.3;
    this.sun.position.set(reach * 1.1, -reach * 1.3, reach * 2.6);
    this.rim.position.set(-reach * 2, reach * 2, reach);
    const camera = this.sun.shadow.camera;
    camera.left = camera.bottom = -reach * 1.35;
    camera.right = camera.top = reach * 1.35;
    camera.far = reach * 6;
    camera.updateProjectionMatrix();
    this.dress();
  }

  addGrid() {
    this.grid?.geometry.dispose();
    this.grid?.removeFromParent();
    this.grid = grid(Math.max(this.body.reach * 2, 1), this.quality.plain ? 2 : 16);
    this.ground.add(this.grid);
  }

  // The camera's place at first: the whole arm in sight, from a little above.
  aim(reach) {
    const distance = reach * 2.95 / Math.min(1, this.camera.aspect || 1) ** 0.8;
    this.controls.target.set(0, 0, this.middle);
    this.camera.position.set(0.66, -0.72, 0.36).normalize().multiplyScalar(distance).add(this.controls.target);
    this.controls.minDistance = reach * 0.5;
    this.controls.maxDistance = reach * 9;
    this.controls.update();
    this.stale = true;
  }

  // The colours of the theme.
  dress() {
    const dark = document.documentElement.dataset.shade === 'dark';
    this.renderer.toneMappingExposure = dark ? 0.95 : 1.08;
    this.scene.environmentIntensity = dark ? 0.45 : 0.62;
    this.sun.intensity = dark ? 1.7 : 1.9;
    this.rim.intensity = dark ? 1.6 : 0.6;
    this.sky.intensity = dark ? 0.9 : 1.5;
    this.grid?.material.color.set(dark ? '#8a94a6' : '#7c7568');
    this.stale = true;
  }

  setFrames({tool, work}) {
    if (!this.chain) return;
    this.toolFrame = matrixOf(tool);
    this.workFrame = matrixOf(work);
    this.frames.work.matrix.copy(this.workFrame);
    const length = new three.Vector3().setFromMatrixPosition(this.toolFrame).length();
    this.rod.visible = length > 0.005;
    this.frames.work.visible = !this.workFrame.equals(new three.Matrix4());
    this.moveTo(this.joints);
  }

  // Fingers as far apart as the gripper reports, and between them a block while it holds with a force.
  setGripper({on, opening, force, mode}) {
    if (!this.fingers) return;
    const reach = this.body.reach, width = 0.08 * reach * opening / 1000;
    this.fingers.root.visible = !!on;
    const beyond = this.rod.visible ? -0.7 : 1;
    this.fingers.pair.forEach((finger, i) => finger.position.set((i ? 0.5 : -0.5) * (width + 0.012 * reach), 0,
                                                                 beyond * 0.03 * reach));
    this.fingers.held.visible = mode > 0 && force > 0 && opening > 0;
    this.fingers.held.scale.set(Math.max(width, 1e-4), 0.045 * reach, 0.045 * reach);
    this.fingers.held.position.z = (beyond < 0 ? 0 : 0.045) * reach;
    this.stale = true;
  }

  addFingers(reach) {
    const metal = solidLook(this.quality.plain).metal, root = new three.Group();
    const box = () => new three.Mesh(new three.BoxGeometry(0.012 * reach, 0.03 * reach, 0.06 * reach), metal);
    const held = new three.Mesh(new three.BoxGeometry(1, 1, 1), new three.MeshStandardMaterial({color: '#d3a000',
      roughness: 0.6, transparent: true, opacity: 0.75}));
    this.fingers = {root, pair: [box(), box()], held};
    root.add(...this.fingers.pair, held);
    root.matrixAutoUpdate = false;
    root.visible = false;
    this.world.add(root);
  }

  setFences(fences) {
    this.fences?.show(fences);
    this.stale = true;
  }

  // Where a motion goes; null for nowhere that is known.
  setTarget(joints) {
    if (!this.chain) return;
    this.target = joints;
    const known = !!joints && joints.some((angle, i) => Math.abs(angle - this.joints[i]) > 0.3);
    this.ghost.root.visible = known;
    if (known) this.ghost.pose(joints);
    this.stale = true;
  }

  moveTo(joints) {
    this.joints = joints;
    this.body.pose(joints);
    const flange = this.flange = this.base.matrix.clone().multiply(this.chain.flangeAt(joints));
    const tool = flange.clone().multiply(this.toolFrame);
    this.frames.tool.matrix.copy(tool);
    this.fingers.root.matrix.copy(tool);
    this.tip.position.setFromMatrixPosition(tool);
    this.drawnForce = null;
    const from = new three.Vector3().setFromMatrixPosition(flange), way = this.tip.position.clone().sub(from);
    this.rod.position.copy(from).addScaledVector(way, 0.5);
    this.rod.scale.set(this.body.tipRadius * 0.5, Math.max(way.length(), 1e-6), this.body.tipRadius * 0.5);
    if (way.lengthSq() > 0) this.rod.quaternion.setFromUnitVectors(new three.Vector3(0, 1, 0), way.normalize());
    this.stale = true;
  }

  // Draws the arm as this state of the stream says.
  show(state) {
    if (!this.chain) return;
    if (!this.world.visible) this.world.visible = this.stale = true;
    if (state.q.some((angle, i) => angle !== this.joints[i])) this.moveTo(state.q);
    this.path.follow(state.t, this.tip.position);
    this.showForce(state);
  }

  // The path anew, where the tool was with these states.
  retrace(states) {
    if (!this.chain) return;
    this.path.clear();
    for (const {t, p} of states) this.path.follow(t, new three.Vector3(...p).applyMatrix4(this.workFrame));
    this.stale = true;
  }

  // An arrow for the force, without the tool's weight: 10 N are a tenth of the arm's reach.
  showForce({zeroForce, forceFrame}) {
    const force = new three.Vector3(...zeroForce.slice(0, 3)), newtons = force.length();
    if (this.drawnForce && force.distanceTo(this.drawnForce) < 0.25) return;
    this.drawnForce = force.clone();
    this.stale = true;
    this.force.visible = newtons > 1;
    if (!this.force.visible) return;
    const axes = [this.flange, this.workFrame, this.frames.tool.matrix][forceFrame] ?? this.flange;
    force.applyMatrix4(new three.Matrix4().extractRotation(axes)).normalize();
    const length = Math.min(newtons / 100, 0.8) * this.body.reach;
    this.force.position.copy(this.tip.position);
    this.force.setDirection(force);
    this.force.setLength(length, Math.min(length * 0.4, this.body.reach * 0.05), this.body.reach * 0.028);
  }

  resize() {
    const {clientWidth, clientHeight} = this.box;
    if (!clientWidth || !clientHeight) return;
    const before = this.camera.aspect;
    this.camera.aspect = clientWidth / clientHeight;
    this.camera.updateProjectionMatrix();
    this.renderer.setPixelRatio(Math.min(window.devicePixelRatio, 2) * this.quality.sharpness);
    this.renderer.setSize(clientWidth, clientHeight, false);
    if (this.body && Math.abs(before - this.camera.aspect) > 0.2) this.aim(this.body.reach);
    this.stale = true;
  }

  // Draws when something has changed.
  draw() {
    this.controls.update();
    if (!this.stale || !this.chain) return false;
    this.stale = false;
    this.path.draw();
    this.renderer.render(this.scene, this.camera);
    this.moveLabels();
    return true;
  }

  setQuality(quality) {
    const redone = quality.plain !== this.quality?.plain;
    this.quality = quality;
    this.sun.castShadow = quality.shadows;
    this.sky.visible = quality.plain;
    this.scene.environment = quality.plain ? null : this.room;
    this.resize();
    if (!redone || !this.chain) return;
    this.addBodies();
    this.addGrid();
    this.path.setPlain(quality.plain);
    this.dress();
    this.moveTo(this.joints);
    this.setTarget(this.target);
  }

  // Where on the page, in pixels from the picture's corner, a place of the room is.
  pixelOf(place) {
    const at = new three.Vector3(...place).project(this.camera);
    return [(at.x + 1) / 2 * this.box.clientWidth, (1 - at.y) / 2 * this.box.clientHeight, at.z];
  }

  moveLabels() {
    for (const [name, frame] of Object.entries(this.frames)) {
      const label = this.labels.get(name) ?? this.addLabel(name);
      const [x, y, depth] = this.pixelOf(new three.Vector3().setFromMatrixPosition(frame.matrix).toArray());
      label.hidden = !this.world.visible || !frame.visible || depth > 1;
      label.style.transform = `translate(${Math.round(x + 9)}px, ${Math.round(y + 7)}px)`;
    }
  }

  addLabel(name) {
    const label = document.createElement('span');
    label.className = 'label';
    label.textContent = name;
    this.labels.set(name, label);
    this.box.append(label);
    return label;
  }
}
