#include "ui/item_list_model.h"

#include <algorithm>

int ItemListModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(entries.size()); }

QVariant ItemListModel::data(const QModelIndex& index, int role) const {
  const ListEntry* entry = At(index.row());
  if (!entry || (role != Qt::DisplayRole && role != Qt::ToolTipRole)) return {};
  return QString::fromUtf8(entry->text);
}

i32 ItemListModel::Add(const char* text) { return Insert(sorted ? i32(SortedPosition(entries, text)) : -1, text); }

i32 ItemListModel::Insert(i32 index, const char* text) {
  if (entries.size() >= kLimit) return kListErrSpace;
  if (index < 0 || size_t(index) > entries.size()) index = i32(entries.size());
  beginInsertRows(QModelIndex(), index, index);
  entries.insert(entries.begin() + index, ListEntry{text});
  endInsertRows();
  return index;
}

void ItemListModel::AddMany(const ListItem* items, u32 count, i32& selection) {
  if (!sorted) {
    // Appending keeps every index; one insertion of rows tells the views.
    const size_t room = entries.size() < kLimit ? kLimit - entries.size() : 0;
    const u32 added = u32(std::min<size_t>(count, room));
    if (added == 0) return;
    beginInsertRows(QModelIndex(), int(entries.size()), int(entries.size() + added - 1));
    for (u32 i = 0; i < added; ++i) entries.push_back(ListEntry{items[i].text, items[i].data});
    endInsertRows();
    return;
  }
  // A merge moves rows all over the list: the views rebuild once rather than row by row.
  beginResetModel();
  MergeSorted(entries, items, count, kLimit, selection);
  endResetModel();
}

void ItemListModel::Reset() {
  beginResetModel();
  entries.clear();
  endResetModel();
}

const ListEntry* ItemListModel::At(i32 index) const {
  return index >= 0 && size_t(index) < entries.size() ? &entries[size_t(index)] : nullptr;
}

ListEntry* ItemListModel::At(i32 index) {
  return index >= 0 && size_t(index) < entries.size() ? &entries[size_t(index)] : nullptr;
}
