#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

// A millisecond timer object: while enabled it ticks every Interval() milliseconds and tells
// each tick how many milliseconds really passed since the one before (or since it was enabled).
class mmstimer : public QObject {
    Q_OBJECT
public:
    explicit mmstimer(QObject* parent = nullptr);

    int Interval() const { return mTimer.interval(); }
    void setInterval(int milliseconds);
    bool Enabled() const { return mTimer.isActive(); }
    void setEnabled(bool enabled);
    // A one-shot timer disables itself after its first tick.
    bool OneShot() const { return mTimer.isSingleShot(); }
    void setOneShot(bool oneShot);

signals:
    void Timer(qint64 elapsedMilliseconds);

private:
    void tick();

    QTimer mTimer;
    QElapsedTimer mClock;
};
