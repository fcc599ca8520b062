#include "ui/rig_dialog.h"

#include <QDialog>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QScreen>

#include "ui/dialog_units.h"
#include "ui/item_list_model.h"

namespace {

enum : i32 { kRigList = 1016 };

}  // namespace

i32 QtRigDialog::Run(const RigCandidate* candidates, const RigSkeleton*& selected) {
  QDialog dialog(parent);
  dialog.setWindowTitle(QStringLiteral("Rig select"));
  dialog.setObjectName(QStringLiteral("rigDialog"));
  const DialogUnits units(DialogUnits::DpiScale(parent ? parent->screen() : nullptr), 1.0);
  dialog.setFont(units.DialogFont(dialog.font()));
  dialog.setFixedSize(units.ToPixels(316, 185));

  auto* prompt = new QLabel(QStringLiteral("Select rig to use for:"), &dialog);
  prompt->setGeometry(units.ToPixels(6, 6, 306, 8));
  auto* subject = new QLabel(QStringLiteral("Static"), &dialog);
  subject->setGeometry(units.ToPixels(6, 18, 306, 8));

  auto* model = new ItemListModel(true, &dialog);
  auto* list = new QListView(&dialog);
  list->setObjectName(QStringLiteral("rigList"));
  list->setModel(model);
  list->setUniformItemSizes(true);
  list->setEditTriggers(QAbstractItemView::NoEditTriggers);
  list->setGeometry(units.ToPixels(6, 30, 306, 126));
  for (const RigCandidate* candidate = candidates; candidate; candidate = candidate->next) {
    const i32 index = model->Add(candidate->name ? candidate->name : kUnnamed);
    if (ListEntry* entry = model->At(index)) entry->data = reinterpret_cast<std::intptr_t>(candidate->rig);
  }

  auto* ok = new QPushButton(QStringLiteral("OK"), &dialog);
  ok->setGeometry(units.ToPixels(205, 164, 50, 14));
  ok->setDefault(true);
  auto* cancel = new QPushButton(QStringLiteral("Cancel"), &dialog);
  cancel->setGeometry(units.ToPixels(259, 164, 50, 14));

  const RigSkeleton* chosen = nullptr;
  QObject::connect(ok, &QPushButton::clicked, &dialog, [&] {
    const QModelIndexList rows = list->selectionModel()->selectedRows();
    const ListEntry* entry = rows.isEmpty() ? nullptr : model->At(rows.first().row());
    if (!entry) return;  // nothing selected: the dialog stays
    chosen = reinterpret_cast<const RigSkeleton*>(entry->data);
    dialog.accept();
  });
  QObject::connect(cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
  if (dialog.exec() != QDialog::Accepted) return 0;
  selected = chosen;
  return 1;
}
