# Run by the glTF tests as: blender -b --factory-startup --python blender_compare_probe.py -- A.fbx A.glb ...
# Imports each pair of files into an empty scene and prints one line per pair: "PAIR", the glTF file's
# name and a JSON object with the bones and mesh vertices each import made and the largest distance
# between the same bone's head and between the same vertex (both relative beyond 1 unit from the
# origin; world space) and between the same face corner's UVs in the two imports.
import json
import sys

import bpy
import numpy

# Debian 12 pairs Blender 3.4 with numpy 1.24, which dropped the alias its glTF importer still uses.
if not hasattr(numpy, "bool"):
    numpy.bool = bool


def imported(path):
    bpy.ops.wm.read_factory_settings(use_empty=True)
    if path.lower().endswith(".glb"):
        bpy.ops.import_scene.gltf(filepath=path)
    else:
        bpy.ops.import_scene.fbx(filepath=path)
    heads, meshes, uvs = {}, {}, {}
    for obj in bpy.data.objects:
        if obj.type == "ARMATURE":
            for bone in obj.data.bones:
                heads[bone.name] = obj.matrix_world @ bone.head_local
        elif obj.type == "MESH":
            meshes[obj.name] = [obj.matrix_world @ v.co for v in obj.data.vertices]
            # Each UV set's coordinates by face corner, as Blender holds them (origin at the bottom).
            uvs[obj.name] = [[uv.uv.copy() for uv in layer.data] for layer in obj.data.uv_layers]
    return heads, meshes, uvs


def largest(a, b, relative=False):
    # Far from the origin single precision steps grow: there a distance counts relative to the size.
    return max([(p - q).length / (max(1.0, p.length) if relative else 1.0) for p, q in zip(a, b)], default=0.0)


args = sys.argv[sys.argv.index("--") + 1:]
for fbx, glb in zip(args[0::2], args[1::2]):
    fbx_heads, fbx_meshes, fbx_uvs = imported(fbx)
    glb_heads, glb_meshes, glb_uvs = imported(glb)
    common = sorted(set(fbx_heads) & set(glb_heads))
    result = {
        "bones": [len(fbx_heads), len(glb_heads), len(common)],
        "bone_distance": largest([fbx_heads[n] for n in common], [glb_heads[n] for n in common], True),
        "meshes": [len(fbx_meshes), len(glb_meshes)],
        "vertices": [sum(len(v) for v in fbx_meshes.values()), sum(len(v) for v in glb_meshes.values())],
        "vertex_distance": max([largest(fbx_meshes[n], glb_meshes.get(n, []), True) for n in fbx_meshes], default=0.0),
        "uv_sets": [sum(len(u) for u in fbx_uvs.values()), sum(len(u) for u in glb_uvs.values())],
        "uv_distance": max([largest(a, b) for n in fbx_uvs for a, b in zip(fbx_uvs[n], glb_uvs.get(n, []))], default=0.0),
        "missing_meshes": sorted(set(fbx_meshes) - set(glb_meshes)),
        "missing_bones": sorted(set(fbx_heads) ^ set(glb_heads)),
    }
    print("PAIR " + glb + " " + json.dumps(result, sort_keys=True), flush=True)
