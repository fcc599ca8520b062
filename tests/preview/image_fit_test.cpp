#include "preview/image_fit.h"

#include <gtest/gtest.h>

namespace {

TEST(FitImage, WholeAtItsAspectCentredInTheView) {
  struct Case {
    const char* name;
    u32 imageWidth, imageHeight;
    i32 viewWidth, viewHeight;
    ViewRect expected;
  };
  const Case cases[] = {
      {"same aspect, smaller", 8, 8, 630, 630, {-1, -1, 1, 1}},
      {"same aspect, larger", 4096, 2048, 400, 200, {-1, -1, 1, 1}},
      {"wider than the view: bars above and below", 4, 1, 200, 200, {-1, -0.25f, 1, 0.25f}},
      {"taller than the view: bars on both sides", 1, 2, 400, 200, {-0.25f, -1, 0.25f, 1}},
      {"square in a wide view", 8, 8, 1260, 876, {-876.0f / 1260.0f, -1, 876.0f / 1260.0f, 1}},
      {"one row at the largest size", 16384, 1, 200, 100, {-1, -1.0f / 8192.0f, 1, 1.0f / 8192.0f}},
      {"no image width", 0, 8, 200, 200, {}},
      {"no image height", 8, 0, 200, 200, {}},
      {"no view", 8, 8, 0, 200, {}},
      {"a view of negative height", 8, 8, 200, -1, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const ViewRect rect = FitImage(c.imageWidth, c.imageHeight, c.viewWidth, c.viewHeight);
    EXPECT_FLOAT_EQ(rect.left, c.expected.left);
    EXPECT_FLOAT_EQ(rect.bottom, c.expected.bottom);
    EXPECT_FLOAT_EQ(rect.right, c.expected.right);
    EXPECT_FLOAT_EQ(rect.top, c.expected.top);
  }
}

}  // namespace
