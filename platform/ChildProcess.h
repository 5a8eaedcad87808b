#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

// What a function run in a child process gave back.
struct ChildRun {
    // False when no child could be made (no pipe, no fork): the work did not run at all.
    bool started = false;
    // True when the child ended normally with exit code 0 and all its bytes arrived in time.
    bool completed = false;
    QByteArray bytes;
    QString failure; // why the run did not complete, in words
};

// Runs `work` in a forked copy of this process and returns the bytes it produced, so that a
// fault inside the work (a crash, an abort, a hang) costs only the child. The child ends with
// _exit and never returns to the caller's code. Waits at most `timeoutMs` for the child and
// takes at most `maxBytes` from it; a child over either limit is killed. Nothing the work
// changes in memory reaches this process: only the bytes do.
ChildRun runInChild(const std::function<QByteArray()>& work, int timeoutMs, qsizetype maxBytes);
