#include "gamedata/actor_definition.h"

#include "gamedata/xml_attributes.h"
#include "xml/memory_stream.h"
#include "xml/xml.h"

namespace {

constexpr u32 kMaterialIndexMask = 0xFF;

// A missing text leaves the field empty.
bool ReadTextOrEmpty(IXMLData* element, const char* name, CStringA& out) {
  if (ReadText(element, name, out)) return true;
  out.Reset();
  return AttributeText(element, name) == nullptr;  // present but refused memory is a failure
}

bool ReadBoolOrFalse(IXMLData* element, const char* name) {
  bool value = false;
  return ReadBool(element, name, value) && value;
}

bool ReadAlias(IXMLData* item, TextureAlias& alias) {
  u32 materialIndex = 0;
  if (!ReadText(item, "textureName", alias.textureName) ||
      !ReadNumber(item, "semanticHash", "%d", &alias.semanticHash) ||
      !ReadNumber(item, "materialIndex", "%u", &materialIndex)) {
    return false;
  }
  alias.materialIndex = materialIndex & kMaterialIndexMask;
  alias.isDefault = ReadBoolOrFalse(item, "defaultTextureAlias");
  return true;
}

bool ReadAlias(IXMLData* item, TintAlias& alias) {
  u32 materialIndex = 0;
  if (!ReadNumber(item, "red", "%f", &alias.red) || !ReadNumber(item, "green", "%f", &alias.green) ||
      !ReadNumber(item, "blue", "%f", &alias.blue) || !ReadNumber(item, "alpha", "%f", &alias.alpha) ||
      !ReadNumber(item, "semanticHash", "%d", &alias.semanticHash) ||
      !ReadNumber(item, "materialIndex", "%u", &materialIndex)) {
    return false;
  }
  alias.materialIndex = materialIndex & kMaterialIndexMask;
  alias.isDefault = ReadBoolOrFalse(item, "defaultTintAlias");
  return true;
}

// Aliases of one aliasName gather under one group, which keeps the spelling and place of its first
// appearance. An alias missing a required attribute is skipped; only refused memory fails.
template <class Alias>
bool ReadAliases(IXMLData* element, TOwnedList<TAliasGroup<Alias>>& groups) {
  for (IXMLData* item = element->FindChild("Alias", nullptr); item; item = element->FindChild("Alias", item)) {
    const char* groupName = AttributeText(item, "aliasName");
    Alias read;
    if (!groupName || !ReadAlias(item, read)) continue;
    TAliasGroup<Alias>* group = groups.first;
    while (group && !SameText(group->name.Text(), groupName)) group = group->next;
    if (!group) {
      group = MemNew<TAliasGroup<Alias>>();
      if (!group) return false;
      groups.Append(group);
      if (!group->name.Assign(groupName)) return false;
    }
    Alias* alias = MemNew<Alias>(std::move(read));
    if (!alias) return false;
    group->aliases.Append(alias);
  }
  return true;
}

}  // namespace

bool Read(ActorDefinition& actor, const CByteBuffer& bytes) {
  CMemoryStream stream(bytes);
  TReleaser<IXML> document(CreateXML());
  if (!document || !document->LoadStream(&stream)) return false;
  IXMLData* root = document->GetRoot();
  if (!SameText(root->GetName(), "ActorRuntime")) return false;

  IXMLData* base = root->FindChild("Base", nullptr);
  if (!base || !ReadText(base, "fileName", actor.fileName) ||
      !ReadTextOrEmpty(base, "paletteName", actor.paletteName)) {
    return false;
  }
  if (IXMLData* network = root->FindChild("AnimationNetwork", nullptr)) {
    if (!ReadTextOrEmpty(network, "fileName", actor.animationNetworkName) ||
        !ReadTextOrEmpty(network, "animSetName", actor.animSetName)) {
      return false;
    }
  }
  if (IXMLData* invisible = root->FindChild("Invisible", nullptr))
    actor.invisible = ReadBoolOrFalse(invisible, "Value");
  if (IXMLData* usage = root->FindChild("Usage", nullptr)) {
    if (!ReadTextOrEmpty(usage, "boneAttachmentName", actor.boneAttachmentName)) return false;
    actor.borrowSkeleton = ReadBoolOrFalse(usage, "borrowSkeleton");
  }
  if (IXMLData* aliases = root->FindChild("TextureAliases", nullptr)) {
    if (!ReadAliases(aliases, actor.textureAliases)) return false;
  }
  if (IXMLData* aliases = root->FindChild("TintAliases", nullptr)) {
    if (!ReadAliases(aliases, actor.tintAliases)) return false;
  }
  return true;
}
