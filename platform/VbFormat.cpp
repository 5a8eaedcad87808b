#include "platform/VbFormat.h"

#include "platform/modShared.h"

#include <QtGlobal>
#include <cmath>

namespace {

// Rounds to `decimals` places, half away from zero, tolerating the binary error of values such
// as 0.15 that are meant as exact decimals.
QString fixed(double value, int decimals, const QString& separator) {
    const double scale = std::pow(10.0, decimals);
    double scaled = value * scale;
    scaled = std::round(scaled + (scaled >= 0 ? 1e-9 : -1e-9) * std::max(1.0, std::fabs(scaled)));
    if (scaled == 0.0)
        scaled = 0.0; // no "-0.0"
    QString digits = QString::number(std::fabs(scaled), 'f', 0);
    const bool negative = scaled < 0;
    if (decimals > 0) {
        digits = digits.rightJustified(decimals + 1, QLatin1Char('0'));
        digits.insert(digits.size() - decimals, separator);
    }
    return negative ? QLatin1Char('-') + digits : digits;
}

} // namespace

QString Format(double value, const QString& pattern) {
    return Format(value, pattern, gDecimalSeparator);
}

QString Format(double value, const QString& pattern, const QString& separator) {
    // Both "#0" and "0" demand at least one integer digit, so they format alike here.
    if (pattern == QLatin1String("#0.0s"))
        return fixed(value, 1, separator) + QLatin1Char('s');
    if (pattern == QLatin1String("#0.0"))
        return fixed(value, 1, separator);
    if (pattern == QLatin1String("#0.00s"))
        return fixed(value, 2, separator) + QLatin1Char('s');
    if (pattern == QLatin1String("0.000s"))
        return fixed(value, 3, separator) + QLatin1Char('s');
    if (pattern == QLatin1String("0ms"))
        return fixed(value, 0, separator) + QLatin1String("ms");
    if (pattern == QLatin1String("#0") || pattern == QLatin1String("0"))
        return fixed(value, 0, separator);
    Q_ASSERT_X(false, "Format", "unknown number pattern");
    return QString::number(value);
}

QString Format(const QDateTime& time, const QString& pattern) {
    if (pattern.compare(QLatin1String("yymmdd_HhNnSs"), Qt::CaseInsensitive) == 0)
        return time.toString(QStringLiteral("yyMMdd_HHmmss"));
    Q_ASSERT_X(false, "Format", "unknown time pattern");
    return time.toString(Qt::ISODate);
}
