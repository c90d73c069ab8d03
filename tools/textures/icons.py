"""The icons, cursors and small pictures of the interface, drawn from signed distance functions.

Every picture is made of shapes given as distance functions in a 32 by 32 design grid (y down), painted
over each other with coverage from the distance at each pixel's centre: edges come out anti-aliased at any
size. One palette serves all of them; a shape has a dark outline so that it reads on any background.
"""

import math

# The palette.
INK = (31, 42, 54, 255)  # outlines and dark marks
PAPER = (244, 246, 248, 255)  # light fills
BLUE = (58, 142, 230, 255)
ORANGE = (242, 156, 56, 255)
GREEN = (76, 184, 96, 255)
RED = (224, 82, 74, 255)
YELLOW = (242, 201, 76, 255)
GREY = (154, 165, 177, 255)
WATER = (64, 150, 235, 255)
WHITE = (255, 255, 255, 255)

OUTLINE = 1.6  # width of the dark rim, in design units
GRID = 32.0


# ---- distance functions: negative inside, in design units ------------------------------------------------

def circle(cx, cy, r):
    return lambda x, y: math.hypot(x - cx, y - cy) - r


def box(cx, cy, hw, hh, radius=0.0):
    def d(x, y):
        qx = abs(x - cx) - hw + radius
        qy = abs(y - cy) - hh + radius
        outside = math.hypot(max(qx, 0.0), max(qy, 0.0))
        return outside + min(max(qx, qy), 0.0) - radius
    return d


def segment(ax, ay, bx, by, width):
    def d(x, y):
        px, py = x - ax, y - ay
        vx, vy = bx - ax, by - ay
        length2 = vx * vx + vy * vy
        t = 0.0 if length2 == 0 else max(0.0, min(1.0, (px * vx + py * vy) / length2))
        return math.hypot(px - vx * t, py - vy * t) - width / 2.0
    return d


def polyline(points, width):
    parts = [segment(a[0], a[1], b[0], b[1], width) for a, b in zip(points, points[1:])]
    return union(*parts)


def polygon(points):
    """Exact distance to a closed polygon, negative inside (even-odd rule)."""
    def d(x, y):
        best = float("inf")
        inside = False
        n = len(points)
        for i in range(n):
            ax, ay = points[i]
            bx, by = points[(i + 1) % n]
            vx, vy = bx - ax, by - ay
            px, py = x - ax, y - ay
            length2 = vx * vx + vy * vy
            t = 0.0 if length2 == 0 else max(0.0, min(1.0, (px * vx + py * vy) / length2))
            best = min(best, math.hypot(px - vx * t, py - vy * t))
            if (ay > y) != (by > y) and x < ax + (y - ay) * vx / vy:
                inside = not inside
        return -best if inside else best
    return d


def ring(cx, cy, r, width):
    c = circle(cx, cy, r)
    return lambda x, y: abs(c(x, y)) - width / 2.0


def arc(cx, cy, r, width, start, end):
    """A ring between two angles (radians, y down, counter-clockwise on the screen from start to end)."""
    c = circle(cx, cy, r)
    ends = [(cx + r * math.cos(a), cy - r * math.sin(a)) for a in (start, end)]

    def d(x, y):
        angle = math.atan2(-(y - cy), x - cx)
        span = (end - start) % (2 * math.pi)
        if (angle - start) % (2 * math.pi) <= span:
            return abs(c(x, y)) - width / 2.0
        return min(math.hypot(x - ex, y - ey) for ex, ey in ends) - width / 2.0
    return d


def union(*parts):
    return lambda x, y: min(p(x, y) for p in parts)


def subtract(a, b):
    return lambda x, y: max(a(x, y), -b(x, y))


def intersect(a, b):
    return lambda x, y: max(a(x, y), b(x, y))


def moved(shape, dx, dy):
    return lambda x, y: shape(x - dx, y - dy)


def turned(shape, cx, cy, degrees):
    c, s = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    return lambda x, y: shape(cx + (x - cx) * c + (y - cy) * s, cy - (x - cx) * s + (y - cy) * c)


def arrow_head(tx, ty, dx, dy, size):
    """A triangle with its tip at (tx, ty) pointing along (dx, dy)."""
    length = math.hypot(dx, dy)
    ux, uy = dx / length, dy / length
    bx, by = tx - ux * size, ty - uy * size
    return polygon([(tx, ty), (bx - uy * size * 0.7, by + ux * size * 0.7), (bx + uy * size * 0.7, by - ux * size * 0.7)])


def double_arrow(ax, ay, bx, by, width=3.0, head=7.0):
    dx, dy = bx - ax, by - ay
    length = math.hypot(dx, dy)
    ux, uy = dx / length, dy / length
    shaft = segment(ax + ux * head * 0.8, ay + uy * head * 0.8, bx - ux * head * 0.8, by - uy * head * 0.8, width)
    return union(shaft, arrow_head(bx, by, dx, dy, head), arrow_head(ax, ay, -dx, -dy, head))


# ---- painting -------------------------------------------------------------------------------------------

class Canvas:
    def __init__(self, size):
        self.size = size
        self.scale = size / GRID  # pixels per design unit
        self.pixels = [[(0.0, 0.0, 0.0, 0.0) for _ in range(size)] for _ in range(size)]

    def paint(self, shape, color, alpha=1.0):
        """Paints `color` where `shape` is negative, with one pixel of anti-aliasing at its edge."""
        r, g, b, a = color
        a = a / 255.0 * alpha
        for j in range(self.size):
            y = (j + 0.5) / self.scale
            row = self.pixels[j]
            for i in range(self.size):
                x = (i + 0.5) / self.scale
                cover = min(1.0, max(0.0, 0.5 - shape(x, y) * self.scale))
                if cover <= 0.0:
                    continue
                sa = a * cover
                dr, dg, db, da = row[i]
                out = sa + da * (1.0 - sa)
                if out <= 0.0:
                    continue
                row[i] = ((r * sa + dr * da * (1.0 - sa)) / out, (g * sa + dg * da * (1.0 - sa)) / out,
                          (b * sa + db * da * (1.0 - sa)) / out, out)

    def shape(self, shape, fill, outline=INK):
        """A filled shape with a dark rim around it."""
        self.paint(lambda x, y: shape(x, y) - OUTLINE / 2.0, outline)
        self.paint(lambda x, y: shape(x, y) + OUTLINE / 2.0, fill)

    def rows(self):
        return [[(int(round(r)), int(round(g)), int(round(b)), int(round(a * 255))) for (r, g, b, a) in row]
                for row in self.pixels]


def draw(size, *layers):
    """A picture from (kind, shape, colour) layers: kind "shape" has a rim, "paint" none."""
    canvas = Canvas(size)
    for kind, shape, color in layers:
        if kind == "shape":
            canvas.shape(shape, color)
        else:
            canvas.paint(shape, color)
    return canvas.rows()


def S(shape, color):
    return ("shape", shape, color)


def P(shape, color):
    return ("paint", shape, color)


# ---- the pictures ---------------------------------------------------------------------------------------

def cake_circle(cx, cy, r, color):
    body = circle(cx, cy, r)
    slice_ = intersect(circle(cx, cy, r - 2.2), polygon([(cx, cy), (cx + r * 2, cy - r * 0.45), (cx + r * 2, cy + r * 0.45)]))
    return [S(body, color), P(slice_, INK)]


def hinge_picture():
    a = turned(box(12, 18, 10, 3.2, 2), 12, 18, 25)
    b = turned(box(20, 18, 10, 3.2, 2), 20, 18, -25)
    return [S(a, ORANGE), S(b, BLUE), S(circle(16, 16.4, 3.6), PAPER), P(circle(16, 16.4, 1.2), INK)]


def spring_picture():
    zig = [(5, 16)] + [(7 + 2.5 * i, 10 if i % 2 == 0 else 22) for i in range(8)] + [(27, 16)]
    return [S(box(4, 16, 2.5, 7, 1), GREY), S(box(28, 16, 2.5, 7, 1), GREY), S(polyline(zig, 2.2), ORANGE)]


def floppy(color=BLUE):
    body = polygon([(5, 5), (23, 5), (27, 9), (27, 27), (5, 27)])
    return [S(body, color), S(box(15, 9.5, 6, 4), PAPER), P(box(18, 9.5, 1.3, 2.6), INK),
            S(box(16, 21, 8, 5, 1), PAPER)]


def magnifier(plus=True):
    layers = [S(segment(20, 20, 27, 27, 5), INK), S(circle(13, 13, 9), PAPER), P(ring(13, 13, 9, 2.6), INK)]
    if plus:
        layers += [P(segment(9, 13, 17, 13, 2.4), BLUE), P(segment(13, 9, 13, 17, 2.4), BLUE)]
    return layers


def drop(cx, cy, r, color=WATER):
    return S(union(circle(cx, cy + r * 0.35, r), polygon([(cx, cy - r * 1.5), (cx - r * 0.93, cy + 0.0), (cx + r * 0.93, cy + 0.0)])), color)


def cross(cx, cy, half, width, color):
    return P(union(segment(cx - half, cy - half, cx + half, cy + half, width),
                   segment(cx - half, cy + half, cx + half, cy - half, width)), color)


def curved_arrow(backward):
    """An arc with a head: undo turns left, redo right."""
    body = arc(16, 18, 9, 3.6, math.radians(20), math.radians(160))
    head = arrow_head(5.5, 21, -1.0, 1.6, 7) if backward else arrow_head(26.5, 21, 1.0, 1.6, 7)
    return [S(union(body, head), ORANGE if backward else GREEN)]


def four_arrows(cx, cy, reach, head=6.0, width=3.0):
    return union(double_arrow(cx - reach, cy, cx + reach, cy, width, head),
                 double_arrow(cx, cy - reach, cx, cy + reach, width, head))


def tool_pictures():
    sketch = polygon([(6, 20), (9, 8), (17, 5), (26, 10), (24, 19), (27, 26), (14, 27)])
    pen_body = turned(box(16, 13, 3.6, 10, 1), 16, 16, -40)
    pen_tip = turned(polygon([(12.4, 23), (19.6, 23), (16, 29)]), 16, 16, -40)
    return {
        "scale": [S(box(12, 20, 6, 6, 1), BLUE), P(subtract(box(17, 15, 11, 11), box(17, 15, 9.4, 9.4)), INK),
                  S(union(segment(15, 17, 23, 9, 2.4), arrow_head(26, 6, 1, -1, 6)), ORANGE)],
        "drag": [S(circle(13, 19, 9), BLUE), P(segment(16, 16, 25, 7, 2.2), INK), S(circle(25, 7, 3), ORANGE),
                 P(circle(16, 16, 1.5), PAPER)],
        "pen": [P(polyline([(3, 27), (8, 22), (11, 25), (15, 21)], 2.4), BLUE), S(union(pen_body, pen_tip), YELLOW),
                P(turned(circle(16, 27.3, 1.4), 16, 16, -40), INK)],
        "hinge": hinge_picture(),
        "fixjoint": [S(turned(box(16, 16, 12, 3.2, 2), 16, 16, 30), ORANGE),
                     S(turned(box(16, 16, 12, 3.2, 2), 16, 16, -30), BLUE), cross(16, 16, 4, 2.4, INK)],
        "spring": spring_picture(),
        "chain": [S(subtract(circle(9, 23, 6), circle(9, 23, 3)), GREY), S(subtract(circle(16, 16, 6), circle(16, 16, 3)), GREY),
                  S(subtract(circle(23, 9, 6), circle(23, 9, 3)), GREY)],
        "plane": [S(polygon([(2, 19), (30, 13), (30, 30), (2, 30)]), GREEN),
                  P(intersect(polygon([(2, 19), (30, 13), (30, 30), (2, 30)]),
                              union(*[segment(x, 31, x + 8, 21, 1.4) for x in range(-2, 32, 6)])), (50, 130, 70, 255))],
        "circle": cake_circle(16, 16, 12, RED),
        "box": [S(turned(box(16, 16, 10, 10, 1), 16, 16, 12), YELLOW)],
        "brush": [S(polyline([(6, 24), (10, 14), (16, 10), (22, 14), (25, 7)], 6), BLUE)],
        "sketch": [S(sketch, ORANGE), P(polyline([(6, 20), (9, 8), (17, 5)], 1.0), PAPER)],
        "navigator": [S(four_arrows(16, 16, 13), PAPER), P(circle(16, 16, 2.2), INK)],
        "zoom": magnifier(),
        "play": [S(polygon([(9, 5), (27, 16), (9, 27)]), GREEN)],
        "pause": [S(box(10.5, 16, 3.8, 11, 1), ORANGE), S(box(21.5, 16, 3.8, 11, 1), ORANGE)],
        "backward": curved_arrow(True),
        "forward": curved_arrow(False),
    }


# The mark of an entry that opens a panel of options: three dots on a blue disc.
MENU_BADGE = [S(circle(25.5, 25.5, 5.5), BLUE),
              P(union(circle(23, 25.5, 1.1), circle(25.5, 25.5, 1.1), circle(28, 25.5, 1.1)), PAPER)]


def popup_pictures():
    hinge = hinge_picture()
    return {
        "erase": [S(turned(box(16, 16, 11, 6, 2), 16, 16, -35), PAPER),
                  S(turned(box(10.5, 16, 5.5, 6, 2), 16, 16, -35), RED)],
        "clone": [S(box(12, 12, 8, 8, 1), GREY), S(box(20, 20, 8, 8, 1), BLUE)],
        "mirror": [S(polygon([(4, 26), (13, 6), (13, 26)]), BLUE), S(polygon([(28, 26), (19, 6), (19, 26)]), PAPER),
                   P(union(*[box(16, y, 0.8, 1.5) for y in range(4, 30, 5)]), INK)],
        "save": floppy(),
        "color": [S(circle(16, 16, 13), PAPER), S(circle(10, 12, 3.3), RED), S(circle(17, 8.5, 3.3), YELLOW),
                  S(circle(23, 13, 3.3), GREEN), S(circle(21, 21, 3.3), BLUE)],
        "glue": [S(union(box(13, 19, 7, 9, 2), box(13, 8, 3, 3)), PAPER), drop(24, 21, 4, YELLOW),
                 P(box(13, 19, 4.5, 2.5), ORANGE)],
        "loosen": [S(subtract(circle(10, 16, 7), circle(10, 16, 3.5)), GREY),
                   S(subtract(circle(22, 16, 7), circle(22, 16, 3.5)), GREY),
                   P(segment(16, 3, 16, 29, 2.0), RED)],
        "liquify": [drop(11, 12, 5), drop(21, 19, 5), drop(10, 25, 3)],
        "hinge": hinge,
        "2circle": [S(box(8, 16, 5.5, 5.5, 1), YELLOW), S(union(segment(14, 16, 18, 16, 2.4), arrow_head(21, 16, 1, 0, 5)), INK),
                    S(circle(25, 16, 5.5), RED)],
        "info": info_picture(),
        "hingemenu": hinge + MENU_BADGE,
        "penmenu": tool_pictures()["pen"] + MENU_BADGE,
        "springmenu": spring_picture() + MENU_BADGE,
    }


def info_picture():
    return [S(circle(16, 16, 13), BLUE), P(circle(16, 9, 2.2), PAPER), P(box(16, 19.5, 2, 6.5, 0.8), PAPER)]


def file_pictures():
    page = polygon([(7, 3), (20, 3), (26, 9), (26, 29), (7, 29)])
    return {
        "save": floppy(),
        "open": [S(polygon([(3, 8), (12, 8), (14, 11), (27, 11), (27, 27), (3, 27)]), ORANGE),
                 S(polygon([(7, 15), (30, 15), (27, 27), (3, 27)]), YELLOW)],
        "clear": [S(page, PAPER), cross(16.5, 17, 6, 3.0, RED)],
        "new": [S(page, PAPER), P(polygon([(20, 3), (20, 9), (26, 9)]), GREY),
                P(union(segment(11, 16, 22, 16, 1.6), segment(11, 20, 22, 20, 1.6), segment(11, 24, 18, 24, 1.6)), GREY)],
        "erasewater": [drop(14, 16, 9), cross(23, 23, 4.5, 3.0, RED)],
        "zoom2scene": magnifier(False) + [P(union(polyline([(8, 11), (8, 8), (11, 8)], 1.8), polyline([(15, 8), (18, 8), (18, 11)], 1.8),
                                                  polyline([(8, 15), (8, 18), (11, 18)], 1.8), polyline([(15, 18), (18, 18), (18, 15)], 1.8)), BLUE)],
        "center": [P(ring(16, 16, 10, 2.6), INK), P(union(segment(16, 2, 16, 10, 2.4), segment(16, 22, 16, 30, 2.4),
                                                          segment(2, 16, 10, 16, 2.4), segment(22, 16, 30, 16, 2.4)), INK),
                   S(circle(16, 16, 3.2), RED)],
        "info": info_picture(),
        "fullscreen": [S(box(16, 16, 13, 10, 1.5), PAPER),
                       P(union(double_arrow(8, 10, 24, 22, 2.2, 5), double_arrow(24, 10, 8, 22, 2.2, 5)), BLUE)],
        "exit": [P(arc(16, 17, 10, 3.2, math.radians(120), math.radians(60)), RED), P(segment(16, 3, 16, 15, 3.2), RED)],
    }


def gui_pictures():
    frame = box(16, 16, 12, 12, 3)
    return {
        "checkbox-off": [S(frame, PAPER)],
        "checkbox-on": [S(frame, PAPER), P(polyline([(9, 16), (14, 22), (24, 9)], 4), GREEN)],
        "checkbox-unknown": [S(frame, PAPER), P(segment(10, 16, 22, 16, 4), GREY)],
        "radio-off": [S(circle(16, 16, 12), PAPER)],
        "radio-on": [S(circle(16, 16, 12), PAPER), P(circle(16, 16, 6), BLUE)],
        "minimize": [P(box(16, 22, 10, 2.4, 1.2), PAPER)],
        "close": [cross(16, 16, 9, 4, PAPER)],
    }


def cursor_pictures():
    """Centred on the mouse: the interface draws a cursor with its middle at the pointer."""
    def white(shape):
        return [S(shape, PAPER)]
    return {
        "drag": [S(ring(16, 16, 6, 2.6), PAPER), P(circle(16, 16, 2), INK)],
        "move": white(four_arrows(16, 16, 13)),
        "pan": [S(four_arrows(16, 16, 13), PAPER), S(circle(16, 16, 4), BLUE)],
        "clone": [S(box(13, 13, 6, 6, 1), GREY), S(box(19, 19, 6, 6, 1), PAPER),
                  P(union(segment(19, 15.5, 19, 22.5, 2), segment(15.5, 19, 22.5, 19, 2)), INK)],
        "arrow_north-west": white(double_arrow(4, 4, 28, 28)),
        "arrow_north-east": white(double_arrow(28, 4, 4, 28)),
        "arrow_north-south": white(double_arrow(16, 2, 16, 30)),
        "arrow_west-east": white(double_arrow(2, 16, 30, 16)),
    }


def world_pictures():
    """White pictures that the program tints with a colour of its own."""
    return {
        "ring": (64, [P(ring(16, 16, 14, 3.0), WHITE)]),
        "pen": (64, [P(circle(16, 16, 14), WHITE)]),
        "arrow": (64, [S(union(segment(16, 29, 16, 10, 4), arrow_head(16, 2, 0, -1, 10)), PAPER)]),
        "rotate_origo": (64, [P(union(segment(16, 6, 16, 26, 2), segment(6, 16, 26, 16, 2)), WHITE),
                              P(union(arc(16, 16, 12, 2.4, math.radians(30), math.radians(330)),
                                      arrow_head(26.4, 10, -0.5, -1, 5)), WHITE)]),
        "rightarrow": (32, [S(polygon([(11, 7), (23, 16), (11, 25)]), PAPER)]),
        "blank": (8, []),
    }


def _flag(width, height, layers):
    """A flag of the given size: each layer a shape (in grid units, the height 32) and its colour."""
    canvas = Canvas(height)
    canvas.scale = height / GRID
    canvas.size = height
    canvas.pixels = [[(0.0, 0.0, 0.0, 0.0) for _ in range(width)] for _ in range(height)]
    w = width / canvas.scale

    def paint(shape, color):
        r, g, b, a = color
        for j in range(height):
            y = (j + 0.5) / canvas.scale
            for i in range(width):
                x = (i + 0.5) / canvas.scale
                cover = min(1.0, max(0.0, 0.5 - shape(x, y) * canvas.scale))
                if cover > 0:
                    dr, dg, db, da = canvas.pixels[j][i]
                    sa = a / 255.0 * cover
                    out = sa + da * (1 - sa)
                    canvas.pixels[j][i] = ((r * sa + dr * da * (1 - sa)) / out, (g * sa + dg * da * (1 - sa)) / out,
                                           (b * sa + db * da * (1 - sa)) / out, out)
    for shape, color in layers(w):
        paint(shape, color)
    return canvas.rows()


def flag_english(width, height):
    """A white field with a red cross."""
    return _flag(width, height, lambda w: [
        (box(w / 2, 16, w / 2, 16), (250, 250, 250, 255)),
        (union(box(w / 2, 16, w / 2, 3.4), box(w / 2, 16, 3.4, 16)), (206, 17, 36, 255)),
    ])


def flag_german(width, height):
    """Three bands across: black, red, gold."""
    third = GRID / 3
    return _flag(width, height, lambda w: [
        (box(w / 2, third / 2, w / 2, third / 2), (20, 20, 20, 255)),
        (box(w / 2, third * 1.5, w / 2, third / 2 + 0.05), (221, 0, 0, 255)),
        (box(w / 2, third * 2.5, w / 2, third / 2), (255, 206, 0, 255)),
    ])
