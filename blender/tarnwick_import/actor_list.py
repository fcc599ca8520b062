"""The dialog's list of actors: every actor of the game as a row with a check box, the rows the
search text matches shown. Checked rows stay checked while the search hides them."""
import array

import bpy
from bpy.props import BoolProperty


class TARNWICK_PG_actor_row(bpy.types.PropertyGroup):
    # `name` is the actor's full name in the game, as the CLI lists it.
    checked: BoolProperty(name="Import", description="Import this actor")
    shown: BoolProperty(default=True)


class TARNWICK_UL_actors(bpy.types.UIList):
    bl_idname = "TARNWICK_UL_actors"

    def draw_item(self, context, layout, data, item, icon, active_data, active_propname, index):
        layout.prop(item, "checked", text=item.name)

    def draw_filter(self, context, layout):
        # The dialog's search field filters through the CLI; a second filter here would confuse.
        pass

    def filter_items(self, context, data, propname):
        rows = getattr(data, propname)
        shown = array.array("b", bytes(len(rows)))
        rows.foreach_get("shown", shown)
        return [self.bitflag_filter_item if visible else 0 for visible in shown], []


def fill(rows, names, checked=()):
    """Replaces the rows by `names`, each shown, those in `checked` checked."""
    checked = set(checked)
    rows.clear()
    for name in names:
        row = rows.add()
        row.name = name
        row.checked = name in checked


def show_only(rows, names):
    """Shows the rows whose names are in `names` (all with None) and hides the others."""
    names = None if names is None else set(names)
    rows.foreach_set("shown", [names is None or row.name in names for row in rows])


def checked_names(rows):
    return [row.name for row in rows if row.checked]


def check_shown(rows, value):
    for row in rows:
        if row.shown:
            row.checked = value


classes = (TARNWICK_PG_actor_row, TARNWICK_UL_actors)
