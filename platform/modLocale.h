#pragma once

#include <QLocale>
#include <QString>
#include <cstdint>

// The locale as the program sees it: Windows language identifiers (LCIDs), taken from the
// system locale through a table; 0x0409 (English, United States) when the locale is unknown.

// The language identifier of a locale, or 0x0409 when the table does not know it.
std::int32_t lcidForLocale(const QLocale& locale);

// The user's locale identifier (what start-up keeps as gUserLCID).
std::int32_t userDefaultLCID();

// The system's default language identifier, a 16-bit value.
std::uint16_t systemDefaultLangID();

// The user locale's decimal separator.
QString localeDecimalSeparator();

// "H" and four upper-case hexadecimal digits of the low 16 bits of langId; 0 stands for the
// system's default language: 0x409 gives "H0409".
QString langIdToKey(std::int32_t langId);

// The part of text before its first NUL, or all of it.
QString trimAtNul(const QString& text);
