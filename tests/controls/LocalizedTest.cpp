// The controls with the program's real localiser and the shipped German language file.
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/GrButtonIII.h"
#include "controls/QtDialogResponder.h"
#include "controls/ctlMainMenu.h"
#include "controls/ctlVerticalTab.h"
#include "controls/frmAbout.h"
#include "controls/frmSplash.h"
#include "controls/modTitleBar.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

class Localized : public ::testing::Test {
protected:
    Localized() : home(/*withData=*/true) {
        props.SetProp(QStringLiteral("paths"), QStringLiteral("language"),
                      QStringLiteral("\\language\\tessaly\\"));
        props.SetProp(QStringLiteral("languages"), QStringLiteral("en-us"),
                      QStringLiteral("English,1"));
        props.SetProp(QStringLiteral("languages"), QStringLiteral("de-de"),
                      QStringLiteral("Deutsch,1"));
        localizer = &shared.setLocalizer(std::make_unique<clsXMLocalizer>(props));
        EXPECT_TRUE(localizer->SetLanguage(QStringLiteral("de-de")));
    }

    TestHome home;
    SharedConfig shared;
    clsPropertiesXML& props = shared.setProperties(std::make_unique<clsPropertiesXML>());
    clsXMLocalizer* localizer = nullptr;
};

} // namespace

TEST_F(Localized, MenuBarTakesGermanCaptions) {
    ctlMainMenu menu;
    menu.resize(260, 20);
    menu.TranslateControl(localizer);
    EXPECT_EQ(menu.MenuLabel(0)->text(), QStringLiteral("Datei"));
    EXPECT_TRUE(menu.MenuString(0).startsWith(QStringLiteral("Neu;1,")));
    EXPECT_EQ(menu.MenuLabel(2)->x() + menu.MenuLabel(2)->width(), 260);
}

TEST_F(Localized, TabTooltipsInGerman) {
    ctlVerticalTab tabs;
    tabs.TranslateControl(localizer);
    EXPECT_EQ(tabs.ImgClick(0)->toolTip(), QStringLiteral("Hintergründe"));
}

TEST_F(Localized, AboutIsTranslatedAndKeepsItsOwnTexts) {
    frmAbout about;
    EXPECT_EQ(about.windowTitle(), QStringLiteral("Über Tessaly"));
    EXPECT_EQ(about.cmdSysInfo()->text(), QStringLiteral("Systeminfo..."));
    EXPECT_FALSE(about.cmdSysInfo()->toolTip().isEmpty());
    // The labels the language leaves empty are filled by the window itself.
    EXPECT_EQ(about.lblTitle()->text(), QStringLiteral("Tessaly"));
    EXPECT_EQ(about.lblVersion()->text(), AppVersionText());
    EXPECT_EQ(about.lblDisclaimer()->text(),
              localizer->GetString(QStringLiteral("STR_ABOUT_LEGAL")));
    EXPECT_NE(about.lblDisclaimer()->text(), AppLegalText());
}

TEST_F(Localized, BoxButtonsSpeakTheProgramsLanguage) {
    const QtDialogResponder dialogs;
    QStringList captions;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return;
        poll.stop();
        for (QAbstractButton* button : box->buttons())
            captions << button->text();
        for (QAbstractButton* button : box->buttons())
            if (button->text() == QStringLiteral("&Nein"))
                button->click();
    });
    poll.start(10);
    EXPECT_EQ(MsgBox(QStringLiteral("Löschen?"), Vb::YesNo | Vb::Question), Vb::No);
    captions.sort();
    EXPECT_EQ(captions, (QStringList{QStringLiteral("&Ja"), QStringLiteral("&Nein")}));
}

TEST_F(Localized, SysInfoBoxInGerman) {
    QTemporaryDir empty;
    const QByteArray saved = qgetenv("PATH");
    qputenv("PATH", empty.path().toLocal8Bit());
    ScriptedResponder responder;
    frmAbout about;
    EXPECT_FALSE(about.StartSysInfo());
    qputenv("PATH", saved);
    ASSERT_EQ(responder.boxes.size(), 1u);
    EXPECT_NE(responder.boxes[0].text, QStringLiteral("STR_NO_SYS_INFO"));
}

TEST_F(Localized, SplashShowsTheVersionAfterTranslation) {
    QPointer<frmSplash> splash = frmSplash::Load();
    EXPECT_EQ(splash->lblVersion()->text(), AppVersionText());
    EXPECT_EQ(splash->windowTitle(), QStringLiteral("Tessaly"));
    splash->Unload();
    ASSERT_TRUE(QTest::qWaitFor([&] { return splash.isNull(); }));
}
