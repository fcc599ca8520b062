#include "gamedata/material_textures.h"

#include "core/hash.h"

namespace {

const char* FindTextureName(const char* parameterName, const ModelMaterial& material) {
  const u32 hash = HashKey(parameterName);
  for (const MaterialParameter& parameter : material.parameters) {
    if (parameter.semanticHash != hash) continue;
    if (!parameter.IsTextureReference() || parameter.ReferencedHash() == 0 || !material.owner) return nullptr;
    const MaterialName* name = material.owner->FindName(parameter.ReferencedHash());
    return name ? name->text.Text() : nullptr;
  }
  return nullptr;
}

}  // namespace

const char* DiffuseTextureName(const ModelMaterial& material) {
  const char* diffuse = FindTextureName("baseDiffuse", material);
  return diffuse ? diffuse : FindTextureName("BaseDiffuse", material);
}
