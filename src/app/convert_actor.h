#pragma once

#include <string>
#include <vector>

#include "app/convert_questions.h"
#include "app/texture_store.h"
#include "assets/pack_index.h"
#include "export/export_scene.h"
#include "fbx/sdk/fbx_object.h"
#include "gamedata/actor_files.h"
#include "gamedata/material_definitions.h"
#include "gamedata/rig_table.h"

// The tables of the loaded game that a conversion reads. A conversion never writes them.
struct GameTables {
  const PackIndex& packs;
  const MaterialDefinitionSet& materials;
  const RigTable& rigs;
};

// How one conversion ended.
enum class ConvertResult {
  kWritten,
  kCancelled,  // no path was given: nothing written, nothing logged
  kReadActorFailed,
  kParseActorFailed,
  kReadModelFailed,
  kParseModelFailed,
  kReadPaletteFailed,
  kParsePaletteFailed,
  kSetupFailed,
  kRigFailed,
  kMeshFailed,
  kWriteFailed,
};

// A conversion's result and, for a failure, the one line it gives the log.
struct ConvertOutcome {
  ConvertResult result = ConvertResult::kCancelled;
  TStringBufferA<320> logLine;     // empty when written or cancelled
  std::string reason;              // for a write that failed, what failed
  std::vector<std::string> notes;  // lines of a written file for what it had to leave out

  bool Written() const { return result == ConvertResult::kWritten; }
};

// The user's answers to a conversion's questions.
struct ConvertQuestions {
  ISaveDialog& save;
  IRigDialog& rig;
};

// The file a conversion writes.
enum class ExportFormat : u8 {
  kFbx,
  kGlb,          // glTF 2.0 in one binary file
  kByExtension,  // a path ending in ".glb" (in any case) is glTF binary, any other FBX
};

// What `format` means for `path`: kByExtension resolved by the path's extension.
ExportFormat ResolveFormat(ExportFormat format, const char* path);

// What a conversion may be given beyond its actor.
struct ConvertOptions {
  FbxCreationTimeSource creationTime = nullptr;  // the time written into the file; null: the clock
  // One of many conversions at once: no writer messages on standard output, and the file is not
  // flushed to disk on its own (the batch syncs once at its end).
  bool batch = false;
  // Each mesh's textures written as PNG files in "<stem>.fbm/" beside the file, the diffuse one on
  // its material. A batch shares one store, so that each texture is decoded once.
  // For glTF binary the diffuse ones are embedded in the file instead, and no folder is made.
  bool textures = false;
  TextureStore* textureStore = nullptr;
  ExportFormat format = ExportFormat::kFbx;
};

// Converts the actor of `entry`, listed as `actorName`: reads its definition, model and palette
// afresh, builds the scene with its rig and every mesh, asks for the path and writes the file. A
// failure writes no file. The outcome's line is the caller's to log.
void ConvertActor(const GameTables& game, const PackEntry& entry, const char* actorName,
                  const ConvertQuestions& questions, ConvertOutcome& outcome, const ConvertOptions& options = {});

// The same once the actor's files are read: `materials` is the list that applies (the palette's, or
// the model's own).
void ExportActor(const GameTables& game, const char* actorName, const ActorDefinition& actor, const ModelFile& model,
                 const ModelMaterials& materials, const ConvertQuestions& questions, ConvertOutcome& outcome,
                 const ConvertOptions& options = {});

// The scene of ExportActor before the path is asked: the rig (asking `rigDialog` where several fit)
// and every mesh decoded. False, with the outcome's failure, at the first step that fails, or
// cancelled when the rig question stops the conversion. For callers that write the scene their own
// way.
[[nodiscard]] bool BuildActorScene(ExportScene& scene, const GameTables& game, const char* actorName,
                                   const ActorDefinition& actor, const ModelFile& model,
                                   const ModelMaterials& materials, IRigDialog& rigDialog, ConvertOutcome& outcome);
