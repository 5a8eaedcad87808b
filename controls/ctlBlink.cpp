#include "controls/ctlBlink.h"

#include "controls/modSkin.h"

#include <QLabel>
#include <QPainter>
#include <QRadialGradient>
#include <QTimer>

namespace {

// A lamp drawn in code when the skin's pictures are missing: dark, then a dim and a bright
// picture for each of green, blue and amber.
QPixmap drawnLamp(int index) {
    static const QColor colours[3] = {QColor(0x3c, 0xc8, 0x5a), QColor(0x3c, 0x8c, 0xf0),
                                      QColor(0xfd, 0xa8, 0x2a)};
    QPixmap picture(16, 16);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor core = index == 0 ? QColor(0x5a, 0x62, 0x70) : colours[(index - 1) / 2];
    if (index > 0 && index % 2 == 1)
        core = core.darker(170);
    QRadialGradient glow(6, 6, 9);
    glow.setColorAt(0, core.lighter(150));
    glow.setColorAt(1, core);
    painter.setBrush(glow);
    painter.setPen(QColor(0x28, 0x2c, 0x36));
    painter.drawEllipse(QRectF(1.5, 1.5, 13, 13));
    return picture;
}

} // namespace

ctlBlink::ctlBlink(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("ctlBlink"));
    resize(16, 16);
    const QList<QPixmap> pictures = resourceStrip(QStringLiteral("lamp.png"), kPictureCount);
    for (int i = 0; i < kPictureCount; ++i) {
        auto* image = new QLabel(this);
        image->setObjectName(QStringLiteral("imgBlink"));
        image->setProperty("index", i);
        image->setPixmap(pictures.isEmpty() ? drawnLamp(i) : pictures[i]);
        image->hide();
        mImgBlink << image;
    }
    mTimerBlink = new QTimer(this);
    mTimerBlink->setObjectName(QStringLiteral("TimerBlink"));
    mTimerBlink->setInterval(400);
    connect(mTimerBlink, &QTimer::timeout, this, &ctlBlink::TimerBlink_Timer);
    showPicture(0);
}

QLabel* ctlBlink::imgBlink(int index) const {
    return index >= 0 && index < mImgBlink.size() ? mImgBlink[index] : nullptr;
}

QSize ctlBlink::sizeHint() const {
    return mImgBlink[0]->pixmap().size();
}

void ctlBlink::Start(int mode, bool blink) {
    mMode = mode;
    mBlink = blink;
    switch (mode) {
    case 1:
    case 2:
    case 3:
        mImageA = 2 * mode - 1;
        mImageB = 2 * mode;
        mTimerBlink->start();
        break;
    default:
        mTimerBlink->stop();
        showPicture(0);
        break;
    }
}

void ctlBlink::TimerBlink_Timer() {
    mPhase = !mPhase;
    if (!mPhase) {
        showPicture(mImageA);
    } else {
        showPicture(mImageB);
        if (!mBlink)
            mTimerBlink->stop();
    }
}

void ctlBlink::showPicture(int index) {
    mShown = index;
    update();
}

void ctlBlink::paintEvent(QPaintEvent*) {
    const QPixmap picture = mImgBlink[mShown]->pixmap();
    QPainter painter(this);
    painter.drawPixmap((width() - picture.width()) / 2, (height() - picture.height()) / 2, picture);
}
