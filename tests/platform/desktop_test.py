#!/usr/bin/env python3
"""Qlex on the user's desktop: scripts/install-desktop.sh into a private home, read back by the desktop's own
tools (desktop-file-validate, xdg-mime, gio), and the --help of qlex-cli.

Usage: desktop_test.py SOURCE_DIR STAGE_DIR
"""
import os
import re
import shutil
import stat
import struct
import subprocess
import sys
import tempfile
import time
import unittest
import zlib

SOURCE = STAGE = None
SCENE_TYPE = "application/x-qlex-scene"
ICON_SIZES = (48, 128, 256)


def files_under(root):
    """Every file under root with its modification time and content, by path relative to root."""
    found = {}
    for folder, _, names in os.walk(root):
        for name in names:
            path = os.path.join(folder, name)
            with open(path, "rb") as f:
                found[os.path.relpath(path, root)] = (os.stat(path).st_mtime_ns, f.read())
    return found


def png_pixels(path):
    """Width, height and rows of RGBA tuples of a PNG of 8-bit RGBA without interlace."""
    with open(path, "rb") as f:
        data = f.read()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", path
    pos, chunks = 8, {}
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        chunks[kind] = chunks.get(kind, b"") + data[pos + 8:pos + 8 + length]
        pos += 12 + length
    width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", chunks[b"IHDR"])
    assert (depth, colour, interlace) == (8, 6, 0), path
    raw = zlib.decompress(chunks[b"IDAT"])
    stride = width * 4
    rows, previous = [], bytearray(stride)
    for y in range(height):
        kind, line = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            left = line[i - 4] if i >= 4 else 0
            up, corner = previous[i], previous[i - 4] if i >= 4 else 0
            if kind == 1:
                line[i] = (line[i] + left) & 255
            elif kind == 2:
                line[i] = (line[i] + up) & 255
            elif kind == 3:
                line[i] = (line[i] + (left + up) // 2) & 255
            elif kind == 4:
                p = left + up - corner
                nearest = min((abs(p - left), 0, left), (abs(p - up), 1, up), (abs(p - corner), 2, corner))[2]
                line[i] = (line[i] + nearest) & 255
        rows.append([tuple(line[x * 4:x * 4 + 4]) for x in range(width)])
        previous = line
    return width, height, rows


class Install(unittest.TestCase):
    """One private home per test; the program is a stand-in that writes down its arguments."""

    def setUp(self):
        self.root = tempfile.mkdtemp(prefix="qlex-desktop-")
        self.home = os.path.join(self.root, "home")
        os.makedirs(self.home)
        # An install folder of a name that a desktop entry has to quote.
        self.program_dir = os.path.join(self.root, "Qlex's \"own\" $HOME `x` \\ folder")
        os.makedirs(self.program_dir)
        self.program = os.path.join(self.program_dir, "qlex")
        self.arguments_file = os.path.join(self.root, "arguments.txt")
        with open(self.program, "w") as f:
            f.write("#!/bin/sh\nfor a in \"$@\"; do printf '%%s\\n' \"$a\"; done > '%s'\n" % self.arguments_file)
        os.chmod(self.program, 0o755)

    def tearDown(self):
        shutil.rmtree(self.root, ignore_errors=True)

    def environment(self, data_home=None, path=None):
        env = dict(os.environ)
        env["HOME"] = self.home
        env.pop("XDG_DATA_HOME", None)
        if data_home:
            env["XDG_DATA_HOME"] = data_home
        if path:
            env["PATH"] = path
        return env

    def install(self, data_home=None, path=None, program=None):
        return subprocess.run(
            [os.path.join(SOURCE, "scripts", "install-desktop.sh"), STAGE, program or self.program],
            env=self.environment(data_home, path), capture_output=True, text=True, cwd=self.root)

    def data_home(self):
        return os.path.join(self.home, ".local", "share")

    def entry(self, data_home=None):
        return os.path.join(data_home or self.data_home(), "applications", "qlex.desktop")

    def saved_scene(self, name):
        """A scene as qlex-cli saves it, copied to name in the test's folder."""
        work = os.path.join(self.root, "work")
        os.makedirs(os.path.join(work, "scenes"), exist_ok=True)
        done = subprocess.run([os.path.join(STAGE, "qlex-cli"), "--workdir", work, "--save", "saved.qlx"],
                              capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stderr)
        path = os.path.join(self.root, name)
        shutil.copy(os.path.join(work, "scenes", "saved.qlx"), path)
        return path

    def query_type(self, path, desktop):
        done = subprocess.run(["xdg-mime", "query", "filetype", path],
                              env=dict(self.environment(), XDG_CURRENT_DESKTOP=desktop), capture_output=True,
                              text=True)
        return done.stdout.strip()

    def test_install_places_entry_icons_and_file_type_in_the_data_home_only(self):
        done = self.install()
        self.assertEqual(done.returncode, 0, done.stderr)
        data = self.data_home()
        for name in ["applications/qlex.desktop", "mime/packages/qlex.xml"] + \
                ["icons/hicolor/%dx%d/apps/qlex.png" % (s, s) for s in ICON_SIZES]:
            self.assertTrue(os.path.isfile(os.path.join(data, name)), name)
        # The caches of the desktop are refreshed: the compiled type database knows scenes.
        with open(os.path.join(data, "mime", "globs2")) as f:
            self.assertIn(SCENE_TYPE + ":*.qlx", f.read())
        with open(os.path.join(data, "applications", "mimeinfo.cache")) as f:
            self.assertIn(SCENE_TYPE + "=qlex.desktop;", f.read())
        # Nothing outside the user's data folder, and nothing in the program's folder.
        outside = [p for p in files_under(self.root) if not p.startswith(os.path.relpath(data, self.root))]
        self.assertEqual(sorted(outside), [os.path.relpath(self.program, self.root)])

    def test_xdg_data_home_decides_where_everything_goes(self):
        data = os.path.join(self.root, "elsewhere")
        done = self.install(data_home=data)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertTrue(os.path.isfile(self.entry(data)))
        self.assertEqual(files_under(self.home), {})
        # A relative XDG_DATA_HOME is no folder by the base directory rules: the default stands.
        done = self.install(data_home="relative/share")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertTrue(os.path.isfile(self.entry()))
        self.assertFalse(os.path.exists(os.path.join(self.root, "relative")))

    def test_installing_twice_changes_nothing(self):
        self.assertEqual(self.install().returncode, 0)
        before = files_under(self.home)
        time.sleep(0.05)  # a rewrite would show in the times
        done = self.install()
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
        self.assertEqual(files_under(self.home), before)

    def test_a_changed_file_is_put_back_and_caches_that_are_missing_are_made(self):
        # Without the tools that refresh caches, the files are placed all the same, quietly.
        tools = os.path.join(self.root, "tools")
        os.makedirs(tools)
        for command in ["bash", "dirname", "mkdir", "mktemp", "cat", "cmp", "rm", "chmod", "mv"]:
            os.symlink(shutil.which(command), os.path.join(tools, command))
        done = self.install(path=tools)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        data = self.data_home()
        self.assertTrue(os.path.isfile(self.entry()))
        self.assertFalse(os.path.exists(os.path.join(data, "mime", "mime.cache")))
        self.assertFalse(os.path.exists(os.path.join(data, "applications", "mimeinfo.cache")))
        # Where the tools are, the next install makes the caches, though no file changed.
        with open(self.entry(), "a") as f:
            f.write("X-Stray=1\n")
        done = self.install()
        self.assertEqual(done.returncode, 0, done.stderr)
        with open(self.entry()) as f:
            self.assertNotIn("X-Stray", f.read())
        self.assertTrue(os.path.isfile(os.path.join(data, "mime", "mime.cache")))
        self.assertTrue(os.path.isfile(os.path.join(data, "applications", "mimeinfo.cache")))

    def test_the_entry_validates_and_starts_the_program_with_the_file(self):
        self.assertEqual(self.install().returncode, 0)
        done = subprocess.run(["desktop-file-validate", self.entry()], capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertNotIn("error:", done.stdout + done.stderr)
        with open(self.entry()) as f:
            keys = dict(line.rstrip("\n").split("=", 1) for line in f if "=" in line)
        self.assertEqual(keys["Name"], "Qlex")
        self.assertTrue(keys["Comment"])
        self.assertEqual(keys["Icon"], "qlex")
        self.assertTrue(keys["Exec"].endswith(" %f"), keys["Exec"])
        self.assertTrue({"Education", "Science"} <= set(keys["Categories"].split(";")))
        self.assertIn(SCENE_TYPE, keys["MimeType"].split(";"))
        # The desktop's own reader of entries unquotes the program and hands over the file as one argument.
        scene = self.saved_scene("a boat; with $ and 'quotes'.qlx")
        done = subprocess.run(["gio", "launch", self.entry(), scene], env=self.environment(), capture_output=True,
                              text=True, timeout=60)
        self.assertEqual(done.returncode, 0, done.stderr)
        for _ in range(200):
            if os.path.exists(self.arguments_file):
                break
            time.sleep(0.05)
        with open(self.arguments_file) as f:
            self.assertEqual(f.read(), scene + "\n")

    def test_a_program_path_that_no_entry_can_hold_is_refused(self):
        done = self.install(program=os.path.join(self.root, "line\nbreak", "qlex"))
        self.assertEqual(done.returncode, 1)
        self.assertIn("control character", done.stderr)
        self.assertEqual(files_under(self.home), {})

    def test_saved_scenes_are_known_by_name_and_by_their_first_line(self):
        self.assertEqual(self.install().returncode, 0)
        with_name = self.saved_scene("my boat.qlx")
        without_name = self.saved_scene("my boat")
        plain = os.path.join(self.root, "notes")
        with open(plain, "w") as f:
            f.write("Scene notes, not a scene.\n")
        # Without a desktop, xdg-mime asks the shared MIME database's own reader; on GNOME, gio.
        for desktop in ["X-Generic", "GNOME"]:
            self.assertEqual(self.query_type(with_name, desktop), SCENE_TYPE, desktop)
            self.assertEqual(self.query_type(without_name, desktop), SCENE_TYPE, desktop)
            self.assertNotEqual(self.query_type(plain, desktop), SCENE_TYPE, desktop)

    def test_icons_are_rounded_tiles_of_each_size(self):
        self.assertEqual(self.install().returncode, 0)
        for size in ICON_SIZES:
            path = os.path.join(self.data_home(), "icons", "hicolor", "%dx%d" % (size, size), "apps", "qlex.png")
            width, height, rows = png_pixels(path)
            self.assertEqual((width, height), (size, size))
            self.assertEqual(rows[0][0][3], 0, "a corner is transparent")
            self.assertEqual(rows[size - 1][size - 1][3], 0, "a corner is transparent")
            opaque = [row[size // 2][3] for row in rows[size // 8:size - size // 8]]
            self.assertTrue(all(alpha == 255 for alpha in opaque), "the tile is opaque")
            # Sky above, water below: the picture is there, not a flat fill.
            sky, water = rows[size // 6][size // 2], rows[size * 7 // 8][size // 2]
            self.assertGreater(sky[2], water[2])


class Help(unittest.TestCase):
    def test_cli_help_names_every_argument_and_exit_code(self):
        work = tempfile.mkdtemp(prefix="qlex-help-")
        try:
            done = subprocess.run([os.path.join(STAGE, "qlex-cli"), "--workdir", work, "--steps", "3", "--help"],
                                  capture_output=True, text=True)
            # Help is all that happens: no log, no steps.
            self.assertEqual(os.listdir(work), [])
        finally:
            shutil.rmtree(work)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        lines = done.stdout.splitlines()
        # Every argument the program tells apart has a line of its own.
        with open(os.path.join(SOURCE, "src", "cli", "Main.cpp")) as f:
            handled = set(re.findall(r'\barg == "(-[^"]*)"', f.read()))
        self.assertTrue({"--workdir", "--exec", "--load", "--steps", "--help"} <= handled, handled)
        for argument in handled:
            self.assertEqual(len([l for l in lines if re.match(r"\s+" + re.escape(argument) + r"[ ,]", l)
                                  or re.match(r"\s+\S+, " + re.escape(argument) + r" ", l)]), 1, argument)
        codes = lines[lines.index("Exit codes:") + 1:]
        self.assertEqual([l.split()[0] for l in codes], ["0", "1", "2", "3"])

    def test_help_as_the_text_of_another_argument_is_no_help(self):
        work = tempfile.mkdtemp(prefix="qlex-help-")
        try:
            done = subprocess.run([os.path.join(STAGE, "qlex-cli"), "--workdir", work, "-e", "--help"],
                                  capture_output=True, text=True)
        finally:
            shutil.rmtree(work)
        self.assertNotIn("Usage:", done.stdout)


if __name__ == "__main__":
    SOURCE, STAGE = sys.argv[1], sys.argv[2]
    unittest.main(argv=sys.argv[:1], verbosity=2)
