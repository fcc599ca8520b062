#include "ui/folder_dialog.h"

#include <QFileDialog>

bool QtFolderDialog::AskFolder(CStringBufferA& path) {
  QFileDialog dialog(parent, QString::fromUtf8(title));
  // The toolkit's own dialog, as for saving one file: the same everywhere, and tests can answer it.
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  if (dialog.exec() != QDialog::Accepted) return false;
  const QStringList folders = dialog.selectedFiles();
  if (folders.isEmpty()) return false;
  return path.Format("%s", folders.first().toUtf8().constData()) > 0;
}
