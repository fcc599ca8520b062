#include "app/file_list.h"

#include <strings.h>

#include "app/log.h"
#include "app/worker.h"
#include "assets/wildcard_match.h"

namespace {

// The scratch of one walk, reused from entry to entry.
struct WalkContext {
  TStringBufferA<261> name;
  TStringBufferA<261> extension;
  CByteBuffer bytes;
};

// The last four characters of `name` into `extension`, or the whole of a shorter name.
void TakeExtension(WalkContext& walk, const char* name) {
  (void)walk.name.Format("%s", name);
  const u32 length = walk.name.Length();
  (void)walk.extension.Format("%s", walk.name.Text() + (length > 4 ? length - 4 : 0));
}

bool Is(const WalkContext& walk, const char* extension) { return strcasecmp(walk.extension.Text(), extension) == 0; }

void AddItem(AppState& app, const char* name, const PackEntry* entry) {
  const i32 index = app.window->AddString(kFileList, name);
  if (index == kListErrSpace) return;
  app.window->SetItemData(kFileList, index, reinterpret_cast<std::intptr_t>(entry));
}

}  // namespace

void SearchRequest(AppState& app) {
  TStringBufferA<128> text;
  if (!app.window->GetText(kSearchEdit, text) || text.Length() == 0) {
    app.window->ResetContent(kFileList);
    StartWorker(app, WorkerKind::List, 0, "");
    return;
  }
  Log(app, "Search = %s", text.Text());
  TStringBufferA<132> pattern;
  (void)pattern.Format("*%s*", text.Text());
  StartWorker(app, WorkerKind::Search, 0, pattern.Text());
}

void ListWalk(AppState& app) {
  WalkContext walk;
  app.packIndex.Walk([&](const char* name, const PackEntry* entry) {
    TakeExtension(walk, name);
    if (Is(walk, ".adr")) AddItem(app, walk.name.Text(), entry);
    return true;
  });
}

void SearchWalk(AppState& app, const char* filter) {
  app.window->ResetContent(kFileList);
  WalkContext walk;
  app.packIndex.Walk([&](const char* name, const PackEntry* entry) {
    TakeExtension(walk, name);
    if (Is(walk, ".adr") && WildcardMatch(walk.name.Text(), filter)) AddItem(app, walk.name.Text(), entry);
    return true;
  });
}

void LoadWalk(AppState& app) {
  WalkContext walk;
  app.packIndex.Walk([&](const char* name, const PackEntry* entry) {
    TakeExtension(walk, name);
    if (Is(walk, ".mrn")) {
      (void)walk.extension.Format("%.*s", int(walk.name.Length() - 4), walk.name.Text());
      if (!PackIndex::FetchEntry(entry, walk.bytes) || !IsRigNetwork(walk.bytes)) return true;
      // The table keeps a copy of the key it is given as it stands, so it gets one of its own.
      CStringA key;
      if (!key.Assign(walk.extension.Text())) return true;
      RigNetwork* network = app.rigs.FindOrInsert(key);
      // A read that fails takes the key out again, also where it replaced an earlier network.
      if (network && !Read(*network, walk.bytes)) app.rigs.Erase(key);
    } else if (Is(walk, ".adr")) {
      AddItem(app, walk.name.Text(), entry);
    }
    return true;
  });
}

bool GetSelectedName(AppState& app, CStringBufferA& text) {
  if (!app.ready) return false;
  const i32 selection = app.window->GetCurSel(kFileList);
  if (selection < 0) return false;
  const i32 length = app.window->GetTextLength(kFileList, selection);
  if (length < 0 || !text.Reserve(u32(length) + 1)) return false;
  const i32 copied = app.window->GetText(kFileList, selection, text.Data());
  if (copied < 0) return false;
  text.SetLength(u32(copied));
  return true;
}
