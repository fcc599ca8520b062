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

 private:
  QWidget* parent;
  const char* title;
};
