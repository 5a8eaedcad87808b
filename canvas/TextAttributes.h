#pragma once

#include <QMetaType>
#include <QString>
#include <cstdint>

// The eight attributes of a text on the slide, in the order in which they travel between the
// text panel, the main window and the canvas. Unset, they are the look of a new text.
struct TextAttributes {
    QString caption;
    QString fontName = QStringLiteral("Verdana");
    std::int16_t size = 18;
    std::int32_t colour = 0; // red in the low byte, then green, then blue
    bool bold = false;
    bool italic = false;
    bool underline = false;
    std::int16_t alignment = 2; // 0 left, 1 right, 2 centred

    bool operator==(const TextAttributes&) const = default;
};

Q_DECLARE_METATYPE(TextAttributes)
