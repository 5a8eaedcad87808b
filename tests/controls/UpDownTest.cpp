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

void leaveField(ctlUpDown& field) {
    QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
    QCoreApplication::sendEvent(field.txtValue(), &out);
}

// Records the values of ValueChanged (a signal with a reference, which QSignalSpy cannot copy).
struct Changes {
    explicit Changes(ctlUpDown& field) {
        QObject::connect(&field, &ctlUpDown::ValueChanged,
                         [this](std::int32_t& value) { values.push_back(value); });
    }
    int size() const { return int(values.size()); }
    std::vector<std::int32_t> values;
};

std::int32_t lastValue(const Changes& changes) {
    return changes.values.empty() ? -99999 : changes.values.back();
}

} // namespace

TEST(UpDown, StartsAtZeroWithItsDefaults) {
    PointSeparator point;
    ctlUpDown field;
    EXPECT_EQ(field.Value(), 0);
    EXPECT_EQ(field.MaxValue(), 300000);
    EXPECT_EQ(field.DecSep(), QStringLiteral(","));
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("0.0s"));
    EXPECT_EQ(field.TimerRepeat()->interval(), 500);
    EXPECT_FALSE(field.TimerRepeat()->isActive());
    EXPECT_EQ(field.objectName(), QStringLiteral("ctlUpDown"));
    EXPECT_EQ(field.cmdUp()->objectName(), QStringLiteral("cmdUp"));
}

TEST(UpDown, SettingTheValueShowsSecondsAndRaisesNoEvent) {
    PointSeparator point;
    ctlUpDown field;
    Changes changes(field);
    field.setValue(2500);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("2.5s"));
    field.setValue(12345);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("12.3s"));
    field.setValue(400000); // above the maximum: stored as it is
    EXPECT_EQ(field.Value(), 400000);
    EXPECT_EQ(changes.size(), 0);
}

TEST(UpDown, TypingTwelveGivesTwelveSeconds) {
    PointSeparator point;
    ctlUpDown field;
    field.setDecSep(QStringLiteral("."));
    Changes changes(field);
    field.txtValue()->clear();
    QTest::keyClicks(field.txtValue(), QStringLiteral("12"));
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("12"));
    leaveField(field);
    EXPECT_EQ(field.Value(), 12000);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("12.0s"));
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(lastValue(changes), 12000);
}

TEST(UpDown, KeyFilterLetsDigitsBackspaceAndTheSeparatorThrough) {
    PointSeparator point;
    ctlUpDown field;
    field.setDecSep(QStringLiteral("."));
    field.txtValue()->clear();
    QTest::keyClicks(field.txtValue(), QStringLiteral("a1x.5s-,9"));
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("1.59"));
    QTest::keyClick(field.txtValue(), Qt::Key_Backspace);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("1.5"));
    // Enter runs the same step as leaving the field.
    Changes changes(field);
    QTest::keyClick(field.txtValue(), Qt::Key_Return);
    EXPECT_EQ(field.Value(), 1500);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("1.5s"));
    EXPECT_EQ(changes.size(), 1);
}

TEST(UpDown, CommaSeparatorIsReadAsTheDecimalPoint) {
    PointSeparator point;
    ctlUpDown field; // DecSep "," at start
    field.txtValue()->clear();
    QTest::keyClicks(field.txtValue(), QStringLiteral("2,25"));
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("2,25"));
    leaveField(field);
    EXPECT_EQ(field.Value(), 2250); // not 225: a comma is never a thousands separator here
}

TEST(UpDown, EmptyFieldCountsAsZero) {
    PointSeparator point;
    ctlUpDown field;
    field.setValue(3000);
    field.txtValue()->clear();
    Changes changes(field);
    leaveField(field);
    EXPECT_EQ(field.Value(), 0);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("0.0s"));
    EXPECT_EQ(lastValue(changes), 0);
}

TEST(UpDown, TextThatIsNoNumberKeepsTheValue) {
    PointSeparator point;
    ctlUpDown field;
    field.setValue(4200);
    field.txtValue()->setText(QStringLiteral("1.2.3s")); // pasted, past the key filter
    leaveField(field);
    EXPECT_EQ(field.Value(), 4200);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("4.2s"));
}

TEST(UpDown, LeavingAboveTheMaximumClampsAndReportsTheMaximum) {
    PointSeparator point;
    ctlUpDown field;
    field.setMaxValue(10000);
    Changes changes(field);
    field.txtValue()->setText(QStringLiteral("25"));
    leaveField(field);
    EXPECT_EQ(field.Value(), 10000);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("10.0s"));
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(lastValue(changes), 10000);
}

TEST(UpDown, StepsAreAHundredMillisecondsWithoutClampAtTheEnds) {
    PointSeparator point;
    ctlUpDown field;
    field.setMaxValue(10000);
    Changes changes(field);
    field.setValue(1000);
    field.cmdUp()->click();
    EXPECT_EQ(field.Value(), 1100);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("1.1s"));
    EXPECT_EQ(lastValue(changes), 1100);
    field.cmdDown()->click();
    field.cmdDown()->click();
    EXPECT_EQ(field.Value(), 900);

    // Fifty below the maximum goes fifty above it.
    field.setMaxValue(9950);
    field.setValue(9900);
    field.cmdUp()->click();
    EXPECT_EQ(field.Value(), 10000);
    EXPECT_EQ(lastValue(changes), 10000);
    // At or above the maximum, up does not step, but still shows and reports the value read.
    const int before = changes.size();
    field.cmdUp()->click();
    EXPECT_EQ(field.Value(), 10000);
    EXPECT_EQ(changes.size(), before + 1);
    // At 0 or below, down does not step; a value below 0 stays as it is.
    field.setValue(0);
    field.cmdDown()->click();
    EXPECT_EQ(field.Value(), 0);
    field.setValue(-300);
    field.cmdDown()->click();
    EXPECT_EQ(field.Value(), -300);
    field.cmdUp()->click();
    EXPECT_EQ(field.Value(), -200);
}

TEST(UpDown, AStepStartsFromTheValueTheFieldShows) {
    PointSeparator point;
    ctlUpDown field;
    Changes changes(field);
    // 1234 shows 1.2s: a step reads 1200 and gives 1300, not 1334.
    field.setValue(1234);
    ASSERT_EQ(field.txtValue()->text(), QStringLiteral("1.2s"));
    field.cmdUp()->click();
    EXPECT_EQ(field.Value(), 1300);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("1.3s"));
    ASSERT_EQ(changes.size(), 1); // the field showed Value: no lost-focus step before it
    EXPECT_EQ(lastValue(changes), 1300);
    field.setValue(1234);
    field.cmdDown()->click();
    EXPECT_EQ(field.Value(), 1100);

    // 9950 shows 10.0s: read as 10000, which is not below a maximum of 10000, so no step.
    field.setMaxValue(10000);
    field.setValue(9950);
    ASSERT_EQ(field.txtValue()->text(), QStringLiteral("10.0s"));
    field.cmdUp()->click();
    EXPECT_EQ(field.Value(), 10000);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("10.0s"));
    EXPECT_EQ(lastValue(changes), 10000);

    // 50 shows 0.1s: down reads 100 and ends at 0.
    field.setValue(50);
    ASSERT_EQ(field.txtValue()->text(), QStringLiteral("0.1s"));
    field.cmdDown()->click();
    EXPECT_EQ(field.Value(), 0);
}

TEST(UpDown, ATypedValueAboveTheMaximumIsClampedBeforeTheArrowSteps) {
    PointSeparator point;
    ctlUpDown field;
    field.setDecSep(QStringLiteral("."));
    field.setMaxValue(10000);
    field.setValue(5000);
    Changes changes(field);
    // The arrows take no focus, so typing and clicking an arrow never leaves the field.
    EXPECT_EQ(field.cmdUp()->focusPolicy(), Qt::NoFocus);
    field.txtValue()->setText(QStringLiteral("25"));
    field.cmdUp()->click();
    EXPECT_EQ(field.Value(), 10000);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("10.0s"));
    // The lost-focus step reports the clamped value, then the arrow its (unstepped) value.
    EXPECT_EQ(changes.values, (std::vector<std::int32_t>{10000, 10000}));

    field.txtValue()->setText(QStringLiteral("30"));
    field.cmdDown()->click();
    EXPECT_EQ(field.Value(), 9900);
    EXPECT_EQ(lastValue(changes), 9900);
}

TEST(UpDown, SwitchingProgramsOrOpeningAMenuIsNoLeaving) {
    PointSeparator point;
    ctlUpDown field;
    field.setDecSep(QStringLiteral("."));
    field.setMaxValue(10000);
    field.setValue(2000);
    Changes changes(field);
    field.txtValue()->setText(QStringLiteral("25"));
    for (Qt::FocusReason reason : {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason}) {
        QFocusEvent out(QEvent::FocusOut, reason);
        QCoreApplication::sendEvent(field.txtValue(), &out);
        EXPECT_EQ(changes.size(), 0) << int(reason);
        EXPECT_EQ(field.txtValue()->text(), QStringLiteral("25")) << int(reason);
        EXPECT_EQ(field.Value(), 2000) << int(reason);
    }
    // Any other way out runs the lost-focus step.
    for (Qt::FocusReason reason :
         {Qt::MouseFocusReason, Qt::TabFocusReason, Qt::OtherFocusReason}) {
        field.txtValue()->setText(QStringLiteral("25"));
        const int before = changes.size();
        QFocusEvent out(QEvent::FocusOut, reason);
        QCoreApplication::sendEvent(field.txtValue(), &out);
        EXPECT_EQ(changes.size(), before + 1) << int(reason);
        EXPECT_EQ(field.Value(), 10000) << int(reason);
    }
}

TEST(UpDown, AHandlerChangingTheValueChangesNothing) {
    PointSeparator point;
    ctlUpDown field;
    QObject::connect(&field, &ctlUpDown::ValueChanged, [](std::int32_t& value) { value = 7; });
    field.setValue(1000);
    field.cmdUp()->click();
    EXPECT_EQ(field.Value(), 1100);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("1.1s"));
}

TEST(UpDown, AStepReadsTheTypedText) {
    PointSeparator point;
    ctlUpDown field;
    field.setDecSep(QStringLiteral("."));
    Changes changes(field);
    field.txtValue()->setText(QStringLiteral("3.4"));
    field.cmdUp()->click();
    EXPECT_EQ(field.Value(), 3500);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("3.5s"));
    // The typed text went through the lost-focus step first.
    EXPECT_EQ(changes.values, (std::vector<std::int32_t>{3400, 3500}));
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
    // The first tick steps and speeds the timer up.
    QTRY_COMPARE_WITH_TIMEOUT(changes.size(), 1, 2000);
    EXPECT_EQ(field.Value(), 1100);
    EXPECT_EQ(field.TimerRepeat()->interval(), 100);
    QTRY_VERIFY_WITH_TIMEOUT(changes.size() >= 3, 2000);
    emit field.cmdUp()->released();
    EXPECT_EQ(field.RepeatDirection(), 0);
    EXPECT_FALSE(field.TimerRepeat()->isActive());
    EXPECT_EQ(field.TimerRepeat()->interval(), 500);
    const std::int32_t held = field.Value();
    EXPECT_GE(held, 1300);
    QTest::qWait(250);
    EXPECT_EQ(field.Value(), held);

    emit field.cmdDown()->pressed();
    EXPECT_EQ(field.RepeatDirection(), 2);
    QTRY_VERIFY_WITH_TIMEOUT(field.Value() < held, 2000);
    emit field.cmdDown()->released();
}
