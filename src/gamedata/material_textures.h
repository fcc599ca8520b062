#pragma once

#include "gamedata/model_file.h"

// Calls visit(name) for each texture that `material` refers to, in parameter order, as the
// preview's info panel lists them. A reference whose hash names no texture of the chunk is passed
// over.
template <class Visit>
void ForEachTextureName(const ModelMaterial& material, Visit&& visit) {
  if (!material.owner) return;
  for (const MaterialParameter& parameter : material.parameters) {
    if (!parameter.IsTextureReference()) continue;
    if (const MaterialName* name = material.owner->FindName(parameter.ReferencedHash())) visit(name->text.Text());
  }
}

// The texture the preview draws a mesh with: that of "baseDiffuse", else that of "BaseDiffuse" (the
// catalogue spells it both ways). Only the first parameter with the name counts, and it must be a
// texture reference. Null for none.
const char* DiffuseTextureName(const ModelMaterial& material);
