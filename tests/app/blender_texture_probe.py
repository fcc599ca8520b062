# Run by the texture tests as: blender -b --factory-startup --python blender_texture_probe.py -- FILE.fbx
# Imports the file and prints one JSON line: for each mesh, the image on its material's base colour
# (path, size, whether the file exists) and, for each vertex in order, the colour of the image at
# the vertex's UV, sampled as the renderer would: rows from the bottom, UV (0, 0) at the bottom left.
import json
import os
import sys

import bpy

path = sys.argv[sys.argv.index("--") + 1]
bpy.ops.wm.read_factory_settings(use_empty=True)
bpy.ops.import_scene.fbx(filepath=path)

meshes = {}
for obj in bpy.data.objects:
    if obj.type != "MESH":
        continue
    mesh = obj.data
    entry = {"image": None, "samples": {}}
    material = mesh.materials[0] if mesh.materials else None
    image = None
    if material and material.use_nodes:
        for node in material.node_tree.nodes:
            if node.type == "TEX_IMAGE" and node.image and any(link.to_socket.name == "Base Color" for link in node.outputs[0].links):
                image = node.image
    if image is not None:
        file = bpy.path.abspath(image.filepath)
        entry["image"] = {"path": file, "exists": os.path.isfile(file), "size": list(image.size)}
        width, height = image.size
        pixels = list(image.pixels) if width and height else []
        uv = mesh.uv_layers.active.data if mesh.uv_layers else None
        for loop in mesh.loops:
            if uv is None or not pixels:
                break
            u, v = uv[loop.index].uv
            x = min(width - 1, max(0, int(u * width)))
            y = min(height - 1, max(0, int(v * height)))
            at = (y * width + x) * 4
            entry["samples"][str(loop.vertex_index)] = [round(c * 255) for c in pixels[at:at + 4]]
    meshes[obj.name] = entry
print("PROBE " + json.dumps(meshes, sort_keys=True))
