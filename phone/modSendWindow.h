#pragma once

#include <QString>
#include <cstdint>

class GrButtonIII;
class QWidget;
class ctlProgressBar;

// What the send windows share: their look and the words for a send's outcome.

// The key of the text that says how a send ended, by the facade's status: 0 STR_READY,
// 1 STR_NO_DEVICE, 2 STR_DOWNLOAD_BUSY, 3 STR_NO_DEVICE_CONNECTED, 4 STR_DOWNLOAD_FAILED; ""
// for any other status, which changes nothing.
QString sendResultKey(std::int32_t result);

// Gives a send window its face at the size its form has: fixed in size, a dark caption band
// over a light body with a thin frame, the caption's close button, the progress bar idle.
void dressSendWindow(QWidget* window, GrButtonIII* close, ctlProgressBar* progress);

// Puts `window` in the lower right corner of `owner`'s window.
void placeAtLowerRight(QWidget* window, const QWidget* owner);
