#include "audio/mmstimer.h"

mmstimer::mmstimer(QObject* parent) : QObject(parent) {
    mTimer.setTimerType(Qt::PreciseTimer);
    mTimer.setInterval(100);
    connect(&mTimer, &QTimer::timeout, this, &mmstimer::tick);
}

void mmstimer::setInterval(int milliseconds) {
    mTimer.setInterval(milliseconds);
}

void mmstimer::setEnabled(bool enabled) {
    if (enabled == mTimer.isActive())
        return;
    if (enabled) {
        mClock.start();
        mTimer.start();
    } else {
        mTimer.stop();
    }
}

void mmstimer::setOneShot(bool oneShot) {
    mTimer.setSingleShot(oneShot);
}

void mmstimer::tick() {
    const qint64 elapsed = mClock.restart();
    emit Timer(elapsed);
}
