#pragma once

#include "core/hash_map.h"
#include "gamedata/rig_network.h"

// Every rig network of a game, under the base name of its file (the name without its last four
// characters, spelt as the pack spells it).
using RigTable = THashMap<CStringA, RigNetwork>;
