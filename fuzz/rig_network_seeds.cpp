#include "seeds.h"

Seeds RigNetworkSeeds() { return {}; }
