#include <cstdio>

#include "app/actor_list.h"
#include "app/convert.h"
#include "app/rig_by_name.h"
#include "cli/cli_session.h"

namespace {

// The path of -o.
struct PathAnswer : ISaveDialog {
  const std::string& path;
  explicit PathAnswer(const std::string& answer) : path(answer) {}
  bool AskSavePath(CStringBufferA& out) override { return out.Format("%s", path.c_str()) > 0; }
};

}  // namespace

// One actor to one file. The conversion is the window's: the same log lines, the same file.
int RunConvert(const CliOptions& options) {
  if (options.argument.empty() || options.output.empty()) {
    std::fprintf(stderr, "tarnwick-cli: convert needs an actor and -o FILE.fbx or -o FILE.glb\n");
    return kExitNothingStarted;
  }
  CliSession session;
  if (!session.Open(options)) return kExitNothingStarted;
  AppState& app = session.App();
  const std::vector<ListedEntry> actors = ListedEntries(app);
  const ListedEntry* actor = FindListedEntry(actors, options.argument);
  if (!actor) {
    std::fprintf(stderr, "tarnwick-cli: no actor \"%s\" in this game (see tarnwick-cli list)\n",
                 options.argument.c_str());
    return kExitNothingStarted;
  }
  RigByName rig(options.rig);
  PathAnswer save(options.output);
  ConvertOutcome outcome;
  ConvertActor(GameTables{app.packIndex, app.materials, app.rigs}, *actor->entry, actor->name.c_str(), {save, rig},
               outcome, {.textures = options.textures, .format = CliFormat(options, ExportFormat::kByExtension)});
  LogOutcome(app, outcome);
  if (rig.StopsConversion()) {
    std::fprintf(stderr, "tarnwick-cli: several rigs fit this actor; choose one with --rig NAME:\n");
    for (const std::string& choice : rig.Choices()) std::fprintf(stderr, "  %s\n", choice.c_str());
    return kExitSomeFailed;
  }
  if (!outcome.Written()) {
    std::fprintf(stderr, "tarnwick-cli: \"%s\" was not converted\n", options.argument.c_str());
    return kExitSomeFailed;
  }
  std::fprintf(stderr, "Wrote %s\n", options.output.c_str());
  return kExitDone;
}
