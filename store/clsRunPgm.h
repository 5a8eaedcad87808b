#pragma once

#include <QString>
#include <cstdint>
#include <sys/types.h>

// Starts one external program and lets its owner poll for its end. The command is split into
// words as a shell would split it, but no shell ever runs: the first word is the program, looked
// up on PATH, and every other word reaches it as one argument. Nothing here blocks except
// waitUntilEnded, which keeps the event loop running while it waits.
class clsRunPgm {
public:
    // The exit code that reads as "still active"; a program that ends with it cannot be told
    // from one that runs on.
    static constexpr std::int32_t kStillActive = 259;

    clsRunPgm() = default;
    ~clsRunPgm();
    clsRunPgm(const clsRunPgm&) = delete;
    clsRunPgm& operator=(const clsRunPgm&) = delete;

    // Starts `path` + `command` (a "/" is put between them when `path` is set and lacks one).
    // `windowStyle` is accepted for the callers' sake and has no effect. True when the program
    // runs; false when it could not be started (no such program, an empty command). While a
    // program runs under this instance, nothing more is started and the answer is true.
    bool run(const QString& path, const QString& command, int windowStyle);
    // Whether the program still runs. Its end is read here: the exit code, or 128 + the signal
    // that ended it, is what GetExitCode gives from then on.
    bool isActive();
    // The code read by the last isActive; 0 before any.
    std::int32_t GetExitCode() const { return mExitCode; }
    // Kills the program and collects it. False when it has ended; true when it could not be
    // ended, or when no program was running.
    bool terminate();
    // Marks the program as ended without touching its process. Always true.
    bool terminated();
    // Waits until the program has ended or `timeoutMs` passed (negative: no limit), letting the
    // event loop run meanwhile, woken every 20 ms to look. True when the program has ended.
    bool waitUntilEnded(int timeoutMs = -1);

    // The process id of the running program (0 when none started).
    pid_t processId() const { return mProcessId; }

private:
    bool mRunning = false;
    pid_t mProcessId = 0;
    std::int32_t mExitCode = 0;
};
