#include "app/clsPreviewTiming.h"

#include <algorithm>

void clsPreviewTiming::Start(bool loop, std::int32_t totalTime) {
    Restart(loop, totalTime);
    mStepsTaken = 0;
}

void clsPreviewTiming::ResetPreviewTime(std::int32_t totalTime) {
    mTotalTime = totalTime;
    mElapsed = 0;
}

void clsPreviewTiming::Restart(bool loop, std::int32_t totalTime) {
    mLoop = loop;
    ResetPreviewTime(totalTime);
    mPlaySlide = 0;
    mSlideRemaining = 0;
}

int clsPreviewTiming::StepsDue(std::int64_t clock) {
    // A step is taken by the firing of the timer nearest to its time: timers fire a little
    // early as often as late, and waiting for the next firing would make every slide late.
    const std::int64_t due = std::max<std::int64_t>(0, (clock + kTick / 2) / kTick - mStepsTaken);
    mStepsTaken += due;
    return static_cast<int>(due);
}

clsPreviewTiming::Step clsPreviewTiming::Tick(int slideCount) {
    if (mPlaySlide == 0) {
        if (slideCount < 1)
            return Step::Stop;
        mPlaySlide = 1;
        return Step::PlaySlide;
    }
    mElapsed += kTick;
    mSlideRemaining -= kTick;
    if (mSlideRemaining >= 0)
        return Step::Nothing;
    ++mPlaySlide;
    if (mPlaySlide <= slideCount)
        return Step::PlaySlide;
    return mLoop ? Step::Wrap : Step::Stop;
}
