// The window on screens of several sizes: the suite runs once per size under its own virtual display.
#include <QAbstractButton>
#include <QCheckBox>
#include <QFontMetrics>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QStyleOptionButton>
#include <cmath>

#include "ui/desktop_test.h"
#include "ui/dialog_units.h"

namespace {

using namespace desktoptest;

// The template's size in pixels at 96 DPI: 904 x 449 units at 6 x 13 pixels per 4 x 8 units.
constexpr int kFullWidth = 1356;
constexpr int kFullHeight = 730;

TEST(DialogUnitsTest, MapsTheTemplateAsItsPlatformDoes) {
  struct Case {
    double dpiScale, fit;
    QRect units, pixels;
  };
  const Case cases[] = {
      {1.0, 1.0, {0, 0, 904, 449}, {0, 0, 1356, 730}},
      {1.0, 1.0, {270, 6, 630, 438}, {405, 10, 945, 712}},  // the preview: 9.75 rounds up to 10
      {1.25, 1.0, {0, 0, 904, 449}, {0, 0, 1695, 912}},
      {1.0, 0.5, {6, 24, 258, 204}, {5, 20, 193, 165}},
  };
  for (const Case& c : cases) {
    const DialogUnits units(c.dpiScale, c.fit);
    EXPECT_EQ(units.ToPixels(c.units.x(), c.units.y(), c.units.width(), c.units.height()), c.pixels)
        << c.dpiScale << " x " << c.fit;
  }
  EXPECT_DOUBLE_EQ(DialogUnits(1.0, 0.937).DialogFont(QFont()).pointSizeF(), 8 * 0.937);
}

TEST(DialogUnitsTest, FitsTheSmallerOfBothDirections) {
  EXPECT_EQ(DialogUnits::FitFactor({1356, 730}, {1920, 1040}), 1.0);
  EXPECT_DOUBLE_EQ(DialogUnits::FitFactor({1356, 730}, {1272, 686}), 1272.0 / 1356);
  EXPECT_DOUBLE_EQ(DialogUnits::FitFactor({1356, 730}, {1300, 365}), 0.5);
  EXPECT_EQ(DialogUnits::FitFactor({1356, 730}, {0, 0}), 1.0);  // a screen that says nothing
}

// Where a control's text has to fit: a button's contents, a check box's label, a label's inside.
QRect TextRoom(QWidget& control) {
  QStyleOptionButton option;
  option.initFrom(&control);
  if (auto* check = qobject_cast<QCheckBox*>(&control)) {
    option.text = check->text();
    return control.style()->subElementRect(QStyle::SE_CheckBoxContents, &option, &control);
  }
  if (auto* button = qobject_cast<QPushButton*>(&control)) {
    option.text = button->text();
    return control.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &control);
  }
  return control.contentsRect();
}

QString TextOf(QWidget& control) {
  if (auto* button = qobject_cast<QAbstractButton*>(&control)) return button->text();
  if (auto* label = qobject_cast<QLabel*>(&control)) return label->text();
  return {};
}

class WindowLayoutTest : public DesktopTest {};

TEST_F(WindowLayoutTest, TheWholeWindowIsOnTheScreenAndScaledAsOne) {
  ASSERT_TRUE(PumpUntil([&] { return window.isVisible() && window.windowHandle()->isExposed(); }, 5000));
  QScreen* screen = window.screen();
  const QRect available = screen->availableGeometry();
  const QString name = QStringLiteral("window_%1x%2.png").arg(screen->size().width()).arg(screen->size().height());
  EXPECT_TRUE(screen->grabWindow(0).save(ArtifactPath(name.toUtf8().constData())));

  EXPECT_TRUE(available.contains(window.frameGeometry()))
      << window.frameGeometry().width() << "x" << window.frameGeometry().height();
  const double scale = DialogUnits::DpiScale(screen) * window.Fit();
  EXPECT_NEAR(window.width(), kFullWidth * scale, 1.0);
  EXPECT_NEAR(window.height(), kFullHeight * scale, 1.0);
  EXPECT_NEAR(window.font().pointSizeF(), 8 * window.Fit(), 1e-9);
  // The preview keeps its place in the template: its right edge 4 units from the window's.
  EXPECT_NEAR(window.Render().Container()->geometry().right() + 1, 900 * 1.5 * scale, 1.0);
  if (screen->logicalDotsPerInch() == 96 && available.width() >= 1920 && available.height() >= 1000) {
    EXPECT_EQ(window.Fit(), 1.0);
    EXPECT_NEAR(window.width(), kFullWidth, 2);
    EXPECT_NEAR(window.height(), kFullHeight, 2);
  }
}

TEST_F(WindowLayoutTest, EveryControlsTextIsWhole) {
  int checked = 0;
  for (QWidget* control : window.findChildren<QWidget*>()) {
    const QString text = TextOf(*control);
    if (text.isEmpty()) continue;
    const QFontMetrics metrics(control->font());
    const QRect room = TextRoom(*control);
    EXPECT_LE(metrics.horizontalAdvance(text), room.width()) << text.toStdString();
    EXPECT_LE(metrics.height(), control->height()) << text.toStdString();
    ++checked;
  }
  EXPECT_EQ(checked, 8);  // Convert, Cancel, the two check boxes, Open folder, two ">" and the status
  // "All files" sits between its neighbours in the strip, covering neither.
  const QRect allFiles = window.AllFilesCheck().geometry();
  EXPECT_FALSE(allFiles.intersects(window.TexturesCheck().geometry()));
  EXPECT_FALSE(allFiles.intersects(window.OpenFolderButton().geometry()));
}

}  // namespace
