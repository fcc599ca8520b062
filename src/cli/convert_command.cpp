#include <cstdio>
#include <filesystem>
#include <strings.h>

#include "app/convert.h"
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

}  // namespace

// One actor to one file. The conversion is the window's: the same log lines, the same file.
int RunConvert(const CliOptions& options) {
  if (options.argument.empty() || options.output.empty()) {
    std::fprintf(stderr, "tarnwick-cli: convert needs an actor and -o FILE.fbx\n");
    return 2;
  }
  CliSession session;
  if (!session.Open(options, true)) return 1;
  HeadlessWindowSystem& window = session.Window();
  const auto items = window.Snapshot(kFileList).items;
  i32 index = 0;
  while (size_t(index) < items.size() && strcasecmp(items[size_t(index)].text.c_str(), options.argument.c_str()) != 0) {
    ++index;
  }
  if (size_t(index) == items.size()) {
    std::fprintf(stderr, "tarnwick-cli: no actor \"%s\" in this game (see tarnwick-cli list)\n", options.argument.c_str());
    return 1;
  }
  window.SetCurSel(kFileList, index);
  // Success logs nothing, so any new line is the failure's.
  const i32 logged = window.GetCount(kLogList);
  std::error_code ignored;
  const auto before = std::filesystem::last_write_time(options.output, ignored);
  RigAnswer rig(options.rig);
  PathAnswer save(options.output, rig);
  Convert(session.App(), save, rig);
  const bool written = std::filesystem::exists(options.output) &&
                       std::filesystem::last_write_time(options.output, ignored) != before;
  if (rig.unanswered) return 1;
  if (window.GetCount(kLogList) != logged || !written) {
    std::fprintf(stderr, "tarnwick-cli: \"%s\" was not converted\n", options.argument.c_str());
    return 1;
  }
  std::fprintf(stderr, "Wrote %s\n", options.output.c_str());
  return 0;
}
