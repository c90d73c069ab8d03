#!/usr/bin/env python3
"""Fails when a texture the program asks for is missing from the staged data folder.

Usage: check_texture_names.py SOURCE_DIR STAGE_DIR

The names come from the sources: literal names handed to the texture manager, names under the cursor
folder, and every literal that names a picture of the icon folders ("tools/...", "popup/...", "file/...",
"gui/...", "cursors/..."). Names put together at run time (a tool's icon, a cursor of the scale tool, a
language's flag) are listed below. A name resolves as the program resolves it: with its own extension if it
has one, otherwise with the first of png, tga, bmp, jpg that exists, under data/textures/.
"""

import os
import re
import sys

EXTENSIONS = ("png", "tga", "bmp", "jpg")
ICON_FOLDERS = ("tools/", "popup/", "file/", "gui/", "cursors/")

# Made at run time from parts: "tools/" and the icon of each tool; "cursors/" and a tool's cursor name;
# "cursors/arrow_" and the name of a scale ring; the pictures that the world's tools and entities tint.
COMPOSED_NAMES = (
    ["tools/" + n for n in ("scale", "drag", "pen", "hinge", "fixjoint", "spring", "chain", "plane", "circle",
                            "box", "brush", "sketch", "navigator", "zoom", "play", "pause", "backward",
                            "forward")]
    + ["cursors/" + n for n in ("mouse", "drag", "move", "pan", "clone", "arrow_north-west",
                                "arrow_north-south", "arrow_north-east", "arrow_west-east")]
    + ["ring", "pen", "arrow", "rotate_origo.png", "rightarrow", "blank", "simpleWater"]
    + ["gui/" + n for n in ("checkbox-off.tga", "checkbox-on.tga", "checkbox-unknown.tga", "radio-off.tga",
                            "radio-on.tga", "minimize", "close")]
    + ["popup/" + n for n in ("erase", "clone", "mirror", "save", "color", "glue", "loosen", "liquify", "hinge",
                              "2circle", "info", "hingemenu", "penmenu", "springmenu")]
    + ["file/" + n for n in ("save", "open", "clear", "new", "erasewater", "zoom2scene", "center", "info",
                             "fullscreen", "exit")]
)

# A load with a texture format: the texture manager's, whatever the variable that holds it is called.
LOAD_LITERAL = re.compile(r'(?:\.|->)Load\(\s*"([^"]+)"\s*,[^;]*?ImageType', re.S)
CURSOR_LITERAL = re.compile(r'CursorDir\(\)\s*\+\s*"([^"]+)"')
STRING_LITERAL = re.compile(r'"((?:tools|popup|file|gui|cursors)/[A-Za-z0-9_.\-]+)"')


def names_in_sources(source_dir):
    names = set()
    for root, _, files in os.walk(os.path.join(source_dir, "src")):
        for leaf in files:
            if not leaf.endswith((".cpp", ".h")):
                continue
            with open(os.path.join(root, leaf), encoding="utf-8", errors="replace") as f:
                # Include paths look like icon names ("gui/GUI.h").
                text = "\n".join(line for line in f if not line.lstrip().startswith("#include"))
            names.update(LOAD_LITERAL.findall(text))
            names.update("cursors/" + n for n in CURSOR_LITERAL.findall(text))
            names.update(n for n in STRING_LITERAL.findall(text) if not n.endswith("/"))
    return names


def is_image(path):
    with open(path, "rb") as f:
        head = f.read(18)
    if path.endswith(".png"):
        return head.startswith(b"\x89PNG\r\n\x1a\n")
    if path.endswith(".tga"):
        # Uncompressed or run-length true colour, with a size.
        return len(head) == 18 and head[2] in (2, 10) and head[12:16] != b"\0\0\0\0"
    return len(head) > 0


def resolve(texture_dir, name):
    base = os.path.join(texture_dir, name)
    if re.search(r"\.[A-Za-z]{3}$", name):
        return base if os.path.isfile(base) else None
    for extension in EXTENSIONS:
        if os.path.isfile(base + "." + extension):
            return base + "." + extension
    return None


def main(argv):
    if len(argv) != 3:
        sys.stderr.write(__doc__)
        return 2
    source_dir, stage_dir = argv[1], argv[2]
    texture_dir = os.path.join(stage_dir, "data", "textures")
    found = names_in_sources(source_dir)
    # The scan must see what the sources are known to ask for, or it proves nothing.
    for known in ("simpleWater", "blank", "cursors/mouse"):
        if known not in found:
            print("the scan of the sources missed %r" % known)
            return 1
    problems = []
    for name in sorted(found | set(COMPOSED_NAMES)):
        path = resolve(texture_dir, name)
        if path is None:
            problems.append("missing: %s" % name)
        elif not is_image(path):
            problems.append("not an image: %s" % path)
    flags = [f for f in os.listdir(os.path.join(stage_dir, "data", "language"))
             if f.endswith(".png")] if os.path.isdir(os.path.join(stage_dir, "data", "language")) else []
    if not flags:
        problems.append("missing: a language flag in data/language")
    for problem in problems:
        print(problem)
    print("%d texture names checked" % len(found | set(COMPOSED_NAMES)))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
