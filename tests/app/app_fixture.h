#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/app_state.h"
#include "app/game_selection.h"
#include "app/worker.h"
#include "game_writers/pack_writer.h"
#include "platform/headless_window_system.h"
#include "support/temp_dir.h"

// A per-user folder with digests and game installations in a temporary folder, and an application
// bound to a headless window.
namespace apptest {

struct Installation {
  testsupport::TempDir dir;

  std::string UserFolder() const { return dir.Join("data"); }
  // The digest of `game` under `maker`, holding `text` as it stands.
  void Digest(const std::string& maker, const std::string& game, const std::string& text) const {
    ASSERT_TRUE(gamewriters::WriteFileBytes(dir.Join("data/" + maker + "/Digests/" + game + ".loc"), text));
  }
  // A game folder with one pack per list of files.
  std::string Game(const std::string& name, const std::vector<std::vector<gamewriters::PackFileEntry>>& packs) const {
    const std::string folder = dir.Join(name);
    for (size_t p = 0; p < packs.size(); ++p) {
      char file[64];
      std::snprintf(file, sizeof(file), "/Resources/Assets/assets_%03u.pack", unsigned(p));
      gamewriters::PackLayout layout{{gamewriters::PackChunk{packs[p]}}};
      EXPECT_TRUE(gamewriters::WriteFileBytes(folder + file, gamewriters::BuildPack(layout)));
    }
    return folder;
  }
};

struct App {
  HeadlessWindowSystem window;
  AppState state;

  ~App() { WaitForWorker(state); }
  void Start(const Installation& installation) {
    InitMainDialog(state, window, installation.UserFolder().c_str());
    WaitForWorker(state);
  }
  void Start(const GameSearch& search) {
    InitMainDialog(state, window, search);
    WaitForWorker(state);
  }
  std::vector<std::string> Texts(i32 control) {
    std::vector<std::string> texts;
    for (const auto& item : window.Snapshot(control).items) texts.push_back(item.text);
    return texts;
  }
  // The log lines written since the last call.
  std::vector<std::string> NewLog() {
    std::vector<std::string> all = Texts(kLogList);
    std::vector<std::string> fresh(all.begin() + i32(seen), all.end());
    seen = all.size();
    return fresh;
  }
  size_t seen = 0;
};

}  // namespace apptest
