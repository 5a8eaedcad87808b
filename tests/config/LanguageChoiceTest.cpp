#include "config/clsPropertiesXML.h"
#include "config/modLanguage.h"
#include "platform/Failure.h"

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

TEST(LanguageChoice, ShippedPreferencesKnowTheShippedLanguages) {
    TestHome home(true);
    clsPropertiesXML store;
    for (const QString& code : {QStringLiteral("en-us"), QStringLiteral("de-de")}) {
        const QString record = store.GetProp(QStringLiteral("languages"), code, QString());
        EXPECT_FALSE(record.isEmpty()) << code.toStdString();
    }
    EXPECT_EQ(store.GetProp(QStringLiteral("langid"), QStringLiteral("H0407"), QString())
                  .section(';', 0, 0),
              QStringLiteral("de-de"));
    EXPECT_EQ(store.GetProp(QStringLiteral("paths"), QStringLiteral("messages"), QString()),
              QStringLiteral("\\Messages\\"));
}
