#pragma once

#include <QObject>
#include <functional>
#include <map>

#include "platform/window_system.h"
#include "ui/item_list_model.h"

class QAbstractItemView;
class QComboBox;
class QWidget;

// The window system on Qt widgets. Calls from a worker cross to the main thread and wait there
// until it has run them; the main thread calls straight through.
class QtWindowSystem final : public IWindowSystem {
 public:
  QtWindowSystem();

  // The controls, by id. A list control has its model and the view or combo box that shows it.
  void AddControl(i32 id, QWidget* widget);
  void AddList(i32 id, ItemListModel* model, QAbstractItemView* view);
  void AddCombo(i32 id, ItemListModel* model, QComboBox* combo);
  void SetRenderWindow(IRenderWindow* preview) { renderWindow = preview; }
  // True while a selection changes by a call rather than by the user.
  bool ChangingSelection() const { return changingSelection; }

  i32 AddString(i32 control, const char* text) override;
  i32 InsertString(i32 control, i32 index, const char* text) override;
  bool SetItemData(i32 control, i32 index, std::intptr_t data) override;
  std::intptr_t GetItemData(i32 control, i32 index) override;
  i32 GetCurSel(i32 control) override;
  bool SetCurSel(i32 control, i32 index) override;
  i32 GetTextLength(i32 control, i32 index) override;
  i32 GetText(i32 control, i32 index, char* out) override;
  void ResetContent(i32 control) override;
  i32 GetCount(i32 control) override;
  void SetTopIndex(i32 control, i32 index) override;
  void AddItems(i32 control, const ListItem* items, u32 count) override;
  std::vector<i32> GetSelectedItems(i32 control) override;
  void SetProgress(i32 control, u32 done, u32 total) override;
  void SetMarquee(i32 control, bool on, u32 stepMilliseconds) override;
  void SetText(i32 control, const char* text) override;
  bool GetText(i32 control, CStringBufferA& text) override;
  void Enable(i32 control, bool enable) override;
  void Show(i32 control, bool show) override;
  IRenderWindow* RenderWindow() override { return renderWindow; }
  void PostQuit(i32 code) override;
  void Pump(u32 timeoutMs) override;
  void Wake() override;

 private:
  struct List {
    ItemListModel* model = nullptr;
    QAbstractItemView* view = nullptr;
    QComboBox* combo = nullptr;
  };

  void OnMain(const std::function<void()>& work);
  List* FindList(i32 id);
  QWidget* FindControl(i32 id);
  i32 Selection(const List& list) const;
  void Select(const List& list, i32 index);

  QObject mainThreadObject;  // lives on the main thread; worker calls are queued to it
  std::map<i32, QWidget*> controls;
  std::map<i32, List> lists;
  IRenderWindow* renderWindow = nullptr;
  bool changingSelection = false;
};
