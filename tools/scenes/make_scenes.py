#!/usr/bin/env python3
"""Writes our sample scenes: each is built with the Scene commands in qlex-cli and saved by it, so that
the files are in the exact form the program writes.

    tools/scenes/make_scenes.py build/stage/qlex-cli scenes/
"""
import math
import os
import shutil
import subprocess
import sys
import tempfile


def box(x, y, w, h, color, angle=0.0, extra=""):
    return ("Scene.addBox {pos = [%g, %g]; size = [%g, %g]; angle = %g; color = [%s]%s}"
            % (x, y, w, h, angle, color, extra))


def circle(x, y, r, color, extra=""):
    return "Scene.addCircle {pos = [%g, %g]; radius = %g; color = [%s]%s}" % (x, y, r, color, extra)


def ground(y=0.0):
    # A plane's pose turns its normal (the x axis) up: everything below y is solid.
    return "Scene.addPlane {pos = [0, %g]; angle = %.9g; color = [0.35, 0.3, 0.25, 1.0]}" % (y, math.pi / 2)


def water(x0, y0, columns, rows, spacing=0.09):
    points = ["[%.3f, %.3f]" % (x0 + i * spacing, y0 + j * spacing) for j in range(rows) for i in range(columns)]
    return "Scene.addWater {vecs = [%s]}" % ", ".join(points)


def basin(x, y, width, height, color, right_height=None):
    """Three boxes glued to the background (body 0 is the world's) that hold water."""
    wall = 0.2
    right = height if right_height is None else right_height
    return [
        box(x, y + wall / 2, width, wall, color, extra="; body = 0"),
        box(x - width / 2 + wall / 2, y + height / 2, wall, height, color, extra="; body = 0"),
        box(x + width / 2 - wall / 2, y + right / 2, wall, right, color, extra="; body = 0"),
    ]


def meta(title, description, pan, zoom):
    return ['Scene.title = "%s"' % title, 'Scene.author = "Qlex"', 'Scene.description = "%s"' % description,
            "Scene.Camera.pan = [%g, %g]" % pan, "Scene.Camera.zoom = %g" % zoom]


def welcome():
    s = meta("Welcome", "A windmill turns, a ball bounces on a spring, boxes wait to be pushed and a basin holds water.",
             (1.5, 2.5), 80)
    s.append(ground())
    # The windmill: two crossed blades glued into one body, turned by a motor on a hinge to the background.
    s.append(box(-3, 3, 3, 0.2, "0.9, 0.5, 0.2, 1.0", extra="; body = 11; geomID = 101"))
    s.append(box(-3, 3, 0.2, 3, "0.9, 0.6, 0.2, 1.0", extra="; body = 11"))
    # Both blades lie under the axle, so the hinge names its two geoms: a blade and the background (0).
    s.append("Scene.addHinge {geom0 = 101; geom1 = 0; pos = [-3, 3]; motor = true; motorSpeed = 1.5; "
             "motorTorque = 400}")
    # A ball on a spring from the sky.
    s.append(circle(1, 3, 0.35, "0.2, 0.6, 0.9, 1.0"))
    s.append("Scene.addSpring {world0pos = [1, 3]; world1pos = [1, 5]; length = 1.2; strengthFactor = 0.08}")
    # A small pile of boxes.
    colors = ["0.8, 0.3, 0.3, 1.0", "0.3, 0.8, 0.4, 1.0", "0.9, 0.8, 0.3, 1.0", "0.6, 0.4, 0.8, 1.0"]
    for i, (x, y) in enumerate([(2.6, 0.3), (3.3, 0.3), (4.0, 0.3), (2.95, 0.9), (3.65, 0.9), (3.3, 1.5)]):
        s.append(box(x, y, 0.6, 0.6, colors[i % len(colors)]))
    # A basin of water, and a pen on the ball to trace its path.
    s.extend(basin(6.5, 0, 2.4, 1.2, "0.5, 0.5, 0.55, 1.0"))
    s.append(water(5.6, 0.3, 18, 8))
    s.append("Scene.addPen {pos = [1, 3]; color = [1.0, 1.0, 1.0, 1.0]}")
    return s


def chain_bridge():
    s = meta("Chain bridge", "A bridge of planks hinged to each other, hung between two posts.", (0, 2), 90)
    s.append(ground())
    s.append(box(-4.2, 1, 0.4, 2, "0.4, 0.3, 0.2, 1.0", extra="; body = 0"))
    s.append(box(4.2, 1, 0.4, 2, "0.4, 0.3, 0.2, 1.0", extra="; body = 0"))
    links = 14
    length = 8.0 / links
    for i in range(links):
        x = -4.0 + length * (i + 0.5)
        s.append(box(x, 1.9, length * 1.1, 0.15, "0.75, 0.55, 0.3, 1.0", extra="; chain = 1; chainNr = %d" % i))
    for i in range(links + 1):
        x = -4.0 + length * i
        s.append("Scene.addHinge {pos = [%g, 1.9]; chain = 1; chainNr = %d}" % (x, links + i))
    for i, x in enumerate([-1.5, 0.0, 1.5]):
        s.append(circle(x, 3.5 + i * 0.6, 0.3, "0.3, 0.5, 0.9, 1.0"))
    return s


def waterfall():
    s = meta("Waterfall", "Water falls from a high basin over slanted boards into a pool.", (0, 2.3), 90)
    s.append(ground())
    # The high basin's right wall is lower than the water in it: what spills over runs down the boards.
    s.extend(basin(-3, 3.5, 2.0, 1.4, "0.5, 0.5, 0.55, 1.0", right_height=0.4))
    s.append(water(-3.75, 3.8, 16, 12))
    s.append(box(-1.2, 2.8, 2.2, 0.15, "0.6, 0.45, 0.3, 1.0", angle=-0.35, extra="; body = 0"))
    s.append(box(1.2, 1.6, 2.2, 0.15, "0.6, 0.45, 0.3, 1.0", angle=0.35, extra="; body = 0"))
    s.extend(basin(3.5, 0, 3.0, 1.0, "0.5, 0.5, 0.55, 1.0"))
    s.append(box(3.5, 0.6, 0.5, 0.3, "0.9, 0.7, 0.2, 1.0", extra="; density = 0.5"))
    return s


def newtons_cradle():
    s = meta("Cradle", "Five balls on springs: the first swings in and passes its push along the row.", (-0.5, 1.5), 130)
    s.append(ground(-1))
    for i in range(5):
        x = -1.0 + i * 0.5
        bx, by = (x - 1.5, 2.0) if i == 0 else (x, 0.5)
        s.append(circle(bx, by, 0.25, "0.75, 0.75, 0.8, 1.0", extra="; restitution = 1.0; friction = 0.0"))
        s.append("Scene.addSpring {world0pos = [%g, %g]; world1pos = [%g, 3]; length = 2.5; strengthFactor = 0.5}"
                 % (bx, by, x))
    return s


def seesaw():
    s = meta("Seesaw", "A plank on a hinge, a heavy weight about to drop on one end and a ball on the other.", (0, 2), 110)
    s.append(ground())
    s.append(box(0, 0.5, 0.4, 1.0, "0.4, 0.4, 0.45, 1.0", extra="; body = 0"))
    s.append(box(0, 1.1, 5, 0.2, "0.7, 0.5, 0.3, 1.0"))
    s.append("Scene.addHinge {pos = [0, 1.05]}")
    s.append(circle(2.2, 1.5, 0.3, "0.2, 0.7, 0.4, 1.0"))
    s.append(box(-2.2, 4, 0.8, 0.8, "0.6, 0.2, 0.2, 1.0", extra="; density = 8"))
    return s


SCENES = {
    "welcome": welcome,
    "chain_bridge": chain_bridge,
    "waterfall": waterfall,
    "cradle": newtons_cradle,
    "seesaw": seesaw,
}


STARTS_RUNNING = {"welcome"}


def main():
    cli, out_dir = sys.argv[1:3]
    os.makedirs(out_dir, exist_ok=True)
    for name, build in SCENES.items():
        work = tempfile.mkdtemp()
        try:
            text = ";\n".join(build())
            run = subprocess.run([cli, "--workdir", work, "-e", text, "--save", name],
                                 capture_output=True, timeout=120)
            if run.returncode != 0 or b"ERROR" in run.stderr or b"Warning" in run.stderr:
                sys.stderr.write(run.stderr.decode(errors="replace"))
                sys.exit("Building %s failed" % name)
            with open(os.path.join(work, "scenes", name + ".qlx")) as saved:
                text = saved.read()
            if name in STARTS_RUNNING:
                # The scene of the first start is alive at once: loading stops the simulation, the file
                # starts it again.
                text += ";\nSim.running = true"
            with open(os.path.join(out_dir, name + ".qlx"), "w") as out:
                out.write(text)
        finally:
            shutil.rmtree(work)


if __name__ == "__main__":
    main()
