#include "controls/modGlyphs.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace {

QPixmap draw(const QString& name, const QColor& colour, qreal ratio) {
    constexpr int size = 16;
    QPixmap pixmap(QSize(size, size) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    QPen pen(colour, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    p.setPen(pen);
    if (name == QLatin1String("add")) {
        p.drawRoundedRect(QRectF(2.5, 1.5, 10, 13), 1.5, 1.5);
        p.drawLine(QPointF(7.5, 5), QPointF(7.5, 11));
        p.drawLine(QPointF(4.5, 8), QPointF(10.5, 8));
    } else if (name == QLatin1String("duplicate")) {
        p.drawRoundedRect(QRectF(1.5, 1.5, 8.5, 10.5), 1.5, 1.5);
        p.setBrush(Qt::white);
        p.drawRoundedRect(QRectF(5.5, 4.5, 8.5, 10.5), 1.5, 1.5);
    } else if (name == QLatin1String("delete")) {
        p.drawLine(QPointF(2, 4), QPointF(14, 4));
        p.drawLine(QPointF(6, 4), QPointF(6.5, 2));
        p.drawLine(QPointF(6.5, 2), QPointF(9.5, 2));
        p.drawLine(QPointF(9.5, 2), QPointF(10, 4));
        QPainterPath can;
        can.moveTo(3.5, 4);
        can.lineTo(4.5, 14.5);
        can.lineTo(11.5, 14.5);
        can.lineTo(12.5, 4);
        p.drawPath(can);
        p.drawLine(QPointF(6.5, 7), QPointF(6.8, 12));
        p.drawLine(QPointF(9.5, 7), QPointF(9.2, 12));
    } else if (name == QLatin1String("play")) {
        QPainterPath triangle;
        triangle.moveTo(4.5, 2.5);
        triangle.lineTo(13, 8);
        triangle.lineTo(4.5, 13.5);
        triangle.closeSubpath();
        p.setBrush(colour);
        p.drawPath(triangle);
    } else if (name == QLatin1String("stop")) {
        p.setBrush(colour);
        p.drawRoundedRect(QRectF(3.5, 3.5, 9, 9), 1, 1);
    } else if (name == QLatin1String("remove")) {
        p.drawLine(QPointF(4, 4), QPointF(12, 12));
        p.drawLine(QPointF(12, 4), QPointF(4, 12));
    } else {
        return {};
    }
    return pixmap;
}

} // namespace

QIcon toolGlyph(const QString& name, const QColor& colour) {
    const QPixmap normal = draw(name, colour, 2.0);
    if (normal.isNull())
        return {};
    QIcon icon(normal);
    QColor faded = colour;
    faded.setAlpha(90);
    icon.addPixmap(draw(name, faded, 2.0), QIcon::Disabled);
    return icon;
}
