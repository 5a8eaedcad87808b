#include "controls/GrButtonIII.h"
#include "controls/frmAbout.h"
#include "controls/frmSplash.h"
#include "controls/modTitleBar.h"
#include "platform/modShared.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"

#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

// One tick of a timer, run at once.
static void tick(QTimer* timer) {
    ASSERT_TRUE(QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection));
}

namespace {

// Runs a splash on fast timers so that a whole life takes a fraction of a second.
frmSplash* fastSplash(int splashInterval = 2) {
    frmSplash* splash = frmSplash::Load();
    splash->TimerSplash()->setInterval(splashInterval);
    splash->show();
    return splash;
}

void fastShrink(frmSplash* splash) {
    QObject::connect(splash->ShrinkTimer(), &QTimer::timeout, splash,
                     [timer = splash->ShrinkTimer()] {
                         if (timer->interval() != 1)
                             timer->setInterval(1);
                     });
}

// Where the fold leaves the window: each tick takes 2 x step off the size and moves the edge by
// step, the step growing by one a tick; the last tick sets the size to 3 (height) or 4 (width).
int foldedEdge(int start, int size, int floor) {
    int edge = start, step = 1;
    for (int steps = size / 2; steps >= 1; --steps, ++step) {
        size -= 2 * step;
        edge += step;
        if (size < 4) {
            size = floor;
            break;
        }
    }
    return edge;
}
int foldedTop(const QRect& r) {
    return foldedEdge(r.top(), r.height(), 3);
}
int foldedLeft(const QRect& r) {
    return foldedEdge(r.left(), r.width(), 4);
}

// Restores the search path after a test that changes it.
struct PathGuard {
    PathGuard() : saved(qgetenv("PATH")) {}
    ~PathGuard() { qputenv("PATH", saved); }
    QByteArray saved;
};

} // namespace

TEST(Splash, LoadingSetsTheFlagAndShowsTheVersion) {
    gSplashActive = false;
    QPointer<frmSplash> splash = frmSplash::Load();
    EXPECT_TRUE(gSplashActive);
    EXPECT_EQ(frmSplash::Load(), splash.data()); // one splash at a time
    EXPECT_EQ(frmSplash::Instance(), splash.data());
    EXPECT_EQ(splash->lblVersion()->text(), AppVersionText());
    EXPECT_TRUE(
        AppVersionText().contains(QRegularExpression(QStringLiteral("^\\d+\\.\\d+\\.\\d+$"))));
    EXPECT_EQ(splash->TimerSplash()->interval(), 100);
    EXPECT_TRUE(splash->TimerSplash()->isActive());
    EXPECT_TRUE(splash->testAttribute(Qt::WA_DeleteOnClose));
    splash->Unload();
    EXPECT_FALSE(gSplashActive);
    QTRY_VERIFY(splash.isNull());
    EXPECT_EQ(frmSplash::Instance(), nullptr);
}

TEST(Splash, LivesFortyTicksThenShrinksAndUnloads) {
    QPointer<frmSplash> splash = fastSplash(3);
    fastShrink(splash);
    const QRect start = splash->geometry();
    QSignalSpy unloaded(splash.data(), &frmSplash::Unloaded);
    struct Seen {
        QRect rect;
        bool active;
    };
    std::vector<Seen> history;
    QObject::connect(splash->ShrinkTimer(), &QTimer::timeout, splash,
                     [&history, s = splash.data()] {
                         history.push_back({s->geometry(), gSplashActive});
                     });
    QTRY_VERIFY_WITH_TIMEOUT(splash->Shrinking(), 3000);
    EXPECT_FALSE(splash->TimerSplash()->isActive());
    EXPECT_TRUE(gSplashActive); // still up while it shrinks
    QTRY_COMPARE_WITH_TIMEOUT(unloaded.size(), 1, 3000);
    EXPECT_FALSE(gSplashActive);
    QTRY_VERIFY(splash.isNull());
    // It folded to a line of the full width first, then the line contracted to a dot, which
    // stayed for the pause while the flag was still up.
    ASSERT_FALSE(history.empty());
    const auto line = std::find_if(history.begin(), history.end(),
                                   [](const Seen& seen) { return seen.rect.height() == 3; });
    ASSERT_NE(line, history.end());
    EXPECT_EQ(line->rect, QRect(start.left(), foldedTop(start), start.width(), 3));
    const QRect dot(foldedLeft(start), foldedTop(start), 4, 3);
    const auto pause = std::count_if(history.begin(), history.end(), [&](const Seen& seen) {
        return seen.rect == dot && seen.active;
    });
    EXPECT_GE(pause, 25);
    for (std::size_t i = 1; i < history.size(); ++i) {
        EXPECT_LE(history[i].rect.height(), history[i - 1].rect.height());
        EXPECT_LE(history[i].rect.width(), history[i - 1].rect.width());
    }
}

TEST(Splash, AClickEndsTheWaitAtTheNextTick) {
    QPointer<frmSplash> splash = frmSplash::Load();
    splash->show();
    splash->TimerSplash()->stop(); // drive the ticks by hand
    tick(splash->TimerSplash());
    EXPECT_EQ(splash->Counter(), 1);
    QTest::mouseClick(splash->Image1(), Qt::LeftButton);
    EXPECT_EQ(splash->Counter(), frmSplash::kLastTick);
    EXPECT_FALSE(splash->Shrinking());
    tick(splash->TimerSplash());
    EXPECT_TRUE(splash->Shrinking());
    EXPECT_EQ(splash->Counter(), 0);
    splash->Unload();
    QTRY_VERIFY(splash.isNull());
}

TEST(Splash, AClickOnTheRealTimerEndsWithinATick) {
    QPointer<frmSplash> splash = frmSplash::Load();
    splash->show();
    QTest::mouseClick(splash.data(), Qt::LeftButton, {}, QPoint(5, 5));
    // 100 ms ticks: one tick later the shrink runs.
    QTRY_VERIFY_WITH_TIMEOUT(splash->Shrinking(), 350);
    splash->Unload();
    QTRY_VERIFY(splash.isNull());
}

TEST(Splash, FortyTicksInFrontThenTheFortyFirstStartsTheShrink) {
    QPointer<frmSplash> splash = frmSplash::Load();
    splash->show();
    splash->TimerSplash()->stop(); // drive the ticks by hand
    for (int i = 0; i < 40; ++i)
        tick(splash->TimerSplash());
    EXPECT_EQ(splash->Counter(), 40);
    EXPECT_FALSE(splash->Shrinking());
    EXPECT_TRUE(gSplashActive);
    splash->TimerSplash()->start();
    tick(splash->TimerSplash());
    EXPECT_TRUE(splash->Shrinking());
    EXPECT_FALSE(splash->TimerSplash()->isActive());
    EXPECT_EQ(splash->Counter(), 0);
    splash->Unload();
    QTRY_VERIFY(splash.isNull());
}

TEST(Splash, TheLastTickAfterCloseSplashLetsTheShrinkRunOn) {
    QPointer<frmSplash> splash = frmSplash::Load();
    splash->show();
    const QRect start = splash->geometry();
    // The shrink ticks stay slow while the real TimerSplash runs out its last six ticks.
    std::vector<QRect> history;
    QObject::connect(splash->ShrinkTimer(), &QTimer::timeout, splash,
                     [&history, s = splash.data()] { history.push_back(s->geometry()); });
    std::vector<int> counters;
    QObject::connect(splash->TimerSplash(), &QTimer::timeout, splash,
                     [&counters, s = splash.data()] { counters.push_back(s->Counter()); });
    splash->CloseSplash();
    splash->ShrinkTimer()->setInterval(200);
    QTRY_VERIFY_WITH_TIMEOUT(!splash->TimerSplash()->isActive(), 3000);
    EXPECT_EQ(counters, (std::vector<int>{36, 37, 38, 39, 40, 41}));
    EXPECT_EQ(splash->Counter(), 41); // a restarted shrink would have set it to 0
    EXPECT_TRUE(splash->Shrinking());
    EXPECT_EQ(splash->ShrinkTimer()->interval(), 200); // not set back to 30 by a new start
    // The fold goes on from where it was: the step keeps growing, one pixel a tick.
    QTRY_VERIFY_WITH_TIMEOUT(history.size() >= 3, 3000);
    splash->ShrinkTimer()->setInterval(1);
    QTRY_VERIFY_WITH_TIMEOUT(splash.isNull(), 5000);
    ASSERT_GE(history.size(), 3u);
    int previous = start.height();
    for (std::size_t i = 0; i < history.size() && history[i].height() > 3; ++i) {
        EXPECT_EQ(previous - history[i].height(), 2 * int(i + 1)) << i;
        previous = history[i].height();
    }
    EXPECT_FALSE(gSplashActive);
}

TEST(Splash, CloseSplashStartsTheShrinkAtOnce) {
    QPointer<frmSplash> splash = frmSplash::Load();
    splash->show();
    EXPECT_EQ(splash->Counter(), 0);
    splash->CloseSplash();
    EXPECT_TRUE(splash->Shrinking());
    EXPECT_EQ(splash->Counter(), 35);
    EXPECT_EQ(splash->ShrinkTimer()->interval(), 30);
    fastShrink(splash);
    QTRY_VERIFY_WITH_TIMEOUT(splash.isNull(), 5000);
    EXPECT_FALSE(gSplashActive);
}

TEST(Splash, LoadingAgainAfterAnUnloadGivesAFreshSplash) {
    QPointer<frmSplash> first = frmSplash::Load();
    first->Unload();
    EXPECT_EQ(frmSplash::Instance(), nullptr);
    EXPECT_FALSE(gSplashActive);
    // Loaded again before the first one is gone: a new splash with its own life.
    QPointer<frmSplash> second = frmSplash::Load();
    EXPECT_NE(second.data(), first.data());
    EXPECT_TRUE(gSplashActive);
    EXPECT_EQ(second->Counter(), 0);
    EXPECT_TRUE(second->TimerSplash()->isActive());
    QTRY_VERIFY(first.isNull());
    EXPECT_EQ(frmSplash::Instance(), second.data());
    second->Unload();
    QTRY_VERIFY(second.isNull());
}

TEST(Splash, ClosingTheWindowClearsTheFlag) {
    QPointer<frmSplash> splash = frmSplash::Load();
    splash->show();
    EXPECT_TRUE(gSplashActive);
    splash->close();
    EXPECT_FALSE(gSplashActive);
    QTRY_VERIFY(splash.isNull());
}

TEST(About, ShowsTitleVersionAndLegalText) {
    frmAbout about;
    EXPECT_EQ(about.objectName(), QStringLiteral("frmAbout"));
    EXPECT_EQ(about.lblTitle()->text(), QStringLiteral("Tessaly"));
    EXPECT_EQ(about.lblVersion()->text(), AppVersionText());
    EXPECT_FALSE(about.lblDisclaimer()->text().isEmpty());
    EXPECT_EQ(about.cmdOk()->objectName(), QStringLiteral("cmdOk"));
    EXPECT_EQ(about.cmdSysInfo()->objectName(), QStringLiteral("cmdSysInfo"));
}

TEST(About, EscapeClosesAsOkDoes) {
    for (int way = 0; way < 2; ++way) {
        frmAbout about;
        QSignalSpy finished(&about, &QDialog::finished);
        about.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&about));
        const QSize full = about.size();
        if (way == 0)
            QTest::keyClick(&about, Qt::Key_Escape);
        else
            about.cmdOk()->click();
        EXPECT_TRUE(about.Shrinking());
        EXPECT_TRUE(about.isVisible()); // it shrinks first
        about.ShrinkTimer()->setInterval(1);
        QTRY_VERIFY_WITH_TIMEOUT(about.height() < full.height(), 2000);
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 5000);
        EXPECT_FALSE(about.isVisible());
        EXPECT_EQ(about.size(), QSize(4, 3));
    }
}

TEST(About, ClosingAgainWhileItShrinksChangesNothing) {
    frmAbout about;
    QSignalSpy finished(&about, &QDialog::finished);
    about.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&about));
    const QRect full = about.geometry();
    about.ShrinkTimer()->setInterval(5);
    about.cmdOk()->click();
    ASSERT_TRUE(about.Shrinking());
    ASSERT_EQ(about.ShrinkTimer()->interval(), 30);
    // Let the fold run a few ticks, then press Escape and OK again.
    QTRY_VERIFY_WITH_TIMEOUT(about.height() <= full.height() - 12, 3000);
    const int folded = about.height();
    about.ShrinkTimer()->setInterval(500);
    QTest::keyClick(&about, Qt::Key_Escape);
    about.cmdOk()->click();
    about.CloseAbout();
    EXPECT_TRUE(about.Shrinking());
    EXPECT_EQ(about.ShrinkTimer()->interval(), 500); // a new start would set 30
    EXPECT_EQ(about.height(), folded);               // and fold again from here at step 1
    about.ShrinkTimer()->setInterval(1);
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 5000);
    EXPECT_EQ(about.size(), QSize(4, 3));
}

TEST(About, SysInfoWithoutAProgramShowsABox) {
    PathGuard guard;
    QTemporaryDir empty;
    qputenv("PATH", empty.path().toLocal8Bit());
    ScriptedResponder responder;
    frmAbout about;
    about.cmdSysInfo()->click();
    ASSERT_EQ(responder.boxes.size(), 1u);
    EXPECT_EQ(responder.boxes[0].text, QStringLiteral("STR_NO_SYS_INFO"));
    EXPECT_EQ(responder.boxes[0].title, QStringLiteral("STR_SYS_INFO"));
}

TEST(About, SysInfoStartsTheFirstProgramFound) {
    PathGuard guard;
    QTemporaryDir bin;
    const QString marker = bin.filePath(QStringLiteral("started"));
    QFile script(bin.filePath(frmAbout::SysInfoPrograms().at(1)));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write(QStringLiteral("#!/bin/sh\n/usr/bin/touch '%1'\n").arg(marker).toUtf8());
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("PATH", bin.path().toLocal8Bit());
    ScriptedResponder responder;
    frmAbout about;
    EXPECT_TRUE(about.StartSysInfo());
    EXPECT_TRUE(responder.boxes.empty());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(marker), 5000);
}

TEST(TitleBar, HidingKeepsTheCaptionAndTheClientArea) {
    QWidget form;
    form.setWindowTitle(QStringLiteral("Tessaly - Untitled"));
    form.setGeometry(100, 100, 300, 200);
    form.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));
    ShowTitleBar(&form, false);
    EXPECT_TRUE(form.windowFlags() & Qt::FramelessWindowHint);
    EXPECT_EQ(form.property("tag").toString(), QStringLiteral("Tessaly - Untitled"));
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Tessaly - Untitled")) << "the task bar keeps it";
    EXPECT_EQ(form.size(), QSize(300, 200));
    EXPECT_TRUE(form.isVisible());
    ShowTitleBar(&form, true);
    EXPECT_FALSE(form.windowFlags() & Qt::FramelessWindowHint);
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Tessaly - Untitled"));
    EXPECT_EQ(form.size(), QSize(300, 200));
}

TEST(TitleBar, DragNeedsTheLeftButton) {
    QWidget form;
    EXPECT_FALSE(DragWindow(&form, 2));
    EXPECT_FALSE(DragWindow(nullptr, 1));
}
