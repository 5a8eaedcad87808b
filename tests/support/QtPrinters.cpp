#include "support/QtPrinters.h"

#include <QDebug>
#include <ostream>

namespace {
// As qDebug shows it: text quoted with its line ends and other control characters escaped.
template <typename T> void printAsDebug(const T& value, std::ostream* out) {
    QString shown;
    QDebug(&shown).nospace() << value;
    *out << shown.toStdString();
}
} // namespace

void PrintTo(const QString& text, std::ostream* out) {
    printAsDebug(text, out);
}
void PrintTo(const QByteArray& bytes, std::ostream* out) {
    printAsDebug(bytes, out);
}
void PrintTo(const QStringList& list, std::ostream* out) {
    printAsDebug(list, out);
}
void PrintTo(const QPoint& point, std::ostream* out) {
    printAsDebug(point, out);
}
void PrintTo(const QSize& size, std::ostream* out) {
    printAsDebug(size, out);
}
void PrintTo(const QRect& rect, std::ostream* out) {
    printAsDebug(rect, out);
}
void PrintTo(const QColor& colour, std::ostream* out) {
    printAsDebug(colour, out);
}
