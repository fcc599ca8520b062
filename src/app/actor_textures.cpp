#include "app/actor_textures.h"

#include <algorithm>
#include <atomic>
#include <filesystem>

#include "app/output_names.h"
#include "fbx/mesh_texture.h"
#include "platform/folders.h"
#include "platform/parallel_for.h"

namespace {

// The file's stem: its name without folders and without what follows the last dot.
std::string Stem(const std::filesystem::path& file) { return file.stem().string(); }

// Where the alpha split off a texture's file goes: beside it, "_alpha" added to its stem.
std::filesystem::path AlphaPath(const std::filesystem::path& file) {
  return file.parent_path() / (Stem(file) + "_alpha.png");
}

}  // namespace

std::string TextureNote(TextureResult result, const std::string& name) {
  switch (result) {
    case TextureResult::kMissing: return "Texture \"" + name + "\" was not found.";
    case TextureResult::kUndecodable: return "Texture \"" + name + "\" can't be decoded.";
    case TextureResult::kUnwritable: return "Texture \"" + name + "\" can't be written.";
    case TextureResult::kWritten: break;
  }
  return {};
}

bool ExportActorTextures(ConvertState& state, const ExportScene& scene, const PackIndex& packs, const char* outputPath,
                         TextureStore& store, ActorTextures& result) {
  std::error_code ignored;
  const std::filesystem::path output = std::filesystem::absolute(outputPath, ignored);
  const std::string folderName = Stem(output) + ".fbm";
  const std::filesystem::path folder = output.parent_path() / folderName;

  if (scene.images.Count() == 0) return true;
  std::vector<std::string> names;
  for (const SceneImage& image : scene.images) names.emplace_back(image.name);
  const std::vector<std::string> relative = OutputNames(names, ".png");
  std::vector<TextureResult> results(names.size(), TextureResult::kUnwritable);
  std::vector<char> alphas(names.size(), false);
  result.files.reserve(2 * names.size());  // so that recording a written file can't fail
  // Refused memory must not leave the worker threads as an exception.
  std::atomic<bool> outOfMemory = false;
  auto write = [&](u32, u32 t) {
    try {
      const std::filesystem::path file = folder / relative[t];
      const AlphaForm form = scene.images[t].opaque ? AlphaForm::kSplit : AlphaForm::kAsStored;
      bool alpha = false;
      if (MakeFolders(file.parent_path().c_str())) {
        results[t] = store.Write(packs, names[t], form, file.string(), AlphaPath(file).string(), alpha);
      }
      alphas[t] = alpha;
    } catch (const std::bad_alloc&) {
      outOfMemory = true;
    }
  };
  ParallelFor(u32(names.size()), ProcessorCount(), write);

  for (size_t t = 0; t < names.size(); ++t) {
    if (results[t] == TextureResult::kWritten) {
      result.files.push_back((folder / relative[t]).string());
      if (alphas[t]) result.files.push_back(AlphaPath(folder / relative[t]).string());
    } else {
      result.notes.push_back(TextureNote(results[t], names[t]));
    }
  }
  for (u32 i = 0; i < scene.meshes.Count(); ++i) {
    const i32 t = scene.meshes[i].diffuseImage;
    if (t == kSceneNoImage || results[u32(t)] != TextureResult::kWritten) continue;
    const std::string absolute = (folder / relative[u32(t)]).string();
    const std::string fromOutput = folderName + "/" + relative[u32(t)];
    if (!AddDiffuseTexture(state, i, Stem(relative[u32(t)]).c_str(), absolute.c_str(), fromOutput.c_str(),
                           scene.meshes[i].semiTransparent)) {
      result.notes.push_back("Texture \"" + names[u32(t)] + "\" can't be put on its material.");
    }
  }
  return !outOfMemory;
}

ActorTextures::~ActorTextures() {
  if (!keep) RemoveActorTextures(*this);
}

void RemoveActorTextures(const ActorTextures& textures) {
  for (const std::string& file : textures.files) {
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
    // Folders go while they are empty, up to the .fbm folder itself.
    for (std::filesystem::path folder = std::filesystem::path(file).parent_path();
         std::filesystem::is_empty(folder, ignored) && !ignored; folder = folder.parent_path()) {
      const bool last = folder.extension() == ".fbm";
      if (!std::filesystem::remove(folder, ignored) || last) break;
    }
  }
}
