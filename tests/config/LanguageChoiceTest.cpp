#include "config/clsPropertiesXML.h"
#include "config/modLanguage.h"
#include "platform/Failure.h"
#include "platform/modLocale.h"
#include "support/TestHome.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(LanguageChoice, AvailabilityNeedsAnEnabledRecordAndAFile) {
    TestHome home;
    home.write(u"language/tessaly/en-us.xml"_s, "<langtab/>");
    home.write(u"language/tessaly/de.xml"_s, "<langtab/>");
    clsPropertiesXML store;
    store.SetProp(u"paths"_s, u"language"_s, u"\\language\\tessaly"_s);
    for (const auto& [code, record] : {std::pair{u"en-us"_s, u"English,1"_s},
                                       {u"de"_s, u"Deutsch,0"_s},
                                       {u"fr-fr"_s, u"Français,1"_s},
                                       {u"xx"_s, u"broken"_s}})
        store.SetProp(u"languages"_s, code, record);
    EXPECT_TRUE(isLanguageAvailable(store, u"en-us"_s));
    EXPECT_FALSE(isLanguageAvailable(store, u"de"_s));    // disabled
    EXPECT_FALSE(isLanguageAvailable(store, u"fr-fr"_s)); // no file
    EXPECT_FALSE(isLanguageAvailable(store, u"sv"_s));    // no record
    EXPECT_THROW(isLanguageAvailable(store, u"xx"_s), Failure);
    EXPECT_EQ(languageFolder(store), home.path() + u"/language/tessaly/"_s);
}

// The shipped "langid" table leads every German-speaking system to the German file, whether
// the id comes from the system's locale or from an older installation's settings; every
// English or German entry names an installed file first.
TEST(LanguageChoice, GermanSpeakingSystemsFindGerman) {
    TestHome home(true);
    clsPropertiesXML store;
    const auto firstCode = [&](std::int32_t langId) {
        return store.GetProp(u"langid"_s, langIdToKey(langId), QString()).section(u';', 0, 0);
    };
    for (const auto territory : {QLocale::Germany, QLocale::Austria, QLocale::Switzerland,
                                 QLocale::Luxembourg, QLocale::Liechtenstein}) {
        const std::int32_t id = lcidForLocale(QLocale(QLocale::German, territory));
        EXPECT_TRUE(id != 0x0409 && firstCode(id) == u"de-de"_s) << territory;
    }
    for (const int legacyId : {1031, 3079, 2055, 4103})
        EXPECT_EQ(firstCode(legacyId), u"de-de"_s) << legacyId;
    QStringList entries;
    ASSERT_GT(store.GetPropList(entries, u"langid"_s, u"="_s), 40);
    for (const QString& entry : entries) {
        const QString code = entry.section(u'=', 1).section(u';', 0, 0);
        EXPECT_TRUE((!code.startsWith(u"en"_s) && !code.startsWith(u"de"_s)) ||
                    isLanguageAvailable(store, code))
            << entry.toStdString();
    }
    // A system language id without an entry gives English.
    store.DeleteProp(u"langid"_s, langIdToKey(0));
    EXPECT_EQ(getSystemLanguageCode(store), u"en-us"_s);
}
