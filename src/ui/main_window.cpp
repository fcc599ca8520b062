#include "ui/main_window.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSignalBlocker>
#include <QWindow>
#include <algorithm>
#include <cmath>

#include "app/batch_worker.h"
#include "app/file_list.h"
#include "app/game_selection.h"
#include "app/open_game_folder.h"
#include "app/worker.h"
#include "ui/dialog_units.h"
#include "ui/dropped_game_folder.h"
#include "ui/render_control.h"

namespace {

constexpr int kTemplateWidth = 904;
constexpr int kTemplateHeight = 449;
// Room kept for the frame a window manager puts around the window, while it hasn't said how much
// that is (and where there is none, as on a bare X server).
constexpr QMargins kFrameAllowance{4, 30, 4, 4};
// A change of the fit smaller than this keeps the layout as it is.
constexpr double kFitTolerance = 1e-4;

QListView* MakeListView(QWidget* parent, ItemListModel* model,
                        QAbstractItemView::SelectionMode mode = QAbstractItemView::SingleSelection) {
  auto* view = new QListView(parent);
  view->setModel(model);
  // Rows of one height let a list of many thousand items lay out at once.
  view->setUniformItemSizes(true);
  view->setEditTriggers(QAbstractItemView::NoEditTriggers);
  view->setSelectionMode(mode);
  return view;
}

}  // namespace

MainWindow::MainWindow(AppState& state) : app(state) {
  setWindowTitle(QStringLiteral("Tarnwick"));
  setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint |
                 Qt::WindowCloseButtonHint);

  // In the template's order, which is also the tab order.
  auto* fileModel = new ItemListModel(true, this);
  // Several actors may be selected for one Convert; the preview shows the one clicked last.
  fileView = MakeListView(this, fileModel, QAbstractItemView::ExtendedSelection);
  Place(fileView, {6, 24, 258, 204});
  windowSystem.AddList(kFileList, fileModel, fileView);

  searchEdit = new QLineEdit(this);
  Place(searchEdit, {6, 6, 144, 14});
  windowSystem.AddControl(kSearchEdit, searchEdit);

  auto* logModel = new ItemListModel(false, this);
  QListView* logView = MakeListView(this, logModel);
  Place(logView, {6, 258, 258, 59});
  windowSystem.AddList(kLogList, logModel, logView);

  convertButton = new QPushButton(QStringLiteral("Convert"), this);
  Place(convertButton, {222, 6, 42, 14});
  windowSystem.AddControl(kConvertButton, convertButton);

  // Beside Convert, seen only while a conversion of several actors runs.
  cancelButton = new QPushButton(QStringLiteral("Cancel"), this);
  Place(cancelButton, {174, 6, 44, 14});
  cancelButton->hide();
  windowSystem.AddControl(kCancelButton, cancelButton);

  // In the free strip between the game selector and the log; off, Convert writes the model alone.
  texturesCheck = new QCheckBox(QStringLiteral("Export textures"), this);
  Place(texturesCheck, {6, 248, 100, 10});

  // Beside it, short of "Open folder...": every file of the packs in the list, off at start.
  allFilesCheck = new QCheckBox(QStringLiteral("All files"), this);
  Place(allFilesCheck, {110, 248, 60, 10});
  windowSystem.AddControl(kAllFilesCheck, allFilesCheck);

  auto* gameModel = new ItemListModel(false, this);
  auto* gameCombo = new QComboBox(this);
  gameCombo->setModel(gameModel);
  Place(gameCombo, {6, 234, 66, 14});
  windowSystem.AddCombo(kGameCombo, gameModel, gameCombo);

  // Under the progress bar, in the selector's strip: any installation folder becomes a game.
  openFolderButton = new QPushButton(QStringLiteral("Open folder..."), this);
  Place(openFolderButton, {200, 247, 64, 10});
  windowSystem.AddControl(kOpenFolderButton, openFolderButton);

  auto* searchButton = new QPushButton(QStringLiteral(">"), this);
  Place(searchButton, {156, 6, 13, 14});
  windowSystem.AddControl(kSearchButton, searchButton);

  auto* gameButton = new QPushButton(QStringLiteral(">"), this);
  Place(gameButton, {78, 234, 13, 14});
  windowSystem.AddControl(kGameButton, gameButton);

  auto* progressBar = new QProgressBar(this);
  Place(progressBar, {186, 234, 78, 12});
  progressBar->setTextVisible(false);
  windowSystem.AddControl(kProgressBar, progressBar);

  auto* statusText = new QLabel(QStringLiteral("Static"), this);
  Place(statusText, {96, 234, 90, 8});
  windowSystem.AddControl(kStatusText, statusText);

  renderControl = RenderControl::Create(this);
  Place(renderControl->Container(), {270, 6, 630, 438});
  windowSystem.AddControl(kRenderControl, renderControl->Container());
  windowSystem.SetRenderWindow(&renderControl->Preview());
  // The skeleton view names its rig in the panel while it is on.
  renderControl->OnViewsChanged([this] { windowSystem.SetText(kInfoText, renderControl->Preview().GetInfoText()); });

  auto* infoText = new QPlainTextEdit(this);
  infoText->setReadOnly(true);
  infoText->setLineWrapMode(QPlainTextEdit::NoWrap);
  Place(infoText, {6, 324, 258, 120});
  windowSystem.AddControl(kInfoText, infoText);

  // Only the user's changes of the selection show an actor; the window system's own don't.
  QObject::connect(fileView->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
    if (!windowSystem.ChangingSelection()) OnFileSelected(app);
  });
  QObject::connect(convertButton, &QPushButton::clicked, this, [this] {
    // With "All files" on, Convert takes the selected files out of the packs as they are.
    if (app.allFiles) return OnExtractButton(app, extractFolderDialog);
    OnConvertButton(app, saveDialog, rigDialog, folderDialog,
                    {.textures = texturesCheck->isChecked(), .format = ExportFormat::kByExtension});
  });
  QObject::connect(allFilesCheck, &QCheckBox::toggled, this, [this](bool on) {
    if (OnAllFilesCheck(app, on)) return;
    // Refused while a worker runs: the box goes back to what the list holds.
    const QSignalBlocker quiet(allFilesCheck);
    allFilesCheck->setChecked(!on);
  });
  QObject::connect(cancelButton, &QPushButton::clicked, this, [this] { OnCancelButton(app); });
  QObject::connect(searchButton, &QPushButton::clicked, this, [this] { SearchRequest(app); });
  QObject::connect(gameButton, &QPushButton::clicked, this, [this] { OnGameButton(app); });
  QObject::connect(openFolderButton, &QPushButton::clicked, this,
                   [this] { OnOpenFolderButton(app, gameFolderDialog); });
  CreateShortcuts();
  setAcceptDrops(true);
  FitToScreen();
}

void MainWindow::Place(QWidget* control, QRect units) {
  placed.push_back({control, units});
  control->installEventFilter(this);
}

QMargins MainWindow::FrameMargins() const {
  const QMargins frame = windowHandle() ? windowHandle()->frameMargins() : QMargins();
  return frame.isNull() ? kFrameAllowance : frame;
}

bool MainWindow::FitToScreen() {
  const QScreen* shownOn = screen();
  const double dpiScale = DialogUnits::DpiScale(shownOn);
  const QSize natural = DialogUnits(dpiScale, 1.0).ToPixels(kTemplateWidth, kTemplateHeight);
  const QRect available = shownOn ? shownOn->availableGeometry() : QRect(QPoint(), natural);
  const double wanted = DialogUnits::FitFactor(natural, available.marginsRemoved(FrameMargins()).size());
  if (std::abs(wanted - fit) < kFitTolerance) return false;
  fit = wanted;
  const DialogUnits units(dpiScale, fit);
  // Children take the window's font unless they set their own.
  setFont(units.DialogFont(font()));
  setFixedSize(units.ToPixels(kTemplateWidth, kTemplateHeight));
  for (const Placed& control : placed) {
    const QRect& r = control.units;
    control.control->setGeometry(units.ToPixels(r.x(), r.y(), r.width(), r.height()));
  }
  return true;
}

void MainWindow::showEvent(QShowEvent* event) {
  FitToScreen();
  if (!centred) {
    // Centred in the screen's free area, frame included, as the template asks.
    centred = true;
    if (QWindow* handle = windowHandle()) {
      QObject::connect(handle, &QWindow::screenChanged, this, [this] { FitToScreen(); });
    }
    if (const QScreen* shownOn = screen()) {
      const QRect outer = QRect(QPoint(), size()).marginsAdded(FrameMargins());
      const QRect area = shownOn->availableGeometry();
      move(area.x() + (area.width() - outer.width()) / 2, area.y() + (area.height() - outer.height()) / 2);
    }
  }
  QWidget::showEvent(event);
}

void MainWindow::moveEvent(QMoveEvent* event) {
  // Fitted anew, the frame may still reach past the free area where it was placed: back inside.
  // A window the user moves partly off the screen stays where it was put.
  const bool refitted = FitToScreen();
  const QScreen* shownOn = screen();
  if (refitted && centred && shownOn && !shownOn->availableGeometry().contains(frameGeometry())) {
    const QRect area = shownOn->availableGeometry();
    const QRect outer = frameGeometry();
    move(std::clamp(outer.x(), area.x(), std::max(area.x(), area.right() + 1 - outer.width())),
         std::clamp(outer.y(), area.y(), std::max(area.y(), area.bottom() + 1 - outer.height())));
  }
  QWidget::moveEvent(event);
}

void MainWindow::CreateShortcuts() {
  // `action` runs for `keys` anywhere in the window; a tooltip on `shown` names the keys.
  const auto add = [this](const QKeySequence& keys, QWidget* shown, const char* tip, auto action) {
    auto* shortcut = new QShortcut(keys, this);
    QObject::connect(shortcut, &QShortcut::activated, this, action);
    if (shown) {
      shown->setToolTip(QStringLiteral("%1 (%2)").arg(QString::fromUtf8(tip), keys.toString(QKeySequence::NativeText)));
    }
  };
  // A button's key does what a click does, and nothing while the button can't be clicked.
  const auto clickIfEnabled = [](QPushButton* button) {
    return [button] {
      if (button->isVisible() && button->isEnabled()) button->click();
    };
  };
  add(QKeySequence(Qt::CTRL | Qt::Key_F), searchEdit, "Search the actors with a wildcard pattern, then Return", [this] {
    if (!searchEdit->isEnabled()) return;
    searchEdit->setFocus(Qt::ShortcutFocusReason);
    searchEdit->selectAll();
  });
  add(QKeySequence(Qt::CTRL | Qt::Key_S), convertButton, "Convert the selected actors", clickIfEnabled(convertButton));
  add(QKeySequence(Qt::CTRL | Qt::Key_O), openFolderButton, "Open a game's installation folder",
      clickIfEnabled(openFolderButton));
  add(QKeySequence(Qt::Key_Escape), cancelButton, "Stop the conversions after the ones under way",
      clickIfEnabled(cancelButton));
  add(QKeySequence(Qt::CTRL | Qt::Key_Q), nullptr, "", [this] { close(); });
  renderControl->Container()->setToolTip(
      QStringLiteral("Left drag turns, right drag pans, middle drag moves nearer or farther.\n"
                     "F or Home frames the model again, B shows the skeleton, W the wireframe."));
}

void MainWindow::StepIntoFileList() {
  const QAbstractItemModel* model = fileView->model();
  if (model->rowCount() == 0) return;
  const QModelIndex current = fileView->currentIndex();
  const int row = current.isValid() ? std::min(current.row() + 1, model->rowCount() - 1) : 0;
  fileView->setFocus(Qt::TabFocusReason);
  fileView->selectionModel()->setCurrentIndex(model->index(row, 0), QItemSelectionModel::ClearAndSelect);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (Idle(app) && !DroppedGameFolder(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void MainWindow::dragMoveEvent(QDragMoveEvent* event) {
  if (Idle(app) && !DroppedGameFolder(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  const QString folder = DroppedGameFolder(event->mimeData());
  if (folder.isEmpty()) return;
  event->acceptProposedAction();
  OpenGameFolder(app, folder.toUtf8().constData());
}

MainWindow::~MainWindow() {
  // The worker may wait on a control call; it is served until it ends, then nothing points here.
  if (app.window == &windowSystem) WaitForWorker(app);
  app.renderWindow = nullptr;
  app.window = nullptr;
}

void MainWindow::Start(const GameSearch& search) {
  // Without a context within a few seconds the preview stays blank; the rest works all the same.
  (void)renderControl->WaitForContext(5000);
  InitMainDialog(app, windowSystem, search);
}

void MainWindow::Start(const char* userFolder) {
  GameSearch search;
  search.userFolder = userFolder;
  Start(search);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  windowSystem.PostQuit(0);
  event->accept();
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  const auto type = event->type();
  // Disabling the control with the keyboard sends the focus on to the next one: a search from the
  // search box would leave the keys elsewhere. It goes back once the control is enabled again.
  auto* control = qobject_cast<QWidget*>(watched);
  if (type == QEvent::FocusOut && control && !control->isEnabled()) focusBeforeBusy = control;
  if (type == QEvent::EnabledChange && control && control == focusBeforeBusy && control->isEnabled()) {
    focusBeforeBusy = nullptr;
    if (isActiveWindow()) control->setFocus(Qt::OtherFocusReason);
  }
  if (watched != searchEdit) return QWidget::eventFilter(watched, event);
  if (type != QEvent::KeyPress && type != QEvent::KeyRelease) return false;
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (key == Qt::Key_Down && type == QEvent::KeyPress) {
    StepIntoFileList();
    return true;
  }
  if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
  // Return searches when it is released; its press never reaches the edit, nor rings or inserts.
  if (type == QEvent::KeyRelease && !static_cast<QKeyEvent*>(event)->isAutoRepeat()) SearchRequest(app);
  return true;
}
