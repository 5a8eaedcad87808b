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
#include <tuple>
#include <type_traits>

// Showing a frame must not hide QWidget::show.
static_assert(std::is_same_v<decltype(&ctlProgressBar::show), void (QWidget::*)()>);

// One tick of a timer, run at once.
static void tick(QTimer* timer) {
    ASSERT_TRUE(QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection));
}

TEST(ProgressBar, ShowsItsThirtySixFramesInTurnAndWraps) {
    ctlProgressBar bar;
    for (int i = 0; i < ctlProgressBar::kFrameCount; ++i)
        ASSERT_NE(bar.Image1(i), nullptr);
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

TEST(Blink, EachModeShowsItsPairFromTheFirstTick) {
    struct Case {
        int mode;
        bool blink;
        std::vector<int> shown; // after each tick
    };
    // Without blinking the lamp stops on the second picture of its pair.
    const Case cases[] = {{1, true, {2, 1, 2}}, {2, true, {4, 3, 4}}, {3, true, {6, 5, 6, 5}},
                          {2, false, {4}},      {0, true, {}},        {7, true, {}}};
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
        EXPECT_EQ(lamp.TimerBlink()->isActive(), c.blink && !c.shown.empty());
    }
}

TEST(Blink, ModeZeroOrUnknownTurnsTheLampDark) {
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
}

TEST(VerticalTab, SetTabLiftsOneIconAndReportsIt) {
    setTextLookup([](const QString& key) { return QStringLiteral("<%1>").arg(key); });
    ctlVerticalTab tabs;
    tabs.TranslateControl(nullptr);
    setTextLookup(nullptr);
    EXPECT_EQ(tabs.ImgClick(0)->toolTip(), QStringLiteral("<STR_BACKGROUND_TITLE>"));
    EXPECT_EQ(tabs.ImgIcon(3)->toolTip(), QStringLiteral("<STR_SYMBOLS_TITLE>"));
    EXPECT_EQ(tabs.ImgTab(4)->toolTip(), QStringLiteral("<STR_AUDIO_REC_TITLE>"));
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

TEST(VerticalTab, SetBackgroundTakesTheSkinUnderItAndTheBackColourBeyond) {
    QWidget form;
    form.resize(100, 300);
    QPalette palette = form.palette();
    palette.setColor(QPalette::Window, QColor(1, 2, 3));
    form.setPalette(palette);
    auto* tabs = new ctlVerticalTab(&form);
    tabs->move(10, 20);
    tabs->SetBackground(&form, tabs);
    EXPECT_EQ(tabs->Background().toImage().pixelColor(0, 0), QColor(1, 2, 3)); // no skin yet
    QPixmap skin(40, 40);
    skin.fill(QColor(90, 80, 70));
    setFormPicture(&form, skin);
    tabs->SetBackground(&form, tabs);
    const QImage piece = tabs->Background().toImage();
    EXPECT_EQ(piece.pixelColor(29, 19), QColor(90, 80, 70));
    EXPECT_EQ(piece.pixelColor(0, 25), QColor(1, 2, 3));
}

TEST(GrButton, DrawsTheFaceOfItsState) {
    const QColor colours[] = {Qt::red, Qt::green, Qt::blue, Qt::gray}; // one a face
    GrButtonIII button;
    button.resize(40, 20);
    for (int face = 0; face < 4; ++face) {
        QPixmap picture(10, 10);
        picture.fill(colours[face]);
        button.setFacePicture(GrButtonIII::Face(face), picture);
    }
    // Pressed, down, enabled. Shown pressed stays so while disabled, as a playing player's is.
    using F = GrButtonIII;
    const std::tuple<bool, bool, bool, F::Face> cases[] = {{false, false, true, F::FaceNormal},
                                                           {true, false, true, F::FacePressed},
                                                           {false, true, true, F::FacePressed},
                                                           {false, false, false, F::FaceDisabled},
                                                           {true, false, false, F::FacePressed}};
    for (auto [pressed, down, enabled, face] : cases) {
        button.setPressed(pressed);
        button.setDown(down);
        button.setEnabled(enabled);
        EXPECT_EQ(button.CurrentFace(), face);
        // Stretched with a fixed border: the corner keeps the picture's corner.
        const QImage shown = button.grab().toImage();
        EXPECT_EQ(shown.pixelColor(0, 0), colours[face]);
        EXPECT_EQ(shown.pixelColor(20, 10), colours[face]);
    }
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
