#include "audio/FrmAudioEdit.h"
#include "audio/clsMCIManager.h"
#include "audio/ctlAudioProgress.h"
#include "audio/ctlAudioRecorder.h"
#include "audio/modMCI.h"
#include "controls/GrButtonIII.h"
#include "controls/ctlUpDown.h"
#include "platform/VbFormat.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"
#include "tests/audio/AudioTestUtil.h"

#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>
#include <sndfile.h>

namespace {

QString seconds2(int ms) {
    return Format(ms / 1000.0, QStringLiteral("#0.00s"));
}

// A recorder over a fresh application folder; its add panel saves into `archive`. Without a
// localiser every text is its key.
class Recorder : public ::testing::Test {
protected:
    TestHome home;
    ScriptedResponder boxes;
    ctlAudioRecorder recorder;
    QString archive = home.file(QStringLiteral("Archive/Sounds/"));

    void SetUp() override {
        QObject::connect(&recorder, &ctlAudioRecorder::PathsWanted,
                         [this](QString& archivePath, QString& messagePath) {
                             archivePath = archive;
                             messagePath = home.path();
                         });
    }
    void TearDown() override { mciSendString(QStringLiteral("close all"), nullptr); }

    void openAddPanel(const QString& name, bool toArchive, bool toSlide) {
        recorder.cmdSave()->setEnabled(true);
        recorder.cmdSave()->click();
        recorder.txtSave()->setText(name);
        recorder.chkArchive()->setChecked(toArchive);
        recorder.chkSlide()->setChecked(toSlide);
    }

    // Loads a 3 s tone (8 kHz mono) named `name` through the file button, as the user does.
    void loadThreeSecondTone(const QString& name) {
        const QString wav = home.file(name);
        audiotest::writeFile(wav, audiotest::wavBytes(8000, 16, 1, 24000));
        setMCIManager(std::make_unique<clsMCIManager>());
        boxes.openFiles.push_back(wav);
        recorder.cmdFile()->click();
        setMCIManager(nullptr);
    }
};

TEST(RecorderNames, FileNamesAndTypes) {
    const std::pair<const char*, const char*> names[] = {{"clip.mp3", "clip.m.wav"},
                                                         {"song.x", "song.x.wav"},
                                                         {"voice", "voice.wav"},
                                                         {"a.b.c", "a.b.c.wav"},
                                                         {"end.", "end..wav"}};
    for (const auto& [typed, saved] : names)
        EXPECT_EQ(ctlAudioRecorder::recordingFileName(QString::fromLatin1(typed)),
                  QString::fromLatin1(saved))
            << typed;
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^R_\\d{6}_\\d{6}$"))
                    .match(ctlAudioRecorder::newRecordingName())
                    .hasMatch());
    const std::pair<const char*, int> types[] = {{".WAV", 1}, {".mi", 2},  {".MIDI", 2},
                                                 {".mp3", 3}, {"mpa", 3},  {".mpa", 0},
                                                 {".au", 4},  {".ogg", 0}, {"", 0}};
    for (const auto& [extension, type] : types)
        EXPECT_EQ(ctlAudioRecorder::fileTypeOf(QString::fromLatin1(extension)), type) << extension;
}

TEST(AudioProgress, ValueTextFollowsTheScale) {
    ctlAudioProgress progress;
    progress.SetMinMaxValue(0, 6);
    progress.ShowProgress(50);
    EXPECT_EQ(progress.ValueText(), Format(3.0, QStringLiteral("#0.0s")));
    progress.ShowProgress(250);
    EXPECT_EQ(progress.Percent(), 100);
    progress.ShowProgress(-3);
    EXPECT_EQ(progress.ValueText(), Format(0.0, QStringLiteral("#0.0s")));
}

TEST_F(Recorder, OneSecondRecordingIsSavedAsEightKilohertzMonoWave) {
    recorder.SetStartEndTime(0, 1000);
    QStringList ready; // path and name of each hand-over
    QObject::connect(&recorder, &ctlAudioRecorder::SoundReady,
                     [&](QString& path, QString& file) { ready << path << file; });
    QSignalSpy archived(&recorder, &ctlAudioRecorder::ArchiveChanged);
    ASSERT_FALSE(recorder.cmdSave()->isEnabled());

    recorder.cmdRecord()->click();
    ASSERT_TRUE(boxes.boxes.empty()) << boxes.boxes.front().text.toStdString();
    EXPECT_TRUE(recorder.cmdRecord()->Pressed());
    EXPECT_FALSE(recorder.cmdPlay()->isEnabled());
    const QString stamp = recorder.txtSave()->text();
    EXPECT_TRUE(stamp.startsWith(QStringLiteral("R_")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return recorder.cmdSave()->isEnabled(); }, 5000));
    EXPECT_FALSE(recorder.cmdRecord()->Pressed());
    EXPECT_FALSE(recorder.cmdStop()->isEnabled());
    EXPECT_EQ(recorder.ctlAudioProgress1()->Percent(), 0);

    recorder.cmdSave()->click();
    ASSERT_TRUE(recorder.picAddSound()->isVisibleTo(&recorder));
    EXPECT_TRUE(recorder.txtSave()->text().startsWith(QStringLiteral("R_")));
    recorder.chkArchive()->setChecked(true);
    recorder.chkSlide()->setChecked(true);
    const QString name = recorder.txtSave()->text() + QStringLiteral(".wav");
    recorder.cmdOk()->click();

    EXPECT_FALSE(recorder.picAddSound()->isVisibleTo(&recorder));
    EXPECT_EQ(archived.size(), 1);
    EXPECT_EQ(ready, QStringList({archive, name}));

    SF_INFO info{};
    SNDFILE* file = sf_open(QFile::encodeName(archive + name).constData(), SFM_READ, &info);
    ASSERT_NE(file, nullptr) << sf_strerror(nullptr);
    sf_close(file);
    EXPECT_EQ(info.samplerate, 8000);
    EXPECT_EQ(info.channels, 1);
    EXPECT_EQ(info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    EXPECT_NEAR(double(info.frames), 8000.0, 800.0);
}

TEST_F(Recorder, AddPanelNeedsATargetAndSavesOnlyIntoTheArchive) {
    QSignalSpy wanted(&recorder, &ctlAudioRecorder::PathsWanted);
    QSignalSpy ready(&recorder, &ctlAudioRecorder::SoundReady);

    openAddPanel(QStringLiteral("take one"), false, false);
    recorder.cmdOk()->click();
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].text, QStringLiteral("ERR_MUST_SELECT_ONE"));
    EXPECT_EQ(wanted.size(), 0);

    // The slide alone: the folders are asked for, nothing is saved, the panel stays.
    recorder.chkSlide()->setChecked(true);
    recorder.cmdOk()->click();
    EXPECT_EQ(wanted.size(), 1);
    EXPECT_EQ(ready.size(), 0);
    EXPECT_TRUE(recorder.picAddSound()->isVisibleTo(&recorder));
    EXPECT_FALSE(QFileInfo::exists(archive + QStringLiteral("take_one.wav")));

    recorder.txtSave()->clear();
    recorder.cmdOk()->click();
    EXPECT_EQ(boxes.boxes.back().text, QStringLiteral("STR_ENTER_NAME"));
}

TEST_F(Recorder, ExistingFileIsKeptWhenTheAnswerIsNo) {
    QDir().mkpath(archive);
    QFile existing(archive + QStringLiteral("take_one.wav"));
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.write("kept");
    existing.close();
    QSignalSpy ready(&recorder, &ctlAudioRecorder::SoundReady);
    QSignalSpy archived(&recorder, &ctlAudioRecorder::ArchiveChanged);

    openAddPanel(QStringLiteral("take one"), true, true);
    boxes.boxAnswers.push_back(Vb::No);
    recorder.cmdOk()->click();

    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].style, Vb::YesNo | Vb::Question);
    EXPECT_EQ(boxes.boxes[0].title, QStringLiteral("STR_FILE_SAVE_MSGCAP"));
    EXPECT_EQ(ready.size() + archived.size(), 0);
    EXPECT_TRUE(recorder.picAddSound()->isVisibleTo(&recorder));
    ASSERT_TRUE(existing.open(QIODevice::ReadOnly));
    EXPECT_EQ(existing.readAll(), QByteArray("kept"));
}

TEST_F(Recorder, SetEnabledNeverWakesAButton) {
    ASSERT_FALSE(recorder.cmdStop()->isEnabled());
    ASSERT_TRUE(recorder.cmdRecord()->isEnabled());
    recorder.SetEnabled(false);
    recorder.SetEnabled(true);
    EXPECT_FALSE(recorder.cmdRecord()->isEnabled());
    EXPECT_FALSE(recorder.cmdFile()->isEnabled());
    EXPECT_FALSE(recorder.cmdStop()->isEnabled());
}

TEST_F(Recorder, RecordingFromThePlayerNeedsALoadedSound) {
    recorder.chkRecAudioRec()->setChecked(true);
    recorder.cmdRecord()->click();
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].text, QStringLiteral("ERR_NO_SOUND_LOADED"));
    EXPECT_TRUE(recorder.cmdRecord()->isEnabled());
    EXPECT_FALSE(recorder.cmdStop()->isEnabled());
}

TEST_F(Recorder, MixerIsStartedWithoutAShellOrSaidMissing) {
    const QByteArray oldPath = qgetenv("PATH");
    const QString bin = home.file(QStringLiteral("bin"));
    QDir().mkpath(bin);
    qputenv("PATH", QFile::encodeName(bin));
    recorder.cmdSetup()->click();
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].text, QStringLiteral("ERR_NO_MIXER"));
    EXPECT_TRUE(recorder.cmdSetup()->isEnabled());

    // A stand-in mixer that writes down its arguments and ends.
    const QString args = home.file(QStringLiteral("args.txt"));
    home.write(QStringLiteral("bin/pavucontrol-qt"),
               "#!/bin/sh\nprintf '%s' \"$*\" > '" + QFile::encodeName(args) + "'\n");
    QFile(bin + QStringLiteral("/pavucontrol-qt"))
        .setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    recorder.cmdSetup()->click();
    qputenv("PATH", oldPath);
    EXPECT_FALSE(recorder.cmdSetup()->isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([&] { return recorder.cmdSetup()->isEnabled(); }, 5000));
    EXPECT_EQ(home.read(QStringLiteral("args.txt")), QByteArray("--tab=4"));
    EXPECT_EQ(boxes.boxes.size(), 1u);
}

TEST_F(Recorder, PlayerPlaysTheWholeSoundOrTheMarkedRange) {
    loadThreeSecondTone(QStringLiteral("long tone.wav"));
    ASSERT_TRUE(recorder.SoundLoaded());
    EXPECT_EQ(recorder.lblRecordFileName()->text(), QStringLiteral("long tone.wav"));
    EXPECT_TRUE(recorder.cmdEdit()->isEnabled());
    EXPECT_EQ(recorder.MarkB(), 3000);
    EXPECT_EQ(recorder.RecordTime(), 3000);

    // 0.3 s of the three: the player is back well before the whole sound could have played.
    recorder.SetStartEndTime(1000, 1300);
    QElapsedTimer clock;
    clock.start();
    recorder.cmdPlayC()->click();
    EXPECT_TRUE(recorder.cmdPlayC()->Pressed());
    EXPECT_TRUE(recorder.cmdStopC()->isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([&] { return recorder.cmdPlayC()->isEnabled(); }, 5000));
    EXPECT_LT(clock.elapsed(), 2000);
    EXPECT_FALSE(recorder.cmdStopC()->isEnabled());
    EXPECT_TRUE(boxes.boxes.empty());
}

TEST_F(Recorder, RecordingFromThePlayerEndsWithThePlayer) {
    loadThreeSecondTone(QStringLiteral("source.wav"));
    ASSERT_TRUE(recorder.SoundLoaded());
    recorder.SetStartEndTime(0, 400);
    std::int32_t longer = 5000; // the recording would run on for five seconds
    emit recorder.ctlUpDown1()->ValueChanged(longer);
    ASSERT_EQ(recorder.RecordTime(), 5000);

    recorder.chkRecAudioRec()->setChecked(true);
    QElapsedTimer clock;
    clock.start();
    recorder.cmdRecord()->click();
    ASSERT_TRUE(boxes.boxes.empty());
    EXPECT_FALSE(recorder.cmdPlayC()->isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([&] { return recorder.cmdSave()->isEnabled(); }, 6000));
    EXPECT_LT(clock.elapsed(), 2500);
    EXPECT_TRUE(recorder.cmdPlayC()->isEnabled());
}

TEST_F(Recorder, TrimWindowMarksGoToThePlayer) {
    const QString wav = home.file(QStringLiteral("tone.wav"));
    audiotest::writeFile(wav, audiotest::wavBytes(8000, 16, 1, 16000));
    ASSERT_EQ(mciSendString(QStringLiteral("open \"%1\" alias csound").arg(wav), nullptr), 0);
    FrmAudioEdit trim(&recorder, nullptr);
    trim.SetAudioSource(wav, 2000, QStringLiteral("csound"));
    ASSERT_TRUE(boxes.boxes.empty());
    EXPECT_EQ(trim.SliderEnd()->maximum(), 2000);
    EXPECT_EQ(trim.markStart(), 0);
    EXPECT_EQ(trim.markEnd(), 2000);
    EXPECT_EQ(trim.lblEnd()->text(), QStringLiteral("B: ") + seconds2(2000));
    EXPECT_TRUE(trim.lblInfo()->text().contains(QStringLiteral("8000 STR_SAMPLES_SEC")));
    EXPECT_TRUE(trim.lblInfo()->text().contains(QStringLiteral("16 STR_BITSPER_SAMP")));

    // B dragged below A takes A with it; A above B pushes B.
    trim.SliderStart()->setValue(700);
    trim.SliderEnd()->setValue(300);
    EXPECT_EQ(trim.SliderStart()->value(), 300);
    trim.SliderEnd()->setValue(0);
    EXPECT_EQ(trim.markStart(), 0);
    trim.SliderStart()->setValue(500);
    trim.SliderEnd()->setValue(1500);
    trim.show();
    trim.cmdClose()->click();
    EXPECT_FALSE(trim.isVisible());
    EXPECT_EQ(recorder.MarkA(), 500);
    EXPECT_EQ(recorder.MarkB(), 1500);
    EXPECT_EQ(recorder.RecordTime(), 1000);
    EXPECT_EQ(recorder.ctlUpDown1()->Value(), 1000);
    EXPECT_EQ(recorder.lblStart()->text(), QStringLiteral("A: ") + seconds2(500));

    // A sound that does not answer its length shows nothing.
    FrmAudioEdit other(&recorder, nullptr);
    other.SetAudioSource(wav, 0, QStringLiteral("nosuchsound"));
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].title, QStringLiteral("STR_ERROR"));
    EXPECT_EQ(other.SliderEnd()->maximum(), 99);
}

TEST_F(Recorder, TrimWindowSaysWhatADeviceCannotTell) {
    const QString midi = home.file(QStringLiteral("tune.mid"));
    audiotest::writeFile(midi, audiotest::midiBytes(96, {{0, 500000}}, 192));
    ASSERT_EQ(mciSendString(QStringLiteral("open \"%1\" type sequencer alias csound").arg(midi)),
              0);
    FrmAudioEdit trim(&recorder, nullptr);
    trim.SetAudioSource(midi, 0, QStringLiteral("csound"));
    ASSERT_TRUE(boxes.boxes.empty());
    EXPECT_EQ(trim.SliderEnd()->maximum(), 1000);
    EXPECT_TRUE(trim.lblInfo()->text().contains(QStringLiteral("STR_SAMPLES_SEC_NA")));
}

} // namespace
