#pragma once

#include <QFont>
#include <QRect>

// Dialog layouts are given in units of the dialog font: a horizontal unit is a quarter of the
// font's average character width, a vertical unit an eighth of its height.
class DialogUnits {
 public:
  explicit DialogUnits(const QFont& font);
  QRect ToPixels(int x, int y, int width, int height) const;
  QSize ToPixels(int width, int height) const;

 private:
  int baseX;
  int baseY;
};
