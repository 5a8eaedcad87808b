#pragma once

#include <QString>
#include <functional>

// Where lower layers get the localised text of a key without knowing the localiser: start-up
// installs the localiser's look-up here. Without one, a key stands for itself.
using TextLookup = std::function<QString(const QString& key)>;

void setTextLookup(TextLookup lookup);
QString localText(const QString& key);
