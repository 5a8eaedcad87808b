#include "app/TerminationSignals.h"
#include "app/frmMain.h"
#include "browse/frmMessageList.h"
#include "canvas/ctlPictureEditor.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/ctlMainMenu.h"
#include "controls/frmSplash.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "platform/modShared.h"
#include "store/clsMMSManager.h"
#include "store/modRecovery.h"
#include "support/ScriptedResponder.h"

#include "support/TestHome.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <csignal>
#include <gtest/gtest.h>

namespace {

// A main window over a fresh application folder with the shipped data, English texts and
// scripted boxes. The window is shown, so its first activation has run.
class MainWindow : public ::testing::Test {
protected:
    TestHome home{true};
    ScriptedResponder boxes;
    std::unique_ptr<SharedConfig> shared;
    QPointer<frmMain> window;

    void SetUp() override { start(); }
    void TearDown() override { delete window.data(); }

    void start() {
        shared.reset(); // the old one steps back before the new one is in place
        shared = std::make_unique<SharedConfig>();
        shared->setProperties(std::make_unique<clsPropertiesXML>())
            .SetProp(QStringLiteral("preferences"), QStringLiteral("AskNewSlide"),
                     QStringLiteral("0"));
        gProperties()->SetProp(QStringLiteral("preferences"), QStringLiteral("CommunicationType"),
                               QStringLiteral("0")); // no phone: the tests of sending have theirs
        shared->setLocalizer(std::make_unique<clsXMLocalizer>(*gProperties()))
            .SetLanguage(QStringLiteral("en-us"));
        gStarting = true;
        gSplashActive = false;
        window = new frmMain();
        gMainWindow = window;
        window->show();
        ASSERT_FALSE(gStarting) << "the first activation ends start-up";
    }

    bool stored(const QString& name) const {
        return QFileInfo::exists(home.file(QStringLiteral("Messages/") + name) +
                                 QStringLiteral("/message.xml"));
    }
    void storeMessage(const QString& name, int slides) {
        auto message = window->MMSManager()->CreateMsg(name);
        ASSERT_TRUE(message) << "the store refuses " << name.toStdString();
        for (int i = 0; i < slides; ++i)
            message->Slides()->Add()->setText(QStringLiteral("Slide %1").arg(i + 1));
        ASSERT_TRUE(message->SaveMessage());
    }
    // The stored message `name`, opened and then edited in the window.
    void openEdited(const QString& name) {
        storeMessage(name, 1);
        window->OpenMessage(name, false);
        edit(QStringLiteral("Edited"));
    }
    void edit(const QString& text) {
        window->findChild<QPlainTextEdit*>(QStringLiteral("txtMessage"))->setPlainText(text);
    }
    QString shownText() const {
        return window->findChild<QPlainTextEdit*>(QStringLiteral("txtMessage"))->toPlainText();
    }
    QString label(const char* name) const {
        return window->findChild<QLabel*>(QString::fromLatin1(name))->text();
    }
    static QString text(const char* key) {
        return gLocalizer()->GetString(QString::fromLatin1(key));
    }
};

// Cancels every dialog that comes up while it lives, noting its name and, for the message
// list, its mode.
struct DialogCanceller {
    QStringList seen;
    std::vector<int> modes;
    QList<QDialog*> handled;
    QTimer timer;
    DialogCanceller() {
        QObject::connect(&timer, &QTimer::timeout, [this] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (dialog && !handled.contains(dialog)) { // a dialog may take a while to go
                handled << dialog;
                seen << dialog->objectName();
                if (auto* list = qobject_cast<frmMessageList*>(dialog))
                    modes.push_back(list->mode());
                dialog->reject();
            }
        });
        timer.start(10);
    }
};

// A name longer than any file system allows: a save under it cannot succeed.
const QString kUnsavable(300, QLatin1Char('n'));

} // namespace

TEST_F(MainWindow, StartsWithAnUntitledMessageOfOneSlideAndKeepsItsSize) {
    EXPECT_EQ(window->message()->name(), QStringLiteral("Untitled"));
    EXPECT_EQ(window->message()->Slides()->Count(), 1);
    EXPECT_FALSE(window->changed());
    EXPECT_EQ(label("lblMessageTitle"), QStringLiteral("Untitled"));
    EXPECT_EQ(label("lblMaxTime"), QStringLiteral("3.0s"));
    EXPECT_TRUE(window->windowFlags() & Qt::FramelessWindowHint);
    window->showMaximized();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return !(window->windowState() & Qt::WindowMaximized); }, 2000));
    EXPECT_EQ(window->size(), QSize(886, 488)); // 13290 x 7320 twips: the preview opens docked
    {
        DialogCanceller dialogs;
        window->ctlMainMenu1_MenuClick(MenuKey::HelpAbout);
        EXPECT_EQ(dialogs.seen, QStringList{QStringLiteral("frmAbout")});
    }
}

TEST_F(MainWindow, CloseBoxAsksLikeExitAndGoesAfterTheTimerOnceStartUpHasEnded) {
    boxes.boxAnswers = {Vb::No};
    window->close();
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].style, Vb::YesNo | Vb::Question);
    EXPECT_EQ(boxes.boxes[0].text, text("ASK_EXIT"));
    EXPECT_TRUE(window->isVisible()) << "No stays in the program";

    gProperties()->SetProp(QStringLiteral("preferences"), QStringLiteral("SelectedTool"),
                           QStringLiteral("3"));
    gStarting = true;
    boxes.boxAnswers = {Vb::Yes};
    window->close();
    EXPECT_EQ(window->TimerExitWait()->interval(), 100);
    QSignalSpy ticks(window->TimerExitWait(), &QTimer::timeout);
    while (ticks.size() < 3)
        ASSERT_TRUE(ticks.wait(2000));
    EXPECT_TRUE(window->isVisible()) << "the exit waits while start-up runs";
    gStarting = false;
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }, 2000));
    EXPECT_EQ(gProperties(), nullptr) << "the unload released the preferences";
    EXPECT_TRUE(
        home.read(QStringLiteral("tessaly.xml")).contains("<KEY name=\"SelectedTool\">3</KEY>"));
}

TEST_F(MainWindow, ExitWithChangesFollowsTheAnswer) {
    edit(QStringLiteral("Hello"));
    boxes.boxAnswers = {Vb::Yes};
    DialogCanceller dialogs;
    EXPECT_FALSE(window->RequestExit()) << "Yes, then a cancelled Save As, stays";
    EXPECT_EQ(dialogs.modes, std::vector<int>{frmMessageList::SaveAs});
    EXPECT_EQ(boxes.boxes.at(0).style, Vb::YesNoCancel | Vb::Question);

    openEdited(QStringLiteral("Kept"));
    const QByteArray before = home.read(QStringLiteral("Messages/Kept/message.xml"));
    boxes.boxAnswers = {Vb::Cancel};
    EXPECT_FALSE(window->RequestExit());
    window->message()->setName(kUnsavable);
    boxes.boxAnswers = {Vb::Yes};
    EXPECT_FALSE(window->RequestExit()) << "a failed save stays";
    EXPECT_EQ(boxes.boxes.back().text, text("STR_SAVE_MSG_ERROR"));
    EXPECT_EQ(boxes.boxes.back().style, Vb::Critical);
    EXPECT_TRUE(window->changed());
    EXPECT_FALSE(window->TimerExitWait()->isActive());
    boxes.boxAnswers = {Vb::No};
    EXPECT_TRUE(window->RequestExit());
    EXPECT_EQ(home.read(QStringLiteral("Messages/Kept/message.xml")), before) << "No saves nothing";

    window->message()->setName(QStringLiteral("Kept"));
    boxes.boxAnswers = {Vb::Yes};
    EXPECT_TRUE(window->RequestExit());
    EXPECT_EQ(window->MMSManager()->OpenMsg(QStringLiteral("Kept"))->Slides()->Item(1)->Text(),
              QStringLiteral("Edited"));
}

TEST_F(MainWindow, NewAndOpenStopWhenTheSaveIsCancelledOrFails) {
    for (const bool open : {false, true}) {
        for (const bool untitled : {true, false}) {
            SCOPED_TRACE(open ? "open" : "new");
            SCOPED_TRACE(untitled ? "untitled, Save As cancelled" : "named, save failed");
            window->NewMessage(gUntitledName);
            if (!untitled)
                window->message()->setName(kUnsavable);
            edit(QStringLiteral("Work"));
            const clsMessage* before = window->message();
            boxes.boxAnswers = {Vb::Yes};
            DialogCanceller dialogs;
            window->ctlMainMenu1_MenuClick(open ? MenuKey::FileOpen : MenuKey::FileNew);
            EXPECT_EQ(window->message(), before);
            EXPECT_TRUE(window->changed());
            EXPECT_EQ(shownText(), QStringLiteral("Work"));
            EXPECT_EQ(boxes.boxes.back().text,
                      text(untitled ? "STR_SAVE_MSG" : "STR_SAVE_MSG_ERROR"));
            EXPECT_EQ(dialogs.modes,
                      untitled ? std::vector<int>{frmMessageList::SaveAs} : std::vector<int>{})
                << "no open dialog follows";
            boxes.boxes.clear();
            window->setChanged(false);
        }
    }
}

TEST_F(MainWindow, NewAsksToSaveAChangedMessageAndRemovesAStaleUntitledFolder) {
    storeMessage(gUntitledName, 2);
    openEdited(QStringLiteral("Kept"));
    boxes.boxAnswers = {Vb::Yes};
    window->ctlMainMenu1_MenuClick(MenuKey::FileNew);
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].text, text("STR_SAVE_MSG"));
    EXPECT_EQ(window->MMSManager()->OpenMsg(QStringLiteral("Kept"))->Slides()->Item(1)->Text(),
              QStringLiteral("Edited"));
    EXPECT_EQ(window->message()->name(), gUntitledName);
    EXPECT_EQ(window->message()->Slides()->Count(), 1);
    EXPECT_FALSE(stored(gUntitledName));
    EXPECT_FALSE(window->changed());
}

TEST_F(MainWindow, SaveAsStoresUnderTheNewNameAndRefusesUntitledNames) {
    edit(QStringLiteral("Hi"));
    {
        DialogCanceller dialogs; // Save of the untitled message asks for a name
        window->ctlMainMenu1_MenuClick(MenuKey::FileSave);
        EXPECT_EQ(dialogs.modes, std::vector<int>{frmMessageList::SaveAs});
    }
    for (const QString& name :
         {gUntitledName, QStringLiteral("My ") + gUntitledName + QStringLiteral("2")}) {
        window->mFrmOpen_SelectedMessage(frmMessageList::SaveAs, name);
        ASSERT_FALSE(boxes.boxes.empty());
        EXPECT_EQ(boxes.boxes.back().text,
                  QStringLiteral("A message cannot be saved under a name that contains "
                                 "\"Untitled\". Please choose another name."));
        EXPECT_FALSE(stored(name));
    }
    EXPECT_TRUE(window->changed());
    // The empty name is refused as well.
    window->mFrmOpen_SelectedMessage(frmMessageList::SaveAs, QStringLiteral("   "));
    EXPECT_EQ(boxes.boxes.back().text, text("STR_ENTER_NAME"));
    EXPECT_EQ(boxes.boxes.back().style, Vb::Information);
    EXPECT_EQ(boxes.boxes.size(), 3u);

    window->mFrmOpen_SelectedMessage(frmMessageList::SaveAs, QStringLiteral("  Greeting  "));
    EXPECT_TRUE(stored(QStringLiteral("Greeting")));
    EXPECT_EQ(label("lblMessageTitle"), QStringLiteral("Greeting"));
    EXPECT_FALSE(window->changed());
}

TEST_F(MainWindow, DamagedMessagesAreRefusedAndTheWindowGoesOn) {
    storeMessage(QStringLiteral("Good"), 1);
    const QByteArray good = home.read(QStringLiteral("Messages/Good/message.xml"));
    ASSERT_TRUE(good.contains("dur=\"3000\"") && good.contains("index=\"1\""));
    const QByteArray damaged[] = {
        QByteArray(good).replace("dur=\"3000\"", "dur=\"abc\""),
        QByteArray(good).replace("index=\"1\"", "index=\"x\""),
        QByteArray(good).replace("<ROOT", "<TOOR").replace("</ROOT", "</TOOR")};
    edit(QStringLiteral("Work"));
    const clsMessage* before = window->message();
    for (const QByteArray& xml : damaged) {
        home.write(QStringLiteral("Messages/Bad/message.xml"), xml);
        window->mFrmOpen_SelectedMessage(frmMessageList::Open, QStringLiteral("Bad"));
        ASSERT_FALSE(boxes.boxes.empty()) << xml.toStdString();
        EXPECT_EQ(boxes.boxes.back().text, text("STR_OPEN_MSG_ERROR") + QStringLiteral("\nBad"));
        EXPECT_EQ(window->message(), before);
        EXPECT_TRUE(window->changed());
        boxes.boxes.clear();
    }
    window->ctlMainMenu1_MenuClick(MenuKey::SlideAdd);
    EXPECT_EQ(label("lblMaxTime"), QStringLiteral("6.0s")) << "the window is usable";
    // What is not XML at all opens as an empty message, which gets one slide.
    home.write(QStringLiteral("Messages/Bad/message.xml"), "not xml");
    window->OpenMessage(QStringLiteral("Bad"), false);
    EXPECT_TRUE(boxes.boxes.empty());
    EXPECT_EQ(window->message()->Slides()->Count(), 1);
    EXPECT_NE(window->slide(), nullptr);
    EXPECT_FALSE(window->changed());
}

TEST_F(MainWindow, OpenLoadsTheFirstSlideIntoTheWindow) {
    storeMessage(QStringLiteral("Trip"), 2);
    window->OpenMessage(QStringLiteral("Trip"), false);
    EXPECT_EQ(shownText(), QStringLiteral("Slide 1"));
    EXPECT_EQ(label("lblMaxTime"), QStringLiteral("6.0s"));
    EXPECT_EQ(label("lblMessageTitle"), QStringLiteral("Trip"));
    EXPECT_EQ(label("lblSlideNo"), text("MNU_SLIDE_DELETE_SLIDE") + QStringLiteral(" 1"));
}

TEST_F(MainWindow, DeleteListSparesTheOpenMessageAndKeepsNamesWhole) {
    for (const char* name : {"A", "Open", "B", "C", "D"})
        storeMessage(QString::fromLatin1(name), 1);
    // A folder named by hand with a "," is one name the store refuses, never two.
    ASSERT_TRUE(QDir().mkpath(home.file(QStringLiteral("Messages/C,D"))));
    window->OpenMessage(QStringLiteral("Open"), false);
    window->DeleteMessages({QStringLiteral("A"), QStringLiteral("Open"), QStringLiteral("C,D")});
    EXPECT_FALSE(stored(QStringLiteral("A")));
    EXPECT_TRUE(QFileInfo::exists(home.file(QStringLiteral("Messages/C,D"))));
    for (const char* kept : {"Open", "B", "C", "D"})
        EXPECT_TRUE(stored(QString::fromLatin1(kept))) << kept;
    ASSERT_EQ(boxes.boxes.size(), 2u);
    EXPECT_EQ(boxes.boxes[0].style, Vb::Exclamation);
    EXPECT_EQ(boxes.boxes[0].text, text("STR_CANNOT_DELMSG") + QStringLiteral("\n\nOpen"));
    EXPECT_TRUE(boxes.boxes[1].text.startsWith(text("STR_ERROR_DEL_MSG")));
}

TEST_F(MainWindow, TemplateItemsDoNothing) {
    gProperties()->SetProp(QStringLiteral("preferences"), QStringLiteral("TemplateLoadSave"),
                           QStringLiteral("1"));
    window->TranslateForm();
    window->setChanged(true);
    auto* before = window->message();
    for (int key : {MenuKey::FileSaveAsTemplate, MenuKey::FileSaveAsSis, MenuKey::FileOpenTemplate})
        window->ctlMainMenu1_MenuClick(key);
    EXPECT_TRUE(boxes.boxes.empty() && window->changed() && window->message() == before);
    EXPECT_TRUE(QDir(home.file(QStringLiteral("Messages")))
                    .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
                    .isEmpty());
}

TEST_F(MainWindow, MissingSkinPictureIsReportedAndTheWindowGoesOn) {
    gProperties()->SetProp(QStringLiteral("Skin_Default"), QStringLiteral("BackPicture"),
                           QStringLiteral("\\skin\\none.bmp"));
    window->ApplySettings();
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].title, QStringLiteral("InitSkin"));
    EXPECT_EQ(boxes.boxes[0].text, QStringLiteral("The background bitmap could not be loaded!"));
    EXPECT_EQ(boxes.boxes[0].style, Vb::Exclamation);
    EXPECT_EQ(window->size(), QSize(886, 488));
}

TEST_F(MainWindow, LanguageChangeKeepsTheFlagAndTheLabels) {
    window->setChanged(true);
    window->MMSCommunication_Connect(true, 1, QStringLiteral("Nokia 7650X"));
    EXPECT_EQ(label("lblPhoneConnected"), QStringLiteral("Nokia 7...")) << "past ten characters";
    const QString total = label("lblMaxTime");
    gLocalizer()->SetLanguage(QStringLiteral("de-de"));
    window->TranslateForm();
    EXPECT_TRUE(window->changed());
    EXPECT_EQ(label("lblMaxTime"), total);
    EXPECT_EQ(label("lblPhoneConnected"), QStringLiteral("Nokia 7..."));
    EXPECT_EQ(label("lblTotalTimeDesc"),
              gLocalizer()->GetFormText(QStringLiteral("frmMain_lblTotalTimeDesc__caption")));
    EXPECT_NE(label("lblTotalTimeDesc"), QStringLiteral("Total time:"));
    // The empty text box follows the language of its prompt, which is never stored.
    EXPECT_EQ(shownText(), text("STR_CLICK_TO_ADD"));
    window->StoreSlideFromUI();
    EXPECT_EQ(window->message()->Slides()->Item(1)->Text(), QString());
    window->MMSCommunication_Connect(false, 0, QString());
    EXPECT_EQ(label("lblPhoneConnected"), QString());
}

TEST_F(MainWindow, AddingSlidesMarksTheMessageAndSumsTheTime) {
    window->ctlMainMenu1_MenuClick(MenuKey::SlideAdd);
    window->ctlMainMenu1_MenuClick(MenuKey::SlideAdd);
    EXPECT_EQ(window->message()->Slides()->Count(), 3);
    EXPECT_EQ(window->slide()->Index(), 3);
    EXPECT_TRUE(window->changed());
    EXPECT_EQ(label("lblMaxTime"), QStringLiteral("9.0s"));

    gProperties()->SetProp(QStringLiteral("preferences"), QStringLiteral("AskNewSlide"),
                           QStringLiteral("1"));
    boxes.boxAnswers = {Vb::No};
    window->ctlMainMenu1_MenuClick(MenuKey::SlideAdd);
    EXPECT_EQ(window->message()->Slides()->Count(), 3) << "No adds nothing";
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].title, text("STR_APPEND_SLIDE"));
}

// The recovery copy: written every minute while the message has changes, and at an end by the
// system, which saves the preferences without asking; the next start offers it once.
TEST_F(MainWindow, EndedBySystemKeepsTheChangedMessageForTheNextStart) {
    TerminationSignals termination;
    delete window.data();
    start(); // a window that hears the signals
    EXPECT_EQ(window->TimerRecovery()->interval(), 60 * 1000);
    edit(QStringLiteral("Unsaved"));
    window->findChild<ctlPictureEditor*>(QStringLiteral("ctlPictureEditor1"))
        ->SetBackgroundColor(0xFF, false); // red
    gProperties()->SetProp(QStringLiteral("preferences"), QStringLiteral("SelectedTool"),
                           QStringLiteral("2"));
    boxes.boxAnswers = {Vb::Cancel}; // a question would keep the program running
    // A splash in its timed life does not hold the end back: it is cut short.
    gSplashActive = true;
    frmSplash* splash = frmSplash::Load();
    splash->show();
    int splashTicks = 0;
    QObject::connect(splash->TimerSplash(), &QTimer::timeout, [&] { ++splashTicks; });
    std::raise(SIGTERM);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }, 5000));
    EXPECT_FALSE(gSplashActive);
    EXPECT_LT(splashTicks, frmSplash::kLastTick);
    EXPECT_TRUE(boxes.boxes.empty()) << "the end by the system asks nothing";
    EXPECT_TRUE(
        home.read(QStringLiteral("tessaly.xml")).contains("<KEY name=\"SelectedTool\">2</KEY>"));

    boxes.boxAnswers = {Vb::Yes};
    start();
    EXPECT_TRUE(boxes.boxes.empty()) << "asked once the window is on the screen";
    ASSERT_TRUE(QTest::qWaitFor([&] { return boxes.boxes.size() == 1u; }));
    EXPECT_EQ(boxes.boxes[0].text,
              QStringLiteral("Tessaly was ended before the changes to the message "
                             "\"Untitled\" were saved.\r\nDo you want to restore them?"));
    EXPECT_FALSE(hasRecoveryCopy()) << "offered once";
    EXPECT_TRUE(window->changed());
    EXPECT_EQ(shownText(), QStringLiteral("Unsaved"));
    EXPECT_EQ(window->slide()->Image().pixelColor(5, 5), QColor(Qt::red));

    // Ended again while the Save As dialog is open: the dialog goes and the changes are kept.
    QTimer::singleShot(50, [] { std::raise(SIGHUP); });
    window->ctlMainMenu1_MenuClick(MenuKey::FileSaveAs);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }, 5000));
    boxes.boxAnswers = {Vb::No};
    start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return boxes.boxes.size() == 2u; }));
    EXPECT_FALSE(hasRecoveryCopy());
    EXPECT_FALSE(window->changed());
    EXPECT_EQ(window->message()->Slides()->Item(1)->Text(), QString());
}

TEST_F(MainWindow, RecoveryCopyIsWrittenWhileChangedAndGoesWhenSavedOrAtAnExit) {
    window->TimerRecovery()->setInterval(20);
    openEdited(QStringLiteral("Kept"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return hasRecoveryCopy(); }, 2000));
    EXPECT_EQ(recoveryCopyName(), QStringLiteral("Kept"));
    window->ctlMainMenu1_MenuClick(MenuKey::FileSave);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !hasRecoveryCopy(); }, 2000));
    edit(QStringLiteral("Again"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return hasRecoveryCopy(); }, 2000));
    boxes.boxAnswers = {Vb::No}; // leave without saving: the user's choice
    window->RequestExit();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }, 2000));
    EXPECT_FALSE(hasRecoveryCopy());
}
