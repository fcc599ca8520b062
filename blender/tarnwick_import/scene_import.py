"""One written actor file into the scene, through Blender's own importer, in a collection of its own."""
import os
import warnings

import bpy


class ImportFailed(Exception):
    pass


def collection_name(actor):
    """`actors\\knight.adr` -> `knight`: the name without folders and extension."""
    base = actor.replace("\\", "/").rsplit("/", 1)[-1]
    stem, dot, _ = base.rpartition(".")
    return stem if dot and stem else base


def _allow_numpy_bool():
    # Debian 12 pairs Blender 3.4 with numpy 1.24, which dropped the alias its glTF importer still uses.
    import numpy
    with warnings.catch_warnings():
        # Asking numpy 1.24 for the alias warns that it will mean numpy's own type some day.
        warnings.simplefilter("ignore", FutureWarning)
        missing = not hasattr(numpy, "bool")
    if missing:
        numpy.bool = bool


def _layer_collection(layer, collection):
    if layer.collection == collection:
        return layer
    for child in layer.children:
        found = _layer_collection(child, collection)
        if found:
            return found
    return None


def _run_importer(path):
    if path.lower().endswith(".glb"):
        _allow_numpy_bool()
        result = bpy.ops.import_scene.gltf(filepath=path)
    else:
        result = bpy.ops.import_scene.fbx(filepath=path)
    if 'FINISHED' not in result:
        raise ImportFailed("Blender's importer did not finish")


def import_actor(context, actor, path):
    """Imports `path` into a new collection named after `actor` below the scene's; returns the
    collection. The importers put what they make into the active collection, so it is made active
    for the call. Images read from files beside `path` are packed, since that folder goes away."""
    collection = bpy.data.collections.new(collection_name(actor))
    context.scene.collection.children.link(collection)
    view_layer = context.view_layer
    # Held as the collection: layer collections are rebuilt when collections come and go.
    previous = view_layer.active_layer_collection.collection
    view_layer.active_layer_collection = _layer_collection(view_layer.layer_collection, collection)
    objects_before = set(bpy.data.objects)
    images_before = set(bpy.data.images)
    try:
        _run_importer(path)
        failure = None
    except (RuntimeError, ImportFailed) as error:
        failure = str(error).strip().splitlines()[0] if str(error).strip() else "import failed"
    view_layer.active_layer_collection = _layer_collection(view_layer.layer_collection, previous)
    if failure:
        for obj in set(bpy.data.objects) - objects_before:
            bpy.data.objects.remove(obj)
        bpy.data.collections.remove(collection)
        raise ImportFailed(failure)
    for obj in set(bpy.data.objects) - objects_before:
        for other in list(obj.users_collection):
            if other != collection:
                other.objects.unlink(obj)
        if collection not in obj.users_collection:
            collection.objects.link(obj)
    folder = os.path.dirname(os.path.abspath(path))
    for image in set(bpy.data.images) - images_before:
        source = bpy.path.abspath(image.filepath)
        if not image.packed_file and source and os.path.abspath(source).startswith(folder + os.sep):
            if os.path.isfile(source):
                image.pack()
    return collection
