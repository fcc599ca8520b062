#pragma once

#include "app/convert_questions.h"

class QWidget;

// The file dialog of Convert: FBX or glTF binary files, a question before overwriting, the chosen
// type's extension (".fbx" at first) added to a name without one. No name is offered.
class QtSaveDialog final : public ISaveDialog {
 public:
  explicit QtSaveDialog(QWidget* owner) : parent(owner) {}
  bool AskSavePath(CStringBufferA& path) override;

 private:
  QWidget* parent;
};
