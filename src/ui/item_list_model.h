#pragma once

#include <QAbstractListModel>

#include "platform/list_entries.h"

// The items of a list or combo box control, with the item data the application attaches. A sorting
// model keeps its items in order, ignoring case, as they arrive.
class ItemListModel final : public QAbstractListModel {
 public:
  explicit ItemListModel(bool sortItems, QObject* parent = nullptr) : QAbstractListModel(parent), sorted(sortItems) {}

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  i32 Add(const char* text);
  i32 Insert(i32 index, const char* text);
  // Many items at once; `selection` follows its item.
  void AddMany(const ListItem* items, u32 count, i32& selection);
  void Reset();
  const ListEntry* At(i32 index) const;
  ListEntry* At(i32 index);
  i32 Count() const { return i32(entries.size()); }

 private:
  // Fits an index and the row count of the views.
  static constexpr size_t kLimit = 0x7FFFFFFF;

  ListEntries entries;
  bool sorted;
};
