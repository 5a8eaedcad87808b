#include "PublishSupport.h"

#include "store/AMRConverter.h"

#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

TEST(AmrConverterTest, EncodesAnyRateToFramesOfTwentyMilliseconds) {
    TestHome home;
    const struct {
        int rate, channels, ms, frames;
    } cases[] = {{8000, 1, 1000, 50}, {44100, 2, 1000, 50}, {11025, 1, 30, 2}, {48000, 6, 200, 10}};
    for (const auto& c : cases) {
        home.write(QStringLiteral("in.wav"), sineWav(c.rate, c.channels, c.ms));
        const QByteArray in = QFile::encodeName(home.file(QStringLiteral("in.wav")));
        const QByteArray amr = QFile::encodeName(home.file(QStringLiteral("out.amr")));
        ASSERT_EQ(wav2amr(in, amr, "MR102"), AmrOk) << c.rate;
        const QByteArray bytes = readFile(QString::fromLocal8Bit(amr));
        // 10.2 kbit/s frames: a header byte 0x34 (type 6, quality bit) and 26 bytes of speech.
        EXPECT_EQ(bytes.size(), 6 + 27 * c.frames) << c.rate;
        EXPECT_TRUE(bytes.startsWith("#!AMR\n4")) << c.rate;

        const QByteArray back = QFile::encodeName(home.file(QStringLiteral("back.wav")));
        ASSERT_EQ(amr2wav(amr, back), AmrOk);
        std::vector<std::int16_t> samples;
        ASSERT_TRUE(decodeSoundTo8kMono(readFile(QString::fromLocal8Bit(back)), samples));
        EXPECT_EQ(samples.size(), std::size_t(160 * c.frames));
    }
    EXPECT_EQ(amrModeFromText("mr475"), 0);
    EXPECT_EQ(amrModeFromText("MR122"), 7);
}

TEST(AmrConverterTest, DamagedInputFailsAndWritesNothing) {
    TestHome home;
    const QByteArray wav = sineWav(8000, 1, 100);
    const struct {
        const char* what;
        QByteArray bytes;
        QByteArray mode;
        int result;
    } cases[] = {
        {"empty file", QByteArray(), "MR102", AmrUnreadableInput},
        {"header without samples", wav.left(44), "MR102", AmrUnreadableInput},
        {"cut header", wav.left(30), "MR102", AmrUnreadableInput},
        {"not a sound", QByteArray(500, 'z'), "MR102", AmrUnreadableInput},
        {"bad mode", wav, "MR999", AmrUnknownMode},
    };
    const QByteArray out = QFile::encodeName(home.file(QStringLiteral("out.amr")));
    for (const auto& c : cases) {
        home.write(QStringLiteral("in.wav"), c.bytes);
        EXPECT_EQ(wav2amr(QFile::encodeName(home.file(QStringLiteral("in.wav"))), out, c.mode),
                  c.result)
            << c.what;
        EXPECT_FALSE(QFileInfo::exists(QString::fromLocal8Bit(out))) << c.what;
    }
    EXPECT_EQ(wav2amr("/nonexistent/in.wav", out, "MR102"), AmrUnreadableInput);

    // A cut frame or a type AMR-NB cannot hold is a damaged stream.
    for (const QByteArray& amr :
         {QByteArray("#!AMR\n\x34\x01\x02", 9), QByteArray("#!AMR\n\x48", 7), QByteArray("AMR")}) {
        home.write(QStringLiteral("in.amr"), amr);
        EXPECT_EQ(amr2wav(QFile::encodeName(home.file(QStringLiteral("in.amr"))),
                          QFile::encodeName(home.file(QStringLiteral("out.wav")))),
                  AmrDamagedStream);
        EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("out.wav"))));
    }
}
