#pragma once

#include <QString>
#include <QStringList>
#include <functional>

// Where lower layers get the localised text of a key without knowing the localiser: start-up
// installs the localiser's look-up here. Without one, a key stands for itself.
using TextLookup = std::function<QString(const QString& key)>;

void setTextLookup(TextLookup lookup);
QString localText(const QString& key);

// Fills the markers of a text: "%n" becomes a line break, "%0", "%1", ... the parameters, in
// index order ("%1" also matches the start of "%10").
QString fillMarkers(QString text, const QStringList& params);
// localText(key) with its markers filled.
QString localTextPar(const QString& key, const QStringList& params);
