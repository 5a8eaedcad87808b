#include "controls/clsWindowShrink.h"

#include <QTimer>
#include <QWidget>

clsWindowShrink::clsWindowShrink(QWidget* window, QTimer* timer)
    : QObject(window), mWindow(window), mTimer(timer) {
    connect(mTimer, &QTimer::timeout, this, &clsWindowShrink::tick);
}

bool clsWindowShrink::Running() const {
    return mTimer->isActive();
}

void clsWindowShrink::Start() {
    mRect = mWindow->geometry();
    mStepsHeight = mRect.height() / 2;
    mStepsWidth = mRect.width() / 2;
    mPause = kPauseTicks;
    mStepHeight = 1;
    mStepWidth = 1;
    mTimer->setInterval(30);
    mTimer->start();
}

void clsWindowShrink::apply() {
    const QPoint moved = mWindow->geometry().topLeft() - mRect.topLeft();
    mWindow->setMinimumSize(0, 0);
    mWindow->setGeometry(mRect);
    // Keep the contents where they were on the screen.
    if (!moved.isNull())
        for (QWidget* child : mWindow->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            child->move(child->pos() + moved);
}

void clsWindowShrink::tick() {
    if (mStepsHeight >= 1) {
        int height = mRect.height() - 2 * mStepHeight;
        mRect.moveTop(mRect.top() + mStepHeight);
        if (height < 4) {
            height = 3;
            mStepsHeight = 0;
        }
        mRect.setHeight(height);
        apply();
        --mStepsHeight;
        ++mStepHeight;
    } else if (mStepsWidth > 0) {
        int width = mRect.width() - 2 * mStepWidth;
        mRect.moveLeft(mRect.left() + mStepWidth);
        if (width < 4) {
            width = 4;
            mStepsWidth = 0;
        }
        mRect.setWidth(width);
        apply();
        --mStepsWidth;
        ++mStepWidth;
    } else if (mPause > 0) {
        --mPause;
    } else {
        mTimer->stop();
        emit Finished();
    }
}
