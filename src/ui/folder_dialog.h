#pragma once

#include "app/convert_questions.h"

class QWidget;

// The folder dialog of a conversion of several actors: folders only, one that may be made anew.
class QtFolderDialog final : public IFolderDialog {
 public:
  explicit QtFolderDialog(QWidget* owner) : parent(owner) {}
  bool AskFolder(CStringBufferA& path) override;

 private:
  QWidget* parent;
};
