#!/usr/bin/env python3
"""The same scene gives the same bytes: each sample scene (and a scene whose shapes take random colours and
whose water jitters) is loaded with a fixed seed, run 1,000 steps and saved, and the SHA-256 of the saved
text must be the one held in hashes.txt. Each runs in a process of its own, twice; then all of them run in
one process, one after another, where only the ids that count up over a process may differ.

A change that alters how a scene moves or is saved changes these hashes: rerun with --update, look at why
they changed, and commit the new hashes on purpose.

usage: check_saves.py QLEX_CLI SCENES_DIR WORK_DIR [--update]
"""
import hashlib
import os
import re
import shutil
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
HASHES = os.path.join(HERE, "hashes.txt")
SEED = "20261124"
STEPS = "1000"
SAMPLES = ["welcome", "chain_bridge", "waterfall", "cradle", "seesaw"]
# Ids count up over a process: the second scene of a run starts where the first left off.
IDS = re.compile(rb"\b(geomID|entityID|geom0|geom1|body|chain) = [0-9]+|entityIDs = \[[0-9, ]*\]")


def scene_args(path, out):
    return ["--seed", SEED, "--load", path, "-e", "Sim.running = true", "--steps", STEPS, "--save", out]


def run(cli, work, args):
    result = subprocess.run([cli, "--workdir", work] + args, capture_output=True, timeout=600)
    if result.returncode != 0:
        sys.stderr.write(result.stderr.decode(errors="replace")[-3000:])
        raise SystemExit("qlex-cli exited with %d" % result.returncode)


def digest(path):
    with open(path, "rb") as f:
        return hashlib.sha256(f.read()).hexdigest()


def main():
    cli, scenes, work = sys.argv[1:4]
    update = "--update" in sys.argv[4:]
    shutil.rmtree(work, ignore_errors=True)
    os.makedirs(work)
    # Shapes without a colour take one at random, and jittering water draws a force for every particle.
    random_scene = os.path.join(work, "random.qlx")
    with open(random_scene, "w") as f:
        # A title of its own: without one the scene is named after its path.
        f.write("FileInfo.title = \"Random\";\n"
                "Scene.addPlane {normal = [0.0, 1.0]; dist = 0.0};\n"
                "Scene.addBox {pos = [0.0, 2.0]; size = [1.0, 1.0]};\n"
                "Scene.addCircle {pos = [1.5, 3.0]; radius = 0.5};\n"
                "Scene.addWater {vecs = [[-1.0, 1.0], [-1.05, 1.0], [-1.0, 1.05], [-1.05, 1.05]]};\n"
                "SPH.jitter = 0.5\n")
    names = SAMPLES + ["random"]
    paths = [os.path.join(scenes, n + ".qlx") for n in SAMPLES] + [random_scene]

    found = {}
    for name, path in zip(names, paths):
        for attempt in range(2):
            out = "%s_%d.qlx" % (name, attempt)
            run(cli, work, scene_args(path, out))
            found.setdefault(name, []).append(digest(os.path.join(work, "scenes", out)))

    if update:
        with open(HASHES, "w") as f:
            for name in names:
                f.write("%s %s\n" % (found[name][0], name))
        print("hashes.txt updated")
        return 0

    held = {}
    with open(HASHES) as f:
        for line in f:
            value, name = line.split()
            held[name] = value
    failures = 0
    for name in names:
        for attempt, value in enumerate(found[name]):
            if value != held.get(name):
                failures += 1
                print("%s, process %d: saved text hashes to %s, not %s" % (name, attempt + 1, value, held.get(name)))

    # All of them in one process: the same text but for the ids.
    args = []
    for name, path in zip(names, paths):
        args += scene_args(path, name + "_together.qlx")
    run(cli, work, args)
    for name in names:
        with open(os.path.join(work, "scenes", name + "_0.qlx"), "rb") as f:
            alone = IDS.sub(b"id", f.read())
        with open(os.path.join(work, "scenes", name + "_together.qlx"), "rb") as f:
            together = IDS.sub(b"id", f.read())
        if alone != together:
            failures += 1
            print("%s: the text saved in one process with the others differs from its own" % name)

    print("%d passed, %d failed" % (len(names) * 3 - failures, failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
