#pragma once

#include <QString>

class QMimeData;

// The game folder that a drop on the window names: a dropped folder itself, or for a dropped
// assets_000.pack the installation folder three levels up (DIR/Resources/Assets/assets_000.pack).
// Empty when the drop holds no local folder or pack file. Only the first item counts.
QString DroppedGameFolder(const QMimeData* data);
