#include "app/modMain.h"
#include "config/clsPropertiesXML.h"
#include "config/modConfig.h"
#include "platform/Failure.h"
#include "platform/modLocale.h"
#include "support/ScriptedResponder.h"

#include "support/TestHome.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

const QString pref = QStringLiteral("preferences");

// A store over a fresh application folder with the shipped data, installed as the shared store.
class Startup : public ::testing::Test {
protected:
    TestHome home{true};
    SharedConfig shared;
    clsPropertiesXML* store = &shared.setProperties(std::make_unique<clsPropertiesXML>());

    QString systemKey() const { return langIdToKey(0); }
    QString language() const {
        return store->GetProp(pref, QStringLiteral("Language"), QStringLiteral("unset"));
    }
};

} // namespace

TEST_F(Startup, FirstRunTakesTheSystemLanguage) {
    home.write(QStringLiteral("language/tessaly/de-de.xml"), "<langtab/>");
    store->DeletePropSection(QStringLiteral("langid"));
    store->SetProp(QStringLiteral("langid"), systemKey(), QStringLiteral("DE-DE;de"));
    chooseFirstRunLanguage();
    EXPECT_EQ(language(), QStringLiteral("de-de"));
    EXPECT_EQ(store->GetProp(pref, QStringLiteral("Initialized"), QString()), QStringLiteral("1"));
}

TEST_F(Startup, UnknownSystemLanguageEndsInEnglish) {
    store->DeletePropSection(QStringLiteral("langid"));
    store->SetProp(pref, QStringLiteral("Language"), QStringLiteral("de-de"));
    chooseFirstRunLanguage();
    EXPECT_EQ(language(), QStringLiteral("en-us"));
}

TEST_F(Startup, RegionalCodeFallsBackToItsBaseLanguage) {
    home.write(QStringLiteral("language/tessaly/sv.xml"), "<langtab/>");
    store->SetProp(QStringLiteral("languages"), QStringLiteral("sv"), QStringLiteral("Svenska,1"));
    store->DeletePropSection(QStringLiteral("langid"));
    store->SetProp(QStringLiteral("langid"), systemKey(), QStringLiteral("sv-se;sv"));
    chooseFirstRunLanguage();
    EXPECT_EQ(language(), QStringLiteral("sv"));
}

TEST_F(Startup, WithoutEnUsItFallsToEnWhenThatIsInstalled) {
    // "en-us" is the last resort only when even the base language is not there.
    home.write(QStringLiteral("language/tessaly/en.xml"), "<langtab/>");
    store->SetProp(QStringLiteral("languages"), QStringLiteral("en"), QStringLiteral("English,1"));
    store->DeletePropSection(QStringLiteral("langid"));
    store->SetProp(QStringLiteral("langid"), systemKey(), QStringLiteral("en-gb;en"));
    chooseFirstRunLanguage();
    EXPECT_EQ(language(), QStringLiteral("en"));
}

TEST_F(Startup, InitializedStoresMakeNoChoice) {
    store->SetProp(pref, QStringLiteral("Initialized"), QStringLiteral("yes"));
    store->DeleteProp(pref, QStringLiteral("Language"));
    chooseFirstRunLanguage();
    EXPECT_EQ(language(), QStringLiteral("unset"));
}

TEST(FailureReport, PrinterFailureHasItsOwnFixedBox) {
    ScriptedResponder boxes;
    reportFailure(Failure(482, QStringLiteral("x"), QStringLiteral("Printer error")),
                  QStringLiteral("step"));
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].style, 16);
    EXPECT_EQ(boxes.boxes[0].title, QStringLiteral("Printer Error"));
    EXPECT_EQ(boxes.boxes[0].text,
              QStringLiteral(
                  "There is no printer installed.\nInstall a printer and restart the program."));
}

TEST(FailureReport, OtherFailuresNameTheStepAndTheNumber) {
    ScriptedResponder boxes;
    reportFailure(Failure(91, QStringLiteral("x"), QStringLiteral("Object missing")),
                  QStringLiteral("ModMain.Main - Program Properties"));
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].style, 16);
    // Without a localiser the keys stand for their texts.
    EXPECT_EQ(boxes.boxes[0].title, QStringLiteral("STR_ERROR"));
    EXPECT_TRUE(boxes.boxes[0].text.startsWith(QStringLiteral("STR_ERROR_UNEXPECTEDModMain")));
    EXPECT_TRUE(boxes.boxes[0].text.endsWith(
        QStringLiteral("ModMain.Main - Program Properties\n\nObject missing (91)")));
}

// Start-up adds what the user's preferences lack from the installed defaults and saves at once:
// a missing file, a damaged one (kept as .bak) and one with the user's own values.
TEST(CompletePreferences, EveryFileComesBackCompleteAndKeepsTheUsersValues) {
    const QByteArray damaged = "<APPLICATIONS><APPLICATION name=";
    const QByteArray own = "<APPLICATIONS><APPLICATION name='tessaly'><SECTIONS><SECTION "
                           "name='preferences'><KEY name='Language'>de-de</KEY><KEY "
                           "name='Mine'>7</KEY></SECTION></SECTIONS></APPLICATION></APPLICATIONS>";
    for (const QByteArray& content : {QByteArray(), damaged, own}) {
        TestHome home;
        if (!content.isEmpty())
            home.write(QStringLiteral("tessaly.xml"), content);
        {
            SharedConfig shared;
            clsPropertiesXML& store = shared.setProperties(std::make_unique<clsPropertiesXML>());
            EXPECT_GT(completePreferences(store), 20);
            EXPECT_EQ(completePreferences(store), 0);
        }
        clsPropertiesXML saved;
        const auto value = [&](const char* section, const char* key) {
            return saved.GetProp(QLatin1String(section), QLatin1String(key), QString());
        };
        EXPECT_EQ(value("paths", "language"), QStringLiteral("\\language\\tessaly\\"));
        EXPECT_EQ(value("preferences", "Skin"), QStringLiteral("Skin_Default"));
        EXPECT_EQ(value("languages", "de-de"), QStringLiteral("Deutsch,1"));
        EXPECT_EQ(value("preferences", "Language"),
                  content == own ? QStringLiteral("de-de") : QStringLiteral("en-us"));
        EXPECT_EQ(value("preferences", "Mine"), content == own ? QStringLiteral("7") : QString());
        EXPECT_EQ(home.read(QStringLiteral("tessaly.xml.bak")),
                  content == damaged ? damaged : QByteArray());
    }
}
