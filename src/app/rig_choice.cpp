#include "app/rig_choice.h"

#include "core/hash.h"
#include "export/build_export_scene.h"
#include "gamedata/xml_attributes.h"

const RigSkeleton* PickRig(const ActorDefinition& actor, const ModelFile& model, const RigTable& rigs,
                           IRigDialog& dialog) {
  if (model.bones.Count() == 0) return nullptr;
  if (actor.animationNetworkName.Text()[0] && actor.animSetName.Text()[0]) {
    TStringBufferA<260> stem;
    if (!FileStem(actor.animationNetworkName.Text(), stem)) return nullptr;
    CStringA key;
    key.Borrow(stem.Text());
    const u32 found = rigs.Find(key);
    return found < rigs.Count() ? FindRig(rigs.ValueAt(found), actor.animSetName.Text()) : nullptr;
  }
  return actor.borrowSkeleton ? ChooseRig(model, rigs, dialog) : nullptr;
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
  for (u32 n = 0; n < rigs.Count(); ++n) {
    const RigNetwork& network = rigs.ValueAt(n);
    for (const RigSkeleton& rig : network.rigs) {
      if (!RigMatches(model, rig)) continue;
      RigCandidate* candidate = MemNew<RigCandidate>();
      if (!candidate) continue;  // left out, as if it didn't fit
      candidate->rig = &rig;
      for (const AnimSetName& set : network.animSetNames) {
        if (set.id == rig.id) {
          candidate->name = set.name.Text();
          break;
        }
      }
      candidates.Append(candidate);
    }
  }
  if (candidates.count == 0) return nullptr;
  if (candidates.count == 1) return candidates.first->rig;
  const RigSkeleton* selected = nullptr;
  return dialog.Run(candidates.first, selected) == 1 ? selected : nullptr;
}
