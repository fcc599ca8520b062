"""Imports the actors of installed games into Blender, converted by Tarnwick's tarnwick-cli."""

bl_info = {
    "name": "Tarnwick game actor import",
    "author": "Tarnwick Developers",
    "version": (0, 1, 0),
    "blender": (3, 4, 0),
    "location": "File > Import > Game actor (Tarnwick)",
    "description": "Import the actors of installed games, with rig, meshes and textures, through tarnwick-cli",
    "category": "Import-Export",
}

if "bpy" in locals():
    # Reloading scripts (F3 > Reload Scripts) reloads the modules too, in the order they depend.
    import importlib
    for module in (cli, preferences, actor_list, scene_import, operator):  # noqa: F821
        importlib.reload(module)

import bpy

from . import actor_list, cli, operator, preferences, scene_import

classes = (preferences.TarnwickImportPreferences,) + actor_list.classes + (operator.TARNWICK_OT_import_actor,)


def register():
    for cls in classes:
        bpy.utils.register_class(cls)
    bpy.types.TOPBAR_MT_file_import.append(operator.menu_entry)


def unregister():
    bpy.types.TOPBAR_MT_file_import.remove(operator.menu_entry)
    for cls in reversed(classes):
        bpy.utils.unregister_class(cls)
