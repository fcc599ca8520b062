#include "support/shell_run.h"

#include <sys/wait.h>

#include <cstdio>

namespace testsupport {

ShellRun RunShell(const std::string& command) {
  ShellRun run;
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return run;
  char chunk[4096];
  for (size_t n; (n = std::fread(chunk, 1, sizeof(chunk), pipe)) > 0;) run.out.append(chunk, n);
  const int status = pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

}  // namespace testsupport
