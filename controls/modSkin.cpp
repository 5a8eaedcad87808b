#include "controls/modSkin.h"

#include "platform/AppPaths.h"

#include <QFileInfo>
#include <QLinearGradient>
#include <QPainter>
#include <QVariant>
#include <QWidget>

void setFormPicture(QWidget* form, const QPixmap& picture) {
    form->setProperty("picture", QVariant::fromValue(picture));
    form->update();
}

QPixmap formPicture(const QWidget* form) {
    const QVariant value = form->property("picture");
    return value.canConvert<QPixmap>() ? value.value<QPixmap>() : QPixmap();
}

QColor formBackColor(const QWidget* form) {
    return form->palette().color(QPalette::Window);
}

QPixmap backgroundPiece(const QWidget* form, const QWidget* control) {
    const QSize size = control->size().expandedTo(QSize(1, 1));
    QPixmap piece(size);
    piece.fill(formBackColor(form));
    const QPixmap picture = formPicture(form);
    if (picture.isNull())
        return piece;
    const QPoint origin =
        control == form ? QPoint(0, 0) : control->mapTo(const_cast<QWidget*>(form), QPoint(0, 0));
    QPainter painter(&piece);
    painter.drawPixmap(QPoint(0, 0), picture, QRect(origin, size));
    return piece;
}

QPixmap drawnCaptionPicture(const QSize& size, int captionHeight) {
    QPixmap picture(size);
    picture.fill(QColor(0xef, 0xf2, 0xf8));
    QPainter painter(&picture);
    QLinearGradient band(0, 0, size.width(), 0);
    band.setColorAt(0, QColor(0x1d, 0x2b, 0x4a));
    band.setColorAt(1, QColor(0x30, 0x4a, 0x7c));
    painter.fillRect(QRect(0, 0, size.width(), captionHeight), band);
    return picture;
}

QPixmap resourcePicture(const QString& fileName) {
    const QString path = resolveDataPath(QStringLiteral("\\resources"), true) + fileName;
    if (!QFileInfo::exists(path))
        return {};
    QPixmap picture;
    if (!picture.load(path))
        return {};
    return picture;
}

QList<QPixmap> resourceStrip(const QString& fileName, int count) {
    const QPixmap strip = resourcePicture(fileName);
    if (strip.isNull() || count <= 0 || strip.width() % count != 0)
        return {};
    const int width = strip.width() / count;
    QList<QPixmap> frames;
    for (int i = 0; i < count; ++i)
        frames << strip.copy(i * width, 0, width, strip.height());
    return frames;
}
