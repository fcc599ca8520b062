# Run under a virtual display as:
#   blender --factory-startup --python dialog_screenshot.py -- ADDON_DIR CLI MAKE_SAMPLE_GAME SEARCH OUT.png
# Opens the import dialog on a sample game with SEARCH in its search field, saves a screenshot of
# the window to OUT.png and quits, with 1 when no screenshot was written. A Python error in the
# dialog only prints its traceback, so the test fails on that text.
import os
import subprocess
import sys
import tempfile

import bpy

addon_dir, cli_path, make_sample_game, search, out = sys.argv[sys.argv.index("--") + 1:]
sample = os.path.join(tempfile.mkdtemp(prefix="tarnwick-dialog-"), "sample")
subprocess.run([make_sample_game, sample], check=True, stdout=subprocess.DEVNULL)
os.makedirs(os.path.dirname(os.path.abspath(out)), exist_ok=True)
sys.path.insert(0, addon_dir)
import tarnwick_import  # noqa: E402

os.environ["TARNWICK_CLI"] = cli_path
tarnwick_import.register()


def window_context():
    window = bpy.context.window_manager.windows[0]
    area = max(window.screen.areas, key=lambda a: a.width * a.height)
    return {"window": window, "screen": window.screen, "area": area,
            "region": next(r for r in area.regions if r.type == 'WINDOW')}


def open_dialog():
    with bpy.context.temp_override(**window_context()):
        bpy.ops.import_scene.tarnwick_actor('INVOKE_DEFAULT', data_dir=os.path.join(sample, "data"), search=search)


def shoot():
    with bpy.context.temp_override(**window_context()):
        bpy.ops.screen.screenshot(filepath=out)
    os._exit(0 if os.path.isfile(out) else 1)


bpy.app.timers.register(open_dialog, first_interval=1.0)
bpy.app.timers.register(shoot, first_interval=3.0)
