// The media command layer: its helpers, the default alias, the file dialog that opens a sound,
// and the millisecond timer.
#include "AudioTestUtil.h"
#include "audio/clsMCIManager.h"
#include "audio/mmstimer.h"
#include "audio/modMCI.h"
#include "support/ScriptedResponder.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class MCIManagerTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(mDir.isValid());
        ASSERT_TRUE(QDir(mDir.path()).mkpath(QStringLiteral("my.folder")));
        mWav = QDir(mDir.path()).filePath(QStringLiteral("my.folder/Tone 1.WAV"));
        audiotest::writeFile(mWav, audiotest::wavBytes(8000, 16, 1, 2000)); // 250 ms
    }
    void TearDown() override { mciSendString(QStringLiteral("close all")); }

    QTemporaryDir mDir;
    QString mWav;
    clsMCIManager mManager;
};

TEST_F(MCIManagerTest, FormatsTimesAndFindsExtensions) {
    EXPECT_EQ(clsMCIManager::formatTime(0), QStringLiteral("0:00"));
    EXPECT_EQ(clsMCIManager::formatTime(65000), QStringLiteral("1:05"));
    EXPECT_EQ(clsMCIManager::formatTime(3605000), QStringLiteral("1:0:05"));
    EXPECT_EQ(clsMCIManager::formatTime(59600), QStringLiteral("1:00"));
    EXPECT_EQ(clsMCIManager::fileExtensionOf(QStringLiteral("/a/song.mid")),
              QStringLiteral(".mid"));
    EXPECT_EQ(clsMCIManager::fileExtensionOf(QStringLiteral("/a.b/song.wav")),
              QStringLiteral(".b/song.wav"));
    EXPECT_EQ(clsMCIManager::fileExtensionOf(QStringLiteral("/a/noext")), QStringLiteral(".ext"));

    // The extension as it stands: ".MP3" finds no type, so the open names none.
    mManager.setFileName(QStringLiteral("/nowhere/SONG.MP3"));
    EXPECT_EQ(mManager.FileName(), QStringLiteral("/nowhere/SONG.MP3")); // kept although missing
    mManager.openSound(QStringLiteral("x"));
    EXPECT_EQ(mManager.mciFileExtension(), QStringLiteral(".MP3"));
    EXPECT_EQ(mManager.mciDeviceType(), QString());
    EXPECT_EQ(mManager.lastError(), Mci::FileNotFound);
    EXPECT_FALSE(mManager.checkLatestError().isEmpty());
}

TEST_F(MCIManagerTest, EmptyAliasMeansTheDefaultOne) {
    mManager.setFileName(mWav);
    ASSERT_EQ(mManager.openWavSound(QStringLiteral("snd")), 0);
    long length = 0;
    EXPECT_EQ(mManager.getLengthInMS(length), 0);
    EXPECT_EQ(length, 250);
    QString text;
    EXPECT_EQ(mManager.getSoundSamplesPerSec(text), 0);
    EXPECT_EQ(text, QStringLiteral("8000"));
    EXPECT_EQ(mManager.getFormatLength(text), 0);
    EXPECT_EQ(text, QStringLiteral("0:00"));
    ASSERT_EQ(mManager.playSoundFromTo(50, 200), 0);
    EXPECT_TRUE(mManager.isMoviePlaying());
    EXPECT_EQ(mManager.playFullScreen(), Mci::UnsupportedFunction);
    EXPECT_EQ(mManager.sizeLocateMovie(0, 0, 10, 10), Mci::UnsupportedFunction);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            QString mode;
            return mManager.getStatus(mode) == 0 && mode == QLatin1String("stopped");
        },
        5000));
    long position = 0;
    EXPECT_EQ(mManager.getPositionInMS(position), 0);
    EXPECT_EQ(position, 200);
    EXPECT_EQ(mManager.closeSound(), 0);
    EXPECT_EQ(mManager.closeSound(), Mci::InvalidDeviceName); // harmless a second time
}

TEST_F(MCIManagerTest, BrowsingOpensTheChosenSound) {
    ScriptedResponder dialogs;
    dialogs.openFiles = {QString(), mWav};
    const QString filter =
        QStringLiteral("Sounds (*.wav)") + QChar(0) + QStringLiteral("*.wav") + QChar(0);
    EXPECT_EQ(mManager.browseOpenFileAlias(QStringLiteral("csound"), filter, 1,
                                           QStringLiteral("Load"), nullptr, QString(), true),
              0);
    EXPECT_EQ(mManager.mciFileName(), QString()); // cancelled
    EXPECT_EQ(mciSendString(QStringLiteral("status csound mode")), Mci::InvalidDeviceName);

    ASSERT_EQ(mManager.browseOpenFileAlias(QStringLiteral("csound"), filter, 1,
                                           QStringLiteral("Load"), nullptr, QString(), true),
              0);
    EXPECT_EQ(mManager.mciFileName(), mWav);
    // The point in the folder's name makes the extension and leaves the type empty; the
    // service then goes by the file's own extension.
    EXPECT_EQ(mManager.mciFileExtension(), QStringLiteral(".folder/tone 1.wav"));
    EXPECT_EQ(mManager.mciDeviceType(), QString());
    EXPECT_GT(mManager.mciDeviceID(), 0);
    EXPECT_EQ(audiotest::ask(QStringLiteral("status csound length")), QStringLiteral("250"));
}

TEST_F(MCIManagerTest, RecordsIntoANewWaveSound) {
    clsMCIManager::RecordFormat format;
    format.milliseconds = 200;
    ASSERT_EQ(mManager.recordWaveSound(QStringLiteral("mysound"), format), 0);
    QString mode;
    EXPECT_EQ(mManager.getStatus(mode, QStringLiteral("mysound")), 0);
    EXPECT_EQ(mode, QStringLiteral("recording"));
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            return mManager.getStatus(mode, QStringLiteral("mysound")) == 0 &&
                   mode == QLatin1String("stopped");
        },
        5000));
    EXPECT_EQ(mManager.getSoundLengthInMS(mode, QStringLiteral("mysound")), 0);
    EXPECT_EQ(mode, QStringLiteral("200"));
}

TEST(mmstimerTest, ReportsTheMillisecondsThatPassed) {
    mmstimer timer;
    timer.setInterval(40);
    QSignalSpy ticks(&timer, &mmstimer::Timer);
    timer.setEnabled(true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ticks.count() >= 2; }, 5000));
    for (const QList<QVariant>& tick : ticks)
        EXPECT_GE(tick.at(0).toLongLong(), 35);
    timer.setEnabled(false);
    EXPECT_FALSE(timer.Enabled());

    timer.setOneShot(true);
    ticks.clear();
    timer.setEnabled(true);
    ASSERT_TRUE(ticks.wait(5000));
    EXPECT_FALSE(timer.Enabled());
}

} // namespace
