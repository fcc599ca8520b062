# Run by the texture tests as: blender -b --factory-startup --python blender_opacity_probe.py -- FILE...
# Imports each file (.fbx or .glb) into an empty scene and prints one line per file: "OPACITY", the
# file and a JSON object with, for each mesh whose material shows an image, whether the Principled
# BSDF's Alpha is linked, the material's blend mode and the image's pixels as 8-bit RGB, rows from
# the top.
import json
import sys

import bpy
import numpy

# Debian 12 pairs Blender 3.4 with numpy 1.24, which dropped the alias its glTF importer still uses.
if not hasattr(numpy, "bool"):
    numpy.bool = bool


def base_color_image(material):
    for node in material.node_tree.nodes:
        if node.type == "TEX_IMAGE" and node.image:
            for link in node.outputs["Color"].links:
                if link.to_socket.name == "Base Color":
                    return node.image
    return None


for path in sys.argv[sys.argv.index("--") + 1:]:
    bpy.ops.wm.read_factory_settings(use_empty=True)
    if path.lower().endswith(".glb"):
        bpy.ops.import_scene.gltf(filepath=path)
    else:
        bpy.ops.import_scene.fbx(filepath=path)
    meshes = {}
    for obj in bpy.data.objects:
        material = obj.active_material if obj.type == "MESH" else None
        if not material or not material.use_nodes:
            continue
        image = base_color_image(material)
        bsdf = next((n for n in material.node_tree.nodes if n.type == "BSDF_PRINCIPLED"), None)
        if image is None or bsdf is None:
            continue
        width, height = image.size
        pixels = list(image.pixels)
        rows = []
        for y in reversed(range(height)):
            row = []
            for x in range(width):
                at = (y * width + x) * 4
                row.extend(round(c * 255) for c in pixels[at:at + 3])
            rows.extend(row)
        meshes[obj.name] = {"alpha_linked": bsdf.inputs["Alpha"].is_linked, "blend": material.blend_method,
                            "rgb": rows}
    print("OPACITY " + path + " " + json.dumps(meshes, sort_keys=True), flush=True)
