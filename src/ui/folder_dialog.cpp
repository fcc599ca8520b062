#include "ui/folder_dialog.h"

#include <QComboBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>

#include "app/convert_actor.h"

bool QtFolderDialog::AskFolder(CStringBufferA& path) { return Ask(path, nullptr); }

bool QtFolderDialog::AskOutputFolder(CStringBufferA& path, ExportFormat& format) { return Ask(path, &format); }

bool QtFolderDialog::Ask(CStringBufferA& path, ExportFormat* format) {
  QFileDialog dialog(parent, QString::fromUtf8(title));
  // The toolkit's own dialog, as for saving one file: the same everywhere, and tests can answer it.
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  QComboBox* formats = nullptr;
  // A folder dialog has no file types of its own: the format takes a row below them, in the
  // toolkit dialog's own grid.
  if (auto* grid = format ? qobject_cast<QGridLayout*>(dialog.layout()) : nullptr) {
    formats = new QComboBox(&dialog);
    formats->setObjectName(QStringLiteral("formatCombo"));
    formats->addItems({QStringLiteral("FBX ( *.fbx)"), QStringLiteral("glTF binary ( *.glb)")});
    const int row = grid->rowCount();
    grid->addWidget(new QLabel(QStringLiteral("Format:"), &dialog), row, 0);
    grid->addWidget(formats, row, 1);
  }
  if (dialog.exec() != QDialog::Accepted) return false;
  const QStringList folders = dialog.selectedFiles();
  if (folders.isEmpty()) return false;
  if (format) *format = formats && formats->currentIndex() == 1 ? ExportFormat::kGlb : ExportFormat::kFbx;
  return path.Format("%s", folders.first().toUtf8().constData()) > 0;
}
