"""The tools that act on what is already there (drag, move, rotate, scale, clone, pan) and the tools that
join it (hinge, spring), used at the window as a person would. Each edit must leave the expected scene and
exactly one undo step: the scene is read back through the autosave while the program runs, so that the state
before the gesture, after it, and after one Ctrl+Z can be compared."""
import math
import os
import time

from qlex_e2e import check, entity_records, scene_text, vector, world_to_pixel
from cases import STILL, Case, MiddleAndRightDragsPan, box, boxes, near

AUTOSAVE = "scenes/_AUTOSAVE.qlx"
# Autosave every frame or so: each read below waits for a fresh file.
AUTOSAVE_CONFIG = "App.autosaveTime = 0.2;\n"
AUTOSAVE_PATIENCE = 10.0


def px(x, y):
    return world_to_pixel(x, y)


def shot(s, name):
    """A picture of the window for a person to look at, when QLEX_E2E_SHOTS names a folder."""
    folder = os.environ.get("QLEX_E2E_SHOTS")
    if folder:
        s.wait(0.2)
        s.screenshot(os.path.join(folder, name + ".png"))


def fresh_autosave(s):
    """The scene as the program holds it now: the next autosave written after this call."""
    path = s.path_of(AUTOSAVE)
    if os.path.exists(path):
        os.remove(path)
    deadline = time.time() + AUTOSAVE_PATIENCE
    while not os.path.exists(path):
        check(time.time() < deadline, "no autosave came")
        time.sleep(0.05)
    # The file is written in one go right after it is made; a moment lets the writer finish.
    time.sleep(0.15)
    return s.read(AUTOSAVE)


def box_state(scene):
    """Each box as (pos, size, angle) texts, sorted, to compare scenes exactly as they were saved."""
    return sorted((b["pos"], b["size"], b.get("angle", "0")) for b in entity_records(scene, "addBox"))


def arc(cx, cy, r, a0, a1, steps=24):
    return [px(cx + r * math.cos(a0 + (a1 - a0) * i / steps), cy + r * math.sin(a0 + (a1 - a0) * i / steps))
            for i in range(steps + 1)]


class UndoableEdit(Case):
    """A gesture that changes the scene, checked against the scene before it, then undone by one Ctrl+Z;
    the scene saved at the end must be the scene from before, box by box."""
    scene = scene_text(STILL + box(0.0, 0.0, 1.0))
    config = AUTOSAVE_CONFIG

    def gesture(self, s):
        raise NotImplementedError

    def check_changed(self, before, after):
        raise NotImplementedError

    def run(self, s):
        self.before = fresh_autosave(s)
        self.gesture(s)
        changed = fresh_autosave(s)
        self.check_changed(entity_records(self.before, "addBox"), entity_records(changed, "addBox"))
        s.key("ctrl+z")

    def after(self, s):
        check(box_state(s.saved_scene()) == box_state(self.before),
              "one Ctrl+Z gives back the scene from before: %s, was %s" %
              (box_state(s.saved_scene()), box_state(self.before)))


class MoveIsOneUndoStep(UndoableEdit):
    """A selected box dragged with the left button goes where the mouse went."""

    def gesture(self, s):
        s.click(*px(0.0, 0.0))
        s.stroke([px(0.0, 0.0), px(1.0, 0.5)])

    def check_changed(self, before, after):
        check(len(after) == 1 and near(vector(after[0]["pos"]), (1.0, 0.5), 0.02), "the box moved: %s" % after)


class RotateIsOneUndoStep(UndoableEdit):
    """A right drag on a box that sweeps a quarter circle about its centre turns it by a quarter turn."""

    def gesture(self, s):
        points = arc(0.0, 0.0, 0.45, 0.0, math.pi / 2)
        s.move(*points[0])
        s.down("right")
        # The first motion out of the press only starts the turning.
        s.move(points[0][0], points[0][1] - 1)
        s.path(points)
        shot(s, "rotate")
        s.up("right")

    def check_changed(self, before, after):
        check(len(after) == 1, "one box: %s" % after)
        angle = float(after[0].get("angle", "0"))
        check(abs(math.remainder(angle - math.pi / 2, 2 * math.pi)) < 0.1, "a quarter turn: %s" % after)
        check(near(vector(after[0]["pos"]), (0.0, 0.0), 0.01), "about its centre: %s" % after)


class ScaleIsOneUndoStep(UndoableEdit):
    """With the scale tool ("r"), the top right handle of a selected box dragged outwards by half the box
    scales it by 1.5 about the opposite corner, which stays."""

    def gesture(self, s):
        s.click(*px(0.0, 0.0))
        s.key("r")
        s.move(*px(0.45, 0.45))
        s.move(*px(0.5, 0.5))
        shot(s, "scale_rings")
        s.down()
        s.path([px(0.5, 0.5), px(1.0, 1.0)])
        shot(s, "scale_drag")
        s.up()

    def check_changed(self, before, after):
        check(len(after) == 1, "one box: %s" % after)
        check(near(vector(after[0]["size"]), (1.5, 1.5), 0.02), "scaled by 1.5: %s" % after)
        check(near(vector(after[0]["pos"]), (0.25, 0.25), 0.02), "the lower left corner stays: %s" % after)


class CloneIsOneUndoStep(UndoableEdit):
    """A left drag on the selected box with Ctrl held drops a copy where the mouse lets go."""

    def gesture(self, s):
        s.click(*px(0.0, 0.0))
        s.move(*px(0.0, 0.0))
        s.keydown("ctrl")
        s.down()
        s.path([px(0.0, 0.0), px(1.5, 0.0), px(1.5, 1.0)])
        shot(s, "clone_ghost")
        s.up()
        s.keyup("ctrl")

    def check_changed(self, before, after):
        places = sorted(vector(b["pos"]) for b in after)
        check(len(places) == 2 and near(places[0], (0.0, 0.0), 1e-4) and near(places[1], (1.5, 1.0), 0.02),
              "the original stays and a copy lies at the mouse: %s" % places)


class EscapeDuringAMoveRestores(Case):
    """Escape in the middle of a move puts the box back; letting go afterwards moves nothing."""
    scene = scene_text(STILL + box(0.0, 0.0, 1.0))

    def run(self, s):
        s.click(*px(0.0, 0.0))
        s.move(*px(0.0, 0.0))
        s.down()
        s.path([px(0.0, 0.0), px(1.0, 0.5)])
        s.keydown("Escape")
        s.keyup("Escape")
        s.path([px(1.0, 0.5), px(1.2, 0.6)])
        s.up()

    def after(self, s):
        places = [vector(b["pos"]) for b in boxes(s)]
        check(len(places) == 1 and near(places[0], (0.0, 0.0), 1e-4), "the box is back: %s" % places)


class DraggedBoxFollowsTheMouseWhileRunning(Case):
    """While the simulation runs, a left drag on the selected box pulls it along to where the mouse
    rests; a line shows the pull."""
    scene = scene_text(STILL + box(0.0, 0.0, 0.6))

    def run(self, s):
        s.click(*px(0.0, 0.0))
        s.key("space")
        s.move(*px(0.0, 0.0))
        s.down()
        s.path([px(0.0, 0.0), px(1.0, 0.5), px(2.0, 1.0)])
        shot(s, "drag_line")
        s.wait(2.0)
        s.up()
        s.key("space")

    def after(self, s):
        places = [vector(b["pos"]) for b in boxes(s)]
        check(len(places) == 1 and near(places[0], (2.0, 1.0), 0.15), "the box came to the mouse: %s" % places)


class HingeToolClickMakesAHinge(Case):
    """The hinge tool, held on its key "h" or selected with a tap of it, puts a hinge where a box is
    clicked; a click on empty space makes none."""
    scene = scene_text(STILL + box(-1.5, 0.0, 1.0) + box(1.5, 0.0, 1.0))

    def run(self, s):
        s.move(*px(-1.4, 0.1))
        s.keydown("h")
        s.wait(0.2)
        s.click(*px(-1.4, 0.1))
        s.wait(0.3)
        s.keyup("h")
        s.key("h")
        s.click(*px(1.6, -0.1))
        s.click(*px(0.0, 2.0))

    def after(self, s):
        # The second end of a hinge on a free box is on the background, where its position is the world's.
        hinges = sorted(vector(h["geom1pos"]) for h in entity_records(s.saved_scene(), "addHinge"))
        check(len(hinges) == 2 and near(hinges[0], (-1.4, 0.1), 0.02) and near(hinges[1], (1.6, -0.1), 0.02),
              "a hinge at each click on a box, none on empty space: %s" % hinges)


class SpringToolJoinsTwoBoxes(Case):
    """With the spring tool ("s"), a drag from one box to the other makes a spring resting at their
    distance; a drag that ends on the box where it began makes none."""
    scene = scene_text(STILL + box(-1.5, 0.0, 0.98) + box(1.5, 0.0, 0.98))

    def run(self, s):
        s.key("s")
        s.stroke([px(-1.5, 0.2), px(-1.5, -0.2)])
        s.move(*px(-1.5, 0.0))
        s.down()
        s.path([px(-1.5, 0.0), px(0.0, 0.5), px(1.5, 0.0)])
        # The spring takes its length from the mouse once a frame: a frame at the end before letting go.
        s.wait(0.2)
        shot(s, "spring_drawn")
        s.up()

    def after(self, s):
        springs = entity_records(s.saved_scene(), "addSpring")
        check(len(springs) == 1, "one spring: %s" % springs)
        check(abs(float(springs[0]["length"]) - 3.0) < 0.05, "it rests at the boxes' distance: %s" % springs)
        check(len(boxes(s)) == 2, "both boxes stay")


class PanMovesTheCameraNotTheScene(MiddleAndRightDragsPan):
    """The pan drags move the view; the box in the scene stays where it was."""
    scene = scene_text(STILL + box(2.0, 2.0, 0.5))

    def after(self, s):
        MiddleAndRightDragsPan.after(self, s)
        places = [vector(b["pos"]) for b in boxes(s)]
        check(places == [[2.0, 2.0]], "the box stays: %s" % places)


MANIPULATION_TOOL_CASES = {
    "move_is_one_undo_step": MoveIsOneUndoStep,
    "rotate_is_one_undo_step": RotateIsOneUndoStep,
    "scale_is_one_undo_step": ScaleIsOneUndoStep,
    "clone_is_one_undo_step": CloneIsOneUndoStep,
    "escape_during_a_move_restores": EscapeDuringAMoveRestores,
    "dragged_box_follows_the_mouse_while_running": DraggedBoxFollowsTheMouseWhileRunning,
    "hinge_tool_click_makes_a_hinge": HingeToolClickMakesAHinge,
    "spring_tool_joins_two_boxes": SpringToolJoinsTwoBoxes,
    "pan_moves_the_camera_not_the_scene": PanMovesTheCameraNotTheScene,
}
