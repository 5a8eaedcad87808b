// The sound preview: descriptions of sound files, playing under `playsound` and its position.
#include "AudioTestUtil.h"
#include "audio/modMCI.h"
#include "audio/modPlaySound.h"
#include "support/ScriptedResponder.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class PlaySoundTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(mDir.isValid()); }
    void TearDown() override { mciSendString(QStringLiteral("close all")); }

    QString write(const QString& name, const QByteArray& bytes) const {
        const QString path = QDir(mDir.path()).filePath(name);
        audiotest::writeFile(path, bytes);
        return path;
    }

    QTemporaryDir mDir;
};

TEST_F(PlaySoundTest, DescribesSoundFiles) {
    const QString wav =
        write(QStringLiteral("tone one.wav"), audiotest::wavBytes(8000, 16, 1, 6000));
    EXPECT_EQ(getSoundInfo(wav), QStringLiteral("WAV;750;8000;16"));
    const QString wav8 = write(QStringLiteral("low.WAV"), audiotest::wavBytes(11025, 8, 2, 11025));
    EXPECT_EQ(getSoundInfo(wav8), QStringLiteral("WAV;1000;11025;8"));
    // 96 ticks per quarter at 120 bpm: four quarters are 2 s.
    const QString mid =
        write(QStringLiteral("tune.mid"), audiotest::midiBytes(96, {{0, 500000}}, 384));
    EXPECT_EQ(getSoundInfo(mid), QStringLiteral("MID;2000;-1;-1"));
    const QString imy = write(QStringLiteral("ring.imy"), "BEGIN:IMELODY\r\nEND:IMELODY\r\n");
    EXPECT_EQ(getSoundInfo(imy), QStringLiteral("IMY;-1;-1;-1"));
    EXPECT_EQ(getSoundInfo(QDir(mDir.path()).filePath(QStringLiteral("gone.wav"))),
              QStringLiteral("WAV"));
    const QString mp3 = write(QStringLiteral("song.mp3"), "ID3");
    EXPECT_EQ(getSoundInfo(mp3), QStringLiteral("MP3"));
    const QString damaged = write(QStringLiteral("bad.wav"), "RIFF\x10\0\0\0WAVEfmt ");
    EXPECT_EQ(getSoundInfo(damaged), QStringLiteral("WAV"));
    EXPECT_EQ(getSoundInfo(QStringLiteral("noextension")), QStringLiteral("---;-1;-1;-1"));
}

TEST_F(PlaySoundTest, PlaysAFileAndFollowsItsPosition) {
    ScriptedResponder boxes;
    const QString wav = write(QStringLiteral("tone.wav"), audiotest::wavBytes(8000, 16, 1, 4800));
    ASSERT_EQ(playFile(wav), 600);
    std::int32_t highest = 0;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            const std::int32_t position = getPlayPosition();
            highest = std::max(highest, position);
            return highest > 100 && position == 0;
        },
        5000));
    EXPECT_LE(highest, 600);
    EXPECT_TRUE(boxes.boxes.empty());

    // A second file stops and closes the first; stopping brings the position to 0.
    ASSERT_EQ(playFile(wav), 600);
    const QString other =
        write(QStringLiteral("other.wav"), audiotest::wavBytes(8000, 16, 1, 40000));
    ASSERT_EQ(playFile(other), 5000);
    EXPECT_EQ(audiotest::ask(QStringLiteral("info playsound file")), other);
    stopPlaying();
    EXPECT_EQ(getPlayPosition(), 0);

    // Nothing to play gives 0 and no box.
    EXPECT_EQ(playFile(QStringLiteral("noextension")), 0);
    EXPECT_EQ(playFile(write(QStringLiteral("ring.imy"), "BEGIN:IMELODY")), 0);
    EXPECT_EQ(playFile(QDir(mDir.path()).filePath(QStringLiteral("gone.wav"))), 0);
    EXPECT_EQ(playFile(write(QStringLiteral("bad.wav"), "RIFF")), 0);
    EXPECT_TRUE(boxes.boxes.empty());
}

TEST_F(PlaySoundTest, PlaysMidiForItsLength) {
    // Half a second: one quarter at 120 bpm.
    const QString mid =
        write(QStringLiteral("tune.mid"), audiotest::midiBytes(96, {{0, 500000}}, 96));
    ScriptedResponder boxes;
    ASSERT_EQ(playFile(mid), 500);
    EXPECT_EQ(audiotest::ask(QStringLiteral("status playsound mode")), QStringLiteral("playing"));
    ASSERT_TRUE(QTest::qWaitFor(
        [] {
            return audiotest::ask(QStringLiteral("status playsound mode")) ==
                   QLatin1String("stopped");
        },
        5000));
    EXPECT_EQ(audiotest::ask(QStringLiteral("status playsound position")), QStringLiteral("500"));
    EXPECT_TRUE(boxes.boxes.empty());
}

} // namespace
