#include "app/TerminationSignals.h"

#include <QMetaMethod>
#include <QSocketNotifier>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

int gPipe[2] = {-1, -1};
TerminationSignals* gInstance = nullptr;
struct sigaction gPrevious[2];
constexpr int kSignals[2] = {SIGTERM, SIGHUP};

// Runs in the signal's context: only async-signal-safe calls.
extern "C" void onTerminationSignal(int number) {
    const int saved = errno;
    const unsigned char byte = static_cast<unsigned char>(number);
    [[maybe_unused]] const ssize_t written = ::write(gPipe[1], &byte, 1);
    errno = saved;
}

bool makePipe() {
    if (::pipe(gPipe) != 0)
        return false;
    for (int fd : gPipe) {
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    }
    return true;
}

} // namespace

TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent) {
    if (gInstance || !makePipe())
        return; // the program then ends by the signals' default action, as before
    gInstance = this;
    mNotifier = new QSocketNotifier(gPipe[0], QSocketNotifier::Read, this);
    connect(mNotifier, &QSocketNotifier::activated, this, &TerminationSignals::readPipe);
    struct sigaction action = {};
    action.sa_handler = onTerminationSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int i = 0; i < 2; ++i)
        ::sigaction(kSignals[i], &action, &gPrevious[i]);
}

TerminationSignals::~TerminationSignals() {
    if (gInstance != this)
        return;
    for (int i = 0; i < 2; ++i)
        ::sigaction(kSignals[i], &gPrevious[i], nullptr);
    delete mNotifier;
    for (int& fd : gPipe) {
        ::close(fd);
        fd = -1;
    }
    gInstance = nullptr;
}

TerminationSignals* TerminationSignals::instance() {
    return gInstance;
}

void TerminationSignals::readPipe() {
    unsigned char byte = 0;
    while (::read(gPipe[0], &byte, 1) == 1) {
        // Before the main window listens (or after it has gone) the signal does what it always
        // did: it ends the process.
        if (!isSignalConnected(
                QMetaMethod::fromSignal(&TerminationSignals::terminationRequested))) {
            ::signal(byte, SIG_DFL);
            ::raise(byte);
        }
        emit terminationRequested(byte);
    }
}
