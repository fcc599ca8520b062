#include "preview/arc_ball_camera.h"

#include <algorithm>
#include <cmath>
#include <glm/geometric.hpp>
#include <glm/vec3.hpp>

namespace {

glm::vec3 ToGlm(const Vector3& v) { return {v.x, v.y, v.z}; }

}  // namespace

ArcBallCamera::ArcBallCamera(i32 areaWidth, i32 areaHeight) : width(areaWidth), height(areaHeight) {
  Reset();
  // Reset puts the radius to 1; a new camera starts a little inside the area instead.
  radius = 0.9f;
  centreX = static_cast<f32>(width) * 0.5f;
  centreY = static_cast<f32>(height) * 0.5f;
}

void ArcBallCamera::Reset() {
  rotationMatrix = Matrix4{};
  translationMatrix = Matrix4{};
  translationDelta = Matrix4{};
  downRotation = Quaternion{};
  currentRotation = Quaternion{};
  dragging = false;
  radius = 1.0f;
  translationRadius = 1.0f;
}

void ArcBallCamera::SetWindow(i32 newWidth, i32 newHeight, f32 newRadius) {
  width = newWidth;
  height = newHeight;
  radius = newRadius;
  centreX = static_cast<f32>(width) * 0.5f;
  centreY = static_cast<f32>(height) * 0.5f;
}

Vector3 ArcBallCamera::ScreenToBall(f32 x, f32 y) const {
  // The ball is centred on the whole-pixel middle of the area, and y is not flipped: a drag down
  // reads as +y on the ball.
  const f32 bx =
      (x - static_cast<f32>(offsetX) - static_cast<f32>(width / 2)) / (static_cast<f32>(width) * radius * 0.5f);
  const f32 by =
      (y - static_cast<f32>(offsetY) - static_cast<f32>(height / 2)) / (static_cast<f32>(height) * radius * 0.5f);
  const f32 lengthSquared = bx * bx + by * by;
  if (lengthSquared > 1.0f) {
    // Off the ball: the nearest point of its rim, so the drag keeps turning about the view axis.
    const f32 scale = 1.0f / std::sqrt(lengthSquared);
    return {bx * scale, by * scale, 0.0f};
  }
  return {bx, by, std::sqrt(1.0f - lengthSquared)};
}

void ArcBallCamera::BeginDrag(i32 x, i32 y) {
  if (x < offsetX || x >= offsetX + width || y < offsetY || y >= offsetY + height) return;
  dragging = true;
  downRotation = currentRotation;
  downPoint = ScreenToBall(static_cast<f32>(x), static_cast<f32>(y));
}

void ArcBallCamera::MoveDrag(i32 x, i32 y) {
  if (!dragging) return;
  currentPoint = ScreenToBall(static_cast<f32>(x), static_cast<f32>(y));
  // The step is always taken from the press, never from the last move, so a drag cannot drift.
  // Of unit length already, both points lying on the ball; it turns by twice their angle.
  const glm::vec3 from = ToGlm(downPoint);
  const glm::vec3 to = ToGlm(currentPoint);
  const glm::vec3 axis = glm::cross(from, to);
  const Quaternion step{axis.x, axis.y, axis.z, glm::dot(from, to)};
  currentRotation = QuaternionMultiply(downRotation, step);
}

bool ArcBallCamera::HandleMessage(IMouseCapture& capture, u32 message, u32 buttons, i32 x, i32 y, bool captureToSelf) {
  // The wheel and anything outside the mouse range fall to the default, untouched.
  switch (message) {
    case kLeftButtonDown:
    case kLeftButtonDoubleClick:
      // Captured even off the area, so the matching release still comes here.
      capture.SetCapture();
      BeginDrag(x, y);
      return true;
    case kLeftButtonUp:
      capture.ReleaseCapture();
      dragging = false;
      return true;
    case kRightButtonDown:
    case kRightButtonDoubleClick:
    case kMiddleButtonDown:
    case kMiddleButtonDoubleClick:
      capture.SetCapture();
      lastX = x;
      lastY = y;
      return true;
    case kRightButtonUp:
    case kMiddleButtonUp:
      // A left drag held through it goes on.
      capture.ReleaseCapture();
      return true;
    case kCaptureChanged:
      if (captureToSelf) return false;
      capture.ReleaseCapture();
      dragging = false;
      return true;
    case kMouseMove: return HandleMove(buttons, x, y);
    default: return false;
  }
}

bool ArcBallCamera::HandleMove(u32 buttons, i32 x, i32 y) {
  // The left button wins: rolling and panning at once would fight each other.
  if ((buttons & kButtonLeft) != 0) {
    MoveDrag(x, y);
    return true;
  }
  if ((buttons & (kButtonRight | kButtonMiddle)) == 0) return false;
  // Scaled by the framing distance, so a pan covers the same share of the view however far back
  // the model sits.
  const f32 dy = static_cast<f32>(lastY - y) * translationRadius / static_cast<f32>(height);
  const f32 dx = static_cast<f32>(x - lastX) * translationRadius / static_cast<f32>(width);
  if ((buttons & kButtonRight) != 0) {
    translationDelta = MatrixTranslation(-2.0f * dx, 2.0f * dy, 0.0f);
  } else {
    translationDelta = MatrixTranslation(0.0f, 0.0f, 5.0f * dy);
  }
  translationMatrix = MatrixMultiply(translationMatrix, translationDelta);
  lastX = x;
  lastY = y;
  return true;
}

void ArcBallCamera::FrameBounds(const f32 min[3], const f32 max[3], f32 horizontalFov, f32 verticalFov,
                                Matrix4& modelOffset) {
  f32 half[3];
  f32 centre[3];
  for (int i = 0; i < 3; ++i) {
    half[i] = (max[i] - min[i]) * 0.5f;
    centre[i] = min[i] + half[i];
  }
  // Far enough back that the bounding sphere fits both ways, with a fifth more as a margin.
  const f32 sphereRadius = std::sqrt(half[0] * half[0] + half[1] * half[1] + half[2] * half[2]);
  const f32 acrossDistance = sphereRadius / std::tan(horizontalFov * 0.5f);
  const f32 upDistance = sphereRadius / std::tan(verticalFov * 0.5f);
  const f32 distance = std::max(acrossDistance, upDistance) * 1.2f;
  Reset();
  translationRadius = distance;
  translationMatrix = MatrixTranslation(0.0f, 0.0f, -distance);
  modelOffset = MatrixTranslation(-centre[0], -centre[1], -centre[2]);
}
