#pragma once

#include <QObject>
#include <QPoint>
#include <QRect>

class QTimer;
class QWidget;

// The closing animation of the splash and about windows. The window first folds to a line of
// three pixels about its middle, the line then contracts to a dot of four pixels at the centre,
// and the dot stays for 25 ticks. Each phase's step starts at one pixel and grows by one every
// tick, so the fold gathers speed. The window's contents keep their place on the screen, so the
// fold looks like a closing shutter. Finished comes after the pause; the window itself decides
// what to do then.
class clsWindowShrink : public QObject {
    Q_OBJECT

public:
    static constexpr int kPauseTicks = 25;

    // `timer` is the window's shrinkTimer; its interval is set to 30 ms by Start.
    clsWindowShrink(QWidget* window, QTimer* timer);

    void Start();
    bool Running() const;
    QRect Rect() const { return mRect; }

signals:
    void Finished();

private:
    void tick();
    void apply();

    QWidget* mWindow;
    QTimer* mTimer;
    QRect mRect;
    int mStepsHeight = 0;
    int mStepsWidth = 0;
    int mPause = 0;
    int mStepHeight = 1;
    int mStepWidth = 1;
};
