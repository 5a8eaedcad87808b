#include "platform/modLocale.h"

#include <gtest/gtest.h>

TEST(Locale, LanguageIdsFromLocales) {
    EXPECT_EQ(lcidForLocale(QLocale(QLocale::English, QLocale::UnitedStates)), 0x0409);
    EXPECT_EQ(lcidForLocale(QLocale(QLocale::German, QLocale::Germany)), 0x0407);
    EXPECT_EQ(lcidForLocale(QLocale(QLocale::German, QLocale::Austria)), 0x0C07);
    EXPECT_EQ(lcidForLocale(QLocale(QLocale::Swedish, QLocale::Sweden)), 0x041D);
    EXPECT_EQ(lcidForLocale(QLocale(QLocale::Spanish, QLocale::Spain)), 0x0C0A);
    // A territory the table lacks takes the language's default; an unknown language, 0x0409.
    EXPECT_EQ(lcidForLocale(QLocale(QLocale::German, QLocale::Belgium)), 0x0407);
    EXPECT_EQ(lcidForLocale(QLocale(QLocale::Zulu, QLocale::SouthAfrica)), 0x0409);
    EXPECT_EQ(lcidForLocale(QLocale::c()), 0x0409);
}

TEST(Locale, LangIdToKey) {
    EXPECT_EQ(langIdToKey(0x409), QStringLiteral("H0409"));
    EXPECT_EQ(langIdToKey(0x0C0A), QStringLiteral("H0C0A"));
    EXPECT_EQ(langIdToKey(0x7F), QStringLiteral("H007F"));
    // Only the low 16 bits count; 0 stands for the system's language.
    EXPECT_EQ(langIdToKey(0x10407), QStringLiteral("H0407"));
}

TEST(Locale, TrimAtNul) {
    EXPECT_EQ(trimAtNul(QStringLiteral("abc")), QStringLiteral("abc"));
    EXPECT_EQ(trimAtNul(QString::fromUtf16(u",\0  ", 4)), QStringLiteral(","));
    EXPECT_EQ(trimAtNul(QString(QChar(u'\0'))), QString());
}
