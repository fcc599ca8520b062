#include "seeds.h"
#include "support/model_writer.h"

using testsupport::BuildModel;
using testsupport::BuildPalette;
using testsupport::ModelDesc;
using testsupport::PaletteDesc;

Seeds ModelSeeds() {
  Seeds seeds;
  const ModelDesc sample = testsupport::SampleModel();
  seeds.push_back({"sample", BuildModel(sample)});

  ModelDesc plain = sample;
  plain.materials.reset();
  seeds.push_back({"no_chunk", BuildModel(plain)});

  ModelDesc boneless = sample;
  boneless.bones.clear();
  seeds.push_back({"no_bones", BuildModel(boneless)});

  ModelDesc wide = sample;
  wide.meshes = {testsupport::PatternMesh(40, {32, 24}, 4, 60), testsupport::PatternMesh(8, {16}, 2, 12)};
  seeds.push_back({"two_meshes", BuildModel(wide)});
  return seeds;
}

Seeds PaletteSeeds() {
  Seeds seeds;
  seeds.push_back({"sample", BuildPalette(testsupport::SamplePalette())});
  seeds.push_back({"empty_last_name", BuildPalette(PaletteDesc{.names = {"a", ""}, .materials = {{.materialKey = 1}}})});
  seeds.push_back({"empty", BuildPalette(PaletteDesc{})});
  return seeds;
}
