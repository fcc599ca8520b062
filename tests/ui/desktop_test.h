#pragma once
// The desktop program on a real display (Xvfb with software OpenGL): the window on the sample game,
// and what a user's clicks, keys and dialog answers do to it.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QItemSelectionModel>
#include <QListView>
#include <QString>
#include <QThread>
#include <QTimer>
#include <cstdlib>
#include <functional>
#include <string>

#include "app/app_state.h"
#include "game_writers/sample_game.h"
#include "support/temp_dir.h"
#include "ui/main_window.h"
#include "ui/render_control.h"

namespace desktoptest {

inline bool PumpUntil(const std::function<bool()>& done, int timeoutMs = 30000) {
  QElapsedTimer clock;
  clock.start();
  while (!done()) {
    if (clock.elapsed() > timeoutMs) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    QThread::msleep(1);
  }
  return true;
}

// Answers the next modal dialog of type `Dialog` with `answer`, from inside its own event loop.
template <class Dialog>
void AnswerNextDialog(const std::function<void(Dialog&)>& answer) {
  QTimer::singleShot(0, [answer] {
    PumpUntil([] { return qobject_cast<Dialog*>(QApplication::activeModalWidget()) != nullptr; }, 10000);
    if (auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget())) answer(*dialog);
  });
}

inline void SaveAs(const std::string& path, bool* answered) {
  AnswerNextDialog<QFileDialog>([path, answered](QFileDialog& dialog) {
    dialog.selectFile(QString::fromStdString(path));
    static_cast<QDialog&>(dialog).accept();  // the file dialog checks and takes the name
    *answered = true;
  });
}

inline bool IsClearGrey(QRgb pixel) {
  return std::abs(qRed(pixel) - 191) <= 1 && std::abs(qGreen(pixel) - 191) <= 1 && std::abs(qBlue(pixel) - 191) <= 1;
}

class DesktopTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    ASSERT_TRUE(gamewriters::BuildSampleGame(dir.Path(), &error)) << error;
    window.show();
    window.Start(gamewriters::SampleGameLayout(dir.Path()).userData.c_str());
    ASSERT_TRUE(PumpUntil([&] { return app.ready && !app.workerBusy; }));
  }

  // Selects `name` in the file list as a user's click does.
  void Select(const char* name) {
    QtWindowSystem& windows = window.Window();
    for (i32 row = 0; row < windows.GetCount(kFileList); ++row) {
      char text[260] = {};
      if (windows.GetTextLength(kFileList, row) < 260 && windows.GetText(kFileList, row, text) >= 0 &&
          std::string(text) == name) {
        QListView& view = window.FileView();
        view.selectionModel()->setCurrentIndex(view.model()->index(row, 0), QItemSelectionModel::ClearAndSelect);
        return;
      }
    }
    FAIL() << name << " is not listed";
  }

  testsupport::TempDir dir;
  AppState app;
  MainWindow window{app};
};

// Where the tests leave screenshots and frames for a person to look at.
inline QString ArtifactPath(const char* name) {
  const QString folder = QStringLiteral(TARNWICK_ARTIFACT_DIR);
  QDir().mkpath(folder);
  return folder + QLatin1Char('/') + QString::fromUtf8(name);
}

}  // namespace desktoptest
