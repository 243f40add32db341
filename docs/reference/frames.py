#!/usr/bin/env python3
"""Draws the frames of each arm with its Denavit-Hartenberg rows, from the tables of the library: see scripts/pictures.

Each chain is compared with the forward kinematics of the library before it is drawn.
"""
import itertools
import math

import numpy as np

from svg import GREY, document, element, keep, line, path, text
from zk_base import interface, lib

# Number in the interface, file, title, and a posture in degrees that shows the arm well.
ARMS = [
    (0, "zk65", "ZK65", (0, -15, -75, 0, -60, 0)),
    (1, "zk75", "ZK75", (0, 25, 0, 80, 0, 40, 0)),
    (3, "63", "63", (0, -15, 105, 0, 80, 0)),
    (4, "63-later", "later 63", (0, -15, 105, 0, 50, 0)),
    (5, "orb65", "ORB65", (0, -20, 90, 20, -90, 0)),
    (6, "62", "62", (0, -20, 90, 20, -90, 0)),
    (7, "72", "72", (0, 30, 0, -80, 0, 40, 0)),
    (8, "orb63", "ORB63", (0, -20, 90, 20, -90, 0)),
]
SENSORS = ("-B", "-ZF", "-6F")
STANDARD = {1}  # the others follow the modified convention
TWISTS = {4: {5: 90}}  # where the chain's twist is not that of the model's row

WIDTH, HEIGHT, ARM_WIDTH, TITLE, MARGIN = 1000, 620, 540, 60, 80
AXIS = 38  # length of a drawn axis
COLOURS = {"x": "#d03030", "y": "#2a8f3c", "z": "#2458c8"}
SIGHT = math.radians(-52), math.radians(22)  # azimuth and elevation of the eye


def turn(axis, degrees):
    c, s = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    frame = np.eye(4)
    i, j = {"x": (1, 2), "z": (0, 1)}[axis]
    frame[i, i] = frame[j, j] = c
    frame[i, j], frame[j, i] = -s, s
    return frame


def shift(axis, metres):
    frame = np.eye(4)
    frame["xyz".index(axis), 3] = metres
    return frame


class Arm:
    def __init__(self, model, posture):
        self.model, self.posture = model, posture
        self.count = len(posture)
        self.flanges = []
        for sensor in range(len(SENSORS)):
            if lib.libalgo_set_robot_and_sensor_type(model, sensor) == 0:
                dh = interface.DhParams()
                lib.libalgo_get_dh_params_default(dh)
                self.flanges.append((SENSORS[sensor], dh.d[self.count - 1]))
        lib.libalgo_set_robot_and_sensor_type(model, 0)
        dh = interface.DhParams()
        lib.libalgo_get_dh_params_default(dh)
        self.rows = [(TWISTS.get(model, {}).get(i, math.degrees(dh.alpha[i])), dh.a[i], dh.d[i],
                      math.degrees(dh.offset[i])) for i in range(self.count)]
        self.check()

    def chain(self, joints):
        """The frames from the base to the flange, and the corners of the links between them."""
        frame, frames, corners = np.eye(4), [np.eye(4)], [np.zeros(3)]
        for (alpha, a, d, offset), joint in zip(self.rows, joints):
            steps = [turn("x", alpha) @ shift("x", a), turn("z", joint + offset) @ shift("z", d)]
            for step in reversed(steps) if self.model in STANDARD else steps:
                frame = frame @ step
                corners.append(frame[:3, 3])
            frames.append(frame)
        return frames, corners

    def check(self):
        for joints in (self.posture, range(10, 10 * self.count + 1, 10)):
            radians = (interface.c_float * 8)(*map(math.radians, joints))
            pose = interface.Pose()
            model = lib.ZK_Model_New(self.model, 0)
            lib.ZK_Model_Forward(model, (interface.c_float * 8)(*joints), pose)
            lib.ZK_Model_Free(model)
            flange = self.chain(joints)[0][-1]
            w, x, y, z = (getattr(pose.quaternion, k) for k in "wxyz")
            expected = np.array([
                [1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y), pose.position.x],
                [2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x), pose.position.y],
                [2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y), pose.position.z]])
            if not np.allclose(flange[:3], expected, atol=1e-5):
                raise SystemExit(f"model {self.model}: the chain is not that of the forward kinematics")


class View:
    """Where points of the arm's base frame appear in the picture."""

    def __init__(self, points):
        around, up = SIGHT
        self.right = np.array([-math.sin(around), math.cos(around), 0])
        self.up = np.array([-math.sin(up) * math.cos(around), -math.sin(up) * math.sin(around), math.cos(up)])
        flat = np.array([self.flat(point) for point in points])
        low, high = flat.min(axis=0), flat.max(axis=0)
        room = np.array([ARM_WIDTH, HEIGHT - TITLE]) - 2 * MARGIN
        self.scale = min(room / np.maximum(high - low, 1e-3))
        self.middle = (low + high) / 2

    def flat(self, point):
        return np.array([self.right @ point, -(self.up @ point)])

    def __call__(self, point):
        return (self.flat(point) - self.middle) * self.scale + [ARM_WIDTH / 2, (HEIGHT + TITLE) / 2]


def drawn_frames(view, frames, turned):
    """The place of each frame in the picture: frames that would cover one another are moved along their own z."""
    tips = [{name: view.flat(frame[:3, i]) * AXIS for i, name in enumerate("xyz")} for frame in frames]
    origins = [view(frame[:3, 3]) for frame in frames]

    def marks(i, slide):
        place = origins[i] + tips[i]["z"] * slide
        z = tips[i]["z"]
        return [place, *(place + tip for tip in tips[i].values()), place + z * (1 + 15 / math.hypot(*z))]

    slides = [0.0] * len(frames)
    for _ in range(4):
        for i in turned:
            def cost(slide):
                near = 0.0
                for j in range(len(frames)):
                    if j != i:
                        for one, other in itertools.product(marks(i, slide), marks(j, slides[j])):
                            near += max(0.0, 30 - math.dist(one, other)) ** 2
                return near + 40 * abs(slide)
            slides[i] = min((0, 1.6, -1.6, 2, -2, 2.5, -2.5, 3, -3), key=cost)
    return [(origin, origin + tip["z"] * slide, tip) for origin, tip, slide in zip(origins, tips, slides)]


def picture_of_arm(arm):
    frames, corners = arm.chain(arm.posture)
    view = View(corners)
    base = view(corners[0])
    joints_of = {i - (arm.model in STANDARD): i for i in range(1, arm.count + 1)}  # frame whose z is a joint's axis
    places = drawn_frames(view, frames, joints_of)
    out = [element("ellipse", cx=float(base[0]), cy=float(base[1]), rx=34, ry=12, fill="#c9d1d9")]
    for width, colour in ((16, "#aab4be"), (12, "#dfe4e9")):
        out.append(path(map(view, corners), stroke=colour, stroke_width=width, stroke_linejoin="round",
                        stroke_linecap="round"))
    for origin, place, _ in places:
        out.append(line(origin, place, stroke=GREY, stroke_dasharray="3 3"))
        out.append(element("circle", cx=float(origin[0]), cy=float(origin[1]), r=3.5, fill=GREY))
    for i, (_, place, tips) in enumerate(places):
        for name, tip in tips.items():
            out.append(line(place, place + tip, stroke=COLOURS[name], stroke_width=2.6, marker_end=f"url(#{name})"))
        if i in joints_of:
            at = place + tips["z"] * (1 + 15 / math.hypot(*tips["z"])) + [0, 5]
            out.append(text(*at, f"J{joints_of[i]}", fill=COLOURS["z"], font_weight="bold", text_anchor="middle"))
        out.append(element("circle", cx=float(place[0]), cy=float(place[1]), r=8.5, fill="#fff", stroke=GREY))
        out.append(text(place[0], place[1] + 4, i, text_anchor="middle", font_size=11))
    return out


def number(value):
    rounded = round(value, 2) + 0.0
    return f"{rounded:g}".replace("-", "\N{MINUS SIGN}")


def table(arm):
    standard = arm.model in STANDARD
    columns = ("joint", "θ °", "d mm", "a mm", "α °", "drawn q °") if standard else (
        "joint", "α °", "a mm", "θ °", "d mm", "drawn q °")
    left, top, step = ARM_WIDTH + 10, 110, 26
    ends = [left + 44 + 76 * i for i in range(len(columns))]
    out = [text(x, top, name, text_anchor="end", fill=GREY) for x, name in zip(ends, columns)]
    for i, (alpha, a, d, offset) in enumerate(arm.rows):
        theta = f"q{i + 1}" + ("" if not round(offset) else f" {'+' if offset > 0 else chr(0x2212)} {abs(offset):.0f}")
        cells = {"α °": number(alpha), "a mm": number(1000 * a), "θ °": theta, "d mm": number(1000 * d),
                 "joint": i + 1, "drawn q °": number(arm.posture[i])}
        y = top + step * (i + 1)
        out.append(line((left, y - 18), (ends[-1], y - 18), stroke="#d5dae0"))
        out += [text(x, y, cells[name], text_anchor="end") for x, name in zip(ends, columns)]
    link = "Rz(θ) Tz(d) Tx(a) Rx(α)" if standard else "Rx(α) Tx(a) Rz(θ) Tz(d)"
    notes = [f"{'Standard' if standard else 'Modified'} convention: frame i is frame i − 1, then", link,
             f"Joint i turns about z of frame {'i − 1' if standard else 'i'}.",
             f"Frame 0 is the base, frame {arm.count} the flange."]
    if len(arm.flanges) > 1:
        notes.append(f"d{arm.count}: " + ", ".join(f"{number(1000 * d)} ({name})" for name, d in arm.flanges))
    if arm.model == 4:
        notes.append("With a sensor d1 is 172 mm.")
    y = top + step * (arm.count + 1) + 16
    out += [text(left, y + 22 * i, note) for i, note in enumerate(notes)]
    y += 22 * len(notes) + 14
    for i, (name, colour) in enumerate(COLOURS.items()):
        out.append(line((left + 70 * i, y), (left + 70 * i + 30, y), stroke=colour, stroke_width=2.6,
                        marker_end=f"url(#{name})"))
        out.append(text(left + 70 * i + 44, y + 4, name, fill=colour, font_weight="bold"))
    out.append(line((left + 220, y), (left + 260, y), stroke=GREY, stroke_dasharray="3 3"))
    out.append(text(left + 268, y + 4, "drawn apart"))
    return out


def picture(model, title, posture):
    arm = Arm(model, posture)
    heading = text(28, 42, f"The frames of the {title}", font_size=20, font_weight="bold")
    return document(WIDTH, HEIGHT, [heading, *picture_of_arm(arm), *table(arm)], COLOURS)


keep((f"arm-{name}", picture(model, title, posture)) for model, name, title, posture in ARMS)
