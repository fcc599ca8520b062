#include "ui/dialog_units.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cmath>

DialogUnits::DialogUnits(double dpiScale, double fitFactor)
    : unitX(kBaseX / 4.0 * dpiScale * fitFactor), unitY(kBaseY / 8.0 * dpiScale * fitFactor), fit(fitFactor) {}

double DialogUnits::DpiScale(const QScreen* screen) {
  if (!screen) screen = QGuiApplication::primaryScreen();
  const double dpi = screen ? screen->logicalDotsPerInch() : kReferenceDpi;
  return dpi > 0 ? dpi / kReferenceDpi : 1.0;
}

double DialogUnits::FitFactor(QSize natural, QSize room) {
  if (natural.width() <= 0 || natural.height() <= 0 || room.width() <= 0 || room.height() <= 0) return 1.0;
  return std::min({1.0, double(room.width()) / natural.width(), double(room.height()) / natural.height()});
}

// Rounded to the nearest pixel, halves away from zero, as the template's platform maps units.
int DialogUnits::MapX(int x) const { return int(std::lround(x * unitX)); }
int DialogUnits::MapY(int y) const { return int(std::lround(y * unitY)); }

QRect DialogUnits::ToPixels(int x, int y, int width, int height) const {
  const int left = MapX(x), top = MapY(y);
  return QRect(left, top, MapX(x + width) - left, MapY(y + height) - top);
}

QSize DialogUnits::ToPixels(int width, int height) const { return QSize(MapX(width), MapY(height)); }

QFont DialogUnits::DialogFont(QFont base) const {
  base.setPointSizeF(kDialogPoints * fit);
  return base;
}
