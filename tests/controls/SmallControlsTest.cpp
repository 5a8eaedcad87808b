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

TEST(ProgressBar, ShowsItsThirtySixFramesInTurnAndWraps) {
    ctlProgressBar bar;
    for (int i = 0; i < ctlProgressBar::kFrameCount; ++i) {
        ASSERT_NE(bar.Image1(i), nullptr);
        EXPECT_EQ(bar.Image1(i)->property("index").toInt(), i);
    }
    EXPECT_EQ(bar.Image1(36), nullptr);
    EXPECT_NE(bar.Image1(17)->pixmap().toImage(), bar.Image1(18)->pixmap().toImage());
    EXPECT_EQ(bar.ProgressTimer()->interval(), 80);
    EXPECT_FALSE(bar.ProgressTimer()->isActive());
    EXPECT_EQ(bar.ImageShow()->geometry(), bar.rect());
    EXPECT_EQ(bar.FrameShown(), 0);
    bar.Start(true);
    EXPECT_TRUE(bar.ImageShow()->isVisibleTo(&bar));
    EXPECT_TRUE(bar.ProgressTimer()->isActive());
    for (int n = 0; n < 40; ++n) { // each tick shows the frame of the index, then moves on
        tick(bar.ProgressTimer());
        EXPECT_EQ(bar.FrameShown(), n % 36);
        EXPECT_EQ(bar.ImageShow()->pixmap().toImage(), bar.Image1(n % 36)->pixmap().toImage());
    }
    EXPECT_EQ(bar.Frame(), 4);
    bar.Start(false);
    EXPECT_FALSE(bar.ImageShow()->isVisibleTo(&bar));
    EXPECT_FALSE(bar.ProgressTimer()->isActive());
    bar.ProgressTimer()->setInterval(5); // and the real timer drives it
    bar.Start(true);
    QTRY_VERIFY_WITH_TIMEOUT(bar.Frame() >= 7, 2000);
}

TEST(ProgressBar, TakesTheSkinFramesFromTheApplicationFolder) {
    TestHome home;
    QImage strip(36 * 10, 4, QImage::Format_RGB32);
    QPainter painter(&strip);
    for (int i = 0; i < 36; ++i)
        painter.fillRect(i * 10, 0, 10, 4, QColor(i * 7, 0, 0));
    painter.end();
    home.write(QStringLiteral("resources/.keep"), {});
    ASSERT_TRUE(strip.save(home.file(QStringLiteral("resources/progress.png"))));
    ctlProgressBar bar;
    EXPECT_EQ(bar.Image1(5)->pixmap().size(), QSize(10, 4));
    EXPECT_EQ(bar.Image1(5)->pixmap().toImage().pixelColor(3, 2), QColor(35, 0, 0));
}

TEST(Blink, EachModeShowsItsPairAfterTheFirstTick) {
    struct Case {
        int mode;
        bool blink;
        std::vector<int> shown; // after each tick
        bool running;
    };
    const Case cases[] = {{1, true, {2, 1, 2}, true},
                          {2, true, {4, 3, 4}, true},
                          {3, true, {6, 5, 6, 5}, true},
                          {2, false, {4}, false}}; // without blinking it stops on the second
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.mode << c.blink);
        ctlBlink lamp;
        EXPECT_EQ(lamp.TimerBlink()->interval(), 400);
        lamp.Start(c.mode, c.blink);
        EXPECT_EQ(lamp.PictureShown(), 0);
        std::vector<int> shown;
        for (std::size_t i = 0; i < c.shown.size(); ++i) {
            tick(lamp.TimerBlink());
            shown.push_back(lamp.PictureShown());
        }
        EXPECT_EQ(shown, c.shown);
        EXPECT_EQ(lamp.TimerBlink()->isActive(), c.running);
    }
}

TEST(Blink, ModeZeroOrUnknownShowsTheDarkPictureAndStops) {
    ctlBlink lamp;
    lamp.resize(16, 16);
    const QImage dark = lamp.grab().toImage();
    for (int mode : {0, 7}) {
        lamp.Start(3, true);
        tick(lamp.TimerBlink());
        ASSERT_NE(lamp.PictureShown(), 0);
        EXPECT_NE(lamp.grab().toImage(), dark); // the picture on view is painted
        lamp.Start(mode, true);
        EXPECT_EQ(lamp.PictureShown(), 0);
        EXPECT_FALSE(lamp.TimerBlink()->isActive());
    }
    lamp.TimerBlink()->setInterval(5); // and the real timer drives it
    lamp.Start(1, true);
    QTRY_COMPARE_WITH_TIMEOUT(lamp.PictureShown(), 2, 2000);
    QTRY_COMPARE_WITH_TIMEOUT(lamp.PictureShown(), 1, 2000);
}

TEST(VerticalTab, SetTabLiftsOneIconAndReportsIt) {
    ctlVerticalTab tabs;
    QList<QPoint> home;
    for (int i = 0; i < ctlVerticalTab::kTabCount; ++i)
        home << tabs.ImgIcon(i)->pos();
    QSignalSpy clicks(&tabs, &ctlVerticalTab::TabClick);
    tabs.SetTab(5);
    tabs.SetTab(-1);
    EXPECT_EQ(clicks.size(), 0);
    EXPECT_EQ(tabs.SelectedIndex(), -1);
    // First 2; then 4, and the old icon goes back; then 4 again, which stays lifted.
    for (int index : {2, 4, 4}) {
        tabs.SetTab(index);
        EXPECT_EQ(clicks.takeLast().at(0).toInt(), index);
        EXPECT_EQ(tabs.SelectedIndex(), index);
        for (int i = 0; i < ctlVerticalTab::kTabCount; ++i) {
            EXPECT_EQ(tabs.ImgTab(i)->isVisibleTo(&tabs), i == index) << i;
            EXPECT_EQ(tabs.ImgIcon(i)->pos(), home[i] + (i == index ? QPoint(2, -2) : QPoint()));
        }
    }
    QTest::mouseClick(tabs.ImgClick(1), Qt::LeftButton, {}, QPoint(10, 10));
    EXPECT_EQ(clicks.takeLast().at(0).toInt(), 1);
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

TEST(GrButton, DrawsTheFaceOfItsState) {
    GrButtonIII button;
    button.resize(40, 20);
    QPixmap red(10, 10), blue(10, 10);
    red.fill(Qt::red);
    blue.fill(Qt::blue);
    button.setFacePicture(GrButtonIII::FaceNormal, red);
    button.setFacePicture(GrButtonIII::FacePressed, blue);
    EXPECT_EQ(button.CurrentFace(), GrButtonIII::FaceNormal);
    EXPECT_EQ(button.grab().toImage().pixelColor(20, 10), QColor(Qt::red));
    button.setPressed(true);
    EXPECT_EQ(button.CurrentFace(), GrButtonIII::FacePressed);
    // Stretched with a fixed border: the corner keeps the picture's corner.
    EXPECT_EQ(button.grab().toImage().pixelColor(0, 0), QColor(Qt::blue));
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

TEST(GrButton, SkinFromTheApplicationFolder) {
    TestHome home(/*withData=*/true);
    const QImage shipped(home.file(QStringLiteral("resources/button_hot.png")));
    ASSERT_FALSE(shipped.isNull());
    EXPECT_EQ(
        GrButtonIII::DefaultFace(GrButtonIII::FaceHot).toImage().convertToFormat(shipped.format()),
        shipped);
    GrButtonIII button;
    button.resize(16, 16);
    EXPECT_TRUE(button.setCaptionLook(QStringLiteral("close")));
    // The white cross of the glyph meets in the middle.
    const QImage resting = button.grab().toImage();
    EXPECT_GT(resting.pixelColor(8, 8).lightness(), 200);
    button.setPressed(true);
    EXPECT_NE(button.grab().toImage(), resting);
    EXPECT_FALSE(button.setCaptionLook(QStringLiteral("no-such-glyph")));
}
