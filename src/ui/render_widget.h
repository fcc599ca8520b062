#pragma once

#include <QOpenGLWidget>
#include <QTimer>
#include <memory>

#include "preview/arc_ball_camera.h"
#include "preview/gl_render_device.h"
#include "preview/render_window.h"

// The render control: the preview on an OpenGL widget. A frame is drawn when something changed,
// at most 120 times a second; an idle preview costs nothing.
class RenderWidget final : public QOpenGLWidget, private IRenderHost, private IMouseCapture {
 public:
  explicit RenderWidget(QWidget* parent);
  ~RenderWidget() override;

  // Asks every window for the context the shaders need, OpenGL 3.3 core with a depth buffer.
  // Call before the application object exists.
  static void UseSurfaceFormat();

  CRenderWindow& Preview() { return preview; }
  // Frames drawn so far, for tests and measurements.
  u64 FrameCount() const { return frames; }

 protected:
  void paintGL() override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  bool event(QEvent* event) override;

 private:
  IRenderDevice* OpenDevice(i32& width, i32& height) override;
  bool MakeCurrent() override;
  void CloseDevice() override;
  void RequestFrame() override;
  void SetCapture() override;
  void ReleaseCapture() override;

  void Forward(QMouseEvent* event, u32 message);

  std::unique_ptr<GlRenderDevice> device;
  CRenderWindow preview;
  QTimer frameTimer;
  bool framePending = false;
  bool capturing = false;
  u64 frames = 0;
};
