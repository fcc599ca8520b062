#pragma once

#include <string>

#include "game_writers/stress_game.h"

// The stress game that the benchmarks share, written once per run into a temporary folder, and
// what it holds.
const gamewriters::StressGameDesc& BenchGameDesc();
// The per-user folder that finds it.
std::string BenchGameData();
// Its installation folder.
std::string BenchGameFolder();
