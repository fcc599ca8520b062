# The import operator where something goes wrong: each case is reported with the cause in words,
# what could be imported is, and no exception leaves the operator (a script sees the result, or
# Blender's RuntimeError for an error report, never a traceback).
import os
import sys

import bpy

sys.path.insert(0, os.path.dirname(__file__))
from harness import cli_path, empty_scene, expect, finish, import_actors, reports, sample_data, scratch, work  # noqa: E402

nowhere = os.path.join(work, "nowhere")
empty = os.path.join(work, "empty")
os.makedirs(empty)
GOOD = "actors\\knight.adr;actors\\scarecrow.adr;actors\\wolf.adr"

# name, environment, operator options, result, collections made, report lines that must appear
cases = [
    ("no program at the path given", {"TARNWICK_CLI": os.path.join(nowhere, "tarnwick-cli")},
     dict(data_dir=sample_data, actors="actors\\knight.adr"),
     f"Error: tarnwick-cli not found at {nowhere}/tarnwick-cli (set in $TARNWICK_CLI)\n", [], []),
    ("no program on PATH", {"TARNWICK_CLI": None, "PATH": empty}, dict(data_dir=sample_data, actors="actors\\knight.adr"),
     "Error: tarnwick-cli not found on PATH: install Tarnwick, or set the program's path in the preferences of "
     "the Tarnwick import add-on\n", [], []),
    ("the program on PATH", {"TARNWICK_CLI": None, "PATH": os.path.dirname(cli_path)},
     dict(data_dir=sample_data, actors="actors\\knight.adr"), {'FINISHED'}, ["knight"], []),
    # Discovery also looks in ~/.wine and Steam's folders: home is an empty folder here.
    ("no game in an empty per-user folder", {"HOME": empty, "WINEPREFIX": None, "XDG_DATA_HOME": None},
     dict(data_dir=empty, actors="*"), "Error: tarnwick-cli: no installed game was found\n", [], []),
    ("an actor that needs a rig among good ones", {}, dict(data_dir=sample_data, actors=GOOD), {'FINISHED'},
     ["knight", "wolf"],
     ["Warning: actors\\scarecrow.adr: skipped: several rigs fit (Idle, ChildIdle); choose one with --rig NAME",
      "Info: actors\\knight.adr: imported into collection knight",
      "Info: actors\\wolf.adr: imported into collection wolf",
      "Warning: Imported 2 of 3 actors"]),
    ("the same with its rig chosen", {}, dict(data_dir=sample_data, actors=GOOD, rig="Idle"), {'FINISHED'},
     ["knight", "scarecrow", "wolf"], ["Info: Imported 3 of 3 actors"]),
    ("a pattern that matches nothing beside one that does", {},
     dict(data_dir=sample_data, actors="actors\\wolf.adr;actors\\nobody*"), {'FINISHED'}, ["wolf"],
     ['Warning: tarnwick-cli: no actor matches "actors\\nobody*"', "Info: Imported 1 of 1 actors"]),
    ("only actors that are skipped", {}, dict(data_dir=sample_data, actors="actors\\scarecrow.adr"), {'CANCELLED'},
     [], ["Warning: Imported 0 of 1 actors"]),
    ("no actor given at all", {}, dict(data_dir=sample_data, actors=";"), "Error: Choose at least one actor to import\n",
     [], []),
]

for name, environment, options, want, collections, lines in cases:
    empty_scene()
    saved = {key: os.environ.get(key) for key in environment}
    for key, value in environment.items():
        os.environ.pop(key, None) if value is None else os.environ.__setitem__(key, value)
    try:
        result = import_actors(**options)
    finally:
        for key, value in saved.items():
            os.environ.pop(key, None) if value is None else os.environ.__setitem__(key, value)
    expect(result == want, f"{name}: {result!r} != {want!r}")
    expect(sorted(c.name for c in bpy.data.collections) == collections,
           f"{name}: collections {[c.name for c in bpy.data.collections]}")
    for line in lines:
        expect(line in reports, f"{name}: no report {line!r} in {reports}")
    expect(os.listdir(scratch) == [], f"{name}: temporary folder left: {os.listdir(scratch)}")

finish()
