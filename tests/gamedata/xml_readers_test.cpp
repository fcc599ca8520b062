#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "core/hash.h"
#include "game_writers/xml_writer.h"
#include "gamedata/actor_definition.h"
#include "gamedata/material_definitions.h"
#include "support/allocation_failure.h"

namespace {

using namespace testsupport;
using namespace gamewriters;

CByteBuffer Bytes(const std::string& text) {
  CByteBuffer bytes;
  EXPECT_TRUE(bytes.SetSize(static_cast<u32>(text.size())));
  if (!text.empty()) std::memcpy(bytes.Data(), text.data(), text.size());
  return bytes;
}

// What every successful read of a catalogue must give, whatever the file held.
void CheckCatalogue(const MaterialDefinitionSet& set) {
  const auto& layouts = set.InputLayouts();
  for (u32 i = 0; i < layouts.Count(); ++i) {
    const InputLayout& layout = layouts.ValueAt(i);
    ASSERT_EQ(layout.entryCount, layout.entries.Count());
    ASSERT_EQ(layout.streamCount, layout.streamSizes.Count());
    for (const LayoutEntry& entry : layout.entries) {
      ASSERT_LT(entry.stream, layout.streamCount);
      EXPECT_LE(entry.offset + LayoutTypeSize(entry.type), layout.streamSizes[entry.stream]);
    }
  }
  for (u32 i = 0; i < set.Definitions().Count(); ++i) {
    const MaterialDefinition& definition = set.Definitions().ValueAt(i);
    ASSERT_EQ(definition.drawStyleCount, definition.drawStyles.Count());
    for (const DrawStyle& style : definition.drawStyles) {
      if (style.inputLayout) {
        EXPECT_EQ(style.inputLayout, set.FindInputLayout(style.inputLayoutName.Text()));
      }
    }
  }
}

CatalogueXml SampleCatalogue() {
  CatalogueXml c;
  c.layouts.push_back({"Skinned",
                       {{"Float3", "Position"},
                        {"Udec3", "Normal"},
                        {"Float2", "Texcoord"},
                        {"Ubyte4", "BlendIndices", "2"},
                        {"Float16_2", "TEXCOORD", "2", "1"}}});
  c.layouts.push_back({"Wide", {{"Float4", "Position"}, {"Float4", "Color"}}});
  c.layouts.push_back({"FOO", {{"Float1", "Fog"}}});
  c.layouts.push_back({"Foo", {{"Float2", "Fog"}}});  // one hash with FOO: the later replaces it
  c.layouts.push_back({"NoEntries", {{"Float1", "Fog", {}, {}, "NotAnEntry"}}});
  c.layouts.push_back({"NoType", {{{}, "Position"}}});
  c.definitions.push_back({"Normal",
                           {},
                           std::vector<DrawStyleXml>{{"shadow", "Wide"}, {"Normal", "Skinned"}},
                           std::vector<std::string>{"skinned", "RigidSkinned", "Shiny"}});
  c.definitions.push_back({"normal", "glass", std::vector<DrawStyleXml>{{"a", "Skinned"}, {"b", "Wide"}}, {}});
  c.definitions.push_back({"Unresolved", {}, std::vector<DrawStyleXml>{{"normal", "Missing"}, {"b", "Wide"}}, {}});
  c.definitions.push_back({"Bare", {}, {}, {}});
  c.definitions.push_back({"NoStyles", {}, std::vector<DrawStyleXml>{{"x", "Wide", "fx", "Other"}}, {}});
  c.definitions.push_back({"NoEffect", {}, std::vector<DrawStyleXml>{{"x", "Wide", std::nullopt}}, {}});
  return c;
}

TEST(MaterialCatalogue, ReadsLayoutsDefinitionsAndChoosesLayouts) {
  MaterialDefinitionSet set;
  ASSERT_TRUE(set.Read(Bytes(BuildCatalogue(SampleCatalogue()))));
  CheckCatalogue(set);
  EXPECT_EQ(set.InputLayouts().Count(), 3u) << "FOO and Foo are one; two layouts are dropped";
  const InputLayout* skinned = set.FindInputLayout("SKINNED");
  ASSERT_NE(skinned, nullptr);
  ASSERT_EQ(skinned->streamCount, 3u) << "streams 0 and 2 give three sizes";
  EXPECT_EQ(skinned->streamSizes[0], 20u);
  EXPECT_EQ(skinned->streamSizes[1], 0u);
  EXPECT_EQ(skinned->streamSizes[2], 8u);
  const u32 offsets[] = {0, 12, 12, 0, 4};
  for (u32 i = 0; i < 5; ++i) EXPECT_EQ(skinned->entries[i].offset, offsets[i]) << i;
  EXPECT_EQ(skinned->entries[4].usage, kTexcoord);
  EXPECT_EQ(skinned->entries[4].usageIndex, 1u);
  EXPECT_EQ(set.FindInputLayout("foo")->entries[0].type, kFloat2);

  EXPECT_EQ(set.Definitions().Count(), 4u) << "three definitions are dropped";
  const MaterialDefinition* normal = set.FindDefinition(HashExact("Normal"));
  ASSERT_NE(normal, nullptr);
  EXPECT_EQ(normal->flags, u32(kSkinned | kRigidSkinned));
  EXPECT_STREQ(normal->type.Text(), "NULL");
  EXPECT_STREQ(set.FindDefinition(HashExact("normal"))->type.Text(), "glass") << "Normal and normal are two";
  EXPECT_STREQ(set.FindDefinition(HashExact("Bare"))->type.Text(), "");

  EXPECT_EQ(set.ChooseInputLayout(HashExact("Normal")), skinned) << "a style named Normal counts as normal";
  EXPECT_EQ(set.ChooseInputLayout(HashExact("normal")), set.FindInputLayout("Wide")) << "the larger vertex";
  EXPECT_EQ(set.ChooseInputLayout(HashExact("Unresolved")), nullptr) << "normal wins even unresolved";
  EXPECT_EQ(set.ChooseInputLayout(HashExact("Bare")), nullptr);
  EXPECT_EQ(set.ChooseInputLayout(HashExact("absent")), nullptr);

  set.Clear();
  EXPECT_EQ(set.Definitions().Count(), 0u);
}

TEST(MaterialCatalogue, WrongFilesFail) {
  CatalogueXml lowerRoot;
  lowerRoot.rootName = "object";
  CatalogueXml otherRoot;
  otherRoot.rootName = "Collection";
  CatalogueXml noClass;
  noClass.rootClass.reset();
  CatalogueXml wrongClass;
  wrongClass.rootClass = "Materials";
  MaterialDefinitionSet set;
  EXPECT_TRUE(set.Read(Bytes(BuildCatalogue(lowerRoot)))) << "the root's name ignores case";
  for (const CatalogueXml& c : {otherRoot, noClass, wrongClass}) EXPECT_FALSE(set.Read(Bytes(BuildCatalogue(c))));
  EXPECT_FALSE(set.Read(Bytes("<Object class=\"MaterialDefinitionCollection\">")));
  CatalogueXml farStream;
  farStream.layouts.push_back({"Far", {{"Float1", "Fog", "4000000000"}}});
  ASSERT_TRUE(set.Read(Bytes(BuildCatalogue(farStream))));
  EXPECT_EQ(set.FindInputLayout("Far"), nullptr) << "a stream far out of proportion drops the layout";
}

ActorXml SampleActor() {
  ActorXml a;
  a.fileName = "chars\\hero.dmod";
  a.paletteName = "chars\\hero_red.dmat";
  a.hasAnimationNetwork = true;
  a.networkFileName = "rigs\\hero.mrn";
  a.animSetName = "Hero";
  a.hasUsage = true;
  a.borrowSkeleton = "TRUE";
  a.textureAliases = {{"Skin", "skin_a.dds", "-5", "300", "1"},
                      {"Cloth", {}, "1", "0"},  // no textureName: left out
                      {"SKIN", "skin_b.dds", "7", "1"},
                      {"Cloth", "cloth.dds", "x", "0"},  // a number that doesn't scan: left out
                      {"Cloth", "cloth.dds", "2", "0"}};
  a.tintAliases = {{"Tint", "0.5", "0.25", "1", "1", "3", "2", "false"}};
  return a;
}

TEST(ActorDefinition, ReadsNamesFlagsAndGroupsAliases) {
  ActorDefinition actor;
  ASSERT_TRUE(Read(actor, Bytes(BuildActor(SampleActor()))));
  EXPECT_STREQ(actor.fileName.Text(), "chars\\hero.dmod");
  EXPECT_STREQ(actor.paletteName.Text(), "chars\\hero_red.dmat");
  EXPECT_STREQ(actor.animationNetworkName.Text(), "rigs\\hero.mrn");
  EXPECT_STREQ(actor.animSetName.Text(), "Hero");
  EXPECT_TRUE(actor.borrowSkeleton);
  ASSERT_EQ(actor.textureAliases.count, 2u);
  const auto* skin = actor.textureAliases.first;
  EXPECT_STREQ(skin->name.Text(), "Skin") << "the first spelling names the group";
  ASSERT_EQ(skin->aliases.count, 2u);
  EXPECT_EQ(skin->aliases.first->semanticHash, -5);
  EXPECT_EQ(skin->aliases.first->materialIndex, 44u) << "300 keeps its low 8 bits";
  EXPECT_TRUE(skin->aliases.first->isDefault);
  EXPECT_STREQ(skin->aliases.last->textureName.Text(), "skin_b.dds");
  EXPECT_EQ(skin->next->aliases.count, 1u) << "only the good Cloth alias";
  ASSERT_EQ(actor.tintAliases.count, 1u);
  EXPECT_EQ(actor.tintAliases.first->aliases.first->green, 0.25f);

  struct BoolCase {
    const char* text;
    bool value;
  };
  for (const BoolCase c : {BoolCase{"TRUE", true}, {"0", false}, {"7", true}, {"maybe", false}, {"False", false}}) {
    ActorXml xml;
    xml.fileName = "";
    xml.invisible = c.text;
    ActorDefinition flagged;
    ASSERT_TRUE(Read(flagged, Bytes(BuildActor(xml))));
    EXPECT_EQ(flagged.invisible, c.value) << c.text;
    EXPECT_STREQ(flagged.fileName.Text(), "") << "an empty fileName reads";
    EXPECT_STREQ(flagged.animSetName.Text(), "");
    EXPECT_FALSE(flagged.borrowSkeleton);
  }
}

TEST(ActorDefinition, WrongFilesFail) {
  ActorXml wrongRoot;
  wrongRoot.rootName = "Actor";
  wrongRoot.fileName = "m";
  ActorXml noBase;
  noBase.hasBase = false;
  ActorXml noFileName;
  for (const ActorXml& xml : {wrongRoot, noBase, noFileName}) {
    ActorDefinition actor;
    EXPECT_FALSE(Read(actor, Bytes(BuildActor(xml))));
  }
  ActorDefinition actor;
  EXPECT_FALSE(Read(actor, Bytes("<ActorRuntime><Base fileName=\"m\">")));
}

// Every prefix, each in a buffer of exactly its length, and every refused allocation: false or a
// partial read, never a fault or a leak.
TEST(XMLReaders, SurviveEveryPrefixAndRefusedMemory) {
  const std::string catalogue = BuildCatalogue(SampleCatalogue());
  const std::string actor = BuildActor(SampleActor());
  for (size_t cut = 0; cut < catalogue.size(); ++cut) {
    MaterialDefinitionSet set;
    if (set.Read(Bytes(catalogue.substr(0, cut)))) CheckCatalogue(set);
  }
  for (size_t cut = 0; cut < actor.size(); ++cut) {
    ActorDefinition read;
    (void)Read(read, Bytes(actor.substr(0, cut)));
  }
  const CByteBuffer catalogueBytes = Bytes(catalogue);
  const CByteBuffer actorBytes = Bytes(actor);
  for (u64 failAt = 1;; ++failAt) {
    ScopedAllocationFailure refuse(failAt);
    {
      MaterialDefinitionSet set;
      if (set.Read(catalogueBytes)) CheckCatalogue(set);
      set.Destroy();
      ActorDefinition read;
      (void)Read(read, actorBytes);
    }
    EXPECT_EQ(refuse.Live(), 0) << failAt;
    if (!refuse.Failed()) break;
    ASSERT_LT(failAt, 5000u);
  }
}

}  // namespace
