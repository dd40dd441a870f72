#!/usr/bin/env python3
"""Static analysis of all files that ship; it must find nothing.

  scripts/analyse.py TREE    TREE: a build tree that is configured for clang

First every file is read by itself: it includes what it uses, and all paths through its functions are followed. The other
checks then read the files of a folder that are compiled alike as one, since nearly all of their time goes into the
headers of others. Files that define the same name and so cannot be read as one are read apart.
"""

import concurrent.futures
import json
import os
import pathlib
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SHIPPED = ("apps", "companions", "service", "src")
LARGEST_UNIT = 40  # files; with more of them, one core has nothing to do at the end
PATHS = "-*,clang-analyzer-*,-clang-analyzer-optin.*"  # follows no path through what a file includes
OTHERS = "-clang-analyzer-*"


def shipped_commands(tree):
    """The command of each file that ships, once, although some go into several targets."""
    commands = {}
    for entry in json.loads((tree / "compile_commands.json").read_text(encoding="utf-8")):
        source = pathlib.Path(entry["file"])
        if source.is_relative_to(ROOT) and source.relative_to(ROOT).parts[0] in SHIPPED:
            commands.setdefault(source, entry)
    return commands


def options_of(entry):
    """How a file is compiled: the command without the names of the file and its object."""
    words = shlex.split(entry["command"])
    output = words.index("-o")
    return tuple(word for word in words[:output] + words[output + 2:] if word not in ("-c", entry["file"]))


def found_in(source, folder, checks):
    """What clang-tidy says of a source with checks besides those of .clang-tidy; nothing when it finds nothing."""
    run = subprocess.run(["clang-tidy-14", "-quiet", "-p", str(folder), f"--config-file={ROOT}/.clang-tidy",
                          f"--checks={checks}", str(source)], capture_output=True, text=True, check=False)
    return "" if run.returncode == 0 else run.stdout or run.stderr


class Units:
    """Analyses files together; their units and the commands of these lie in a folder of the build tree."""

    def __init__(self, folder, commands):
        self.folder = folder
        self.folder.mkdir(exist_ok=True)
        self.alike = {}
        for source, entry in sorted(commands.items()):
            self.alike.setdefault((source.parent, options_of(entry), entry["directory"]), []).append(source)

    def lists(self):
        """Lists of files that may be read as one, the longest first."""
        lists = []
        for (_, options, directory), files in self.alike.items():
            count = -(-len(files) // LARGEST_UNIT)
            lists += [(files[part::count], options, directory) for part in range(count)]
        return sorted(lists, key=lambda unit: len(unit[0]), reverse=True)

    def analyse(self, files, options, directory):
        name = "-".join(files[0].relative_to(ROOT).with_suffix("").parts) + f"-{len(files)}"
        folder = self.folder / name
        folder.mkdir(exist_ok=True)
        unit = folder / "unit.cpp"
        unit.write_text("".join(f'#include "{file}" // NOLINT\n' for file in files), encoding="utf-8")
        entry = {"directory": directory, "file": str(unit), "arguments": [*options, "-c", str(unit)]}
        (folder / "compile_commands.json").write_text(json.dumps([entry]), encoding="utf-8")
        found = found_in(unit, folder, OTHERS)
        if "clang-diagnostic-error" not in found or len(files) == 1:
            return found
        return "".join(self.analyse(half, options, directory) for half in (files[::2], files[1::2]))


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    tree = pathlib.Path(sys.argv[1]).resolve()
    commands = shipped_commands(tree)
    with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        found = [*filter(None, pool.map(lambda source: found_in(source, tree, PATHS), commands))]
        if not found:
            units = Units(tree / "units", commands)
            found = [*filter(None, pool.map(lambda unit: units.analyse(*unit), units.lists()))]
    print(*found, sep="\n", end="")
    if found:
        sys.exit(1)
    print(f"analysis: nothing found in {len(commands)} files")


main()
