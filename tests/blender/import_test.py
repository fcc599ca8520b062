# The import operator on the sample game, as a script calls it: each actor lands in a collection of
# its own with the same rig, meshes and diffuse images as Blender's import of the same actor's .fbx
# written by tarnwick-cli directly, and the temporary folder is gone afterwards.
import os
import subprocess
import sys

import bpy

sys.path.insert(0, os.path.dirname(__file__))
from harness import cli_path, empty_scene, expect, finish, import_actors, sample_data, scratch, work  # noqa: E402


def summary(objects):
    """What an import made: each armature's bones, each mesh's vertex count, and how many meshes
    show a diffuse image that has pixels and keeps them."""
    bones = sorted(sorted(b.name for b in o.data.bones) for o in objects if o.type == 'ARMATURE')
    meshes = [o for o in objects if o.type == 'MESH']
    textured = 0
    for mesh in meshes:
        images = [node.image for slot in mesh.material_slots if slot.material and slot.material.node_tree
                  for node in slot.material.node_tree.nodes if node.type == 'TEX_IMAGE' and node.image]
        # Pixels in memory aren't enough: they must survive saving the file and opening it again.
        textured += any(image.size[0] > 0 and (image.packed_file or os.path.isfile(bpy.path.abspath(image.filepath)))
                        for image in images)
    return {"bones": bones, "vertices": sorted(len(m.data.vertices) for m in meshes), "textured": textured}


def reference(actor):
    """Blender's own import of the actor's .fbx, with textures, written by tarnwick-cli."""
    empty_scene()
    path = os.path.join(work, "reference", actor.replace("\\", "_") + ".fbx")
    subprocess.run([cli_path, "--data-dir", sample_data, "convert", actor, "-o", path, "--textures"],
                   check=True, stderr=subprocess.DEVNULL)
    bpy.ops.import_scene.fbx(filepath=path)
    return summary(list(bpy.data.objects))


# The sample game's actors by collection name: full name and the bone count of its rig (0: no rig).
KNIGHT = ("actors\\knight.adr", 7)
WOLF = ("actors\\wolf.adr", 5)
CRATE = ("actors\\crate.adr", 0)

# actors given, format, textures, the actors that must come in
cases = [
    ("one rigged actor", "actors\\knight.adr", 'GLB', True, {"knight": KNIGHT}),
    ("three actors at once", "actors\\knight.adr;actors\\wolf.adr;actors\\crate.adr", 'GLB', True,
     {"knight": KNIGHT, "wolf": WOLF, "crate": CRATE}),
    ("three actors as FBX, images kept after the folder goes", "actors\\guard.adr; actors\\wyrm.adr;actors\\barrel.adr",
     'FBX', True, {"guard": ("actors\\guard.adr", 7), "wyrm": ("actors\\wyrm.adr", 5), "barrel": ("actors\\barrel.adr", 0)}),
    ("a wildcard pattern", "actors\\knight*", 'GLB', True, {"knight": KNIGHT, "knight_red": ("actors\\knight_red.adr", 7)}),
    ("textures off", "actors\\knight.adr", 'GLB', False, {"knight": KNIGHT}),
    ("the folders of the preferences", "actors\\wolf.adr", 'GLB', True, {"wolf": WOLF}),
]
# The dialog's last folders, which a script that gives none gets.
prefs = bpy.context.preferences.addons["tarnwick_import"].preferences
prefs.data_dir, prefs.game = sample_data, "Aldermoor"

references = {}
for name, actors, file_format, textures, expected in cases:
    for actor, _ in expected.values():
        if actor not in references:
            references[actor] = reference(actor)
    empty_scene()
    where = {} if name == "the folders of the preferences" else {"data_dir": sample_data}
    result = import_actors(actors=actors, format=file_format, textures=textures, **where)
    expect(result == {'FINISHED'}, f"{name}: {result}")
    expect(not bpy.context.scene.collection.objects, f"{name}: every object in an actor's collection")
    expect(sorted(c.name for c in bpy.context.scene.collection.children) == sorted(expected),
           f"{name}: collections {[c.name for c in bpy.context.scene.collection.children]}")
    for collection_name, (actor, bone_count) in expected.items():
        collection = bpy.data.collections.get(collection_name)
        if not expect(collection, f"{name}: a collection {collection_name}"):
            continue
        got = summary(list(collection.all_objects))
        want = dict(references[actor], textured=references[actor]["textured"] if textures else 0)
        expect([len(bones) for bones in got["bones"]] == ([bone_count] if bone_count else []),
               f"{name}: {actor} one armature of {bone_count} bones: {got['bones']}")
        expect(got["bones"] == want["bones"], f"{name}: {actor} bones {got['bones']} != {want['bones']}")
        expect(got["vertices"] == want["vertices"], f"{name}: {actor} meshes {got['vertices']} != {want['vertices']}")
        expect(want["textured"] > 0 or not textures, f"{name}: {actor} textured in the reference")
        expect(got["textured"] == want["textured"],
               f"{name}: {actor} textured meshes {got['textured']} != {want['textured']}")
    expect(os.listdir(scratch) == [], f"{name}: temporary folder left: {os.listdir(scratch)}")

finish()
