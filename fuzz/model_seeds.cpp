#include "game_writers/model_writer.h"
#include "seeds.h"

using gamewriters::BuildModel;
using gamewriters::BuildPalette;

Seeds ModelSeeds() {
  gamewriters::ModelDesc desc = gamewriters::SampleModel();
  Seeds seeds = {{"sample", BuildModel(desc)}};
  desc.meshes.push_back(gamewriters::PatternMesh(40, {32, 24}, 4, 60));
  desc.materials.reset();
  seeds.push_back({"no_chunk_three_meshes", BuildModel(desc)});
  desc.bones.clear();
  seeds.push_back({"no_bones", BuildModel(desc)});
  return seeds;
}

Seeds PaletteSeeds() {
  return {{"sample", BuildPalette(gamewriters::SamplePalette())},
          {"empty_last_name", BuildPalette({.names = {"a", ""}, .materials = {{.materialKey = 1}}})},
          {"empty", BuildPalette({})}};
}

// A layout in the mesh target's form ahead of the sample model: five bytes an element (stream,
// type, usage, usage index, offset), then the material flags.
Seeds MeshSeeds() {
  enum : char { kFloat2 = 1, kFloat3 = 2, kUbyte4 = 5, kUbyte4n = 8, kFloat16x2 = 15 };
  enum : char { kPosition = 0, kBlendWeight = 1, kBlendIndices = 2, kNormal = 3, kTexcoord = 5 };
  const std::string model = BuildModel(gamewriters::SampleModel());
  const std::string skinned = {6,  0,   kFloat3,  kPosition,    0, 0,  0, kFloat3,    kNormal,       0,
                               12, 0,   kFloat2,  kTexcoord,    0, 24, 1, kUbyte4,    kBlendIndices, 0,
                               0,  1,   kUbyte4n, kBlendWeight, 0, 4,  1, kFloat16x2, kTexcoord,     1,
                               8,  0x04};
  const std::string rigid = {3, 0, kFloat3, kPosition, 0,         0, 1,  kUbyte4, kBlendIndices,
                             0, 0, 0,       kFloat2,   kTexcoord, 0, 24, 0x10};
  const std::string noNormal = {1, 0, kFloat3, kPosition, 0, 0, 0};
  return {{"skinned", skinned + model}, {"rigid_skinned", rigid + model}, {"position_only", noNormal + model}};
}
