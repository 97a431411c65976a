// The unit of the window's constants: a twip, 1440 to the inch of 96 device-independent pixels.
#pragma once

namespace ui {

constexpr int twipsPerPixel = 1440 / 96;

constexpr int pixels(int twips) {
    return twips / twipsPerPixel;
}

constexpr int twips(int pixelCount) {
    return pixelCount * twipsPerPixel;
}

}  // namespace ui
