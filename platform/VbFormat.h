#pragma once

#include <QDateTime>
#include <QString>

// The number and time patterns the program formats with, as the classic Format function wrote
// them: "#0.0s", "#0.0", "#0.00s", "0.000s", "0ms", "#0" for numbers, "yymmdd_HhNnSs" for a time.
// Digits are rounded half away from zero; the decimal separator is the user's (gDecimalSeparator)
// unless one is given. An unknown pattern is a programming error and gives the plain number.
QString Format(double value, const QString& pattern);
QString Format(double value, const QString& pattern, const QString& decimalSeparator);
QString Format(const QDateTime& time, const QString& pattern);
