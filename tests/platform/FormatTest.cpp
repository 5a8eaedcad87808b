#include "platform/VbFormat.h"

#include <gtest/gtest.h>

namespace {
const QString dot = QStringLiteral(".");
const QString comma = QStringLiteral(",");
} // namespace

TEST(Format, SecondsPatterns) {
    EXPECT_EQ(Format(0.25, QStringLiteral("#0.0s"), dot), QStringLiteral("0.3s"));
    EXPECT_EQ(Format(0.15, QStringLiteral("#0.0s"), dot), QStringLiteral("0.2s"));
    EXPECT_EQ(Format(12.345, QStringLiteral("#0.0"), comma), QStringLiteral("12,3"));
    EXPECT_EQ(Format(1.005, QStringLiteral("#0.00s"), dot), QStringLiteral("1.01s"));
    EXPECT_EQ(Format(3.0, QStringLiteral("0.000s"), dot), QStringLiteral("3.000s"));
}

TEST(Format, WholeNumbers) {
    EXPECT_EQ(Format(2.5, QStringLiteral("#0"), dot), QStringLiteral("3"));
    EXPECT_EQ(Format(-2.5, QStringLiteral("#0"), dot), QStringLiteral("-3"));
    EXPECT_EQ(Format(3000.0, QStringLiteral("0ms"), dot), QStringLiteral("3000ms"));
    EXPECT_EQ(Format(-0.01, QStringLiteral("#0.0"), dot), QStringLiteral("0.0"));
}

TEST(Format, TimeStamp) {
    const QDateTime t(QDate(2007, 3, 9), QTime(4, 5, 6));
    EXPECT_EQ(Format(t, QStringLiteral("yymmdd_HhNnSs")), QStringLiteral("070309_040506"));
    const QDateTime evening(QDate(2026, 11, 22), QTime(23, 59, 0));
    EXPECT_EQ(Format(evening, QStringLiteral("yymmdd_HhNnSs")), QStringLiteral("261122_235900"));
}
