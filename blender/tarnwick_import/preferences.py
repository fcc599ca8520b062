"""The add-on's preferences: where tarnwick-cli is, and where the games were last looked for."""
import bpy
from bpy.props import StringProperty


class TarnwickImportPreferences(bpy.types.AddonPreferences):
    bl_idname = __package__

    cli_path: StringProperty(
        name="tarnwick-cli", subtype='FILE_PATH',
        description="The program that reads the games; empty: the tarnwick-cli on PATH")
    data_dir: StringProperty(
        name="Per-user folder", subtype='DIR_PATH',
        description="The folder that holds the games' digest files; empty: the usual one")
    prefixes: StringProperty(
        name="Wine prefixes",
        description="Wine prefixes to look in first, separated by ';'")
    game_dir: StringProperty(
        name="Game folder", subtype='DIR_PATH',
        description="An installation folder to open instead of the games found")
    game: StringProperty(name="Game", description="The game chosen last")

    def draw(self, context):
        layout = self.layout
        layout.prop(self, "cli_path")
        layout.prop(self, "data_dir")
        layout.prop(self, "prefixes")
        layout.prop(self, "game_dir")


class _Defaults:
    """What the preferences hold before the add-on is enabled through them (register() called by hand)."""
    cli_path = data_dir = prefixes = game_dir = game = ""


def get(context):
    addon = context.preferences.addons.get(__package__)
    return addon.preferences if addon else _Defaults()


def remember(context, data_dir, prefixes, game_dir, game):
    """Keeps the dialog's choices for the next time, saved with the preferences."""
    addon = context.preferences.addons.get(__package__)
    if not addon:
        return
    prefs = addon.preferences
    if (prefs.data_dir, prefs.prefixes, prefs.game_dir, prefs.game) == (data_dir, prefixes, game_dir, game):
        return
    prefs.data_dir, prefs.prefixes, prefs.game_dir, prefs.game = data_dir, prefixes, game_dir, game
    context.preferences.is_dirty = True
