#pragma once

#include <QString>
#include <cstdint>

// All values of one draw object in one piece, carried between the slide canvas and the
// document. For a picture `Data` is the picture's path, for a text object the text.
class clsDrawProperties {
public:
    QString name;
    QString typ;
    std::int16_t X = 0;
    std::int16_t Y = 0;
    std::int16_t w = 0;
    std::int16_t h = 0;
    std::int16_t fontAlign = 0;
    QString fontName;
    std::int16_t fontSize = 0;
    std::int32_t fontColor = 0;
    std::int16_t zorder = 0;
    QString Data;
    bool fontBold = false;
    bool fontItalic = false;
    bool fontUnderline = false;

    bool operator==(const clsDrawProperties&) const = default;
};
