#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <vector>

#include "assets/wildcard_match.h"

namespace {

void BM_SearchSword(benchmark::State& state) {
  std::vector<std::string> names;
  for (int i = 0; i < 100000; ++i) {
    char name[96];
    std::snprintf(name, sizeof(name), "actors\\weapons_%03d\\%s_%06d.adr", i % 400,
                  i % 100 == 0 ? "Longsword" : "shield_round", i);
    names.emplace_back(name);
  }
  for (auto _ : state) {
    u32 matches = 0;
    for (const std::string& name : names) matches += WildcardMatch(name.c_str(), "*sword*");
    if (matches != 1000) state.SkipWithError("wrong match count");
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(names.size()));
}
BENCHMARK(BM_SearchSword)->Unit(benchmark::kMillisecond);

}  // namespace
