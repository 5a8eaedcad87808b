#include "store/clsRunPgm.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <vector>

extern char** environ;

namespace {
constexpr int kPollIntervalMs = 20;

// The exit code a wait status stands for: the program's own code, or 128 + the signal.
std::int32_t exitCodeOf(int status) {
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        return 128 + WTERMSIG(status);
    return 1;
}

// Starts `words` (program first) with stdin from /dev/null. The child's pid, or 0.
pid_t spawn(const QStringList& words) {
    std::vector<QByteArray> encoded;
    encoded.reserve(std::size_t(words.size()));
    for (const QString& word : words)
        encoded.push_back(word.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& word : encoded)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    // The child starts with the default signal handling, whatever this process set up.
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    sigaddset(&defaults, SIGTERM);
    sigaddset(&defaults, SIGINT);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

    pid_t child = 0;
    const int result =
        posix_spawnp(&child, argv.front(), &actions, &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return result == 0 ? child : 0;
}
} // namespace

clsRunPgm::~clsRunPgm() {
    if (isActive())
        terminate();
}

bool clsRunPgm::run(const QString& path, const QString& command, int windowStyle) {
    Q_UNUSED(windowStyle) // programs here have no window to minimise
    if (mRunning)
        return mRunning;
    QString line = path;
    if (!line.isEmpty() && !line.endsWith(QLatin1Char('/')))
        line += QLatin1Char('/');
    line += command;
    const QStringList words = QProcess::splitCommand(line);
    if (words.isEmpty())
        return false;
    const pid_t child = spawn(words);
    if (child <= 0)
        return false;
    mProcessId = child;
    mRunning = true;
    return mRunning;
}

bool clsRunPgm::isActive() {
    if (!mRunning)
        return false;
    int status = 0;
    pid_t result;
    do {
        result = ::waitpid(mProcessId, &status, WNOHANG);
    } while (result < 0 && errno == EINTR);
    if (result < 0) {
        // The process is gone without our having seen its end.
        mRunning = false;
        mExitCode = 1;
        return false;
    }
    mExitCode = result == 0 ? kStillActive : exitCodeOf(status);
    if (mExitCode != kStillActive) {
        mRunning = false;
        return false;
    }
    return true;
}

bool clsRunPgm::terminate() {
    if (!mRunning)
        return true;
    if (::kill(mProcessId, SIGKILL) != 0 && errno != ESRCH)
        return true;
    int status = 0;
    pid_t result;
    do {
        result = ::waitpid(mProcessId, &status, 0);
    } while (result < 0 && errno == EINTR);
    mRunning = false;
    return false;
}

bool clsRunPgm::terminated() {
    mRunning = false;
    return true;
}

bool clsRunPgm::waitUntilEnded(int timeoutMs) {
    QDeadlineTimer deadline =
        timeoutMs < 0 ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer(timeoutMs);
    if (!isActive())
        return true;
    auto* application = QCoreApplication::instance();
    QTimer wake;
    wake.setInterval(kPollIntervalMs);
    if (application)
        wake.start();
    while (isActive()) {
        if (deadline.hasExpired())
            return false;
        if (application)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        else
            std::this_thread::sleep_for(std::chrono::milliseconds(kPollIntervalMs));
    }
    return true;
}
