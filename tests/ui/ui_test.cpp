// The desktop program on a real display (Xvfb with software OpenGL): the sample game from start-up
// to a drawn frame and a written file.
#include <QCheckBox>
#include <QComboBox>
#include <QImage>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <filesystem>

#include "app/file_list.h"
#include "preview/render_window.h"
#include "support/fbx_reader.h"
#include "ui/desktop_test.h"

namespace {

using namespace desktoptest;

// Equal but for the time of writing, which the header and the footer carry.
void ExpectSameRecords(const testsupport::FbxReadRecord& a, const testsupport::FbxReadRecord& b) {
  ASSERT_EQ(a.name, b.name);
  if (a.name == "CreationTimeStamp" || a.name == "CreationTime" || a.name == "FileId") return;
  ASSERT_EQ(a.properties.size(), b.properties.size()) << a.name;
  for (size_t i = 0; i < a.properties.size(); ++i) {
    const auto &p = a.properties[i], &q = b.properties[i];
    EXPECT_TRUE(p.code == q.code && p.integer == q.integer && p.real == q.real && p.bytes == q.bytes &&
                p.reals == q.reals && p.integers == q.integers)
        << a.name << " property " << i;
  }
  ASSERT_EQ(a.children.size(), b.children.size()) << a.name;
  for (size_t i = 0; i < a.children.size(); ++i) ExpectSameRecords(a.children[i], b.children[i]);
}

TEST_F(DesktopTest, PreviewIsClearGreyFromStartUpBeforeAnySelection) {
  // What the screen shows, not a frame drawn on request: the control has to draw one by itself.
  QWidget* preview = window.Render().Container();
  QImage shown;
  const bool grey = PumpUntil(
      [&] {
        shown = preview->screen()->grabWindow(preview->winId()).toImage();
        return !shown.isNull() && IsClearGrey(shown.pixel(shown.width() / 2, shown.height() / 2));
      },
      5000);
  EXPECT_TRUE(window.screen()->grabWindow(window.winId()).save(ArtifactPath("start_up.png")));
  EXPECT_TRUE(grey) << "the preview shows rgb " << qRed(shown.pixel(0, 0)) << " " << qGreen(shown.pixel(0, 0)) << " "
                    << qBlue(shown.pixel(0, 0));
}

// A worker disables the preview while it runs; enabled again, the screen shows its frame, not the
// window's background in its place.
TEST_F(DesktopTest, ThePreviewShowsItsFrameAgainAfterASearch) {
  Select("actors\\knight.adr");
  (void)PumpUntil([] { return false; }, 300);
  QWidget* preview = window.Render().Container();
  auto centre = [&] {
    const QImage shown = preview->screen()->grabWindow(preview->winId()).toImage();
    return shown.isNull() ? QRgb(0) : shown.pixel(shown.width() / 2, shown.height() / 2);
  };
  // The knight's blue coat lies at the centre.
  auto knight = [](QRgb pixel) { return qBlue(pixel) > qRed(pixel) + 40; };
  QRgb shown = 0;
  ASSERT_TRUE(PumpUntil([&] { return knight(shown = centre()); }, 5000))
      << "the screen shows rgb " << qRed(shown) << " " << qGreen(shown) << " " << qBlue(shown);
  window.SearchEdit().setText(QStringLiteral("kn"));
  SearchRequest(app);
  ASSERT_TRUE(PumpUntil([&] { return !app.workerBusy; }));
  EXPECT_TRUE(PumpUntil([&] { return knight(shown = centre()); }, 5000))
      << "the screen shows rgb " << qRed(shown) << " " << qGreen(shown) << " " << qBlue(shown);
}

TEST_F(DesktopTest, ADragEndsWhenThePreviewIsDisabledOrLosesThePointer) {
  RenderControl& control = window.Render();
  const auto press = [&] {
    QMouseEvent event(QEvent::MouseButtonPress, QPointF(200, 200), QPointF(200, 200), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(&control, &event);
    return control.Preview().Camera().Dragging();
  };
  ASSERT_TRUE(press());
  window.Window().Enable(kRenderControl, false);  // as a worker does when it starts
  EXPECT_FALSE(control.Preview().Camera().Dragging());
  window.Window().Enable(kRenderControl, true);

  ASSERT_TRUE(press());
  QEvent ungrab(QEvent::UngrabMouse);
  QCoreApplication::sendEvent(&control, &ungrab);
  EXPECT_FALSE(control.Preview().Camera().Dragging());
}

TEST_F(DesktopTest, SelectedActorIsDrawnWithItsTextureAndListedInThePanel) {
  EXPECT_EQ(window.Window().GetCount(kFileList), 10);
  Select("actors\\knight.adr");
  CStringBufferA panel;
  ASSERT_TRUE(window.Window().GetText(kInfoText, panel));
  EXPECT_STREQ(panel.Text(),
               "Info for actors\\knight.adr\n\n"
               "-- Textures for mesh 0\ntextures\\knight_d.png\n"
               "-- Textures for mesh 1\ntextures\\shield_d.dds\n");

  const QImage frame = window.Render().RenderFrame().convertToFormat(QImage::Format_RGB32);
  ASSERT_FALSE(frame.isNull());
  EXPECT_TRUE(frame.save(ArtifactPath("preview_knight.png")));
  EXPECT_TRUE(window.grab().save(ArtifactPath("main_window.png")));

  const int w = frame.width(), h = frame.height();
  for (const QPoint corner : {QPoint(0, 0), QPoint(w - 1, 0), QPoint(0, h - 1), QPoint(w - 1, h - 1)}) {
    EXPECT_TRUE(IsClearGrey(frame.pixel(corner))) << corner.x() << "," << corner.y();
  }
  EXPECT_FALSE(IsClearGrey(frame.pixel(w / 2, h / 2)));
  // The body's texture is blue (70, 90, 160); lit, its pixels keep blue the strongest channel.
  int textured = 0, model = 0;
  for (int y = 0; y < h; y += 2) {
    for (int x = 0; x < w; x += 2) {
      const QRgb p = frame.pixel(x, y);
      if (IsClearGrey(p)) continue;
      ++model;
      if (qBlue(p) > qRed(p) + 20 && qBlue(p) > qGreen(p) + 10) ++textured;
    }
  }
  EXPECT_GT(model, w * h / 4 / 50);
  EXPECT_GT(textured, model / 3);
}

TEST_F(DesktopTest, ConvertWritesTheSameFileAsTheCommandLine) {
  Select("actors\\wolf.adr");
  const std::string fromWindow = dir.Join("window_wolf.fbx");
  const std::string fromCli = dir.Join("cli_wolf.fbx");
  // The test answers the save dialog as a user would.
  bool answered = false;
  SaveAs(fromWindow, &answered);
  window.ConvertButton().click();
  ASSERT_TRUE(answered);

  const gamewriters::SampleGamePaths paths = gamewriters::SampleGameLayout(dir.Path());
  const std::string command = std::string(TARNWICK_CLI) + " --data-dir '" + paths.userData +
                              "' convert 'actors\\wolf.adr' -o '" + fromCli + "' 2>/dev/null >/dev/null";
  ASSERT_EQ(std::system(command.c_str()), 0);

  testsupport::FbxReadFile a, b;
  std::string error;
  ASSERT_TRUE(testsupport::ReadFbxBinary(gamewriters::ReadFileBytes(fromWindow), a, error)) << error;
  ASSERT_TRUE(testsupport::ReadFbxBinary(gamewriters::ReadFileBytes(fromCli), b, error)) << error;
  ASSERT_EQ(a.records.size(), b.records.size());
  for (size_t i = 0; i < a.records.size(); ++i) ExpectSameRecords(a.records[i], b.records[i]);
}

TEST_F(DesktopTest, TheSaveDialogsGltfTypeWritesTheCommandLinesGlb) {
  Select("actors\\wolf.adr");
  const std::string fromCli = dir.Join("cli_wolf.glb");
  // The user picks the second type and types a name without an extension.
  bool answered = false;
  QStringList types;
  AnswerNextDialog<QFileDialog>([&](QFileDialog& dialog) {
    types = dialog.nameFilters();
    auto* typeBox = dialog.findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
    ASSERT_TRUE(typeBox);
    typeBox->setCurrentIndex(1);
    emit typeBox->activated(1);
    emit typeBox->textActivated(typeBox->currentText());
    dialog.selectFile(QString::fromStdString(dir.Join("window_wolf")));
    static_cast<QDialog&>(dialog).accept();
    answered = true;
  });
  window.ConvertButton().click();
  ASSERT_TRUE(answered);
  EXPECT_EQ(types, QStringList({QStringLiteral("FBX ( *.fbx)"), QStringLiteral("glTF binary ( *.glb)")}));

  const gamewriters::SampleGamePaths paths = gamewriters::SampleGameLayout(dir.Path());
  const std::string command = std::string(TARNWICK_CLI) + " --data-dir '" + paths.userData +
                              "' convert 'actors\\wolf.adr' -o '" + fromCli + "' 2>/dev/null >/dev/null";
  ASSERT_EQ(std::system(command.c_str()), 0);
  const std::string fromWindow = gamewriters::ReadFileBytes(dir.Join("window_wolf.glb"));
  EXPECT_EQ(fromWindow.substr(0, 4), "glTF");
  EXPECT_EQ(fromWindow, gamewriters::ReadFileBytes(fromCli));
}

TEST_F(DesktopTest, ConvertWithThreeSelectedWritesThemBelowAChosenFolder) {
  Select("actors\\barrel.adr");
  QListView& view = window.FileView();
  for (const char* name : {"actors\\crate.adr", "actors\\wolf.adr"}) {
    const QModelIndexList found =
        view.model()->match(view.model()->index(0, 0), Qt::DisplayRole, QString::fromUtf8(name), 1, Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1) << name;
    // A control-click: the item joins the selection and becomes the current one.
    view.selectionModel()->setCurrentIndex(found.first(), QItemSelectionModel::Select);
  }
  const i32 logged = window.Window().GetCount(kLogList);
  const std::string folder = dir.Join("three");
  QDir().mkpath(QString::fromStdString(folder));
  AnswerNextDialog<QFileDialog>([folder](QFileDialog& dialog) {
    dialog.setDirectory(QString::fromStdString(folder));
    dialog.selectFile(QString::fromStdString(folder));
    static_cast<QDialog&>(dialog).accept();
  });
  window.ConvertButton().click();
  ASSERT_TRUE(PumpUntil([&] { return !app.workerBusy && window.Window().GetCount(kLogList) > logged; }));
  for (const char* file : {"/actors/barrel.fbx", "/actors/crate.fbx", "/actors/wolf.fbx"}) {
    EXPECT_FALSE(gamewriters::ReadFileBytes(folder + file).empty()) << file;
  }
  ASSERT_EQ(window.Window().GetCount(kLogList), logged + 1) << "one summary line";
  char line[512] = {};
  ASSERT_LT(window.Window().GetTextLength(kLogList, logged), 512);
  window.Window().GetText(kLogList, logged, line);
  EXPECT_EQ(std::string(line), "Converted 3 of 3 actors to " + folder + ": 3 written, 0 failed, 0 skipped.");
  EXPECT_FALSE(window.CancelButton().isVisible());
}

TEST_F(DesktopTest, ConvertWithTwoSelectedWritesGlbWithTexturesWhenTheFolderDialogSaysSo) {
  Select("actors\\barrel.adr");
  QListView& view = window.FileView();
  const QModelIndexList found = view.model()->match(view.model()->index(0, 0), Qt::DisplayRole,
                                                    QStringLiteral("actors\\wisp.adr"), 1, Qt::MatchExactly);
  ASSERT_EQ(found.size(), 1);
  view.selectionModel()->setCurrentIndex(found.first(), QItemSelectionModel::Select);
  window.TexturesCheck().setChecked(true);
  const i32 logged = window.Window().GetCount(kLogList);
  const std::string folder = dir.Join("two");
  QDir().mkpath(QString::fromStdString(folder));
  QStringList formats;
  AnswerNextDialog<QFileDialog>([&](QFileDialog& dialog) {
    auto* combo = dialog.findChild<QComboBox*>(QStringLiteral("formatCombo"));
    ASSERT_TRUE(combo);
    for (int i = 0; i < combo->count(); ++i) formats << combo->itemText(i);
    combo->setCurrentIndex(1);
    dialog.grab().save(ArtifactPath("folder_dialog_format.png"));
    dialog.setDirectory(QString::fromStdString(folder));
    dialog.selectFile(QString::fromStdString(folder));
    static_cast<QDialog&>(dialog).accept();
  });
  window.ConvertButton().click();
  ASSERT_TRUE(PumpUntil([&] { return !app.workerBusy && window.Window().GetCount(kLogList) > logged; }));
  EXPECT_EQ(formats, QStringList({QStringLiteral("FBX ( *.fbx)"), QStringLiteral("glTF binary ( *.glb)")}));
  for (const char* file : {"/actors/barrel.glb", "/actors/wisp.glb"}) {
    const std::string bytes = gamewriters::ReadFileBytes(folder + file);
    EXPECT_EQ(bytes.substr(0, 4), "glTF") << file;
    EXPECT_NE(bytes.find("image/png"), std::string::npos) << file << ": its texture inside";
  }
  EXPECT_FALSE(std::filesystem::exists(folder + "/actors/barrel.fbx"));
}

TEST_F(DesktopTest, RigDialogListsTheFittingRigsSortedAndWantsASelection) {
  Select("actors\\scarecrow.adr");
  const std::string path = dir.Join("scarecrow.fbx");
  QStringList shown;
  bool stayedOpen = false, saved = false;
  AnswerNextDialog<QDialog>([&](QDialog& dialog) {
    auto* list = dialog.findChild<QListView*>(QStringLiteral("rigList"));
    auto* ok = dialog.findChild<QPushButton*>();  // the first button is OK
    if (!list || !ok) return dialog.reject();
    for (int row = 0; row < list->model()->rowCount(); ++row) shown << list->model()->index(row, 0).data().toString();
    ok->click();
    stayedOpen = dialog.isVisible();
    list->selectionModel()->setCurrentIndex(list->model()->index(0, 0), QItemSelectionModel::ClearAndSelect);
    SaveAs(path, &saved);
    ok->click();
  });
  window.ConvertButton().click();
  EXPECT_EQ(shown, (QStringList{QStringLiteral("ChildIdle"), QStringLiteral("Idle")}));
  EXPECT_TRUE(stayedOpen);
  EXPECT_TRUE(saved);
  EXPECT_FALSE(gamewriters::ReadFileBytes(path).empty());
}

TEST_F(DesktopTest, ReturnInTheSearchEditSearchesOnReleaseWithoutTyping) {
  QLineEdit& edit = window.SearchEdit();
  edit.setText(QStringLiteral("wolf"));
  QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
  QCoreApplication::sendEvent(&edit, &press);
  EXPECT_EQ(window.Window().GetCount(kFileList), 10);  // nothing yet on the press
  QKeyEvent release(QEvent::KeyRelease, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
  QCoreApplication::sendEvent(&edit, &release);
  ASSERT_TRUE(PumpUntil([&] { return !app.workerBusy && window.Window().GetCount(kFileList) == 1; }));
  EXPECT_EQ(edit.text(), QStringLiteral("wolf"));
}

TEST_F(DesktopTest, OpenFolderListsSelectsAndOpensAnyFolderThatHoldsAGame) {
  testsupport::TempDir other;
  ASSERT_TRUE(gamewriters::BuildSampleGame(other.Path(), nullptr));
  const std::string game = gamewriters::SampleGameLayout(other.Path()).game;
  AnswerNextDialog<QFileDialog>([game](QFileDialog& dialog) {
    dialog.setDirectory(QString::fromStdString(game));
    dialog.selectFile(QString::fromStdString(game));
    static_cast<QDialog&>(dialog).accept();
  });
  window.OpenFolderButton().click();
  ASSERT_TRUE(PumpUntil([&] { return app.ready && !app.workerBusy && app.currentGame == i32(kGameCount); }));
  QtWindowSystem& windows = window.Window();
  EXPECT_EQ(windows.GetCount(kGameCombo), 2);
  EXPECT_EQ(windows.GetCurSel(kGameCombo), 1);
  EXPECT_EQ(windows.GetCount(kFileList), 10);
  EXPECT_TRUE(window.OpenFolderButton().isEnabled());
}

}  // namespace
