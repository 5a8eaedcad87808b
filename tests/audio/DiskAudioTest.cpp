// Sound through SDL's "disk" driver, which writes what is played to a file and records from
// another: the samples of a WAV file reach the device unchanged, a MIDI file makes sound, and a
// recording keeps what came in.
#include "AudioTestUtil.h"
#include "audio/modMCI.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <cstring>
#include <gtest/gtest.h>

using audiotest::ask;

namespace {

class DiskAudioTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(mDir.isValid());
        // SDL reads these names when it opens a device.
        qputenv("SDL_DISKAUDIOFILE", QFile::encodeName(path(QStringLiteral("out.raw"))));
        qputenv("SDL_DISKAUDIOFILEIN", QFile::encodeName(path(QStringLiteral("in.raw"))));
    }
    void TearDown() override { mciSendString(QStringLiteral("close all")); }

    QString path(const QString& name) const { return QDir(mDir.path()).filePath(name); }
    static bool waitStopped(const QString& alias) {
        return QTest::qWaitFor(
            [&] { return ask(QStringLiteral("status %1 mode").arg(alias)) == "stopped"; }, 10000);
    }

    QTemporaryDir mDir;
};

TEST_F(DiskAudioTest, WaveSamplesReachTheDeviceUnchanged) {
    const QByteArray wav = audiotest::wavBytes(8000, 16, 1, 2400);
    audiotest::writeFile(path(QStringLiteral("tone.wav")), wav);
    ASSERT_EQ(mciSendString(QStringLiteral("open \"%1\" alias t").arg(path("tone.wav"))), 0);
    ASSERT_EQ(mciSendString(QStringLiteral("play t")), 0);
    ASSERT_TRUE(waitStopped(QStringLiteral("t")));
    ASSERT_EQ(mciSendString(QStringLiteral("close t")), 0);
    QFile out(path(QStringLiteral("out.raw")));
    ASSERT_TRUE(out.open(QIODevice::ReadOnly));
    const QByteArray played = out.readAll();
    const QByteArray data = wav.mid(44);
    ASSERT_GE(played.size(), data.size());
    EXPECT_EQ(played.left(data.size()), data);
}

TEST_F(DiskAudioTest, MidiMakesSound) {
    audiotest::writeFile(path(QStringLiteral("tune.mid")),
                         audiotest::midiBytes(96, {{0, 500000}}, 96));
    ASSERT_EQ(mciSendString(QStringLiteral("open sequencer!\"%1\" alias m").arg(path("tune.mid"))),
              0);
    ASSERT_EQ(mciSendString(QStringLiteral("play m from 0 to 400")), 0);
    ASSERT_TRUE(waitStopped(QStringLiteral("m")));
    EXPECT_EQ(ask(QStringLiteral("status m position")), QStringLiteral("400"));
    ASSERT_EQ(mciSendString(QStringLiteral("close m")), 0);
    QFile out(path(QStringLiteral("out.raw")));
    ASSERT_TRUE(out.open(QIODevice::ReadOnly));
    const QByteArray played = out.readAll();
    int loud = 0;
    for (qsizetype i = 0; i + 1 < played.size(); i += 2) {
        qint16 sample = 0;
        std::memcpy(&sample, played.constData() + i, 2);
        loud += std::abs(sample) > 1000;
    }
    EXPECT_GT(loud, 1000);
}

TEST_F(DiskAudioTest, RecordingKeepsWhatCameIn) {
    // 8000 Hz mono 16 bit: a ramp of 2400 samples (300 ms).
    QByteArray input;
    for (int i = 0; i < 2400; ++i) {
        const qint16 sample = qint16(i * 10 - 12000);
        input.append(reinterpret_cast<const char*>(&sample), 2);
    }
    audiotest::writeFile(path(QStringLiteral("in.raw")), input);
    ASSERT_EQ(mciSendString(QStringLiteral("open new type waveaudio alias rec buffer 9")), 0);
    ASSERT_EQ(mciSendString(QStringLiteral("set rec time format ms channels 1 bitspersample 16 "
                                           "samplespersec 8000")),
              0);
    ASSERT_EQ(mciSendString(QStringLiteral("record rec to 300")), 0);
    ASSERT_TRUE(waitStopped(QStringLiteral("rec")));
    ASSERT_EQ(mciSendString(QStringLiteral("save rec \"%1\"").arg(path("rec.wav"))), 0);
    QFile saved(path(QStringLiteral("rec.wav")));
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    const QByteArray bytes = saved.readAll();
    EXPECT_EQ(bytes.left(4), "RIFF");
    EXPECT_EQ(bytes.mid(bytes.indexOf("data") + 8), input);
}

} // namespace
