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
