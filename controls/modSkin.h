#pragma once

#include <QColor>
#include <QList>
#include <QPixmap>
#include <QString>

class QWidget;

// The skin picture of a window and the program's resource pictures.
//
// A skinned window keeps its background picture in the dynamic property "picture" (a QPixmap)
// and paints it at (0, 0); controls that sit on it copy the piece under themselves so that they
// look transparent on the skin.

void setFormPicture(QWidget* form, const QPixmap& picture);
QPixmap formPicture(const QWidget* form);

// The form's back colour (its window colour).
QColor formBackColor(const QWidget* form);

// The piece of the form's picture that lies under `control`, the size of `control`; where the
// picture does not reach, the form's back colour. Without a picture, a plain fill of the back
// colour.
QPixmap backgroundPiece(const QWidget* form, const QWidget* control);

// A picture below the application folder's "resources" folder; null when it is missing or
// unreadable.
QPixmap resourcePicture(const QString& fileName);

// The drawn stand-in for a window's skin picture: a pale page under a dark blue caption band
// `captionHeight` high.
QPixmap drawnCaptionPicture(const QSize& size, int captionHeight);

// A picture of `count` equal frames side by side, cut into its frames. Empty when the file is
// missing or its width is not a multiple of `count`.
QList<QPixmap> resourceStrip(const QString& fileName, int count);

// The tool colours of the skin: page colour and accent.
inline constexpr int kToolBackColor = 0xF8F2EF; // classic colour order: blue, green, red
inline constexpr int kToolAccentColor = 0x51BEFD;
