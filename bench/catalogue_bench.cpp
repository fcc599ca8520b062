#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "game_writers/xml_writer.h"
#include "gamedata/material_definitions.h"

namespace {

// A catalogue of 200 layouts of eight entries and 2,000 definitions of three draw styles and two
// properties, about the size of a real game's.
std::string LargeCatalogue() {
  gamewriters::CatalogueXml catalogue;
  for (int i = 0; i < 200; ++i) {
    gamewriters::InputLayoutXml layout{"Layout" + std::to_string(i), {}};
    for (const char* usage :
         {"Position", "Normal", "Tangent", "Binormal", "Texcoord", "Texcoord", "BlendIndices", "BlendWeight"}) {
      layout.entries.push_back({"Float16_4", usage, std::to_string(i % 2)});
    }
    catalogue.layouts.push_back(layout);
  }
  for (int i = 0; i < 2000; ++i) {
    std::vector<gamewriters::DrawStyleXml> styles;
    for (const char* style : {"normal", "shadow", "depth"})
      styles.push_back({style, "Layout" + std::to_string((i + 7) % 200)});
    catalogue.definitions.push_back(
        {"Material" + std::to_string(i), "Opaque", styles, std::vector<std::string>{"Skinned", "ArtistSelectable"}});
  }
  return gamewriters::BuildCatalogue(catalogue);
}

void BM_ReadCatalogue(benchmark::State& state) {
  const std::string text = LargeCatalogue();
  CByteBuffer bytes;
  if (!bytes.SetSize(static_cast<u32>(text.size()))) state.SkipWithError("no memory");
  std::memcpy(bytes.Data(), text.data(), text.size());
  for (auto _ : state) {
    MaterialDefinitionSet set;
    if (!set.Read(bytes) || set.Definitions().Count() != 2000) state.SkipWithError("read failed");
    set.Destroy();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(BM_ReadCatalogue)->Unit(benchmark::kMillisecond);

}  // namespace
