#include "platform/user_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace {

// Sets or unsets one variable for the life of the object.
class ScopedEnv {
 public:
  ScopedEnv(const char* variable, const char* value) : name(variable) {
    if (const char* old = std::getenv(name)) saved = old;
    value ? setenv(name, value, 1) : unsetenv(name);
  }
  ~ScopedEnv() { saved ? setenv(name, saved->c_str(), 1) : unsetenv(name); }

 private:
  const char* name;
  std::optional<std::string> saved;
};

TEST(UserFolder, FollowsTheDataHomeThenHomeThenThePasswordEntry) {
  TStringBufferA<261> folder;
  {
    ScopedEnv xdg("XDG_DATA_HOME", "/data/home");
    ScopedEnv home("HOME", "/home/someone");
    ASSERT_TRUE(GetUserDataFolder(folder));
    EXPECT_STREQ(folder.Text(), "/data/home");
  }
  {
    ScopedEnv xdg("XDG_DATA_HOME", "relative/is/ignored");
    ScopedEnv home("HOME", "/home/someone");
    ASSERT_TRUE(GetUserDataFolder(folder));
    EXPECT_STREQ(folder.Text(), "/home/someone/.local/share");
  }
  {
    ScopedEnv xdg("XDG_DATA_HOME", nullptr);
    ScopedEnv home("HOME", nullptr);
    const passwd* entry = getpwuid(getuid());
    if (!entry) GTEST_SKIP() << "no password entry";
    ASSERT_TRUE(GetUserDataFolder(folder));
    EXPECT_EQ(std::string(folder.Text()), std::string(entry->pw_dir) + "/.local/share");
  }
}

}  // namespace
