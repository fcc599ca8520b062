#include <cstdio>
#include <string>

#include "assets/wildcard_match.h"
#include "cli/cli_session.h"

// The actor definitions in the list's order, filtered as the search box filters: the pattern
// matches anywhere in the name.
int RunList(const CliOptions& options) {
  CliSession session;
  if (!session.Open(options, true)) return 1;
  const std::string pattern = "*" + options.argument + "*";
  for (const auto& item : session.Window().Snapshot(kFileList).items) {
    if (options.argument.empty() || WildcardMatch(item.text.c_str(), pattern.c_str())) std::printf("%s\n", item.text.c_str());
  }
  return 0;
}
