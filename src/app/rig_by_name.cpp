#include "app/rig_by_name.h"

#include <strings.h>

i32 RigByName::Run(const RigCandidate* candidates, const RigSkeleton*& selected) {
  choices.clear();
  for (const RigCandidate* c = candidates; c; c = c->next) {
    if (!name.empty() && c->name && strcasecmp(c->name, name.c_str()) == 0) {
      selected = c->rig;
      return 1;
    }
  }
  for (const RigCandidate* c = candidates; c; c = c->next) choices.emplace_back(c->name ? c->name : "(no name)");
  return 0;
}

std::string RigByName::ChoiceList() const {
  std::string list;
  for (const std::string& choice : choices) list += (list.empty() ? "" : ", ") + choice;
  return list;
}
