#include <cstdio>
#include <string>

#include "app/actor_list.h"
#include "app/file_list.h"
#include "assets/wildcard_match.h"
#include "cli/cli_session.h"

// The actor definitions in the list's order, filtered as the search box filters: the pattern
// matches anywhere in the name.
int RunList(const CliOptions& options) {
  CliSession session;
  if (!session.Open(options)) return kExitNothingStarted;
  TStringBufferA<260> pattern;
  if (!SearchPattern(options.argument.c_str(), pattern)) return kExitNothingStarted;
  for (const ListedEntry& actor : ListedEntries(session.App())) {
    if (options.argument.empty() || WildcardMatch(actor.name.c_str(), pattern.Text()))
      std::printf("%s\n", actor.name.c_str());
  }
  return kExitDone;
}
