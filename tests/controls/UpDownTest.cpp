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
    field.setValue(9950);
    field.cmdUp()->click();
    EXPECT_EQ(field.Value(), 10050);
    // At or above the maximum, up does not step.
    field.cmdUp()->click();
    EXPECT_EQ(field.Value(), 10050);
    // 50 goes to -50; at 0 or below, down does not step.
    field.setValue(50);
    field.cmdDown()->click();
    EXPECT_EQ(field.Value(), -50);
    field.cmdDown()->click();
    EXPECT_EQ(field.Value(), -50);
}

TEST(UpDown, AStepReadsTheTypedText) {
    PointSeparator point;
    ctlUpDown field;
    field.setDecSep(QStringLiteral("."));
    field.txtValue()->setText(QStringLiteral("3.4"));
    field.cmdUp()->click();
    EXPECT_EQ(field.Value(), 3500);
    EXPECT_EQ(field.txtValue()->text(), QStringLiteral("3.5s"));
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
