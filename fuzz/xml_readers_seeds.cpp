#include "game_writers/xml_writer.h"
#include "seeds.h"

using namespace gamewriters;

Seeds CatalogueSeeds() {
  CatalogueXml catalogue;
  catalogue.layouts.push_back(
      {"Skinned", {{"Float3", "Position"}, {"Udec3", "Normal"}, {"Float2", "Texcoord", "1", "0"}}});
  catalogue.definitions.push_back({"Skin",
                                   {},
                                   std::vector<DrawStyleXml>{{"normal", "Skinned"}, {"x", "Missing"}},
                                   std::vector<std::string>{"Skinned"}});
  return {{"catalogue", BuildCatalogue(catalogue)}};
}

Seeds ActorSeeds() {
  ActorXml actor;
  actor.fileName = "m.dmod";
  actor.hasAnimationNetwork = true;
  actor.networkFileName = "r.mrn";
  actor.animSetName = "S";
  actor.hasUsage = true;
  actor.borrowSkeleton = "1";
  actor.textureAliases = {{"Skin", "a.dds", "-5", "300", "true"}};
  actor.tintAliases = {{"Tint", "0.5", "0.25", "1", "1", "3", "2"}};
  return {{"actor", BuildActor(actor)}};
}
