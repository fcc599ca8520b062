#pragma once

#include <string>
#include <vector>

#include "app/convert_questions.h"

// Answers the rig question with the rig that the animation set `wanted` drives (its name in any
// case), as a front end without a dialog does. Otherwise the question goes unanswered: the choices
// are kept for the user, and the conversion stops before it decodes anything.
class RigByName final : public IRigDialog {
 public:
  explicit RigByName(std::string wanted) : name(std::move(wanted)) {}

  i32 Run(const RigCandidate* candidates, const RigSkeleton*& selected) override;
  bool StopsConversion() const override { return !choices.empty(); }

  // The names of the sets that would have answered, in the dialog's order ("(no name)" for a rig
  // that no set drives); empty when the question was answered or never asked.
  const std::vector<std::string>& Choices() const { return choices; }
  // The choices as one text: "Idle, ChildIdle".
  std::string ChoiceList() const;

 private:
  std::string name;
  std::vector<std::string> choices;
};
