#include "ui/dialog_units.h"

#include <QFontMetrics>

DialogUnits::DialogUnits(const QFont& font) {
  const QFontMetrics metrics(font);
  // The average over the letters of both cases, rounded half up.
  const int letters = metrics.horizontalAdvance(QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"));
  baseX = (letters / 26 + 1) / 2;
  baseY = metrics.height();
}

QRect DialogUnits::ToPixels(int x, int y, int width, int height) const {
  return QRect(x * baseX / 4, y * baseY / 8, width * baseX / 4, height * baseY / 8);
}

QSize DialogUnits::ToPixels(int width, int height) const { return QSize(width * baseX / 4, height * baseY / 8); }
