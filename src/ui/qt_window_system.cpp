#include "ui/qt_window_system.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCoreApplication>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <cstring>

QtWindowSystem::QtWindowSystem() = default;

void QtWindowSystem::AddControl(i32 id, QWidget* widget) { controls[id] = widget; }

void QtWindowSystem::AddList(i32 id, ItemListModel* model, QAbstractItemView* view) {
  lists[id] = List{model, view, nullptr};
  controls[id] = view;
}

void QtWindowSystem::AddCombo(i32 id, ItemListModel* model, QComboBox* combo) {
  lists[id] = List{model, nullptr, combo};
  controls[id] = combo;
}

void QtWindowSystem::OnMain(const std::function<void()>& work) {
  if (QThread::currentThread() == mainThreadObject.thread()) {
    work();
    return;
  }
  QMetaObject::invokeMethod(&mainThreadObject, work, Qt::BlockingQueuedConnection);
}

QtWindowSystem::List* QtWindowSystem::FindList(i32 id) {
  const auto it = lists.find(id);
  return it == lists.end() ? nullptr : &it->second;
}

QWidget* QtWindowSystem::FindControl(i32 id) {
  const auto it = controls.find(id);
  return it == controls.end() ? nullptr : it->second;
}

i32 QtWindowSystem::Selection(const List& list) const {
  if (list.combo) return list.combo->currentIndex();
  // Of several selected items, the one clicked last: it is the current one.
  const QItemSelectionModel* model = list.view->selectionModel();
  const QModelIndex current = model->currentIndex();
  if (current.isValid() && model->isSelected(current)) return current.row();
  const QModelIndexList rows = model->selectedRows();
  return rows.isEmpty() ? kListError : rows.first().row();
}

void QtWindowSystem::Select(const List& list, i32 index) {
  changingSelection = true;
  if (list.combo) {
    list.combo->setCurrentIndex(index);
  } else if (index < 0) {
    list.view->selectionModel()->clearSelection();
  } else {
    const QModelIndex row = list.model->index(index);
    list.view->selectionModel()->setCurrentIndex(row, QItemSelectionModel::ClearAndSelect);
  }
  changingSelection = false;
}

i32 QtWindowSystem::AddString(i32 control, const char* text) {
  i32 result = kListErrSpace;
  OnMain([&] {
    if (List* list = FindList(control)) result = list->model->Add(text);
  });
  return result;
}

i32 QtWindowSystem::InsertString(i32 control, i32 index, const char* text) {
  i32 result = kListErrSpace;
  OnMain([&] {
    if (List* list = FindList(control)) result = list->model->Insert(index, text);
  });
  return result;
}

bool QtWindowSystem::SetItemData(i32 control, i32 index, std::intptr_t data) {
  bool ok = false;
  OnMain([&] {
    List* list = FindList(control);
    if (ListEntry* entry = list ? list->model->At(index) : nullptr) {
      entry->data = data;
      ok = true;
    }
  });
  return ok;
}

std::intptr_t QtWindowSystem::GetItemData(i32 control, i32 index) {
  std::intptr_t data = kListError;
  OnMain([&] {
    List* list = FindList(control);
    if (const ListEntry* entry = list ? list->model->At(index) : nullptr) data = entry->data;
  });
  return data;
}

i32 QtWindowSystem::GetCurSel(i32 control) {
  i32 selection = kListError;
  OnMain([&] {
    if (List* list = FindList(control)) selection = Selection(*list);
  });
  return selection;
}

bool QtWindowSystem::SetCurSel(i32 control, i32 index) {
  bool ok = false;
  OnMain([&] {
    List* list = FindList(control);
    if (!list) return;
    ok = list->model->At(index) != nullptr;
    Select(*list, ok ? index : kListError);
  });
  return ok;
}

i32 QtWindowSystem::GetTextLength(i32 control, i32 index) {
  i32 length = kListError;
  OnMain([&] {
    List* list = FindList(control);
    if (const ListEntry* entry = list ? list->model->At(index) : nullptr) length = i32(entry->text.size());
  });
  return length;
}

i32 QtWindowSystem::GetText(i32 control, i32 index, char* out) {
  i32 length = kListError;
  OnMain([&] {
    List* list = FindList(control);
    if (const ListEntry* entry = list ? list->model->At(index) : nullptr) {
      std::memcpy(out, entry->text.c_str(), entry->text.size() + 1);
      length = i32(entry->text.size());
    }
  });
  return length;
}

void QtWindowSystem::ResetContent(i32 control) {
  OnMain([&] {
    if (List* list = FindList(control)) {
      changingSelection = true;
      list->model->Reset();
      changingSelection = false;
    }
  });
}

i32 QtWindowSystem::GetCount(i32 control) {
  i32 count = 0;
  OnMain([&] {
    if (List* list = FindList(control)) count = list->model->Count();
  });
  return count;
}

void QtWindowSystem::SetTopIndex(i32 control, i32 index) {
  OnMain([&] {
    List* list = FindList(control);
    if (list && list->view && list->model->At(index)) {
      list->view->scrollTo(list->model->index(index), QAbstractItemView::PositionAtTop);
    }
  });
}

void QtWindowSystem::AddItems(i32 control, const ListItem* items, u32 count) {
  OnMain([&] {
    List* list = FindList(control);
    if (!list) return;
    i32 selection = Selection(*list);
    changingSelection = true;
    list->model->AddMany(items, count, selection);
    changingSelection = false;
    if (selection >= 0) Select(*list, selection);
  });
}

std::vector<i32> QtWindowSystem::GetSelectedItems(i32 control) {
  std::vector<i32> selected;
  OnMain([&] {
    const List* list = FindList(control);
    if (!list || !list->view) return;
    for (const QModelIndex& row : list->view->selectionModel()->selectedRows()) selected.push_back(row.row());
    std::sort(selected.begin(), selected.end());
  });
  return selected;
}

void QtWindowSystem::SetProgress(i32 control, u32 done, u32 total) {
  OnMain([&] {
    auto* bar = qobject_cast<QProgressBar*>(FindControl(control));
    if (!bar || total == 0) return;
    // The bar counts in ints; a batch is far from their limit, but the scale keeps it so.
    const double scale = total > 1000000 ? 1000000.0 / total : 1.0;
    bar->setRange(0, int(total * scale));
    bar->setValue(int(done * scale));
  });
}

void QtWindowSystem::SetMarquee(i32 control, bool on, u32) {
  OnMain([&] {
    // A range of nothing makes the bar run to and fro.
    if (auto* bar = qobject_cast<QProgressBar*>(FindControl(control))) bar->setRange(0, on ? 0 : 100);
  });
}

void QtWindowSystem::SetText(i32 control, const char* text) {
  OnMain([&] {
    QString value = QString::fromUtf8(text ? text : "");
    QWidget* widget = FindControl(control);
    if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
      edit->setText(value);
    } else if (auto* panel = qobject_cast<QPlainTextEdit*>(widget)) {
      panel->setPlainText(value.replace(QLatin1String("\r\n"), QLatin1String("\n")));
    } else if (auto* label = qobject_cast<QLabel*>(widget)) {
      label->setText(value);
    }
  });
}

bool QtWindowSystem::GetText(i32 control, CStringBufferA& text) {
  bool ok = false;
  OnMain([&] {
    QWidget* widget = FindControl(control);
    QString value;
    if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
      value = edit->text();
    } else if (auto* panel = qobject_cast<QPlainTextEdit*>(widget)) {
      value = panel->toPlainText();
    } else if (auto* label = qobject_cast<QLabel*>(widget)) {
      value = label->text();
    } else {
      return;
    }
    ok = text.Format("%s", value.toUtf8().constData()) >= 0;
  });
  return ok;
}

void QtWindowSystem::Enable(i32 control, bool enable) {
  OnMain([&] {
    if (QWidget* widget = FindControl(control)) widget->setEnabled(enable);
  });
}

void QtWindowSystem::Show(i32 control, bool show) {
  OnMain([&] {
    if (QWidget* widget = FindControl(control)) widget->setVisible(show);
  });
}

void QtWindowSystem::PostQuit(i32 code) {
  OnMain([&] { QCoreApplication::exit(code); });
}

void QtWindowSystem::Wake() {
  // An empty call queued to the main thread is an event, and ends the wait in Pump.
  QMetaObject::invokeMethod(
      &mainThreadObject, [] {}, Qt::QueuedConnection);
}

void QtWindowSystem::Pump(u32 timeoutMs) {
  // The timer bounds the wait when no call arrives.
  QTimer::singleShot(int(timeoutMs), &mainThreadObject, [] {});
  QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}
