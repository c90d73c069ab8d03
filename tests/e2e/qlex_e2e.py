"""Drives the real qlex under a private Xvfb with real X input, as a person at the window would.

A Session lays out a work directory from the staged tree, writes its configuration (so that no first-run
panels appear), starts qlex on a scene, replays verbs through xdotool, quits with Ctrl+Q and reads back what
the program left: the scene saved on exit, the configuration, the log and the screen's pixels.

A scene that sets Scene.Camera.pan = [0.0, 0.0] and zoom 150 in the 1024 x 768 window maps the world point
(x, y) to the pixel (512 + 150 x, 384 - 150 y): world_to_pixel does that sum.
"""
import math
import os
import re
import shutil
import struct
import subprocess
import tempfile
import time
import zlib

WINDOW = (1024, 768)
ZOOM = 150.0
STARTUP_PATIENCE = 60.0
EXIT_PATIENCE = 30.0
# Steps of a path are at most this many pixels apart, so that every tool sees a dense stroke.
PATH_STEP = 8
STEP_PAUSE = 0.012
BUTTONS = {"left": 1, "middle": 2, "right": 3}
BASE_CONFIG = "System.resolution = [1024, 768];\nSystem.fullscreen = false;\n"


def world_to_pixel(x, y):
    return (round(WINDOW[0] / 2 + ZOOM * x), round(WINDOW[1] / 2 - ZOOM * y))


def pixel_to_world(px, py):
    return ((px - WINDOW[0] / 2) / ZOOM, (WINDOW[1] / 2 - py) / ZOOM)


def scene_text(body, pan=(0.0, 0.0), zoom=ZOOM):
    """A scene file around `body` with the camera the pixel sums assume, and nothing moving by itself."""
    return ("// Qlex scene created by Qlex beta 4.21\n\nFileInfo.version = 2;\n"
            "Scene.Camera.pan = [%r, %r];\nScene.Camera.zoom = %r;\n%s\n" % (pan[0], pan[1], zoom, body))


class Failure(Exception):
    pass


def check(condition, message):
    if not condition:
        raise Failure(message)


class Session:
    def __init__(self, stage, scene=None, config="", env=None):
        self.stage = stage
        self.extra_env = dict(env or {})
        self.dir = tempfile.mkdtemp(prefix="qlex-e2e-")
        self.xvfb = None
        self.proc = None
        self.display = None
        self.window = None
        self.exit_code = None
        shutil.copy2(os.path.join(stage, "qlex"), self.dir)
        shutil.copytree(os.path.join(stage, "data"), os.path.join(self.dir, "data"))
        if os.path.exists(os.path.join(stage, "Qlex.bmp")):
            shutil.copy2(os.path.join(stage, "Qlex.bmp"), self.dir)
        os.makedirs(os.path.join(self.dir, "scenes"))
        with open(os.path.join(self.dir, "config.cfg"), "w") as f:
            f.write(BASE_CONFIG + config)
        self.scene_path = None
        if scene is not None:
            self.scene_path = os.path.join(self.dir, "scenes", "case.qlx")
            with open(self.scene_path, "w") as f:
                f.write(scene)

    # --- the display and the program -------------------------------------------------------------------
    def start(self):
        self.fbdir = os.path.join(self.dir, "fb")
        os.makedirs(self.fbdir)
        read_end, write_end = os.pipe()
        self.xvfb = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", "1280x1024x24", "-nolisten", "tcp",
             "-fbdir", self.fbdir, "-noreset"],
            pass_fds=(write_end,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_end)
        number = b""
        with os.fdopen(read_end, "rb") as pipe:
            while not number.endswith(b"\n"):
                chunk = pipe.read(1)
                check(chunk, "Xvfb ended before it named its display")
                number += chunk
        self.display = ":" + number.decode().strip()
        self.env = dict(os.environ, DISPLAY=self.display, LIBGL_ALWAYS_SOFTWARE="1", **self.extra_env)
        args = [os.path.join(self.dir, "qlex")]
        if self.scene_path:
            args.append(self.scene_path)
        self.out = open(os.path.join(self.dir, "output.txt"), "w")
        self.proc = subprocess.Popen(args, cwd=self.dir, env=self.env, stdout=self.out, stderr=subprocess.STDOUT)
        deadline = time.time() + STARTUP_PATIENCE
        while "Running program..." not in self.log():
            check(self.proc.poll() is None, "qlex ended at start with %s:\n%s" % (self.proc.returncode, self.output()))
            check(time.time() < deadline, "qlex didn't start running:\n" + self.log())
            time.sleep(0.05)
        ids = self.xdo("search", "--sync", "--onlyvisible", "--pid", str(self.proc.pid)).split()
        check(ids, "no window of qlex on the display")
        self.window = ids[0]
        self.xdo("windowmove", "--sync", self.window, "0", "0")
        self.xdo("windowfocus", "--sync", self.window)
        # A few frames at the new place before the first input.
        time.sleep(0.3)

    def quit(self):
        """Ctrl+Q, then the exit code, which must be 0."""
        self.key("ctrl+q")
        try:
            self.exit_code = self.proc.wait(timeout=EXIT_PATIENCE)
        except subprocess.TimeoutExpired:
            raise Failure("qlex didn't end after Ctrl+Q")
        check(self.exit_code == 0, "qlex ended with %s:\n%s" % (self.exit_code, self.output()))

    def wait_exit(self):
        """The program ends by itself, with exit code 0."""
        try:
            self.exit_code = self.proc.wait(timeout=EXIT_PATIENCE)
        except subprocess.TimeoutExpired:
            raise Failure("qlex didn't end by itself")
        check(self.exit_code == 0, "qlex ended with %s:\n%s" % (self.exit_code, self.output()))

    def close(self):
        for proc in (self.proc, self.xvfb):
            if proc and proc.poll() is None:
                proc.kill()
                proc.wait()
        if getattr(self, "out", None):
            self.out.close()

    def remove(self):
        shutil.rmtree(self.dir, ignore_errors=True)

    def xdo(self, *args):
        return subprocess.run(["xdotool"] + list(args), env=self.env, check=True, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, timeout=30).stdout

    # --- verbs ----------------------------------------------------------------------------------------
    def move(self, x, y):
        self.xdo("mousemove", "--window", self.window, str(int(x)), str(int(y)))
        self.pos = (x, y)
        time.sleep(STEP_PAUSE)

    def down(self, button="left"):
        self.xdo("mousedown", str(BUTTONS[button]))
        time.sleep(0.03)

    def up(self, button="left"):
        self.xdo("mouseup", str(BUTTONS[button]))
        time.sleep(0.03)

    def click(self, x, y, button="left", count=1):
        self.move(x, y)
        for _ in range(count):
            self.xdo("click", str(BUTTONS[button]))
            time.sleep(0.03)
        time.sleep(0.1)

    def path(self, points):
        """Moves through the points with steps of at most PATH_STEP pixels."""
        for (x0, y0), (x1, y1) in zip(points, points[1:]):
            steps = max(1, math.ceil(math.hypot(x1 - x0, y1 - y0) / PATH_STEP))
            for i in range(1, steps + 1):
                self.move(x0 + (x1 - x0) * i / steps, y0 + (y1 - y0) * i / steps)

    def stroke(self, points, button="left"):
        self.move(*points[0])
        self.down(button)
        self.path(points)
        self.up(button)

    def circle(self, cx, cy, r, button="left", segments=32):
        points = [(cx + r * math.cos(2 * math.pi * i / segments), cy + r * math.sin(2 * math.pi * i / segments))
                  for i in range(segments + 1)]
        self.stroke(points, button)

    def zigzag(self, x0, y0, x1, y1, teeth=6, width=15, button="left"):
        length = math.hypot(x1 - x0, y1 - y0) or 1
        nx, ny = -(y1 - y0) / length, (x1 - x0) / length
        points = [(x0, y0)]
        for i in range(1, teeth * 2):
            side = width if i % 2 else -width
            t = i / (teeth * 2)
            points.append((x0 + (x1 - x0) * t + nx * side, y0 + (y1 - y0) * t + ny * side))
        points.append((x1, y1))
        self.stroke(points, button)

    def key(self, name):
        # Not --clearmodifiers: that lets go of a held mouse button too, and would end a drag under way.
        self.xdo("key", name)
        time.sleep(0.1)

    def type(self, text):
        """Types the text key by key, as a person at the keyboard."""
        self.xdo("type", "--clearmodifiers", "--delay", "40", text)
        time.sleep(0.1)

    def keydown(self, name):
        self.xdo("keydown", name)
        time.sleep(0.03)

    def keyup(self, name):
        self.xdo("keyup", name)
        time.sleep(0.03)

    def wheel(self, direction, count=1):
        for _ in range(count):
            self.xdo("click", "4" if direction == "up" else "5")
            time.sleep(0.05)
        time.sleep(0.1)

    def set_clipboard(self, text):
        """What a person copied in another program: xclip owns the X clipboard until qlex takes it."""
        subprocess.run(["xclip", "-selection", "clipboard", "-i"], input=text, env=self.env, check=True,
                       text=True, timeout=30, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def clipboard(self):
        """The clipboard's text; empty while nobody owns the clipboard."""
        return subprocess.run(["xclip", "-selection", "clipboard", "-o"], env=self.env, text=True, timeout=30,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout

    def clipboard_with(self, part, patience=5.0):
        """The clipboard's text once it holds `part`: the program serves it after its next frame."""
        deadline = time.time() + patience
        text = self.clipboard()
        while part not in text and time.time() < deadline:
            time.sleep(0.05)
            text = self.clipboard()
        return text

    def wait(self, seconds):
        time.sleep(seconds)

    def replay(self, verbs):
        """Runs a list of verbs: tuples whose first item names a method above."""
        for verb in verbs:
            getattr(self, verb[0])(*verb[1:])

    # --- what the program leaves -----------------------------------------------------------------------
    def path_of(self, name):
        return os.path.join(self.dir, name)

    def read(self, name):
        with open(self.path_of(name), errors="replace") as f:
            return f.read()

    def log(self):
        return self.read("Logfile.txt") if os.path.exists(self.path_of("Logfile.txt")) else ""

    def output(self):
        self.out.flush()
        return self.read("output.txt")

    def saved_scene(self):
        return self.read("scenes/_ONEXITSAVE.qlx")

    def screen(self):
        """A reader of window pixels over the frame buffer file of the Xvfb screen (an XWD image), as it is
        now: pixel(x, y) gives (r, g, b)."""
        with open(os.path.join(self.fbdir, "Xvfb_screen0"), "rb") as f:
            data = f.read()
        fields = struct.unpack(">20I", data[:80])
        header_size, byte_order, bits_per_pixel, bytes_per_line = fields[0], fields[7], fields[11], fields[12]
        masks, ncolors = fields[14:17], fields[19]
        shifts = [(m & -m).bit_length() - 1 for m in masks]
        start = header_size + ncolors * 12
        form = "<I" if byte_order == 0 else ">I"

        def pixel(x, y):
            offset = start + y * bytes_per_line + x * bits_per_pixel // 8
            value = struct.unpack(form, data[offset:offset + 4])[0]
            return tuple((value & m) >> sh for m, sh in zip(masks, shifts))
        return pixel

    def pixel(self, x, y):
        return self.screen()(x, y)

    def screenshot(self, path):
        """The window as a PNG, to look at what a case left on the screen."""
        pixel = self.screen()
        rows = b"".join(b"\0" + bytes(c for x in range(WINDOW[0]) for c in pixel(x, y)) for y in range(WINDOW[1]))

        def chunk(kind, body):
            return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
        with open(path, "wb") as f:
            f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", WINDOW[0], WINDOW[1], 8, 2, 0, 0, 0)) +
                    chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def entity_records(scene, kind):
    """The attribute blocks of every "Scene.<kind>" command of a saved scene, as dicts of raw texts."""
    records = []
    for block in re.findall(r"Scene\.%s \{(.*?)\n\}" % kind, scene, re.S):
        record = {}
        for line in block.strip().splitlines():
            line = line.strip().rstrip(";")
            if " = " in line:
                name, value = line.split(" = ", 1)
                record[name.strip()] = value.strip()
        records.append(record)
    return records


def vector(text):
    return [float(v) for v in text.strip("[] ").split(",")]


def setting(text, name):
    """The value text of the last assignment of `name` in a scene or configuration text."""
    found = re.findall(r"^%s = (.*?);\s*$" % re.escape(name), text, re.M)
    check(found, "no %s in:\n%s" % (name, text))
    return found[-1]
