#include <cstdio>

#include "app/extract_files.h"
#include "app/file_list.h"
#include "cli/cli_session.h"

// Every file of the packs, the copy that the index serves, sorted as the file list sorts: its size
// in bytes, a tab and its name. PATTERN filters as the search box does.
int RunFiles(const CliOptions& options) {
  CliSession session;
  if (!session.Open(options)) return kExitNothingStarted;
  TStringBufferA<260> pattern;
  if (!options.argument.empty() && !SearchPattern(options.argument.c_str(), pattern)) return kExitNothingStarted;
  for (const ListedEntry& file :
       PackFiles(session.App().packIndex, options.argument.empty() ? nullptr : pattern.Text())) {
    std::printf("%u\t%s\n", file.entry->size, file.name.c_str());
  }
  return kExitDone;
}
