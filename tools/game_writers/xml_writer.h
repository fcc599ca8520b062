#pragma once

#include <optional>
#include <string>
#include <vector>

namespace gamewriters {

// Writers of the game's XML files from plain structs. An attribute left as nullopt is not written,
// so tests can drop any of them; every text is written as given (escaped), so tests can also write
// numbers that don't scan.
using Attribute = std::optional<std::string>;

// ---- materials_3.xml

struct LayoutEntryXml {
  Attribute type{};
  Attribute usage{};
  Attribute stream{};
  Attribute usageIndex{};
  std::string className = "LayoutEntry";
};

struct InputLayoutXml {
  Attribute name{};
  std::vector<LayoutEntryXml> entries{};
  std::string arrayName = "entries";
};

struct DrawStyleXml {
  Attribute name{};
  Attribute inputLayout{};
  Attribute effect = "effects/default.fx";
  std::string className = "DrawStyle";
};

struct MaterialDefinitionXml {
  Attribute name{};
  Attribute type{};
  std::optional<std::vector<DrawStyleXml>> drawStyles{};  // nullopt: no DrawStyles array
  std::optional<std::vector<std::string>> properties{};   // nullopt: no Properties array
};

struct CatalogueXml {
  std::string rootName = "Object";
  Attribute rootClass = "MaterialDefinitionCollection";
  std::vector<InputLayoutXml> layouts{};
  std::vector<MaterialDefinitionXml> definitions{};
};

std::string BuildCatalogue(const CatalogueXml& catalogue);

// ---- .adr actor definitions

struct TextureAliasXml {
  Attribute aliasName{};
  Attribute textureName{};
  Attribute semanticHash = "0";
  Attribute materialIndex = "0";
  Attribute isDefault{};
};

struct TintAliasXml {
  Attribute aliasName{};
  Attribute red = "1";
  Attribute green = "1";
  Attribute blue = "1";
  Attribute alpha = "1";
  Attribute semanticHash = "0";
  Attribute materialIndex = "0";
  Attribute isDefault{};
};

struct ActorXml {
  std::string rootName = "ActorRuntime";
  bool hasBase = true;
  Attribute fileName{};
  Attribute paletteName{};
  bool hasAnimationNetwork = false;
  Attribute networkFileName{};
  Attribute animSetName{};
  Attribute invisible{};  // the Value of Invisible, which is written when this is set
  bool hasUsage = false;
  Attribute boneAttachmentName{};
  Attribute borrowSkeleton{};
  std::vector<TextureAliasXml> textureAliases{};
  std::vector<TintAliasXml> tintAliases{};
};

std::string BuildActor(const ActorXml& actor);

}  // namespace gamewriters
