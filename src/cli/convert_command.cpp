#include <cstdio>
#include <strings.h>

#include "app/convert_actor.h"
#include "app/log.h"
#include "cli/cli_session.h"

namespace {

// --rig answers the rig question by animation set name; without it the question can't be answered.
struct RigAnswer : IRigDialog {
  const std::string& wanted;
  bool unanswered = false;
  explicit RigAnswer(const std::string& rig) : wanted(rig) {}
  i32 Run(const RigCandidate* candidates, const RigSkeleton*& selected) override {
    for (const RigCandidate* c = candidates; c; c = c->next) {
      if (!wanted.empty() && c->name && strcasecmp(c->name, wanted.c_str()) == 0) {
        selected = c->rig;
        return 1;
      }
    }
    unanswered = true;
    std::fprintf(stderr, "tarnwick-cli: several rigs fit this actor; choose one with --rig NAME:\n");
    for (const RigCandidate* c = candidates; c; c = c->next) std::fprintf(stderr, "  %s\n", c->name ? c->name : "(no name)");
    return 0;
  }
};

// The path of -o; cancelled when the rig question went unanswered, so that no file without the
// rig the user meant is written.
struct PathAnswer : ISaveDialog {
  const std::string& path;
  const RigAnswer& rig;
  PathAnswer(const std::string& answer, const RigAnswer& rigAnswer) : path(answer), rig(rigAnswer) {}
  bool AskSavePath(CStringBufferA& out) override { return !rig.unanswered && out.Format("%s", path.c_str()) > 0; }
};

// The listed actor called `name`, ignoring case as the list's order does; null when none is.
const ListEntry* FindActor(const ListEntries& items, const std::string& name) {
  for (const ListEntry& item : items) {
    if (strcasecmp(item.text.c_str(), name.c_str()) == 0) return &item;
  }
  return nullptr;
}

}  // namespace

// One actor to one file. The conversion is the window's: the same log lines, the same file.
int RunConvert(const CliOptions& options) {
  if (options.argument.empty() || options.output.empty()) {
    std::fprintf(stderr, "tarnwick-cli: convert needs an actor and -o FILE.fbx or -o FILE.glb\n");
    return 2;
  }
  CliSession session;
  if (!session.Open(options, true)) return 1;
  const ListEntries items = session.Window().Snapshot(kFileList).items;
  const ListEntry* item = FindActor(items, options.argument);
  const auto* entry = item ? reinterpret_cast<const PackEntry*>(item->data) : nullptr;
  if (!entry) {
    std::fprintf(stderr, "tarnwick-cli: no actor \"%s\" in this game (see tarnwick-cli list)\n", options.argument.c_str());
    return 1;
  }
  AppState& app = session.App();
  RigAnswer rig(options.rig);
  PathAnswer save(options.output, rig);
  ConvertOutcome outcome;
  ConvertActor(GameTables{app.packIndex, app.materials, app.rigs}, *entry, item->text.c_str(), {save, rig}, outcome,
               {.textures = options.textures, .format = CliFormat(options, ExportFormat::kByExtension)});
  for (const std::string& note : outcome.notes) Log(app, "%s", note.c_str());
  if (outcome.logLine.Length()) Log(app, "%s", outcome.logLine.Text());
  switch (outcome.result) {
    case ConvertResult::kWritten:
      std::fprintf(stderr, "Wrote %s\n", options.output.c_str());
      return 0;
    case ConvertResult::kCancelled:
      return 1;  // only an unanswered rig question cancels, and it said why
    default:
      std::fprintf(stderr, "tarnwick-cli: \"%s\" was not converted\n", options.argument.c_str());
      return 1;
  }
}
