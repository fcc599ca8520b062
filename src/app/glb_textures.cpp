#include "app/glb_textures.h"

#include <algorithm>

#include "app/actor_textures.h"
#include "core/byte_buffer.h"
#include "gamedata/material_textures.h"
#include "preview/image_decode.h"
#include "preview/png_encode.h"

namespace {

TextureResult EncodeTexture(const PackIndex& packs, const char* name, std::vector<u8>& png) {
  CByteBuffer bytes;
  if (!packs.FetchByName(name, bytes)) return TextureResult::kMissing;
  DecodedImage image;
  if (!DecodeImage(bytes.Data(), bytes.Size(), image) || !EncodePng(image, png)) return TextureResult::kUndecodable;
  return TextureResult::kWritten;
}

}  // namespace

void CollectGlbTextures(const ModelMaterials& materials, u32 meshCount, const PackIndex& packs, GltfImages& images,
                        std::vector<std::string>& notes) {
  images = {};
  const u32 meshes = meshCount < materials.materials.Count() ? meshCount : materials.materials.Count();
  images.meshImage.assign(meshes, -1);
  // Each name once, with the image it gave or -1 when it gave none.
  std::vector<std::pair<std::string, i32>> seen;
  for (u32 i = 0; i < meshes; ++i) {
    const char* name = DiffuseTextureName(materials.materials[i]);
    if (!name) continue;
    const auto known =
        std::find_if(seen.begin(), seen.end(), [name](const auto& entry) { return entry.first == name; });
    if (known != seen.end()) {
      images.meshImage[i] = known->second;
      continue;
    }
    std::vector<u8> png;
    const TextureResult result = EncodeTexture(packs, name, png);
    i32 image = -1;
    if (result == TextureResult::kWritten) {
      images.png.push_back(std::move(png));
      image = i32(images.png.size() - 1);
    } else {
      notes.push_back(TextureNote(result, name));
    }
    seen.emplace_back(name, image);
    images.meshImage[i] = image;
  }
}
