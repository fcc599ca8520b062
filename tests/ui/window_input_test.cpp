// The window without the mouse: its keys, and folders dropped on it.
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>

#include "ui/desktop_test.h"

namespace {

using namespace desktoptest;

class WindowInputTest : public DesktopTest {
 protected:
  void SetUp() override {
    DesktopTest::SetUp();
    // A window's keys reach it only while it is the active one.
    window.activateWindow();
    ASSERT_TRUE(PumpUntil([&] { return window.isActiveWindow(); }, 5000));
  }

  // A key pressed and released where the keyboard's focus is, as a user's typing arrives.
  static void Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {}) {
    QWidget* target = QApplication::focusWidget() ? QApplication::focusWidget() : QApplication::activeWindow();
    ASSERT_TRUE(target);
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent event(type, key, modifiers, text);
      QCoreApplication::sendEvent(target, &event);
    }
  }
  static void Type(const char* text) {
    for (const char* c = text; *c; ++c) Key(QChar(*c).toUpper().unicode(), Qt::NoModifier, QString(QChar(*c)));
  }

  // The last log line.
  std::string LastLogLine() {
    const i32 count = window.Window().GetCount(kLogList);
    char text[512] = {};
    if (count == 0 || window.Window().GetTextLength(kLogList, count - 1) >= 512) return {};
    window.Window().GetText(kLogList, count - 1, text);
    return text;
  }

  // Drags `path` over the window and drops it; whether the window took the drag.
  bool Drop(const std::string& path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
    const QPoint at(window.width() / 2, window.height() / 2);
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &drop);
    return drop.isAccepted();
  }
};

TEST_F(WindowInputTest, SearchSelectAndConvertFromTheKeyboardAlone) {
  Key(Qt::Key_F, Qt::ControlModifier);
  ASSERT_EQ(QApplication::focusWidget(), &window.SearchEdit());
  Type("*wolf*");
  EXPECT_EQ(window.SearchEdit().text(), QStringLiteral("*wolf*"));
  Key(Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
  ASSERT_TRUE(PumpUntil([&] { return !app.workerBusy && window.Window().GetCount(kFileList) == 1; }));
  Key(Qt::Key_Down);
  EXPECT_EQ(window.Window().GetCurSel(kFileList), 0);
  const std::string path = dir.Join("keyboard_wolf.fbx");
  bool answered = false;
  SaveAs(path, &answered);
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_TRUE(answered);
  EXPECT_EQ(gamewriters::ReadFileBytes(path).substr(0, 18), std::string("Kaydara FBX Binary"));
}

TEST_F(WindowInputTest, EachKeyIsNamedInItsButtonsTooltip) {
  const struct {
    QWidget* control;
    const char* keys;
  } cases[] = {
      {&window.SearchEdit(), "(Ctrl+F)"},
      {&window.ConvertButton(), "(Ctrl+S)"},
      {&window.OpenFolderButton(), "(Ctrl+O)"},
      {&window.CancelButton(), "(Esc)"},
  };
  for (const auto& c : cases) EXPECT_TRUE(c.control->toolTip().endsWith(QLatin1String(c.keys))) << c.keys;
}

TEST_F(WindowInputTest, EscapeCancelsOnlyWhileCancelIsShown) {
  Key(Qt::Key_Escape);
  EXPECT_FALSE(app.batchStop);
  window.Window().Show(kCancelButton, true);  // as a running batch shows it
  Key(Qt::Key_Escape);
  EXPECT_TRUE(app.batchStop);
}

TEST_F(WindowInputTest, CtrlQClosesTheWindow) {
  Key(Qt::Key_Q, Qt::ControlModifier);
  EXPECT_FALSE(window.isVisible());
}

TEST_F(WindowInputTest, ADroppedFolderOrFirstPackOpensItsGame) {
  testsupport::TempDir other;
  ASSERT_TRUE(gamewriters::BuildSampleGame(other.Path(), nullptr));
  const std::string game = gamewriters::SampleGameLayout(other.Path()).game;
  const std::string shown = QDir(QString::fromStdString(game)).absolutePath().toStdString();
  for (const std::string& dropped : {game, game + "/Resources/Assets/assets_000.pack"}) {
    ASSERT_TRUE(Drop(dropped)) << dropped;
    ASSERT_TRUE(PumpUntil([&] { return app.ready && !app.workerBusy && app.currentGame == i32(kGameCount); }));
    EXPECT_EQ(window.Window().GetCount(kGameCombo), 2) << "listed once: " << dropped;
    EXPECT_EQ(window.Window().GetCount(kFileList), 10);
  }
  bool found = false;
  for (i32 i = 0; i < window.Window().GetCount(kLogList); ++i) {
    char text[512] = {};
    if (window.Window().GetTextLength(kLogList, i) < 512 && window.Window().GetText(kLogList, i, text) >= 0) {
      found = found || std::string(text) == "Found game \"game\" at " + shown;
    }
  }
  EXPECT_TRUE(found) << "as Open folder logs it";
}

TEST_F(WindowInputTest, ADropThatNamesNoGameFolderIsRefused) {
  const std::string file = dir.Join("notes.txt");
  ASSERT_TRUE(gamewriters::WriteFileBytes(file, "x"));
  EXPECT_FALSE(Drop(file));
  const i32 logged = window.Window().GetCount(kLogList);
  // A folder is taken, and Open folder's own check says it holds no game.
  ASSERT_TRUE(QDir().mkpath(QString::fromStdString(dir.Join("plain"))));
  ASSERT_TRUE(Drop(dir.Join("plain")));
  EXPECT_EQ(window.Window().GetCount(kLogList), logged + 1);
  EXPECT_EQ(LastLogLine().rfind("No game in ", 0), 0u) << LastLogLine();
}

}  // namespace
