#include "controls/GrButtonIII.h"
#include "controls/ctlBlink.h"
#include "controls/ctlProgressBar.h"
#include "controls/ctlVerticalTab.h"
#include "controls/modSkin.h"
#include "platform/modText.h"
#include "support/TestHome.h"

#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>
#include <type_traits>

// Showing a frame must not hide QWidget::show.
static_assert(std::is_same_v<decltype(&ctlProgressBar::show), void (QWidget::*)()>);

// One tick of a timer, run at once.
static void tick(QTimer* timer) {
    ASSERT_TRUE(QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection));
}

// --- ctlProgressBar -------------------------------------------------------------------------

TEST(ProgressBar, HasThirtySixFramesAndStartsStopped) {
    ctlProgressBar bar;
    for (int i = 0; i < ctlProgressBar::kFrameCount; ++i) {
        ASSERT_NE(bar.Image1(i), nullptr);
        EXPECT_EQ(bar.Image1(i)->objectName(), QStringLiteral("Image1"));
        EXPECT_EQ(bar.Image1(i)->property("index").toInt(), i);
        EXPECT_FALSE(bar.Image1(i)->pixmap().isNull());
    }
    EXPECT_EQ(bar.Image1(36), nullptr);
    EXPECT_EQ(bar.ProgressTimer()->interval(), 80);
    EXPECT_FALSE(bar.ProgressTimer()->isActive());
    EXPECT_EQ(bar.FrameShown(), 0);
    EXPECT_EQ(bar.ImageShow()->geometry(), bar.rect());
}

TEST(ProgressBar, FramesFollowEachOtherAndWrapAfterThirtyFive) {
    ctlProgressBar bar;
    bar.Start(true);
    EXPECT_TRUE(bar.ImageShow()->isVisibleTo(&bar));
    EXPECT_TRUE(bar.ProgressTimer()->isActive());
    bar.ProgressTimer()->stop();
    // Drive the ticks by hand: each shows the frame of the index, then the index moves on.
    for (int n = 0; n < 40; ++n) {
        EXPECT_EQ(bar.Frame(), n % 36);
        tick(bar.ProgressTimer());
        EXPECT_EQ(bar.FrameShown(), n % 36);
        EXPECT_EQ(bar.ImageShow()->pixmap().toImage(), bar.Image1(n % 36)->pixmap().toImage());
    }
    EXPECT_EQ(bar.Frame(), 4);
    bar.Start(false);
    EXPECT_FALSE(bar.ImageShow()->isVisibleTo(&bar));
    EXPECT_FALSE(bar.ProgressTimer()->isActive());
}

TEST(ProgressBar, FramesDifferFromEachOther) {
    ctlProgressBar bar;
    EXPECT_NE(bar.Image1(0)->pixmap().toImage(), bar.Image1(1)->pixmap().toImage());
    EXPECT_NE(bar.Image1(17)->pixmap().toImage(), bar.Image1(18)->pixmap().toImage());
}

TEST(ProgressBar, RunsOnItsOwnTimer) {
    ctlProgressBar bar;
    bar.ProgressTimer()->setInterval(5);
    bar.Start(true);
    QTRY_VERIFY_WITH_TIMEOUT(bar.Frame() >= 3, 2000);
    bar.Start(false);
}

TEST(ProgressBar, TakesTheSkinFramesFromTheApplicationFolder) {
    TestHome home;
    QImage strip(36 * 10, 4, QImage::Format_RGB32);
    for (int i = 0; i < 36; ++i)
        for (int x = 0; x < 10; ++x)
            for (int y = 0; y < 4; ++y)
                strip.setPixel(i * 10 + x, y, qRgb(i * 7, 0, 0));
    home.write(QStringLiteral("resources/.keep"), {});
    ASSERT_TRUE(strip.save(home.file(QStringLiteral("resources/progress.png"))));
    ctlProgressBar bar;
    EXPECT_EQ(bar.Image1(5)->pixmap().size(), QSize(10, 4));
    EXPECT_EQ(bar.Image1(5)->pixmap().toImage().pixelColor(3, 2), QColor(35, 0, 0));
}

// --- ctlBlink ---------------------------------------------------------------------------------

TEST(Blink, StartsDarkWithSevenPictures) {
    ctlBlink lamp;
    EXPECT_EQ(lamp.PictureShown(), 0);
    EXPECT_EQ(lamp.TimerBlink()->interval(), 400);
    for (int i = 0; i < ctlBlink::kPictureCount; ++i) {
        ASSERT_NE(lamp.imgBlink(i), nullptr);
        EXPECT_EQ(lamp.imgBlink(i)->property("index").toInt(), i);
    }
    EXPECT_EQ(lamp.imgBlink(7), nullptr);
}

TEST(Blink, EachModeAlternatesItsPairWhileBlinking) {
    for (int mode = 1; mode <= 3; ++mode) {
        ctlBlink lamp;
        lamp.Start(mode, true);
        EXPECT_TRUE(lamp.TimerBlink()->isActive());
        EXPECT_EQ(lamp.PictureShown(), 0); // nothing changes before the first tick
        const int a = 2 * mode - 1, b = 2 * mode;
        tick(lamp.TimerBlink());
        EXPECT_EQ(lamp.PictureShown(), b);
        tick(lamp.TimerBlink());
        EXPECT_EQ(lamp.PictureShown(), a);
        tick(lamp.TimerBlink());
        EXPECT_EQ(lamp.PictureShown(), b);
        EXPECT_TRUE(lamp.TimerBlink()->isActive());
    }
}

TEST(Blink, WithoutBlinkingStopsOnTheSecondPicture) {
    ctlBlink lamp;
    lamp.Start(2, false);
    EXPECT_TRUE(lamp.TimerBlink()->isActive());
    tick(lamp.TimerBlink());
    EXPECT_EQ(lamp.PictureShown(), 4);
    EXPECT_FALSE(lamp.TimerBlink()->isActive());
}

TEST(Blink, ModeZeroOrUnknownShowsTheDarkPictureAndStops) {
    ctlBlink lamp;
    lamp.Start(3, true);
    tick(lamp.TimerBlink());
    EXPECT_EQ(lamp.PictureShown(), 6);
    lamp.Start(0, true);
    EXPECT_EQ(lamp.PictureShown(), 0);
    EXPECT_FALSE(lamp.TimerBlink()->isActive());
    lamp.Start(1, true);
    lamp.Start(7, true);
    EXPECT_EQ(lamp.PictureShown(), 0);
    EXPECT_FALSE(lamp.TimerBlink()->isActive());
}

TEST(Blink, RunsOnItsOwnTimer) {
    ctlBlink lamp;
    lamp.TimerBlink()->setInterval(5);
    lamp.Start(1, true);
    QTRY_COMPARE_WITH_TIMEOUT(lamp.PictureShown(), 2, 2000);
    QTRY_COMPARE_WITH_TIMEOUT(lamp.PictureShown(), 1, 2000);
    lamp.Start(0, false);
}

TEST(Blink, PaintsThePictureOnView) {
    ctlBlink lamp;
    lamp.resize(16, 16);
    const QImage dark = lamp.grab().toImage();
    lamp.Start(1, true);
    tick(lamp.TimerBlink());
    const QImage lit = lamp.grab().toImage();
    EXPECT_NE(dark, lit);
}

// --- ctlVerticalTab ---------------------------------------------------------------------------

TEST(VerticalTab, OutOfRangeTabsDoNothing) {
    ctlVerticalTab tabs;
    QSignalSpy clicks(&tabs, &ctlVerticalTab::TabClick);
    tabs.SetTab(5);
    tabs.SetTab(-1);
    EXPECT_EQ(clicks.size(), 0);
    EXPECT_EQ(tabs.SelectedIndex(), -1);
    for (int i = 0; i < ctlVerticalTab::kTabCount; ++i)
        EXPECT_FALSE(tabs.ImgTab(i)->isVisibleTo(&tabs));
}

TEST(VerticalTab, FirstSetTabMovesOneIconOnly) {
    ctlVerticalTab tabs;
    QList<QPoint> home;
    for (int i = 0; i < 5; ++i)
        home << tabs.ImgIcon(i)->pos();
    QSignalSpy clicks(&tabs, &ctlVerticalTab::TabClick);
    tabs.SetTab(2);
    ASSERT_EQ(clicks.size(), 1);
    EXPECT_EQ(clicks[0][0].toInt(), 2);
    EXPECT_EQ(tabs.SelectedIndex(), 2);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(tabs.ImgTab(i)->isVisibleTo(&tabs), i == 2);
        EXPECT_EQ(tabs.ImgIcon(i)->pos(), i == 2 ? home[i] + QPoint(2, -2) : home[i]);
    }
    // Another tab: the old icon goes back, the new one lifts.
    tabs.SetTab(4);
    EXPECT_EQ(tabs.ImgIcon(2)->pos(), home[2]);
    EXPECT_EQ(tabs.ImgIcon(4)->pos(), home[4] + QPoint(2, -2));
    // The same tab again: it stays where it was and the event comes again.
    tabs.SetTab(4);
    EXPECT_EQ(tabs.ImgIcon(4)->pos(), home[4] + QPoint(2, -2));
    EXPECT_EQ(clicks.size(), 3);
}

TEST(VerticalTab, ClickOnTheClickArea) {
    ctlVerticalTab tabs;
    QSignalSpy clicks(&tabs, &ctlVerticalTab::TabClick);
    QTest::mouseClick(tabs.ImgClick(1), Qt::LeftButton, {}, QPoint(10, 10));
    ASSERT_EQ(clicks.size(), 1);
    EXPECT_EQ(clicks[0][0].toInt(), 1);
}

TEST(VerticalTab, TooltipsComeFromTheLanguage) {
    setTextLookup([](const QString& key) { return QStringLiteral("<%1>").arg(key); });
    ctlVerticalTab tabs;
    tabs.TranslateControl(nullptr);
    setTextLookup(nullptr);
    EXPECT_EQ(tabs.ImgClick(0)->toolTip(), QStringLiteral("<STR_BACKGROUND_TITLE>"));
    EXPECT_EQ(tabs.ImgIcon(3)->toolTip(), QStringLiteral("<STR_SYMBOLS_TITLE>"));
    EXPECT_EQ(tabs.ImgTab(4)->toolTip(), QStringLiteral("<STR_AUDIO_REC_TITLE>"));
}

TEST(VerticalTab, SetBackgroundUsesTheFormPictureOrItsColour) {
    QWidget form;
    form.resize(100, 300);
    QPalette palette = form.palette();
    palette.setColor(QPalette::Window, QColor(1, 2, 3));
    form.setPalette(palette);
    auto* tabs = new ctlVerticalTab(&form);
    tabs->move(10, 20);
    tabs->SetBackground(&form, tabs);
    EXPECT_EQ(tabs->Background().toImage().pixelColor(0, 0), QColor(1, 2, 3));
    QPixmap skin(40, 40); // smaller than the control: the rest is the back colour
    skin.fill(QColor(90, 80, 70));
    setFormPicture(&form, skin);
    tabs->SetBackground(&form, tabs);
    const QImage piece = tabs->Background().toImage();
    EXPECT_EQ(piece.pixelColor(0, 0), QColor(90, 80, 70));
    EXPECT_EQ(piece.pixelColor(29, 19), QColor(90, 80, 70));
    EXPECT_EQ(piece.pixelColor(0, 25), QColor(1, 2, 3));
}

// --- GrButtonIII ------------------------------------------------------------------------------

TEST(GrButton, FaceFollowsTheState) {
    GrButtonIII button;
    button.resize(60, 24);
    EXPECT_EQ(button.CurrentFace(), GrButtonIII::FaceNormal);
    button.setPressed(true);
    EXPECT_TRUE(button.Pressed());
    EXPECT_EQ(button.CurrentFace(), GrButtonIII::FacePressed);
    button.setPressed(false);
    button.setDown(true);
    EXPECT_EQ(button.CurrentFace(), GrButtonIII::FacePressed);
    EXPECT_FALSE(button.Pressed());
    button.setDown(false);
    button.setEnabled(false);
    EXPECT_EQ(button.CurrentFace(), GrButtonIII::FaceDisabled);
    // Shown pressed stays visible while disabled, as a running player's button does.
    button.setPressed(true);
    EXPECT_EQ(button.CurrentFace(), GrButtonIII::FacePressed);
}

TEST(GrButton, DrawsTheFacePictureOfTheState) {
    GrButtonIII button;
    button.resize(40, 20);
    QPixmap red(10, 10), blue(10, 10);
    red.fill(Qt::red);
    blue.fill(Qt::blue);
    button.setFacePicture(GrButtonIII::FaceNormal, red);
    button.setFacePicture(GrButtonIII::FacePressed, blue);
    EXPECT_EQ(button.grab().toImage().pixelColor(20, 10), QColor(Qt::red));
    button.setPressed(true);
    EXPECT_EQ(button.grab().toImage().pixelColor(20, 10), QColor(Qt::blue));
    // Stretched with a fixed border: the corner keeps the picture's corner.
    EXPECT_EQ(button.grab().toImage().pixelColor(0, 0), QColor(Qt::blue));
}

TEST(GrButton, TextIsAPropertyForTheLocaliser) {
    GrButtonIII button;
    EXPECT_STREQ(button.metaObject()->className(), "GrButtonIII");
    ASSERT_TRUE(button.setProperty("text", QStringLiteral("OK")));
    EXPECT_EQ(button.text(), QStringLiteral("OK"));
    QSignalSpy clicks(&button, &QAbstractButton::clicked);
    button.resize(60, 24);
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(clicks.size(), 1);
}

TEST(GrButton, CaptionLookFromTheShippedSkin) {
    TestHome home(/*withData=*/true);
    GrButtonIII button;
    button.resize(16, 16);
    EXPECT_TRUE(button.setCaptionLook(QStringLiteral("close")));
    EXPECT_FALSE(button.icon().isNull());
    // The white cross of the glyph meets in the middle.
    const QImage resting = button.grab().toImage();
    EXPECT_GT(resting.pixelColor(8, 8).lightness(), 200);
    button.setPressed(true);
    EXPECT_NE(button.grab().toImage(), resting);
    EXPECT_FALSE(button.setCaptionLook(QStringLiteral("no-such-glyph")));
}

TEST(GrButton, SkinFacesComeFromTheApplicationFolder) {
    TestHome home(/*withData=*/true);
    const QImage shipped(home.file(QStringLiteral("resources/button_hot.png")));
    ASSERT_FALSE(shipped.isNull());
    EXPECT_EQ(
        GrButtonIII::DefaultFace(GrButtonIII::FaceHot).toImage().convertToFormat(shipped.format()),
        shipped);
}
