#pragma once

#include <QPixmap>
#include <QSize>
#include <QString>
#include <cstdint>

class QWidget;

// What the send windows share: their look and the words for a send's outcome.

// The key of the text that says how a send ended, by the facade's status: 0 STR_READY,
// 1 STR_NO_DEVICE, 2 STR_DOWNLOAD_BUSY, 3 STR_NO_DEVICE_CONNECTED, 4 STR_DOWNLOAD_FAILED; ""
// for any other status, which changes nothing.
QString sendResultKey(std::int32_t result);

// The face of a send window: a dark caption band `captionHeight` pixels high over a light body,
// with a thin frame.
QPixmap sendWindowPicture(const QSize& size, int captionHeight);

// Puts `window` in the lower right corner of `owner`'s window.
void placeAtLowerRight(QWidget* window, const QWidget* owner);
