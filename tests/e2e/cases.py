"""What a person does at the window, case by case. Each case gets a started Session and returns after its
checks; run_case.py quits the program (Ctrl+Q, exit code 0) and calls the case's `after` checks, if any,
on what the program left behind."""
import math
import os

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
    "profiler_tables_toggle": ProfilerTablesToggle,
    "arrow_keys_steer_a_box": ArrowKeysSteerABox,
}
