#include "app/frmMain.h"
#include "app/frmSettings.h"
#include "browse/frmMessageList.h"
#include "canvas/ctlPictureEditor.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/ctlBlink.h"
#include "controls/ctlMainMenu.h"
#include "controls/modSkin.h"
#include "platform/modShared.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Counts the language-change hook that widgets drawing their own texts listen to.
class Probe : public QWidget {
public:
    int changes = 0;

protected:
    void changeEvent(QEvent* event) override {
        if (event->type() == QEvent::LanguageChange)
            ++changes;
        QWidget::changeEvent(event);
    }
};

// The settings window over the shipped preferences in English, beside a shown main window.
class Settings : public ::testing::Test {
protected:
    TestHome home{true};
    ScriptedResponder boxes;
    SharedConfig shared;
    QPointer<frmMain> main;

    void SetUp() override {
        shared.setProperties(std::make_unique<clsPropertiesXML>());
        shared.setLocalizer(std::make_unique<clsXMLocalizer>(*gProperties()))
            .SetLanguage(u"en-us"_s);
        gStarting = true;
        gSplashActive = false;
    }
    void TearDown() override { delete main.data(); }

    void showMain() {
        main = new frmMain();
        gMainWindow = main;
        main->show();
    }
    static void set(const QString& section, const QString& key, const QString& value) {
        gProperties()->SetProp(section, key, value);
    }
    static QString get(const QString& section, const QString& key, const QString& readerDefault) {
        return gProperties()->GetProp(section, key, readerDefault);
    }
};

// The control `name` (of index `index` in a control array) of `window`.
template <typename T> T* control(QWidget* window, const QString& name, int index = -1) {
    for (T* found : window->findChildren<T*>(name))
        if (index < 0 || found->property("index").toInt() == index)
            return found;
    ADD_FAILURE() << "no control " << name.toStdString() << " " << index;
    return nullptr;
}

void choose(QWidget* window, const QString& comboName, const QString& value) {
    auto* combo = control<QComboBox>(window, comboName);
    const int index = combo->findData(value);
    ASSERT_GE(index, 0) << value.toStdString();
    combo->setCurrentIndex(index);
    emit combo->activated(index);
}

} // namespace

TEST_F(Settings, CancelAfterApplyKeepsTheAppliedValues) {
    set(u"preferences"_s, u"MMSTimeFormat"_s, u"s"_s); // seconds are not allowed here
    frmSettings window;
    EXPECT_TRUE(control<QAbstractButton>(&window, u"chkTimeFormat"_s, 0)->isChecked());
    EXPECT_FALSE(control<QAbstractButton>(&window, u"chkTimeFormat"_s, 1)->isEnabled());
    QSignalSpy applied(&window, &frmSettings::Apply), cancelled(&window, &frmSettings::Cancel);
    auto* ask = control<QAbstractButton>(&window, u"chkAskNewSlide"_s);
    auto* apply = control<QAbstractButton>(&window, u"cmdApply"_s);
    ASSERT_TRUE(ask->isChecked());
    EXPECT_FALSE(apply->isEnabled()) << "nothing to apply before a change";
    ask->click();
    EXPECT_TRUE(window.changed() && apply->isEnabled());
    window.cmdApply_Click();
    EXPECT_EQ(applied.takeFirst().at(0).toBool(), true);
    EXPECT_FALSE(window.changed() || apply->isEnabled());
    window.cmdApply_Click();
    EXPECT_EQ(applied.takeFirst().at(0).toBool(), false) << "the event tells what changed before";

    ask->click();
    control<QAbstractButton>(&window, u"chkShowSplash"_s)->click();
    window.cmdCancel_Click();
    EXPECT_EQ(cancelled.size(), 1);
    EXPECT_EQ(get(u"preferences"_s, u"AskNewSlide"_s, u"1"_s), u"0"_s);
    EXPECT_EQ(get(u"preferences"_s, u"ShowSplash"_s, u"1"_s), u"1"_s);
    EXPECT_EQ(get(u"preferences"_s, u"MMSTimeFormat"_s, u"ms"_s), u"ms"_s);
}

TEST_F(Settings, OnlyInstalledLanguagesAreOffered) {
    home.write(u"language/tessaly/sv-se.xml"_s, "<langtab/>"); // no catalogue record
    home.write(u"language/tessaly/it-it.xml"_s, "<langtab/>");
    home.write(u"language/tessaly/xx-xx.xml"_s, "<langtab/>");
    set(u"languages"_s, u"it-it"_s, u"Italiano,0"_s); // disabled
    set(u"languages"_s, u"xx-xx"_s, u"Broken"_s);     // a record without its enabled field
    set(u"languages"_s, u"fr-fr"_s, u"Français,1"_s);
    frmSettings window;
    EXPECT_EQ(window.GetInstalledLanguages(), (QStringList{u"de-de"_s, u"en-us"_s, u"fr-fr"_s}));
    auto* list = control<QComboBox>(&window, u"ComboLanguage"_s);
    EXPECT_EQ(list->itemText(2), u"Français"_s);
    EXPECT_EQ(list->currentData().toString(), u"en-us"_s);
}

TEST_F(Settings, UnsupportedCommunicationOptionsAreNotOnViewAndAChangeWaitsForARestart) {
    set(u"preferences"_s, u"CommunicationTypesSupported"_s, u"0;1"_s);
    set(u"preferences"_s, u"CommunicationType"_s, u"1"_s);
    frmSettings window;
    window.show();
    window.tabCaption_Click(frmSettings::Communication);
    // The strip that joins the tab to its page lies under the tab.
    const QRect tab = control<QWidget>(&window, u"tabCaption"_s, 3)->geometry();
    const QRect strip = control<QWidget>(&window, u"picTabBottom"_s)->geometry();
    EXPECT_TRUE(tab.left() < strip.left() && strip.right() < tab.right() &&
                strip.top() >= tab.bottom())
        << strip.x() << " in " << tab.x() << "+" << tab.width();
    const auto shown = [&](const char* name, int index) {
        return control<QWidget>(&window, QString::fromLatin1(name), index)->isVisible();
    };
    EXPECT_TRUE(shown("chkCommunication", 0) && shown("chkCommunication", 1));
    EXPECT_TRUE(shown("lblCommunication", 1));
    EXPECT_FALSE(shown("chkCommunication", 2) || shown("lblCommunication", 2));
    EXPECT_FALSE(shown("chkCommunication", 3) || shown("lblCommunication", 3));
    EXPECT_FALSE(shown("txtPhoneFolder", -1) || shown("cmdPhoneFolder", -1));
    EXPECT_TRUE(boxes.boxes.empty()) << "loading asks nothing";

    control<QAbstractButton>(&window, u"chkCommunication"_s, 1)->click(); // the same again
    EXPECT_TRUE(boxes.boxes.empty());
    control<QAbstractButton>(&window, u"chkCommunication"_s, 0)->click();
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].text, gLocalizer()->GetString(u"STR_COM_RESTART"_s));
    EXPECT_EQ(boxes.boxes[0].title, gLocalizer()->GetString(u"STR_COM_SETTINGS"_s));
    EXPECT_EQ(boxes.boxes[0].style, Vb::Information);
}

TEST_F(Settings, ANewLanguageTranslatesEveryOpenWindowAndTheSameOneNothing) {
    showMain();
    frmMessageList list, hidden; // another open window of the program, and a hidden one
    list.show();
    // A piece of the preview window lent to the main window.
    auto* piece = new QWidget(main);
    piece->setProperty("ownerForm", u"frmPreview"_s);
    auto* play = new QPushButton(piece);
    play->setObjectName(u"cmdPlay"_s);
    Probe probe; // a widget that draws its own texts
    probe.show();
    set(u"preferences"_s, u"Skins"_s, u"Skin_Default;Skin_Dark_Blue"_s);
    frmSettings window;
    window.show();
    auto* skins = control<QComboBox>(&window, u"cboSkins"_s);
    auto* previews = control<QComboBox>(&window, u"cboPreviewType"_s);
    EXPECT_EQ(skins->currentText(), u"Default"_s) << "the skin's name, not its section";
    EXPECT_EQ(skins->itemText(1), u"Dark Blue"_s);
    const auto totalTime = [&] { return control<QLabel>(main, u"lblTotalTimeDesc"_s)->text(); };
    ASSERT_EQ(totalTime(), u"Total time:"_s);

    control<QAbstractButton>(&window, u"chkBlinkPhoneConnect"_s)->click();
    window.cmdApply_Click(); // the same language
    EXPECT_EQ(probe.changes, 0);
    EXPECT_EQ(totalTime(), u"Total time:"_s);

    choose(&window, u"ComboLanguage"_s, u"de-de"_s);
    window.cmdApply_Click();
    EXPECT_EQ(gLocalizer()->GetLanguage(), u"de-de"_s);
    EXPECT_EQ(probe.changes, 1);
    EXPECT_EQ(totalTime(), gLocalizer()->GetFormText(u"frmMain_lblTotalTimeDesc__caption"_s));
    EXPECT_NE(totalTime(), u"Total time:"_s);
    EXPECT_EQ(list.windowTitle(), gLocalizer()->GetFormText(u"frmMessageList_caption"_s));
    EXPECT_EQ(hidden.windowTitle(), u"Messages"_s) << "it translates itself when it loads";
    EXPECT_EQ(play->toolTip(), gLocalizer()->GetFormText(u"frmPreview_cmdPlay__text"_s));
    EXPECT_FALSE(play->toolTip().isEmpty());
    EXPECT_EQ(control<QAbstractButton>(&window, u"tabCaption"_s, 0)->text(), u"Allgemein"_s);
    EXPECT_EQ(skins->currentText(), u"Standard"_s);
    EXPECT_EQ(previews->currentText(), u"Standard"_s);
    EXPECT_EQ(skins->currentData().toString(), u"Skin_Default"_s);
    EXPECT_EQ(window.oldLanguage(), u"de-de"_s);
}

// Every value the window writes, under the key and in the form its reader expects; where the
// reader is on view, it is seen to follow.
TEST_F(Settings, EveryPreferenceWrittenIsReadBackByItsReader) {
    set(u"preferences"_s, u"AllowSeconds"_s, u"1"_s);
    set(u"preferences"_s, u"CommunicationTypesSupported"_s, u"0;1;2;3"_s);
    set(u"preferences"_s, u"Skins"_s, u"Skin_Default;Skin_Narrow"_s);
    set(u"preferences"_s, u"Previews"_s, u"Preview_Default;Preview_Small"_s);
    set(u"Skin_Narrow"_s, u"BackPicture"_s, u"\\skin\\default\\preview.bmp"_s);
    showMain();
    struct Row {
        std::function<void(QWidget*)> choice;
        QString section, key, readerDefault, value;
    };
    const auto click = [](const char* name, int index = -1) {
        return [=](QWidget* w) {
            control<QAbstractButton>(w, QString::fromLatin1(name), index)->click();
        };
    };
    const auto pick = [](const char* name, QString value) {
        return [=](QWidget* w) { choose(w, QString::fromLatin1(name), value); };
    };
    const QString prefs = u"preferences"_s;
    const std::vector<Row> rows = {
        {click("chkAskNewSlide"), prefs, u"AskNewSlide"_s, u"1"_s, u"0"_s},
        {click("chkAskDeleteSlide"), prefs, u"AskDeleteSlide"_s, u"1"_s, u"0"_s},
        {click("chkShowSplash"), prefs, u"ShowSplash"_s, u"1"_s, u"0"_s},
        {click("chkPreviewPlayer"), prefs, u"ShowPreview"_s, u"1"_s, u"0"_s},
        {click("chkBlinkPhoneConnect"), prefs, u"BlinkLed"_s, u"1"_s, u"0"_s},
        {click("bTextColor"), prefs, u"BackgroundColor"_s, u"16777215"_s, u"255"_s},
        {click("chkExtendedBrowser"), prefs, u"ExtendedBrowser"_s, u"0"_s, u"1"_s},
        {click("chkMakePdu"), prefs, u"MakePdu"_s, u"0"_s, u"1"_s},
        {pick("cboImageFormat", u"gif"_s), prefs, u"ImageFormat"_s, u"jpg"_s, u"gif"_s},
        {pick("cboMaxMessageSize", u"102400"_s), prefs, u"MaxMessageSize"_s, u"307200"_s,
         u"102400"_s},
        {click("chkTimeFormat", 1), prefs, u"MMSTimeFormat"_s, u"ms"_s, u"s"_s},
        {click("ctlDockState", 2), prefs, u"PreviewMode"_s, u"0"_s, u"2"_s},
        {click("chkCommunication", 3), prefs, u"CommunicationType"_s, u"1"_s, u"3"_s},
        {click("cmdPhoneFolder"), prefs, u"PhoneFolder"_s, QString(), home.path() + u"/phone"_s},
        {pick("cboSkins", u"Skin_Narrow"_s), prefs, u"Skin"_s, QString(), u"Skin_Narrow"_s},
        {pick("cboPreviewType", u"Small"_s), u"Skin_Narrow"_s, u"Preview"_s, u"Preview_Default"_s,
         u"Preview_Small"_s},
        {pick("ComboLanguage", u"de-de"_s), prefs, u"Language"_s, u"en-us"_s, u"de-de"_s}};
    boxes.colours = {0x0000FF}; // red
    boxes.folders = {home.path() + u"/phone/"_s};
    QTimer::singleShot(0, main, [&] {
        frmSettings* window = main->settingsWindow();
        ASSERT_TRUE(window && window->isVisible());
        auto* folder = control<QWidget>(window, u"txtPhoneFolder"_s);
        EXPECT_FALSE(folder->isEnabled()) << "only the folder option names a folder";
        for (const Row& row : rows)
            row.choice(window);
        EXPECT_TRUE(folder->isEnabled());
        EXPECT_EQ(control<QWidget>(window, u"picTextColor"_s)->toolTip(), u"RGB(255,0,0)"_s);
        control<QAbstractButton>(window, u"cmdOk"_s)->click();
    });
    main->ctlMainMenu1_MenuClick(MenuKey::FileSettings);
    EXPECT_EQ(main->settingsWindow(), nullptr) << "the window exists only while it is open";
    for (const Row& row : rows)
        EXPECT_EQ(get(row.section, row.key, row.readerDefault), row.value) << row.key.toStdString();

    EXPECT_EQ(formPicture(main).size(), QSize(256, 488)) << "the new skin is drawn";
    EXPECT_EQ(gLocalizer()->GetLanguage(), u"de-de"_s);
    main->MMSCommunication_Connect(true, 1, u"Phone"_s);
    EXPECT_FALSE(control<ctlBlink>(main, u"ctlBlink1"_s)->Blink());
    const size_t asked = boxes.boxes.size();
    main->ctlMainMenu1_MenuClick(MenuKey::SlideAdd);
    EXPECT_EQ(boxes.boxes.size(), asked) << "adding a slide asks no more";
    EXPECT_EQ(control<ctlPictureEditor>(main, u"ctlPictureEditor1"_s)->backColor(),
              QColor(Qt::red));
}
