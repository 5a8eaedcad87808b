#pragma once

#include <QApplication>

// The application object. A failure that no handler trapped ends here: the same box as
// start-up's, then the process ends. No failure crosses the event loop.
class TessalyApplication : public QApplication {
public:
    TessalyApplication(int& argc, char** argv);
    bool notify(QObject* receiver, QEvent* event) override;
};
