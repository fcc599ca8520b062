# What the add-on's Blender tests share. Each runs as
#   blender -b --factory-startup --python-exit-code 1 --python TEST.py -- ADDON_DIR CLI MAKE_SAMPLE_GAME
# and exits 1 after listing every failed expectation.
import ctypes
import os
import shutil
import subprocess
import sys
import tempfile

import addon_utils
import bpy

addon_dir, cli_path, make_sample_game = sys.argv[sys.argv.index("--") + 1:][:3]
sys.path.insert(0, addon_dir)
addon_utils.enable("tarnwick_import", default_set=True, handle_error=None)

os.environ["TARNWICK_CLI"] = cli_path
work = tempfile.mkdtemp(prefix="tarnwick-blender-test-")
sample = os.path.join(work, "sample")
subprocess.run([make_sample_game, sample], check=True, stdout=subprocess.DEVNULL)
sample_data = os.path.join(sample, "data")
# The add-on's temporary folders go here, so a test sees whether they are gone.
scratch = os.path.join(work, "scratch")
os.makedirs(scratch)
tempfile.tempdir = scratch

failures = []
# The operator's reports as Blender prints them without a window: "Info: ...", "Warning: ...".
reports = []
_libc = ctypes.CDLL(None)

def expect(condition, what):
    if not condition:
        failures.append(what)
        print("FAILED:", what, flush=True)
    return condition


def empty_scene():
    for kind in ("objects", "collections", "meshes", "armatures", "materials", "images"):
        bpy.data.batch_remove(list(getattr(bpy.data, kind)))
    reports.clear()


def import_actors(**options):
    """Runs the operator as a script does: its result, or the text of the error it reported. The
    lines it printed go to `reports`."""
    sys.stdout.flush()
    _libc.fflush(None)
    saved = os.dup(1)
    with tempfile.TemporaryFile(dir=work) as printed:
        os.dup2(printed.fileno(), 1)
        try:
            result = bpy.ops.import_scene.tarnwick_actor(**options)
        except RuntimeError as error:
            result = str(error)
        finally:
            _libc.fflush(None)
            os.dup2(saved, 1)
            os.close(saved)
        printed.seek(0)
        reports[:] = [line for line in printed.read().decode(errors="replace").splitlines()
                      if line.startswith(("Info: ", "Warning: ", "Error: "))]
    return result


def finish():
    shutil.rmtree(work, ignore_errors=True)
    print(f"{len(failures)} failed", flush=True)
    sys.exit(1 if failures else 0)
