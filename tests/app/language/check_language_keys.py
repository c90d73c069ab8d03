#!/usr/bin/env python3
"""Fails when a language key that the program asks for is missing from English.cfg, or when another
language file lacks a key of English or has one that English lacks.

Usage: check_language_keys.py SOURCE_DIR

Keys in the sources: a literal handed to the language table (Get, Has) or to the toolkit's text lookup
(GetText, HasText), and every literal that names an undo step ("Undo" and a capital). Keys put together at
run time are listed below.
"""

import os
import re
import sys

# The names of objects: "Type_" and the type, with "_plural" for several.
ENTITY_TYPES = ("Box", "Circle", "Polygon", "Plane", "Geom", "FixJoint", "Hinge", "Spring", "Pen", "Entity")
COMPOSED_KEYS = ["Type_" + t for t in ENTITY_TYPES] + ["Type_" + t + "_plural" for t in ENTITY_TYPES]

KEY_ARGUMENT = r'\(\s*"([A-Za-z][A-Za-z0-9_]*)"\s*\)'
LOOKUP = re.compile(r'(?:Language::GetInstancePtr\(\)->(?:Get|Has)|\b(?:GetText|HasText))' + KEY_ARGUMENT)
# Inside the table itself a plain Get is a lookup.
OWN_LOOKUP = re.compile(r'\b(?:Get|Has)' + KEY_ARGUMENT)
UNDO_NAME = re.compile(r'"(Undo[A-Z][A-Za-z0-9]*)"')
ASSIGNMENT = re.compile(r'^\s*([A-Za-z_][A-Za-z0-9_]*)\s*=', re.M)


def keys_in_sources(source_dir):
    keys = {}
    for root, _, files in os.walk(os.path.join(source_dir, "src")):
        for leaf in files:
            if not leaf.endswith((".cpp", ".h")):
                continue
            path = os.path.join(root, leaf)
            with open(path, encoding="utf-8", errors="replace") as f:
                text = f.read()
            found = LOOKUP.findall(text) + UNDO_NAME.findall(text)
            if leaf == "Language.cpp":
                found += OWN_LOOKUP.findall(text)
            for key in found:
                keys.setdefault(key, os.path.relpath(path, source_dir))
    for key in COMPOSED_KEYS:
        keys.setdefault(key, "composed at run time")
    return keys


def keys_in_file(path):
    # Our language files are Latin-1, as the program's font is.
    with open(path, encoding="latin-1") as f:
        text = re.sub(r"//[^\n]*", "", f.read())
    return set(ASSIGNMENT.findall(text))


def main(argv):
    if len(argv) != 2:
        print(__doc__)
        return 2
    source_dir = argv[1]
    language_dir = os.path.join(source_dir, "data", "language")
    english = keys_in_file(os.path.join(language_dir, "English.cfg"))
    asked = keys_in_sources(source_dir)
    failures = []
    # The lookups of the toolkit, of undo names and of group names at least must be seen, or the patterns
    # above have stopped matching the sources.
    for known in ("Slider_Tooltip", "LabeledSlider_Tooltip", "UndoSliderChange", "EmptyGroup", "AboutText"):
        if known not in asked:
            failures.append("the sources no longer show the key %s: update this check" % known)
    for key, where in sorted(asked.items()):
        if key not in english:
            failures.append("%s (asked for in %s) is missing from English.cfg" % (key, where))
    others = [leaf for leaf in sorted(os.listdir(language_dir)) if leaf.endswith(".cfg") and leaf != "English.cfg"]
    for leaf in others:
        keys = keys_in_file(os.path.join(language_dir, leaf))
        failures += ["%s lacks %s" % (leaf, key) for key in sorted(english - keys)]
        failures += ["%s has %s, which English.cfg lacks" % (leaf, key) for key in sorted(keys - english)]
    for failure in failures:
        print(failure)
    print("%d keys asked for, %d in English.cfg, %d other languages" % (len(asked), len(english), len(others)))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
