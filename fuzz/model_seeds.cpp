#include "seeds.h"

Seeds ModelSeeds() { return {}; }
Seeds PaletteSeeds() { return {}; }
