#pragma once

#include <string>
#include <vector>

#include "app/texture_store.h"
#include "fbx/convert_state.h"

// What the texture export of one actor did. Unless kept, its files are taken back when it goes, so
// that a conversion that fails at any step, or throws, leaves nothing behind.
struct ActorTextures {
  ActorTextures() = default;
  ActorTextures(const ActorTextures&) = delete;
  ActorTextures& operator=(const ActorTextures&) = delete;
  ~ActorTextures();

  std::vector<std::string> notes;  // one log line for each texture that was left out
  std::vector<std::string> files;  // the files written
  bool keep = false;               // set once the model's file is in place
};

// The log line for a texture that was left out for `result`; empty for one that was written.
std::string TextureNote(TextureResult result, const std::string& name);

// Writes every image of `scene` as a PNG file in "<stem>.fbm/" beside `outputPath` (each once,
// under a path made from its pack name), and puts each mesh's diffuse image on its material in
// `state`, by absolute path and by the path relative to the output's folder. A texture that is
// missing, can't be decoded or written is left out with a note; the rest goes on. False when
// memory ran out, with the files written so far in `result`.
[[nodiscard]] bool ExportActorTextures(ConvertState& state, const ExportScene& scene, const PackIndex& packs,
                                       const char* outputPath, TextureStore& store, ActorTextures& result);

// Removes the files of `textures` and the folders they made, where empty.
void RemoveActorTextures(const ActorTextures& textures);
