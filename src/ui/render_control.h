#pragma once

#include <QImage>
#include <QOpenGLWindow>
#include <QTimer>
#include <functional>
#include <memory>

#include "preview/arc_ball_camera.h"
#include "preview/gl_render_device.h"
#include "preview/render_window.h"

class QWidget;

// The render control: the preview in a native window of its own inside the main window, so that
// the other controls repaint without the graphics. A frame is drawn when something changed, at
// most 120 times a second; an idle preview costs nothing.
class RenderControl final : public QOpenGLWindow, private IRenderHost, private IMouseCapture {
 public:
  // Made inside a container widget of `parent`, which owns both.
  static RenderControl* Create(QWidget* parent);
  ~RenderControl() override;

  // Asks every window for the context the shaders need, OpenGL 3.3 core with a depth buffer.
  // Call before the application object exists.
  static void UseSurfaceFormat();

  QWidget* Container() const { return container; }
  CRenderWindow& Preview() { return preview; }
  // Serves events until the window has its graphics context, at most `timeoutMs`; false without.
  bool WaitForContext(int timeoutMs);
  // Draws a frame now and gives its pixels; null without graphics.
  QImage RenderFrame();
  // Called after a key turned a view on or off, for the info panel to follow.
  void OnViewsChanged(std::function<void()> changed) { viewsChanged = std::move(changed); }

 protected:
  void paintGL() override;
  void resizeGL(int width, int height) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  // F or Home frames the model again, B shows the skeleton, W the wireframe.
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  RenderControl();

  IRenderDevice* OpenDevice(i32& width, i32& height) override;
  bool MakeCurrent() override;
  void CloseDevice() override;
  void RequestFrame() override;
  void SetCapture() override;
  void ReleaseCapture() override;

  void Forward(QMouseEvent* event, u32 message);
  // The pointer was taken away: a drag under way ends and the grab goes.
  void LoseCapture();
  // Gives the keyboard to the next control of the window that takes it by Tab, or the one before.
  void LeaveByTab(bool forward);

  QWidget* container = nullptr;
  std::unique_ptr<GlRenderDevice> device;
  CRenderWindow preview;
  QTimer frameTimer;
  bool framePending = false;
  bool captured = false;
  std::function<void()> viewsChanged;
};
