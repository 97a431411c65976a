#include "ui/base/contrast.h"

#include <algorithm>
#include <cmath>

namespace ui {

namespace {

constexpr int steps = 20;  // of a mixture

// Relative luminance of a colour, 0 to 1.
double luminance(const QColor& color) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

}  // namespace

QColor mixture(const QColor& first, const QColor& second, float shareOfSecond) {
    const auto mixed = [&](float a, float b) { return a + (b - a) * shareOfSecond; };
    const QColor exact =
        QColor::fromRgbF(mixed(first.redF(), second.redF()), mixed(first.greenF(), second.greenF()),
                         mixed(first.blueF(), second.blueF()));
    return QColor(exact.rgb());  // as the screen shows it
}

double contrast(const QColor& a, const QColor& b) {
    const double lighter = std::max(luminance(a), luminance(b));
    const double darker = std::min(luminance(a), luminance(b));
    return (lighter + 0.05) / (darker + 0.05);
}

double lowestContrast(const QColor& text, const Grounds& grounds) {
    double lowest = 21;
    for (const QColor& ground : grounds)
        lowest = std::min(lowest, contrast(text, ground));
    return lowest;
}

QColor farthestFrom(const Grounds& grounds) {
    return lowestContrast(Qt::white, grounds) > lowestContrast(Qt::black, grounds) ? Qt::white : Qt::black;
}

QColor readable(const QColor& wanted, const Grounds& grounds) {
    const QColor end = farthestFrom(grounds);
    // What is seen through, as a hint in an empty box may be, is made of the ground.
    const QColor start = mixture(grounds.front(), wanted, wanted.alphaF());
    for (int i = 0; i < steps; ++i) {
        const QColor mixed = mixture(start, end, static_cast<float>(i) / steps);
        if (lowestContrast(mixed, grounds) >= readableContrast)
            return mixed;
    }
    return end;
}

}  // namespace ui
