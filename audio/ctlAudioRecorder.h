#pragma once

#include <QWidget>
#include <cstdint>
#include <memory>

class QCheckBox;
class QLabel;
class QLineEdit;
class QTimer;
class GrButtonIII;
class FrmAudioEdit;
class clsXMLocalizer;
class ctlAudioProgress;
class ctlUpDown;
class mmstimer;
namespace Ui {
class ctlAudioRecorder;
}

// The recorder page of the tools. The recorder half records the sound input under the alias
// "mysound" (8 kHz, 16 bits, mono), plays it back and hands it, through the add panel, to the
// sound archive and the current slide. The player half opens a sound file under the alias
// "csound" and plays it between the marks A and B that the trim window sets; with
// chkRecAudioRec set, a recording takes what the player plays.
class ctlAudioRecorder : public QWidget {
    Q_OBJECT

public:
    // What the recorder half is doing while mRecordTimer runs.
    enum Mode { ModePlaying = 1, ModeRecording = 2 };
    static constexpr std::int32_t kStartRecordTime = 6000;

    explicit ctlAudioRecorder(QWidget* parent = nullptr);
    ~ctlAudioRecorder() override;

    void TranslateControl(clsXMLocalizer* localizer);
    // Every listed button that is enabled now takes `state`; a disabled one stays disabled.
    void SetEnabled(bool state);
    // The page's title stands on the main window: the caption is not kept.
    void setCaption(const QString&) {}
    void SetMaxRecordTime(std::int32_t milliseconds);
    void SetControlBackColor(std::int32_t back, std::int32_t fore);
    // Marks A and B in milliseconds; the record time becomes their distance.
    void SetStartEndTime(std::int32_t start, std::int32_t end);
    // Closes `alias`; true whatever the service answers.
    bool closeSound(const QString& alias);

    // The name a recording is saved under, from the text of the add panel's name field: cut one
    // character behind its last ".", then ".wav" added ("clip.mp3" gives "clip.m.wav").
    static QString recordingFileName(const QString& typed);
    // "R_" and the date and time ("R_261123_014502").
    static QString newRecordingName();
    // The player's file type of an extension: 1 wave, 2 MIDI, 3 MP3, 4 AU, else 0.
    static int fileTypeOf(const QString& extension);

    std::int32_t RecordTime() const { return mRecordTime; }
    std::int32_t MarkA() const { return mMarkA; }
    std::int32_t MarkB() const { return mMarkB; }
    std::int32_t SoundLength() const { return mSoundLength; }
    bool SoundLoaded() const { return mSoundLoaded; }
    QString FilePath() const { return mFilePath; }
    FrmAudioEdit* TrimWindow() const { return mTrimWindow; }

    GrButtonIII* cmdRecord() const;
    GrButtonIII* cmdPlay() const;
    GrButtonIII* cmdStop() const;
    GrButtonIII* cmdSave() const;
    GrButtonIII* cmdSetup() const;
    GrButtonIII* cmdFile() const;
    GrButtonIII* cmdEdit() const;
    GrButtonIII* cmdPlayC() const;
    GrButtonIII* cmdStopC() const;
    GrButtonIII* cmdRecordC() const;
    GrButtonIII* cmdOk() const;
    GrButtonIII* cmdCancel() const;
    QCheckBox* chkRecAudioRec() const;
    QCheckBox* chkArchive() const;
    QCheckBox* chkSlide() const;
    QLineEdit* txtSave() const;
    QWidget* picAddSound() const;
    QLabel* lblRecordFileName() const;
    QLabel* lblStart() const;
    QLabel* lblEnd() const;
    ctlUpDown* ctlUpDown1() const;
    ctlAudioProgress* ctlAudioProgress1() const;
    QTimer* TimerPlay() const { return mTimerPlay; }
    QTimer* TimerRunPgm() const { return mTimerRunPgm; }

signals:
    // cmdEdit was clicked; the trim window opens next.
    void EditClicked();
    // The add panel wants the folders to save into.
    void PathsWanted(QString& archivePath, QString& messagePath);
    // A recording was saved as `path` + `fileName` for the current slide.
    void SoundReady(QString& path, QString& fileName);
    // A recording was saved into the sound archive.
    void ArchiveChanged();

private:
    void connectControls();
    void drawGlyphs();
    void showRecordTime();
    bool soundCommand(const QString& command, QString* reply = nullptr);
    QString statusMode(const QString& alias);
    bool startRecording();
    bool startPlayback();
    void setRecorderMode(int mode);
    void mRecordTimer_Timer(qint64 elapsed);
    void cmdRecord_Click();
    void cmdPlay_Click();
    void cmdSetup_Click();
    void TimerRunPgm_Timer();
    void cmdFile_Click();
    void setSourceFile(const QString& path);
    bool measureSource();
    void cmdPlayC_Click();
    bool playSource(std::int32_t from, std::int32_t to);
    void cmdRecordC_Click();
    void TimerPlay_Timer();
    void cmdEdit_Click();
    void cmdSave_Click();
    void cmdOk_Click();
    bool saveRecording(const QString& folder, QString& name);

    std::unique_ptr<Ui::ctlAudioRecorder> ui;
    std::int32_t mRecordTime = kStartRecordTime;
    std::int32_t mElapsed = 0;
    int mMode = 0;
    QString mFilePath;
    QString mFileName;
    QString mExtension;
    QString mFolder;
    int mFileType = 0;
    std::int32_t mSoundLength = 0;
    std::int32_t mMarkA = -1;
    std::int32_t mMarkB = -1;
    bool mRecordFromPlayer = false;
    QString mArchivePath;
    QString mMessagePath;
    qint64 mMixerPid = 0;
    bool mSoundLoaded = false;
    bool mRecorded = false;
    mmstimer* mRecordTimer = nullptr;
    QTimer* mTimerPlay = nullptr;
    QTimer* mTimerRunPgm = nullptr;
    FrmAudioEdit* mTrimWindow = nullptr;
};
