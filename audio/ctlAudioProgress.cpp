#include "audio/ctlAudioProgress.h"

#include "platform/VbFormat.h"
#include "platform/modDialogs.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace {

constexpr int kBarHeight = 18;
const QColor kTrack(0xd5, 0xdc, 0xe9);
const QColor kText(0x2a, 0x33, 0x48);

} // namespace

ctlAudioProgress::ctlAudioProgress(QWidget* parent)
    : QWidget(parent), mBack(Qt::transparent), mBar(0xfd, 0xbe, 0x51) {}

void ctlAudioProgress::SetBackground(std::int32_t back, std::int32_t bar) {
    mBack = fromVbColor(back);
    mBar = fromVbColor(bar);
    update();
}

void ctlAudioProgress::ShowProgress(double percent) {
    mPercent = std::clamp(percent, 0.0, 100.0);
    update();
}

void ctlAudioProgress::SetValueFormat(const QString& format) {
    mFormat = format;
    update();
}

void ctlAudioProgress::SetMinMaxValue(double min, double max) {
    mMin = min;
    mMax = max;
    update();
}

void ctlAudioProgress::SetMinMaxValueText(const QString& minText, const QString& maxText) {
    mMinText = minText;
    mMaxText = maxText;
    update();
}

QString ctlAudioProgress::ValueText() const {
    return Format(mMin + (mMax - mMin) * mPercent / 100.0, mFormat);
}

void ctlAudioProgress::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (mBack.alpha() > 0)
        painter.fillRect(rect(), mBack);

    const QRectF track(0.5, 0.5, width() - 1.0, kBarHeight - 1.0);
    QPainterPath outline;
    outline.addRoundedRect(track, 4, 4);
    painter.fillPath(outline, kTrack);
    if (mPercent > 0) {
        painter.save();
        painter.setClipPath(outline);
        painter.fillRect(
            QRectF(track.left(), track.top(), track.width() * mPercent / 100.0, track.height()),
            mBar);
        painter.restore();
    }
    painter.setPen(QPen(kTrack.darker(115), 1));
    painter.drawPath(outline);

    QFont font = this->font();
    font.setPixelSize(11);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(kText);
    painter.drawText(track, Qt::AlignCenter, ValueText());

    font.setBold(false);
    font.setPixelSize(10);
    painter.setFont(font);
    const QRectF scale(0, kBarHeight + 1, width(), height() - kBarHeight - 1);
    painter.drawText(scale, Qt::AlignLeft | Qt::AlignTop, mMinText);
    painter.drawText(scale, Qt::AlignRight | Qt::AlignTop, mMaxText);
}
