#include "app/SingleInstance.h"

#include "support/TestHome.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

TEST(SingleInstance, SecondStartReachesTheFirst) {
    const QString key = QStringLiteral("tessaly-test-%1").arg(QCoreApplication::applicationPid());
    SingleInstance first(key);
    SingleInstance second(key);
    EXPECT_FALSE(second.activateRunningInstance(200)) << "nobody listens yet";
    int activations = 0;
    ASSERT_TRUE(first.listen([&] { ++activations; }));
    EXPECT_TRUE(second.activateRunningInstance(1000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return activations == 1; }, 2000));
}

TEST(SingleInstance, KeyDependsOnTheApplicationFolder) {
    const auto keyIn = [] {
        TestHome home; // a fresh application folder while it lives
        return SingleInstance::defaultKey();
    };
    EXPECT_NE(keyIn(), keyIn());
}

// The real program: a second start finds the first, exits at once and leaves it running.
TEST(SingleInstance, SecondProgramExitsAndTheFirstStays) {
    TestHome home(true);
    // No splash: start-up then ends as soon as the window is up.
    home.write(QStringLiteral("tessaly.xml"), home.read(QStringLiteral("tessaly.xml"))
                                                  .replace(R"(<KEY name="ShowSplash">1</KEY>)",
                                                           R"(<KEY name="ShowSplash">0</KEY>)"));
    const QString program = QStringLiteral(TESSALY_BIN_DIR "/tessaly");
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("TESSALY_HOME"), home.path());
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));

    QProcess first;
    first.setProcessEnvironment(env);
    first.start(program, {});
    ASSERT_TRUE(first.waitForStarted(5000));

    // Wait until the first one listens (its socket answers).
    SingleInstance client(SingleInstance::defaultKey());
    QElapsedTimer waited;
    waited.start();
    bool up = false;
    while (!up && waited.elapsed() < 20000 && first.state() == QProcess::Running) {
        QTest::qWait(100);
        up = client.activateRunningInstance(100);
    }
    ASSERT_TRUE(up) << "the first instance did not come up";

    QProcess second;
    second.setProcessEnvironment(env);
    second.start(program, {});
    ASSERT_TRUE(second.waitForFinished(10000));
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(first.state(), QProcess::Running);

    // Ended by the system (SIGTERM), the first one ends as Exit does and saves its preferences.
    const QDateTime saved = QFileInfo(home.file(QStringLiteral("tessaly.xml"))).lastModified();
    first.terminate();
    ASSERT_TRUE(first.waitForFinished(10000));
    EXPECT_EQ(first.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(first.exitCode(), 0);
    EXPECT_GT(QFileInfo(home.file(QStringLiteral("tessaly.xml"))).lastModified(), saved);
}
