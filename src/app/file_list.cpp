#include "app/file_list.h"

#include <cstring>
#include <string>

#include "app/file_preview.h"
#include "app/log.h"
#include "app/rig_choice.h"
#include "app/worker.h"
#include "assets/wildcard_match.h"
#include "preview/render_window.h"

namespace {

constexpr u32 kBatchItems = 512;

// The scratch of one walk, reused from entry to entry, and the items waiting to go to the list:
// they cross to the main thread in batches rather than two round trips each.
struct WalkContext {
  explicit WalkContext(AppState& state) : app(state) {}
  ~WalkContext() { Flush(); }

  void Add(const char* text, const PackEntry* entry) {
    texts[pending].assign(text);
    items[pending] = {nullptr, reinterpret_cast<std::intptr_t>(entry)};
    if (++pending == kBatchItems) Flush();
  }
  void Flush() {
    for (u32 i = 0; i < pending; ++i) items[i].text = texts[i].c_str();
    if (pending) app.window->AddItems(kFileList, items, pending);
    pending = 0;
  }

  AppState& app;
  TStringBufferA<261> baseName;  // of a rig network
  CByteBuffer bytes;
  std::string texts[kBatchItems];
  ListItem items[kBatchItems];
  u32 pending = 0;
};

// The last four characters of `name`, or the whole of a shorter name. Read in place: only names
// that are listed or read get copied.
struct Extension {
  explicit Extension(const char* name) : length(std::strlen(name)), text(name + (length > 4 ? length - 4 : 0)) {}
  // `extension` is four characters in lower case. ASCII letters alone fold, as in the C locale:
  // a walk tests every name of the game, so this stays a few comparisons.
  bool Is(const char* extension) const {
    if (length < 4) return false;
    for (u32 i = 0; i < 4; ++i) {
      const char c = text[i];
      if ((c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c) != extension[i]) return false;
    }
    return true;
  }
  size_t length;
  const char* text;
};

// Whether a walk lists `extension`'s name: any with "All files" on, actor definitions otherwise.
bool Listed(bool allFiles, const Extension& extension) { return allFiles || extension.Is(".adr"); }

// The list anew from the search box: the whole of it for no text, else the names that hold the text.
void FillList(AppState& app, bool logSearch) {
  TStringBufferA<128> text;
  if (!app.window->GetText(kSearchEdit, text) || text.Length() == 0) {
    app.window->ResetContent(kFileList);
    StartWorker(app, WorkerKind::List, 0, "");
    return;
  }
  if (logSearch) Log(app, "Search = %s", text.Text());
  TStringBufferA<132> pattern;
  (void)SearchPattern(text.Text(), pattern);
  StartWorker(app, WorkerKind::Search, 0, pattern.Text());
}

}  // namespace

void SearchRequest(AppState& app) {
  if (!Idle(app)) return;
  FillList(app, true);
}

bool OnAllFilesCheck(AppState& app, bool on) {
  if (!Idle(app)) return false;
  app.allFiles = on;
  // Before a game is loaded there is no list to fill; the load lists by the new setting.
  if (app.ready) FillList(app, false);
  return true;
}

bool SearchPattern(const char* text, CStringBufferA& pattern) { return pattern.Format("*%s*", text) > 0; }

void ListWalk(AppState& app) {
  WalkContext walk(app);
  const bool allFiles = app.allFiles;
  app.packIndex.Walk([&](const char* name, const PackEntry* entry) {
    if (Listed(allFiles, Extension(name))) walk.Add(name, entry);
    return true;
  });
}

void SearchWalk(AppState& app, const char* filter) {
  app.window->ResetContent(kFileList);
  WalkContext walk(app);
  const bool allFiles = app.allFiles;
  app.packIndex.Walk([&](const char* name, const PackEntry* entry) {
    if (Listed(allFiles, Extension(name)) && WildcardMatch(name, filter)) walk.Add(name, entry);
    return true;
  });
}

void LoadWalk(AppState& app) {
  WalkContext walk(app);
  const bool allFiles = app.allFiles;
  app.packIndex.Walk([&](const char* name, const PackEntry* entry) {
    const Extension extension(name);
    if (Listed(allFiles, extension)) walk.Add(name, entry);
    if (!extension.Is(".mrn")) return true;
    (void)walk.baseName.Format("%.*s", int(extension.length - 4), name);
    if (!PackIndex::FetchEntry(entry, walk.bytes) || !IsRigNetwork(walk.bytes)) return true;
    // The table keeps a copy of the key it is given as it stands, so it gets one of its own.
    CStringA key;
    if (!key.Assign(walk.baseName.Text())) return true;
    RigNetwork* network = app.rigs.FindOrInsert(key);
    // A read that fails takes the key out again, also where it replaced an earlier network.
    if (network && !Read(*network, walk.bytes)) app.rigs.Erase(key);
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

const PackEntry* SelectedEntry(AppState& app) {
  if (!app.ready || !Idle(app)) return nullptr;
  const i32 selection = app.window->GetCurSel(kFileList);
  if (selection < 0) return nullptr;
  const std::intptr_t data = app.window->GetItemData(kFileList, selection);
  return data == kListError ? nullptr : reinterpret_cast<const PackEntry*>(data);
}

namespace {

// The skeleton view shows the rig that Convert would take, without asking which where several fit.
class UnaskedRig final : public ISkeletonSource {
 public:
  explicit UnaskedRig(const RigTable& table) : rigs(table) {}
  const RigSkeleton* ShownRig(const ActorDefinition& actor, const ModelFile& model, const char*& name) override {
    return PickRigUnasked(actor, model, rigs, name);
  }

 private:
  const RigTable& rigs;
};

}  // namespace

void OnFileSelected(AppState& app) {
  const PackEntry* entry = SelectedEntry(app);
  if (!entry) return;
  TStringBufferA<260> name;
  // Without a preview there is nothing to show.
  if (!GetSelectedName(app, name) || !app.renderWindow) return;
  // With "All files" on the list holds any file; an actor is still shown as one.
  if (app.allFiles && !Extension(name.Text()).Is(".adr")) return ShowPackFile(app, entry, name.Text());
  UnaskedRig skeletons(app.rigs);
  (void)app.renderWindow->LoadActor(entry, name.Text(), &app.materials, &skeletons);
  app.window->SetText(kInfoText, app.renderWindow->GetInfoText());
}
