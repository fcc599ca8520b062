#pragma once

#include <QPointer>
#include <QRect>
#include <QWidget>
#include <vector>

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
// moves or resizes; on a screen too small for it the whole dialog is drawn smaller, as one.
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
  QCheckBox& AllFilesCheck() { return *allFilesCheck; }
  // The factor by which the dialog is drawn smaller than its template to fit the screen; 1 when
  // it fits.
  double Fit() const { return fit; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  // A window manager says how wide its frame is only once the window is up, by moving it.
  void moveEvent(QMoveEvent* event) override;
  // A folder or a game's first pack dropped on the window opens as "Open folder..." opens it.
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  // A control and its place in the template, in dialog units.
  struct Placed {
    QWidget* control;
    QRect units;
  };

  void Place(QWidget* control, QRect units);
  // The keys of the buttons, the search box and quitting, each named in its control's tooltip.
  void CreateShortcuts();
  // From the search box, Down goes on to the file list and selects its next item.
  void StepIntoFileList();
  // Sizes the dialog, its font and every control for the screen the window is on; false when they
  // were sized so already.
  bool FitToScreen();
  // The window manager's frame, or room for a usual one while it is unknown.
  QMargins FrameMargins() const;

  AppState& app;
  QtWindowSystem windowSystem;
  QtSaveDialog saveDialog{this};
  QtRigDialog rigDialog{this};
  QtFolderDialog folderDialog{this};
  QtFolderDialog gameFolderDialog{this, "Open a game's installation folder"};
  QtFolderDialog extractFolderDialog{this, "Extract the selected files to the folder"};
  QListView* fileView = nullptr;
  QLineEdit* searchEdit = nullptr;
  QPushButton* convertButton = nullptr;
  QPushButton* cancelButton = nullptr;
  QPushButton* openFolderButton = nullptr;
  QCheckBox* texturesCheck = nullptr;
  QCheckBox* allFilesCheck = nullptr;
  RenderControl* renderControl = nullptr;  // owned by its container, a child of this window
  std::vector<Placed> placed;              // in the template's order
  double fit = 0;                          // 0 until the first layout
  bool centred = false;                    // placed on the first show, which also starts following its screen
  // The control that had the keyboard until a worker disabled it; it has it back when enabled.
  QPointer<QWidget> focusBeforeBusy;
};
