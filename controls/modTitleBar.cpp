#include "controls/modTitleBar.h"

#include <QVariant>
#include <QWidget>
#include <QWindow>

QRect ShowTitleBar(QWidget* form, bool show) {
    QWidget* window = form->window();
    const QRect before = window->frameGeometry();
    const QRect client = window->geometry();
    const bool visible = window->isVisible();
    if (!show) {
        if (!window->windowTitle().isEmpty() || !window->property("tag").isValid())
            window->setProperty("tag", window->windowTitle());
        // The title stays for the task bar and the window list; without a frame it is not drawn.
        window->setWindowFlag(Qt::FramelessWindowHint, true);
    } else {
        const QString caption = window->property("tag").toString();
        window->setWindowFlag(Qt::FramelessWindowHint, false);
        if (!caption.isEmpty())
            window->setWindowTitle(caption);
    }
    // Changing the frame hides the window and may move it: put the client area back.
    window->setGeometry(client);
    if (visible)
        window->show();
    return before;
}

bool DragWindow(QWidget* window, int button) {
    if (button != 1 || !window)
        return false;
    QWindow* handle = window->window()->windowHandle();
    return handle && handle->startSystemMove();
}

QString AppVersionText() {
    return QStringLiteral("%1.%2.%3")
        .arg(TESSALY_VERSION_MAJOR)
        .arg(TESSALY_VERSION_MINOR)
        .arg(TESSALY_VERSION_PATCH);
}

QString AppProductName() {
    return QStringLiteral("Tessaly");
}

QString AppLegalText() {
    return QStringLiteral(
        "Tessaly composes multimedia messages and sends them to a phone. This program is "
        "provided as is, without warranty of any kind. Copyright \u00a9 the Tessaly authors.");
}
