#include "phone/modSendWindow.h"

#include "controls/GrButtonIII.h"
#include "controls/ctlProgressBar.h"
#include "controls/modSkin.h"

#include <QPainter>
#include <QWidget>

QString sendResultKey(std::int32_t result) {
    switch (result) {
    case 0:
        return QStringLiteral("STR_READY");
    case 1:
        return QStringLiteral("STR_NO_DEVICE");
    case 2:
        return QStringLiteral("STR_DOWNLOAD_BUSY");
    case 3:
        return QStringLiteral("STR_NO_DEVICE_CONNECTED");
    case 4:
        return QStringLiteral("STR_DOWNLOAD_FAILED");
    default:
        return QString();
    }
}

void dressSendWindow(QWidget* window, GrButtonIII* close, ctlProgressBar* progress) {
    constexpr int kCaptionHeight = 32;
    window->setFixedSize(window->size());
    QPixmap picture = drawnCaptionPicture(window->size(), kCaptionHeight);
    QPainter painter(&picture);
    painter.setPen(QColor(0x1d, 0x2b, 0x4a));
    painter.drawRect(QRect(QPoint(0, 0), window->size()).adjusted(0, 0, -1, -1));
    painter.end();
    setFormPicture(window, picture);
    close->setCaptionLook(QStringLiteral("close"));
    progress->Start(false);
}

void placeAtLowerRight(QWidget* window, const QWidget* owner) {
    if (!owner)
        return;
    const QRect main = owner->window()->geometry();
    window->move(main.left() + main.width() - window->width(),
                 main.top() + main.height() - window->height());
}
