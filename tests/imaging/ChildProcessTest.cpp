#include "platform/ChildProcess.h"

#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>

TEST(ChildProcess, GivesTheChildsBytesAndNothingElse) {
    static int touched = 0;
    const ChildRun run = runInChild(
        [] {
            touched = 1; // in the child's memory only
            return QByteArray(100000, 'a') + "end";
        },
        10000, 1 << 20);
    EXPECT_TRUE(run.started);
    EXPECT_TRUE(run.completed) << run.failure.toStdString();
    EXPECT_EQ(run.bytes.size(), 100003);
    EXPECT_TRUE(run.bytes.endsWith("end"));
    EXPECT_EQ(touched, 0);
}

TEST(ChildProcess, ACrashAHangOrTooManyBytesCostOnlyTheChild) {
    const struct {
        std::function<QByteArray()> work;
        int timeoutMs;
        const char* failure;
    } cases[] = {
        {[] {
             std::raise(SIGSEGV);
             return QByteArray("never");
         },
         10000, "signal 11"},
        {[]() -> QByteArray { ::_exit(3); }, 10000, "exit code 3"},
        {[] {
             ::pause();
             return QByteArray();
         },
         300, "did not finish in time"},
        {[] { return QByteArray(5000, 'x'); }, 10000, "more than 4096 bytes"},
    };
    for (const auto& c : cases) {
        const ChildRun run = runInChild(c.work, c.timeoutMs, 4096);
        EXPECT_TRUE(run.started);
        EXPECT_FALSE(run.completed) << c.failure;
        EXPECT_TRUE(run.bytes.isEmpty()) << c.failure;
        EXPECT_TRUE(run.failure.contains(QString::fromLatin1(c.failure)))
            << run.failure.toStdString();
    }
}
