#include "audio/ctlAudioRecorder.h"

#include "audio/FrmAudioEdit.h"
#include "audio/clsMCIManager.h"
#include "audio/ctlAudioProgress.h"
#include "audio/mmstimer.h"
#include "audio/modMCI.h"
#include "config/clsXMLocalizer.h"
#include "controls/GrButtonIII.h"
#include "controls/ctlUpDown.h"
#include "controls/modGlyphs.h"
#include "controls/modTranslate.h"
#include "platform/AppPaths.h"
#include "platform/VbFormat.h"
#include "platform/modDialogs.h"
#include "platform/modText.h"
#include "ui_ctlAudioRecorder.h"

#include <QApplication>
#include <QCheckBox>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QPainter>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <csignal>
#include <sys/types.h>

namespace {

const QString kRecorder = QStringLiteral("mysound");
const QString kPlayer = QStringLiteral("csound");
constexpr int kPlayerPoll = 200;
constexpr int kMixerPoll = 500;

// The program's input mixer: the first of these that is installed, opened on its input page.
const char* const kMixers[] = {"pavucontrol", "pavucontrol-qt"};

QString cutAtNul(const QString& text) {
    const qsizetype nul = text.indexOf(QChar(0));
    return nul < 0 ? text : text.left(nul);
}

QString seconds(std::int32_t milliseconds, const QString& pattern) {
    return Format(milliseconds / 1000.0, pattern);
}

// A red dot: record.
QIcon recordGlyph() {
    QPixmap picture(16, 16);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xd8, 0x30, 0x30));
    painter.drawEllipse(QRectF(3, 3, 10, 10));
    return QIcon(picture);
}

// A sound file's time cursor: play with record.
QIcon playRecordGlyph() {
    QPixmap picture(16, 16);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.drawPixmap(0, 0, toolGlyph(QStringLiteral("play")).pixmap(16, 16));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::white, 1));
    painter.setBrush(QColor(0xd8, 0x30, 0x30));
    painter.drawEllipse(QRectF(9, 9, 6.5, 6.5));
    return QIcon(picture);
}

void setBackColour(QWidget* widget, const QColor& colour) {
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Window, colour);
    palette.setColor(QPalette::Button, colour);
    widget->setPalette(palette);
}

// The mouse pointer of a long step, put back on every way out.
class BusyPointer {
public:
    explicit BusyPointer(Qt::CursorShape shape) { QApplication::setOverrideCursor(shape); }
    ~BusyPointer() { QApplication::restoreOverrideCursor(); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
};

} // namespace

ctlAudioRecorder::ctlAudioRecorder(QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::ctlAudioRecorder>()) {
    ui->setupUi(this);
    mTimerPlay = new QTimer(this);
    mTimerPlay->setObjectName(QStringLiteral("TimerPlay"));
    mTimerPlay->setInterval(kPlayerPoll);
    mTimerRunPgm = new QTimer(this);
    mTimerRunPgm->setObjectName(QStringLiteral("TimerRunPgm"));
    mTimerRunPgm->setInterval(kMixerPoll);
    mRecordTimer = new mmstimer(this);
    mRecordTimer->setInterval(100);
    mRecordTimer->setEnabled(false);

    drawGlyphs();
    connectControls();

    ui->ctlUpDown1->setValue(mRecordTime);
    ui->ctlAudioProgress1->SetValueFormat(QStringLiteral("#0.0s"));
    showRecordTime();
    ui->ctlAudioProgress1->ShowProgress(0);
    ui->cmdStop->setEnabled(false);
    ui->cmdStopC->setEnabled(false);
    ui->cmdEdit->setEnabled(false);
    ui->cmdSave->setEnabled(false);
}

ctlAudioRecorder::~ctlAudioRecorder() {
    mRecordTimer->setEnabled(false);
    closeSound(kRecorder);
    closeSound(kPlayer);
}

void ctlAudioRecorder::drawGlyphs() {
    ui->cmdRecord->setIcon(recordGlyph());
    ui->cmdPlay->setIcon(toolGlyph(QStringLiteral("play")));
    ui->cmdStop->setIcon(toolGlyph(QStringLiteral("stop")));
    ui->cmdPlayC->setIcon(toolGlyph(QStringLiteral("play")));
    ui->cmdStopC->setIcon(toolGlyph(QStringLiteral("stop")));
    ui->cmdRecordC->setIcon(playRecordGlyph());
}

void ctlAudioRecorder::connectControls() {
    connect(ui->cmdRecord, &QAbstractButton::clicked, this, &ctlAudioRecorder::cmdRecord_Click);
    connect(ui->cmdPlay, &QAbstractButton::clicked, this, &ctlAudioRecorder::cmdPlay_Click);
    connect(ui->cmdStop, &QAbstractButton::clicked, this,
            [this] { soundCommand(QStringLiteral("stop ") + kRecorder); });
    connect(ui->cmdSetup, &QAbstractButton::clicked, this, &ctlAudioRecorder::cmdSetup_Click);
    connect(ui->cmdFile, &QAbstractButton::clicked, this, &ctlAudioRecorder::cmdFile_Click);
    connect(ui->cmdEdit, &QAbstractButton::clicked, this, &ctlAudioRecorder::cmdEdit_Click);
    connect(ui->cmdPlayC, &QAbstractButton::clicked, this, &ctlAudioRecorder::cmdPlayC_Click);
    connect(ui->cmdStopC, &QAbstractButton::clicked, this,
            [this] { soundCommand(QStringLiteral("stop ") + kPlayer); });
    connect(ui->cmdRecordC, &QAbstractButton::clicked, this, &ctlAudioRecorder::cmdRecordC_Click);
    connect(ui->cmdSave, &QAbstractButton::clicked, this, &ctlAudioRecorder::cmdSave_Click);
    connect(ui->cmdCancel, &QAbstractButton::clicked, ui->picAddSound, &QWidget::hide);
    connect(ui->cmdOk, &QAbstractButton::clicked, this, &ctlAudioRecorder::cmdOk_Click);
    connect(ui->ctlUpDown1, &ctlUpDown::ValueChanged, this, [this](std::int32_t& value) {
        mRecordTime = value;
        showRecordTime();
    });
    connect(mRecordTimer, &mmstimer::Timer, this, &ctlAudioRecorder::mRecordTimer_Timer);
    connect(mTimerPlay, &QTimer::timeout, this, &ctlAudioRecorder::TimerPlay_Timer);
    connect(mTimerRunPgm, &QTimer::timeout, this, &ctlAudioRecorder::TimerRunPgm_Timer);
}

// ---------------------------------------------------------------------------------------------
// Public operations

void ctlAudioRecorder::TranslateControl(clsXMLocalizer* localizer) {
    if (!localizer)
        return;
    TranslateForm(*localizer, this);
    const std::pair<QAbstractButton*, const char*> buttons[] = {
        {ui->cmdSave, "BTN_ADD"},
        {ui->cmdSetup, "BTN_INPUT"},
        {ui->cmdFile, "BTN_FILE"},
        {ui->cmdEdit, "BTN_EDIT"},
        {ui->cmdCancel, "BTN_CANCEL"},
        {ui->cmdOk, "BTN_OK"},
        {ui->chkArchive, "CHK_ADD_ARC"},
        {ui->chkSlide, "CHK_ADD_SLIDE"},
        {ui->chkRecAudioRec, "STR_REC_FROM_PLAYER"}};
    for (const auto& [button, key] : buttons)
        button->setText(localizer->GetString(QString::fromLatin1(key)));
    const std::pair<QLabel*, const char*> labels[] = {{ui->lblRecTime, "STR_REC_TIME"},
                                                      {ui->lblFileName, "STR_NAME"},
                                                      {ui->lblCaptionPlayer, "STR_AUDIO_PLY_CAP"},
                                                      {ui->lblCaptionRecorder, "STR_AUDIO_REC_CAP"},
                                                      {ui->lblCaptionAdd, "BTN_ADD"}};
    for (const auto& [label, key] : labels)
        label->setText(localizer->GetString(QString::fromLatin1(key)));
    if (mTrimWindow)
        mTrimWindow->TranslateForm();
    // Translating wipes the marks' texts: they show the marks again.
    if (mMarkA >= 0 || mMarkB >= 0)
        SetStartEndTime(mMarkA, mMarkB);
}

void ctlAudioRecorder::SetEnabled(bool state) {
    for (GrButtonIII* button :
         {ui->cmdSave, ui->cmdSetup, ui->cmdFile, ui->cmdEdit, ui->cmdPlay, ui->cmdStop,
          ui->cmdRecord, ui->cmdPlayC, ui->cmdStopC, ui->cmdRecordC})
        if (button->isEnabled())
            button->setEnabled(state);
}

void ctlAudioRecorder::SetMaxRecordTime(std::int32_t milliseconds) {
    ui->ctlUpDown1->setMaxValue(milliseconds);
}

void ctlAudioRecorder::SetControlBackColor(std::int32_t back, std::int32_t fore) {
    const QColor page = fromVbColor(back);
    setAutoFillBackground(true);
    setBackColour(this, page);
    setBackColour(ui->picAddSound, page);
    setBackColour(ui->chkRecAudioRec, page);
    for (QLabel* caption : {ui->lblCaptionRecorder, ui->lblCaptionPlayer, ui->lblCaptionAdd})
        setBackColour(caption, fromVbColor(fore));
    ui->ctlAudioProgress1->SetBackground(back, fore);
}

void ctlAudioRecorder::SetStartEndTime(std::int32_t start, std::int32_t end) {
    mMarkA = start;
    mMarkB = end;
    mRecordTime = end - start;
    ui->ctlUpDown1->setValue(mRecordTime);
    showRecordTime();
    ui->lblStart->setText(QStringLiteral("A: ") + seconds(start, QStringLiteral("#0.00s")));
    ui->lblEnd->setText(QStringLiteral("B: ") + seconds(end, QStringLiteral("#0.00s")));
}

bool ctlAudioRecorder::closeSound(const QString& alias) {
    mciSendString(QStringLiteral("close ") + alias, nullptr);
    return true;
}

QString ctlAudioRecorder::recordingFileName(const QString& typed) {
    QString name = typed;
    const qsizetype point = name.lastIndexOf(QLatin1Char('.'));
    if (point >= 0)
        name = name.left(point + 2);
    return name + QStringLiteral(".wav");
}

QString ctlAudioRecorder::newRecordingName() {
    return QStringLiteral("R_") +
           Format(QDateTime::currentDateTime(), QStringLiteral("yymmdd_HhNnSs"));
}

int ctlAudioRecorder::fileTypeOf(const QString& extension) {
    const QString e = extension.toLower();
    if (e == QLatin1String(".wav"))
        return 1;
    if (e == QLatin1String(".mid") || e == QLatin1String(".mi") || e == QLatin1String(".midi"))
        return 2;
    if (e == QLatin1String(".mp3") || e == QLatin1String("mpa"))
        return 3;
    if (e == QLatin1String(".au"))
        return 4;
    return 0;
}

// The scale of the progress: 0 to the record time in seconds.
void ctlAudioRecorder::showRecordTime() {
    ui->ctlAudioProgress1->SetMinMaxValue(0, mRecordTime / 1000.0);
    ui->ctlAudioProgress1->SetMinMaxValueText(QStringLiteral("0"),
                                              seconds(mRecordTime, QStringLiteral("#0.0s")));
}

// ---------------------------------------------------------------------------------------------
// Sound service

// Sends one command; a failure shows the service's text in a box and gives false.
bool ctlAudioRecorder::soundCommand(const QString& command, QString* reply) {
    const long result = mciSendString(command, reply);
    if (result == 0)
        return true;
    MsgBox(mciGetErrorString(result), Vb::OKOnly, QStringLiteral("Error"));
    return false;
}

// The mode word of `alias`, or "" when the service does not answer.
QString ctlAudioRecorder::statusMode(const QString& alias) {
    QString reply;
    if (mciSendString(QStringLiteral("status ") + alias + QStringLiteral(" mode"), &reply) != 0)
        return {};
    return cutAtNul(reply);
}

bool ctlAudioRecorder::startRecording() {
    mciSendString(QStringLiteral("close ") + kRecorder, nullptr);
    return soundCommand(QStringLiteral("open new type waveaudio alias ") + kRecorder +
                        QStringLiteral(" buffer 9")) &&
           soundCommand(QStringLiteral("set ") + kRecorder +
                        QStringLiteral(" time format ms alignment 2 channels 1 bitspersample 16 "
                                       "samplespersec 8000 bytespersec 16000")) &&
           soundCommand(QStringLiteral("record ") + kRecorder + QStringLiteral(" to ") +
                        Format(mRecordTime, QStringLiteral("#0")));
}

bool ctlAudioRecorder::startPlayback() {
    return soundCommand(QStringLiteral("stop ") + kRecorder) &&
           soundCommand(QStringLiteral("play ") + kRecorder + QStringLiteral(" from 1"));
}

// ---------------------------------------------------------------------------------------------
// Recorder half

void ctlAudioRecorder::cmdRecord_Click() {
    if (ui->txtSave->text().isEmpty())
        ui->txtSave->setText(newRecordingName());
    if (ui->chkRecAudioRec->isChecked()) {
        if (!mSoundLoaded) {
            MsgBox(localText(QStringLiteral("ERR_NO_SOUND_LOADED")), Vb::Information,
                   ui->lblCaptionPlayer->text());
            return;
        }
        mRecordFromPlayer = true;
        cmdPlayC_Click();
    }
    if (startRecording())
        setRecorderMode(ModeRecording);
}

void ctlAudioRecorder::cmdPlay_Click() {
    if (startPlayback())
        setRecorderMode(ModePlaying);
}

void ctlAudioRecorder::setRecorderMode(int mode) {
    mMode = mode;
    mElapsed = 0;
    ui->cmdStop->setEnabled(true);
    mRecordTimer->setEnabled(true);
    ui->ctlAudioProgress1->ShowProgress(0);
    ui->cmdPlay->setEnabled(false);
    ui->cmdRecord->setEnabled(false);
    ui->cmdSave->setEnabled(false);
    ui->cmdOk->setEnabled(false);
    if (mode == ModePlaying) {
        ui->cmdPlay->setPressed(true);
    } else {
        ui->cmdRecord->setPressed(true);
        mRecorded = false;
    }
}

void ctlAudioRecorder::mRecordTimer_Timer(qint64 elapsed) {
    const QString mode = statusMode(kRecorder);
    if (mode == QLatin1String("recording") || mode == QLatin1String("playing")) {
        mElapsed += elapsed;
        if (mElapsed <= mRecordTime && mRecordTime > 0)
            ui->ctlAudioProgress1->ShowProgress(100.0 * mElapsed / mRecordTime);
        if (mode == QLatin1String("recording"))
            mRecorded = true;
    } else if (mode == QLatin1String("stopped")) {
        mRecordTimer->setEnabled(false);
        ui->ctlAudioProgress1->ShowProgress(0);
        ui->cmdPlay->setEnabled(true);
        if (mMode == ModeRecording || mRecorded) {
            ui->cmdSave->setEnabled(true);
            ui->cmdOk->setEnabled(true);
        }
        ui->cmdPlay->setPressed(false);
        ui->cmdRecord->setPressed(false);
        ui->cmdRecord->setEnabled(true);
        ui->cmdStop->setEnabled(false);
        mElapsed = 0;
    }
}

// Opens the desktop's input mixer, started on its own without a shell. Its button waits until
// it has gone.
void ctlAudioRecorder::cmdSetup_Click() {
    for (const char* name : kMixers) {
        const QString program = QStandardPaths::findExecutable(QString::fromLatin1(name));
        qint64 pid = 0;
        if (program.isEmpty() ||
            !QProcess::startDetached(program, {QStringLiteral("--tab=4")}, QString(), &pid))
            continue;
        mMixerPid = pid;
        mTimerRunPgm->start();
        ui->cmdSetup->setEnabled(false);
        return;
    }
    MsgBox(localText(QStringLiteral("ERR_NO_MIXER")), Vb::Information,
           ui->lblCaptionRecorder->text());
}

void ctlAudioRecorder::TimerRunPgm_Timer() {
    // A detached program is no child of ours: it is gone once its id answers no signal.
    if (mMixerPid > 0 && ::kill(static_cast<pid_t>(mMixerPid), 0) == 0)
        return;
    mMixerPid = 0;
    mTimerRunPgm->stop();
    ui->cmdSetup->setEnabled(true);
}

// ---------------------------------------------------------------------------------------------
// Player half

void ctlAudioRecorder::cmdFile_Click() {
    mciSendString(QStringLiteral("stop ") + kPlayer, nullptr);
    mciSendString(QStringLiteral("close ") + kPlayer, nullptr);
    const QString filter =
        localText(QStringLiteral("STR_MIDI_FILES")) +
        QStringLiteral(" (*.midi;*.mid;*.mi)|*.midi;*.mid;*.mi|") +
        localText(QStringLiteral("STR_MP3_FILES")) + QStringLiteral(" (*.mp3;*.mpa)|*.mp3;*.mpa|") +
        localText(QStringLiteral("STR_AU_FILES")) + QStringLiteral(" (*.au)|*.au|") +
        localText(QStringLiteral("STR_WAV_FILES")) + QStringLiteral(" (*.wav)|*.wav|") +
        localText(QStringLiteral("STR_ALL_FILES")) + QStringLiteral(" (*.*)|*.*");
    clsMCIManager* manager = gMCIManager();
    if (!manager)
        return;
    QString pairs = filter;
    pairs.replace(QLatin1Char('|'), QChar(0)); // the dialog takes its pairs apart at NUL
    manager->browseOpenFileAlias(kPlayer, pairs, 1, localText(QStringLiteral("STR_LOAD_AUDIO")),
                                 this, QString(), true);
    const QString path = manager->mciFileName();
    if (path.isEmpty())
        return;
    const BusyPointer busy(Qt::BusyCursor);
    setSourceFile(path);
    mFileType = fileTypeOf(mExtension);
    if (measureSource()) {
        ui->cmdEdit->setEnabled(true);
        mSoundLoaded = true;
        if (mTrimWindow && mTrimWindow->isVisible())
            mTrimWindow->SetAudioSource(mFilePath, mSoundLength, kPlayer);
    } else {
        mSoundLoaded = false;
    }
}

void ctlAudioRecorder::setSourceFile(const QString& path) {
    if (path.isEmpty()) {
        mFilePath.clear();
        mFileName.clear();
        mExtension.clear();
        mFolder.clear();
        return;
    }
    mFilePath = path;
    const qsizetype point = path.lastIndexOf(QLatin1Char('.'));
    mExtension = point < 0 ? QString() : path.mid(point);
    mFileName = fileNameOf(path);
    mFolder = path.left(path.size() - mFileName.size());
    ui->lblRecordFileName->setText(mFileName);
    ui->lblRecordFileName->setToolTip(path);
}

bool ctlAudioRecorder::measureSource() {
    QString reply;
    if (!soundCommand(QStringLiteral("set ") + kPlayer + QStringLiteral(" time format ms")) ||
        !soundCommand(QStringLiteral("status ") + kPlayer + QStringLiteral(" length"), &reply))
        return false;
    mSoundLength = cutAtNul(reply).trimmed().toInt();
    SetStartEndTime(0, mSoundLength);
    return true;
}

void ctlAudioRecorder::cmdPlayC_Click() {
    if (!mSoundLoaded) {
        MsgBox(localText(QStringLiteral("ERR_NO_SOUND_LOADED")), Vb::OKOnly,
               ui->lblCaptionPlayer->text());
        return;
    }
    if (!playSource(mMarkA, mMarkB))
        return;
    mTimerPlay->start();
    ui->cmdPlayC->setEnabled(false);
    ui->cmdPlayC->setPressed(true);
    ui->cmdRecordC->setEnabled(false);
    ui->cmdStopC->setEnabled(true);
    TimerPlay_Timer();
}

bool ctlAudioRecorder::playSource(std::int32_t from, std::int32_t to) {
    if (!soundCommand(QStringLiteral("stop ") + kPlayer))
        return false;
    if (from == -1 || to == -1)
        return soundCommand(QStringLiteral("play ") + kPlayer);
    return soundCommand(QStringLiteral("play %1 from %2 to %3").arg(kPlayer).arg(from).arg(to));
}

void ctlAudioRecorder::cmdRecordC_Click() {
    mRecordFromPlayer = true;
    cmdPlayC_Click();
}

void ctlAudioRecorder::TimerPlay_Timer() {
    if (statusMode(kPlayer) != QLatin1String("stopped"))
        return;
    // The recording that the player fed ends with it.
    if (mRecordFromPlayer) {
        mciSendString(QStringLiteral("stop ") + kRecorder, nullptr);
        mRecordFromPlayer = false;
    }
    mTimerPlay->stop();
    ui->cmdPlayC->setEnabled(true);
    ui->cmdPlayC->setPressed(false);
    ui->cmdRecordC->setPressed(false);
    ui->cmdRecordC->setEnabled(true);
    ui->cmdStopC->setEnabled(false);
}

void ctlAudioRecorder::cmdEdit_Click() {
    emit EditClicked();
    if (!mTrimWindow)
        mTrimWindow = new FrmAudioEdit(this, window());
    mTrimWindow->show();
    mTrimWindow->raise();
    mTrimWindow->SetAudioSource(mFilePath, mSoundLength, kPlayer);
}

// ---------------------------------------------------------------------------------------------
// Add panel

void ctlAudioRecorder::cmdSave_Click() {
    ui->picAddSound->move(0, ui->picAddSound->y());
    ui->picAddSound->show();
    ui->picAddSound->raise();
    ui->txtSave->setText(newRecordingName());
    ui->txtSave->selectAll();
    ui->txtSave->setFocus();
}

void ctlAudioRecorder::cmdOk_Click() {
    const QString caption = ui->lblCaptionAdd->text();
    if (!ui->chkArchive->isChecked() && !ui->chkSlide->isChecked()) {
        MsgBox(localText(QStringLiteral("ERR_MUST_SELECT_ONE")), Vb::OKOnly, caption);
        return;
    }
    if (ui->txtSave->text().isEmpty()) {
        MsgBox(localText(QStringLiteral("STR_ENTER_NAME")), Vb::OKOnly, caption);
        return;
    }
    const BusyPointer busy(Qt::WaitCursor);
    QString name = recordingFileName(ui->txtSave->text());
    emit PathsWanted(mArchivePath, mMessagePath);
    bool saved = false;
    if (ui->chkArchive->isChecked()) {
        saved = saveRecording(mArchivePath, name);
        if (saved)
            emit ArchiveChanged();
    }
    if (ui->chkSlide->isChecked() && saved) {
        QString path = mArchivePath;
        emit SoundReady(path, name);
    }
    if (saved)
        ui->picAddSound->hide();
}

// Saves the recording as `folder` + `name`; blanks in the name become "_", in `name` too. An
// existing file is replaced only when the user says so.
bool ctlAudioRecorder::saveRecording(const QString& folder, QString& name) {
    name.replace(QLatin1Char(' '), QLatin1Char('_'));
    const QString file = withTrailingSlash(folder) + name;
    if (QFileInfo::exists(file) &&
        MsgBox(fillMarkers(localText(QStringLiteral("STR_FILE_EXISTS")), {name}),
               Vb::YesNo | Vb::Question,
               localText(QStringLiteral("STR_FILE_SAVE_MSGCAP"))) != Vb::Yes)
        return false;
    QDir().mkpath(folder);
    return soundCommand(QStringLiteral("save ") + kRecorder + QStringLiteral(" \"") + file +
                        QLatin1Char('"'));
}

GrButtonIII* ctlAudioRecorder::cmdRecord() const {
    return ui->cmdRecord;
}
GrButtonIII* ctlAudioRecorder::cmdPlay() const {
    return ui->cmdPlay;
}
GrButtonIII* ctlAudioRecorder::cmdStop() const {
    return ui->cmdStop;
}
GrButtonIII* ctlAudioRecorder::cmdSave() const {
    return ui->cmdSave;
}
GrButtonIII* ctlAudioRecorder::cmdSetup() const {
    return ui->cmdSetup;
}
GrButtonIII* ctlAudioRecorder::cmdFile() const {
    return ui->cmdFile;
}
GrButtonIII* ctlAudioRecorder::cmdEdit() const {
    return ui->cmdEdit;
}
GrButtonIII* ctlAudioRecorder::cmdPlayC() const {
    return ui->cmdPlayC;
}
GrButtonIII* ctlAudioRecorder::cmdStopC() const {
    return ui->cmdStopC;
}
GrButtonIII* ctlAudioRecorder::cmdRecordC() const {
    return ui->cmdRecordC;
}
GrButtonIII* ctlAudioRecorder::cmdOk() const {
    return ui->cmdOk;
}
GrButtonIII* ctlAudioRecorder::cmdCancel() const {
    return ui->cmdCancel;
}
QCheckBox* ctlAudioRecorder::chkRecAudioRec() const {
    return ui->chkRecAudioRec;
}
QCheckBox* ctlAudioRecorder::chkArchive() const {
    return ui->chkArchive;
}
QCheckBox* ctlAudioRecorder::chkSlide() const {
    return ui->chkSlide;
}
QLineEdit* ctlAudioRecorder::txtSave() const {
    return ui->txtSave;
}
QWidget* ctlAudioRecorder::picAddSound() const {
    return ui->picAddSound;
}
QLabel* ctlAudioRecorder::lblRecordFileName() const {
    return ui->lblRecordFileName;
}
QLabel* ctlAudioRecorder::lblStart() const {
    return ui->lblStart;
}
QLabel* ctlAudioRecorder::lblEnd() const {
    return ui->lblEnd;
}
ctlUpDown* ctlAudioRecorder::ctlUpDown1() const {
    return ui->ctlUpDown1;
}
ctlAudioProgress* ctlAudioRecorder::ctlAudioProgress1() const {
    return ui->ctlAudioProgress1;
}
