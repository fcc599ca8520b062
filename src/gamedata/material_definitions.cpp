#include "gamedata/material_definitions.h"

#include <utility>

#include "core/hash.h"
#include "gamedata/xml_attributes.h"
#include "xml/memory_stream.h"
#include "xml/xml.h"

namespace {

// Texts in code order; a text found nowhere takes the code after the last.
constexpr const char* kTypeNames[] = {
    "Float1",  "Float2",  "Float3",   "Float4",   "D3dcolor", "Ubyte4", "Short2",    "Short4",    "Ubyte4n",
    "Short2n", "Short4n", "Ushort2n", "Ushort4n", "Udec3",    "Dec3n",  "Float16_2", "Float16_4", "Unknown",
};
constexpr u32 kTypeSizes[] = {4, 8, 12, 16, 4, 4, 4, 8, 4, 4, 8, 4, 8, 0, 0, 4, 8, 0, 0};
constexpr const char* kUsageNames[] = {
    "Position", "BlendWeight", "BlendIndices", "Normal", "Psize", "Texcoord", "Tangent",
    "Binormal", "PositionT",   "Color",        "Fog",    "Depth", "Unknown",
};
constexpr const char* kFlagNames[] = {
    "ArtistSelectable", "ArtistModelMaterialSelectable", "Skinned", "SemiTransparent", "RigidSkinned", "WaterPlane",
};

template <size_t N>
u32 CodeOf(const char* text, const char* const (&names)[N]) {
  for (u32 i = 0; i < N; ++i) {
    if (SameText(text, names[i])) return i;
  }
  return N;
}

// A FilterChildren test: children named `name` whose attribute Class equals `className`.
struct ChildKind {
  const char* name;
  const char* className;
};

bool IsChildKind(IXMLData* item, void* context) {
  const auto* kind = static_cast<const ChildKind*>(context);
  if (!SameText(item->GetQualifiedName(), kind->name)) return false;
  if (!kind->className) return true;
  const char* className = AttributeText(item, "Class");
  return className && SameText(className, kind->className);
}

u32 ScanOrZero(IXMLData* element, const char* name) {
  u32 value = 0;
  return ReadNumber(element, name, "%u", &value) ? value : 0;
}

// The child `array` whose Name is `name`, the first of them.
IXMLData* FindNamedArray(IXMLData* element, const char* name) {
  for (IXMLData* array = element->FindChild("array", nullptr); array; array = element->FindChild("array", array)) {
    const char* arrayName = AttributeText(array, "Name");
    if (arrayName && SameText(arrayName, name)) return array;
  }
  return nullptr;
}

bool ParseLayout(IXMLData* element, InputLayout& layout) {
  const char* name = AttributeText(element, "Name");
  if (!name) return false;
  layout.name.Assign(name);
  layout.nameHash = HashName(layout.name.Text());

  IXMLData* array = element->FindChild("Array", nullptr);
  const char* arrayName = AttributeText(array, "Name");
  if (!arrayName || !SameText(arrayName, "entries")) return false;
  ChildKind kind{"object", "LayoutEntry"};
  TReleaser<IXMLResultSet> items(array->FilterChildren(&IsChildKind, &kind));
  if (!items) return false;

  const u32 count = static_cast<u32>(items->GetCount());
  if (!layout.entries.Reserve(count) || !layout.entries.SetSize(count)) return false;
  u32 streamCount = 0;
  for (u32 i = 0; i < count; ++i) {
    IXMLData* item = items->GetItem(static_cast<i32>(i));
    const char* type = AttributeText(item, "Type");
    const char* usage = AttributeText(item, "usage");
    if (!type || !usage) return false;
    LayoutEntry& entry = layout.entries[i];
    entry.stream = ScanOrZero(item, "Stream");
    entry.usageIndex = ScanOrZero(item, "UsageIndex");
    entry.type = CodeOf(type, kTypeNames);
    entry.usage = CodeOf(usage, kUsageNames);
    if (entry.stream >= MaterialDefinitionSet::kMaxStreams) return false;
    if (entry.stream + 1 > streamCount) streamCount = entry.stream + 1;
  }
  layout.entryCount = count;
  if (!layout.streamSizes.Reserve(streamCount) || !layout.streamSizes.SetSize(streamCount)) return false;
  layout.streamCount = streamCount;
  // File order within each stream, no alignment; a type of size 0 shares the next one's offset.
  for (LayoutEntry& entry : layout.entries) {
    entry.offset = layout.streamSizes[entry.stream];
    layout.streamSizes[entry.stream] += LayoutTypeSize(entry.type);
  }
  return true;
}

bool ParseDefinition(IXMLData* element, MaterialDefinition& definition) {
  const char* name = AttributeText(element, "Name");
  if (!name) return false;
  definition.name.Assign(name);
  definition.nameHash = HashExact(definition.name.Text());

  if (IXMLData* styles = FindNamedArray(element, "DrawStyles")) {
    const char* type = AttributeText(element, "type");
    if (!definition.type.Assign(type ? type : "NULL")) return false;
    ChildKind kind{"object", "DrawStyle"};
    TReleaser<IXMLResultSet> items(styles->FilterChildren(&IsChildKind, &kind));
    if (!items) return false;
    const u32 count = static_cast<u32>(items->GetCount());
    if (!definition.drawStyles.Reserve(count) || !definition.drawStyles.SetSize(count)) return false;
    for (u32 i = 0; i < count; ++i) {
      IXMLData* item = items->GetItem(static_cast<i32>(i));
      DrawStyle& style = definition.drawStyles[i];
      const char* styleName = AttributeText(item, "Name");
      if (!styleName || !ReadText(item, "Effect", style.effect) ||
          !ReadText(item, "InputLayout", style.inputLayoutName)) {
        return false;
      }
      style.name.Assign(styleName);
      style.nameHash = HashName(style.name.Text());
    }
    definition.drawStyleCount = count;
  }

  if (IXMLData* properties = FindNamedArray(element, "Properties")) {
    ChildKind kind{"string", nullptr};
    TReleaser<IXMLResultSet> items(properties->FilterChildren(&IsChildKind, &kind));
    if (!items) return false;
    for (i32 i = 0; i < items->GetCount(); ++i) {
      const u32 flag = CodeOf(items->GetItem(i)->GetValue(), kFlagNames);
      if (flag < std::size(kFlagNames)) definition.flags |= 1u << flag;
    }
  }
  return true;
}

// Reads every `Object` of `className` under `array` with `parse`, each into its slot by hash;
// false only when the table can't grow.
template <class Record, class Parse>
bool ReadRecords(IXMLData* array, const char* className, THashMap<u32, Record>& table, Parse parse) {
  for (IXMLData* item = array->FindChild("Object", nullptr); item; item = array->FindChild("Object", item)) {
    const char* itemClass = AttributeText(item, "class");
    if (!itemClass || !SameText(itemClass, className)) continue;
    Record record;
    if (!parse(item, record)) continue;
    Record* slot = table.FindOrInsert(record.nameHash);
    if (!slot) return false;
    *slot = std::move(record);
  }
  return true;
}

}  // namespace

u32 LayoutTypeSize(u32 type) { return type < std::size(kTypeSizes) ? kTypeSizes[type] : 0; }

u32 VertexSize(const InputLayout& layout) {
  u32 size = 0;
  for (u32 streamSize : layout.streamSizes) size += streamSize;
  return size;
}

bool MaterialDefinitionSet::Read(const CByteBuffer& bytes) {
  CMemoryStream stream(bytes);
  TReleaser<IXML> document(CreateXML());
  if (!document || !document->LoadStream(&stream)) return false;
  IXMLData* root = document->GetRoot();
  const char* rootClass = AttributeText(root, "class");
  if (!rootClass || !SameText(root->GetName(), "Object") || !SameText(rootClass, "MaterialDefinitionCollection")) {
    return false;
  }
  for (IXMLData* array = root->FindChild("array", nullptr); array; array = root->FindChild("array", array)) {
    const char* name = AttributeText(array, "name");
    if (!name) continue;
    if (SameText(name, "InputLayouts")) {
      if (!ReadRecords(array, "InputLayout", inputLayouts, &ParseLayout)) return false;
    } else if (SameText(name, "MaterialDefinitions")) {
      if (!ReadRecords(array, "MaterialDefinition", definitions, &ParseDefinition)) return false;
    }
  }
  // Layouts are linked only now: the table moves its entries while it grows.
  for (u32 i = 0; i < definitions.Count(); ++i) {
    for (DrawStyle& style : definitions.ValueAt(i).drawStyles)
      style.inputLayout = FindInputLayout(style.inputLayoutName.Text());
  }
  return true;
}

const InputLayout* MaterialDefinitionSet::FindInputLayout(const char* name) const {
  const u32 found = inputLayouts.Find(HashName(name));
  return found < inputLayouts.Count() ? &inputLayouts.ValueAt(found) : nullptr;
}

const MaterialDefinition* MaterialDefinitionSet::FindDefinition(u32 hash) const {
  const u32 found = definitions.Find(hash);
  return found < definitions.Count() ? &definitions.ValueAt(found) : nullptr;
}

const InputLayout* MaterialDefinitionSet::ChooseInputLayout(u32 hash) const {
  const MaterialDefinition* definition = FindDefinition(hash);
  if (!definition) return nullptr;
  const u32 normal = HashName("normal");
  for (const DrawStyle& style : definition->drawStyles) {
    if (style.nameHash == normal) return style.inputLayout;
  }
  const InputLayout* best = nullptr;
  u32 bestSize = 0;
  for (const DrawStyle& style : definition->drawStyles) {
    if (style.inputLayout && VertexSize(*style.inputLayout) > bestSize) {
      best = style.inputLayout;
      bestSize = VertexSize(*best);
    }
  }
  return best;
}

void MaterialDefinitionSet::Clear() {
  inputLayouts.Clear();
  definitions.Clear();
}

void MaterialDefinitionSet::Destroy() {
  definitions.Release();
  inputLayouts.Release();
}
