#include "ui/save_dialog.h"

#include <QFileDialog>

bool QtSaveDialog::AskSavePath(CStringBufferA& path) {
  QFileDialog dialog(parent);
  // The toolkit's own dialog looks the same on every desktop, and tests can answer it.
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  const QString fbx = QStringLiteral("FBX ( *.fbx)");
  const QString glb = QStringLiteral("glTF binary ( *.glb)");
  dialog.setNameFilters({fbx, glb});
  dialog.setDefaultSuffix(QStringLiteral("fbx"));
  // A name without an extension takes the chosen type's; the extension then decides the format.
  QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, [&dialog, glb](const QString& filter) {
    dialog.setDefaultSuffix(filter == glb ? QStringLiteral("glb") : QStringLiteral("fbx"));
  });
  if (dialog.exec() != QDialog::Accepted) return false;
  const QStringList files = dialog.selectedFiles();
  if (files.isEmpty()) return false;
  const QByteArray chosen = files.first().toUtf8();
  // The path goes into a buffer of 1024 characters; a longer one is refused, not cut.
  if (chosen.size() >= 1024) return false;
  return path.Format("%s", chosen.constData()) >= 0;
}
