#include "app/clsPreviewTiming.h"
#include "app/frmMain.h"
#include "app/frmPreview.h"
#include "audio/mmstimer.h"
#include "browse/ctlSlideThumbs.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "platform/modShared.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"

#include <QAbstractButton>
#include <QLabel>
#include <QTest>
#include <gtest/gtest.h>

namespace {

using Step = clsPreviewTiming::Step;

// Steps from the start of a show until slide 2 starts (or the show ends), the first slide
// lasting `duration`.
int stepsOfFirstSlide(std::int32_t duration) {
    clsPreviewTiming timing;
    timing.Start(false, duration);
    EXPECT_EQ(timing.Tick(2), Step::PlaySlide) << "the first step only loads slide 1";
    timing.SlideStarted(duration);
    int steps = 0;
    Step step = Step::Nothing;
    while (step == Step::Nothing && steps < 10000) {
        step = timing.Tick(2);
        ++steps;
    }
    EXPECT_EQ(step, Step::PlaySlide);
    return steps;
}

TEST(PreviewTiming, ASlideStaysForItsDurationOverFiftyPlusOneSteps) {
    const std::pair<std::int32_t, int> cases[] = {{0, 1}, {49, 1}, {50, 2}, {3000, 61}, {3020, 61}};
    for (const auto& [duration, steps] : cases)
        EXPECT_EQ(stepsOfFirstSlide(duration), steps) << "duration " << duration;
}

TEST(PreviewTiming, AShowLoopsOrStopsAfterItsLastSlide) {
    for (const bool loop : {true, false}) {
        clsPreviewTiming timing;
        timing.Start(loop, 100);
        ASSERT_EQ(timing.Tick(1), Step::PlaySlide);
        timing.SlideStarted(100);
        EXPECT_EQ(timing.Tick(1), Step::Nothing);
        EXPECT_EQ(timing.Tick(1), Step::Nothing);
        EXPECT_EQ(timing.Elapsed(), 100);
        EXPECT_EQ(timing.Tick(1), loop ? Step::Wrap : Step::Stop);
        if (!loop)
            continue;
        timing.Restart(true, 100);
        EXPECT_EQ(timing.Elapsed(), 0) << "the time shown goes back to 0";
        EXPECT_EQ(timing.Tick(1), Step::PlaySlide) << "slide 1 starts one step later";
        EXPECT_EQ(timing.PlaySlide(), 1);
    }
    clsPreviewTiming empty;
    empty.Start(true, 0);
    EXPECT_EQ(empty.Tick(0), Step::Stop) << "a message without slides stops at once";
}

TEST(PreviewTiming, LateTimerTicksDoNotDelayTheSlidesOverTwentySlides) {
    // A timer that fires late or early by up to 80 ms, driven by a fake clock.
    const int jitter[] = {50, 63, 41, 130, 12, 55, 75, 50, 47, 88};
    clsPreviewTiming timing;
    timing.Start(false, 0);
    std::int64_t now = 0;
    std::int64_t expected = clsPreviewTiming::kTick; // slide 1 is loaded by the first step
    int started = 0;
    for (int tick = 0; started < 21 && tick < 100000; ++tick) {
        const int elapsed = jitter[tick % 10];
        now += elapsed;
        for (int steps = timing.StepsDue(now); steps > 0; --steps) {
            const Step step = timing.Tick(20);
            if (step == Step::Nothing)
                continue;
            // Slide k starts (or the show ends) at the first firing of the timer that comes
            // within half a step of its time: nothing is owed from earlier late firings.
            constexpr int half = clsPreviewTiming::kTick / 2;
            EXPECT_GE(now + half, expected) << "slide " << started + 1;
            EXPECT_LT(now - elapsed + half, expected) << "slide " << started + 1;
            ++started;
            const std::int32_t duration = 200 + 37 * started;
            timing.SlideStarted(duration);
            expected += std::int64_t(duration / 50 + 1) * clsPreviewTiming::kTick;
            if (step == Step::Stop)
                started = 21;
        }
    }
    EXPECT_EQ(started, 21);
}

// A main window over the shipped data, English texts and scripted boxes, with its message of
// slides of the durations given.
class Preview : public ::testing::Test {
protected:
    TestHome home{true};
    ScriptedResponder boxes;
    std::unique_ptr<SharedConfig> shared;
    std::unique_ptr<frmMain> window;

    void start(const QString& previewMode) {
        shared = std::make_unique<SharedConfig>();
        clsPropertiesXML& properties = shared->setProperties(std::make_unique<clsPropertiesXML>());
        properties.SetProp(QStringLiteral("preferences"), QStringLiteral("AskNewSlide"),
                           QStringLiteral("0"));
        properties.SetProp(QStringLiteral("preferences"), QStringLiteral("PreviewMode"),
                           previewMode);
        shared->setLocalizer(std::make_unique<clsXMLocalizer>(*gProperties()))
            .SetLanguage(QStringLiteral("en-us"));
        gStarting = true;
        gSplashActive = false;
        window = std::make_unique<frmMain>();
        window->show();
    }
    void TearDown() override { window.reset(); }

    // The message's slides with the durations given, each showing a picture of `colour`.
    void setSlides(std::initializer_list<std::int32_t> durations, const QColor& colour) {
        while (window->message()->Slides()->Count() < int(durations.size()))
            window->AddSlide(false, true);
        int index = 0;
        for (std::int32_t duration : durations) {
            auto slide = window->message()->Slides()->Item(++index);
            slide->setDuration(duration);
            QImage picture(160, 120, QImage::Format_RGB32);
            picture.fill(colour);
            slide->setImage(picture);
        }
    }
    frmPreview* preview() const { return window->previewWindow(); }
    QWidget* player() const { return preview()->picPreviewPlayer(); }
    QString mainTime() const {
        return window->findChild<QLabel*>(QStringLiteral("lblTime"))->text();
    }
    // The show's clock, driven by the test.
    qint64 clock = 0;
    void tick(int times) {
        for (int i = 0; i < times && window->playing(); ++i)
            window->TimerPreviewPlay_Timer(clock += clsPreviewTiming::kTick);
    }
};

TEST_F(Preview, DockingMovesThePlayerAreaAndUndockingBringsItBesideTheWindow) {
    start(QStringLiteral("0"));
    const QPoint home(25, 52); // the phone's screen in the player window
    EXPECT_TRUE(window->docked());
    EXPECT_EQ(player()->parentWidget()->objectName(), QStringLiteral("picDockedPreview"));
    EXPECT_EQ(player()->pos(), QPoint(0, 0));
    EXPECT_EQ(window->width(), 886);
    EXPECT_FALSE(preview()->isVisible());

    window->move(40, 30);
    window->SetPreviewDocked(false);
    EXPECT_FALSE(window->docked());
    EXPECT_EQ(player()->parentWidget(), preview());
    EXPECT_EQ(player()->pos(), home);
    EXPECT_EQ(window->width(), 644);
    EXPECT_TRUE(preview()->isVisible());
    EXPECT_EQ(preview()->pos(), QPoint(window->x() + 644, window->y()));
    EXPECT_EQ(window->findChild<QWidget*>(QStringLiteral("cmdClose"))->x(), 622);
    EXPECT_EQ(preference(QStringLiteral("preferences"), QStringLiteral("PreviewModeSaved"), {}),
              QStringLiteral("0"));

    window->showMinimized();
    EXPECT_TRUE(preview()->windowState() & Qt::WindowMinimized) << "they minimise together";
    window->showNormal();
    EXPECT_FALSE(preview()->windowState() & Qt::WindowMinimized);

    QTest::mouseClick(preview()->findChild<QAbstractButton*>(QStringLiteral("cmdDock")),
                      Qt::LeftButton);
    EXPECT_TRUE(window->docked());
    EXPECT_EQ(player()->parentWidget()->objectName(), QStringLiteral("picDockedPreview"));
    EXPECT_EQ(window->width(), 886);
    EXPECT_EQ(window->findChild<QWidget*>(QStringLiteral("cmdClose"))->x(), 858);
}

TEST_F(Preview, PlayingShowsEachSlideOnTimeAndStopsAfterTheLast) {
    start(QStringLiteral("0"));
    setSlides({3000, 100, 200}, Qt::blue);
    window->findChild<QAbstractButton*>(QStringLiteral("cmdPreviewStop"))->click();
    EXPECT_FALSE(window->playing()) << "stop does nothing when nothing plays";

    window->StartPreview();
    window->TimerPreviewPlay()->setEnabled(false); // the test drives the ticks
    ASSERT_TRUE(window->playing());
    EXPECT_FALSE(window->findChild<QWidget*>(QStringLiteral("cmdAddNewSlide"))->isEnabled());
    EXPECT_EQ(mainTime(), QStringLiteral("0.0/3.3")) << "docked: the main window's time";

    tick(1);
    EXPECT_EQ(window->previewTiming().PlaySlide(), 1);
    tick(60);
    EXPECT_EQ(window->previewTiming().PlaySlide(), 1) << "3000 ms last 61 steps";
    tick(1);
    EXPECT_EQ(window->previewTiming().PlaySlide(), 2);
    EXPECT_EQ(preview()->imgPreview()->pixmap().toImage().pixelColor(5, 5), QColor(Qt::blue));
    tick(3);
    EXPECT_EQ(window->previewTiming().PlaySlide(), 3);
    EXPECT_EQ(mainTime(), QStringLiteral("3.2/3.3"));
    tick(4);
    EXPECT_TRUE(window->playing());
    tick(1);
    EXPECT_FALSE(window->playing()) << "no loop: the show ends after the last slide";
    EXPECT_TRUE(window->findChild<QWidget*>(QStringLiteral("cmdAddNewSlide"))->isEnabled());
    EXPECT_EQ(mainTime(), QString());
}

TEST_F(Preview, LoopPreferenceIsReadAtTheEndOfAPass) {
    start(QStringLiteral("1"));
    gProperties()->SetProp(QStringLiteral("preferences"), QStringLiteral("PreviewLoop"),
                           QStringLiteral("1"));
    setSlides({100}, Qt::red);
    window->StartPreview();
    window->TimerPreviewPlay()->setEnabled(false);
    tick(3);
    EXPECT_EQ(preview()->lblTime()->text(), QStringLiteral("0.1/0.1")) << "floating: its own";
    tick(1);
    EXPECT_TRUE(window->playing());
    EXPECT_EQ(preview()->lblTime()->text(), QStringLiteral("0.0/0.1"));
    EXPECT_EQ(window->previewTiming().PlaySlide(), 0);

    // Turned off through the player's pop-up: the pass ends the show.
    boxes.popupKeys.push_back(QStringLiteral("2"));
    QTest::mouseClick(preview()->imgPreview(), Qt::RightButton);
    ASSERT_EQ(boxes.popups.size(), 1u);
    EXPECT_EQ(boxes.popups[0].checked, QStringList{QStringLiteral("2")});
    tick(3);
    EXPECT_TRUE(window->playing());
    tick(1);
    EXPECT_FALSE(window->playing()) << "the show ends with the pass";
}

TEST_F(Preview, StripFollowsTheMessageAndItsClicksSelectOrAddSlides) {
    start(QStringLiteral("1"));
    setSlides({3000, 1000, 2000}, Qt::green);
    auto* strip = window->findChild<ctlSlideThumbs*>(QStringLiteral("ctlSlideThumbs1"));
    ASSERT_NE(strip, nullptr);
    EXPECT_EQ(strip->TileCount(), 3);
    EXPECT_EQ(strip->SelectedTile(), 3) << "the added slide is the current one";

    QTest::mouseClick(strip->Tile(2), Qt::LeftButton);
    EXPECT_EQ(window->slide()->Index(), 2);
    EXPECT_EQ(strip->SelectedTile(), 2);

    QTest::mouseClick(strip, Qt::LeftButton, {}, QPoint(strip->width() - 5, 5));
    EXPECT_EQ(window->message()->Slides()->Count(), 4) << "a click beside the tiles adds one";
    EXPECT_EQ(strip->TileCount(), 4);
    EXPECT_EQ(strip->SelectedTile(), 4);

    // While the preview plays, the strip's menu offers nothing.
    window->StartPreview();
    window->TimerPreviewPlay()->setEnabled(false);
    QTest::mouseClick(strip->Tile(1), Qt::RightButton);
    ASSERT_EQ(boxes.popups.size(), 1u);
    EXPECT_EQ(boxes.popups[0].disabled.size(), boxes.popups[0].keys.size());
    window->StopPreview();
}

TEST_F(Preview, ClosingThePlayerLetsThePreviewCommandOpenItAgain) {
    start(QStringLiteral("1"));
    auto* command = window->findChild<QAbstractButton*>(QStringLiteral("cmdPreview"));
    EXPECT_FALSE(command->isEnabled()) << "the player is open";
    EXPECT_EQ(preview()->picPhone()->geometry(), QRect(QPoint(0, 0), player()->size()))
        << "without a phone picture the phone fills the player area";

    QTest::mouseClick(preview()->findChild<QAbstractButton*>(QStringLiteral("cmdClose")),
                      Qt::LeftButton);
    EXPECT_FALSE(preview()->isVisible());
    EXPECT_TRUE(command->isEnabled());
    EXPECT_EQ(preference(QStringLiteral("preferences"), QStringLiteral("ShowPreview"), {}),
              QStringLiteral("0"));

    command->click();
    EXPECT_TRUE(preview()->isVisible());
    EXPECT_FALSE(command->isEnabled());
}

} // namespace
