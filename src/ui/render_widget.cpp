#include "ui/render_widget.h"

#include <QMouseEvent>
#include <QSurfaceFormat>
#include <QWheelEvent>

namespace {

constexpr int kFrameIntervalMs = 1000 / 120 + 1;

u32 ButtonFlags(Qt::MouseButtons buttons) {
  u32 flags = 0;
  if (buttons & Qt::LeftButton) flags |= kButtonLeft;
  if (buttons & Qt::RightButton) flags |= kButtonRight;
  if (buttons & Qt::MiddleButton) flags |= kButtonMiddle;
  return flags;
}

// The message of a press (offset 0), release (1) or double click (2) of `button`; 0 for others.
u32 ButtonMessage(Qt::MouseButton button, u32 offset) {
  switch (button) {
    case Qt::LeftButton:
      return kLeftButtonDown + offset;
    case Qt::RightButton:
      return kRightButtonDown + offset;
    case Qt::MiddleButton:
      return kMiddleButtonDown + offset;
    default:
      return 0;
  }
}

}  // namespace

void RenderWidget::UseSurfaceFormat() {
  QSurfaceFormat format;
  format.setVersion(3, 3);
  format.setProfile(QSurfaceFormat::CoreProfile);
  format.setDepthBufferSize(24);
  QSurfaceFormat::setDefaultFormat(format);
}

RenderWidget::RenderWidget(QWidget* parent) : QOpenGLWidget(parent), preview(*this, 640, 480) {
  frameTimer.setTimerType(Qt::PreciseTimer);
  frameTimer.setInterval(kFrameIntervalMs);
  QObject::connect(&frameTimer, &QTimer::timeout, this, [this] {
    if (!framePending) {
      frameTimer.stop();
      return;
    }
    framePending = false;
    update();
  });
}

RenderWidget::~RenderWidget() { preview.Shutdown(); }

IRenderDevice* RenderWidget::OpenDevice(i32& width, i32& height) {
  if (!context() || !context()->isValid()) return nullptr;
  makeCurrent();
  device = std::make_unique<GlRenderDevice>();
  if (!device->Open()) {
    device.reset();
    return nullptr;
  }
  const qreal ratio = devicePixelRatioF();
  width = i32(this->width() * ratio);
  height = i32(this->height() * ratio);
  return device.get();
}

bool RenderWidget::MakeCurrent() {
  if (!device || !context()) return false;
  makeCurrent();
  return true;
}

void RenderWidget::CloseDevice() {
  if (!device) return;
  if (context()) makeCurrent();
  device->Close();
  device.reset();
}

void RenderWidget::RequestFrame() {
  framePending = true;
  if (!frameTimer.isActive()) {
    // The first frame after a pause is drawn at once; the timer then spaces the next ones.
    framePending = false;
    update();
    frameTimer.start();
  }
}

void RenderWidget::paintGL() {
  preview.Tick();
  ++frames;
}

void RenderWidget::SetCapture() {
  capturing = true;
  grabMouse();
}

void RenderWidget::ReleaseCapture() {
  if (!capturing) return;
  capturing = false;
  releaseMouse();
}

void RenderWidget::Forward(QMouseEvent* event, u32 message) {
  event->accept();
  if (message == 0) return;
  const qreal ratio = devicePixelRatioF();
  const QPointF at = event->position() * ratio;
  preview.HandleMouse(*this, message, ButtonFlags(event->buttons()), i32(at.x()), i32(at.y()));
}

void RenderWidget::mousePressEvent(QMouseEvent* event) { Forward(event, ButtonMessage(event->button(), 0)); }

void RenderWidget::mouseReleaseEvent(QMouseEvent* event) { Forward(event, ButtonMessage(event->button(), 1)); }

void RenderWidget::mouseDoubleClickEvent(QMouseEvent* event) { Forward(event, ButtonMessage(event->button(), 2)); }

void RenderWidget::mouseMoveEvent(QMouseEvent* event) { Forward(event, kMouseMove); }

void RenderWidget::wheelEvent(QWheelEvent* event) { event->accept(); }

bool RenderWidget::event(QEvent* event) {
  // The pointer was taken from us by someone else: a drag under way ends.
  if (event->type() == QEvent::UngrabMouse && capturing) {
    capturing = false;
    preview.HandleMouse(*this, kCaptureChanged, 0, 0, 0, false);
  }
  return QOpenGLWidget::event(event);
}
