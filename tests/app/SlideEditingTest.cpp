#include "app/frmMain.h"
#include "browse/ctlSlideThumbs.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/GrButtonIII.h"
#include "controls/ctlMainMenu.h"
#include "controls/ctlUpDown.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "platform/modShared.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"
#include "tests/audio/AudioTestUtil.h"

#include <QApplication>
#include <QDir>
#include <QFocusEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

// The main window over a fresh application folder with English texts and scripted boxes.
class SlideEditing : public ::testing::Test {
protected:
    TestHome home{true};
    ScriptedResponder boxes;
    SharedConfig shared;
    QPointer<frmMain> window;

    void SetUp() override {
        shared.setProperties(std::make_unique<clsPropertiesXML>());
        shared.setLocalizer(std::make_unique<clsXMLocalizer>(*gProperties()))
            .SetLanguage(QStringLiteral("en-us"));
        // No phone: the window would otherwise look for a transport on the session bus.
        setPref("CommunicationType", "0");
        setPref("AskNewSlide", "0");
        setPref("AskDeleteSlide", "0");
        gStarting = true;
        gSplashActive = false;
        window = new frmMain();
        gMainWindow = window;
        window->show();
    }
    void TearDown() override { delete window.data(); }

    static void setPref(const char* key, const char* value) {
        gProperties()->SetProp(QStringLiteral("preferences"), QString::fromLatin1(key),
                               QString::fromLatin1(value));
    }
    template <typename T> T* child(const char* name) const {
        return window->findChild<T*>(QString::fromLatin1(name));
    }
    QPlainTextEdit* textBox() const { return child<QPlainTextEdit>("txtMessage"); }
    ctlSlideThumbs* strip() const { return child<ctlSlideThumbs>("ctlSlideThumbs1"); }
    clsSlides& slides() const { return *window->message()->Slides(); }
    int current() const { return window->slide() ? window->slide()->Index() : 0; }
    QString prompt() const { return textBox()->toolTip(); }

    // A message of `count` slides whose texts are their numbers, slide `selected` current.
    void makeSlides(int count, int selected) {
        for (int i = slides().Count(); i < count; ++i)
            window->AddSlide(false, true);
        for (int i = 1; i <= count; ++i)
            slides().Item(i)->setText(QString::number(i));
        window->LoadSlideToUI(count);
        emit strip()->SlideClick(selected);
        ASSERT_EQ(current(), selected);
    }
    void focus(QEvent::Type type) {
        QFocusEvent event(type, Qt::MouseFocusReason);
        QApplication::sendEvent(textBox(), &event);
    }
};

TEST_F(SlideEditing, AddingAsksOnlyWhenThePreferenceSaysSo) {
    auto* add = child<GrButtonIII>("cmdAddNewSlide");
    add->click();
    EXPECT_TRUE(boxes.boxes.empty());
    EXPECT_EQ(current(), 2);

    setPref("AskNewSlide", "1");
    boxes.boxAnswers = {Vb::No, Vb::Yes};
    add->click();
    EXPECT_EQ(slides().Count(), 2);
    add->click();
    EXPECT_EQ(slides().Count(), 3);
    ASSERT_EQ(boxes.boxes.size(), 2u);
    EXPECT_EQ(boxes.boxes[0].text,
              QStringLiteral("Do you want to add a new slide at the end of the message?"));
    EXPECT_EQ(strip()->SelectedTile(), 3);
}

TEST_F(SlideEditing, InsertingPlacesAnEmptySlideAndStoresTheCurrentOneFirst) {
    struct Case {
        std::int32_t menuKey;
        const char* question;
        int newIndex;
    } cases[] = {
        {MenuKey::SlideInsertAfter, "Do you want to insert a new slide after slide 1?", 2},
        {MenuKey::SlideInsertBefore, "Do you want to insert a new slide before slide 1?", 1},
    };
    setPref("AskNewSlide", "1");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.question);
        window->setChanged(false);
        window->NewMessage(QStringLiteral("Untitled"));
        makeSlides(2, 1);
        textBox()->setPlainText(QStringLiteral("edited"));
        boxes.boxes.clear();
        window->ctlMainMenu1_MenuClick(c.menuKey);

        ASSERT_EQ(boxes.boxes.size(), 1u);
        EXPECT_EQ(boxes.boxes[0].text, QString::fromLatin1(c.question));
        EXPECT_EQ(slides().Count(), 3);
        EXPECT_EQ(current(), c.newIndex);
        EXPECT_EQ(textBox()->toPlainText(), prompt());
        EXPECT_EQ(slides().Item(c.newIndex == 1 ? 2 : 1)->Text(), QStringLiteral("edited"));
    }
}

TEST_F(SlideEditing, DuplicateFromAnotherTileCopiesTheCurrentSlide) {
    makeSlides(5, 2);
    textBox()->setPlainText(QStringLiteral("second, edited"));
    setPref("AskNewSlide", "1");
    emit strip()->MenuClick(ctlSlideThumbs::KeyDuplicateAfter, 5);
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].text,
              QStringLiteral("Do you want to copy slide 2\nand insert the copy after slide 5?"));
    ASSERT_EQ(slides().Count(), 6);
    EXPECT_EQ(current(), 6);
    EXPECT_EQ(slides().Item(6)->Text(), QStringLiteral("second, edited"));
    EXPECT_EQ(slides().Item(5)->Text(), QStringLiteral("5"));

    emit strip()->MenuClick(ctlSlideThumbs::KeyDuplicateBefore, 1);
    EXPECT_EQ(current(), 1);
    EXPECT_EQ(slides().Item(1)->Text(), QStringLiteral("second, edited"));
    EXPECT_EQ(slides().Item(2)->Text(), QStringLiteral("1"));
}

TEST_F(SlideEditing, DeletingASlideOfSeveralLoadsItsNeighbour) {
    struct Case {
        int selected, deleted, answer, count, currentAfter;
        const char* currentText;
    } cases[] = {
        {2, 3, Vb::Yes, 2, 2, "2"}, // the last: the new last one is selected
        {1, 2, Vb::Yes, 2, 2, "3"}, // the slide that moved into its place
        {2, 3, Vb::No, 3, 2, "2"},
    };
    setPref("AskDeleteSlide", "1");
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.selected << " " << c.deleted << " " << c.answer);
        window->setChanged(false);
        window->NewMessage(QStringLiteral("Untitled"));
        makeSlides(3, c.selected);
        boxes.boxes.clear();
        boxes.boxAnswers = {c.answer};
        emit strip()->MenuClick(ctlSlideThumbs::KeyDeleteSlide, c.deleted);

        ASSERT_EQ(boxes.boxes.size(), 1u);
        EXPECT_EQ(boxes.boxes[0].text, QStringLiteral("Delete slide %1?").arg(c.deleted));
        EXPECT_EQ(slides().Count(), c.count);
        EXPECT_EQ(current(), c.currentAfter);
        EXPECT_EQ(textBox()->toPlainText(), QString::fromLatin1(c.currentText));
        EXPECT_EQ(strip()->TileCount(), c.count);
    }
}

TEST_F(SlideEditing, DeletingTheOnlySlideEmptiesItUntilTheNextChange) {
    auto* del = child<GrButtonIII>("cmdDeleteSlide");
    window->slide()->setSound(home.path() + QStringLiteral("/gone.wav"));
    textBox()->setPlainText(QStringLiteral("words"));
    child<ctlUpDown>("ctlUpDown1")->cmdUp()->click();
    const std::int32_t duration = window->slide()->Duration();
    del->click();

    ASSERT_EQ(slides().Count(), 1);
    EXPECT_TRUE(window->slide()->Text().isEmpty());
    EXPECT_TRUE(window->slide()->Sound().isEmpty());
    EXPECT_EQ(window->slide()->Duration(), duration);
    EXPECT_EQ(textBox()->toPlainText(), prompt());
    EXPECT_FALSE(del->isEnabled());
    textBox()->setPlainText(QStringLiteral("new words"));
    EXPECT_TRUE(del->isEnabled());
}

TEST_F(SlideEditing, TextPromptGoesOnEntryAndComesBackWhenLeftEmpty) {
    ASSERT_EQ(textBox()->toPlainText(), prompt());
    window->setChanged(false);
    focus(QEvent::FocusIn);
    EXPECT_TRUE(textBox()->toPlainText().isEmpty());
    EXPECT_FALSE(window->changed());
    QTest::keyClicks(textBox(), QStringLiteral("Hi"));
    EXPECT_EQ(textBox()->toPlainText(), QStringLiteral("Hi"));

    textBox()->clear();
    focus(QEvent::FocusOut);
    EXPECT_EQ(textBox()->toPlainText(), prompt());
    window->StoreSlideFromUI();
    EXPECT_TRUE(window->slide()->Text().isEmpty());
    // Typing into a box that kept the focus while the prompt came back starts afresh too.
    QTest::keyClicks(textBox(), QStringLiteral("Yo"));
    EXPECT_EQ(textBox()->toPlainText(), QStringLiteral("Yo"));

    // Taking the text off leaves the box really empty, not showing the prompt.
    textBox()->setPlainText(QStringLiteral("gone soon"));
    emit strip()->MenuClick(ctlSlideThumbs::KeyDeleteText, 1);
    EXPECT_TRUE(textBox()->toPlainText().isEmpty());
    window->StoreSlideFromUI();
    EXPECT_TRUE(window->slide()->Text().isEmpty());
}

TEST_F(SlideEditing, SlideRoundTripsThroughTheControlsAndSoundSetsTheTimes) {
    makeSlides(2, 1);
    const std::int32_t second = slides().Item(2)->Duration();
    const QString folder = home.path() + QLatin1Char('/');
    QString path = folder;
    QString name = QStringLiteral("voice.wav");
    audiotest::writeFile(folder + name, audiotest::wavBytes(8000, 16, 1, 8000 * 34 / 10));
    window->AssignSound(path, name);
    textBox()->setPlainText(QStringLiteral("hello"));
    EXPECT_EQ(window->UpdateTotalTime(), 3400 + second);

    emit strip()->SlideClick(2);
    EXPECT_EQ(child<ctlUpDown>("ctlUpDown1")->Value(), second);
    emit strip()->SlideClick(1);
    EXPECT_EQ(window->slide()->Text(), QStringLiteral("hello"));
    EXPECT_EQ(window->slide()->Sound(), folder + name);
    EXPECT_EQ(child<ctlUpDown>("ctlUpDown1")->Value(), 3400);

    // The duration field writes through to the slide and the total at once.
    child<ctlUpDown>("ctlUpDown1")->cmdDown()->click();
    EXPECT_EQ(window->slide()->Duration(), 3300);
    EXPECT_EQ(child<QLabel>("lblMaxTime")->text(),
              QString::number((3300 + second) / 1000.0, 'f', 1) + QLatin1Char('s'));
}

TEST_F(SlideEditing, SlideCommandsWaitWhileTheSlideSoundPlays) {
    QString path = home.path() + QLatin1Char('/');
    QString name = QStringLiteral("short.wav");
    audiotest::writeFile(path + name, audiotest::wavBytes(8000, 16, 1, 4000));
    window->AssignSound(path, name);
    child<GrButtonIII>("bPlayAudio")->click();
    ASSERT_TRUE(window->TimerPlay()->isActive());
    textBox()->setPlainText(QStringLiteral("typed meanwhile"));
    emit strip()->MenuClick(ctlSlideThumbs::KeyAdd, 1);
    EXPECT_FALSE(child<GrButtonIII>("cmdDeleteSlide")->isEnabled());
    EXPECT_EQ(slides().Count(), 1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->TimerPlay()->isActive(); }, 5000));
    EXPECT_TRUE(child<GrButtonIII>("cmdDeleteSlide")->isEnabled());
}

TEST_F(SlideEditing, BrowsedPictureIsKeptInTheWorkFolderAsTheBackground) {
    QImage red(40, 30, QImage::Format_RGB32);
    red.fill(Qt::red);
    ASSERT_TRUE(window->mFrmPictureBrowser_AddPicture(red));
    const QStringList kept =
        QDir(home.path() + QStringLiteral("/Work")).entryList({QStringLiteral("*B.bmp")});
    EXPECT_EQ(kept.size(), 1);
    EXPECT_EQ(window->slide()->Image().pixelColor(80, 60), QColor(Qt::red));

    EXPECT_FALSE(window->mFrmPictureBrowser_AddPicture(QImage()));
    EXPECT_EQ(boxes.boxes.size(), 1u);
}

} // namespace
