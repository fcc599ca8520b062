#include "preview/image_fit.h"

ViewRect FitImage(u32 imageWidth, u32 imageHeight, i32 viewWidth, i32 viewHeight) {
  if (imageWidth == 0 || imageHeight == 0 || viewWidth <= 0 || viewHeight <= 0) return {};
  // In doubles: an image's side times a view's side passes 2^32.
  const double imageAspect = double(imageWidth) / double(imageHeight);
  const double viewAspect = double(viewWidth) / double(viewHeight);
  // The share of the view's width and height that the image takes; the other side takes all.
  const double across = imageAspect < viewAspect ? imageAspect / viewAspect : 1.0;
  const double up = imageAspect < viewAspect ? 1.0 : viewAspect / imageAspect;
  return {f32(-across), f32(-up), f32(across), f32(up)};
}
