#pragma once

// Window sizes are kept in twips, fifteen to the pixel.
inline constexpr int TwipsPerPixel = 15;

constexpr int twipsToPixels(int twips) {
    return twips / TwipsPerPixel;
}
constexpr int pixelsToTwips(int pixels) {
    return pixels * TwipsPerPixel;
}
