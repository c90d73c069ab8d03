#!/usr/bin/env python3
"""Runs qlex-cli on one case and compares what it prints with what the case expects.

A case NAME in the cases folder has:
  NAME.in    standard input (optional)
  NAME.args  the arguments, one per line (optional; default "-": read standard input)
  NAME.out   the exact standard output expected
  NAME.err   lines that must each appear somewhere in standard error (optional)
  NAME.code  the expected exit code (optional; default 0)
  NAME.given.FILE   copied to scenes/FILE of the work directory before the run (optional, any number)
  NAME.expect.FILE  the exact content that scenes/FILE must have after the run (optional, any number)
  NAME.near.FILE    the same, but numbers may differ by 1e-6 (relative above 1): for values that are
                    recomputed on every load, such as angles and polygon centres
Each case runs in a fresh work directory, given with --workdir.
"""
import difflib
import os
import re
import shutil
import subprocess
import sys


def read(path, default=None):
    if not os.path.exists(path):
        return default
    with open(path, "rb") as f:
        return f.read()


NUMBER = re.compile(rb"[-+]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][-+]?[0-9]+)?")


def near(expected, actual, tolerance=1e-6):
    """Equal texts up to numbers that differ by at most the tolerance."""
    if actual is None:
        return False
    if NUMBER.sub(b"#", expected) != NUMBER.sub(b"#", actual):
        return False
    for a, b in zip(NUMBER.findall(expected), NUMBER.findall(actual)):
        x, y = float(a), float(b)
        if abs(x - y) > tolerance * max(1.0, abs(x), abs(y)):
            return False
    return True


def main():
    cli, cases, name, work = sys.argv[1:5]
    base = os.path.join(cases, name)
    shutil.rmtree(work, ignore_errors=True)
    os.makedirs(work)

    args_text = read(base + ".args")
    args = args_text.decode().splitlines() if args_text is not None else ["-"]
    stdin = read(base + ".in", b"")
    expected_out = read(base + ".out", b"")
    expected_code = int(read(base + ".code", b"0").decode().strip())

    scenes = os.path.join(work, "scenes")
    os.makedirs(scenes)
    expected_files = {}
    for entry in sorted(os.listdir(cases)):
        for kind in ("given", "expect", "near"):
            prefix = "%s.%s." % (name, kind)
            if entry.startswith(prefix):
                if kind == "given":
                    shutil.copyfile(os.path.join(cases, entry), os.path.join(scenes, entry[len(prefix):]))
                else:
                    expected_files[entry[len(prefix):]] = (kind, read(os.path.join(cases, entry)))

    run = subprocess.run([cli, "--workdir", work] + args, input=stdin, capture_output=True, timeout=120)
    ok = True
    if run.stdout != expected_out:
        ok = False
        print("Standard output differs from %s.out:" % name)
        diff = difflib.unified_diff(expected_out.decode(errors="replace").splitlines(True),
                                    run.stdout.decode(errors="replace").splitlines(True),
                                    "expected", "actual")
        sys.stdout.writelines(diff)
    if run.returncode != expected_code:
        ok = False
        print("Exit code %d, expected %d" % (run.returncode, expected_code))
    for file_name, (kind, expected) in expected_files.items():
        actual = read(os.path.join(scenes, file_name))
        if not (actual == expected if kind == "expect" else near(expected, actual)):
            ok = False
            print("scenes/%s differs from %s.%s.%s:" % (file_name, name, kind, file_name))
            diff = difflib.unified_diff(expected.decode(errors="replace").splitlines(True),
                                        (actual or b"").decode(errors="replace").splitlines(True),
                                        "expected", "actual")
            sys.stdout.writelines(diff)
    err = run.stderr.decode(errors="replace")
    for line in read(base + ".err", b"").decode().splitlines():
        if line and line not in err:
            ok = False
            print("Standard error lacks: %r" % line)
    if not ok:
        print("--- standard error ---")
        print(err[-4000:])
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main())
