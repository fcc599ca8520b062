# Run under a virtual display as:
#   blender --factory-startup --python dialog_test.py -- ADDON_DIR CLI MAKE_SAMPLE_GAME OUT.png
# Opens the import dialog on a sample game with "knight" in its search field and saves a screenshot
# of the window to OUT.png. Then works the open dialog as its fields would (search, check boxes) and
# runs its import. A Python error while the dialog draws only prints its traceback, so the test also
# fails on that text.
import os
import shutil
import subprocess
import sys
import tempfile

import addon_utils
import bpy

addon_dir, cli_path, make_sample_game, out = sys.argv[sys.argv.index("--") + 1:]
work = tempfile.mkdtemp(prefix="tarnwick-dialog-")
sample = os.path.join(work, "sample")
subprocess.run([make_sample_game, sample], check=True, stdout=subprocess.DEVNULL)
os.makedirs(os.path.dirname(os.path.abspath(out)), exist_ok=True)
sys.path.insert(0, addon_dir)
addon_utils.enable("tarnwick_import", default_set=True, handle_error=None)
from tarnwick_import import operator  # noqa: E402

os.environ["TARNWICK_CLI"] = cli_path
failures = []

# The open dialog's operator, as the add-on hands it to its search.
dialogs = []
_apply_search = operator.apply_search


def _spy(props):
    dialogs.append(props)
    return _apply_search(props)


operator.apply_search = _spy


def expect(condition, what):
    if not condition:
        failures.append(what)
        print("FAILED:", what, flush=True)


def window_context():
    window = bpy.context.window_manager.windows[0]
    area = max(window.screen.areas, key=lambda a: a.width * a.height)
    return {"window": window, "screen": window.screen, "area": area,
            "region": next(r for r in area.regions if r.type == 'WINDOW')}


def open_dialog():
    with bpy.context.temp_override(**window_context()):
        bpy.ops.import_scene.tarnwick_actor('INVOKE_DEFAULT', data_dir=os.path.join(sample, "data"), search="knight")


def shown(dialog):
    return [row.name for row in dialog.rows if row.shown]


def shoot_and_work_it():
    with bpy.context.temp_override(**window_context()):
        bpy.ops.screen.screenshot(filepath=out)
    expect(os.path.isfile(out), "a screenshot")
    if not dialogs:
        expect(False, "the dialog opened")
        os._exit(1)
    dialog = dialogs[-1]
    expect((dialog.game, len(dialog.rows), dialog.message) == ("Aldermoor", 10, ""),
           f"the game's actors: {dialog.game}, {len(dialog.rows)} rows, {dialog.message!r}")
    expect(shown(dialog) == ["actors\\knight.adr", "actors\\knight_red.adr"], f"knight shows {shown(dialog)}")
    dialog.rows[dialog.rows.find("actors\\knight_red.adr")].checked = True
    dialog.search = "w?l"  # anywhere in the name, as the window's search box
    expect(shown(dialog) == ["actors\\wolf.adr"], f"w?l shows {shown(dialog)}")
    dialog.all_shown = True
    dialog.format = 'FBX'
    result = dialog.execute(bpy.context)
    expect(result == {'FINISHED'}, f"the import: {result}")
    expect(sorted(c.name for c in bpy.data.collections if c.name != "Collection") == ["knight_red", "wolf"],
           f"the checked actors, also those the search hides: {[c.name for c in bpy.data.collections]}")
    prefs = bpy.context.preferences.addons["tarnwick_import"].preferences
    expect((prefs.data_dir, prefs.game) == (os.path.join(sample, "data"), "Aldermoor"),
           f"the dialog's choices remembered: {prefs.data_dir}, {prefs.game}")
    shutil.rmtree(work, ignore_errors=True)
    print(f"{len(failures)} failed", flush=True)
    os._exit(1 if failures else 0)


bpy.app.timers.register(open_dialog, first_interval=1.0)
bpy.app.timers.register(shoot_and_work_it, first_interval=3.0)
