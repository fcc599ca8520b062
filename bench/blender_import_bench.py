# The time from the import operator's start to the actor in the scene, for the stress game's large
# actor, run by hand as:
#   blender -b --factory-startup --python bench/blender_import_bench.py -- blender CLI MAKE_SAMPLE_GAME [FORMAT]
import os
import shutil
import subprocess
import sys
import tempfile
import time

import bpy

addon_dir, cli_path, make_sample_game = sys.argv[sys.argv.index("--") + 1:][:3]
file_format = (sys.argv[sys.argv.index("--") + 1:][3:] or ["GLB"])[0]
sys.path.insert(0, addon_dir)
import tarnwick_import  # noqa: E402

os.environ["TARNWICK_CLI"] = cli_path
work = tempfile.mkdtemp(prefix="tarnwick-bench-")
game = os.path.join(work, "stress")
subprocess.run([make_sample_game, "--stress", game], check=True, stdout=subprocess.DEVNULL)

bpy.ops.wm.read_factory_settings(use_empty=True)
tarnwick_import.register()
start = time.perf_counter()
result = bpy.ops.import_scene.tarnwick_actor(game_dir=os.path.join(game, "game"), actors="actors\\large\\giant_00.adr",
                                             format=file_format, textures=True)
seconds = time.perf_counter() - start
objects = bpy.data.collections["giant_00"].all_objects
print(f"BENCH {file_format} {result} {seconds:.3f} s: {sum(len(o.data.vertices) for o in objects if o.type == 'MESH')} "
      f"vertices, {sum(len(o.data.bones) for o in objects if o.type == 'ARMATURE')} bones, "
      f"{len([o for o in objects if o.type == 'MESH'])} meshes", flush=True)
shutil.rmtree(work, ignore_errors=True)
