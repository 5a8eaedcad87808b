#pragma once

#include <QImage>

// A picture of smooth colour ramps; `seed` shifts the colours so that pictures differ.
inline QImage rampPicture(QSize size, int seed) {
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            picture.setPixel(x, y, qRgb((x * 3 + seed) % 256, (y * 5 + seed) % 256, (x + y) % 256));
    return picture;
}
