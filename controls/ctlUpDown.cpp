#include "controls/ctlUpDown.h"

#include "controls/GrButtonIII.h"
#include "platform/VbFormat.h"
#include "ui_ctlUpDown.h"

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>
#include <cmath>

namespace {

constexpr int kStep = 100;
constexpr int kFirstDelay = 500;
constexpr int kRepeatDelay = 100;

QIcon arrowIcon(bool up) {
    QPixmap picture(9, 5);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    if (up) {
        path.moveTo(0, 5);
        path.lineTo(4.5, 0);
        path.lineTo(9, 5);
    } else {
        path.moveTo(0, 0);
        path.lineTo(4.5, 5);
        path.lineTo(9, 0);
    }
    path.closeSubpath();
    painter.fillPath(path, QColor(0x3a, 0x44, 0x5c));
    return QIcon(picture);
}

} // namespace

ctlUpDown::ctlUpDown(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::ctlUpDown>()) {
    ui->setupUi(this);
    ui->cmdUp->setIcon(arrowIcon(true));
    ui->cmdUp->setIconSize(QSize(9, 5));
    ui->cmdUp->setFaceBorder(3);
    ui->cmdDown->setIcon(arrowIcon(false));
    ui->cmdDown->setIconSize(QSize(9, 5));
    ui->cmdDown->setFaceBorder(3);

    mTimerRepeat = new QTimer(this);
    mTimerRepeat->setObjectName(QStringLiteral("TimerRepeat"));
    mTimerRepeat->setInterval(kFirstDelay);
    connect(mTimerRepeat, &QTimer::timeout, this, &ctlUpDown::timerRepeat_Timer);

    connect(ui->cmdUp, &QAbstractButton::clicked, this, &ctlUpDown::cmdUp_Click);
    connect(ui->cmdDown, &QAbstractButton::clicked, this, &ctlUpDown::cmdDown_Click);
    connect(ui->cmdUp, &QAbstractButton::pressed, this, [this] { startRepeat(1); });
    connect(ui->cmdDown, &QAbstractButton::pressed, this, [this] { startRepeat(2); });
    connect(ui->cmdUp, &QAbstractButton::released, this, &ctlUpDown::stopRepeat);
    connect(ui->cmdDown, &QAbstractButton::released, this, &ctlUpDown::stopRepeat);
    ui->txtValue->installEventFilter(this);
    setValue(0);
}

ctlUpDown::~ctlUpDown() = default;

QLineEdit* ctlUpDown::txtValue() const {
    return ui->txtValue;
}
GrButtonIII* ctlUpDown::cmdUp() const {
    return ui->cmdUp;
}
GrButtonIII* ctlUpDown::cmdDown() const {
    return ui->cmdDown;
}

void ctlUpDown::setValue(std::int32_t value) {
    mValue = value;
    ui->txtValue->setText(formatted(value));
}

void ctlUpDown::setDecSep(const QString& separator) {
    mDecSep = separator;
}

void ctlUpDown::setMaxValue(std::int32_t value) {
    mMaxValue = value;
}

std::int32_t ctlUpDown::ReadField() const {
    QString text = ui->txtValue->text().trimmed();
    if (text.isEmpty())
        return 0;
    if (text.contains(QLatin1Char('s')))
        text.chop(1);
    if (text.isEmpty())
        return 0;
    // The field accepts its own separator as well as the locale's; group separators never.
    QLocale locale;
    locale.setNumberOptions(QLocale::RejectGroupSeparator);
    if (!mDecSep.isEmpty() && mDecSep.front() != locale.decimalPoint().front())
        text.replace(mDecSep.front(), locale.decimalPoint().front());
    bool ok = false;
    const double seconds = locale.toDouble(text, &ok);
    if (!ok || !std::isfinite(seconds))
        return mValue;
    const double millis = std::round(seconds * 1000.0);
    if (millis > double(INT32_MAX) || millis < double(INT32_MIN))
        return mValue;
    return static_cast<std::int32_t>(millis);
}

void ctlUpDown::raiseChanged(std::int32_t value) {
    std::int32_t changed = value;
    emit ValueChanged(changed);
}

QString ctlUpDown::formatted(std::int32_t value) {
    return Format(value / 1000.0, QStringLiteral("#0.0s"));
}

std::int32_t ctlUpDown::stepStart() {
    // The arrows take no focus, so a typed value has not been through the lost-focus step yet:
    // run it first, which also brings a value above MaxValue down.
    if (ui->txtValue->text() != formatted(mValue))
        txtValue_LostFocus();
    return ReadField();
}

void ctlUpDown::cmdUp_Click() {
    std::int32_t value = stepStart();
    if (value < mMaxValue)
        value += kStep;
    setValue(value);
    raiseChanged(value);
}

void ctlUpDown::cmdDown_Click() {
    std::int32_t value = stepStart();
    if (value > 0)
        value -= kStep;
    setValue(value);
    raiseChanged(value);
}

void ctlUpDown::txtValue_LostFocus() {
    const std::int32_t read = ReadField();
    ui->txtValue->setText(formatted(read));
    setValue(read);
    if (mValue > mMaxValue)
        setValue(mMaxValue);
    raiseChanged(mValue);
}

void ctlUpDown::startRepeat(int direction) {
    mDirection = direction;
    mTimerRepeat->start();
}

void ctlUpDown::stopRepeat() {
    mDirection = 0;
    mTimerRepeat->stop();
    mTimerRepeat->setInterval(kFirstDelay);
}

void ctlUpDown::timerRepeat_Timer() {
    mTimerRepeat->setInterval(kRepeatDelay);
    if (mDirection == 1)
        cmdUp_Click();
    else if (mDirection == 2)
        cmdDown_Click();
}

bool ctlUpDown::eventFilter(QObject* watched, QEvent* event) {
    if (watched != ui->txtValue)
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::FocusIn:
        // After the click that gave the focus has placed the cursor.
        QTimer::singleShot(0, ui->txtValue, &QLineEdit::selectAll);
        break;
    case QEvent::FocusOut: {
        // Switching to another program or opening a menu is no leaving of the field.
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
            txtValue_LostFocus();
        break;
    }
    case QEvent::KeyPress: {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            txtValue_LostFocus();
            return true;
        }
        if (key->key() == Qt::Key_Backspace)
            return false;
        const QString text = key->text();
        if (text.isEmpty() || key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))
            return false; // cursor keys, delete, shortcuts
        const QChar c = text.front();
        if (c.isDigit() && c.unicode() < 128)
            return false;
        if (!mDecSep.isEmpty() && c == mDecSep.front())
            return false;
        if (!c.isPrint())
            return false; // tab and other control keys keep their usual work
        QApplication::beep();
        return true;
    }
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}
