#include "app/glb_textures.h"

#include "app/actor_textures.h"

void CollectGlbTextures(const ExportScene& scene, const PackIndex& packs, TextureStore& store, GltfImages& images,
                        std::vector<std::string>& notes) {
  images = {};
  images.png.resize(scene.images.Count());
  std::vector<bool> asked(scene.images.Count(), false);
  for (const SceneMesh& mesh : scene.meshes) {
    if (mesh.diffuseImage == kSceneNoImage || asked[u32(mesh.diffuseImage)]) continue;
    const u32 image = u32(mesh.diffuseImage);
    asked[image] = true;
    const SceneImage& source = scene.images[image];
    const AlphaForm form = source.opaque ? AlphaForm::kSplit : AlphaForm::kAsStored;
    const TextureResult result = store.Encode(packs, source.name, form, images.png[image]);
    if (result != TextureResult::kWritten) notes.push_back(TextureNote(result, source.name));
  }
}
