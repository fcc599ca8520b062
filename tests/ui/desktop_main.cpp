// The desktop tests need the application object, made after the surface format is set.
#include <gtest/gtest.h>

#include <QApplication>

#include "ui/render_control.h"

int main(int argc, char** argv) {
  RenderControl::UseSurfaceFormat();
  QApplication application(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
