#include "browse/frmMessageList.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "platform/modShared.h"
#include "store/clsMMSManager.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"

#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {
// Types `text` into `widget` a character at a time, as a keyboard with any layout would.
void type(QWidget* widget, const QString& text) {
    for (const QChar c : text) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(c));
        QApplication::sendEvent(widget, &press);
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_unknown, Qt::NoModifier, QString(c));
        QApplication::sendEvent(widget, &release);
    }
}

// A double click on `widget` at `at`: press and release, then the double-click event itself.
void doubleClick(QWidget* widget, QPoint at) {
    QTest::mouseClick(widget, Qt::LeftButton, {}, at);
    QMouseEvent dbl(QEvent::MouseButtonDblClick, at, widget->mapToGlobal(at), Qt::LeftButton,
                    Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &dbl);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, at);
}

// A store holding a few messages, some of them untitled work, and the dialog over it.
class MessageListTest : public ::testing::Test {
protected:
    void SetUp() override {
        gUntitledName = QStringLiteral("Untitled");
        manager.Initialize(home.file(QStringLiteral("Messages/")), QStringLiteral("message.xml"));
        for (const QString& name : {QStringLiteral("Beta"), QStringLiteral("Alpha"),
                                    QStringLiteral("Untitled"), QStringLiteral("My Untitled 2"),
                                    QStringLiteral("Untitled3"), QStringLiteral("untitled lower")})
            QDir().mkpath(home.file(QStringLiteral("Messages/") + name));
        dialog = std::make_unique<frmMessageList>(&manager);
        list = dialog->findChild<QListWidget*>(QStringLiteral("lstMsg"));
        name = dialog->findChild<QLineEdit*>(QStringLiteral("txtName"));
        illegal = dialog->findChild<QLabel*>(QStringLiteral("lblIllegalChar"));
        title = dialog->findChild<QLabel*>(QStringLiteral("lblTitle"));
        nameLabel = dialog->findChild<QLabel*>(QStringLiteral("lblMsgName"));
        ok = dialog->findChild<QPushButton*>(QStringLiteral("cmdOpen"));
        cancel = dialog->findChild<QPushButton*>(QStringLiteral("cmdCancel"));
        spy = std::make_unique<QSignalSpy>(dialog.get(), &frmMessageList::SelectedMessage);
        QObject::connect(dialog.get(), &frmMessageList::SelectedMessage, dialog.get(),
                         [this] { visibleAtSignal = dialog->isVisible(); });
    }

    void open(int mode) {
        dialog->SetFunction(mode);
        dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog.get()));
    }

    QStringList names() const {
        QStringList result;
        for (int i = 0; i < list->count(); ++i)
            result << list->item(i)->text().section(QLatin1Char('\t'), 0, 0);
        return result;
    }

    QListWidgetItem* itemNamed(const QString& wanted) const {
        for (int i = 0; i < list->count(); ++i)
            if (list->item(i)->text().startsWith(wanted + QLatin1Char('\t')))
                return list->item(i);
        return nullptr;
    }

    TestHome home;
    ScriptedResponder responder;
    clsMMSManager manager;
    std::unique_ptr<frmMessageList> dialog;
    QListWidget* list = nullptr;
    QLineEdit* name = nullptr;
    QLabel* illegal = nullptr;
    QLabel* title = nullptr;
    QLabel* nameLabel = nullptr;
    QPushButton* ok = nullptr;
    QPushButton* cancel = nullptr;
    std::unique_ptr<QSignalSpy> spy;
    bool visibleAtSignal = true;
};
} // namespace

TEST_F(MessageListTest, ListsStoredMessagesWithoutUntitledWorkSorted) {
    open(frmMessageList::Open);
    EXPECT_EQ(names(), (QStringList{QStringLiteral("Alpha"), QStringLiteral("Beta"),
                                    QStringLiteral("untitled lower")}))
        << "the untitled text is left out wherever it stands, case included";
    for (int i = 0; i < list->count(); ++i)
        EXPECT_EQ(list->item(i)->text().count(QLatin1Char('\t')), 1);
    EXPECT_EQ(list->property("tabStops").toList(), (QVariantList{0, 122}));
    EXPECT_EQ(dialog->objectName(), QStringLiteral("frmMessageList"));
}

TEST_F(MessageListTest, EachModeHasItsTitleAndButton) {
    struct Case {
        int mode;
        const char* title;
        const char* button;
    };
    for (const Case& c :
         {Case{2, "STR_DLGMSG_OPEN", "BTN_OPEN"}, Case{3, "STR_DLGMSG_NEW", "BTN_OK"},
          Case{4, "STR_DLGMSG_SAVEAS", "BTN_SAVE"}, Case{5, "STR_DLGMSG_DELETE", "BTN_OK"}}) {
        dialog->SetFunction(c.mode);
        EXPECT_EQ(dialog->windowTitle(), QString::fromLatin1(c.title));
        EXPECT_EQ(ok->text(), QString::fromLatin1(c.button));
        EXPECT_FALSE(ok->isEnabled());
        EXPECT_EQ(dialog->mode(), c.mode);
    }
}

TEST_F(MessageListTest, DeleteModeHidesTheNameAndStretchesTheList) {
    open(frmMessageList::Delete);
    EXPECT_FALSE(name->isVisible());
    EXPECT_FALSE(nameLabel->isVisible());
    EXPECT_EQ(title->text(), QStringLiteral("STR_DLGMSG_TITLE"));
    EXPECT_EQ(list->geometry().height(), ok->geometry().top() - list->geometry().top() - 4);
    const QByteArray folder = qgetenv("TESSALY_SCREENSHOT_DIR");
    if (!folder.isEmpty())
        dialog->grab().save(QString::fromLocal8Bit(folder) +
                            QStringLiteral("/frmMessageList-delete.png"));
    // Back in another mode the name box returns and the list shrinks again.
    dialog->hide();
    open(frmMessageList::Open);
    EXPECT_TRUE(name->isVisible());
    EXPECT_LT(list->geometry().bottom(), name->geometry().top());
    EXPECT_EQ(title->text(), QStringLiteral("Messages:"));
}

TEST_F(MessageListTest, IllegalCharactersAreRefusedWithAMessage) {
    open(frmMessageList::New);
    QTest::keyClicks(name, QStringLiteral("Tr.ip"));
    EXPECT_EQ(name->text(), QStringLiteral("Trip"));
    EXPECT_EQ(illegal->text(), QString()) << "a good key clears the message";
    QTest::keyClicks(name, QStringLiteral("/"));
    EXPECT_EQ(illegal->text(), QStringLiteral("STR_ILLEG_CHR/"));
    EXPECT_EQ(name->text(), QStringLiteral("Trip"));
    // Every character of the refused set, written out here rather than taken from the form.
    for (const QChar c : QStringLiteral("!\"#¤%&/()=?'*.:,;|{[]}\\§½@£$<>+¨~^´`")) {
        type(name, QString(c));
        EXPECT_EQ(name->text(), QStringLiteral("Trip")) << QString(c).toStdString();
        EXPECT_TRUE(frmMessageList::illegalCharacters().contains(c)) << QString(c).toStdString();
    }
    // A blank typed at the end is trimmed away at once; inside the name it stays.
    type(name, QStringLiteral("ö-_ 2"));
    EXPECT_EQ(name->text(), QStringLiteral("Tripö-_2"));
    EXPECT_EQ(illegal->text(), QString());
    name->setCursorPosition(4);
    type(name, QStringLiteral(" "));
    EXPECT_EQ(name->text(), QStringLiteral("Trip ö-_2"));
    // Pasted text is not checked.
    name->end(false);
    name->insert(QStringLiteral(".x"));
    EXPECT_EQ(name->text(), QStringLiteral("Trip ö-_2.x"));
}

TEST_F(MessageListTest, NameIsTrimmedAndEmptyCannotBeConfirmed) {
    open(frmMessageList::Open);
    QTest::keyClicks(name, QStringLiteral("  "));
    EXPECT_EQ(name->text(), QString());
    EXPECT_FALSE(ok->isEnabled());
    name->setText(QStringLiteral("  two words  "));
    EXPECT_EQ(name->text(), QStringLiteral("two words"));
    EXPECT_EQ(name->cursorPosition(), 9);
    EXPECT_TRUE(ok->isEnabled());
    name->setText(QStringLiteral("   "));
    EXPECT_FALSE(ok->isEnabled());
}

TEST_F(MessageListTest, TrimKeepsTheCaretWhereTheUserTypes) {
    open(frmMessageList::Open);
    QTest::keyClicks(name, QStringLiteral("Trip"));
    // A blank typed in front is taken away and the caret stays at the front.
    name->setCursorPosition(0);
    type(name, QStringLiteral(" "));
    EXPECT_EQ(name->text(), QStringLiteral("Trip"));
    EXPECT_EQ(name->cursorPosition(), 0);
    type(name, QStringLiteral("A"));
    EXPECT_EQ(name->text(), QStringLiteral("ATrip"));
    // A blank at the end goes too; the caret stays before it.
    name->end(false);
    type(name, QStringLiteral(" "));
    EXPECT_EQ(name->text(), QStringLiteral("ATrip"));
    EXPECT_EQ(name->cursorPosition(), 5);
    // Inside the name a blank stays and the caret moves past it.
    name->setCursorPosition(1);
    type(name, QStringLiteral(" "));
    EXPECT_EQ(name->text(), QStringLiteral("A Trip"));
    EXPECT_EQ(name->cursorPosition(), 2);
}

TEST_F(MessageListTest, NewModeRefusesAnExistingNameExactly) {
    open(frmMessageList::New);
    name->setText(QStringLiteral("Alpha"));
    EXPECT_FALSE(ok->isEnabled());
    name->setText(QStringLiteral("alpha"));
    EXPECT_TRUE(ok->isEnabled()) << "the comparison keeps case";
    name->setText(QStringLiteral("Untitled"));
    EXPECT_TRUE(ok->isEnabled()) << "unlisted names are new";
    QTest::mouseClick(ok, Qt::LeftButton);
    ASSERT_EQ(spy->size(), 1);
    EXPECT_EQ((*spy)[0][0].toInt(), 3);
    EXPECT_EQ((*spy)[0][1].toString(), QStringLiteral("Untitled"));
    EXPECT_FALSE(visibleAtSignal);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(MessageListTest, ClickTakesTheNameAndOpenAcceptsAnyName) {
    open(frmMessageList::Open);
    illegal->setText(QStringLiteral("old"));
    QListWidgetItem* beta = itemNamed(QStringLiteral("Beta"));
    ASSERT_TRUE(beta);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(beta).center());
    EXPECT_EQ(name->text(), QStringLiteral("Beta"));
    EXPECT_EQ(illegal->text(), QString());
    EXPECT_TRUE(ok->isEnabled());
    name->setText(QStringLiteral("Not listed"));
    QTest::mouseClick(ok, Qt::LeftButton);
    ASSERT_EQ(spy->size(), 1);
    EXPECT_EQ((*spy)[0][0].toInt(), 2);
    EXPECT_EQ((*spy)[0][1].toString(), QStringLiteral("Not listed"));
}

TEST_F(MessageListTest, DoubleClickOpensAtOnceInOpenMode) {
    open(frmMessageList::Open);
    QListWidgetItem* alpha = itemNamed(QStringLiteral("Alpha"));
    doubleClick(list->viewport(), list->visualItemRect(alpha).center());
    ASSERT_EQ(spy->size(), 1);
    EXPECT_EQ((*spy)[0][0].toInt(), 2);
    EXPECT_EQ((*spy)[0][1].toString(), QStringLiteral("Alpha"));
    EXPECT_FALSE(visibleAtSignal);
}

TEST_F(MessageListTest, DoubleClickOnlyTakesTheNameInOtherModes) {
    open(frmMessageList::SaveAs);
    QListWidgetItem* alpha = itemNamed(QStringLiteral("Alpha"));
    doubleClick(list->viewport(), list->visualItemRect(alpha).center());
    EXPECT_EQ(name->text(), QStringLiteral("Alpha"));
    EXPECT_EQ(spy->size(), 0);
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(MessageListTest, SaveAsAsksBeforeReplacing) {
    open(frmMessageList::SaveAs);
    name->setText(QStringLiteral("Alpha"));
    responder.boxAnswers.push_back(Vb::No);
    QTest::mouseClick(ok, Qt::LeftButton);
    ASSERT_EQ(responder.boxes.size(), 1u);
    EXPECT_EQ(responder.boxes[0].style, Vb::YesNo | Vb::Question);
    EXPECT_EQ(responder.boxes[0].title, QStringLiteral("BTN_SAVEAS"));
    EXPECT_EQ(spy->size(), 0);
    EXPECT_TRUE(dialog->isVisible()) << "No stays in the dialog";

    responder.boxAnswers.push_back(Vb::Yes);
    QTest::mouseClick(ok, Qt::LeftButton);
    ASSERT_EQ(spy->size(), 1);
    EXPECT_EQ((*spy)[0][0].toInt(), 4);
    EXPECT_EQ((*spy)[0][1].toString(), QStringLiteral("Alpha"));

    // A new name needs no question.
    open(frmMessageList::SaveAs);
    name->setText(QStringLiteral("Gamma"));
    QTest::mouseClick(ok, Qt::LeftButton);
    EXPECT_EQ(responder.boxes.size(), 2u);
    ASSERT_EQ(spy->size(), 2);
    EXPECT_EQ((*spy)[1][1].toString(), QStringLiteral("Gamma"));
}

TEST_F(MessageListTest, DeleteJoinsTheSelectedNames) {
    open(frmMessageList::Delete);
    EXPECT_EQ(list->selectionMode(), QAbstractItemView::ExtendedSelection);
    EXPECT_FALSE(ok->isEnabled()) << "only Cancel until something is chosen";
    QListWidgetItem* alpha = itemNamed(QStringLiteral("Alpha"));
    QListWidgetItem* lower = itemNamed(QStringLiteral("untitled lower"));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(alpha).center());
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier,
                      list->visualItemRect(lower).center());
    EXPECT_TRUE(ok->isEnabled());
    QTest::mouseClick(ok, Qt::LeftButton);
    ASSERT_EQ(spy->size(), 1);
    EXPECT_EQ((*spy)[0][0].toInt(), 5);
    EXPECT_EQ((*spy)[0][1].toString(), QStringLiteral("Alpha,untitled lower"));
}

TEST_F(MessageListTest, CancelReportsModeOneWithNoName) {
    open(frmMessageList::Open);
    name->setText(QStringLiteral("Alpha"));
    QTest::mouseClick(cancel, Qt::LeftButton);
    ASSERT_EQ(spy->size(), 1);
    EXPECT_EQ((*spy)[0][0].toInt(), 1);
    EXPECT_EQ((*spy)[0][1].toString(), QString());
    EXPECT_FALSE(dialog->isVisible());
    // Escape is a cancel too.
    open(frmMessageList::Delete);
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    ASSERT_EQ(spy->size(), 2);
    EXPECT_EQ((*spy)[1][0].toInt(), 1);
}

TEST_F(MessageListTest, EveryOpeningFillsTheListAfresh) {
    open(frmMessageList::Open);
    EXPECT_EQ(list->count(), 3);
    name->setText(QStringLiteral("typed"));
    QTest::mouseClick(cancel, Qt::LeftButton);
    QDir().mkpath(home.file(QStringLiteral("Messages/Zeta")));
    open(frmMessageList::Open);
    EXPECT_EQ(list->count(), 4);
    EXPECT_EQ(name->text(), QString());
    EXPECT_FALSE(ok->isEnabled());
}

TEST_F(MessageListTest, ModalRunEndsWhenTheDialogIsHidden) {
    dialog->SetFunction(frmMessageList::Open);
    QTimer::singleShot(0, dialog.get(), [this] {
        name->setText(QStringLiteral("Beta"));
        ok->click();
    });
    const int result = dialog->exec();
    EXPECT_EQ(result, QDialog::Accepted);
    ASSERT_EQ(spy->size(), 1);
    EXPECT_EQ((*spy)[0][1].toString(), QStringLiteral("Beta"));
    EXPECT_FALSE(visibleAtSignal);
}

TEST_F(MessageListTest, EntriesAreDrawnAtTheTabStop) {
    open(frmMessageList::Open);
    const QImage shot = dialog->grab().toImage();
    const QByteArray folder = qgetenv("TESSALY_SCREENSHOT_DIR");
    if (!folder.isEmpty())
        shot.save(QString::fromLocal8Bit(folder) + QStringLiteral("/frmMessageList.png"));
    // No ink between the end of the longest name and the date column, ink after the stop.
    const QRect row = list->visualItemRect(list->item(0));
    const int stop = 122 * list->fontMetrics().averageCharWidth() / 4;
    const QPoint origin = list->viewport()->mapTo(dialog.get(), row.topLeft());
    const QColor background = shot.pixelColor(origin.x() + stop - 4, origin.y() + row.height() / 2);
    int ink = 0;
    for (int x = origin.x() + stop; x < origin.x() + row.width() - 4; ++x)
        for (int y = origin.y() + 2; y < origin.y() + row.height() - 2; ++y)
            if (shot.pixelColor(x, y) != background)
                ++ink;
    EXPECT_GT(ink, 20) << "the creation date shows in the second column";
}

TEST(MessageListLocalised, QuestionAndCaptionsComeFromTheLanguageFile) {
    TestHome home(true);
    SharedConfig shared;
    clsPropertiesXML& properties = shared.setProperties(std::make_unique<clsPropertiesXML>());
    ASSERT_TRUE(shared.setLocalizer(std::make_unique<clsXMLocalizer>(properties))
                    .SetLanguage(QStringLiteral("en-us")));
    ScriptedResponder responder;
    clsMMSManager manager;
    manager.Initialize(home.file(QStringLiteral("Messages/")), QStringLiteral("message.xml"));
    QDir().mkpath(home.file(QStringLiteral("Messages/Trip")));
    {
        frmMessageList dialog(&manager);
        dialog.SetFunction(frmMessageList::SaveAs);
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Save message as"));
        EXPECT_EQ(dialog.findChild<QPushButton*>(QStringLiteral("cmdOpen"))->text(),
                  QStringLiteral("Save"));
        EXPECT_EQ(dialog.findChild<QPushButton*>(QStringLiteral("cmdCancel"))->text(),
                  QStringLiteral("Cancel"));
        EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("lblMsgName"))->text(),
                  QStringLiteral("Name:"));
        dialog.findChild<QLineEdit*>(QStringLiteral("txtName"))->setText(QStringLiteral("Trip"));
        responder.boxAnswers.push_back(Vb::No);
        dialog.findChild<QPushButton*>(QStringLiteral("cmdOpen"))->click();
        ASSERT_EQ(responder.boxes.size(), 1u);
        EXPECT_EQ(responder.boxes[0].text,
                  QStringLiteral("A message named \"Trip\" already exists.\r\n\r\nDo you want "
                                 "to replace it?"));
        EXPECT_EQ(responder.boxes[0].title, QStringLiteral("Save As"));
    }
}
