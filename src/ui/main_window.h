#pragma once

#include <QWidget>

#include "app/app_state.h"
#include "app/game_search.h"
#include "ui/folder_dialog.h"
#include "ui/qt_window_system.h"
#include "ui/rig_dialog.h"
#include "ui/save_dialog.h"

class QCheckBox;
class QLineEdit;
class QListView;
class QPushButton;
class RenderControl;

// The program's one window, "Tarnwick": file list and search at the top left, the game selector
// and status below them, the log and the info panel, and the preview on the right. Nothing in it
// moves or resizes.
class MainWindow final : public QWidget {
 public:
  explicit MainWindow(AppState& app);
  ~MainWindow() override;

  // Binds the application to the window and finds the games where `search` says. Call once the
  // window is shown: the preview waits for its graphics.
  void Start(const GameSearch& search);
  // The same with the digest files under `userFolder` alone (null: the platform's per-user folder).
  void Start(const char* userFolder);

  QtWindowSystem& Window() { return windowSystem; }
  RenderControl& Render() { return *renderControl; }
  QListView& FileView() { return *fileView; }
  QLineEdit& SearchEdit() { return *searchEdit; }
  QPushButton& ConvertButton() { return *convertButton; }
  QPushButton& CancelButton() { return *cancelButton; }
  QPushButton& OpenFolderButton() { return *openFolderButton; }
  QCheckBox& TexturesCheck() { return *texturesCheck; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  AppState& app;
  QtWindowSystem windowSystem;
  QtSaveDialog saveDialog{this};
  QtRigDialog rigDialog{this};
  QtFolderDialog folderDialog{this};
  QtFolderDialog gameFolderDialog{this, "Open a game's installation folder"};
  QListView* fileView = nullptr;
  QLineEdit* searchEdit = nullptr;
  QPushButton* convertButton = nullptr;
  QPushButton* cancelButton = nullptr;
  QPushButton* openFolderButton = nullptr;
  QCheckBox* texturesCheck = nullptr;
  RenderControl* renderControl = nullptr;  // owned by its container, a child of this window
};
