// iconart: draws Tessaly's desktop icon, the logo of the skin's caption bar, at the sizes the
// desktop entry uses. Run dist/art/make_icons.sh; it builds this program in a scratch folder and
// writes dist/icons/tessaly-48.png and dist/icons/tessaly-256.png.
#include <QColor>
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <cstdio>

namespace {

const QColor kNavy(0x2e, 0x46, 0x77);
const QColor kAmberLight(0xff, 0xd3, 0x7a);
const QColor kAmberDeep(0xe8, 0x9a, 0x22);

QPainterPath rounded(const QRectF& r, qreal radius) {
    QPainterPath path;
    path.addRoundedRect(r, radius, radius);
    return path;
}

// A rounded amber square holding two stacked slides, the front one with a small landscape;
// drawn on a 22-unit grid so that it matches the caption bar's logo.
QImage icon(int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal margin = size / 24.0;
    const QRectF r(margin, margin, size - 2 * margin, size - 2 * margin);
    const qreal u = r.width() / 22.0;

    QLinearGradient face(r.topLeft(), r.bottomRight());
    face.setColorAt(0, kAmberLight);
    face.setColorAt(1, kAmberDeep);
    p.fillPath(rounded(r, r.width() * 0.24), face);

    const QRectF back(r.left() + 7 * u, r.top() + 4 * u, 11 * u, 9 * u);
    const QRectF front(r.left() + 4 * u, r.top() + 8 * u, 12 * u, 10 * u);
    p.fillPath(rounded(back, 1.6 * u), QColor(255, 255, 255, 150));
    p.fillPath(rounded(front, 1.8 * u), Qt::white);

    QPainterPath hill;
    hill.moveTo(front.left() + 1.5 * u, front.bottom() - 1.5 * u);
    hill.lineTo(front.left() + 5 * u, front.top() + 4 * u);
    hill.lineTo(front.left() + 7.5 * u, front.top() + 6.5 * u);
    hill.lineTo(front.left() + 9 * u, front.top() + 5 * u);
    hill.lineTo(front.right() - 1.5 * u, front.bottom() - 1.5 * u);
    hill.closeSubpath();
    p.fillPath(hill, kNavy);
    p.setPen(Qt::NoPen);
    p.setBrush(kAmberDeep);
    p.drawEllipse(QPointF(front.right() - 3 * u, front.top() + 2.8 * u), 1.3 * u, 1.3 * u);
    return image;
}

} // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: iconart <output folder>\n");
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    int failures = 0;
    for (int size : {48, 256}) {
        const QString path = QStringLiteral("%1/tessaly-%2.png").arg(folder).arg(size);
        if (!icon(size).save(path, "PNG")) {
            std::fprintf(stderr, "iconart: cannot write %s\n", qPrintable(path));
            ++failures;
            continue;
        }
        std::printf("wrote %s\n", qPrintable(path));
    }
    return failures == 0 ? 0 : 1;
}
