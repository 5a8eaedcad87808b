#include "controls/GrButtonIII.h"
#include "controls/frmAbout.h"
#include "controls/frmSplash.h"
#include "controls/modTitleBar.h"
#include "platform/modDialogs.h"
#include "platform/modShared.h"
#include "support/TestHome.h"

#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

// One tick of a timer, run at once.
static void tick(QTimer* timer, int times = 1) {
    for (int i = 0; i < times; ++i)
        ASSERT_TRUE(QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection));
}

namespace {

// An interval no test outlives: the timer stays on, and the test ticks it by hand.
constexpr int kByHand = 3600000;

// Restores the search path after a test that changes it.
struct PathGuard {
    PathGuard() : saved(qgetenv("PATH")) {}
    ~PathGuard() { qputenv("PATH", saved); }
    QByteArray saved;
};

} // namespace

TEST(Splash, LifeCycle) {
    struct Case {
        const char* situation;
        std::function<void(frmSplash&)> act;
        int counter;
        bool shrinking, waiting, active, loaded;
    };
    const auto clickPicture = [](frmSplash& s) { QTest::mouseClick(s.Image1(), Qt::LeftButton); };
    const Case cases[] = {
        {"just loaded", [](frmSplash&) {}, 0, false, true, true, true},
        {"forty ticks in front", [](frmSplash& s) { tick(s.TimerSplash(), 40); }, 40, false, true,
         true, true},
        {"the forty-first tick", [](frmSplash& s) { tick(s.TimerSplash(), 41); }, 0, true, false,
         true, true},
        {"a click on the picture after one tick",
         [&](frmSplash& s) {
             tick(s.TimerSplash());
             clickPicture(s);
         },
         40, false, true, true, true},
        {"a click on the window",
         [](frmSplash& s) { QTest::mouseClick(&s, Qt::LeftButton, {}, QPoint(5, 5)); }, 40, false,
         true, true, true},
        {"the tick after a click",
         [&](frmSplash& s) {
             clickPicture(s);
             tick(s.TimerSplash());
         },
         0, true, false, true, true},
        {"CloseSplash", [](frmSplash& s) { s.CloseSplash(); }, 35, true, true, true, true},
        // The last tick after CloseSplash ends the wait; the shrink goes on, not over.
        {"CloseSplash and six ticks",
         [](frmSplash& s) {
             s.CloseSplash();
             tick(s.TimerSplash(), 6);
         },
         41, true, false, true, true},
        {"Unload", [](frmSplash& s) { s.Unload(); }, 0, false, false, false, false},
        {"the window closed", [](frmSplash& s) { s.close(); }, 0, false, false, false, false},
    };
    QPointer<frmSplash> previous;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.situation);
        // Each splash is a new one, even while the last one waits to be deleted.
        QPointer<frmSplash> splash = frmSplash::Load();
        EXPECT_NE(splash.data(), previous.data());
        EXPECT_EQ(frmSplash::Load(), splash.data()); // one splash at a time
        EXPECT_EQ(splash->lblVersion()->text(), AppVersionText());
        EXPECT_EQ(splash->TimerSplash()->interval(), 100);
        splash->show();
        splash->TimerSplash()->setInterval(kByHand);
        c.act(*splash);
        EXPECT_EQ(splash->Counter(), c.counter);
        EXPECT_EQ(splash->Shrinking(), c.shrinking);
        EXPECT_EQ(splash->TimerSplash()->isActive(), c.waiting);
        EXPECT_EQ(gSplashActive, c.active);
        EXPECT_EQ(frmSplash::Instance() == splash.data(), c.loaded);
        splash->Unload();
        EXPECT_FALSE(gSplashActive);
        EXPECT_EQ(frmSplash::Instance(), nullptr);
        previous = splash;
    }
    QTRY_VERIFY(previous.isNull());
    EXPECT_TRUE(
        AppVersionText().contains(QRegularExpression(QStringLiteral("^\\d+\\.\\d+\\.\\d+$"))));
}

TEST(Splash, FoldsToALineThenToADotThatStaysForThePause) {
    QPointer<frmSplash> splash = frmSplash::Load();
    splash->show();
    splash->TimerSplash()->setInterval(kByHand);
    splash->setGeometry(100, 100, 40, 20);
    ASSERT_EQ(splash->geometry(), QRect(100, 100, 40, 20));
    QSignalSpy unloaded(splash.data(), &frmSplash::Unloaded);
    splash->CloseSplash();
    EXPECT_EQ(splash->ShrinkTimer()->interval(), 30);
    splash->ShrinkTimer()->setInterval(kByHand);
    // The step grows by one a tick: the height to a line of 3, then the width to a dot of 4.
    const QRect folds[] = {{100, 101, 40, 18}, {100, 103, 40, 14}, {100, 106, 40, 8},
                           {100, 110, 40, 3},  {101, 110, 38, 3},  {103, 110, 34, 3},
                           {106, 110, 28, 3},  {110, 110, 20, 3},  {115, 110, 10, 3},
                           {121, 110, 4, 3}};
    for (std::size_t i = 0; i < std::size(folds); ++i) {
        tick(splash->ShrinkTimer());
        EXPECT_EQ(splash->geometry(), folds[i]) << i;
        if (i == 1)
            tick(splash->TimerSplash(), 6); // the wait runs out meanwhile
    }
    tick(splash->ShrinkTimer(), 25);
    EXPECT_EQ(splash->geometry(), folds[9]);
    EXPECT_TRUE(gSplashActive);
    EXPECT_EQ(unloaded.size(), 0);
    tick(splash->ShrinkTimer());
    EXPECT_EQ(unloaded.size(), 1);
    EXPECT_FALSE(gSplashActive);
    QTRY_VERIFY(splash.isNull());
}

TEST(Splash, OnItsOwnTimersAClickEndsItWithinATick) {
    QPointer<frmSplash> splash = frmSplash::Load();
    splash->show();
    QSignalSpy unloaded(splash.data(), &frmSplash::Unloaded);
    QTest::mouseClick(splash->Image1(), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(splash->Shrinking(), 350);
    splash->ShrinkTimer()->setInterval(1);
    QTRY_COMPARE_WITH_TIMEOUT(unloaded.size(), 1, 5000);
    EXPECT_FALSE(gSplashActive);
    QTRY_VERIFY(splash.isNull());
}

TEST(About, ShowsTitleVersionAndLegalText) {
    frmAbout about;
    EXPECT_EQ(about.lblTitle()->text(), QStringLiteral("Tessaly"));
    EXPECT_EQ(about.lblVersion()->text(), AppVersionText());
    EXPECT_FALSE(about.lblDisclaimer()->text().isEmpty());
    // The language files name the buttons.
    EXPECT_EQ(about.cmdOk()->objectName(), QStringLiteral("cmdOk"));
    EXPECT_EQ(about.cmdSysInfo()->objectName(), QStringLiteral("cmdSysInfo"));
}

TEST(About, EscapeAndOkCloseWithTheShrinkOnce) {
    for (bool escape : {true, false}) {
        SCOPED_TRACE(escape ? "Escape" : "OK");
        frmAbout about;
        QSignalSpy finished(&about, &QDialog::finished);
        about.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&about));
        const int full = about.height();
        if (escape)
            QTest::keyClick(&about, Qt::Key_Escape);
        else
            about.cmdOk()->click();
        EXPECT_TRUE(about.Shrinking());
        EXPECT_TRUE(about.isVisible()); // it shrinks first
        EXPECT_EQ(about.ShrinkTimer()->interval(), 30);
        about.ShrinkTimer()->setInterval(kByHand);
        tick(about.ShrinkTimer(), 3);
        EXPECT_EQ(about.height(), full - 12);
        // Closing again while it folds changes nothing: the fold goes on at step 4.
        QTest::keyClick(&about, Qt::Key_Escape);
        about.cmdOk()->click();
        about.CloseAbout();
        tick(about.ShrinkTimer());
        EXPECT_EQ(about.height(), full - 20);
        about.ShrinkTimer()->setInterval(1);
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 5000);
        EXPECT_FALSE(about.isVisible());
        EXPECT_EQ(about.size(), QSize(4, 3));
    }
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
