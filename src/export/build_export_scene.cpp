#include "export/build_export_scene.h"

#include <atomic>
#include <cstring>

#include "export/scene_mesh.h"
#include "export/scene_skeleton.h"
#include "gamedata/material_textures.h"

namespace {

std::atomic<u64> gDecodedMeshes{0};

// Decodes `mesh` through the layout that its material's definition chooses.
bool DecodeMesh(const MaterialDefinition* definition, const InputLayout* layout, const ModelMesh& mesh,
                const ModelFile& model, ExportMesh& exportMesh) {
  if (!layout || !definition) return false;
  ++gDecodedMeshes;
  return Build(exportMesh, model, mesh, layout, definition->flags);
}

// The image of `name` in the scene, added on first sight. False when memory is refused.
bool ImageOf(ExportScene& scene, const char* name, i32& image) {
  for (u32 i = 0; i < scene.images.Count(); ++i) {
    if (std::strcmp(scene.images[i].name, name) == 0) return image = i32(i), true;
  }
  SceneImage* added = scene.images.Append();
  if (!added) return false;
  added->name = name;
  image = i32(scene.images.Count() - 1);
  return true;
}

// Every texture the meshes' materials name, and each mesh's diffuse one.
bool CollectImages(ExportScene& scene, const ModelMaterials& materials) {
  bool kept = true;
  for (u32 i = 0; i < scene.meshes.Count(); ++i) {
    const ModelMaterial& material = materials.materials[i];
    i32 image = kSceneNoImage;
    ForEachTextureName(material, [&](const char* name) { kept = kept && ImageOf(scene, name, image); });
    const char* diffuse = DiffuseTextureName(material);
    if (!kept || (diffuse && !ImageOf(scene, diffuse, scene.meshes[i].diffuseImage))) return false;
  }
  // An image is opaque when some mesh that isn't see-through shows it, unless a see-through one
  // does too: that one needs its alpha.
  for (const SceneMesh& mesh : scene.meshes) {
    if (mesh.diffuseImage != kSceneNoImage && !mesh.semiTransparent) scene.images[u32(mesh.diffuseImage)].opaque = true;
  }
  for (const SceneMesh& mesh : scene.meshes) {
    if (mesh.diffuseImage != kSceneNoImage && mesh.semiTransparent) scene.images[u32(mesh.diffuseImage)].opaque = false;
  }
  return true;
}

}  // namespace

u64 DecodedMeshCount() { return gDecodedMeshes; }

bool FileStem(const char* text, CStringBufferA& out) {
  const char* start = text;
  for (const char* c = text; *c; ++c) {
    if (*c == '/' || *c == '\\') start = c + 1;
  }
  const char* dot = std::strrchr(start, '.');
  const size_t length = dot ? size_t(dot - start) : std::strlen(start);
  if (length >= UINT32_MAX || !out.Reserve(u32(length) + 1)) {
    out.Clear(false);
    return false;
  }
  std::memcpy(out.Data(), start, length);
  out.SetLength(u32(length));
  return true;
}

SceneBuildResult BuildExportScene(ExportScene& scene, const char* actorName, const ModelFile& model,
                                  const ModelMaterials& materials, const MaterialDefinitionSet& definitions,
                                  const RigSkeleton* rig) {
  if (!FileStem(actorName, scene.rootName)) return SceneBuildResult::kSetupFailed;
  TArray<u32> modelToRig;
  if (!BuildSceneSkeleton(scene, model, rig, modelToRig)) return SceneBuildResult::kRigFailed;
  if (!scene.meshes.Reserve(model.meshes.Count())) return SceneBuildResult::kMeshFailed;
  for (u32 i = 0; i < model.meshes.Count(); ++i) {
    if (i >= materials.materials.Count()) return SceneBuildResult::kMeshFailed;
    const ModelMaterial& material = materials.materials[i];
    const MaterialDefinition* definition = definitions.FindDefinition(material.definitionHash);
    ExportMesh geometry;
    if (!DecodeMesh(definition, definitions.ChooseInputLayout(material.definitionHash), model.meshes[i], model,
                    geometry) ||
        !AddSceneMesh(scene, i, std::move(geometry), modelToRig)) {
      return SceneBuildResult::kMeshFailed;
    }
    scene.meshes[i].semiTransparent = definition->flags & kSemiTransparent;
  }
  return CollectImages(scene, materials) ? SceneBuildResult::kBuilt : SceneBuildResult::kMeshFailed;
}
