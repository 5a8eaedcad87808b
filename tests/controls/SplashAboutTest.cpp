#include "controls/GrButtonIII.h"
#include "controls/frmAbout.h"
#include "controls/frmSplash.h"
#include "controls/modTitleBar.h"
#include "platform/modShared.h"
#include "support/ScriptedResponder.h"

#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>
#include <map>

// One tick of a timer, run at once.
static void tick(QTimer* timer, int times = 1) {
    for (int i = 0; i < times; ++i)
        ASSERT_TRUE(QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection));
}

namespace {

// An interval no test outlives: the timer stays on, and the test ticks it by hand.
constexpr int kByHand = 3600000;

// Plays `script` on the splash, one step a letter: "t" a tick of TimerSplash, "T" forty ticks,
// "p" a click on the picture, "w" a click on the window, "c" CloseSplash, "u" Unload, "x" closing
// the window.
void play(frmSplash& splash, const char* script) {
    static const std::map<char, std::function<void(frmSplash&)>> steps = {
        {'t', [](frmSplash& s) { tick(s.TimerSplash()); }},
        {'T', [](frmSplash& s) { tick(s.TimerSplash(), 40); }},
        {'p', [](frmSplash& s) { QTest::mouseClick(s.Image1(), Qt::LeftButton); }},
        {'w', [](frmSplash& s) { QTest::mouseClick(&s, Qt::LeftButton, {}, QPoint(5, 5)); }},
        {'c', [](frmSplash& s) { s.CloseSplash(); }},
        {'u', [](frmSplash& s) { s.Unload(); }},
        {'x', [](frmSplash& s) { s.close(); }},
    };
    for (; *script; ++script)
        std::invoke(steps.at(*script), splash);
}

} // namespace

TEST(Splash, LifeCycle) {
    struct Case {
        const char* steps;
        int counter;
        bool shrinking, waiting, active, loaded;
    };
    const Case cases[] = {
        {"", 0, false, true, true, true},    // just loaded
        {"T", 40, false, true, true, true},  // forty ticks in front
        {"Tt", 0, true, false, true, true},  // the forty-first ends the wait
        {"tp", 40, false, true, true, true}, // a click: the next tick ends the wait
        {"w", 40, false, true, true, true},
        {"pt", 0, true, false, true, true},
        {"c", 35, true, true, true, true},
        {"ctttttt", 41, true, false, true, true}, // the shrink runs on, not over
        {"u", 0, false, false, false, false},
        {"x", 0, false, false, false, false},
    };
    QPointer<frmSplash> previous;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.steps);
        // Each splash is a new one, even while the last one waits to be deleted.
        QPointer<frmSplash> splash = frmSplash::Load();
        EXPECT_NE(splash.data(), previous.data());
        EXPECT_EQ(frmSplash::Load(), splash.data()); // one splash at a time
        EXPECT_EQ(splash->lblVersion()->text(), AppVersionText());
        EXPECT_EQ(splash->TimerSplash()->interval(), 100);
        splash->show();
        splash->TimerSplash()->setInterval(kByHand);
        play(*splash, c.steps);
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
    ASSERT_TRUE(QTest::qWaitFor([&] { return previous.isNull(); }));
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
    ASSERT_TRUE(QTest::qWaitFor([&] { return splash.isNull(); }));
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
        ASSERT_TRUE(QTest::qWaitFor([&] { return finished.size() == 1; }, 5000));
        EXPECT_FALSE(about.isVisible());
        EXPECT_EQ(about.size(), QSize(4, 3));
    }
}

TEST(About, SysInfoStartsTheFirstProgramFoundOrShowsABox) {
    const auto restore = qScopeGuard([path = qgetenv("PATH")] { qputenv("PATH", path); });
    QTemporaryDir bin;
    qputenv("PATH", bin.path().toLocal8Bit());
    ScriptedResponder responder;
    frmAbout about;
    about.cmdSysInfo()->click();
    ASSERT_EQ(responder.boxes.size(), 1u);
    EXPECT_EQ(responder.boxes[0].text, QStringLiteral("STR_NO_SYS_INFO"));
    EXPECT_EQ(responder.boxes[0].title, QStringLiteral("STR_SYS_INFO"));

    const QString marker = bin.filePath(QStringLiteral("started"));
    QFile script(bin.filePath(frmAbout::SysInfoPrograms().at(1)));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write(QStringLiteral("#!/bin/sh\n/usr/bin/touch '%1'\n").arg(marker).toUtf8());
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    EXPECT_TRUE(about.StartSysInfo());
    EXPECT_EQ(responder.boxes.size(), 1u);
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(marker); }, 5000));
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
    EXPECT_EQ(form.size(), QSize(300, 200));
    ShowTitleBar(&form, true);
    EXPECT_FALSE(form.windowFlags() & Qt::FramelessWindowHint);
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Tessaly - Untitled"));
    EXPECT_EQ(form.size(), QSize(300, 200));
    EXPECT_FALSE(DragWindow(&form, 2)); // a drag needs the left button
    EXPECT_FALSE(DragWindow(nullptr, 1));
}
