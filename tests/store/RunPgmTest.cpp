#include "store/clsRunPgm.h"
#include "support/TestHome.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <gtest/gtest.h>

TEST(RunPgmTest, IdleOrMissingProgramIsInactive) {
    clsRunPgm runner;
    EXPECT_FALSE(runner.isActive());
    EXPECT_EQ(runner.GetExitCode(), 0);
    EXPECT_TRUE(runner.terminate());
    EXPECT_FALSE(runner.run(QString(), QStringLiteral("tessaly-no-such-program --x"), 6));
    EXPECT_FALSE(runner.run(QStringLiteral("/nonexistent"), QStringLiteral("tool"), 6));
    EXPECT_FALSE(runner.run(QString(), QString(), 6));
    EXPECT_FALSE(runner.isActive());
}

TEST(RunPgmTest, ExitCodeAndSignalAreRead) {
    const struct {
        const char* command;
        int code;
    } cases[] = {{"sh -c \"exit 7\"", 7}, {"true", 0}, {"sh -c \"kill -TERM $$\"", 128 + 15}};
    for (const auto& c : cases) {
        clsRunPgm runner;
        ASSERT_TRUE(runner.run(QString(), QString::fromUtf8(c.command), 6)) << c.command;
        ASSERT_TRUE(runner.waitUntilEnded(5000)) << c.command;
        EXPECT_FALSE(runner.isActive());
        EXPECT_EQ(runner.GetExitCode(), c.code) << c.command;
    }
}

TEST(RunPgmTest, ProgramPastItsWaitRunsOnUntilTerminated) {
    clsRunPgm runner;
    ASSERT_TRUE(runner.run(QStringLiteral("/bin"), QStringLiteral("sleep 30"), 6));
    const pid_t first = runner.processId();
    // A second start while one runs starts nothing.
    EXPECT_TRUE(runner.run(QString(), QStringLiteral("true"), 6));
    EXPECT_EQ(runner.processId(), first);
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(runner.waitUntilEnded(100));
    EXPECT_GE(clock.elapsed(), 100);
    EXPECT_TRUE(runner.isActive());
    EXPECT_EQ(runner.GetExitCode(), clsRunPgm::kStillActive);
    EXPECT_FALSE(runner.terminate());
    EXPECT_FALSE(runner.isActive());
    // The runner can be used again.
    ASSERT_TRUE(runner.run(QString(), QStringLiteral("sh -c \"exit 3\""), 6));
    ASSERT_TRUE(runner.waitUntilEnded(5000));
    EXPECT_EQ(runner.GetExitCode(), 3);
}

TEST(RunPgmTest, WordsReachTheProgramWithoutAShell) {
    TestHome home;
    const QString marker = home.file(QStringLiteral("x"));
    clsRunPgm runner;
    // Were a shell to read the line, it would run the touch.
    ASSERT_TRUE(runner.run(
        QString(), QStringLiteral("true \"$(touch %1)\" ';touch %1' `touch %1`").arg(marker), 6));
    ASSERT_TRUE(runner.waitUntilEnded(5000));
    EXPECT_EQ(runner.GetExitCode(), 0);
    EXPECT_FALSE(QFileInfo::exists(marker));
}
