#include "app/modMain.h"
#include "config/clsPropertiesXML.h"
#include "config/modConfig.h"

#include "support/TestHome.h"

#include <QFileInfo>
#include <gtest/gtest.h>
#include <memory>

namespace {

class LegacyImport : public ::testing::Test {
protected:
    TestHome home{true};
    SharedConfig shared;
    clsPropertiesXML* store = &shared.setProperties(std::make_unique<clsPropertiesXML>());

    QString importedLanguage(const QByteArray& id) {
        store->SetProp(QStringLiteral("preferences"), QStringLiteral("Language"),
                       QStringLiteral("x"));
        home.write(QStringLiteral("tessaly.ini"), "[preferences]\r\nLanguageID=" + id + "\r\n");
        importLegacySettings();
        return store->GetProp(QStringLiteral("preferences"), QStringLiteral("Language"), QString());
    }
    QString ini() const { return home.file(QStringLiteral("tessaly.ini")); }
};

} // namespace

TEST_F(LegacyImport, LanguageIdsInEitherFormAndTheirFallbacks) {
    store->SetProp(QStringLiteral("langid"), QStringLiteral("H0416"), QStringLiteral("pt-br;pt"));
    store->SetProp(QStringLiteral("languages"), QStringLiteral("pt"),
                   QStringLiteral("Português,1"));
    const std::pair<const char*, const char*> cases[] = {
        {"1031", "de-de"},  {"H0407", "de-de"}, {"1033", "en-us"},
        {"H0409", "en-us"}, {"H7777", "en-us"}, // no langid entry
        {"1046", "pt"},                         // only the base language is known
        {"H040C", "fr-fr"}, {"H0C0A", "en-us"}, // neither es-es nor es
    };
    for (const auto& [id, language] : cases)
        EXPECT_EQ(importedLanguage(id), QString::fromLatin1(language)) << id;
}

TEST_F(LegacyImport, EntriesGoToTheirSectionsAndTheFileStaysWithoutDelete) {
    home.write(QStringLiteral("tessaly.ini"),
               "[this]\r\nDelete=0\r\nLog=1\r\n[preferences]\r\nSlideDuration=5000\r\n"
               "[paths]\r\narchive=C:\\a=b\r\n");
    importLegacySettings();
    EXPECT_EQ(
        store->GetProp(QStringLiteral("preferences"), QStringLiteral("SlideDuration"), QString()),
        QStringLiteral("5000"));
    // A value holding "=" is cut at it.
    EXPECT_EQ(store->GetProp(QStringLiteral("paths"), QStringLiteral("archive"), QString()),
              QStringLiteral("C:\\a"));
    EXPECT_EQ(
        store->GetProp(QStringLiteral("this"), QStringLiteral("Delete"), QStringLiteral("none")),
        QStringLiteral("none"));
    EXPECT_TRUE(QFileInfo::exists(ini())) << "Delete=0 keeps the file for the next start";
    QStringList log;
    ASSERT_EQ(store->GetPropList(log, QStringLiteral("AutoUpdate"), QStringLiteral("=")), 0);
    EXPECT_TRUE(log[0].startsWith(QStringLiteral("U_")));
    EXPECT_TRUE(log[0].endsWith(QStringLiteral("=OK")));
    // The import saved the store.
    EXPECT_TRUE(home.read(QStringLiteral("tessaly.xml"))
                    .contains("<KEY name=\"SlideDuration\">5000</KEY>"));
}

TEST_F(LegacyImport, EmptyFileChangesNothingAndDeleteRemovesIt) {
    home.write(QStringLiteral("tessaly.ini"), "");
    importLegacySettings(); // nothing to read: neither log nor delete can be asked for
    EXPECT_TRUE(QFileInfo::exists(ini()));

    home.write(QStringLiteral("tessaly.ini"), "[this]\r\nDelete=1\r\nLog=1\r\n");
    importLegacySettings();
    EXPECT_FALSE(QFileInfo::exists(ini()));
    QStringList log;
    ASSERT_EQ(store->GetPropList(log, QStringLiteral("AutoUpdate"), QStringLiteral("=")), 0);
    EXPECT_TRUE(log[0].endsWith(QStringLiteral("=OK")));
}

TEST_F(LegacyImport, NoFileNoChange) {
    importLegacySettings();
    EXPECT_FALSE(store->isDirty());
}
