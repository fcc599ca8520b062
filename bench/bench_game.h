#pragma once

#include <string>

#include "support/stress_game.h"

// The stress game that the benchmarks share, written once per run into a temporary folder, and
// what it holds.
const testsupport::StressGameDesc& BenchGameDesc();
// The per-user folder that finds it.
std::string BenchGameData();
// Its installation folder.
std::string BenchGameFolder();
