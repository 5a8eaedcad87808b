#include "controls/ctlProgressBar.h"

#include "controls/modSkin.h"

#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>

namespace {

// A frame drawn in code when the skin's frames are missing: a rounded trough with amber
// stripes moving one thirty-sixth of their period per frame.
QPixmap drawnFrame(int index) {
    QPixmap picture(144, 12);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath trough;
    trough.addRoundedRect(QRectF(0.5, 0.5, 143, 11), 5.5, 5.5);
    painter.fillPath(trough, QColor(0xe6, 0xea, 0xf2));
    painter.setClipPath(trough);
    const double offset = index * 24.0 / ctlProgressBar::kFrameCount;
    for (double x = -24 + offset; x < 144; x += 24) {
        QPainterPath stripe;
        stripe.moveTo(x, 12);
        stripe.lineTo(x + 12, 0);
        stripe.lineTo(x + 24, 0);
        stripe.lineTo(x + 12, 12);
        painter.fillPath(stripe, QColor(0xfd, 0xbe, 0x51));
    }
    painter.setClipping(false);
    painter.setPen(QColor(0xa8, 0xb0, 0xc2));
    painter.drawPath(trough);
    return picture;
}

} // namespace

ctlProgressBar::ctlProgressBar(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("ctlProgressBar"));
    resize(144, 12);
    QList<QPixmap> frames = resourceStrip(QStringLiteral("progress.png"), kFrameCount);
    for (int i = 0; i < kFrameCount; ++i) {
        auto* image = new QLabel(this);
        image->setObjectName(QStringLiteral("Image1"));
        image->setProperty("index", i);
        image->setPixmap(frames.isEmpty() ? drawnFrame(i) : frames[i]);
        image->hide();
        mImage1 << image;
    }
    mImageShow = new QLabel(this);
    mImageShow->setObjectName(QStringLiteral("ImageShow"));
    mImageShow->setScaledContents(true);
    mImageShow->setGeometry(rect());
    showFrame(0);
    mProgressTimer = new QTimer(this);
    mProgressTimer->setObjectName(QStringLiteral("mProgressTimer"));
    mProgressTimer->setInterval(80);
    connect(mProgressTimer, &QTimer::timeout, this, &ctlProgressBar::mProgressTimer_Timer);
}

QLabel* ctlProgressBar::Image1(int index) const {
    return index >= 0 && index < mImage1.size() ? mImage1[index] : nullptr;
}

void ctlProgressBar::Start(bool on) {
    mImageShow->setVisible(on);
    if (on)
        mProgressTimer->start();
    else
        mProgressTimer->stop();
}

void ctlProgressBar::showFrame(int frame) {
    mShown = frame;
    mImageShow->setPixmap(mImage1[frame]->pixmap());
}

void ctlProgressBar::mProgressTimer_Timer() {
    showFrame(mFrame);
    mFrame = mFrame >= kFrameCount - 1 ? 0 : mFrame + 1;
}

void ctlProgressBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    mImageShow->setGeometry(rect());
}
