#pragma once

#include "app/convert_questions.h"

class QWidget;

// The file dialog of Convert: FBX files only, a question before overwriting, ".fbx" added to a
// name without it. No name is offered.
class QtSaveDialog final : public ISaveDialog {
 public:
  explicit QtSaveDialog(QWidget* owner) : parent(owner) {}
  bool AskSavePath(CStringBufferA& path) override;

 private:
  QWidget* parent;
};
