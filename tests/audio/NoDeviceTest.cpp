// A machine where SDL finds no sound device (its driver cannot start): the service tells so,
// files can still be described, and play and record fail with their numbers at once.
#include "AudioTestUtil.h"
#include "audio/clsMCIManager.h"
#include "audio/modMCI.h"
#include "audio/modPlaySound.h"
#include "support/ScriptedResponder.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

TEST(NoDeviceTest, SoundFailsWithItsNumbersAndNothingHangs) {
    QTemporaryDir dir;
    const QString wav = QDir(dir.path()).filePath(QStringLiteral("tone.wav"));
    audiotest::writeFile(wav, audiotest::wavBytes(8000, 16, 1, 800));
    EXPECT_EQ(waveOutGetNumDevs(), 0);
    EXPECT_FALSE(clsMCIManager().hasSoundDevices());

    EXPECT_EQ(getSoundInfo(wav), QStringLiteral("WAV;100;8000;16"));
    ScriptedResponder boxes;
    EXPECT_EQ(playFile(wav), 0);
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].text, mciGetErrorString(Mci::WaveOutputsUnsuitable));
    EXPECT_EQ(boxes.boxes[0].title, QStringLiteral("STR_ERROR"));
    EXPECT_EQ(getPlayPosition(), 0);

    ASSERT_EQ(mciSendString(QStringLiteral("open new type waveaudio alias mysound buffer 9")), 0);
    EXPECT_EQ(mciSendString(QStringLiteral("record mysound to 500")), Mci::WaveInputsUnsuitable);
    EXPECT_EQ(audiotest::ask(QStringLiteral("status mysound mode")), QStringLiteral("stopped"));
    EXPECT_EQ(mciSendString(QStringLiteral("close all")), 0);
}

} // namespace
