#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

// Small line icons for the skinned buttons, drawn in code so that they stay sharp at any size:
// "add", "duplicate", "delete", "play", "stop", "remove". An unknown name gives a null icon.
QIcon toolGlyph(const QString& name, const QColor& colour = QColor(0x2a, 0x33, 0x48));
