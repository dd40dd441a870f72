#!/usr/bin/env python3
"""Checks that dependencies between folders point one way, as scripts/layers.txt says; builds nothing.

  scripts/check-layers.py [--edges]    --edges: prints which folder includes which, and how often

Fails when a folder includes one that is not allowed to it, when what is allowed goes round in a circle, when a folder
is not listed or a listed one is gone, and when a text stands elsewhere than where alone it may.
"""

import collections
import pathlib
import re
import subprocess
import sys

LAYERS = "scripts/layers.txt"
TREES = ("include", "src", "companions", "service", "apps")
# Where a quoted or an own header's name begins, beside the folder of the file that includes it.
ROOTS = ("include", "src", "service", "apps/*", "companions/*/include", "companions/*/src")


def read_layers(text):
    """The sections of the file: allowed includes by folder, and pairs of a pattern and its folders."""
    allowed, only, section = {}, [], None
    for line in text.splitlines():
        line = line.strip()
        if not line or line.startswith("# ") or line == "#":
            continue
        if line in ("[includes]", "[only]"):
            section = line
        elif section == "[includes]":
            folder, _, targets = line.partition(":")
            allowed[folder.strip()] = targets.split()
        elif section == "[only]":
            pattern, _, folders = line.partition(" => ")
            only.append((re.compile(pattern.strip()), folders.split()))
        else:
            sys.exit(f"{LAYERS}: a line before the first section: {line}")
    return allowed, only


def layer_of(path, allowed):
    """The listed folder or file that speaks for a path: the nearest one."""
    for candidate in (path, *path.parents):
        if str(candidate) in allowed:
            return str(candidate)
    return None


def included_file(name, includer, files, roots):
    """The file of ours that an include names, or None: a header of others, or a generated one."""
    own = [root for root in roots if root in includer.parents]
    for folder in (includer.parent, *own, *roots):
        if folder / name in files:
            return folder / name
    return None


def circle(graph):
    """A list of folders each of which leads to the next, and the last to the first; empty when there is none."""
    done, way = set(), []

    def visit(folder):
        if folder in way:
            return way[way.index(folder):]
        if folder in done:
            return []
        way.append(folder)
        for target in graph.get(folder, ()):
            found = visit(target)
            if found:
                return found
        way.pop()
        done.add(folder)
        return []

    for folder in graph:
        found = visit(folder)
        if found:
            return found
    return []


def main():
    if sys.argv[1:] not in ([], ["--edges"]):
        sys.exit(__doc__)
    allowed, only = read_layers(pathlib.Path(LAYERS).read_text(encoding="utf-8"))
    listing = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "--", *TREES],
                             check=True, capture_output=True, text=True).stdout
    files = {pathlib.PurePath(name) for name in listing.splitlines()
             if name.endswith((".h", ".cpp", ".cpp.in")) and pathlib.Path(name).is_file()}
    roots = [pathlib.PurePath(root) for pattern in ROOTS for root in sorted(pathlib.Path().glob(pattern))]
    problems, edges, seen = [], collections.Counter(), set()

    for path in sorted(files):
        layer = layer_of(path, allowed)
        if layer is None:
            problems.append(f"{path}: its folder is not listed")
            continue
        seen.add(layer)
        for number, line in enumerate(pathlib.Path(path).read_text(encoding="utf-8").splitlines(), 1):
            for pattern, folders in only:
                if layer not in folders and pattern.search(line):
                    problems.append(f"{path}:{number}: belongs into {' or '.join(folders)} alone: {line.strip()}")
            include = re.match(r'\s*#\s*include\s*["<]([^">]+)[">]', line)
            target = include and included_file(include[1], path, files, roots)
            if not target:
                continue
            target_layer = layer_of(target, allowed)
            if target_layer in (layer, None):
                continue
            edges[layer, target_layer] += 1
            if target_layer not in allowed[layer] and "*" not in allowed[layer]:
                problems.append(f"{path}:{number}: {layer} may not include {target_layer} ({include[1]})")

    for folder in (*allowed, *(folder for _, folders in only for folder in folders)):
        if folder not in seen:
            problems.append(f"{LAYERS}: {folder} is listed, and there is no file of it")
    graph = {folder: [target for target in targets if target != "*"] for folder, targets in allowed.items()}
    around = circle(graph)
    if around:
        problems.append(f"{LAYERS}: a circle is allowed: {' -> '.join([*around, around[0]])}")

    if sys.argv[1:]:
        for (layer, target), count in sorted(edges.items()):
            print(f"{count:4} {layer} -> {target}")
    for problem in problems:
        print(problem, file=sys.stderr)
    if problems:
        sys.exit(1)
    print(f"layers: {len(files)} files, {len(edges)} ways between {len(seen)} folders, all as {LAYERS} allows")


main()
