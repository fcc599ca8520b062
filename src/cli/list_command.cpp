#include <cstdio>

#include "app/file_list.h"
#include "cli/cli_session.h"

// The actor definitions in the list's order, filtered as the search box filters.
int RunList(const CliOptions& options) {
  CliSession session;
  if (!session.Open(options, true)) return 1;
  if (!options.argument.empty()) {
    session.Window().SetText(kSearchEdit, options.argument.c_str());
    SearchRequest(session.App());
    session.Wait();
  }
  for (const auto& item : session.Window().Snapshot(kFileList).items) std::printf("%s\n", item.text.c_str());
  return 0;
}
