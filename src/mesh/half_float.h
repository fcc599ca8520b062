#pragma once

#include "core/types.h"

// The binary32 bits of a binary16 value, exact for all 65,536 inputs (zeros keep their sign,
// denormals become normal floats, infinities and NaNs stay so): three table reads and an add.
u32 HalfToFloat(u16 bits);
f32 HalfToFloatValue(u16 bits);
