#include "app/rig_choice.h"

#include <strings.h>

#include "core/hash.h"
#include "export/build_export_scene.h"
#include "gamedata/xml_attributes.h"

namespace {

// The animation set name that drives rig `id` first in `network`, or null.
const char* SetNameOf(const RigNetwork& network, u32 id) {
  for (const AnimSetName& set : network.animSetNames) {
    if (set.id == id) return set.name.Text();
  }
  return nullptr;
}

// The rig of the actor's own network and set, when it names both: `named` says whether it does.
const RigSkeleton* NetworkRig(const ActorDefinition& actor, const RigTable& rigs, bool& named) {
  named = actor.animationNetworkName.Text()[0] && actor.animSetName.Text()[0];
  if (!named) return nullptr;
  TStringBufferA<260> stem;
  if (!FileStem(actor.animationNetworkName.Text(), stem)) return nullptr;
  CStringA key;
  key.Borrow(stem.Text());
  const u32 found = rigs.Find(key);
  return found < rigs.Count() ? FindRig(rigs.ValueAt(found), actor.animSetName.Text()) : nullptr;
}

// Calls `visit(rig, name)` for each rig of the table that fits `model`, in table order.
template <class Visit>
void ForEachFittingRig(const ModelFile& model, const RigTable& rigs, Visit visit) {
  for (u32 n = 0; n < rigs.Count(); ++n) {
    const RigNetwork& network = rigs.ValueAt(n);
    for (const RigSkeleton& rig : network.rigs) {
      if (RigMatches(model, rig)) visit(rig, SetNameOf(network, rig.id));
    }
  }
}

}  // namespace

const RigSkeleton* PickRig(const ActorDefinition& actor, const ModelFile& model, const RigTable& rigs,
                           IRigDialog& dialog) {
  if (model.bones.Count() == 0) return nullptr;
  bool named = false;
  const RigSkeleton* own = NetworkRig(actor, rigs, named);
  if (named) return own;
  return actor.borrowSkeleton ? ChooseRig(model, rigs, dialog) : nullptr;
}

const RigSkeleton* PickRigUnasked(const ActorDefinition& actor, const ModelFile& model, const RigTable& rigs,
                                  const char*& name) {
  if (model.bones.Count() == 0) return nullptr;
  bool named = false;
  const RigSkeleton* own = NetworkRig(actor, rigs, named);
  if (named) {
    if (own) name = actor.animSetName.Text();
    return own;
  }
  if (!actor.borrowSkeleton) return nullptr;
  const RigSkeleton* first = nullptr;
  const char* firstName = nullptr;
  // The dialog's list puts an item after every equal one, so the first of equals stays first.
  ForEachFittingRig(model, rigs, [&](const RigSkeleton& rig, const char* setName) {
    const char* shown = setName ? setName : kUnnamedRig;
    if (first && strcasecmp(shown, firstName) >= 0) return;
    first = &rig;
    firstName = shown;
  });
  if (first) name = firstName;
  return first;
}

const RigSkeleton* FindRig(const RigNetwork& network, const char* name) {
  for (const AnimSetName& set : network.animSetNames) {
    if (!SameText(set.name.Text(), name)) continue;
    for (const RigSkeleton& rig : network.rigs) {
      if (rig.id == set.id) return &rig;
    }
    return nullptr;
  }
  return nullptr;
}

bool RigMatches(const ModelFile& model, const RigSkeleton& rig) {
  if (rig.bones.Count() == 0) return model.bones.Count() == 0;
  u32 matched = 0;
  for (const RigBone& bone : rig.bones) {
    const u32 hash = HashNameWide(bone.name.Text());
    for (const ModelBone& modelBone : model.bones) {
      if (modelBone.nameHash == hash) {
        ++matched;
        break;
      }
    }
  }
  return matched == model.bones.Count();
}

const RigSkeleton* ChooseRig(const ModelFile& model, const RigTable& rigs, IRigDialog& dialog) {
  TOwnedList<RigCandidate> candidates;
  ForEachFittingRig(model, rigs, [&](const RigSkeleton& rig, const char* name) {
    RigCandidate* candidate = MemNew<RigCandidate>();
    if (!candidate) return;  // left out, as if it didn't fit
    candidate->rig = &rig;
    candidate->name = name;
    candidates.Append(candidate);
  });
  if (candidates.count == 0) return nullptr;
  if (candidates.count == 1) return candidates.first->rig;
  const RigSkeleton* selected = nullptr;
  return dialog.Run(candidates.first, selected) == 1 ? selected : nullptr;
}
