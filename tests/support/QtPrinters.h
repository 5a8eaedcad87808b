#pragma once

// How failed comparisons print Qt values: as text rather than as bytes. Every test program
// includes this before anything else (see tests/CMakeLists.txt), so each comparison finds them.
#include <QByteArray>
#include <QColor>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>
#include <iosfwd>

void PrintTo(const QString& text, std::ostream* out);
void PrintTo(const QByteArray& bytes, std::ostream* out);
void PrintTo(const QStringList& list, std::ostream* out);
void PrintTo(const QPoint& point, std::ostream* out);
void PrintTo(const QSize& size, std::ostream* out);
void PrintTo(const QRect& rect, std::ostream* out);
void PrintTo(const QColor& colour, std::ostream* out);
