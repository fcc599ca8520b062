#include "platform/headless_window_system.h"

#include <strings.h>
#include <algorithm>
#include <chrono>
#include <cstring>

HeadlessWindowSystem::HeadlessWindowSystem() : mainThread(std::this_thread::get_id()) { At(kFileList).sorted = true; }

HeadlessWindowSystem::Control& HeadlessWindowSystem::At(i32 control) { return controls[control]; }

void HeadlessWindowSystem::OnMain(const std::function<void()>& work) {
  if (std::this_thread::get_id() == mainThread) {
    work();
    return;
  }
  Call call{work};
  std::unique_lock lock(mutex);
  queue.push_back(&call);
  arrived.notify_one();
  finished.wait(lock, [&] { return call.done; });
}

u32 HeadlessWindowSystem::ProcessPending(u32 timeoutMs) {
  std::unique_lock lock(mutex);
  if (timeoutMs) arrived.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return !queue.empty() || woken; });
  woken = false;
  u32 ran = 0;
  while (!queue.empty()) {
    Call* call = queue.front();
    queue.pop_front();
    lock.unlock();
    call->work();
    lock.lock();
    call->done = true;
    ++ran;
  }
  if (ran) finished.notify_all();
  return ran;
}

void HeadlessWindowSystem::Wake() {
  const std::lock_guard lock(mutex);
  woken = true;
  arrived.notify_all();
}

i32 HeadlessWindowSystem::AddString(i32 control, const char* text) {
  i32 result = kListErrSpace;
  OnMain([&] {
    Control& c = At(control);
    if (c.items.size() >= listLimit) return;
    // A sorting list places the item after those that equal it, ignoring case.
    const size_t at = c.sorted ? SortedPosition(c.items, text) : c.items.size();
    result = i32(at);
    c.items.insert(c.items.begin() + ptrdiff_t(at), Item{text});
    if (c.selection >= result) ++c.selection;
    c.selected.clear();  // a user's choice of several isn't kept across a change of the list
  });
  return result;
}

i32 HeadlessWindowSystem::InsertString(i32 control, i32 index, const char* text) {
  i32 result = kListErrSpace;
  OnMain([&] {
    Control& c = At(control);
    if (c.items.size() >= listLimit) return;
    if (index < 0 || size_t(index) > c.items.size()) index = i32(c.items.size());
    c.items.insert(c.items.begin() + index, Item{text});
    result = index;
    if (control == kLogList && logEcho) {
      std::fputs(text, logEcho);
      // A line that brings its own line end keeps it, once.
      if (!*text || text[std::strlen(text) - 1] != '\n') std::fputc('\n', logEcho);
    }
  });
  return result;
}

bool HeadlessWindowSystem::SetItemData(i32 control, i32 index, std::intptr_t data) {
  bool ok = false;
  OnMain([&] {
    Control& c = At(control);
    if (index < 0 || size_t(index) >= c.items.size()) return;
    c.items[size_t(index)].data = data;
    ok = true;
  });
  return ok;
}

std::intptr_t HeadlessWindowSystem::GetItemData(i32 control, i32 index) {
  std::intptr_t data = kListError;
  OnMain([&] {
    Control& c = At(control);
    if (index >= 0 && size_t(index) < c.items.size()) data = c.items[size_t(index)].data;
  });
  return data;
}

i32 HeadlessWindowSystem::GetCurSel(i32 control) {
  i32 selection = kListError;
  OnMain([&] { selection = At(control).selection; });
  return selection;
}

bool HeadlessWindowSystem::SetCurSel(i32 control, i32 index) {
  bool ok = false;
  OnMain([&] {
    Control& c = At(control);
    ok = index >= 0 && size_t(index) < c.items.size();
    c.selection = ok ? index : kListError;
    c.selected.clear();
  });
  return ok;
}

i32 HeadlessWindowSystem::GetTextLength(i32 control, i32 index) {
  i32 length = kListError;
  OnMain([&] {
    Control& c = At(control);
    if (index >= 0 && size_t(index) < c.items.size()) length = i32(c.items[size_t(index)].text.size());
  });
  return length;
}

i32 HeadlessWindowSystem::GetText(i32 control, i32 index, char* out) {
  i32 length = kListError;
  OnMain([&] {
    Control& c = At(control);
    if (index < 0 || size_t(index) >= c.items.size()) return;
    const std::string& text = c.items[size_t(index)].text;
    std::memcpy(out, text.c_str(), text.size() + 1);
    length = i32(text.size());
  });
  return length;
}

void HeadlessWindowSystem::ResetContent(i32 control) {
  OnMain([&] {
    Control& c = At(control);
    c.items.clear();
    c.selection = kListError;
    c.selected.clear();
    c.topIndex = 0;
  });
}

i32 HeadlessWindowSystem::GetCount(i32 control) {
  i32 count = 0;
  OnMain([&] { count = i32(At(control).items.size()); });
  return count;
}

void HeadlessWindowSystem::AddItems(i32 control, const ListItem* items, u32 count) {
  OnMain([&] {
    Control& c = At(control);
    c.selected.clear();
    if (c.sorted) return MergeSorted(c.items, items, count, listLimit, c.selection);
    for (u32 i = 0; i < count && c.items.size() < listLimit; ++i) c.items.push_back(Item{items[i].text, items[i].data});
  });
}

void HeadlessWindowSystem::SetTopIndex(i32 control, i32 index) {
  OnMain([&] { At(control).topIndex = index; });
}

void HeadlessWindowSystem::SetMarquee(i32 control, bool on, u32) {
  OnMain([&] { At(control).marquee = on; });
}

void HeadlessWindowSystem::SetText(i32 control, const char* text) {
  OnMain([&] { At(control).text = text ? text : ""; });
}

bool HeadlessWindowSystem::GetText(i32 control, CStringBufferA& text) {
  bool ok = false;
  OnMain([&] { ok = text.Format("%s", At(control).text.c_str()) >= 0; });
  return ok;
}

void HeadlessWindowSystem::Enable(i32 control, bool enable) {
  OnMain([&] { At(control).enabled = enable; });
}

void HeadlessWindowSystem::Show(i32 control, bool show) {
  OnMain([&] { At(control).visible = show; });
}

void HeadlessWindowSystem::PostQuit(i32) {
  std::lock_guard lock(mutex);
  quit = true;
  arrived.notify_all();
}

bool HeadlessWindowSystem::QuitPosted() const {
  std::lock_guard lock(mutex);
  return quit;
}

void HeadlessWindowSystem::SetListLimit(u32 count) {
  OnMain([&] { listLimit = count; });
}

std::vector<i32> HeadlessWindowSystem::GetSelectedItems(i32 control) {
  std::vector<i32> selected;
  OnMain([&] {
    const Control& c = At(control);
    if (!c.selected.empty()) {
      selected = c.selected;
    } else if (c.selection >= 0) {
      selected.push_back(c.selection);
    }
  });
  return selected;
}

void HeadlessWindowSystem::SelectItems(i32 control, const std::vector<i32>& indices) {
  OnMain([&] {
    Control& c = At(control);
    c.selected.clear();
    for (i32 index : indices) {
      if (index >= 0 && size_t(index) < c.items.size()) c.selected.push_back(index);
    }
    c.selection = c.selected.empty() ? kListError : c.selected.back();
    std::sort(c.selected.begin(), c.selected.end());
    c.selected.erase(std::unique(c.selected.begin(), c.selected.end()), c.selected.end());
  });
}

void HeadlessWindowSystem::SetProgress(i32 control, u32 done, u32 total) {
  OnMain([&] {
    Control& c = At(control);
    c.marquee = false;
    c.progressDone = done;
    c.progressTotal = total;
  });
}

HeadlessWindowSystem::Control HeadlessWindowSystem::Snapshot(i32 control) {
  Control copy;
  OnMain([&] { copy = At(control); });
  return copy;
}
