#include "controls/frmSplash.h"

#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/clsWindowShrink.h"
#include "controls/modSkin.h"
#include "controls/modTitleBar.h"
#include "controls/modTranslate.h"
#include "platform/modShared.h"
#include "ui_frmSplash.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QTimer>

namespace {

QPointer<frmSplash> gSplash;

// The greeting drawn in code when the skin's picture is missing.
QPixmap drawnSplash(const QSize& size) {
    QPixmap picture(size);
    QPainter painter(&picture);
    QLinearGradient gradient(0, 0, size.width(), size.height());
    gradient.setColorAt(0, QColor(0x1d, 0x2b, 0x4a));
    gradient.setColorAt(1, QColor(0x30, 0x4a, 0x7c));
    painter.fillRect(picture.rect(), gradient);
    QFont font = painter.font();
    font.setPixelSize(40);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(picture.rect(), Qt::AlignCenter, AppProductName());
    return picture;
}

} // namespace

frmSplash* frmSplash::Load() {
    // A splash that has unloaded but is not deleted yet does not count.
    if (!gSplash || gSplash->mUnloaded)
        gSplash = new frmSplash;
    return gSplash;
}

frmSplash* frmSplash::Instance() {
    return gSplash && !gSplash->mUnloaded ? gSplash : nullptr;
}

frmSplash::frmSplash() : ui(std::make_unique<Ui::frmSplash>()) {
    ui->setupUi(this);
    setWindowFlags(Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    setAttribute(Qt::WA_DeleteOnClose);
    QPixmap picture = resourcePicture(QStringLiteral("splash.png"));
    if (picture.isNull())
        picture = drawnSplash(size());
    resize(picture.size());
    ui->Image1->setGeometry(0, 0, picture.width(), picture.height());
    ui->Image1->setPixmap(picture);
    ui->Image1->installEventFilter(this);
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().center() - rect().center());

    mTimerSplash = new QTimer(this);
    mTimerSplash->setObjectName(QStringLiteral("TimerSplash"));
    mTimerSplash->setInterval(100);
    connect(mTimerSplash, &QTimer::timeout, this, &frmSplash::TimerSplash_Timer);
    mShrinkTimer = new QTimer(this);
    mShrinkTimer->setObjectName(QStringLiteral("shrinkTimer"));
    mShrinkTimer->setInterval(30);
    mShrink = new clsWindowShrink(this, mShrinkTimer);
    connect(mShrink, &clsWindowShrink::Finished, this, [this] {
        gSplashActive = false;
        Unload();
    });

    // Form_Load
    TranslateForm();
    gSplashActive = true;
    mTimerSplash->start();
}

frmSplash::~frmSplash() {
    if (!mUnloaded)
        gSplashActive = false;
}

QLabel* frmSplash::Image1() const {
    return ui->Image1;
}
QLabel* frmSplash::lblVersion() const {
    return ui->lblVersion;
}

bool frmSplash::Shrinking() const {
    return mShrink->Running();
}

void frmSplash::TranslateForm() {
    if (gLocalizer())
        ::TranslateForm(this);
    ui->lblVersion->setText(AppVersionText());
}

void frmSplash::TimerSplash_Timer() {
    ++mCounter;
    if (mCounter <= kLastTick) {
        raise();
    } else {
        mTimerSplash->stop();
        // After CloseSplash the shrink already runs: it must not start over.
        if (!Shrinking())
            startShrink();
    }
}

void frmSplash::startShrink() {
    mCounter = 0;
    mShrink->Start();
}

void frmSplash::CloseSplash() {
    startShrink();
    mCounter = 35;
}

void frmSplash::clicked() {
    mCounter = kLastTick;
}

void frmSplash::Unload() {
    if (mUnloaded)
        return;
    mUnloaded = true;
    mTimerSplash->stop();
    mShrinkTimer->stop();
    gSplashActive = false;
    emit Unloaded();
    close();
}

bool frmSplash::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui->Image1 && event->type() == QEvent::MouseButtonPress)
        clicked();
    return QWidget::eventFilter(watched, event);
}

void frmSplash::mousePressEvent(QMouseEvent* event) {
    clicked();
    QWidget::mousePressEvent(event);
}

void frmSplash::closeEvent(QCloseEvent* event) {
    if (!mUnloaded) {
        mUnloaded = true;
        mTimerSplash->stop();
        mShrinkTimer->stop();
        gSplashActive = false;
        emit Unloaded();
    }
    event->accept();
}
