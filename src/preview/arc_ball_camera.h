#pragma once

#include "core/types.h"
#include "preview/preview_math.h"

// Mouse messages of the render control.
enum MouseMessage : u32 {
  kMouseMove = 512,
  kLeftButtonDown = 513,
  kLeftButtonUp = 514,
  kLeftButtonDoubleClick = 515,
  kRightButtonDown = 516,
  kRightButtonUp = 517,
  kRightButtonDoubleClick = 518,
  kMiddleButtonDown = 519,
  kMiddleButtonUp = 520,
  kMiddleButtonDoubleClick = 521,
  kMouseWheel = 522,
  kCaptureChanged = 533,
};

// Buttons held during a mouse message.
enum MouseButton : u32 {
  kButtonLeft = 1,
  kButtonRight = 2,
  kButtonMiddle = 0x10,
};

// Where the camera takes and gives back the mouse, so that a drag goes on outside the control.
class IMouseCapture {
 public:
  virtual ~IMouseCapture() = default;
  virtual void SetCapture() = 0;
  virtual void ReleaseCapture() = 0;
};

// Turns the mouse gestures on the preview into the model's transform. The eye stays at the origin
// looking down -z; the left button rolls the model like a ball, the right one pans it, the middle
// one moves it nearer or farther.
class ArcBallCamera {
 public:
  // `width` and `height` are a first guess at the area's size, until SetWindow.
  ArcBallCamera(i32 width, i32 height);

  void Reset();
  void SetWindow(i32 width, i32 height, f32 radius);
  // One mouse message at (x, y) with the `buttons` held. For kCaptureChanged, `captureToSelf`
  // says whether the capture went to this control itself. True for a message it took.
  bool HandleMessage(IMouseCapture& capture, u32 message, u32 buttons, i32 x, i32 y, bool captureToSelf = false);
  // Frames the box `min`..`max` and gives the model's centring translation in `modelOffset`.
  void FrameBounds(const f32 min[3], const f32 max[3], f32 horizontalFov, f32 verticalFov, Matrix4& modelOffset);
  Vector3 ScreenToBall(f32 x, f32 y) const;

  const Matrix4& RotationMatrix() const { return rotationMatrix; }
  const Matrix4& TranslationMatrix() const { return translationMatrix; }
  const Quaternion& CurrentRotation() const { return currentRotation; }
  // Tick stores the rotation of the current quaternion here, once per frame.
  void SetRotationMatrix(const Matrix4& matrix) { rotationMatrix = matrix; }
  f32 Radius() const { return radius; }
  f32 TranslationRadius() const { return translationRadius; }
  bool Dragging() const { return dragging; }

 private:
  void BeginDrag(i32 x, i32 y);
  void MoveDrag(i32 x, i32 y);
  bool HandleMove(u32 buttons, i32 x, i32 y);

  Matrix4 rotationMatrix;
  Matrix4 translationMatrix;
  Matrix4 translationDelta;
  i32 offsetX = 0, offsetY = 0;
  i32 width = 0, height = 0;
  f32 centreX = 0, centreY = 0;
  f32 radius = 0.9f;
  f32 translationRadius = 1.0f;
  Quaternion downRotation;
  Quaternion currentRotation;
  bool dragging = false;
  i32 lastX = 0, lastY = 0;
  Vector3 downPoint;
  Vector3 currentPoint;
};
