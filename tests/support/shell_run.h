#pragma once

#include <string>

namespace testsupport {

// A command's exit status (-1 when it couldn't run or didn't exit) and its standard output.
struct ShellRun {
  int status = -1;
  std::string out;
};

// Runs `command` through the shell and waits for it.
ShellRun RunShell(const std::string& command);

}  // namespace testsupport
