#include "platform/ChildProcess.h"

#include <QDeadlineTimer>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

bool writeAll(int fd, const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t n = ::write(fd, bytes, size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        bytes += n;
        size -= std::size_t(n);
    }
    return true;
}

// Never returns: an exception escaping the work ends the child through std::terminate, so the
// child can never run on into its caller's code.
[[noreturn]] void runChild(int fd, const std::function<QByteArray()>& work) noexcept {
    // A fault ends the child quietly with its signal; the parent reports it.
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        ::signal(fault, SIG_DFL);
    const QByteArray bytes = work();
    const bool written = writeAll(fd, bytes.constData(), std::size_t(bytes.size()));
    ::_exit(written ? 0 : 1);
}

// Reads until the child closes its end. Gives the reason when it stops short.
QString readUntilEnd(int fd, QByteArray& bytes, const QDeadlineTimer& deadline,
                     qsizetype maxBytes) {
    char buffer[65536];
    while (true) {
        pollfd wait{fd, POLLIN, 0};
        const int ready = ::poll(&wait, 1, int(std::max<qint64>(deadline.remainingTime(), 0)));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready < 0)
            return QStringLiteral("waiting for the child failed (%1)")
                .arg(QString::fromLocal8Bit(std::strerror(errno)));
        if (ready == 0)
            return QStringLiteral("the child did not finish in time");
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return QStringLiteral("reading from the child failed (%1)")
                .arg(QString::fromLocal8Bit(std::strerror(errno)));
        if (n == 0)
            return {};
        if (bytes.size() + n > maxBytes)
            return QStringLiteral("the child gave more than %1 bytes").arg(maxBytes);
        bytes.append(buffer, qsizetype(n));
    }
}

QString describeEnd(int status) {
    if (WIFSIGNALED(status))
        return QStringLiteral("the child ended by signal %1").arg(WTERMSIG(status));
    if (WIFEXITED(status) && WEXITSTATUS(status) != 0)
        return QStringLiteral("the child ended with exit code %1").arg(WEXITSTATUS(status));
    return {};
}

} // namespace

ChildRun runInChild(const std::function<QByteArray()>& work, int timeoutMs, qsizetype maxBytes) {
    ChildRun run;
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC) != 0) {
        run.failure = QStringLiteral("no pipe to a child could be made");
        return run;
    }
    const pid_t child = ::fork();
    if (child < 0) {
        ::close(fds[0]);
        ::close(fds[1]);
        run.failure = QStringLiteral("no child process could be made");
        return run;
    }
    if (child == 0) {
        ::close(fds[0]);
        runChild(fds[1], work);
    }
    ::close(fds[1]);
    run.started = true;
    run.failure = readUntilEnd(fds[0], run.bytes, QDeadlineTimer(timeoutMs), maxBytes);
    ::close(fds[0]);
    if (!run.failure.isEmpty())
        ::kill(child, SIGKILL);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (run.failure.isEmpty())
        run.failure = describeEnd(status);
    run.completed = run.failure.isEmpty();
    if (!run.completed)
        run.bytes.clear();
    return run;
}
