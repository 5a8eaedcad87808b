// The command-string service: what it answers to good and bad commands, lengths and formats of
// sound files, recording that stops by itself and is saved as a WAV file.
#include "AudioTestUtil.h"
#include "audio/modMCI.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using audiotest::ask;

namespace {

class MciServiceTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(mDir.isValid());
        // A folder with a blank in its name: paths stand quoted in the commands.
        ASSERT_TRUE(QDir(mDir.path()).mkpath(QStringLiteral("my sounds")));
        mWav = file(QStringLiteral("tone 1.wav"));
        audiotest::writeFile(mWav, audiotest::wavBytes(8000, 16, 1, 4000)); // 500 ms
    }
    void TearDown() override { mciSendString(QStringLiteral("close all")); }

    QString file(const QString& name) const {
        return QDir(mDir.path()).filePath(QStringLiteral("my sounds/") + name);
    }
    static QString quoted(const QString& path) {
        return QLatin1Char('"') + path + QLatin1Char('"');
    }

    QTemporaryDir mDir;
    QString mWav;
};

TEST_F(MciServiceTest, BadCommandsGetTheirNumbers) {
    const struct {
        const char* command;
        long error;
    } cases[] = {
        {"", Mci::MissingCommandString},
        {"   ", Mci::MissingCommandString},
        {"play", Mci::MissingDeviceName},
        {"jump nowhere", Mci::UnrecognizedCommand},
        {"play nosuchalias", Mci::InvalidDeviceName},
        {"status nosuchalias mode", Mci::InvalidDeviceName},
        {"close nosuchalias", Mci::InvalidDeviceName},
        {"open \"unclosed.wav alias x", Mci::NoClosingQuote},
        {"open new type waveaudio", Mci::NewRequiresAlias},
        {"open song.xyz alias x", Mci::ExtensionNotFound},
        {"open movie.avi alias x", Mci::DeviceNotInstalled},
        {"open nothing.wav alias x", Mci::FileNotFound},
        {"set cdaudio door open", Mci::DeviceNotInstalled},
        {"set all video off", Mci::UnsupportedFunction},
        {"status all mode", Mci::CannotUseAll},
        {"stop all", Mci::NoError},
    };
    for (const auto& c : cases)
        EXPECT_EQ(mciSendString(QString::fromLatin1(c.command)), c.error) << c.command;
    EXPECT_FALSE(mciGetErrorString(Mci::InvalidDeviceName).isEmpty());
    EXPECT_TRUE(mciGetErrorString(12345).isEmpty());
}

TEST_F(MciServiceTest, OpensQuotedPathsAndAnswersTheirFormat) {
    ASSERT_EQ(mciSendString(QStringLiteral("open waveaudio!") + quoted(mWav) +
                            QStringLiteral(" alias a")),
              0);
    EXPECT_EQ(ask(QStringLiteral("status a mode")), QStringLiteral("stopped"));
    EXPECT_EQ(ask(QStringLiteral("status A length")), QStringLiteral("500")); // aliases ignore case
    EXPECT_EQ(ask(QStringLiteral("status a samplespersec")), QStringLiteral("8000"));
    EXPECT_EQ(ask(QStringLiteral("status a bitspersample")), QStringLiteral("16"));
    EXPECT_EQ(ask(QStringLiteral("status a position wait")), QStringLiteral("0"));
    EXPECT_EQ(ask(QStringLiteral("set a time format samples")), QString());
    EXPECT_EQ(ask(QStringLiteral("status a length")), QStringLiteral("4000"));
    EXPECT_EQ(ask(QStringLiteral("set a time format bytes")), QString());
    EXPECT_EQ(ask(QStringLiteral("status a length")), QStringLiteral("8000"));
    EXPECT_EQ(ask(QStringLiteral("set a time format frames")),
              QStringLiteral("error %1").arg(Mci::BadTimeFormat));
    EXPECT_EQ(ask(QStringLiteral("set a time format ms")), QString());
    EXPECT_EQ(ask(QStringLiteral("seek a to 250")), QString());
    EXPECT_EQ(ask(QStringLiteral("status a position")), QStringLiteral("250"));
    EXPECT_EQ(mciSendString(QStringLiteral("seek a to 900")), Mci::OutOfRange);
    EXPECT_EQ(mciSendString(QStringLiteral("status a")), Mci::MissingParameter);
    EXPECT_EQ(mciSendString(QStringLiteral("status a colour")), Mci::UnrecognizedKeyword);
    EXPECT_EQ(mciSendString(QStringLiteral("status a bitsperpel")), Mci::UnsupportedFunction);
    EXPECT_EQ(mciSendString(QStringLiteral("window a state hide")), Mci::UnsupportedFunction);
    EXPECT_EQ(mciSendString(QStringLiteral("play a from x")), Mci::BadInteger);
    EXPECT_EQ(mciSendString(QStringLiteral("play a from 100 to 9000")), Mci::OutOfRange);

    // The same file under a second alias, by its extension and with the whole name quoted.
    EXPECT_EQ(mciSendString(QStringLiteral("open ") + quoted(mWav) + QStringLiteral(" alias a")),
              Mci::DuplicateAlias);
    EXPECT_EQ(mciSendString(QStringLiteral("open ") + quoted(QStringLiteral("waveaudio!") + mWav) +
                            QStringLiteral(" alias b")),
              0);
    EXPECT_EQ(ask(QStringLiteral("close a")), QString());
    EXPECT_EQ(mciSendString(QStringLiteral("status a mode")), Mci::InvalidDeviceName);
    EXPECT_EQ(ask(QStringLiteral("close all")), QString());
    EXPECT_EQ(mciSendString(QStringLiteral("status b mode")), Mci::InvalidDeviceName);
}

TEST_F(MciServiceTest, DamagedAndForeignFilesAreRefused) {
    const QString damaged = file(QStringLiteral("damaged.wav"));
    audiotest::writeFile(damaged, audiotest::wavBytes(8000, 16, 1, 800).left(30));
    EXPECT_EQ(mciSendString(QStringLiteral("open waveaudio!") + quoted(damaged) +
                            QStringLiteral(" alias d")),
              Mci::InvalidFile);
    const QString text = file(QStringLiteral("notes.mid"));
    audiotest::writeFile(text, "this is no MIDI file");
    EXPECT_EQ(mciSendString(QStringLiteral("open sequencer!") + quoted(text) +
                            QStringLiteral(" alias d")),
              Mci::InvalidFile);
    // A WAV cut inside its data plays what it holds.
    const QString cut = file(QStringLiteral("cut.wav"));
    audiotest::writeFile(cut, audiotest::wavBytes(8000, 16, 1, 800).left(44 + 800));
    ASSERT_EQ(mciSendString(QStringLiteral("open ") + quoted(cut) + QStringLiteral(" alias c")), 0);
    EXPECT_EQ(mciSendString(QStringLiteral("play c")), 0);
    EXPECT_EQ(ask(QStringLiteral("status c length")), QStringLiteral("50"));
}

TEST_F(MciServiceTest, MidiLengthFollowsTheTempoMap) {
    // Two quarters at 120 bpm (1 s), then two at 60 bpm (2 s), at 96 ticks per quarter.
    const QString midi = file(QStringLiteral("tune.mid"));
    audiotest::writeFile(midi, audiotest::midiBytes(96, {{0, 500000}, {192, 1000000}}, 384));
    ASSERT_EQ(mciSendString(QStringLiteral("open sequencer!") + quoted(midi) +
                            QStringLiteral(" alias m")),
              0);
    EXPECT_EQ(ask(QStringLiteral("status m length")), QStringLiteral("3000"));
    EXPECT_EQ(mciSendString(QStringLiteral("status m samplespersec")), Mci::UnrecognizedKeyword);
    EXPECT_EQ(mciSendString(QStringLiteral("record m")), Mci::UnsupportedFunction);
    // Wrapped as a RIFF MIDI file, opened by its extension.
    QByteArray smf = audiotest::midiBytes(96, {{0, 500000}}, 192);
    QByteArray riff("RIFF");
    const quint32 size = quint32(4 + 8 + smf.size());
    riff += QByteArray(reinterpret_cast<const char*>(&size), 4) + "RMIDdata";
    const quint32 dataSize = quint32(smf.size());
    riff += QByteArray(reinterpret_cast<const char*>(&dataSize), 4) + smf;
    const QString rmi = file(QStringLiteral("tune.rmi"));
    audiotest::writeFile(rmi, riff);
    ASSERT_EQ(mciSendString(QStringLiteral("open ") + quoted(rmi) + QStringLiteral(" alias r")), 0);
    EXPECT_EQ(ask(QStringLiteral("status r length")), QStringLiteral("1000"));
}

TEST_F(MciServiceTest, RecordingStopsByItselfAndSavesAWaveFile) {
    ASSERT_EQ(mciSendString(QStringLiteral("open new type waveaudio alias mysound buffer 9")), 0);
    ASSERT_EQ(
        mciSendString(QStringLiteral("set mysound time format ms alignment 2 channels 1 "
                                     "bitspersample 16 samplespersec 8000 bytespersec 16000")),
        0);
    EXPECT_EQ(ask(QStringLiteral("status mysound samplespersec")), QStringLiteral("8000"));
    ASSERT_EQ(mciSendString(QStringLiteral("record mysound to 300 notify")), 0);
    EXPECT_EQ(ask(QStringLiteral("status mysound mode")), QStringLiteral("recording"));
    // The format is fixed once a sound is there.
    ASSERT_TRUE(QTest::qWaitFor(
        [] { return ask(QStringLiteral("status mysound mode")) == QLatin1String("stopped"); },
        5000));
    EXPECT_EQ(ask(QStringLiteral("status mysound length")), QStringLiteral("300"));
    EXPECT_EQ(mciSendString(QStringLiteral("set mysound samplespersec 11025")),
              Mci::NonapplicableFunction);

    const QString saved = file(QStringLiteral("R_1.wav"));
    ASSERT_EQ(mciSendString(QStringLiteral("save mysound ") + quoted(saved)), 0);
    ASSERT_EQ(mciSendString(QStringLiteral("open ") + quoted(saved) + QStringLiteral(" alias s")),
              0);
    EXPECT_EQ(ask(QStringLiteral("status s length")), QStringLiteral("300"));
    EXPECT_EQ(ask(QStringLiteral("status s bitspersample")), QStringLiteral("16"));
    EXPECT_EQ(mciSendString(QStringLiteral("save mysound ") +
                            quoted(file(QStringLiteral("no folder/x.wav")))),
              Mci::FileNotSaved);

    // Played back from 1, as the recorder does.
    ASSERT_EQ(mciSendString(QStringLiteral("play mysound from 1")), 0);
    EXPECT_EQ(ask(QStringLiteral("status mysound mode")), QStringLiteral("playing"));
    ASSERT_TRUE(QTest::qWaitFor(
        [] { return ask(QStringLiteral("status mysound mode")) == QLatin1String("stopped"); },
        5000));
    EXPECT_EQ(ask(QStringLiteral("status mysound position")), QStringLiteral("300"));
}

} // namespace
