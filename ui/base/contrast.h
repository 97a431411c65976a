// How well a text can be read on its ground, as the accessibility guidelines measure it.
#pragma once

#include <QColor>
#include <vector>

namespace ui {

// The colours that a text may have behind it; at least one.
using Grounds = std::vector<QColor>;

// What any text is to reach.
inline constexpr double readableContrast = 4.5;

// A share of each: all of the first for 0, all of the second for 1.
QColor mixture(const QColor& first, const QColor& second, float shareOfSecond);
// Relative luminances as a ratio, 1 to 21.
double contrast(const QColor& a, const QColor& b);
// The lowest contrast of the text on any of the grounds.
double lowestContrast(const QColor& text, const Grounds& grounds);
// Black or white: what can be read better on all of the grounds.
QColor farthestFrom(const Grounds& grounds);
// The wanted colour, mixed with as much black or white as it takes to be read on all of the grounds. Grounds
// that lie far from each other may leave no such colour; then it is the best there is.
QColor readable(const QColor& wanted, const Grounds& grounds);

}  // namespace ui
