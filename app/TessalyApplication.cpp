#include "app/TessalyApplication.h"

#include "app/TerminationSignals.h"
#include "app/modMain.h"
#include "platform/Failure.h"
#include "platform/modShared.h"

#include <cstdlib>

TessalyApplication::TessalyApplication(int& argc, char** argv) : QApplication(argc, argv) {
    setApplicationName(QStringLiteral("tessaly"));
    setApplicationDisplayName(kAppTitle);
    setOrganizationName(QStringLiteral("Tessaly"));
    setQuitOnLastWindowClosed(true);
    // The end of the session or a shutdown reaches the main window, which ends as Exit does.
    new TerminationSignals(this);
}

bool TessalyApplication::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const Failure& failure) {
        // During start-up the box names the start-up step, as Main's own handler does.
        reportFailure(failure, gStarting ? currentStep() : failure.source());
    } catch (const std::exception& e) {
        reportFailure(Failure(FailureNumber::InvalidProcedureCall, QStringLiteral("Tessaly"),
                              QString::fromLocal8Bit(e.what())),
                      QStringLiteral("Tessaly"));
    }
    std::_Exit(EXIT_FAILURE);
}
