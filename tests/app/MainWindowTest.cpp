#include "app/frmMain.h"
#include "browse/frmMessageList.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/frmAbout.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "platform/modShared.h"
#include "store/clsMMSManager.h"
#include "support/ScriptedResponder.h"

#include "support/TestHome.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

namespace {

// A main window over a fresh application folder with the shipped data, English texts and
// scripted boxes. The window is shown, so its first activation has run.
class MainWindow : public ::testing::Test {
protected:
    TestHome home{true};
    ScriptedResponder boxes;
    SharedConfig shared;
    QPointer<frmMain> window;

    void SetUp() override {
        shared.setProperties(std::make_unique<clsPropertiesXML>())
            .SetProp(QStringLiteral("preferences"), QStringLiteral("AskNewSlide"),
                     QStringLiteral("0"));
        shared.setLocalizer(std::make_unique<clsXMLocalizer>(*gProperties()))
            .SetLanguage(QStringLiteral("en-us"));
        gStarting = true;
        gSplashActive = false;
        window = new frmMain();
        gMainWindow = window;
        window->show();
        ASSERT_FALSE(gStarting) << "the first activation ends start-up";
    }

    void TearDown() override { delete window.data(); }

    QString messages() const { return home.file(QStringLiteral("Messages")); }
    bool stored(const QString& name) const {
        return QFileInfo::exists(messages() + QLatin1Char('/') + name +
                                 QStringLiteral("/message.xml"));
    }
    void storeMessage(const QString& name, int slides) {
        auto message = window->MMSManager()->CreateMsg(name);
        for (int i = 0; i < slides; ++i)
            message->Slides()->Add();
        ASSERT_TRUE(message->SaveMessage());
    }
    QLabel* label(const char* name) const {
        return window->findChild<QLabel*>(QString::fromLatin1(name));
    }

    // Runs `action` against the next modal dialog once it is up.
    static void whenModal(std::function<void(QWidget*)> action) {
        QTimer::singleShot(0, [action] {
            QTRY_VERIFY_WITH_TIMEOUT(QApplication::activeModalWidget() != nullptr, 5000);
            action(QApplication::activeModalWidget());
        });
    }
};

const QString untitled() {
    return gUntitledName;
}

} // namespace

TEST_F(MainWindow, StartsWithAnUntitledMessageOfOneSlide) {
    ASSERT_NE(window->message(), nullptr);
    EXPECT_EQ(window->message()->name(), QStringLiteral("Untitled"));
    EXPECT_EQ(window->message()->Slides()->Count(), 1);
    EXPECT_FALSE(window->changed());
    EXPECT_EQ(label("lblMessageTitle")->text(), QStringLiteral("Untitled"));
    EXPECT_EQ(label("lblMaxTime")->text(), QStringLiteral("3.0s"));
    // Fixed size of 9660 x 7320 twips, no title bar.
    EXPECT_EQ(window->size(), QSize(644, 488));
    EXPECT_TRUE(window->windowFlags() & Qt::FramelessWindowHint);
}

TEST_F(MainWindow, CloseBoxAsksLikeExitAndGoesAfterTheTimer) {
    boxes.boxAnswers = {Vb::No};
    window->close();
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].style, Vb::YesNo | Vb::Question);
    EXPECT_EQ(boxes.boxes[0].text, gLocalizer()->GetString(QStringLiteral("ASK_EXIT")));
    EXPECT_TRUE(window->isVisible()) << "No stays in the program";

    gProperties()->SetProp(QStringLiteral("preferences"), QStringLiteral("SelectedTool"),
                           QStringLiteral("3"));
    boxes.boxAnswers = {Vb::Yes};
    window->close();
    EXPECT_TRUE(window->TimerExitWait()->isActive());
    EXPECT_TRUE(window->isVisible()) << "the window waits for the timer";
    EXPECT_EQ(window->TimerExitWait()->interval(), 100);
    QTRY_VERIFY_WITH_TIMEOUT(window.isNull(), 2000);
    EXPECT_EQ(gProperties(), nullptr) << "the unload released the preferences";
    EXPECT_TRUE(
        home.read(QStringLiteral("tessaly.xml")).contains("<KEY name=\"SelectedTool\">3</KEY>"))
        << "and saved them";
}

TEST_F(MainWindow, ExitWaitsWhileStartUpRuns) {
    gStarting = true;
    boxes.boxAnswers = {Vb::Yes};
    EXPECT_TRUE(window->RequestExit());
    QTest::qWait(350);
    EXPECT_FALSE(window.isNull());
    gStarting = false;
    QTRY_VERIFY_WITH_TIMEOUT(window.isNull(), 2000);
}

TEST_F(MainWindow, ExitWithChangesAndCancelledSaveAsStays) {
    window->findChild<QPlainTextEdit*>(QStringLiteral("txtMessage"))
        ->setPlainText(QStringLiteral("Hello"));
    ASSERT_TRUE(window->changed());
    boxes.boxAnswers = {Vb::Yes};
    whenModal([](QWidget* dialog) { static_cast<frmMessageList*>(dialog)->reject(); });
    EXPECT_FALSE(window->RequestExit());
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].style, Vb::YesNoCancel | Vb::Question);
    EXPECT_FALSE(window->TimerExitWait()->isActive());
    EXPECT_TRUE(window->changed());
    EXPECT_EQ(window->message()->name(), untitled());
    window->StoreSlideFromUI();
    EXPECT_EQ(window->message()->Slides()->Item(1)->Text(), QStringLiteral("Hello"));
}

TEST_F(MainWindow, ExitWithChangesCancelStaysAndNoLeavesTheStoreAlone) {
    storeMessage(QStringLiteral("Kept"), 1);
    window->OpenMessage(QStringLiteral("Kept"), false);
    const QByteArray before = home.read(QStringLiteral("Messages/Kept/message.xml"));
    window->findChild<QPlainTextEdit*>(QStringLiteral("txtMessage"))
        ->setPlainText(QStringLiteral("Edited"));
    boxes.boxAnswers = {Vb::Cancel};
    EXPECT_FALSE(window->RequestExit());
    EXPECT_FALSE(window->TimerExitWait()->isActive());
    boxes.boxAnswers = {Vb::No};
    EXPECT_TRUE(window->RequestExit());
    EXPECT_EQ(home.read(QStringLiteral("Messages/Kept/message.xml")), before)
        << "No leaves without saving";
}

TEST_F(MainWindow, ExitWithChangesYesSavesANamedMessage) {
    storeMessage(QStringLiteral("Kept"), 1);
    window->OpenMessage(QStringLiteral("Kept"), false);
    window->findChild<QPlainTextEdit*>(QStringLiteral("txtMessage"))
        ->setPlainText(QStringLiteral("Edited"));
    boxes.boxAnswers = {Vb::Yes};
    EXPECT_TRUE(window->RequestExit());
    EXPECT_TRUE(window->TimerExitWait()->isActive());
    EXPECT_EQ(window->MMSManager()->OpenMsg(QStringLiteral("Kept"))->Slides()->Item(1)->Text(),
              QStringLiteral("Edited"));
}

TEST_F(MainWindow, ExitStaysWhenTheSaveFails) {
    // A name longer than any file system allows: the save cannot succeed.
    window->message()->setName(QString(300, QLatin1Char('n')));
    window->setChanged(true);
    boxes.boxAnswers = {Vb::Yes};
    EXPECT_FALSE(window->RequestExit());
    EXPECT_FALSE(window->TimerExitWait()->isActive());
    ASSERT_EQ(boxes.boxes.size(), 2u);
    EXPECT_EQ(boxes.boxes[1].text, gLocalizer()->GetString(QStringLiteral("STR_SAVE_MSG_ERROR")));
    EXPECT_EQ(boxes.boxes[1].style, Vb::Critical);
    EXPECT_TRUE(window->changed());
}

TEST_F(MainWindow, SaveOfTheUntitledMessageAsksForAName) {
    int mode = 0;
    whenModal([&mode](QWidget* dialog) {
        mode = static_cast<frmMessageList*>(dialog)->mode();
        static_cast<frmMessageList*>(dialog)->reject();
    });
    window->ctlMainMenu1_MenuClick(3);
    EXPECT_EQ(mode, frmMessageList::SaveAs);
    EXPECT_FALSE(stored(untitled()));
}

TEST_F(MainWindow, MissingSkinPictureIsReportedAndTheWindowGoesOn) {
    gProperties()->SetProp(QStringLiteral("Skin_Default"), QStringLiteral("BackPicture"),
                           QStringLiteral("\\skin\\none.bmp"));
    window->ApplySettings();
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].title, QStringLiteral("InitSkin"));
    EXPECT_EQ(boxes.boxes[0].text, QStringLiteral("The background bitmap could not be loaded!"));
    EXPECT_EQ(boxes.boxes[0].style, Vb::Exclamation);
    EXPECT_EQ(window->size(), QSize(644, 488));
}

TEST_F(MainWindow, TemplateItemsDoNothing) {
    gProperties()->SetProp(QStringLiteral("preferences"), QStringLiteral("TemplateLoadSave"),
                           QStringLiteral("1"));
    window->TranslateForm();
    window->setChanged(true);
    auto* before = window->message();
    for (int key : {7, 8, 9})
        window->ctlMainMenu1_MenuClick(key);
    EXPECT_TRUE(boxes.boxes.empty());
    EXPECT_EQ(window->message(), before);
    EXPECT_TRUE(window->changed());
    EXPECT_TRUE(QDir(messages()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).isEmpty());
}

TEST_F(MainWindow, MessageWithoutSlidesOpensWithOne) {
    storeMessage(QStringLiteral("Empty"), 0);
    window->setChanged(true);
    window->OpenMessage(QStringLiteral("Empty"), false);
    ASSERT_NE(window->message(), nullptr);
    EXPECT_EQ(window->message()->name(), QStringLiteral("Empty"));
    EXPECT_EQ(window->message()->Slides()->Count(), 1);
    EXPECT_NE(window->slide(), nullptr);
    EXPECT_FALSE(window->changed());
}

TEST_F(MainWindow, OpenLoadsTheFirstSlideIntoTheWindow) {
    {
        auto message = window->MMSManager()->CreateMsg(QStringLiteral("Trip"));
        auto first = message->Slides()->Add();
        first->setText(QStringLiteral("Day one"));
        first->setDuration(4500);
        message->Slides()->Add()->setDuration(1500);
        ASSERT_TRUE(message->SaveMessage());
    }
    window->OpenMessage(QStringLiteral("Trip"), false);
    EXPECT_EQ(window->findChild<QPlainTextEdit*>(QStringLiteral("txtMessage"))->toPlainText(),
              QStringLiteral("Day one"));
    EXPECT_EQ(label("lblMaxTime")->text(), QStringLiteral("6.0s"));
    EXPECT_EQ(label("lblMessageTitle")->text(), QStringLiteral("Trip"));
    EXPECT_EQ(label("lblSlideNo")->text(),
              gLocalizer()->GetString(QStringLiteral("MNU_SLIDE_DELETE_SLIDE")) +
                  QStringLiteral(" 1"));
}

TEST_F(MainWindow, NewRemovesAStaleUntitledFolder) {
    storeMessage(untitled(), 2);
    ASSERT_TRUE(stored(untitled()));
    window->ctlMainMenu1_MenuClick(1);
    EXPECT_FALSE(stored(untitled()));
    EXPECT_EQ(window->message()->Slides()->Count(), 1);
    EXPECT_FALSE(window->changed());
}

TEST_F(MainWindow, NewAsksToSaveAChangedMessage) {
    storeMessage(QStringLiteral("Kept"), 1);
    window->OpenMessage(QStringLiteral("Kept"), false);
    window->findChild<QPlainTextEdit*>(QStringLiteral("txtMessage"))
        ->setPlainText(QStringLiteral("Edited"));
    boxes.boxAnswers = {Vb::Yes};
    window->ctlMainMenu1_MenuClick(1);
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].text, gLocalizer()->GetString(QStringLiteral("STR_SAVE_MSG")));
    auto reopened = window->MMSManager()->OpenMsg(QStringLiteral("Kept"));
    EXPECT_EQ(reopened->Slides()->Item(1)->Text(), QStringLiteral("Edited"));
    EXPECT_EQ(window->message()->name(), untitled());
}

TEST_F(MainWindow, SaveAsStoresUnderTheNewNameAndClearsTheFlag) {
    window->findChild<QPlainTextEdit*>(QStringLiteral("txtMessage"))
        ->setPlainText(QStringLiteral("Hi"));
    window->mFrmOpen_SelectedMessage(frmMessageList::SaveAs, QStringLiteral("  Greeting  "));
    EXPECT_TRUE(stored(QStringLiteral("Greeting")));
    EXPECT_EQ(window->message()->name(), QStringLiteral("Greeting"));
    EXPECT_EQ(label("lblMessageTitle")->text(), QStringLiteral("Greeting"));
    EXPECT_FALSE(window->changed());
}

TEST_F(MainWindow, EmptyNameFromTheDialogIsRefused) {
    window->mFrmOpen_SelectedMessage(frmMessageList::SaveAs, QStringLiteral("   "));
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].text, gLocalizer()->GetString(QStringLiteral("STR_ENTER_NAME")));
    EXPECT_EQ(boxes.boxes[0].style, Vb::Information);
    EXPECT_EQ(window->message()->name(), untitled());
}

TEST_F(MainWindow, LanguageChangeKeepsTheFlagAndTheLabels) {
    window->setChanged(true);
    window->MMSCommunication_Connect(true, 1, QStringLiteral("Nokia"));
    const QString total = label("lblMaxTime")->text();
    gLocalizer()->SetLanguage(QStringLiteral("de-de"));
    window->TranslateForm();
    EXPECT_TRUE(window->changed());
    EXPECT_EQ(label("lblMaxTime")->text(), total);
    EXPECT_EQ(label("lblPhoneConnected")->text(), QStringLiteral("Nokia"));
    // Captions are German now.
    EXPECT_EQ(label("lblTotalTimeDesc")->text(),
              gLocalizer()->GetFormText(QStringLiteral("frmMain_lblTotalTimeDesc__caption")));
    EXPECT_NE(label("lblTotalTimeDesc")->text(), QStringLiteral("Total time:"));
    // The empty text box follows the language of its prompt.
    EXPECT_EQ(window->findChild<QPlainTextEdit*>(QStringLiteral("txtMessage"))->toPlainText(),
              gLocalizer()->GetString(QStringLiteral("STR_CLICK_TO_ADD")));
    window->StoreSlideFromUI();
    EXPECT_EQ(window->message()->Slides()->Item(1)->Text(), QString())
        << "the prompt is never stored";
}

TEST_F(MainWindow, DeleteListSparesTheOpenMessage) {
    storeMessage(QStringLiteral("A"), 1);
    storeMessage(QStringLiteral("Open"), 1);
    storeMessage(QStringLiteral("B"), 1);
    window->OpenMessage(QStringLiteral("Open"), false);
    window->DeleteMessages(QStringLiteral("A,Open,B"));
    EXPECT_FALSE(stored(QStringLiteral("A")));
    EXPECT_FALSE(stored(QStringLiteral("B")));
    EXPECT_TRUE(stored(QStringLiteral("Open")));
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].style, Vb::Exclamation);
    EXPECT_EQ(boxes.boxes[0].text, gLocalizer()->GetString(QStringLiteral("STR_CANNOT_DELMSG")) +
                                       QStringLiteral("\n\nOpen"));
}

TEST_F(MainWindow, PhoneNamesAreShortenedPastTenCharacters) {
    window->MMSCommunication_Connect(true, 2, QStringLiteral("Nokia 7650X"));
    EXPECT_EQ(label("lblPhoneConnected")->text(), QStringLiteral("Nokia 7..."));
    EXPECT_EQ(label("lblPhoneConnected")->toolTip(), QStringLiteral("Nokia 7650X"));
    window->MMSCommunication_Connect(true, 1, QStringLiteral("Nokia 7650"));
    EXPECT_EQ(label("lblPhoneConnected")->text(), QStringLiteral("Nokia 7650"));
    window->MMSCommunication_Connect(false, 0, QString());
    EXPECT_TRUE(label("lblPhoneConnected")->text().isEmpty());
    EXPECT_TRUE(label("lblPhoneConnected")->toolTip().isEmpty());
}

TEST_F(MainWindow, AddingSlidesMarksTheMessageAndSumsTheTime) {
    window->ctlMainMenu1_MenuClick(11);
    window->ctlMainMenu1_MenuClick(11);
    EXPECT_EQ(window->message()->Slides()->Count(), 3);
    EXPECT_EQ(window->slide()->Index(), 3);
    EXPECT_TRUE(window->changed());
    EXPECT_EQ(label("lblMaxTime")->text(), QStringLiteral("9.0s"));

    gProperties()->SetProp(QStringLiteral("preferences"), QStringLiteral("AskNewSlide"),
                           QStringLiteral("1"));
    boxes.boxAnswers = {Vb::No};
    window->ctlMainMenu1_MenuClick(11);
    EXPECT_EQ(window->message()->Slides()->Count(), 3) << "No adds nothing";
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].title, gLocalizer()->GetString(QStringLiteral("STR_APPEND_SLIDE")));
}

TEST_F(MainWindow, MaximisingGoesBackToTheFixedSize) {
    window->showMaximized();
    QTRY_VERIFY_WITH_TIMEOUT(!(window->windowState() & Qt::WindowMaximized), 2000);
    EXPECT_EQ(window->size(), QSize(644, 488));
}

TEST_F(MainWindow, AboutShowsTheProductAndItsVersion) {
    QString title, version;
    whenModal([&](QWidget* dialog) {
        auto* about = qobject_cast<frmAbout*>(dialog);
        ASSERT_NE(about, nullptr);
        title = about->lblTitle()->text();
        version = about->lblVersion()->text();
        about->reject();
    });
    window->ctlMainMenu1_MenuClick(27);
    EXPECT_EQ(title, gLocalizer()->GetString(QStringLiteral("APP_PRODUCTNAME")));
    EXPECT_FALSE(version.isEmpty());
}
