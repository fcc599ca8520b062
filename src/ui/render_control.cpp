#include "ui/render_control.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QSurfaceFormat>
#include <QWheelEvent>
#include <QWidget>
#include <QWindow>

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
    case Qt::LeftButton: return kLeftButtonDown + offset;
    case Qt::RightButton: return kRightButtonDown + offset;
    case Qt::MiddleButton: return kMiddleButtonDown + offset;
    default: return 0;
  }
}

}  // namespace

void RenderControl::UseSurfaceFormat() {
  QSurfaceFormat format;
  format.setVersion(3, 3);
  format.setProfile(QSurfaceFormat::CoreProfile);
  format.setDepthBufferSize(24);
  QSurfaceFormat::setDefaultFormat(format);
}

RenderControl* RenderControl::Create(QWidget* parent) {
  auto* control = new RenderControl();  // owned by its container from here on
  control->container = QWidget::createWindowContainer(control, parent);
  control->container->installEventFilter(control);
  return control;
}

RenderControl::RenderControl() : QOpenGLWindow(QOpenGLWindow::NoPartialUpdate), preview(*this, 640, 480) {
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
  // The toolkit tells a native child nothing when the pointer goes elsewhere; these say it instead:
  // the program no longer active, or another of its windows (a dialog) taking the focus.
  QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
    if (state != Qt::ApplicationActive) LoseCapture();
  });
  QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](QWindow* focus) {
    const QWidget* top = container ? container->window() : nullptr;
    if (focus && focus != this && (!top || focus != top->windowHandle())) LoseCapture();
  });
}

RenderControl::~RenderControl() { preview.Shutdown(); }

bool RenderControl::WaitForContext(int timeoutMs) {
  QElapsedTimer clock;
  clock.start();
  while (!isValid() && clock.elapsed() < timeoutMs) {
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  }
  return isValid();
}

QImage RenderControl::RenderFrame() {
  if (!MakeCurrent()) return {};
  preview.Tick();
  return grabFramebuffer();
}

IRenderDevice* RenderControl::OpenDevice(i32& width, i32& height) {
  if (!isValid()) return nullptr;
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

bool RenderControl::MakeCurrent() {
  if (!device || !isValid()) return false;
  makeCurrent();
  return true;
}

void RenderControl::CloseDevice() {
  if (!device) return;
  if (isValid()) makeCurrent();
  device->Close();
  device.reset();
}

void RenderControl::RequestFrame() {
  framePending = true;
  if (!frameTimer.isActive()) {
    // The first frame after a pause is drawn at once; the timer then spaces the next ones.
    framePending = false;
    update();
    frameTimer.start();
  }
}

void RenderControl::paintGL() { preview.Tick(); }

void RenderControl::resizeGL(int width, int height) {
  const qreal ratio = devicePixelRatioF();
  preview.Resize(i32(width * ratio), i32(height * ratio));
}

void RenderControl::SetCapture() {
  captured = true;
  setMouseGrabEnabled(true);
}

void RenderControl::ReleaseCapture() {
  captured = false;
  setMouseGrabEnabled(false);
}

void RenderControl::LoseCapture() {
  if (captured) preview.HandleMouse(*this, kCaptureChanged, 0, 0, 0, false);
}

bool RenderControl::event(QEvent* event) {
  if (event->type() == QEvent::UngrabMouse) LoseCapture();
  return QOpenGLWindow::event(event);
}

bool RenderControl::eventFilter(QObject* watched, QEvent* event) {
  if (watched == container && event->type() == QEvent::EnabledChange) {
    // A worker disables the control while a drag may be under way; the drag must not outlive it.
    // Enabled again, the container's own native window ends up stacked over the preview's, which
    // the screen then hides: the preview is raised again once the toolkit is done, and redrawn.
    if (container->isEnabled()) {
      QTimer::singleShot(0, this, [this] {
        raise();
        RequestFrame();
      });
    } else {
      LoseCapture();
    }
  }
  return QOpenGLWindow::eventFilter(watched, event);
}

void RenderControl::Forward(QMouseEvent* event, u32 message) {
  event->accept();
  // A disabled control takes no gestures, as while a worker runs.
  if (message == 0 || !container || !container->isEnabled()) return;
  const qreal ratio = devicePixelRatioF();
  const QPointF at = event->position() * ratio;
  preview.HandleMouse(*this, message, ButtonFlags(event->buttons()), i32(at.x()), i32(at.y()));
}

void RenderControl::mousePressEvent(QMouseEvent* event) {
  // A click gives the preview the keyboard, for its view keys; the toolkit leaves it where it was.
  if (container && container->isEnabled() && !isActive()) requestActivate();
  Forward(event, ButtonMessage(event->button(), 0));
}

void RenderControl::mouseReleaseEvent(QMouseEvent* event) { Forward(event, ButtonMessage(event->button(), 1)); }

void RenderControl::mouseDoubleClickEvent(QMouseEvent* event) { Forward(event, ButtonMessage(event->button(), 2)); }

void RenderControl::mouseMoveEvent(QMouseEvent* event) { Forward(event, kMouseMove); }

void RenderControl::wheelEvent(QWheelEvent* event) { event->accept(); }

void RenderControl::LeaveByTab(bool forward) {
  if (!container) return;
  QWidget* next = container;
  do {
    next = forward ? next->nextInFocusChain() : next->previousInFocusChain();
  } while (next != container && !(next->isEnabled() && next->isVisible() && (next->focusPolicy() & Qt::TabFocus)));
  if (next == container) return;
  if (QWindow* top = container->window()->windowHandle()) top->requestActivate();
  next->setFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}

void RenderControl::keyPressEvent(QKeyEvent* event) {
  // The preview is a window of its own, so the dialog's Tab would stay in it: it goes on in the
  // template's order from here.
  if (event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab) {
    LeaveByTab(event->key() == Qt::Key_Tab && !(event->modifiers() & Qt::ShiftModifier));
    return;
  }
  if (event->modifiers() & ~Qt::KeypadModifier) {
    event->ignore();
    return;
  }
  PreviewViews views = preview.Views();
  switch (event->key()) {
    case Qt::Key_F:
    case Qt::Key_Home: preview.Reframe(); return;
    case Qt::Key_B: views.skeleton = !views.skeleton; break;
    case Qt::Key_W: views.wireframe = !views.wireframe; break;
    default: event->ignore(); return;
  }
  preview.SetViews(views);
  if (viewsChanged) viewsChanged();
}
