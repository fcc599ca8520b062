#include "preview/arc_ball_camera.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

namespace {

struct FakeCapture : IMouseCapture {
  int sets = 0;
  int releases = 0;
  void SetCapture() override { ++sets; }
  void ReleaseCapture() override { ++releases; }
};

void ExpectNear(const Matrix4& a, const Matrix4& b, f32 tolerance = 1e-5f) {
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) EXPECT_NEAR(a.m[r][c], b.m[r][c], tolerance) << r << "," << c;
  }
}

void ExpectNear(const Quaternion& a, const Quaternion& b) {
  const f32 difference = std::fabs(a.x - b.x) + std::fabs(a.y - b.y) + std::fabs(a.z - b.z) + std::fabs(a.w - b.w);
  EXPECT_LT(difference, 1e-6f) << a.x << " " << a.y << " " << a.z << " " << a.w;
}

const f32 kHalf = std::sqrt(0.5f);
const f32 kFov60 = 1.0471976f;

TEST(PreviewMath, ProductAppliesLeftFactorFirst) {
  // Row vectors: a quarter turn about z takes x to +y, so (1, 2, 3) turned is (-2, 1, 3).
  const Matrix4 turn = MatrixRotationQuaternion({0, 0, kHalf, kHalf});
  ExpectNear(MatrixMultiply(MatrixTranslation(1, 2, 3), turn), MatrixMultiply(turn, MatrixTranslation(-2, 1, 3)));
}

TEST(PreviewMath, QuaternionProductMatchesMatrixProduct) {
  const Quaternion a{0, 0, kHalf, kHalf};
  const Quaternion b{0.5f, 0.5f, 0.5f, 0.5f};
  const Quaternion c{0.1f, -0.7f, 0.3f, std::sqrt(0.41f)};
  for (const auto& [first, second] : {std::pair{a, b}, {b, c}}) {
    ExpectNear(MatrixRotationQuaternion(QuaternionMultiply(first, second)),
               MatrixMultiply(MatrixRotationQuaternion(first), MatrixRotationQuaternion(second)));
  }
  // The length is not divided out: a normalised (1, 0, 0, 0) would give -1 here.
  EXPECT_EQ(MatrixRotationQuaternion({2, 0, 0, 0}).m[1][1], -7.0f);
}

TEST(PreviewMath, InverseUndoesTransformAndRejectsSingular) {
  const Matrix4 m =
      MatrixMultiply(MatrixRotationQuaternion({0.1f, -0.7f, 0.3f, std::sqrt(0.41f)}), MatrixTranslation(4, -5, 6));
  Matrix4 inverse;
  ASSERT_TRUE(MatrixInverse(inverse, m));
  ExpectNear(MatrixMultiply(m, inverse), Matrix4{});
  Matrix4 flat;
  flat.m[2][2] = 0;
  EXPECT_FALSE(MatrixInverse(inverse, flat));
  ExpectNear(MatrixMultiply(m, inverse), Matrix4{});  // left alone
}

TEST(PreviewMath, PerspectiveFigures) {
  Matrix4 expected;
  expected.m[0][0] = 1.7320508f / 2;
  expected.m[1][1] = 1.7320508f;
  expected.m[2][2] = 50.0f / (0.1f - 50.0f);
  expected.m[2][3] = -1;
  expected.m[3][2] = 0.1f * 50.0f / (0.1f - 50.0f);
  expected.m[3][3] = 0;
  ExpectNear(MatrixPerspectiveFovRH(kFov60, 2.0f, 0.1f, 50.0f), expected);
}

// A 200 x 100 area with the ball filling it.
struct Camera : ::testing::Test {
  ArcBallCamera camera{200, 100};
  FakeCapture capture;
  void SetUp() override { camera.SetWindow(200, 100, 1.0f); }
  void Send(u32 message, u32 buttons, i32 x, i32 y, bool toSelf = false) {
    camera.HandleMessage(capture, message, buttons, x, y, toSelf);
  }
};

TEST_F(Camera, ScreenToBall) {
  const f32 z = std::sqrt(0.75f);
  const struct {
    i32 width;
    f32 radius, x, y;
    Vector3 ball;
  } cases[] = {
      {200, 1.0f, 100, 50, {0, 0, 1}},          {200, 1.0f, 150, 50, {0.5f, 0, z}},
      {200, 1.0f, 100, 75, {0, 0.5f, z}},                                         // y grows downward
      {200, 0.5f, 125, 50, {0.5f, 0, z}},       {201, 1.0f, 100, 50, {0, 0, 1}},  // the centre is a whole pixel
      {200, 1.0f, 250, 50, {1, 0, 0}},                                            // off the ball: onto the rim
      {200, 1.0f, 300, 150, {kHalf, kHalf, 0}},
  };
  for (const auto& c : cases) {
    camera.SetWindow(c.width, 100, c.radius);
    const Vector3 ball = camera.ScreenToBall(c.x, c.y);
    EXPECT_NEAR(ball.x, c.ball.x, 1e-6f) << c.x << "," << c.y;
    EXPECT_NEAR(ball.y, c.ball.y, 1e-6f) << c.x << "," << c.y;
    EXPECT_EQ(ball.z, c.ball.z) << c.x << "," << c.y;
  }
}

TEST_F(Camera, DragTurnsFromThePressPoint) {
  const f32 z = std::sqrt(0.75f);
  // From the centre the axis is square to the move: right turns about +y, down about -x.
  Send(kLeftButtonDown, kButtonLeft, 100, 50);
  Send(kMouseMove, kButtonLeft, 150, 50);
  const Quaternion first = camera.CurrentRotation();
  ExpectNear(first, {0, 0.5f, 0, z});
  Send(kLeftButtonUp, 0, 150, 50);
  // A second drag builds on the first; only where it ends counts, not the path.
  Send(kLeftButtonDown, kButtonLeft, 100, 50);
  Send(kMouseMove, kButtonLeft, 120, 90);
  Send(kMouseMove, kButtonLeft, 100, 75);
  ExpectNear(camera.CurrentRotation(), QuaternionMultiply(first, {-0.5f, 0, 0, z}));
  Send(kMouseMove, kButtonLeft, 100, 50);
  ExpectNear(camera.CurrentRotation(), first);
  Send(kLeftButtonUp, 0, 100, 50);
  // A press and release with no move between leaves it be.
  Send(kLeftButtonDown, kButtonLeft, 30, 20);
  Send(kLeftButtonUp, 0, 30, 20);
  ExpectNear(camera.CurrentRotation(), first);
  EXPECT_FALSE(camera.Dragging());
  EXPECT_EQ(capture.sets, 3);
  EXPECT_EQ(capture.releases, 3);
}

TEST_F(Camera, PressOutsideAreaCapturesWithoutDragging) {
  for (const auto& [x, y] : {std::pair{-1, 50}, {200, 50}, {100, -1}, {100, 100}}) {
    Send(kLeftButtonDown, kButtonLeft, x, y);
    Send(kMouseMove, kButtonLeft, 150, 50);
    EXPECT_FALSE(camera.Dragging());
    ExpectNear(camera.CurrentRotation(), Quaternion{});
  }
  EXPECT_EQ(capture.sets, 4);
}

TEST_F(Camera, PanAndZoomScaleWithFramingDistance) {
  const f32 cube[2][3] = {{-1, -1, -1}, {1, 1, 1}};
  Matrix4 offset;
  // From (50, 40) to (70, 30) in two moves, each measured from the last.
  const struct {
    u32 down, buttons;
    f32 x, y, z;
  } cases[] = {
      {kRightButtonDown, kButtonRight, -2 * 0.1f, 2 * 0.1f, 0},
      {kMiddleButtonDown, kButtonMiddle, 0, 0, 5 * 0.1f},
      {kRightButtonDoubleClick, kButtonRight | kButtonMiddle, -2 * 0.1f, 2 * 0.1f, 0},
  };
  for (const auto& c : cases) {
    camera.FrameBounds(cube[0], cube[1], kFov60, kFov60, offset);
    const f32 d = camera.TranslationRadius();
    Send(c.down, c.buttons, 50, 40);
    Send(kMouseMove, c.buttons, 60, 35);
    Send(kMouseMove, c.buttons, 70, 30);
    ExpectNear(camera.TranslationMatrix(), MatrixTranslation(c.x * d, c.y * d, c.z * d - d));
  }
  // With the left button held too, only the ball turns.
  const Matrix4 before = camera.TranslationMatrix();
  Send(kLeftButtonDown, kButtonLeft, 100, 50);
  Send(kRightButtonDown, kButtonLeft | kButtonRight, 100, 50);
  Send(kMouseMove, kButtonLeft | kButtonRight, 150, 50);
  ExpectNear(camera.TranslationMatrix(), before);
  EXPECT_GT(camera.CurrentRotation().y, 0.4f);
}

TEST_F(Camera, WhatEndsADrag) {
  Send(kLeftButtonDown, kButtonLeft, 100, 50);
  Send(kRightButtonDown, kButtonLeft | kButtonRight, 100, 50);
  Send(kRightButtonUp, kButtonLeft, 100, 50);
  Send(kCaptureChanged, kButtonLeft, 100, 50, true);
  EXPECT_TRUE(camera.Dragging());
  EXPECT_EQ(capture.releases, 1);
  Send(kCaptureChanged, kButtonLeft, 100, 50, false);
  EXPECT_FALSE(camera.Dragging());
  EXPECT_EQ(capture.releases, 2);
}

TEST_F(Camera, IgnoresOtherMessages) {
  Send(kLeftButtonDown, kButtonLeft, 100, 50);
  for (const u32 message : {0u, 511u, 534u}) EXPECT_FALSE(camera.HandleMessage(capture, message, kButtonLeft, 150, 50));
  for (const u32 message : {522u, 523u, 532u}) Send(message, kButtonLeft | kButtonRight, 150, 80);
  ExpectNear(camera.CurrentRotation(), Quaternion{});
  ExpectNear(camera.TranslationMatrix(), Matrix4{});
  EXPECT_TRUE(camera.Dragging());
  EXPECT_EQ(capture.sets + capture.releases, 1);
}

TEST_F(Camera, FrameBoundsFitsTheBoxAndStartsAfresh) {
  const f32 root63 = std::sqrt(63.0f);
  const struct {
    f32 min[3], max[3], aspect, distance;
  } cases[] = {
      {{-1, -1, -1}, {1, 1, 1}, 1, 3.6f}, {{1, 2, 3}, {3, 6, 11}, 0.5f, 2 * root63 * 1.2f},  // the width decides
  };
  EXPECT_EQ(ArcBallCamera(200, 100).Radius(), 0.9f);
  for (const auto& c : cases) {
    camera.SetWindow(200, 100, 0.5f);
    Send(kLeftButtonDown, kButtonLeft, 100, 50);
    Send(kMouseMove, kButtonLeft, 150, 50);
    camera.SetRotationMatrix(MatrixRotationQuaternion(camera.CurrentRotation()));
    Matrix4 offset;
    camera.FrameBounds(c.min, c.max, 2 * std::atan(c.aspect * std::tan(kFov60 / 2)), kFov60, offset);
    EXPECT_NEAR(camera.TranslationRadius(), c.distance, c.distance * 1e-6f);
    ExpectNear(camera.TranslationMatrix(), MatrixTranslation(0, 0, -camera.TranslationRadius()), 0);
    ExpectNear(offset,
               MatrixTranslation(-(c.min[0] + c.max[0]) / 2, -(c.min[1] + c.max[1]) / 2, -(c.min[2] + c.max[2]) / 2));
    ExpectNear(camera.CurrentRotation(), Quaternion{});
    ExpectNear(camera.RotationMatrix(), Matrix4{}, 0);
    EXPECT_EQ(camera.Radius(), 1.0f);
    EXPECT_FALSE(camera.Dragging());
  }
}

}  // namespace
