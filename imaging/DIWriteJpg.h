#pragma once

#include <QByteArray>

// Converts the BMP file at `bitmapPath` into a baseline JPEG at `jpegPath` with `quality`
// (1 to 100). `flag` has no effect. Returns 0 on success, otherwise a non-zero code: 1 the
// bitmap cannot be read, 2 the JPEG cannot be written or encoded.
int DIWriteJpg(const QByteArray& jpegPath, const QByteArray& bitmapPath, int quality, int flag);
