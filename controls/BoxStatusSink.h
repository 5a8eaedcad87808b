#pragma once

#include "platform/StatusSink.h"

// The window's sink for engines: questions and failures become message boxes (through the
// dialog seam), and long work lets window events run.
class BoxStatusSink final : public StatusSink {
public:
    int ask(const QString& text, int style, const QString& title) override;
    void breathe() override;
};
