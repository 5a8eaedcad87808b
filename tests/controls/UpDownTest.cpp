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

// The test main fixes an English locale: the point is the decimal separator.
struct PointSeparator {
    PointSeparator() : saved(gDecimalSeparator) { gDecimalSeparator = QStringLiteral("."); }
    ~PointSeparator() { gDecimalSeparator = saved; }
    QString saved;
};

void leaveField(ctlUpDown& field, Qt::FocusReason reason = Qt::TabFocusReason) {
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

TEST(UpDown, StartsAtZeroAndShowsSecondsWithoutAnEvent) {
    PointSeparator point;
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

TEST(UpDown, TypingAndLeavingTheField) {
    struct Case {
        const char* separator;
        std::int32_t start, max;
        const char* keys; // "\b" is backspace
        const char* typed;
        bool enter; // else the focus leaves by the tab key
        std::int32_t value;
        const char* shown;
    };
    const Case cases[] = {
        {".", 0, 300000, "12", "12", false, 12000, "12.0s"},
        {".", 0, 300000, "a1x.5s-,9\b", "1.5", true, 1500, "1.5s"},
        // A comma separator is the decimal point, never a thousands separator.
        {",", 0, 300000, "2,25", "2,25", false, 2250, "2.3s"},
        {".", 3000, 300000, "", "", false, 0, "0.0s"},
        {".", 4200, 300000, "1.2.3", "1.2.3", true, 4200, "4.2s"}, // no number: kept
        {".", 0, 10000, "25", "25", false, 10000, "10.0s"},        // clamped to the maximum
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.keys);
        PointSeparator point;
        ctlUpDown field;
        field.setDecSep(QString::fromUtf8(c.separator));
        field.setMaxValue(c.max);
        field.setValue(c.start);
        Changes changes(field);
        field.txtValue()->clear();
        QTest::keyClicks(field.txtValue(), QString::fromUtf8(c.keys));
        EXPECT_EQ(field.txtValue()->text(), QString::fromUtf8(c.typed));
        if (c.enter)
            QTest::keyClick(field.txtValue(), Qt::Key_Return);
        else
            leaveField(field);
        EXPECT_EQ(field.Value(), c.value);
        EXPECT_EQ(field.txtValue()->text(), QString::fromUtf8(c.shown));
        EXPECT_EQ(changes.values, std::vector<std::int32_t>{c.value});
    }
}

TEST(UpDown, SwitchingProgramsOrOpeningAMenuIsNoLeaving) {
    PointSeparator point;
    ctlUpDown field;
    field.setMaxValue(10000);
    field.setValue(2000);
    Changes changes(field);
    for (Qt::FocusReason reason : {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason,
                                   Qt::MouseFocusReason, Qt::OtherFocusReason}) {
        const bool leaves = reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason;
        field.setValue(2000);
        field.txtValue()->setText(QStringLiteral("25"));
        changes.values.clear();
        leaveField(field, reason);
        EXPECT_EQ(changes.values.size(), leaves ? 1u : 0u) << int(reason);
        EXPECT_EQ(field.Value(), leaves ? 10000 : 2000) << int(reason);
        EXPECT_EQ(field.txtValue()->text(),
                  leaves ? QStringLiteral("10.0s") : QStringLiteral("25"));
    }
}

TEST(UpDown, ArrowsStepByAHundredFromTheValueShown) {
    struct Case {
        std::int32_t max, start;
        const char* typed; // text typed before the click, "" for none
        bool up;
        std::int32_t value;
        std::vector<std::int32_t> events;
    };
    const Case cases[] = {
        {10000, 1000, "", true, 1100, {1100}},
        {10000, 1000, "", false, 900, {900}},
        {9950, 9900, "", true, 10000, {10000}},   // fifty below the maximum ends fifty above
        {10000, 10000, "", true, 10000, {10000}}, // no step at the maximum, still reported
        {10000, 0, "", false, 0, {0}},
        {10000, -300, "", false, -300, {-300}},
        {10000, -300, "", true, -200, {-200}},
        // 1234 shows 1.2s and steps from 1200; 9950 shows 10.0s, which is the maximum.
        {10000, 1234, "", true, 1300, {1300}},
        {10000, 1234, "", false, 1100, {1100}},
        {10000, 9950, "", true, 10000, {10000}},
        {10000, 50, "", false, 0, {0}},
        // Typed text goes through the lost-focus step first, clamp and event included.
        {10000, 5000, "3.4", true, 3500, {3400, 3500}},
        {10000, 5000, "25", true, 10000, {10000, 10000}},
        {10000, 5000, "30", false, 9900, {10000, 9900}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.start << " " << c.typed << (c.up ? " up" : " down"));
        PointSeparator point;
        ctlUpDown field;
        field.setMaxValue(c.max);
        field.setValue(c.start);
        Changes changes(field);
        if (c.typed[0])
            field.txtValue()->setText(QString::fromUtf8(c.typed));
        (c.up ? field.cmdUp() : field.cmdDown())->click();
        EXPECT_EQ(field.Value(), c.value);
        EXPECT_EQ(field.txtValue()->text(), QString::number(c.value / 1000.0, 'f', 1) + u's');
        EXPECT_EQ(changes.values, c.events);
    }
    // The arrows take no focus, so clicking one never leaves the field by itself.
    ctlUpDown field;
    EXPECT_EQ(field.cmdUp()->focusPolicy(), Qt::NoFocus);
    EXPECT_EQ(field.cmdDown()->focusPolicy(), Qt::NoFocus);
}

TEST(UpDown, HeldButtonRepeatsAfterHalfASecondThenTenTimesASecond) {
    PointSeparator point;
    ctlUpDown field;
    field.setValue(1000);
    Changes changes(field);
    emit field.cmdUp()->pressed();
    EXPECT_EQ(field.RepeatDirection(), 1);
    EXPECT_TRUE(field.TimerRepeat()->isActive());
    EXPECT_EQ(field.TimerRepeat()->interval(), 500);
    // On the real timer: the first tick steps and speeds the timer up.
    QTRY_COMPARE_WITH_TIMEOUT(changes.values.size(), 1u, 2000);
    EXPECT_EQ(field.Value(), 1100);
    EXPECT_EQ(field.TimerRepeat()->interval(), 100);
    QTRY_VERIFY_WITH_TIMEOUT(changes.values.size() >= 3, 2000);
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
