#include "ui/dropped_game_folder.h"

#include <QDir>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace {

constexpr const char* kFirstPack = "assets_000.pack";
// From the pack up to the installation folder: Assets, Resources, then the game's own folder.
constexpr int kPackDepth = 3;

}  // namespace

QString DroppedGameFolder(const QMimeData* data) {
  if (!data || !data->hasUrls() || data->urls().isEmpty()) return {};
  const QUrl url = data->urls().first();
  if (!url.isLocalFile()) return {};
  const QFileInfo dropped(url.toLocalFile());
  if (dropped.isDir()) return dropped.absoluteFilePath();
  if (!dropped.isFile() || dropped.fileName().compare(QLatin1String(kFirstPack), Qt::CaseInsensitive) != 0) return {};
  QDir folder = dropped.absoluteDir();
  for (int level = 1; level < kPackDepth; ++level) {
    if (!folder.cdUp()) return {};
  }
  return folder.absolutePath();
}
