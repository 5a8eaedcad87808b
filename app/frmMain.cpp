#include "app/frmMain.h"

#include "app/modMain.h"
#include "platform/modShared.h"

#include <QCloseEvent>

frmMain::frmMain(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(kAppTitle);
    setAttribute(Qt::WA_DeleteOnClose);
    resize(644, 488);
}

void frmMain::closeEvent(QCloseEvent* event) {
    releaseSharedObjects();
    gMainWindow = nullptr;
    event->accept();
}
