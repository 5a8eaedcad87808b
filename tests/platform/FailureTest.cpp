#include "platform/Failure.h"

#include <gtest/gtest.h>

TEST(Failure, RaisedWithTheStandardDescriptionUnlessOneIsGiven) {
    const auto raised = [](int number, const QString& description) {
        try {
            raiseFailure(number, QStringLiteral("src"), description);
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.number(), number);
            return failure.description();
        }
        return QStringLiteral("not raised");
    };
    EXPECT_EQ(raised(76, {}), QStringLiteral("Path not found"));
    EXPECT_EQ(raised(FailureNumber::ObjectNotSet, {}),
              QStringLiteral("Object variable or With block variable not set"));
    EXPECT_EQ(raised(53, QStringLiteral("No such picture")), QStringLiteral("No such picture"));
    EXPECT_EQ(raised(31001, {}), QString()); // the program's own numbers have none
    EXPECT_EQ(standardDescription(482), QStringLiteral("Printer error"));
}
