// The preview's views for checking a model, drawn by the real graphics: the skeleton (B) and the
// wireframe (W).
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>

#include "preview/preview_math.h"
#include "ui/desktop_test.h"
#include "ui/dialog_units.h"

namespace {

using namespace desktoptest;

class PreviewViewsTest : public DesktopTest {
 protected:
  // A key pressed on the preview.
  void PreviewKey(int key) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&window.Render(), &press);
  }
  QImage Frame() { return window.Render().RenderFrame().convertToFormat(QImage::Format_RGB32); }
  std::string Panel() {
    CStringBufferA text;
    return window.Window().GetText(kInfoText, text) ? text.Text() : "";
  }

  // Where the knight's rig puts the bone `name` at rest: every rotation of the sample's rigs is the
  // identity, so the sum of the translations up its chain.
  Vector3 RestPosition(const char* name) {
    CStringA key;
    key.Borrow("humanoid");
    const u32 found = app.rigs.Find(key);
    EXPECT_LT(found, app.rigs.Count());
    const RigSkeleton& rig = app.rigs.ValueAt(found).rigs[0];
    Vector3 at;
    for (u32 bone = 0; bone < rig.bones.Count(); ++bone) {
      if (std::string(rig.bones[bone].name.Text()) != name) continue;
      for (i32 b = i32(bone); b >= 0; b = rig.bones[u32(b)].parent) {
        at.x += rig.bones[u32(b)].translation[0];
        at.y += rig.bones[u32(b)].translation[1];
        at.z += rig.bones[u32(b)].translation[2];
      }
      return at;
    }
    ADD_FAILURE() << name << " is not in the rig";
    return at;
  }

  // The pixel of `frame` that `p` of the model's space falls on, through the last frame's matrices.
  QPoint Project(const Vector3& p, const QImage& frame) {
    const Matrix4 m = MatrixMultiply(window.Render().Preview().FrameWorld(), window.Render().Preview().Projection());
    f32 clip[4];
    for (int c = 0; c < 4; ++c) clip[c] = p.x * m.m[0][c] + p.y * m.m[1][c] + p.z * m.m[2][c] + m.m[3][c];
    const f32 x = clip[0] / clip[3], y = clip[1] / clip[3];
    return QPoint(int((x * 0.5f + 0.5f) * f32(frame.width())), int((0.5f - y * 0.5f) * f32(frame.height())));
  }
};

bool IsSkeletonColour(QRgb p) { return qRed(p) > 230 && qGreen(p) < 30 && qBlue(p) > 230; }

TEST_F(PreviewViewsTest, BDrawsTheRigsJointsOverTheModelAndOffLeavesTheFrameAsItWas) {
  Select("actors\\knight.adr");
  const QImage before = Frame();
  ASSERT_FALSE(before.isNull());
  PreviewKey(Qt::Key_B);
  const QImage on = Frame();
  EXPECT_TRUE(on.save(ArtifactPath("preview_skeleton.png")));
  for (const char* bone : {"head", "arm_l", "leg_r"}) {
    const QPoint at = Project(RestPosition(bone), on);
    ASSERT_TRUE(on.rect().contains(at)) << bone;
    EXPECT_TRUE(IsSkeletonColour(on.pixel(at))) << bone << " at " << at.x() << "," << at.y();
    EXPECT_FALSE(IsSkeletonColour(before.pixel(at))) << bone;
  }
  PreviewKey(Qt::Key_B);
  EXPECT_EQ(Frame(), before);
}

TEST_F(PreviewViewsTest, WDrawsTheTrianglesEdgesAndOffLeavesTheFrameAsItWas) {
  Select("actors\\knight.adr");
  const QImage before = Frame();
  PreviewKey(Qt::Key_W);
  const QImage on = Frame();
  EXPECT_TRUE(on.save(ArtifactPath("preview_wireframe.png")));
  // Edges only: the clear grey shows through inside the model, so far fewer pixels are the model's.
  const auto modelPixels = [](const QImage& frame) {
    int count = 0;
    for (int y = 0; y < frame.height(); ++y) {
      for (int x = 0; x < frame.width(); ++x) count += IsClearGrey(frame.pixel(x, y)) ? 0 : 1;
    }
    return count;
  };
  const int filled = modelPixels(before), edges = modelPixels(on);
  EXPECT_GT(edges, 0);
  EXPECT_LT(edges, filled * 2 / 3) << filled << " filled, " << edges << " in wireframe";
  PreviewKey(Qt::Key_W);
  EXPECT_EQ(Frame(), before);
}

TEST_F(PreviewViewsTest, ThePanelNamesTheRigThatConvertWouldTake) {
  const struct {
    const char* actor;
    const char* line;
  } cases[] = {
      {"actors\\knight.adr", "Skeleton: Idle\n"},          // its own network's set
      {"actors\\scarecrow.adr", "Skeleton: ChildIdle\n"},  // two fit: the rig dialog's first, unasked
      {"actors\\barrel.adr", "Skeleton: none, no rig fits this actor\n"},
  };
  PreviewKey(Qt::Key_B);
  for (const auto& c : cases) {
    Select(c.actor);
    const std::string panel = Panel();
    ASSERT_GE(panel.size(), std::strlen(c.line)) << c.actor;
    EXPECT_EQ(panel.substr(panel.size() - std::strlen(c.line)), c.line) << c.actor;
  }
  Select("actors\\knight.adr");
  // For a person to look at: the whole window as the screen shows it, skeleton and panel line.
  (void)PumpUntil([] { return false; }, 200);
  EXPECT_TRUE(window.screen()->grabWindow(window.winId()).save(ArtifactPath("window_skeleton.png")));
  PreviewKey(Qt::Key_B);
  EXPECT_EQ(Panel().find("Skeleton"), std::string::npos) << "the line goes with the view";
}

TEST_F(PreviewViewsTest, AClickTakesTheKeysAndFOrHomeFrameTheModelAgain) {
  Select("actors\\knight.adr");
  const QImage framed = Frame();
  for (const int key : {Qt::Key_F, Qt::Key_Home}) {
    RenderControl& control = window.Render();
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(200, 200), QPointF(200, 200), Qt::RightButton, Qt::RightButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(&control, &press);
    EXPECT_TRUE(PumpUntil([&] { return control.isActive(); }, 2000)) << "a click gives the preview the keys";
    QMouseEvent move(QEvent::MouseMove, QPointF(260, 240), QPointF(260, 240), Qt::NoButton, Qt::RightButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(&control, &move);
    QMouseEvent release(QEvent::MouseButtonRelease, QPointF(260, 240), QPointF(260, 240), Qt::RightButton, Qt::NoButton,
                        Qt::NoModifier);
    QCoreApplication::sendEvent(&control, &release);
    ASSERT_NE(Frame(), framed) << "the pan moved the model";
    PreviewKey(key);
    EXPECT_EQ(Frame(), framed) << key;
  }
}

TEST_F(PreviewViewsTest, TabLeavesThePreviewInTheTemplatesOrder) {
  RenderControl& control = window.Render();
  const DialogUnits units(DialogUnits::DpiScale(window.screen()), window.Fit());
  const struct {
    int key;
    Qt::KeyboardModifiers modifiers;
    QPoint expected;  // where the template puts the control after the preview, or before it
  } cases[] = {
      {Qt::Key_Tab, Qt::NoModifier, units.ToPixels(6, 324, 0, 0).topLeft()},          // the info panel
      {Qt::Key_Backtab, Qt::ShiftModifier, units.ToPixels(78, 234, 0, 0).topLeft()},  // the game's ">"
  };
  for (const auto& c : cases) {
    control.requestActivate();
    ASSERT_TRUE(PumpUntil([&] { return control.isActive(); }, 2000));
    QKeyEvent tab(QEvent::KeyPress, c.key, c.modifiers);
    QCoreApplication::sendEvent(&control, &tab);
    ASSERT_TRUE(PumpUntil([&] { return QApplication::focusWidget() && window.isActiveWindow(); }, 2000));
    EXPECT_EQ(QApplication::focusWidget()->pos(), c.expected) << c.key;
  }
}

}  // namespace
