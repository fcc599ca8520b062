#pragma once

#include "app/convert_questions.h"
#include "app/rig_choice.h"

class QWidget;

// "Rig select": the fitting rigs by the name of the animation set that drives them, sorted. OK
// takes the selected one and does nothing without a selection; Cancel or closing takes none.
class QtRigDialog final : public IRigDialog {
 public:
  explicit QtRigDialog(QWidget* owner) : parent(owner) {}
  i32 Run(const RigCandidate* candidates, const RigSkeleton*& selected) override;

  // Shown for a rig whose set has no name.
  static constexpr const char* kUnnamed = kUnnamedRig;

 private:
  QWidget* parent;
};
