#include "audio/FrmAudioEdit.h"

#include "audio/ctlAudioRecorder.h"
#include "audio/modMCI.h"
#include "controls/GrButtonIII.h"
#include "controls/modTitleBar.h"
#include "controls/modTranslate.h"
#include "platform/AppPaths.h"
#include "platform/VbFormat.h"
#include "platform/modDialogs.h"
#include "platform/modText.h"
#include "ui_FrmAudioEdit.h"

#include <QMouseEvent>
#include <QProgressBar>
#include <QSlider>
#include <QTimer>

namespace {

QString cutAtNul(const QString& text) {
    const qsizetype nul = text.indexOf(QChar(0));
    return nul < 0 ? text : text.left(nul);
}

QString seconds(std::int32_t milliseconds) {
    return Format(milliseconds / 1000.0, QStringLiteral("#0.00s"));
}

// The reply of `status <alias> <item>`, or "" when the service refuses it.
QString status(const QString& alias, const QString& item, long* result = nullptr) {
    QString reply;
    const long code =
        mciSendString(QStringLiteral("status ") + alias + QLatin1Char(' ') + item, &reply);
    if (result)
        *result = code;
    return code == 0 ? cutAtNul(reply).trimmed() : QString();
}

void paint(QWidget* widget, QPalette::ColorRole role, const QColor& colour) {
    QPalette palette = widget->palette();
    palette.setColor(role, colour);
    widget->setPalette(palette);
}

} // namespace

FrmAudioEdit::FrmAudioEdit(ctlAudioRecorder* panel, QWidget* owner)
    : QWidget(owner, Qt::Tool | Qt::FramelessWindowHint), ui(std::make_unique<Ui::FrmAudioEdit>()),
      mPanel(panel) {
    ui->setupUi(this);
    setFixedSize(size());
    paint(ui->Picture1, QPalette::Window, QColor(0xef, 0xf2, 0xf8));
    paint(ui->Picture1, QPalette::WindowText, QColor(0x1d, 0x2b, 0x4a));
    paint(ui->lblCaption, QPalette::Window, QColor(0x1d, 0x2b, 0x4a));
    paint(ui->lblCaption, QPalette::WindowText, Qt::white);
    QFont bold = ui->lblCaption->font();
    bold.setBold(true);
    ui->lblCaption->setFont(bold);
    ui->lblFileName->setFont(bold);
    ui->lblFileName->setTextFormat(Qt::PlainText);
    ui->cmdClose->setCaptionLook(QStringLiteral("close"));

    mTimerPlay = new QTimer(this);
    mTimerPlay->setObjectName(QStringLiteral("TimerPlay"));
    mTimerPlay->setInterval(kPollInterval);
    connect(mTimerPlay, &QTimer::timeout, this, &FrmAudioEdit::TimerPlay_Timer);
    connect(ui->SliderStart, &QSlider::valueChanged, this, &FrmAudioEdit::SliderStart_Change);
    connect(ui->SliderEnd, &QSlider::valueChanged, this, &FrmAudioEdit::SliderEnd_Change);
    connect(ui->SliderStart, &QSlider::sliderReleased, this, &FrmAudioEdit::handOverMarks);
    connect(ui->SliderEnd, &QSlider::sliderReleased, this, &FrmAudioEdit::handOverMarks);
    connect(ui->cmdClose, &QAbstractButton::clicked, this, &FrmAudioEdit::cmdClose_Click);
    ui->lblCaption->installEventFilter(this);
    TranslateForm();
    // It opens over the middle of its owner.
    if (owner)
        move(owner->window()->geometry().center() - rect().center());
}

FrmAudioEdit::~FrmAudioEdit() = default;

void FrmAudioEdit::TranslateForm() {
    ::TranslateForm(this);
    ui->lblCaption->setText(windowTitle());
}

void FrmAudioEdit::SetAudioSource(const QString& path, std::int32_t, const QString& alias) {
    mAlias = alias;
    long result = 0;
    const QString reply = status(alias, QStringLiteral("length"), &result);
    if (result != 0) {
        MsgBox(mciGetErrorString(result), Vb::OKOnly, localText(QStringLiteral("STR_ERROR")));
        return;
    }
    const std::int32_t length = reply.toInt();
    if (length <= 0) {
        MsgBox(localText(QStringLiteral("ERR_NO_SOUND_LOADED")), Vb::Information,
               ui->lblCaption->text());
        return;
    }
    ui->lblFileName->setText(fileNameOf(path));
    ui->lblFileName->setToolTip(path);
    for (QSlider* slider : {ui->SliderStart, ui->SliderEnd})
        slider->setMaximum(length);
    ui->SliderStart->setValue(0);
    ui->SliderEnd->setValue(length);
    mMarkStart = ui->SliderStart->value();
    mMarkEnd = ui->SliderEnd->value();
    ui->lblStart->setText(QStringLiteral("A: ") + seconds(mMarkStart));
    ui->lblEnd->setText(QStringLiteral("B: ") + seconds(mMarkEnd));
    ui->lblMaxTime->setText(seconds(length));
    ui->lblCurrent->setText(seconds(0));
    ui->ProgressBar1->setMaximum(length);
    ui->ProgressBar1->setValue(0);
    ui->lblInfo->setText(soundFacts(length));
}

// "1.00s  8000 samples per second, 16 bits per sample"; an answer the device does not give is
// said as unknown.
QString FrmAudioEdit::soundFacts(std::int32_t length) {
    long result = 0;
    const QString samples = status(mAlias, QStringLiteral("samplespersec"), &result);
    QString facts = seconds(length) + QStringLiteral("  ");
    facts += result == 0 ? samples + QLatin1Char(' ') + localText(QStringLiteral("STR_SAMPLES_SEC"))
                         : localText(QStringLiteral("STR_SAMPLES_SEC_NA"));
    const QString bits = status(mAlias, QStringLiteral("bitspersample"), &result);
    facts += QStringLiteral(", ");
    facts += result == 0 ? bits + QLatin1Char(' ') + localText(QStringLiteral("STR_BITSPER_SAMP"))
                         : localText(QStringLiteral("STR_BITSPER_SAMP_NA"));
    return facts;
}

void FrmAudioEdit::SliderStart_Change(int value) {
    mMarkStart = value;
    ui->lblStart->setText(QStringLiteral("A: ") + seconds(value));
    if (value > ui->SliderEnd->value())
        ui->SliderEnd->setValue(value);
}

void FrmAudioEdit::SliderEnd_Change(int value) {
    mMarkEnd = value;
    ui->lblEnd->setText(QStringLiteral("B: ") + seconds(value));
    if (value < ui->SliderStart->value())
        ui->SliderStart->setValue(value);
}

void FrmAudioEdit::handOverMarks() {
    if (mPanel)
        mPanel->SetStartEndTime(mMarkStart, mMarkEnd);
}

void FrmAudioEdit::TimerPlay_Timer() {
    if (!isVisible())
        return;
    const QString mode = status(mAlias, QStringLiteral("mode"));
    if (mode == QLatin1String("playing")) {
        long result = 0;
        const QString position = status(mAlias, QStringLiteral("position"), &result);
        if (result != 0)
            return;
        ui->ProgressBar1->setValue(position.toInt());
        ui->lblCurrent->setText(seconds(position.toInt()));
    } else if (mode == QLatin1String("stopped")) {
        ui->ProgressBar1->setValue(0);
    }
}

void FrmAudioEdit::cmdClose_Click() {
    handOverMarks();
    mTimerPlay->stop();
    hide();
}

void FrmAudioEdit::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    mTimerPlay->start();
}

void FrmAudioEdit::hideEvent(QHideEvent* event) {
    mTimerPlay->stop();
    QWidget::hideEvent(event);
}

void FrmAudioEdit::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        DragWindow(this, 1);
    QWidget::mousePressEvent(event);
}

bool FrmAudioEdit::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui->lblCaption && event->type() == QEvent::MouseButtonPress &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
        DragWindow(this, 1);
    return QWidget::eventFilter(watched, event);
}

QSlider* FrmAudioEdit::SliderStart() const {
    return ui->SliderStart;
}
QSlider* FrmAudioEdit::SliderEnd() const {
    return ui->SliderEnd;
}
QProgressBar* FrmAudioEdit::ProgressBar1() const {
    return ui->ProgressBar1;
}
QLabel* FrmAudioEdit::lblStart() const {
    return ui->lblStart;
}
QLabel* FrmAudioEdit::lblEnd() const {
    return ui->lblEnd;
}
QLabel* FrmAudioEdit::lblCurrent() const {
    return ui->lblCurrent;
}
QLabel* FrmAudioEdit::lblMaxTime() const {
    return ui->lblMaxTime;
}
QLabel* FrmAudioEdit::lblInfo() const {
    return ui->lblInfo;
}
QLabel* FrmAudioEdit::lblFileName() const {
    return ui->lblFileName;
}
GrButtonIII* FrmAudioEdit::cmdClose() const {
    return ui->cmdClose;
}
