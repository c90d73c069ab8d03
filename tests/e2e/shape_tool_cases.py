"""What a person does with the box, circle, plane and chain tools and the brush, each reached by its key.
Shapes are dragged in world coordinates through the pixel sums of qlex_e2e (zoom 150 in the 1024 x 768
window), and judged by the scene saved on exit."""
import math

from qlex_e2e import check, entity_records, scene_text, vector, world_to_pixel, ZOOM

STILL = "Sim.gravitySwitch = false;\nApp.Background.drawClouds = false;\n"
# The screen's resolution that sizes a chain's links: a centimetre is DPI / 2.54 pixels.
DPI = 100.0
LINK_RADIUS_CM = 0.4


def px(x, y):
    return world_to_pixel(x, y)


def records(s, kind):
    return entity_records(s.saved_scene(), kind)


def box(x, y, size=0.6):
    return "Scene.addBox {pos = [%r, %r]; size = [%r, %r]};\n" % (x, y, size, size)


def near(a, b, tolerance):
    return all(abs(x - y) <= tolerance for x, y in zip(a, b))


def link_radius():
    """A link's radius in world units at the zoom of the cases."""
    return LINK_RADIUS_CM * DPI / 2.54 / ZOOM


# One pixel of the mouse, in world units: what positions drawn by the mouse can be off by.
PIXEL = 1.0 / ZOOM


class ShapeCase:
    scene = scene_text(STILL)
    config = "App.DPI = %r;\n" % DPI
    ends_itself = False

    def run(self, s):
        raise NotImplementedError

    def after(self, s):
        pass


class CircleKeyHeldDrawsACircle(ShapeCase):
    """With "c" held, a drag from a centre outwards makes a circle of that radius; once the key is up the
    sketch tool is back, and a closed stroke makes a polygon, not a circle."""

    def run(self, s):
        s.keydown("c")
        # Held longer than a click, the key switches only while it is down.
        s.wait(0.5)
        s.stroke([px(-1.5, 0.5), px(-0.7, 0.5)])
        s.keyup("c")
        corners = [(0.5, -0.5), (1.5, -0.5), (1.5, 0.5), (0.5, 0.5), (0.5, -0.5), (0.7, -0.5)]
        s.stroke([px(x, y) for x, y in corners])

    def after(self, s):
        circles = records(s, "addCircle")
        check(len(circles) == 1, "one circle: %s" % circles)
        check(near(vector(circles[0]["pos"]), (-1.5, 0.5), 2 * PIXEL), "centred where the drag began: %s" % circles)
        check(abs(float(circles[0]["radius"]) - 0.8) < 2 * PIXEL, "the radius is the drag's length: %s" % circles)
        polygons = records(s, "addPolygon")
        check(len(polygons) == 1, "the stroke after the key is up is a polygon: %s" % polygons)


class BoxKeyTappedMakesBoxesFromDrags(ShapeCase):
    """A tap of "x" selects the box tool for good: two drags make two boxes, each from corner to corner."""

    def run(self, s):
        s.key("x")
        s.stroke([px(-2.0, 1.0), px(-1.0, 0.4)])
        s.stroke([px(0.5, -0.5), px(1.7, 0.5)])

    def after(self, s):
        found = sorted((vector(b["pos"]), vector(b["size"])) for b in records(s, "addBox"))
        check(len(found) == 2, "two boxes: %s" % found)
        check(near(found[0][0], (-1.5, 0.7), 2 * PIXEL) and near(found[0][1], (1.0, 0.6), 2 * PIXEL),
              "the first box spans its drag: %s" % found)
        check(near(found[1][0], (1.1, 0.0), 2 * PIXEL) and near(found[1][1], (1.2, 1.0), 2 * PIXEL),
              "the second box spans its drag: %s" % found)


class BoxWithShiftIsSquare(ShapeCase):
    """With Shift held as the button comes up, the box is the square on the larger side of the drag."""

    def run(self, s):
        s.key("x")
        s.move(*px(-1.0, 1.0))
        s.down()
        s.path([px(-1.0, 1.0), px(0.2, 0.6)])
        s.keydown("shift")
        s.up()
        s.keyup("shift")

    def after(self, s):
        found = records(s, "addBox")
        check(len(found) == 1, "one box: %s" % found)
        size = vector(found[0]["size"])
        check(near(size, (1.2, 1.2), 2 * PIXEL), "a square of the larger side, 1.2: %s" % size)
        check(near(vector(found[0]["pos"]), (-0.4, 0.4), 2 * PIXEL), "hanging from the start corner down and "
              "to the right: %s" % found)


class PlaneWithShiftSnapsTo15Degrees(ShapeCase):
    """A plane dragged with Shift held faces a multiple of 15 degrees, through the drag's start; without
    Shift it faces the drag as drawn."""

    def run(self, s):
        s.key("p")
        # 52 degrees, snapped to 45.
        start = (-1.0, -1.0)
        end = (start[0] + math.cos(math.radians(52)), start[1] + math.sin(math.radians(52)))
        s.move(*px(*start))
        s.down()
        s.keydown("shift")
        s.path([px(*start), px(*end)])
        s.up()
        s.keyup("shift")

    def after(self, s):
        planes = records(s, "addPlane")
        check(len(planes) == 1, "one plane: %s" % planes)
        angle = math.degrees(float(planes[0]["angle"]))
        check(abs(angle - 45.0) < 1e-3, "the normal snapped to 45 degrees: %s" % angle)
        pos = vector(planes[0]["pos"])
        normal = (math.cos(math.radians(angle)), math.sin(math.radians(angle)))
        offset = (pos[0] + 1.0) * normal[0] + (pos[1] + 1.0) * normal[1]
        check(abs(offset) < 2 * PIXEL, "the plane passes through the drag's start: %s" % planes[0])


class PlanePreviewAndArrowShowDuringTheDrag(ShapeCase):
    """While the plane is dragged, its half is filled on the screen, over the shapes already there, and a
    white arrow runs from the drag's start to the mouse."""
    scene = scene_text(STILL + box(-2.6, -1.6))
    start, end = (-2.0, -1.0), (-1.4, -0.2)

    def run(self, s):
        s.key("p")
        sky = s.pixel(*px(0.0, 2.0))
        before = s.pixel(*px(-2.6, -1.6))
        s.move(*px(*self.start))
        s.down()
        s.path([px(*self.start), px(*self.end)])
        s.wait(0.3)
        pixel = s.screen()
        solid = pixel(*px(-3.0, -2.2))
        over_box = pixel(*px(-2.6, -1.6))
        middle = px((self.start[0] + self.end[0]) / 2, (self.start[1] + self.end[1]) / 2)
        shaft = pixel(*middle)
        s.up()
        check(solid != sky, "the solid side is filled during the drag: %s against the sky %s" % (solid, sky))
        check(over_box == solid and over_box != before, "the preview lies over the box: %s" % (over_box,))
        check(min(shaft) > 200, "the arrow's shaft is white halfway to the mouse: %s" % (shaft,))


class ChainHasALinkEveryTwoRadii(ShapeCase):
    """A chain dragged over empty space lays a link of 0.4 screen centimetres' radius every two radii of
    the drag, with a hinge before each link; from nothing to nothing its head hangs free."""
    length_px = 400

    def run(self, s):
        s.key("n")
        x, y = px(-1.5, 0.5)
        s.stroke([(x, y), (x + self.length_px, y)])

    def after(self, s):
        r = link_radius()
        expected = int((self.length_px / ZOOM) / (2 * r))
        links = records(s, "addCircle")
        hinges = records(s, "addHinge")
        check(len(links) == expected, "%d links of radius %.4f over %d pixels: %d" %
              (expected, r, self.length_px, len(links)))
        check(all(abs(float(c["radius"]) - r) < 1e-4 for c in links), "the links' radius: %s" % links[:1])
        check(len(hinges) == expected, "a hinge before each link, none at the head: %d" % len(hinges))


class EscapeDuringAChainKeepsTheLinks(ShapeCase):
    """Escape in the middle of a chain ends it: the links laid stay, pinned at both ends, and no more come
    while the drag goes on."""
    first_px = 200

    def run(self, s):
        s.key("n")
        x, y = px(-1.5, 0.5)
        s.move(x, y)
        s.down()
        s.path([(x, y), (x + self.first_px, y)])
        # Not through Session.key: xdotool's --clearmodifiers lets go of the mouse button too, which would
        # end the drag before Escape.
        s.keydown("Escape")
        s.keyup("Escape")
        s.path([(x + self.first_px, y), (x + 2 * self.first_px, y)])
        s.up()

    def after(self, s):
        expected = int((self.first_px / ZOOM) / (2 * link_radius()))
        links = records(s, "addCircle")
        check(expected > 0 and len(links) == expected, "the %d links before Escape: %d" % (expected, len(links)))
        check(len(records(s, "addHinge")) == expected + 1, "the head is still pinned: %s" % records(s, "addHinge"))


class BrushStrokeAcrossABoxErasesIt(ShapeCase):
    """With the brush, a straight stroke across a box strikes it out; the other box stays."""
    scene = scene_text(STILL + box(0.0, 0.0) + box(0.0, -2.0))

    def run(self, s):
        s.key("b")
        s.stroke([px(-1.0, 0.1), px(1.0, -0.1)])

    def after(self, s):
        places = [vector(b["pos"]) for b in records(s, "addBox")]
        check(len(places) == 1 and near(places[0], (0.0, -2.0), 1e-3), "only the untouched box is left: %s" % places)


class BoxAroundEntitiesSelectsThem(ShapeCase):
    """A box dragged around two of three boxes selects them and makes no box: Delete then removes exactly
    those two."""
    scene = scene_text(STILL + box(-1.5, 0.0) + box(0.0, 0.0) + box(1.5, 0.0))

    def run(self, s):
        s.key("x")
        s.stroke([px(-2.2, 0.7), px(0.7, -0.7)])
        s.key("Delete")

    def after(self, s):
        places = [vector(b["pos"]) for b in records(s, "addBox")]
        check(len(places) == 1 and near(places[0], (1.5, 0.0), 1e-3), "only the third box is left: %s" % places)


SHAPE_TOOL_CASES = {
    "circle_key_held_draws_a_circle": CircleKeyHeldDrawsACircle,
    "box_key_tapped_makes_boxes_from_drags": BoxKeyTappedMakesBoxesFromDrags,
    "box_with_shift_is_square": BoxWithShiftIsSquare,
    "plane_with_shift_snaps_to_15_degrees": PlaneWithShiftSnapsTo15Degrees,
    "plane_preview_and_arrow_show_during_the_drag": PlanePreviewAndArrowShowDuringTheDrag,
    "chain_has_a_link_every_two_radii": ChainHasALinkEveryTwoRadii,
    "escape_during_a_chain_keeps_the_links": EscapeDuringAChainKeepsTheLinks,
    "brush_stroke_across_a_box_erases_it": BrushStrokeAcrossABoxErasesIt,
    "box_around_entities_selects_them": BoxAroundEntitiesSelectsThem,
}
