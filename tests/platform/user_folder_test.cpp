#include "platform/user_folder.h"

#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(UserFolder, FollowsTheDataHomeThenHomeThenThePasswordEntry) {
  const std::string savedHome = getenv("HOME") ? getenv("HOME") : "";
  struct Case {
    const char* xdg;
    const char* home;
    std::string folder;
  };
  const passwd* entry = getpwuid(getuid());
  const Case cases[] = {
      {"/data/home", "/home/someone", "/data/home"},
      {"relative/is/ignored", "/home/someone", "/home/someone/.local/share"},
      {nullptr, nullptr, entry ? std::string(entry->pw_dir) + "/.local/share" : ""},
  };
  for (const Case& c : cases) {
    c.xdg ? setenv("XDG_DATA_HOME", c.xdg, 1) : unsetenv("XDG_DATA_HOME");
    c.home ? setenv("HOME", c.home, 1) : unsetenv("HOME");
    TStringBufferA<261> folder;
    EXPECT_EQ(GetUserDataFolder(folder), !c.folder.empty());
    EXPECT_EQ(folder.Text(), c.folder);
  }
  unsetenv("XDG_DATA_HOME");
  setenv("HOME", savedHome.c_str(), 1);
}

}  // namespace
