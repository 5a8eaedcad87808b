#include "browse/ctlSlideThumbs.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "platform/modDialogs.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class SlideThumbs : public ::testing::Test {
protected:
    TestHome home;
    ScriptedResponder answers;
    clsMessage message;
    ctlSlideThumbs strip;

    void SetUp() override {
        message.Initialize(home.path() + QStringLiteral("/Messages/"),
                           QStringLiteral("message.xml"), QStringLiteral("Strip"));
        strip.resize(452, 112);
    }
    void addSlides(int count) {
        for (int i = 0; i < count; ++i)
            message.Slides()->Add();
    }
    QColor pixel(int tile, int x, int y) const {
        return strip.Tile(tile)->surface().pixelColor(x, y);
    }
    // The right end of the surface in the strip's coordinates.
    int surfaceRight() const { return strip.PictureScroll()->x() + strip.PictureScroll()->width(); }
};

TEST_F(SlideThumbs, SixSlidesScrollToTheLastTileAndRebuildingKeepsSurplusTiles) {
    addSlides(6);
    strip.DrawThumbs(message);
    ASSERT_EQ(strip.TileCount(), 6);
    EXPECT_EQ(strip.SelectedTile(), 6) << "the selection follows each new tile";
    // Tiles are square and fill the surface's height but one pixel each side.
    const int side = strip.Tile(1)->width();
    EXPECT_EQ(strip.Tile(1)->height(), side);
    EXPECT_EQ(strip.Tile(6)->geometry(), QRect(QPoint((side + 2) * 5, 1), QSize(side, side)));
    EXPECT_EQ(side, strip.PictureScroll()->height() - 2);
    EXPECT_EQ(strip.PictureScroll()->width(), strip.Tile(6)->geometry().right() + 2);
    EXPECT_GT(strip.HScroll()->maximum(), 0);
    EXPECT_EQ(strip.PictureScroll()->x(), 0) << "drawing alone does not scroll";

    strip.ScrollToEnd();
    EXPECT_EQ(surfaceRight(), strip.width());
    EXPECT_EQ(strip.HScroll()->value(), strip.HScroll()->maximum());
    strip.HScroll()->setValue(10);
    EXPECT_EQ(strip.PictureScroll()->x(), -10);

    for (int i = 6; i > 1; --i)
        message.DeleteSlide(i);
    strip.DrawThumbs(message);
    EXPECT_EQ(strip.TileCount(), 1);
    ASSERT_NE(strip.Tile(6), nullptr) << "tiles are kept for reuse";
    EXPECT_TRUE(strip.Tile(6)->isHidden());
    EXPECT_FALSE(strip.Tile(1)->isHidden());
    EXPECT_EQ(strip.HScroll()->maximum(), 0) << "one slide: no scrolling";
    EXPECT_EQ(strip.PictureScroll()->x(), 0);
    strip.ScrollToEnd(); // five or fewer: nothing moves
    EXPECT_EQ(strip.PictureScroll()->x(), 0);
}

TEST_F(SlideThumbs, TileShowsPictureOrColourAndTheSelectionFrameMoves) {
    addSlides(2);
    message.Slides()->Item(1)->setColor(toVbColor(QColor(10, 200, 30)));
    QImage picture(160, 120, QImage::Format_RGB32);
    picture.fill(QColor(250, 0, 5));
    message.Slides()->Item(2)->setImage(picture);
    message.Slides()->Item(2)->setSound(QStringLiteral("/tmp/a.wav"));
    strip.DrawThumbs(message);

    const QColor frame = fromVbColor(ctlSlideThumbs::kFrameColor);
    const QColor selection = fromVbColor(ctlSlideThumbs::kSelectionColor);
    EXPECT_EQ(pixel(1, 20, 20), QColor(10, 200, 30)) << "no picture: the slide's colour";
    EXPECT_EQ(pixel(2, 20, 20), QColor(250, 0, 5));
    EXPECT_EQ(pixel(1, 0, 0), fromVbColor(ctlSlideThumbs::kPageColor)) << "rounded corner";
    EXPECT_EQ(pixel(1, 1, 40), frame);
    EXPECT_EQ(pixel(2, 2, 40), selection);
    const int right = strip.Tile(2)->width() - 2;
    EXPECT_EQ(pixel(2, right, 40), selection) << "all four sides of the frame show";

    strip.DrawThumb(true, *message.Slides()->Item(1));
    EXPECT_EQ(strip.SelectedTile(), 1);
    EXPECT_EQ(pixel(1, 2, 40), selection);
    EXPECT_EQ(pixel(2, 2, 40), frame);
}

TEST_F(SlideThumbs, LeftClickOnATileReportsItBeforeTheFrameMoves) {
    addSlides(3);
    strip.DrawThumbs(message);
    int selectedWhenReported = 0;
    QObject::connect(&strip, &ctlSlideThumbs::SlideClick,
                     [&](int) { selectedWhenReported = strip.SelectedTile(); });
    QSignalSpy clicks(&strip, &ctlSlideThumbs::SlideClick);
    QTest::mouseClick(strip.Tile(2), Qt::LeftButton);
    ASSERT_EQ(clicks.count(), 1);
    EXPECT_EQ(clicks.at(0).at(0).toInt(), 2);
    EXPECT_EQ(selectedWhenReported, 3);
    EXPECT_EQ(strip.SelectedTile(), 2);
}

TEST_F(SlideThumbs, LeftClickOnTheEmptyStripAddsASlideButNotOnTheSurface) {
    addSlides(1);
    strip.DrawThumbs(message);
    QSignalSpy menu(&strip, &ctlSlideThumbs::MenuClick);
    QTest::mouseClick(&strip, Qt::LeftButton, {}, QPoint(strip.width() - 20, 20));
    ASSERT_EQ(menu.count(), 1);
    EXPECT_EQ(menu.at(0).at(0).toInt(), ctlSlideThumbs::KeyAdd);
    EXPECT_EQ(menu.at(0).at(1).toInt(), 1);

    QTest::mouseClick(strip.PictureScroll(), Qt::LeftButton, {}, QPoint(2, 2));
    EXPECT_EQ(menu.count(), 1) << "a click on the surface beside a tile does nothing";
}

struct PopupCase {
    bool onTile;
    bool menuEnabled;
    QStringList disabled;
};

TEST_F(SlideThumbs, PopupEnablesItemsByPlaceAndFlag) {
    addSlides(2);
    strip.DrawThumbs(message);
    const QStringList tileItems = {QStringLiteral("3"),  QStringLiteral("4"), QStringLiteral("6"),
                                   QStringLiteral("7"),  QStringLiteral("9"), QStringLiteral("10"),
                                   QStringLiteral("11"), QStringLiteral("12")};
    const PopupCase cases[] = {
        {true, true, {}},
        {false, true, tileItems},
        {true, false, QStringList{QStringLiteral("1")} + tileItems},
        {false, false, QStringList{QStringLiteral("1")} + tileItems},
    };
    for (const PopupCase& c : cases) {
        SCOPED_TRACE(::testing::Message()
                     << "on tile " << c.onTile << ", enabled " << c.menuEnabled);
        strip.RightClickMenuEnabled(c.menuEnabled);
        answers.popups.clear();
        if (c.onTile)
            QTest::mouseClick(strip.Tile(1), Qt::RightButton);
        else
            QTest::mouseClick(&strip, Qt::RightButton, {}, QPoint(strip.width() - 10, 10));
        ASSERT_EQ(answers.popups.size(), 1u);
        EXPECT_EQ(answers.popups[0].keys.join(QLatin1Char(',')),
                  QStringLiteral("1,3,4,6,7,9,10,11,12"));
        EXPECT_EQ(answers.popups[0].disabled, c.disabled);
    }
}

TEST_F(SlideThumbs, ChosenKeyNamesTheTileAndARightClickSelectsNothing) {
    addSlides(3);
    strip.DrawThumbs(message);
    QSignalSpy menu(&strip, &ctlSlideThumbs::MenuClick);
    QSignalSpy clicks(&strip, &ctlSlideThumbs::SlideClick);
    answers.popupKeys.push_back(QStringLiteral("7"));
    QTest::mouseClick(strip.Tile(2), Qt::RightButton);
    ASSERT_EQ(menu.count(), 1);
    EXPECT_EQ(menu.at(0).at(0).toInt(), ctlSlideThumbs::KeyDuplicateAfter);
    EXPECT_EQ(menu.at(0).at(1).toInt(), 2);
    EXPECT_EQ(clicks.count(), 0);
    EXPECT_EQ(strip.SelectedTile(), 3);

    QTest::mouseClick(strip.Tile(1), Qt::LeftButton);
    EXPECT_EQ(clicks.count(), 1) << "the next left click acts again";
}

} // namespace
