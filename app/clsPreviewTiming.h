#pragma once

#include <cstdint>

// The course of the preview through the slides, counted in steps of 50 ms: which slide is on
// show, how long it has left and how much of the pass has played. It needs no display; the main
// window feeds it the real milliseconds its timer reports and acts on each step's answer.
//
// A slide of duration D stays for D / 50 + 1 steps, and the first step of a pass only loads
// slide 1. Steps are tied to the clock: each firing of the timer takes the steps whose time has
// come to within half a step, so a timer that fires late catches up and the show never falls
// behind its own time.
class clsPreviewTiming {
public:
    static constexpr std::int32_t kTick = 50;

    // What a step asks of the window.
    enum class Step {
        Nothing,   // the time moved on
        PlaySlide, // show PlaySlide() and start it with SlideStarted()
        Wrap,      // the pass has ended and loops: read the loop flag again, ResetPreviewTime
        Stop,      // the show is over
    };

    // A new show: before the first slide, no time played, no clock time owed.
    void Start(bool loop, std::int32_t totalTime);
    // A new pass: the time shown goes back to 0 of `totalTime`.
    void ResetPreviewTime(std::int32_t totalTime);
    // Starts the pass over from before slide 1 (after a Wrap).
    void Restart(bool loop, std::int32_t totalTime);

    // How many steps are due now that `clock` milliseconds have passed since Start (read from
    // one clock, never summed from the timer's intervals, which would lose their fractions).
    int StepsDue(std::int64_t clock);
    // One step. `slideCount` is the message's count of slides, -1 without a message.
    Step Tick(int slideCount);
    // The slide of PlaySlide() started; it lasts `duration` milliseconds.
    void SlideStarted(std::int32_t duration) { mSlideRemaining = duration; }

    int PlaySlide() const { return mPlaySlide; }
    std::int32_t SlideRemaining() const { return mSlideRemaining; }
    std::int32_t TotalTime() const { return mTotalTime; }
    std::int32_t Elapsed() const { return mElapsed; }
    bool Loop() const { return mLoop; }
    void setLoop(bool loop) { mLoop = loop; }
    // Steps taken since Start.
    std::int64_t StepsTaken() const { return mStepsTaken; }

private:
    int mPlaySlide = 0;
    std::int32_t mSlideRemaining = 0;
    std::int32_t mTotalTime = 0;
    std::int32_t mElapsed = 0;
    bool mLoop = false;
    std::int64_t mStepsTaken = 0; // steps handed out by StepsDue since Start
};
