#include "browse/frmMessageList.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "platform/modDialogs.h"
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
    }
}

// A store holding a few messages, some of them untitled work, and the dialog over it.
class MessageListTest : public ::testing::Test {
protected:
    void SetUp() override {
        gUntitledName = QStringLiteral("Untitled");
        manager.Initialize(home.file(QStringLiteral("Messages/")), QStringLiteral("message.xml"));
        for (const char* name :
             {"Beta", "Alpha", "Untitled", "My Untitled 2", "Untitled3", "untitled lower"})
            QDir().mkpath(home.file(QStringLiteral("Messages/") + QString::fromUtf8(name)));
        QObject::connect(&dialog, &frmMessageList::SelectedMessage, &dialog,
                         [this] { visibleAtSignal = dialog.isVisible(); });
    }

    void open(int mode) {
        dialog.SetFunction(mode);
        dialog.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    }
    QStringList names() const {
        QStringList result;
        for (int i = 0; i < list->count(); ++i)
            result << list->item(i)->text().section(QLatin1Char('\t'), 0, 0);
        return result;
    }
    QPoint centreOf(const QString& wanted) const {
        return list->visualItemRect(list->item(int(names().indexOf(wanted)))).center();
    }
    void click(const QString& wanted, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, modifiers, centreOf(wanted));
    }
    void doubleClick(const QString& wanted) {
        const QPoint at = centreOf(wanted);
        click(wanted);
        QMouseEvent event(QEvent::MouseButtonDblClick, at, list->viewport()->mapToGlobal(at),
                          Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(list->viewport(), &event);
    }
    // The last result: mode and name.
    std::pair<int, QString> result() const {
        return {spy.last()[0].toInt(), spy.last()[1].toString()};
    }

    TestHome home;
    ScriptedResponder responder;
    clsMMSManager manager;
    frmMessageList dialog{&manager};
    QSignalSpy spy{&dialog, &frmMessageList::SelectedMessage};
    QListWidget* list = dialog.findChild<QListWidget*>(QStringLiteral("lstMsg"));
    QLineEdit* name = dialog.findChild<QLineEdit*>(QStringLiteral("txtName"));
    QLabel* illegal = dialog.findChild<QLabel*>(QStringLiteral("lblIllegalChar"));
    QPushButton* ok = dialog.findChild<QPushButton*>(QStringLiteral("cmdOpen"));
    QPushButton* cancel = dialog.findChild<QPushButton*>(QStringLiteral("cmdCancel"));
    bool visibleAtSignal = true;
};
} // namespace

TEST_F(MessageListTest, ListsStoredMessagesWithoutUntitledWorkSorted) {
    open(frmMessageList::Open);
    EXPECT_EQ(names(), (QStringList{QStringLiteral("Alpha"), QStringLiteral("Beta"),
                                    QStringLiteral("untitled lower")}))
        << "the untitled text is left out wherever it stands, case included";
    EXPECT_EQ(list->item(0)->text().count(QLatin1Char('\t')), 1);
    EXPECT_EQ(list->property("tabStops").toList(), (QVariantList{0, 122}));
}

TEST_F(MessageListTest, EachModeHasItsTitleButtonAndLayout) {
    struct Case {
        int mode;
        const char* title;
        const char* button;
    };
    for (const Case& c :
         {Case{2, "STR_DLGMSG_OPEN", "BTN_OPEN"}, Case{3, "STR_DLGMSG_NEW", "BTN_OK"},
          Case{5, "STR_DLGMSG_DELETE", "BTN_OK"}, Case{4, "STR_DLGMSG_SAVEAS", "BTN_SAVE"}}) {
        open(c.mode);
        EXPECT_EQ(dialog.windowTitle(), QString::fromLatin1(c.title));
        EXPECT_EQ(ok->text(), QString::fromLatin1(c.button));
        EXPECT_FALSE(ok->isEnabled());
        // Delete hides the name and stretches the list down to the buttons; the others not.
        const bool remove = c.mode == frmMessageList::Delete;
        EXPECT_EQ(name->isVisible(), !remove);
        EXPECT_EQ(list->geometry().bottom() + 1 + 4 == ok->geometry().top(), remove);
        EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("lblTitle"))->text(),
                  remove ? QStringLiteral("STR_DLGMSG_TITLE") : QStringLiteral("Messages:"));
        dialog.hide();
    }
}

TEST_F(MessageListTest, IllegalCharactersNeverEnterTheName) {
    open(frmMessageList::New);
    QTest::keyClicks(name, QStringLiteral("Tr.ip"));
    EXPECT_EQ(name->text(), QStringLiteral("Trip"));
    EXPECT_EQ(illegal->text(), QString()) << "a good key clears the message";
    // Every character of the refused set, written out here rather than taken from the form.
    for (const QChar c : QStringLiteral("!\"#¤%&/()=?'*.:,;|{[]}\\§½@£$<>+¨~^´`")) {
        type(name, QString(c));
        EXPECT_EQ(name->text(), QStringLiteral("Trip")) << QString(c).toStdString();
        EXPECT_EQ(illegal->text(), QStringLiteral("STR_ILLEG_CHR") + c);
    }
    type(name, QStringLiteral("ö-_ 2"));
    EXPECT_EQ(name->text(), QStringLiteral("Tripö-_2"));
    EXPECT_EQ(illegal->text(), QString());
    // Pasted or set text is held to the same rule; the caret stays where the paste ended.
    name->setCursorPosition(4);
    name->insert(QStringLiteral("a,b."));
    EXPECT_EQ(name->text(), QStringLiteral("Tripabö-_2"));
    EXPECT_EQ(name->cursorPosition(), 6);
    EXPECT_EQ(illegal->text(), QStringLiteral("STR_ILLEG_CHR,"));
    name->setText(QStringLiteral(" x:y "));
    EXPECT_EQ(name->text(), QStringLiteral("xy"));
}

TEST_F(MessageListTest, NameIsTrimmedWithTheCaretKeptAndEmptyCannotBeConfirmed) {
    open(frmMessageList::Open);
    QTest::keyClicks(name, QStringLiteral("  "));
    EXPECT_EQ(name->text(), QString());
    EXPECT_FALSE(ok->isEnabled());
    name->setText(QStringLiteral("  two words  "));
    EXPECT_EQ(name->text(), QStringLiteral("two words"));
    EXPECT_TRUE(ok->isEnabled());
    // Blanks typed at either end go at once, the caret staying; inside a blank stays.
    struct Case {
        int caret;
        const char* after;
        int caretAfter;
    };
    for (const Case& c :
         {Case{0, "two words", 0}, Case{9, "two words", 9}, Case{3, "two  words", 4}}) {
        name->setCursorPosition(c.caret);
        type(name, QStringLiteral(" "));
        EXPECT_EQ(name->text(), QString::fromLatin1(c.after));
        EXPECT_EQ(name->cursorPosition(), c.caretAfter);
    }
}

TEST_F(MessageListTest, NewModeRefusesAnExistingNameExactly) {
    open(frmMessageList::New);
    name->setText(QStringLiteral("Alpha"));
    EXPECT_FALSE(ok->isEnabled());
    name->setText(QStringLiteral("alpha"));
    EXPECT_TRUE(ok->isEnabled()) << "the comparison keeps case";
    QTest::mouseClick(ok, Qt::LeftButton);
    EXPECT_EQ(result(), std::make_pair(3, QStringLiteral("alpha")));
    EXPECT_FALSE(visibleAtSignal);
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(MessageListTest, ClicksTakeTheNameAndADoubleClickOpens) {
    open(frmMessageList::SaveAs);
    doubleClick(QStringLiteral("Alpha"));
    EXPECT_EQ(name->text(), QStringLiteral("Alpha"));
    EXPECT_TRUE(spy.isEmpty()) << "only the open mode ends on a double click";
    dialog.hide();

    open(frmMessageList::Open);
    illegal->setText(QStringLiteral("old"));
    click(QStringLiteral("Beta"));
    EXPECT_EQ(name->text(), QStringLiteral("Beta"));
    EXPECT_EQ(illegal->text(), QString());
    doubleClick(QStringLiteral("Alpha"));
    EXPECT_EQ(result(), std::make_pair(2, QStringLiteral("Alpha")));
    EXPECT_FALSE(visibleAtSignal);

    open(frmMessageList::Open); // a name not on the list goes to the owner as it stands
    name->setText(QStringLiteral("Not listed"));
    QTest::mouseClick(ok, Qt::LeftButton);
    EXPECT_EQ(result(), std::make_pair(2, QStringLiteral("Not listed")));
}

TEST_F(MessageListTest, SaveAsAsksBeforeReplacing) {
    open(frmMessageList::SaveAs);
    name->setText(QStringLiteral("Alpha"));
    responder.boxAnswers = {Vb::No};
    QTest::mouseClick(ok, Qt::LeftButton);
    ASSERT_EQ(responder.boxes.size(), 1u);
    EXPECT_EQ(responder.boxes[0].style, Vb::YesNo | Vb::Question);
    EXPECT_EQ(responder.boxes[0].title, QStringLiteral("BTN_SAVEAS"));
    EXPECT_TRUE(spy.isEmpty());
    EXPECT_TRUE(dialog.isVisible()) << "No stays in the dialog";
    responder.boxAnswers = {Vb::Yes};
    QTest::mouseClick(ok, Qt::LeftButton);
    EXPECT_EQ(result(), std::make_pair(4, QStringLiteral("Alpha")));

    open(frmMessageList::SaveAs); // a new name needs no question
    name->setText(QStringLiteral("Gamma"));
    QTest::mouseClick(ok, Qt::LeftButton);
    EXPECT_EQ(responder.boxes.size(), 2u);
    EXPECT_EQ(result(), std::make_pair(4, QStringLiteral("Gamma")));
}

TEST_F(MessageListTest, DeleteHandsOverTheSelectedNamesWhole) {
    QDir().mkpath(home.file(QStringLiteral("Messages/C,D")));
    open(frmMessageList::Delete);
    EXPECT_EQ(list->selectionMode(), QAbstractItemView::ExtendedSelection);
    click(QStringLiteral("Alpha"));
    click(QStringLiteral("C,D"), Qt::ControlModifier);
    EXPECT_TRUE(ok->isEnabled());
    QTest::mouseClick(ok, Qt::LeftButton);
    EXPECT_EQ(result(), std::make_pair(5, QStringLiteral("Alpha,C,D")));
    EXPECT_EQ(dialog.SelectedNames(),
              (QStringList{QStringLiteral("Alpha"), QStringLiteral("C,D")}));
}

TEST_F(MessageListTest, CancelAndEscapeReportModeOneAndTheNextOpeningStartsAfresh) {
    for (const bool escape : {false, true}) {
        open(frmMessageList::Open);
        EXPECT_EQ(list->count(), escape ? 4 : 3);
        EXPECT_EQ(name->text(), QString());
        name->setText(QStringLiteral("Alpha"));
        if (escape)
            QTest::keyClick(&dialog, Qt::Key_Escape);
        else
            QTest::mouseClick(cancel, Qt::LeftButton);
        EXPECT_EQ(result(), std::make_pair(1, QString()));
        EXPECT_FALSE(dialog.isVisible());
        QDir().mkpath(home.file(QStringLiteral("Messages/Zeta")));
    }
    // A modal run ends with the dialog.
    dialog.SetFunction(frmMessageList::Open);
    QTimer::singleShot(0, &dialog, [this] { name->setText(QStringLiteral("Beta")), ok->click(); });
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_EQ(result(), std::make_pair(2, QStringLiteral("Beta")));
}

TEST_F(MessageListTest, EntriesAreDrawnAtTheTabStop) {
    open(frmMessageList::Open);
    const QImage shot = list->viewport()->grab().toImage();
    // Ink after the stop: the creation date shows in the second column.
    const QRect row = list->visualItemRect(list->item(0));
    const int stop = 122 * list->fontMetrics().averageCharWidth() / 4;
    const QColor background = shot.pixelColor(row.left() + stop - 4, row.center().y());
    int ink = 0;
    for (int x = row.left() + stop; x < row.right() - 4; ++x)
        for (int y = row.top() + 2; y < row.bottom() - 2; ++y)
            ink += shot.pixelColor(x, y) != background;
    EXPECT_GT(ink, 20);
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
    frmMessageList dialog(&manager);
    dialog.SetFunction(frmMessageList::SaveAs);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Save message as"));
    EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("lblMsgName"))->text(),
              QStringLiteral("Name:"));
    dialog.findChild<QLineEdit*>(QStringLiteral("txtName"))->setText(QStringLiteral("Trip"));
    dialog.findChild<QPushButton*>(QStringLiteral("cmdOpen"))->click();
    ASSERT_EQ(responder.boxes.size(), 1u);
    EXPECT_EQ(responder.boxes[0].text,
              QStringLiteral("A message named \"Trip\" already exists.\r\n\r\nDo you want "
                             "to replace it?"));
    EXPECT_EQ(responder.boxes[0].title, QStringLiteral("Save As"));
}
