#include "app/clsPreviewTiming.h"

void clsPreviewTiming::Start(bool loop, std::int32_t totalTime) {
    Restart(loop, totalTime);
    mClock = 0;
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

int clsPreviewTiming::StepsDue(std::int64_t milliseconds) {
    if (milliseconds > 0)
        mClock += milliseconds;
    const std::int64_t due = mClock / kTick - mStepsTaken;
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
