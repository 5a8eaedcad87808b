#include "platform/modText.h"

namespace {
TextLookup& lookupSlot() {
    static TextLookup lookup;
    return lookup;
}
} // namespace

void setTextLookup(TextLookup lookup) {
    lookupSlot() = std::move(lookup);
}

QString localText(const QString& key) {
    const TextLookup& lookup = lookupSlot();
    return lookup ? lookup(key) : key;
}

QString fillMarkers(QString text, const QStringList& params) {
    text.replace(QStringLiteral("%n"), QStringLiteral("\r\n"));
    for (qsizetype i = 0; i < params.size(); ++i)
        text.replace(QLatin1Char('%') + QString::number(i), params[i]);
    return text;
}

QString localTextPar(const QString& key, const QStringList& params) {
    return fillMarkers(localText(key), params);
}
