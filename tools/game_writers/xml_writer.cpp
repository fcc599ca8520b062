#include "game_writers/xml_writer.h"

#include <initializer_list>
#include <utility>

namespace gamewriters {

namespace {

std::string Escaped(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '"': out += "&quot;"; break;
      default: out += c;
    }
  }
  return out;
}

// `<name a="..." b="..."` for the attributes that are set; the caller closes the tag.
std::string Open(const std::string& name, std::initializer_list<std::pair<const char*, const Attribute&>> attributes) {
  std::string out = "<" + name;
  for (const auto& [key, value] : attributes) {
    if (value) out += std::string(" ") + key + "=\"" + Escaped(*value) + "\"";
  }
  return out;
}

std::string Layout(const InputLayoutXml& layout) {
  std::string out = Open("Object", {{"class", Attribute("InputLayout")}, {"Name", layout.name}}) + ">";
  out += "<Array Name=\"" + layout.arrayName + "\">";
  for (const LayoutEntryXml& e : layout.entries) {
    out += Open("object", {{"Class", Attribute(e.className)},
                           {"Type", e.type},
                           {"usage", e.usage},
                           {"Stream", e.stream},
                           {"UsageIndex", e.usageIndex}}) +
           "/>";
  }
  return out + "</Array></Object>";
}

std::string Definition(const MaterialDefinitionXml& definition) {
  std::string out =
      Open("Object",
           {{"class", Attribute("MaterialDefinition")}, {"Name", definition.name}, {"type", definition.type}}) +
      ">";
  if (definition.drawStyles) {
    out += "<array Name=\"DrawStyles\">";
    for (const DrawStyleXml& s : *definition.drawStyles) {
      out += Open("object", {{"Class", Attribute(s.className)},
                             {"Name", s.name},
                             {"Effect", s.effect},
                             {"InputLayout", s.inputLayout}}) +
             "/>";
    }
    out += "</array>";
  }
  if (definition.properties) {
    out += "<array Name=\"Properties\">";
    for (const std::string& p : *definition.properties) out += "<string>" + Escaped(p) + "</string>";
    out += "</array>";
  }
  return out + "</Object>";
}

template <class Alias, class Write>
std::string Aliases(const char* name, const std::vector<Alias>& aliases, Write write) {
  if (aliases.empty()) return "";
  std::string out = std::string("<") + name + ">\n";
  for (const Alias& alias : aliases) out += "  " + write(alias) + "/>\n";
  return out + "</" + name + ">\n";
}

}  // namespace

std::string BuildCatalogue(const CatalogueXml& catalogue) {
  std::string out = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";
  out += Open(catalogue.rootName, {{"class", catalogue.rootClass}}) + ">\n";
  out += "<array name=\"InputLayouts\">\n";
  for (const InputLayoutXml& layout : catalogue.layouts) out += Layout(layout) + "\n";
  out += "</array>\n<array name=\"ParameterGroups\"><Object class=\"ParameterGroup\"/></array>\n";
  out += "<array name=\"MaterialDefinitions\">\n";
  for (const MaterialDefinitionXml& definition : catalogue.definitions) out += Definition(definition) + "\n";
  return out + "</array>\n</" + catalogue.rootName + ">\n";
}

std::string BuildActor(const ActorXml& actor) {
  std::string out = "<" + actor.rootName + ">\n";
  if (actor.hasBase) out += Open("Base", {{"fileName", actor.fileName}, {"paletteName", actor.paletteName}}) + "/>\n";
  if (actor.hasAnimationNetwork) {
    out += Open("AnimationNetwork", {{"fileName", actor.networkFileName}, {"animSetName", actor.animSetName}}) + "/>\n";
  }
  if (actor.invisible) out += Open("Invisible", {{"Value", actor.invisible}}) + "/>\n";
  if (actor.hasUsage) {
    out += Open("Usage", {{"boneAttachmentName", actor.boneAttachmentName}, {"borrowSkeleton", actor.borrowSkeleton}}) +
           "/>\n";
  }
  out += Aliases("TextureAliases", actor.textureAliases, [](const TextureAliasXml& a) {
    return Open("Alias", {{"aliasName", a.aliasName},
                          {"textureName", a.textureName},
                          {"semanticHash", a.semanticHash},
                          {"materialIndex", a.materialIndex},
                          {"defaultTextureAlias", a.isDefault}});
  });
  out += Aliases("TintAliases", actor.tintAliases, [](const TintAliasXml& a) {
    return Open("Alias", {{"aliasName", a.aliasName},
                          {"red", a.red},
                          {"green", a.green},
                          {"blue", a.blue},
                          {"alpha", a.alpha},
                          {"semanticHash", a.semanticHash},
                          {"materialIndex", a.materialIndex},
                          {"defaultTintAlias", a.isDefault}});
  });
  return out + "</" + actor.rootName + ">\n";
}

}  // namespace gamewriters
