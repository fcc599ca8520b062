#include "app/app_state.h"

const char* const kGameNames[kGameCount] = {
    "Aldermoor", "Aldermoor Test", "Brackenfell Beta",  "Cinderhollow Brackenfell",
    "Dunmarrow", "Dunmarrow Test", "Dunmarrow-Ashgate", "Dunmarrow-Ashgate Test",
};

AppState::AppState() {
  for (u32 i = 0; i < kGameSlotCount; ++i) games[i].name = i < kGameCount ? kGameNames[i] : nullptr;
}

AppState::~AppState() {
  worker.Join();
  rigs.Release();
  packIndex.Clear();
  materials.Destroy();
}
