#include "seeds.h"
#include "support/model_writer.h"

using testsupport::BuildModel;
using testsupport::BuildPalette;

Seeds ModelSeeds() {
  testsupport::ModelDesc desc = testsupport::SampleModel();
  Seeds seeds = {{"sample", BuildModel(desc)}};
  desc.meshes.push_back(testsupport::PatternMesh(40, {32, 24}, 4, 60));
  desc.materials.reset();
  seeds.push_back({"no_chunk_three_meshes", BuildModel(desc)});
  desc.bones.clear();
  seeds.push_back({"no_bones", BuildModel(desc)});
  return seeds;
}

Seeds PaletteSeeds() {
  return {{"sample", BuildPalette(testsupport::SamplePalette())},
          {"empty_last_name", BuildPalette({.names = {"a", ""}, .materials = {{.materialKey = 1}}})},
          {"empty", BuildPalette({})}};
}
