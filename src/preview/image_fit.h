#pragma once

#include "core/types.h"

// A rectangle in the view's normalised device coordinates: -1 to 1 across and up.
struct ViewRect {
  f32 left = 0;
  f32 bottom = 0;
  f32 right = 0;
  f32 top = 0;
};

// Where an image of `imageWidth` x `imageHeight` pixels is drawn whole in a view of `viewWidth` x
// `viewHeight`: as large as fits, at the image's own aspect, centred, the view's clear colour above
// and below or on both sides. An empty rectangle when either size is zero or less.
ViewRect FitImage(u32 imageWidth, u32 imageHeight, i32 viewWidth, i32 viewHeight);
