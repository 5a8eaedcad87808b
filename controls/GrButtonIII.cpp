#include "controls/GrButtonIII.h"

#include "controls/modSkin.h"

#include <QEnterEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

namespace {

const char* const kFaceFiles[4] = {"button_normal.png", "button_hot.png", "button_pressed.png",
                                   "button_disabled.png"};

// A face drawn in code, used when the skin's face file is missing.
QPixmap drawnFace(GrButtonIII::Face face) {
    QPixmap picture(24, 24);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor top(0xfd, 0xfd, 0xfe), bottom(0xe4, 0xe8, 0xf0), line(0x9a, 0xa4, 0xb8);
    switch (face) {
    case GrButtonIII::FaceHot:
        top = QColor(0xff, 0xf4, 0xdc);
        bottom = QColor(0xfd, 0xd2, 0x84);
        line = QColor(0xe0, 0x9a, 0x2a);
        break;
    case GrButtonIII::FacePressed:
        top = QColor(0xf6, 0xb9, 0x4c);
        bottom = QColor(0xfd, 0xd6, 0x8c);
        line = QColor(0xb8, 0x78, 0x16);
        break;
    case GrButtonIII::FaceDisabled:
        top = QColor(0xf1, 0xf2, 0xf4);
        bottom = QColor(0xe9, 0xea, 0xee);
        line = QColor(0xc8, 0xcc, 0xd4);
        break;
    case GrButtonIII::FaceNormal:
        break;
    }
    QLinearGradient gradient(0, 0, 0, 24);
    gradient.setColorAt(0, top);
    gradient.setColorAt(1, bottom);
    QPainterPath path;
    path.addRoundedRect(QRectF(0.5, 0.5, 23, 23), 5, 5);
    painter.fillPath(path, gradient);
    painter.setPen(line);
    painter.drawPath(path);
    return picture;
}

// Draws `picture` into `target`, keeping a border of `border` pixels unstretched.
void drawNineSlice(QPainter& painter, const QRect& target, const QPixmap& picture, int border) {
    const int w = picture.width(), h = picture.height();
    // The middle slice keeps at least one pixel so that it can stretch.
    const int b = std::max(
        0, std::min({border, (w - 1) / 2, (h - 1) / 2, target.width() / 2, target.height() / 2}));
    const int tw = target.width(), th = target.height();
    const int xs[4] = {0, b, w - b, w};
    const int ys[4] = {0, b, h - b, h};
    const int txs[4] = {0, b, tw - b, tw};
    const int tys[4] = {0, b, th - b, th};
    for (int row = 0; row < 3; ++row)
        for (int col = 0; col < 3; ++col) {
            const QRect source(xs[col], ys[row], xs[col + 1] - xs[col], ys[row + 1] - ys[row]);
            const QRect dest(target.x() + txs[col], target.y() + tys[row], txs[col + 1] - txs[col],
                             tys[row + 1] - tys[row]);
            if (source.isEmpty() || dest.isEmpty())
                continue;
            painter.drawPixmap(dest, picture, source);
        }
}

} // namespace

GrButtonIII::GrButtonIII(QWidget* parent) : QAbstractButton(parent) {
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
}

QPixmap GrButtonIII::DefaultFace(Face face) {
    const QPixmap fromFile = resourcePicture(QString::fromLatin1(kFaceFiles[face]));
    return fromFile.isNull() ? drawnFace(face) : fromFile;
}

bool GrButtonIII::setCaptionLook(const QString& glyph) {
    const char* const files[3] = {"caption_normal.png", "caption_hot.png", "caption_pressed.png"};
    for (int face = FaceNormal; face <= FacePressed; ++face) {
        QPixmap picture = resourcePicture(QString::fromLatin1(files[face]));
        if (picture.isNull()) { // a plain see-through face
            picture = QPixmap(16, 16);
            picture.fill(face == FaceNormal ? QColor(Qt::transparent)
                                            : QColor(255, 255, 255, face == FaceHot ? 50 : 110));
        }
        mFaces[face] = picture;
    }
    mFaces[FaceDisabled] = mFaces[FaceNormal];
    setFaceBorder(4);
    setFocusPolicy(Qt::NoFocus);
    const QPixmap icon = resourcePicture(QStringLiteral("title_%1.png").arg(glyph));
    setIcon(QIcon(icon));
    setIconSize(icon.isNull() ? QSize(16, 16) : icon.size());
    update();
    return !icon.isNull();
}

void GrButtonIII::setFacePicture(Face face, const QPixmap& picture) {
    mFaces[face] = picture;
    update();
}

QPixmap GrButtonIII::facePicture(Face face) const {
    return mFaces[face].isNull() ? DefaultFace(face) : mFaces[face];
}

void GrButtonIII::setFaceBorder(int border) {
    mBorder = std::max(0, border);
    update();
}

void GrButtonIII::setPressed(bool pressed) {
    if (mPressed == pressed)
        return;
    mPressed = pressed;
    update();
}

GrButtonIII::Face GrButtonIII::CurrentFace() const {
    if (!isEnabled())
        return mPressed ? FacePressed : FaceDisabled;
    if (mPressed || isDown() || isChecked())
        return FacePressed;
    if (mHot)
        return FaceHot;
    return FaceNormal;
}

QSize GrButtonIII::sizeHint() const {
    const QFontMetrics metrics(font());
    int width = metrics.horizontalAdvance(text()) + 16;
    if (!icon().isNull())
        width += iconSize().width() + (text().isEmpty() ? 0 : 4);
    const int height = std::max(metrics.height(), icon().isNull() ? 0 : iconSize().height()) + 8;
    return {std::max(width, 22), std::max(height, 22)};
}

QSize GrButtonIII::minimumSizeHint() const {
    return {12, 12};
}

void GrButtonIII::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const Face face = CurrentFace();
    drawNineSlice(painter, rect(), facePicture(face), mBorder);

    const bool sunk = face == FacePressed;
    QRect content = rect().adjusted(3, 2, -3, -2);
    if (sunk)
        content.translate(1, 1);

    const QString caption = text();
    const QIcon::Mode mode = isEnabled() ? QIcon::Normal : QIcon::Disabled;
    if (!icon().isNull()) {
        const QSize size = iconSize().boundedTo(content.size());
        const QPixmap pixmap = icon().pixmap(size, devicePixelRatioF(), mode);
        const QSize logical = pixmap.deviceIndependentSize().toSize();
        int x = content.x() + (content.width() - logical.width()) / 2;
        if (!caption.isEmpty()) {
            const int total = logical.width() + 4 + QFontMetrics(font()).horizontalAdvance(caption);
            x = content.x() + std::max(0, (content.width() - total) / 2);
            content.setLeft(x + logical.width() + 4);
        }
        painter.drawPixmap(x, content.y() + (content.height() - logical.height()) / 2, pixmap);
        if (!caption.isEmpty())
            content.setRight(std::max(content.right(), content.left() + 1));
    }
    if (!caption.isEmpty()) {
        painter.setFont(font());
        painter.setPen(isEnabled() ? palette().color(QPalette::ButtonText)
                                   : palette().color(QPalette::Disabled, QPalette::ButtonText));
        const int flags = (icon().isNull() ? Qt::AlignHCenter : Qt::AlignLeft) | Qt::AlignVCenter |
                          Qt::TextShowMnemonic;
        painter.drawText(content, flags, caption);
    }
    if (hasFocus() && focusPolicy() != Qt::NoFocus && !caption.isEmpty()) {
        QPen pen(palette().color(QPalette::Highlight));
        pen.setStyle(Qt::DotLine);
        painter.setPen(pen);
        painter.drawRect(rect().adjusted(3, 3, -4, -4));
    }
}

void GrButtonIII::enterEvent(QEnterEvent* event) {
    mHot = true;
    update();
    QAbstractButton::enterEvent(event);
}

void GrButtonIII::leaveEvent(QEvent* event) {
    mHot = false;
    update();
    QAbstractButton::leaveEvent(event);
}
