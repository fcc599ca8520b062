#pragma once

#include <QFont>
#include <QMargins>
#include <QRect>

class QScreen;

// Dialog layouts are given in units of the dialog font as the template's platform measured it: an
// 8-point dialog font has base units of 6 x 13 pixels at 96 DPI, and a horizontal unit is a quarter
// of the first, a vertical unit an eighth of the second. The units grow with the screen's logical
// DPI and shrink, with the font, by `fit` when the dialog has to fit a smaller screen.
class DialogUnits {
 public:
  static constexpr double kBaseX = 6.0;
  static constexpr double kBaseY = 13.0;
  static constexpr double kDialogPoints = 8.0;
  static constexpr double kReferenceDpi = 96.0;

  // `dpiScale` is the screen's logical DPI over 96; `fit` at most 1.
  DialogUnits(double dpiScale, double fit);
  // The units of `screen` (null: the primary screen) at full size.
  static double DpiScale(const QScreen* screen);
  // The one factor, at most 1, that makes `natural` fit inside `room`.
  static double FitFactor(QSize natural, QSize room);

  // Each edge is rounded on its own, so that controls that touch in the template still touch.
  QRect ToPixels(int x, int y, int width, int height) const;
  QSize ToPixels(int width, int height) const;
  // `base` at the dialog font's point size, scaled as the units are.
  QFont DialogFont(QFont base) const;
  double Fit() const { return fit; }

 private:
  int MapX(int x) const;
  int MapY(int y) const;

  double unitX;  // pixels per horizontal unit
  double unitY;
  double fit;
};
