#pragma once

#include "app/convert_questions.h"

class QWidget;

// A folder dialog, by default that of a conversion of several actors: folders only, one that may
// be made anew.
class QtFolderDialog final : public IFolderDialog {
 public:
  explicit QtFolderDialog(QWidget* owner, const char* caption = "Convert the selected actors to the folder")
      : parent(owner), title(caption) {}
  bool AskFolder(CStringBufferA& path) override;
  // The same dialog with a "Format:" choice below the folder (object name "formatCombo"): FBX,
  // the default, or glTF binary.
  bool AskOutputFolder(CStringBufferA& path, ExportFormat& format) override;

 private:
  bool Ask(CStringBufferA& path, ExportFormat* format);

  QWidget* parent;
  const char* title;
};
