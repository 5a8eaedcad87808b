#pragma once

#include <QObject>

class QSocketNotifier;

// Turns SIGTERM and SIGHUP (the session ending, the system shutting down) into a Qt signal on
// the main thread. The handlers only write the signal's number to a pipe; a socket notifier
// reads it in the event loop. With nobody connected the signal ends the process as it would
// without this class. One instance at a time; it puts the previous handlers back when it goes.
class TerminationSignals : public QObject {
    Q_OBJECT
public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

    // The living instance, or null.
    static TerminationSignals* instance();

signals:
    // The system asks the program to end; `signalNumber` is SIGTERM or SIGHUP.
    void terminationRequested(int signalNumber);

private:
    void readPipe();

    QSocketNotifier* mNotifier = nullptr;
};
