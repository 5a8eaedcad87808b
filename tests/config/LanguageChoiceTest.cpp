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
    store.SetPropList(
        u"languages"_s,
        {u"en-us=English,1"_s, u"de=Deutsch,0"_s, u"fr-fr=Français,1"_s, u"xx=broken"_s}, u"="_s);
    EXPECT_TRUE(isLanguageAvailable(store, u"en-us"_s));
    EXPECT_FALSE(isLanguageAvailable(store, u"de"_s));    // disabled
    EXPECT_FALSE(isLanguageAvailable(store, u"fr-fr"_s)); // no file
    EXPECT_FALSE(isLanguageAvailable(store, u"sv"_s));    // no record
    EXPECT_THROW(isLanguageAvailable(store, u"xx"_s), Failure);
    EXPECT_EQ(languageFolder(store), home.path() + u"/language/tessaly/"_s);
}

// The shipped "langid" table leads every German- or French-speaking system to its file, whether
// the id comes from the system's locale or from an older installation's settings; every
// English, German or French entry names an installed file first.
TEST(LanguageChoice, SystemLocalesAndLegacyIdsFindTheirLanguage) {
    TestHome home(true);
    clsPropertiesXML store;
    const auto firstCode = [&](std::int32_t langId) {
        return store.GetProp(u"langid"_s, langIdToKey(langId), QString()).section(u';', 0, 0);
    };
    // A language the locale table does not know counts as US English.
    const std::pair<const char*, const char*> locales[] = {
        {"de_DE", "de-de"}, {"de_AT", "de-de"}, {"de_CH", "de-de"}, {"de_LU", "de-de"},
        {"de_LI", "de-de"}, {"en_US", "en-us"}, {"en_GB", "en-us"}, {"sw_KE", "en-us"},
        {"C", "en-us"},     {"fr_FR", "fr-fr"}, {"fr_BE", "fr-fr"}, {"fr_CA", "fr-fr"},
        {"fr_CH", "fr-fr"}, {"fr_SN", "fr-fr"}};
    for (const auto& [name, code] : locales)
        EXPECT_EQ(firstCode(lcidForLocale(QLocale(QString::fromLatin1(name)))),
                  QString::fromLatin1(code))
            << name;
    for (const int legacyId : {1031, 3079, 2055, 4103})
        EXPECT_EQ(firstCode(legacyId), u"de-de"_s) << legacyId;
    QStringList entries;
    ASSERT_GT(store.GetPropList(entries, u"langid"_s, u"="_s), 40);
    for (const QString& entry : entries) {
        const QString code = entry.section(u'=', 1).section(u';', 0, 0);
        EXPECT_TRUE(
            (!code.startsWith(u"en"_s) && !code.startsWith(u"de"_s) && !code.startsWith(u"fr"_s)) ||
            isLanguageAvailable(store, code))
            << entry.toStdString();
    }
    // A system language id without an entry gives English.
    store.DeleteProp(u"langid"_s, langIdToKey(0));
    EXPECT_EQ(getSystemLanguageCode(store), u"en-us"_s);
}
