#include "phone/modSendWindow.h"

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

QPixmap sendWindowPicture(const QSize& size, int captionHeight) {
    QPixmap picture = drawnCaptionPicture(size, captionHeight);
    QPainter painter(&picture);
    painter.setPen(QColor(0x1d, 0x2b, 0x4a));
    painter.drawRect(QRect(QPoint(0, 0), size).adjusted(0, 0, -1, -1));
    return picture;
}

void placeAtLowerRight(QWidget* window, const QWidget* owner) {
    if (!owner)
        return;
    const QRect main = owner->window()->geometry();
    window->move(main.left() + main.width() - window->width(),
                 main.top() + main.height() - window->height());
}
