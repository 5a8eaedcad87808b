#include "config/clsPropertiesXML.h"
#include "config/modLanguage.h"
#include "platform/Failure.h"
#include "platform/modLocale.h"

#include "support/TestHome.h"

#include <gtest/gtest.h>

TEST(LanguageChoice, AvailabilityNeedsAnEnabledRecordAndAFile) {
    TestHome home;
    home.write(QStringLiteral("language/tessaly/en-us.xml"), "<langtab/>");
    home.write(QStringLiteral("language/tessaly/de.xml"), "<langtab/>");
    clsPropertiesXML store;
    store.SetProp(QStringLiteral("paths"), QStringLiteral("language"),
                  QStringLiteral("\\language\\tessaly"));
    store.SetProp(QStringLiteral("languages"), QStringLiteral("en-us"),
                  QStringLiteral("English,1"));
    store.SetProp(QStringLiteral("languages"), QStringLiteral("de"), QStringLiteral("Deutsch,0"));
    store.SetProp(QStringLiteral("languages"), QStringLiteral("fr-fr"),
                  QStringLiteral("Français,1"));
    store.SetProp(QStringLiteral("languages"), QStringLiteral("xx"), QStringLiteral("broken"));
    EXPECT_TRUE(isLanguageAvailable(store, QStringLiteral("en-us")));
    EXPECT_FALSE(isLanguageAvailable(store, QStringLiteral("de")));    // disabled
    EXPECT_FALSE(isLanguageAvailable(store, QStringLiteral("fr-fr"))); // no file
    EXPECT_FALSE(isLanguageAvailable(store, QStringLiteral("sv")));    // no record
    EXPECT_THROW(isLanguageAvailable(store, QStringLiteral("xx")), Failure);
    EXPECT_EQ(languageFolder(store), home.path() + QStringLiteral("/language/tessaly/"));
}

// The shipped "langid" table leads every German-speaking system to the German file, whether
// the id comes from the system's locale or from an older installation's settings.
TEST(LanguageChoice, GermanSpeakingSystemsFindGerman) {
    TestHome home(true);
    clsPropertiesXML store;
    const auto firstRunCode = [&](std::int32_t langId) {
        return store.GetProp(QStringLiteral("langid"), langIdToKey(langId), QString())
            .section(QLatin1Char(';'), 0, 0)
            .toLower();
    };
    const QLocale::Territory territories[] = {QLocale::Germany, QLocale::Austria,
                                              QLocale::Switzerland, QLocale::Luxembourg,
                                              QLocale::Liechtenstein};
    for (const QLocale::Territory territory : territories) {
        const QLocale locale(QLocale::German, territory);
        SCOPED_TRACE(locale.name().toStdString());
        EXPECT_NE(lcidForLocale(locale), 0x0409);
        EXPECT_EQ(firstRunCode(lcidForLocale(locale)), QStringLiteral("de-de"));
    }
    for (const int legacyId : {1031, 3079, 2055, 4103}) {
        SCOPED_TRACE(legacyId);
        EXPECT_EQ(firstRunCode(legacyId), QStringLiteral("de-de"));
    }
    EXPECT_TRUE(isLanguageAvailable(store, QStringLiteral("de-de")));
    // Every English or German entry names an installed file first.
    QStringList entries;
    ASSERT_GT(store.GetPropList(entries, QStringLiteral("langid"), QStringLiteral("=")), 40);
    for (const QString& entry : entries) {
        const QString code = entry.section(QLatin1Char('='), 1).section(QLatin1Char(';'), 0, 0);
        const QString language = code.section(QLatin1Char('-'), 0, 0);
        if (language == QLatin1String("en") || language == QLatin1String("de")) {
            EXPECT_TRUE(isLanguageAvailable(store, code)) << entry.toStdString();
        }
    }
    EXPECT_EQ(store.GetProp(QStringLiteral("paths"), QStringLiteral("messages"), QString()),
              QStringLiteral("\\Messages\\"));
}
