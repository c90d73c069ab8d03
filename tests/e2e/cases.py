"""What a person does at the window, case by case. Each case gets a started Session and returns after its
checks; run_case.py quits the program (Ctrl+Q, exit code 0) and calls the case's `after` checks, if any,
on what the program left behind."""
import math
import os
import time
import re

from shape_tool_cases import SHAPE_TOOL_CASES
from qlex_e2e import (Failure, check, entity_records, pixel_to_world, scene_text, setting, vector,
                      world_to_pixel)

# Nothing falls and no cloud drifts unless a case wants it.
STILL = "Sim.gravitySwitch = false;\nApp.Background.drawClouds = false;\n"


def box(x, y, size=0.6, extra=""):
    return "Scene.addBox {pos = [%r, %r]; size = [%r, %r]; %s};\n" % (x, y, size, size, extra)


def boxes(session):
    return entity_records(session.saved_scene(), "addBox")


def near(a, b, tolerance):
    return all(abs(x - y) <= tolerance for x, y in zip(a, b))


class Case:
    scene = scene_text(STILL)
    config = ""
    # A case that ends the program itself; the others are quit with Ctrl+Q.
    ends_itself = False

    def run(self, s):
        raise NotImplementedError

    def after(self, s):
        pass


class PasteUndoRedo(Case):
    """Script code pasted twice makes two boxes at the mouse; two undos take both away, a redo brings the
    first back."""

    def run(self, s):
        s.set_clipboard("Scene.addBox {pos = [5.0, 5.0]; size = [0.4, 0.4]}")
        s.move(*world_to_pixel(1.0, 1.0))
        s.key("ctrl+v")
        s.move(*world_to_pixel(-1.0, -1.0))
        s.key("ctrl+v")
        s.key("ctrl+z")
        s.key("ctrl+z")
        s.key("ctrl+y")

    def after(self, s):
        found = boxes(s)
        check(len(found) == 1, "one box after undo, undo, redo: %s" % found)
        check(near(vector(found[0]["pos"]), (1.0, 1.0), 0.02), "the box at the first mouse place: %s" % found)


class CopyPaste(Case):
    """Ctrl+C of a clicked box and Ctrl+V with the mouse elsewhere gives a second box at the mouse."""
    scene = scene_text(STILL + box(-1.0, 0.0))

    def run(self, s):
        s.click(*world_to_pixel(-1.0, 0.0))
        s.key("ctrl+c")
        text = s.clipboard_with("Scene.addBox")
        check("Scene.addBox" in text, "the copied box is on the clipboard: %r" % text)
        s.move(*world_to_pixel(1.5, 1.0))
        s.key("ctrl+v")

    def after(self, s):
        places = sorted(vector(b["pos"]) for b in boxes(s))
        check(len(places) == 2, "two boxes: %s" % places)
        check(near(places[0], (-1.0, 0.0), 0.02) and near(places[1], (1.5, 1.0), 0.02),
              "the original stays, the copy is at the mouse: %s" % places)


class CutRemovesThePastedBox(CopyPaste):
    """The pasted box is the selection: Ctrl+X takes it out of the scene and onto the clipboard."""

    def run(self, s):
        CopyPaste.run(self, s)
        s.set_clipboard("nothing")
        s.key("ctrl+x")
        text = s.clipboard_with("Scene.addBox")
        check("Scene.addBox" in text, "the cut box is on the clipboard: %r" % text)

    def after(self, s):
        places = [vector(b["pos"]) for b in boxes(s)]
        check(len(places) == 1 and near(places[0], (-1.0, 0.0), 0.02), "only the original is left: %s" % places)


class ClickOnEmptySpaceSelectsNothing(Case):
    """A click on empty space clears the selection: Ctrl+C then copies nothing, and Ctrl+A then Delete
    erases everything."""
    scene = scene_text(STILL + box(-1.0, 0.0) + box(1.0, 0.0))

    def run(self, s):
        s.click(*world_to_pixel(1.0, 0.0))
        s.click(*world_to_pixel(0.0, 2.0))
        s.set_clipboard("untouched")
        s.key("ctrl+c")
        s.wait(0.3)
        check(s.clipboard() == "untouched", "nothing selected, nothing copied: %r" % s.clipboard())
        s.key("ctrl+a")
        s.key("Delete")

    def after(self, s):
        check(not boxes(s), "Ctrl+A and Delete leave no box: %s" % boxes(s))


class Autosave(Case):
    """With a short autosaveTime the scene and the configuration are autosaved while the program runs; an
    orderly quit leaves neither file."""
    config = "App.autosaveTime = 0.3;\n"

    def run(self, s):
        s.wait(1.2)
        for name in ("scenes/_AUTOSAVE.qlx", "config.autosave.cfg"):
            check(os.path.exists(s.path_of(name)), name + " written during the run")
        check("Scene.Camera.zoom" in s.read("scenes/_AUTOSAVE.qlx"), "the autosave is a scene")
        check("Scene saved to" not in s.log(), "autosave logs no save")

    def after(self, s):
        for name in ("scenes/_AUTOSAVE.qlx", "config.autosave.cfg"):
            check(not os.path.exists(s.path_of(name)), name + " is gone after the quit")


class WheelZoomsAboutTheMouse(Case):
    """Three notches of the wheel zoom in by 2^(3 zoomFactor) and keep the world point under the mouse."""
    config = "App.GUI.zoomFactor = 0.25;\n"
    mouse = (700, 200)

    def run(self, s):
        s.move(*self.mouse)
        s.wheel("up", 3)
        s.wheel("down", 1)

    def after(self, s):
        text = s.saved_scene()
        zoom = float(setting(text, "Scene.Camera.zoom"))
        pan = vector(setting(text, "Scene.Camera.pan"))
        check(abs(zoom - 150.0 * 2 ** 0.5) < 0.5, "zoom 150 * 2^(2 * 0.25): %s" % zoom)
        before = pixel_to_world(*self.mouse)
        after = (pan[0] + (self.mouse[0] - 512) / zoom, pan[1] + (384 - self.mouse[1]) / zoom)
        check(near(before, after, 0.01), "the point under the mouse stays: %s then %s" % (before, after))


class MiddleAndRightDragsPan(Case):
    """A middle drag and a right drag on empty space move the world with the mouse."""

    def run(self, s):
        s.stroke([(400, 300), (550, 300)], "middle")
        s.stroke([(400, 300), (400, 375)], "right")

    def after(self, s):
        pan = vector(setting(s.saved_scene(), "Scene.Camera.pan"))
        check(near(pan, (-1.0, 0.5), 0.05), "the world followed the mouse by (150, 75) pixels: %s" % pan)


class HingeKeyTurnsItsBody(Case):
    """A hinge bound to a key drives its box while the key is held; the box of a hinge whose key stays up
    doesn't turn."""
    scene = scene_text(STILL + box(-1.5, 0.0, 1.0) + box(1.5, 0.0, 1.0) +
                       "Scene.addHinge {pos = [-1.5, 0.0]; buttonForward = \"m\"; motorTorque = 1000.0};\n"
                       "Scene.addHinge {pos = [1.5, 0.0]; buttonForward = \"n\"; motorTorque = 1000.0};\n")

    def run(self, s):
        s.key("space")
        s.keydown("m")
        s.wait(1.0)
        s.keyup("m")
        s.key("space")

    def after(self, s):
        by_x = {round(vector(b["pos"])[0]): float(b.get("angle", "0")) for b in boxes(s)}
        check(abs(by_x[-2 if -2 in by_x else -1]) > 0.3, "the driven box turned: %s" % by_x)
        check(abs(by_x[2 if 2 in by_x else 1]) < 0.01, "the other box stood still: %s" % by_x)


class DestroyAndMirrorKeys(Case):
    """A box's destroy key takes it out of the scene; a mirror key turns the two boxes that share it over
    together, about one axis, so that they change sides; a box with no key bound stays."""
    scene = scene_text(STILL + box(-2.0, 1.0, 0.4, 'buttonDestroy = "d"; ') +
                       box(-1.0, -1.0, 0.3, 'buttonMirror = "k"; ') + box(1.0, -1.0, 0.6, 'buttonMirror = "k"; ') +
                       box(0.0, 2.0, 0.5))

    def run(self, s):
        s.key("d")
        s.key("k")

    def after(self, s):
        found = {round(float(vector(b["size"])[0]), 1): vector(b["pos"]) for b in boxes(s)}
        check(0.4 not in found, "the destroyed box is gone: %s" % found)
        check(found.get(0.3, [0])[0] > 0.5 and found.get(0.6, [0])[0] < -0.5,
              "the mirrored boxes changed sides: %s" % found)
        check(near(found.get(0.5, []), (0.0, 2.0), 1e-3), "the free box stays: %s" % found)


class SpaceStartsAndStops(Case):
    """Space starts the simulation (the box falls) and space again stops it (the picture stands)."""
    scene = scene_text("App.Background.drawClouds = false;\n" + box(0.0, 0.0, 0.6))

    def column(self, s):
        pixel = s.screen()
        return [pixel(512, y) for y in range(0, 768, 4)]

    def run(self, s):
        s.wait(0.3)
        still = self.column(s)
        s.key("space")
        s.wait(0.6)
        s.key("space")
        s.wait(0.3)
        stopped = self.column(s)
        check(stopped != still, "the box fell while the simulation ran")
        s.wait(0.5)
        check(self.column(s) == stopped, "nothing moves after the second space")

    def after(self, s):
        places = [vector(b["pos"]) for b in boxes(s)]
        check(len(places) == 1 and places[0][1] < -0.2, "the box fell: %s" % places)
        check(setting(s.read("config.cfg"), "Sim.running") == "false", "stopped at the end")



# --- drawing with the sketch tool ---------------------------------------------------------------------------
# Strokes are laid in world coordinates. A straight stroke that crosses a box's outline twice erases it:
# strokes that must not erase begin inside a box or keep clear of the outlines they would cut twice.

def px(x, y):
    return world_to_pixel(x, y)


def square(cx, cy, half):
    """A closed square stroke in pixels, with a short overlap at its start so that it surely closes."""
    corners = [(cx - half, cy - half), (cx + half, cy - half), (cx + half, cy + half), (cx - half, cy + half),
               (cx - half, cy - half), (cx + half * 0.2, cy - half)]
    return [px(x, y) for x, y in corners]


def records(s, kind):
    return entity_records(s.saved_scene(), kind)


def circle_stroke(s, cx, cy, r):
    x, y = px(cx, cy)
    s.circle(x, y, r * 150.0, segments=max(16, int(r * 150.0 / 4)))


class SquareStrokeMakesPolygon(Case):
    """A closed square stroke on empty space becomes one polygon body where it was drawn."""

    def run(self, s):
        s.stroke(square(0.0, 0.0, 0.5))

    def after(self, s):
        found = records(s, "addPolygon")
        check(len(found) == 1, "one polygon: %s" % found)
        check(near(vector(found[0]["pos"]), (0.0, 0.0), 0.08), "the polygon where it was drawn: %s" % found)


class UndoRemovesThePolygon(Case):
    """Ctrl+Z after the stroke takes the polygon away."""

    def run(self, s):
        s.stroke(square(0.0, 0.0, 0.5))
        s.key("ctrl+z")

    def after(self, s):
        check(not records(s, "addPolygon"), "no polygon after the undo: %s" % records(s, "addPolygon"))


class RedoBringsThePolygonBack(Case):
    """Ctrl+Y after the undo brings the polygon back."""

    def run(self, s):
        s.stroke(square(0.0, 0.0, 0.5))
        s.key("ctrl+z")
        s.key("ctrl+y")

    def after(self, s):
        check(len(records(s, "addPolygon")) == 1, "the polygon is back: %s" % records(s, "addPolygon"))


class EscapeDuringTheStrokeMakesNothing(Case):
    """Escape pressed while the button is still down abandons the stroke: nothing is made when it comes up."""

    def run(self, s):
        points = square(0.0, 0.0, 0.5)
        s.move(*points[0])
        s.down()
        s.path(points[:4])
        s.key("Escape")
        s.path(points[3:])
        s.up()

    def after(self, s):
        check(not records(s, "addPolygon"), "nothing drawn: %s" % records(s, "addPolygon"))


TWO_BY_TWO = scene_text(STILL + box(0.0, 0.0, 2.0))


class SmallCircleOnABoxMakesAHinge(Case):
    """A small round stroke on a 2 x 2 box pins it with a hinge at the stroke's centre."""
    scene = TWO_BY_TWO

    def run(self, s):
        circle_stroke(s, 0.4, 0.3, 0.2)

    def after(self, s):
        hinges = records(s, "addHinge")
        check(len(hinges) == 1, "one hinge: %s" % hinges)
        check(not records(s, "addPolygon"), "no polygon besides: %s" % records(s, "addPolygon"))
        # The box stands unturned at the origin: its local points are world points.
        check(near(vector(hinges[0]["geom0pos"]), (0.4, 0.3), 0.05), "the hinge at the centre: %s" % hinges)
        check(abs(float(hinges[0]["size"]) - 0.4) < 0.06, "twice the radius: %s" % hinges)


class LargeCircleOnABoxMakesAPolygon(Case):
    """A circle of radius about 1 inside the 2 x 2 box covers over half of it: a polygon, no hinge."""
    scene = TWO_BY_TWO

    def run(self, s):
        circle_stroke(s, 0.0, 0.0, 0.95)

    def after(self, s):
        check(not records(s, "addHinge"), "no hinge: %s" % records(s, "addHinge"))
        check(len(records(s, "addPolygon")) == 1, "one polygon: %s" % records(s, "addPolygon"))


class SmallCircleOffTheBoxMakesAPolygon(Case):
    """The same small circle beside the box, on the background, is a polygon."""
    scene = TWO_BY_TWO

    def run(self, s):
        circle_stroke(s, 2.0, 0.3, 0.2)

    def after(self, s):
        check(not records(s, "addHinge"), "no hinge: %s" % records(s, "addHinge"))
        found = records(s, "addPolygon")
        check(len(found) == 1 and near(vector(found[0]["pos"]), (2.0, 0.3), 0.05), "one polygon there: %s" % found)


# Edges between pixels: a stroke point that lies exactly on an outline would count as two crossings.
TWO_BOXES = scene_text(STILL + box(-1.5, 0.0, 0.98) + box(1.5, 0.0, 0.98))


class ZigzagBetweenTwoBoxesMakesASpring(Case):
    """A zigzag from one box to the other makes a spring that rests at their distance."""
    scene = TWO_BOXES

    def run(self, s):
        # Each side swings out by more than the 15% of its length a straight stroke may wander.
        s.zigzag(*px(-1.5, 0.0), *px(1.5, 0.0), teeth=5, width=85)

    def after(self, s):
        springs = records(s, "addSpring")
        check(len(springs) == 1, "one spring: %s" % springs)
        check(abs(float(springs[0]["length"]) - 3.0) < 0.1, "the spring's length is the distance: %s" % springs)
        check(len(boxes(s)) == 2 and not records(s, "addPolygon"), "nothing else changed")


class FlatLineBetweenTwoBoxesMakesNothing(Case):
    """A nearly flat stroke between the boxes is a line that crosses each outline once: no spring, no
    erasure, nothing."""
    scene = TWO_BOXES

    def run(self, s):
        s.zigzag(*px(-1.5, 0.0), *px(1.5, 0.0), teeth=5, width=6)

    def after(self, s):
        check(not records(s, "addSpring"), "no spring: %s" % records(s, "addSpring"))
        check(len(boxes(s)) == 2, "both boxes stay: %s" % boxes(s))


OVERLAPPING = scene_text(STILL + box(-0.3, 0.0, 1.0) + box(0.3, 0.0, 1.0))


class CrossingLinesMakeAFixate(Case):
    """Two lines that cross within two seconds, both inside two overlapping boxes, fixate them together."""
    scene = OVERLAPPING

    def run(self, s):
        s.stroke([px(-0.15, 0.15), px(0.15, -0.15)])
        s.wait(0.3)
        s.stroke([px(-0.15, -0.15), px(0.15, 0.15)])

    def after(self, s):
        fixates = records(s, "addFixjoint")
        check(len(fixates) == 1, "one fixate: %s" % fixates)
        fixate = fixates[0]
        by_geom = {b["geomID"]: vector(b["pos"]) for b in boxes(s)}
        check(len(by_geom) == 2, "no box erased: %s" % boxes(s))
        check({fixate["geom0"], fixate["geom1"]} == set(by_geom), "the fixate holds both boxes: %s" % fixate)
        for end in ("0", "1"):
            # Unturned boxes: an end's world point is its box's place plus its local point.
            world = [p + q for p, q in zip(by_geom[fixate["geom" + end]], vector(fixate["geom%spos" % end]))]
            check(near(world, (0.0, 0.0), 0.03), "end %s at the crossing: %s" % (end, world))


class CrossingLinesTooLateMakeNothing(CrossingLinesMakeAFixate):
    """The same two lines two and a half seconds apart make nothing."""

    def run(self, s):
        s.stroke([px(-0.15, 0.15), px(0.15, -0.15)])
        s.wait(2.5)
        s.stroke([px(-0.15, -0.15), px(0.15, 0.15)])

    def after(self, s):
        check(not records(s, "addFixjoint"), "no fixate: %s" % records(s, "addFixjoint"))
        check(len(boxes(s)) == 2, "no box erased: %s" % boxes(s))


# A plane of angle pi / 2 has its normal up: the ground below y = 0.
BOX_OVER_PLANE = scene_text(STILL + box(0.0, 0.6, 0.58) + "Scene.addPlane {pos = [0.0, 0.0]; angle = 1.57079637};\n")


class LineAcrossABoxErasesItNotThePlane(Case):
    """A straight line down through a box and into the ground beneath erases the box; the plane stays."""
    scene = BOX_OVER_PLANE

    def run(self, s):
        s.stroke([px(0.0, 1.3), px(0.0, -0.5)])

    def after(self, s):
        check(not boxes(s), "the box is erased: %s" % boxes(s))
        check(len(records(s, "addPlane")) == 1, "the plane stays: %s" % records(s, "addPlane"))


class LineAcrossThePlaneAloneErasesIt(Case):
    """A straight line that crosses only the plane erases it; the box stays."""
    scene = BOX_OVER_PLANE

    def run(self, s):
        s.stroke([px(2.0, 0.5), px(2.0, -0.5)])

    def after(self, s):
        check(not records(s, "addPlane"), "the plane is erased: %s" % records(s, "addPlane"))
        check(len(boxes(s)) == 1, "the box stays: %s" % boxes(s))


THREE_BOXES = scene_text(STILL + box(-1.5, 0.0) + box(0.0, 0.0) + box(1.5, 0.0))


class LoopAroundTwoBoxesSelectsThem(Case):
    """A closed stroke around two of three boxes selects those two, and Delete removes exactly them."""
    scene = THREE_BOXES

    def run(self, s):
        corners = [(-2.2, -0.7), (0.7, -0.7), (0.7, 0.7), (-2.2, 0.7), (-2.2, -0.7), (-1.6, -0.7)]
        s.stroke([px(x, y) for x, y in corners])
        s.key("Delete")

    def after(self, s):
        places = [vector(b["pos"]) for b in boxes(s)]
        check(len(places) == 1 and near(places[0], (1.5, 0.0), 1e-3), "only the third box is left: %s" % places)
        check(not records(s, "addPolygon"), "the loop made no polygon: %s" % records(s, "addPolygon"))


class ShiftDrawsAStraightRun(Case):
    """With Shift held, the stroke records nothing until Shift comes up: a detour around a box drawn with
    Shift down is the straight line from its start to its end, which strikes the box out. Drawn without
    Shift, the same detour is an open stroke that makes nothing."""
    scene = scene_text(STILL + box(0.0, 0.0, 0.58) + box(0.0, -2.0, 0.58))
    detour = [(-1.5, 0.05), (-1.5, 1.0), (1.5, 1.0), (1.5, 0.05)]

    def run(self, s):
        lower = [(x, y - 2.0) for x, y in self.detour]
        s.stroke([px(x, y) for x, y in lower])
        s.move(*px(*self.detour[0]))
        s.down()
        s.keydown("shift")
        s.path([px(x, y) for x, y in self.detour])
        s.keyup("shift")
        s.up()

    def after(self, s):
        places = [vector(b["pos"]) for b in boxes(s)]
        check(len(places) == 1 and near(places[0], (0.0, -2.0), 1e-3),
              "only the box under the straight run went: %s" % places)


class RememberedLineShowsRedThenFades(Case):
    """A straight line through nothing stays on the screen in red, and is gone two seconds later."""

    def red_near(self, s, x, y):
        pixel = s.screen()
        return any(r > 150 and b < 120 for r, g, b in (pixel(x, y + dy) for dy in range(-4, 5)))

    def run(self, s):
        s.stroke([px(-2.5, 1.5), px(-0.5, 1.5)])
        # Red enough for the test while the line is less than about 0.9 s old: the next frames show it.
        deadline = time.time() + 0.6
        while not self.red_near(s, *px(-1.5, 1.5)) and time.time() < deadline:
            s.wait(0.02)
        check(self.red_near(s, *px(-1.5, 1.5)), "the line is red after the stroke")
        check(not self.red_near(s, *px(-1.5, 0.5)), "and only where it was drawn")
        s.wait(2.2)
        check(not self.red_near(s, *px(-1.5, 1.5)), "the line has faded")
# The console's background over the sky: (0.1, 0.1, 0.1) at alpha 0.8, far darker than any sky.
def console_covers(s, x, y):
    return max(s.pixel(x, y)) < 90


class ConsoleRunsCommandsWithHistory(Case):
    """The key left of 1 opens the console without typing into it; a command runs, Up brings it back to be
    edited and run again, a scene command adds a box, and the console covers the top of the window until
    Escape shuts it."""

    def run(self, s):
        check(not console_covers(s, 512, 60), "the console starts shut: %s" % (s.pixel(512, 60),))
        s.key("grave")
        s.wait(0.6)
        check(console_covers(s, 512, 60), "the open console covers the top: %s" % (s.pixel(512, 60),))
        check(not console_covers(s, 512, 400), "and not the middle: %s" % (s.pixel(512, 400),))
        s.type("probe = 1 + 2")
        s.key("Return")
        s.key("Up")
        s.key("BackSpace")
        s.type("5")
        s.key("Return")
        s.type("Scene.addBox {pos = [1.0, 1.0]; size = [0.5, 0.5]}")
        s.key("Return")
        s.screenshot(s.path_of("console.png"))
        s.key("Escape")
        s.wait(0.6)
        check(not console_covers(s, 512, 60), "Escape shut the console: %s" % (s.pixel(512, 60),))

    def after(self, s):
        config = s.read("config.cfg")
        check(re.search(r"^probe = 6;?$", config, re.M), "the edited command ran last:\n" + config)
        places = [vector(b["pos"]) for b in boxes(s)]
        check(len(places) == 1 and near(places[0], (1.0, 1.0), 1e-3), "the console's box: %s" % places)


class ConsoleKeyBinding(Case):
    """A binding made in the console runs at its key once the console is shut, and stays in config.cfg."""

    def run(self, s):
        s.key("F11")
        s.type('Keys.bind("f12", {System.screenshot()})')
        s.key("Return")
        s.key("F11")
        s.wait(0.5)
        check(not os.path.exists(s.path_of("screenshots")) or not os.listdir(s.path_of("screenshots")),
              "no screenshot before the key")
        s.key("F12")
        s.wait(0.5)
        shots = os.listdir(s.path_of("screenshots")) if os.path.exists(s.path_of("screenshots")) else []
        check(len(shots) == 1 and shots[0].endswith(".tga"), "F12 wrote one screenshot: %s" % shots)

    def after(self, s):
        check('Keys.bind("f12", {System.screenshot()})' in s.read("config.cfg"),
              "the binding is saved:\n" + s.read("config.cfg"))


class ConsoleCompletionExits(Case):
    """Tab completes "Sys" to "System." and "exi" to "exit"; Return runs it and the program ends in order,
    saving its configuration and leaving no autosave."""
    ends_itself = True

    def run(self, s):
        s.key("F11")
        s.type("Sys")
        s.key("Tab")
        s.type("exi")
        s.key("Tab")
        s.key("Return")

    def after(self, s):
        check("Subsystem::Run returned" in s.log(), "the loop ended in order:\n" + s.log()[-2000:])
        check(os.path.exists(s.path_of("config.cfg")) and not os.path.exists(s.path_of("config.autosave.cfg")),
              "config.cfg saved, no autosave left")
class WelcomeSceneInGerman(Case):
    """The welcome scene, opened with the German texts chosen, reads every text it needs: no translation
    is missing and no key shows bracketed, and the choice stays in the configuration."""
    with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "scenes", "welcome.qlx")) as f:
        scene = f.read()
    config = 'App.language = "German";\n'

    def run(self, s):
        s.wait(0.5)
        s.click(512, 700)
        s.wait(0.3)

    def after(self, s):
        log = s.log()
        check("Loading language German..." in log, "German was loaded:\n" + log[-2000:])
        for trouble in ("translation missing", "translation for", "Error in language file", "Error loading language",
                        "Failed to load language", "not found in the english original"):
            check(trouble not in log, "no %r in the log:\n%s" % (trouble, log[-2000:]))
        check(setting(s.read("config.cfg"), "App.language") == '"German"', "German stays chosen")
class ProfilerTablesToggle(Case):
    """The multiply key of the numeric pad lays the flat profiler's table over a darkened scene, in white
    text at the top left; again, and the scene is back as it was. The minus key does the same for the
    tree's table."""
    scene = scene_text("App.Background.drawClouds = false;\n")
    # The table's corner, and a spot far below any line of it.
    TEXT = [(x, y) for x in range(0, 700, 2) for y in range(0, 220, 2)]
    SHADE = (1000, 700)

    def bright(self, s):
        pixel = s.screen()
        return sum(1 for x, y in self.TEXT if min(pixel(x, y)) > 200)

    def shown(self, s, key):
        s.key(key)
        s.wait(1.5)  # the table is written at once and refreshed every second
        pixel = s.screen()
        return self.bright(s), pixel(*self.SHADE)

    def run(self, s):
        s.wait(0.5)
        sky = s.pixel(*self.SHADE)
        plain = self.bright(s)
        for key, name in (("KP_Multiply", "flat"), ("KP_Subtract", "tree")):
            text, shade = self.shown(s, key)
            if name == "flat":
                s.screenshot(os.path.join(s.dir, "profiler.png"))
            check(text > plain + 60, "the %s table's text shows: %d bright pixels, %d before" % (name, text, plain))
            check(all(c <= sky_c * 0.6 + 2 for c, sky_c in zip(shade, sky)),
                  "the scene is darkened under the %s table: %s, %s before" % (name, shade, sky))
            s.key(key)
            s.wait(0.3)
            check(s.pixel(*self.SHADE) == sky and self.bright(s) == plain, "the %s table is gone again" % name)


class ArrowKeysSteerABox(Case):
    """A box whose direction source is the arrow keys is pushed to the right while Right is held, and a
    box without a source stays where it was."""
    scene = scene_text(STILL + box(-1.5, 0.0, 0.6, 'forceController = "keys up right down left"; ') +
                       box(1.5, 1.5, 0.6))

    def run(self, s):
        s.key("space")
        s.keydown("Right")
        s.wait(0.8)
        s.keyup("Right")
        s.key("space")

    def after(self, s):
        found = {b.get("forceController"): vector(b["pos"]) for b in boxes(s)}
        steered = found.get('"keys up right down left"')
        check(steered is not None, "the steered box keeps its source: %s" % found)
        check(steered[0] > -1.3 and abs(steered[1]) < 0.05, "the steered box went right: %s" % found)
        check(near(found.get(None, []), (1.5, 1.5), 1e-3), "the other box stays: %s" % found)


CASES = {
    "paste_undo_redo": PasteUndoRedo,
    "copy_paste": CopyPaste,
    "cut_removes_the_pasted_box": CutRemovesThePastedBox,
    "click_on_empty_space_selects_nothing": ClickOnEmptySpaceSelectsNothing,
    "autosave": Autosave,
    "wheel_zooms_about_the_mouse": WheelZoomsAboutTheMouse,
    "middle_and_right_drags_pan": MiddleAndRightDragsPan,
    "hinge_key_turns_its_body": HingeKeyTurnsItsBody,
    "space_starts_and_stops": SpaceStartsAndStops,
    "destroy_and_mirror_keys": DestroyAndMirrorKeys,
    "sketch_square_stroke_makes_polygon": SquareStrokeMakesPolygon,
    "sketch_undo_removes_the_polygon": UndoRemovesThePolygon,
    "sketch_redo_brings_the_polygon_back": RedoBringsThePolygonBack,
    "sketch_escape_during_the_stroke_makes_nothing": EscapeDuringTheStrokeMakesNothing,
    "sketch_small_circle_on_a_box_makes_a_hinge": SmallCircleOnABoxMakesAHinge,
    "sketch_large_circle_on_a_box_makes_a_polygon": LargeCircleOnABoxMakesAPolygon,
    "sketch_small_circle_off_the_box_makes_a_polygon": SmallCircleOffTheBoxMakesAPolygon,
    "sketch_zigzag_between_two_boxes_makes_a_spring": ZigzagBetweenTwoBoxesMakesASpring,
    "sketch_flat_line_between_two_boxes_makes_nothing": FlatLineBetweenTwoBoxesMakesNothing,
    "sketch_crossing_lines_make_a_fixate": CrossingLinesMakeAFixate,
    "sketch_crossing_lines_too_late_make_nothing": CrossingLinesTooLateMakeNothing,
    "sketch_line_across_a_box_erases_it_not_the_plane": LineAcrossABoxErasesItNotThePlane,
    "sketch_line_across_the_plane_alone_erases_it": LineAcrossThePlaneAloneErasesIt,
    "sketch_loop_around_two_boxes_selects_them": LoopAroundTwoBoxesSelectsThem,
    "sketch_shift_draws_a_straight_run": ShiftDrawsAStraightRun,
    "sketch_remembered_line_shows_red_then_fades": RememberedLineShowsRedThenFades,
    "console_runs_commands_with_history": ConsoleRunsCommandsWithHistory,
    "console_key_binding": ConsoleKeyBinding,
    "console_completion_exits": ConsoleCompletionExits,
    "welcome_scene_in_german": WelcomeSceneInGerman,
    "profiler_tables_toggle": ProfilerTablesToggle,
    "arrow_keys_steer_a_box": ArrowKeysSteerABox,
}
CASES.update(SHAPE_TOOL_CASES)

from manipulation_tool_cases import MANIPULATION_TOOL_CASES  # noqa: E402 (its cases build on those above)
CASES.update(MANIPULATION_TOOL_CASES)

from text_field_cases import TEXT_FIELD_CASES  # noqa: E402
CASES.update(TEXT_FIELD_CASES)
