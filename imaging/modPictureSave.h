#pragma once

#include "platform/StatusSink.h"

#include <QImage>
#include <QString>

// Writes `picture` as a 24-bit bottom-up BMP file. Raises a Failure when it cannot.
void SavePicture(const QImage& picture, const QString& path);

// Writes `picture` next to `filePath` in one of three forms. The stem is `filePath` up to and
// including its last "." (the whole path when it has none), and the form picks the extension:
// 0 a BMP at stem + "bmp"; 1 that BMP, then a JPEG of quality 90 at stem + "jpg" made from it
// (the BMP stays beside); 2 a GIF of 256 colours at stem + "gif". Another kind writes nothing.
// False when a failure occurred on the way. The comment of a GIF opens with `pictureName`, and
// the GIF writer's questions, progress and pauses go to `sink`.
bool SavePictureBoxImage(const QString& filePath, const QImage& picture, int kind);
bool SavePictureBoxImage(const QString& filePath, const QImage& picture, int kind,
                         const QString& pictureName, StatusSink& sink = quietSink());
