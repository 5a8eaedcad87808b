#include "controls/BoxStatusSink.h"

#include "platform/modDialogs.h"

#include <QCoreApplication>

int BoxStatusSink::ask(const QString& text, int style, const QString& title) {
    return MsgBox(text, style, title);
}

void BoxStatusSink::breathe() {
    QCoreApplication::processEvents();
}
