"""File > Import > Game actor (Tarnwick): the dialog and the import it runs.

The dialog asks tarnwick-cli for the games and the chosen game's actors; the import converts every
chosen actor in one batch into a temporary folder, so the game opens once, then brings each file in
with Blender's own importer. From a script, `actors` names what to import and no dialog opens.
"""
import os
import shutil
import tempfile

import bpy
from bpy.props import BoolProperty, CollectionProperty, EnumProperty, IntProperty, StringProperty

from . import actor_list, cli, preferences, scene_import

# Blender keeps only pointers to the strings of a dynamic enum: they must outlive the callback.
_game_items = []
# Set while invoke fills the properties, so their update callbacks don't each ask the CLI again.
_filling = False
_NO_GAME = "NONE"
_FOLDER_GAME = "FOLDER"


def _path(text):
    return bpy.path.abspath(text) if text else ""


def _game_enum(self, context):
    return _game_items or [(_NO_GAME, "(no game)", "")]


# Update callbacks get the operator's properties, not the operator: what they do is written over
# those. They act only in the dialog; a script that sets a folder just runs the import.

def _source(props, with_game=True):
    return cli.source_arguments(_path(props.data_dir), [_path(p) for p in cli.split_list(props.prefixes)],
                                _path(props.game_dir), props.game if with_game else "")


def _cli_path():
    return cli.find_cli(_path(preferences.get(bpy.context).cli_path))


def load_games(props):
    """Asks for the games anew and opens the remembered one, else the first."""
    global _game_items
    props.message = ""
    props.rows.clear()
    try:
        program = _cli_path()
        found = [] if props.game_dir else cli.games(program, _source(props, with_game=False))
    except cli.CliError as error:
        _game_items = []
        _choose_quietly(props, _NO_GAME)
        props.message = error.message
        return
    if props.game_dir:
        folder = _path(props.game_dir)
        _game_items = [(_FOLDER_GAME, os.path.basename(os.path.normpath(folder)) or "Game folder", folder)]
        _choose_quietly(props, _FOLDER_GAME)
    elif not found:
        _game_items = []
        _choose_quietly(props, _NO_GAME)
        props.message = "No installed game was found: choose a game folder below"
        return
    else:
        _game_items = [(name, name, folder) for name, folder in found]
        names = [name for name, _ in found]
        props.game = props.game if props.game in names else names[0]
        _choose_quietly(props, props.game)
    load_actors(props)


def _choose_quietly(props, game):
    global _filling
    _filling = True
    try:
        props.game_choice = game
    finally:
        _filling = False


def load_actors(props):
    props.message = ""
    try:
        names = cli.actors(_cli_path(), _source(props))
    except cli.CliError as error:
        props.rows.clear()
        props.message = error.message
        return
    actor_list.fill(props.rows, names)
    apply_search(props)


def apply_search(props):
    if not props.search or not props.rows:
        actor_list.show_only(props.rows, None)
        return
    try:
        actor_list.show_only(props.rows, cli.actors(_cli_path(), _source(props), props.search))
    except cli.CliError as error:
        props.message = error.message


def _where_changed(props, context):
    if props.from_dialog and not _filling:
        load_games(props)


def _game_changed(props, context):
    if props.from_dialog and not _filling and props.game_choice not in (_NO_GAME, _FOLDER_GAME):
        props.game = props.game_choice
        load_actors(props)


def _search_changed(props, context):
    if props.from_dialog and not _filling:
        apply_search(props)


def _all_changed(props, context):
    actor_list.check_shown(props.rows, props.all_shown)


class TARNWICK_OT_import_actor(bpy.types.Operator):
    """Import actors of an installed game, converted by tarnwick-cli"""
    bl_idname = "import_scene.tarnwick_actor"
    bl_label = "Import Game Actors"
    bl_options = {'REGISTER', 'UNDO'}

    data_dir: StringProperty(
        name="Per-user folder", subtype='DIR_PATH', options={'SKIP_SAVE'}, update=_where_changed,
        description="The folder that holds the games' digest files; empty: the usual one")
    prefixes: StringProperty(
        name="Wine prefixes", options={'SKIP_SAVE'}, update=_where_changed,
        description="Wine prefixes to look in first, separated by ';'")
    game_dir: StringProperty(
        name="Game folder", subtype='DIR_PATH', options={'SKIP_SAVE'}, update=_where_changed,
        description="An installation folder to open instead of the games found")
    game: StringProperty(name="Game", description="The game to open; empty: the first one found",
                         options={'SKIP_SAVE'})
    actors: StringProperty(
        name="Actors", options={'SKIP_SAVE'},
        description="Actor names or wildcard patterns over whole names, separated by ';'; "
                    "given, the import runs without the dialog")
    format: EnumProperty(
        name="Format", default='GLB',
        items=[('GLB', "glTF Binary (.glb)", "Carry each actor as a glTF binary file"),
               ('FBX', "FBX (.fbx)", "Carry each actor as an FBX file")])
    textures: BoolProperty(name="Textures", default=True, description="Bring each mesh's diffuse texture")
    rig: StringProperty(
        name="Rig", description="The animation set whose rig to use where several rigs fit an actor")

    # The folders and the game are remembered by the preferences, the actors not at all; the rest of
    # the dialog's state lives only while it is open.
    game_choice: EnumProperty(name="Game", items=_game_enum, update=_game_changed, options={'SKIP_SAVE', 'HIDDEN'})
    search: StringProperty(
        name="Search", update=_search_changed, options={'SKIP_SAVE', 'HIDDEN'},
        description="Wildcards as the search box: '*' any run, '?' one character, '#' one digit; "
                    "plain text matches anywhere in the name")
    rows: CollectionProperty(type=actor_list.TARNWICK_PG_actor_row, options={'SKIP_SAVE', 'HIDDEN'})
    active_row: IntProperty(options={'SKIP_SAVE', 'HIDDEN'})
    all_shown: BoolProperty(name="All shown", update=_all_changed, options={'SKIP_SAVE', 'HIDDEN'},
                            description="Check or clear every actor the search shows")
    message: StringProperty(options={'SKIP_SAVE', 'HIDDEN'})
    from_dialog: BoolProperty(options={'SKIP_SAVE', 'HIDDEN'})

    # -- The dialog

    def invoke(self, context, event):
        global _filling
        try:
            _cli_path()
        except cli.CliError as error:
            self.report({'ERROR'}, error.message)
            return {'CANCELLED'}
        if self.actors:
            return self.execute(context)
        prefs = preferences.get(context)
        _filling = True
        self.from_dialog = True
        try:
            for prop in ("data_dir", "prefixes", "game_dir", "game"):
                if not self.properties.is_property_set(prop):
                    setattr(self, prop, getattr(prefs, prop))
        finally:
            _filling = False
        load_games(self)
        return context.window_manager.invoke_props_dialog(self, width=560)

    def draw(self, context):
        layout = self.layout
        layout.use_property_split = False
        if self.message:
            layout.label(text=self.message, icon='ERROR')
        row = layout.row()
        row.prop(self, "game_choice", text="Game")
        layout.prop(self, "search", text="", icon='VIEWZOOM')
        layout.template_list(actor_list.TARNWICK_UL_actors.bl_idname, "", self, "rows", self, "active_row", rows=8)
        row = layout.row()
        row.prop(self, "all_shown")
        chosen = sum(1 for r in self.rows if r.checked)
        row.label(text=f"{chosen} of {len(self.rows)} chosen")
        column = layout.column()
        column.use_property_split = True
        column.prop(self, "format")
        column.prop(self, "textures")
        column.prop(self, "rig", text="Rig (animation set)")
        box = layout.box()
        box.label(text="Where the games are")
        column = box.column()
        column.use_property_split = True
        column.prop(self, "data_dir")
        column.prop(self, "prefixes")
        column.prop(self, "game_dir")

    # -- The import

    def defaults_from_preferences(self, context):
        # A script that says nothing of where the games are gets what the dialog last used, the game
        # with its folders; given one folder, the rest stay empty as the CLI's defaults.
        where = ("data_dir", "prefixes", "game_dir")
        if self.from_dialog or any(self.properties.is_property_set(prop) for prop in where):
            return
        prefs = preferences.get(context)
        for prop in where + (() if self.properties.is_property_set("game") else ("game",)):
            setattr(self, prop, getattr(prefs, prop))

    def chosen_patterns(self):
        """The patterns to convert, and the names the result must be one of (None: any)."""
        if self.actors:
            return cli.split_list(self.actors), None
        names = actor_list.checked_names(self.rows)
        return [cli.name_as_pattern(name) for name in names], set(names)

    def execute(self, context):
        self.defaults_from_preferences(context)
        try:
            program = _cli_path()
        except cli.CliError as error:
            self.report({'ERROR'}, error.message)
            return {'CANCELLED'}
        patterns, wanted = self.chosen_patterns()
        if not patterns:
            self.report({'ERROR'}, "Choose at least one actor to import")
            return {'CANCELLED'}
        if self.from_dialog:
            preferences.remember(context, self.data_dir, self.prefixes, self.game_dir, self.game)

        folder = tempfile.mkdtemp(prefix="tarnwick-")
        try:
            return self.convert_and_import(context, program, patterns, wanted, folder)
        finally:
            shutil.rmtree(folder, ignore_errors=True)

    def convert_and_import(self, context, program, patterns, wanted, folder):
        out_dir = os.path.join(folder, "actors")
        wm = context.window_manager
        wm.progress_begin(0, 1)
        try:
            run = cli.convert(program, _source(self), patterns, out_dir, self.format, self.textures, self.rig,
                              os.cpu_count() or 1, os.path.join(folder, "log.txt"),
                              lambda done, total: wm.progress_update(done / max(total, 1)))
        except cli.CliError as error:
            self.report({'ERROR'}, error.message)
            return {'CANCELLED'}
        finally:
            wm.progress_end()
        if run.status == 2 or not run.results:
            self.report({'ERROR'}, run.last_line())
            return {'CANCELLED'}
        for line in run.log:
            if line.startswith(cli.CLI_NAME + ": "):
                self.report({'WARNING'}, line)

        imported = 0
        results = [r for r in run.results if wanted is None or r.name in wanted]
        for result in results:
            if result.state != "written":
                self.report({'WARNING'}, f"{result.name}: {result.state}: {result.line}")
                continue
            try:
                collection = scene_import.import_actor(context, result.name, os.path.join(out_dir, result.output))
            except scene_import.ImportFailed as error:
                self.report({'WARNING'}, f"{result.name}: not imported: {error}")
                continue
            imported += 1
            self.report({'INFO'}, f"{result.name}: imported into collection {collection.name}")
            for note in result.notes:
                self.report({'WARNING'}, f"{result.name}: {note}")
        summary = f"Imported {imported} of {len(results)} actors"
        self.report({'INFO'} if imported == len(results) else {'WARNING'}, summary)
        return {'FINISHED'} if imported else {'CANCELLED'}


def menu_entry(self, context):
    self.layout.operator(TARNWICK_OT_import_actor.bl_idname, text="Game actor (Tarnwick)")
