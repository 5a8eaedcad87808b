#include "controls/GrButtonIII.h"
#include "controls/ctlUpDown.h"
#include "platform/modDialogs.h"
#include "platform/modShared.h"

#include <QFocusEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

void leaveField(ctlUpDown& field, Qt::FocusReason reason) {
    QFocusEvent out(QEvent::FocusOut, reason);
    QCoreApplication::sendEvent(field.txtValue(), &out);
}

// One tick of a timer, run at once.
void tick(QTimer* timer) {
    ASSERT_TRUE(QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection));
}

// Records the values of ValueChanged (a signal with a reference, which QSignalSpy cannot copy).
// A second handler then changes the value it was given: the control must not care.
struct Changes {
    explicit Changes(ctlUpDown& field) {
        QObject::connect(&field, &ctlUpDown::ValueChanged,
                         [this](std::int32_t& value) { values.push_back(value); });
        QObject::connect(&field, &ctlUpDown::ValueChanged, [](std::int32_t& value) { value = 7; });
    }
    std::vector<std::int32_t> values;
};

} // namespace

// The test main fixes an English locale, and the program's decimal separator is its point.
TEST(UpDown, StartsAtZeroAndShowsSecondsWithoutAnEvent) {
    ASSERT_EQ(gDecimalSeparator, QStringLiteral("."));
    ctlUpDown field;
    EXPECT_EQ(field.MaxValue(), 300000);
    EXPECT_EQ(field.DecSep(), QStringLiteral(","));
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("0.0s"));
    EXPECT_EQ(field.TimerRepeat()->interval(), 500);
    EXPECT_FALSE(field.TimerRepeat()->isActive());
    Changes changes(field);
    for (auto [value, shown] : {std::pair{2500, "2.5s"}, {12345, "12.3s"}, {400000, "400.0s"}}) {
        field.setValue(value); // above the maximum it is stored as it is
        EXPECT_EQ(field.Value(), value);
        EXPECT_EQ(field.txtValue()->text(), QString::fromUtf8(shown));
    }
    EXPECT_TRUE(changes.values.empty());
}

TEST(UpDown, TypingLeavingAndStepping) {
    // What ends a case: Enter, an arrow, or the field losing the focus for a Qt::FocusReason.
    constexpr int kEnter = -1, kUp = -2, kDown = -3;
    struct Case {
        std::int32_t max, start;
        const char* keys; // typed into the emptied field, "\b" is backspace; nullptr: none
        int act;
        std::int32_t value;
        const char* shown;
        std::vector<std::int32_t> events;
    };
    const Case cases[] = {
        {20000, 0, "12", Qt::TabFocusReason, 12000, "12.0s", {12000}},
        // Only digits, backspace and the field's separator (a comma at start) get through.
        {20000, 0, "a1x.,5s-9\b", kEnter, 1500, "1.5s", {1500}},
        {20000, 0, "2,25", Qt::MouseFocusReason, 2250, "2.3s", {2250}}, // never thousands
        {20000, 3000, "", Qt::OtherFocusReason, 0, "0.0s", {0}},
        {20000, 4200, "1,2,3", kEnter, 4200, "4.2s", {4200}}, // no number: kept
        {20000, 0, "25", Qt::TabFocusReason, 20000, "20.0s", {20000}},
        // Switching to another program or opening a menu is no leaving.
        {20000, 2000, "25", Qt::ActiveWindowFocusReason, 2000, "25", {}},
        {20000, 2000, "25", Qt::PopupFocusReason, 2000, "25", {}},
        // Steps of 100 from the value shown, without clamp at the ends.
        {10000, 1000, nullptr, kUp, 1100, "1.1s", {1100}},
        {10000, 1000, nullptr, kDown, 900, "0.9s", {900}},
        {9950, 9900, nullptr, kUp, 10000, "10.0s", {10000}},   // fifty below ends fifty above
        {10000, 10000, nullptr, kUp, 10000, "10.0s", {10000}}, // no step, still reported
        {10000, 0, nullptr, kDown, 0, "0.0s", {0}},
        {10000, -300, nullptr, kDown, -300, "-0.3s", {-300}},
        {10000, -300, nullptr, kUp, -200, "-0.2s", {-200}},
        {10000, 1234, nullptr, kUp, 1300, "1.3s", {1300}}, // 1234 shows 1.2s
        {10000, 1234, nullptr, kDown, 1100, "1.1s", {1100}},
        {10000, 9950, nullptr, kUp, 10000, "10.0s", {10000}}, // shows 10.0s, the maximum
        {10000, 50, nullptr, kDown, 0, "0.0s", {0}},          // shows 0.1s
        // Typed text goes through the lost-focus step first, clamp and event included.
        {10000, 5000, "3,4", kUp, 3500, "3.5s", {3400, 3500}},
        {10000, 5000, "25", kUp, 10000, "10.0s", {10000, 10000}},
        {10000, 5000, "30", kDown, 9900, "9.9s", {10000, 9900}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message()
                     << c.start << " " << (c.keys ? c.keys : "") << " " << c.act);
        ctlUpDown field;
        field.setMaxValue(c.max);
        field.setValue(c.start);
        Changes changes(field);
        if (c.keys) {
            field.txtValue()->clear();
            QTest::keyClicks(field.txtValue(), QString::fromUtf8(c.keys));
        }
        if (c.act == kEnter)
            QTest::keyClick(field.txtValue(), Qt::Key_Return);
        else if (c.act == kUp || c.act == kDown)
            (c.act == kUp ? field.cmdUp() : field.cmdDown())->click();
        else
            leaveField(field, Qt::FocusReason(c.act));
        EXPECT_EQ(field.Value(), c.value);
        EXPECT_EQ(field.txtValue()->text(), QString::fromUtf8(c.shown));
        EXPECT_EQ(changes.values, c.events);
    }
    // The arrows take no focus, so clicking one never leaves the field by itself.
    ctlUpDown field;
    EXPECT_EQ(field.cmdUp()->focusPolicy(), Qt::NoFocus);
    EXPECT_EQ(field.cmdDown()->focusPolicy(), Qt::NoFocus);
}

TEST(UpDown, HeldButtonRepeatsAfterHalfASecondThenTenTimesASecond) {
    ctlUpDown field;
    field.setValue(1000);
    Changes changes(field);
    emit field.cmdUp()->pressed();
    EXPECT_EQ(field.RepeatDirection(), 1);
    EXPECT_TRUE(field.TimerRepeat()->isActive());
    EXPECT_EQ(field.TimerRepeat()->interval(), 500);
    // On the real timer: the first tick steps and speeds the timer up.
    ASSERT_TRUE(QTest::qWaitFor([&] { return changes.values.size() == 1u; }, 2000));
    EXPECT_EQ(field.Value(), 1100);
    EXPECT_EQ(field.TimerRepeat()->interval(), 100);
    emit field.cmdUp()->released();
    EXPECT_EQ(field.RepeatDirection(), 0);
    EXPECT_FALSE(field.TimerRepeat()->isActive());
    EXPECT_EQ(field.TimerRepeat()->interval(), 500);

    field.setValue(1000);
    emit field.cmdDown()->pressed();
    EXPECT_EQ(field.RepeatDirection(), 2);
    tick(field.TimerRepeat());
    tick(field.TimerRepeat());
    EXPECT_EQ(field.Value(), 800);
    emit field.cmdDown()->released();
}
