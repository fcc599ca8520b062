// "All files": every file of the sample game's packs in the list, an image shown whole with its
// facts in the panel, and the selected files taken out below a folder by Convert.
#include <QCheckBox>
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <algorithm>
#include <string>
#include <vector>

#include "app/extract_files.h"
#include "app/file_list.h"
#include "ui/desktop_test.h"

namespace {

using namespace desktoptest;

class AllFilesTest : public DesktopTest {
 protected:
  // Turns the box on or off as a click does and waits for the list to be filled again.
  void SetAllFiles(bool on) {
    window.AllFilesCheck().setChecked(on);
    ASSERT_EQ(app.allFiles, on);
    ASSERT_TRUE(PumpUntil([&] { return !app.workerBusy; }));
  }
  std::vector<std::string> Listed() {
    std::vector<std::string> names;
    for (const ListedEntry& entry : ListedEntries(app)) names.push_back(entry.name);
    return names;
  }
  std::string Panel() {
    CStringBufferA text;
    return window.Window().GetText(kInfoText, text) ? text.Text() : "";
  }
  QImage Frame() { return window.Render().RenderFrame().convertToFormat(QImage::Format_RGB32); }
  // Adds `name` to the file list's selection, as a control-click does.
  void AddToSelection(const char* name) {
    QListView& view = window.FileView();
    const QModelIndexList found =
        view.model()->match(view.model()->index(0, 0), Qt::DisplayRole, QString::fromUtf8(name), 1, Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1) << name;
    view.selectionModel()->setCurrentIndex(found.first(), QItemSelectionModel::Select);
  }
  u32 StoredSize(const char* name) {
    const PackEntry* entry = app.packIndex.Find(name);
    return entry ? entry->size : 0;
  }
};

// Near `expected`, as a texel drawn through the software renderer comes out.
bool Near(QRgb pixel, int r, int g, int b) {
  return std::abs(qRed(pixel) - r) <= 2 && std::abs(qGreen(pixel) - g) <= 2 && std::abs(qBlue(pixel) - b) <= 2;
}

TEST_F(AllFilesTest, OffTheListHoldsOnlyActorsOnEveryFileAndTheSearchFiltersEither) {
  EXPECT_FALSE(window.AllFilesCheck().isChecked());
  const std::vector<std::string> actors = Listed();
  ASSERT_EQ(actors.size(), 10u);
  for (const std::string& name : actors) EXPECT_TRUE(name.ends_with(".adr")) << name;

  // Every name once, in the order the command line's `files` lists them.
  SetAllFiles(true);
  std::vector<std::string> everyFile;
  for (const ListedEntry& file : PackFiles(app.packIndex)) everyFile.push_back(file.name);
  EXPECT_EQ(Listed(), everyFile);
  EXPECT_GT(everyFile.size(), actors.size());

  window.SearchEdit().setText(QStringLiteral("KNIGHT"));
  SearchRequest(app);
  ASSERT_TRUE(PumpUntil([&] { return !app.workerBusy; }));
  std::vector<std::string> matching;
  for (const ListedEntry& file : PackFiles(app.packIndex, "*KNIGHT*")) matching.push_back(file.name);
  const std::vector<std::string> knights = Listed();
  EXPECT_EQ(knights, matching);
  EXPECT_NE(std::find(knights.begin(), knights.end(), "textures\\knight_d.png"), knights.end());
  for (const std::string& name : knights) EXPECT_NE(name.find("knight"), std::string::npos) << name;

  // Off again, the search text still applies, to the actors alone.
  SetAllFiles(false);
  for (const std::string& name : Listed()) {
    EXPECT_TRUE(name.ends_with(".adr") && name.find("knight") != std::string::npos) << name;
  }
  EXPECT_FALSE(Listed().empty());
  window.SearchEdit().clear();
  SearchRequest(app);
  ASSERT_TRUE(PumpUntil([&] { return !app.workerBusy; }));
  EXPECT_EQ(Listed(), actors);
}

TEST_F(AllFilesTest, AnImageIsShownWholeWithItsFactsAndOtherFilesByTheirSize) {
  SetAllFiles(true);
  struct Case {
    const char* name;
    const char* format;
    int r, g, b;  // the sample's solid colour of the texture
  };
  const Case images[] = {
      {"textures\\shield_d.dds", "DDS, uncompressed 32-bit", 200, 170, 60},
      {"textures\\knight_d.png", "PNG", 70, 90, 160},
  };
  for (const Case& c : images) {
    SCOPED_TRACE(c.name);
    Select(c.name);
    EXPECT_EQ(Panel(), "Info for " + std::string(c.name) + "\n\nFormat: " + c.format +
                           "\nSize: 8 x 8\nLevels: 1\nFile size: " + std::to_string(StoredSize(c.name)) + " bytes\n");
    const QImage frame = Frame();
    ASSERT_FALSE(frame.isNull());
    const int w = frame.width(), h = frame.height();
    EXPECT_TRUE(Near(frame.pixel(w / 2, h / 2), c.r, c.g, c.b));
    EXPECT_FALSE(IsClearGrey(frame.pixel(w / 2, h / 2)));
    // Square in a wider preview: the whole height, with the clear grey at both sides.
    EXPECT_TRUE(Near(frame.pixel(w / 2, 1), c.r, c.g, c.b));
    EXPECT_TRUE(IsClearGrey(frame.pixel(1, h / 2)));
    EXPECT_TRUE(IsClearGrey(frame.pixel(w - 2, h / 2)));
    EXPECT_TRUE(Near(frame.pixel((w - h) / 2 + 2, h / 2), c.r, c.g, c.b)) << "the image's left edge";
  }
  // For a person to look at: the window with the PNG's facts in the panel and, in the preview's
  // place, the frame the control draws (a grab of the widgets leaves the native preview out).
  QImage shot = window.grab().toImage();
  {
    QPainter painter(&shot);
    painter.drawImage(window.Render().Container()->geometry(), Frame());
  }
  EXPECT_TRUE(shot.save(ArtifactPath("all_files_image.png")));

  Select("materials_3.xml");
  EXPECT_EQ(Panel(),
            "Info for materials_3.xml\n\nFile size: " + std::to_string(StoredSize("materials_3.xml")) + " bytes\n");
  const QImage clear = Frame();
  EXPECT_TRUE(IsClearGrey(clear.pixel(clear.width() / 2, clear.height() / 2)));

  Select("actors\\knight.adr");
  EXPECT_EQ(Panel().rfind("Info for actors\\knight.adr\n\n-- Textures for mesh 0\ntextures\\knight_d.png\n", 0), 0u);
  const QImage actor = Frame();
  EXPECT_FALSE(IsClearGrey(actor.pixel(actor.width() / 2, actor.height() / 2)));
}

TEST_F(AllFilesTest, ConvertTakesTheSelectedFilesOutBelowAChosenFolderImagesAsPng) {
  SetAllFiles(true);
  Select("textures\\shield_d.dds");
  AddToSelection("materials_3.xml");
  const i32 logged = window.Window().GetCount(kLogList);
  const std::string folder = dir.Join("files");
  QDir().mkpath(QString::fromStdString(folder));
  QString title;
  AnswerNextDialog<QFileDialog>([&](QFileDialog& dialog) {
    title = dialog.windowTitle();
    dialog.setDirectory(QString::fromStdString(folder));
    dialog.selectFile(QString::fromStdString(folder));
    static_cast<QDialog&>(dialog).accept();
  });
  window.ConvertButton().click();
  ASSERT_TRUE(PumpUntil([&] { return !app.workerBusy && window.Window().GetCount(kLogList) > logged; }));
  EXPECT_EQ(title, QStringLiteral("Extract the selected files to the folder"));

  QImage png;
  ASSERT_TRUE(png.load(QString::fromStdString(folder + "/textures/shield_d.png"), "PNG"));
  EXPECT_EQ(png.size(), QSize(8, 8));
  EXPECT_TRUE(Near(png.pixel(3, 3), 200, 170, 60));
  CByteBuffer stored;
  ASSERT_TRUE(app.packIndex.FetchByName("materials_3.xml", stored));
  EXPECT_EQ(gamewriters::ReadFileBytes(folder + "/materials_3.xml"),
            std::string(reinterpret_cast<const char*>(stored.Data()), stored.Size()));

  ASSERT_EQ(window.Window().GetCount(kLogList), logged + 1) << "one summary line";
  char line[512] = {};
  ASSERT_LT(window.Window().GetTextLength(kLogList, logged), 512);
  window.Window().GetText(kLogList, logged, line);
  EXPECT_EQ(std::string(line), "Extracted 2 of 2 files to " + folder + ": 2 written, 0 failed, 0 skipped.");
  EXPECT_FALSE(window.CancelButton().isVisible());
}

}  // namespace
