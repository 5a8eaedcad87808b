#pragma once

#include <QString>

// Where an engine (the picture writer, the message store) reports what a person should see,
// without showing anything itself: a question or a failure as a message box would put it,
// progress, and a moment for the window to stay responsive during long work. The window gives
// the engine a sink that shows boxes and lets events run; without one, engines use the quiet
// sink, which answers every question with the box's default button.
class StatusSink {
public:
    virtual ~StatusSink() = default;
    // A box of `style` (the MsgBox styles of platform/modDialogs.h); returns the answer.
    virtual int ask(const QString& text, int style, const QString& title) = 0;
    // `done` of `total` steps of the work under way.
    virtual void progress(int done, int total) {
        (void)done;
        (void)total;
    }
    // Called between steps of long work.
    virtual void breathe() {}
};

// Answers with each box's default button; shows and waits for nothing.
StatusSink& quietSink();
