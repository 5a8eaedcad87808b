// skinart: draws Tessaly's default skin and the program's resource pictures.
//
// Run scripts/art/make_art.sh; it builds this program in a scratch folder and writes into data/:
//
//   skin/default/main.bmp     886 x 488  main window background (24-bit BMP). The window shows
//                                        the left 644 pixels when the player is in its own
//                                        window, all 886 when the player is docked.
//   skin/default/preview.bmp  256 x 488  player window background (24-bit BMP)
//   resources/button_{normal,hot,pressed,disabled}.png   24 x 24 faces of GrButtonIII,
//                                        stretched around a 6 pixel border
//   resources/caption_{normal,hot,pressed}.png          faces for buttons on the dark caption
//   resources/title_{close,minimize,dock,undock}.png    16 x 16 caption button glyphs
//   resources/tab.png         34 x 42    raised face of the selected tool tab
//   resources/tab_icons.png   5 x 24x24  tool icons: background, text, sound, symbols, recorder
//   resources/lamp.png        7 x 16x16  phone lamp: dark, then dim/bright green, blue, amber
//   resources/progress.png    36 x 144x12  frames of the moving progress strip
//   resources/splash.png      440 x 280  start-up greeting
//   resources/about.png       440 x 300  about window
//
// Colours: a navy caption (#22335a to #2e4677) with a thin amber line, a cool light body
// (#e4e9f2 to #d5dce9), tool pages in #eff2f8 (0xF8F2EF in the program's blue-green-red order)
// with the amber accent #fdbe51 (0x51BEFD), panel borders #b8c2d6, text #2a3348.
//
// Geometry of the main window (pixels, from its top left corner) that the skin is drawn for:
//
//   caption bar            0,0 - 886,36   logo mark at 12,7 (22x22) and the word "Tessaly"
//                                        at 42; drag surface
//   ctlMainMenu1           388,8  208x20  (undocked; docked 606,8)
//   cmdMinimize, cmdClose  604,10 / 622,10, 16x16 (undocked); docked: cmdUndock 822,10,
//                                        cmdMinimize 840,10, cmdClose 858,10
//   ctlVerticalTab1        8,74   34x228  five tabs of 44 pixels, first at y 78
//   picWork                42,44  596x286 tool-page panel; its pages at 30,30 inside
//                                        (absolute 72,74, 360x252)
//   ctlPictureEditor1      452,74 160x120 slide canvas inside picWork, framed
//   txtMessage             452,204 160x72 slide text
//   slide details          452,284 160x40 sound, duration (ctlUpDown1), play/delete sound
//   ctlSlideThumbs1        12,340 452x112 slide strip
//   picPreview             474,338 160x120 rendered slide, dark bezel around it
//   status bar             0,462 - 644,488 lamp ctlBlink1 12,467 (16x16), lblPhoneConnected
//                                        32,467, slide number, total time, slide buttons
//                                        cmdAddNewSlide/cmdDuplicateSlide/cmdDeleteSlide
//                                        356/394/432,464 (34x22), cmdPreview 474,464 and
//                                        cmdDownload 556,464 (78x22)
//   picDockedPreview       662,52 206x320 docked player area, phone body around it
//
// Player window (preview.bmp): caption 0..36, player area picPreviewPlayer at 25,52 206x320
// with the slide image at 21,67 164x124 inside it (PreviewSize), play controls below at y 392.
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <cmath>
#include <cstdio>

namespace {

const QColor kNavyA(0x22, 0x33, 0x5a);
const QColor kNavyB(0x2e, 0x46, 0x77);
const QColor kNavyDeep(0x16, 0x22, 0x3e);
const QColor kAmber(0xfd, 0xbe, 0x51);
const QColor kAmberDeep(0xe8, 0x9a, 0x22);
const QColor kPage(0xef, 0xf2, 0xf8);
const QColor kBodyTop(0xe4, 0xe9, 0xf2);
const QColor kBodyBottom(0xd5, 0xdc, 0xe9);
const QColor kBorder(0xb8, 0xc2, 0xd6);
const QColor kInk(0x2a, 0x33, 0x48);
const QColor kFrame(0x1b, 0x26, 0x40);

QString gOut;
int gFailures = 0;

void save(const QImage& image, const QString& relative, bool bmp24 = false) {
    const QString path = gOut + QLatin1Char('/') + relative;
    QDir().mkpath(QFileInfo(path).absolutePath());
    const QImage out = bmp24 ? image.convertToFormat(QImage::Format_RGB888) : image;
    if (!out.save(path)) {
        std::fprintf(stderr, "skinart: cannot write %s\n", qPrintable(path));
        ++gFailures;
        return;
    }
    std::printf("wrote %s (%dx%d)\n", qPrintable(relative), image.width(), image.height());
}

QImage canvas(int w, int h, bool transparent = true) {
    QImage image(w, h, QImage::Format_ARGB32_Premultiplied);
    image.fill(transparent ? Qt::transparent : Qt::white);
    return image;
}

QFont font(int pixels, bool bold = false) {
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPixelSize(pixels);
    f.setBold(bold);
    f.setHintingPreference(QFont::PreferNoHinting);
    return f;
}

QPainterPath rounded(const QRectF& r, qreal radius) {
    QPainterPath path;
    path.addRoundedRect(r, radius, radius);
    return path;
}

// A soft drop shadow: a few widening translucent outlines below and right of `r`.
void shadow(QPainter& p, const QRectF& r, qreal radius, int depth = 4) {
    for (int i = depth; i >= 1; --i) {
        QColor c(0x10, 0x1a, 0x30, 14);
        p.fillPath(rounded(r.translated(0, i * 0.7).adjusted(-i * 0.6, -i * 0.3, i * 0.6, i * 0.6),
                           radius + i * 0.6),
                   c);
    }
}

// A raised panel: shadow, vertical gradient, hairline border and a light inner top edge.
void panel(QPainter& p, const QRectF& r, qreal radius, const QColor& top, const QColor& bottom,
           const QColor& border = kBorder) {
    shadow(p, r, radius);
    p.setBrush(Qt::NoBrush);
    QLinearGradient g(r.topLeft(), r.bottomLeft());
    g.setColorAt(0, top);
    g.setColorAt(1, bottom);
    const QPainterPath path = rounded(r.adjusted(0.5, 0.5, -0.5, -0.5), radius);
    p.fillPath(path, g);
    p.setPen(QPen(QColor(255, 255, 255, 150), 1));
    p.drawPath(rounded(r.adjusted(1.5, 1.5, -1.5, -1.5), radius - 1));
    p.setPen(QPen(border, 1));
    p.drawPath(path);
}

// A sunken well for a content area (canvas, strip, text): inner shadow at the top.
void well(QPainter& p, const QRectF& r, qreal radius, const QColor& fill, const QColor& border) {
    p.setBrush(Qt::NoBrush);
    const QPainterPath path = rounded(r.adjusted(0.5, 0.5, -0.5, -0.5), radius);
    p.fillPath(path, fill);
    p.save();
    p.setClipPath(path);
    QLinearGradient inner(r.topLeft(), r.topLeft() + QPointF(0, 6));
    inner.setColorAt(0, QColor(0x10, 0x1a, 0x30, 40));
    inner.setColorAt(1, QColor(0x10, 0x1a, 0x30, 0));
    p.fillRect(QRectF(r.left(), r.top(), r.width(), 6), inner);
    p.restore();
    p.setPen(QPen(border, 1));
    p.drawPath(path);
    p.setPen(QPen(QColor(255, 255, 255, 170), 1));
    p.drawLine(QPointF(r.left() + radius, r.bottom() + 0.5),
               QPointF(r.right() - radius, r.bottom() + 0.5));
}

// The logo: a rounded amber square holding two stacked slides.
void logo(QPainter& p, const QRectF& r) {
    p.save();
    QLinearGradient g(r.topLeft(), r.bottomRight());
    g.setColorAt(0, QColor(0xff, 0xd3, 0x7a));
    g.setColorAt(1, kAmberDeep);
    p.fillPath(rounded(r, r.width() * 0.24), g);
    const qreal u = r.width() / 22.0;
    const QRectF back(r.left() + 7 * u, r.top() + 4 * u, 11 * u, 9 * u);
    const QRectF front(r.left() + 4 * u, r.top() + 8 * u, 12 * u, 10 * u);
    p.fillPath(rounded(back, 1.6 * u), QColor(255, 255, 255, 150));
    p.fillPath(rounded(front, 1.8 * u), Qt::white);
    // a small landscape on the front slide
    QPainterPath hill;
    hill.moveTo(front.left() + 1.5 * u, front.bottom() - 1.5 * u);
    hill.lineTo(front.left() + 5 * u, front.top() + 4 * u);
    hill.lineTo(front.left() + 7.5 * u, front.top() + 6.5 * u);
    hill.lineTo(front.left() + 9 * u, front.top() + 5 * u);
    hill.lineTo(front.right() - 1.5 * u, front.bottom() - 1.5 * u);
    hill.closeSubpath();
    p.fillPath(hill, kNavyB);
    p.setBrush(kAmberDeep);
    p.setPen(Qt::NoPen);
    p.drawEllipse(QPointF(front.right() - 3 * u, front.top() + 2.8 * u), 1.3 * u, 1.3 * u);
    p.restore();
}

void captionBar(QPainter& p, int width) {
    QLinearGradient g(0, 0, 0, 36);
    g.setColorAt(0, kNavyB);
    g.setColorAt(1, kNavyA);
    p.fillRect(QRect(0, 0, width, 36), g);
    // a faint gloss on the top half
    QLinearGradient gloss(0, 0, 0, 18);
    gloss.setColorAt(0, QColor(255, 255, 255, 28));
    gloss.setColorAt(1, QColor(255, 255, 255, 0));
    p.fillRect(QRect(0, 0, width, 18), gloss);
    // the amber line under the caption, fading out to the right
    QLinearGradient line(0, 0, width, 0);
    line.setColorAt(0, kAmber);
    line.setColorAt(0.6, QColor(0xfd, 0xbe, 0x51, 200));
    line.setColorAt(1, QColor(0xfd, 0xbe, 0x51, 60));
    p.fillRect(QRect(0, 36, width, 2), line);
}

void wordmark(QPainter& p, int x, int baseline, int size) {
    p.setFont(font(size, true));
    p.setPen(QColor(0, 0, 0, 90));
    p.drawText(x + 1, baseline + 1, QStringLiteral("Tessaly"));
    p.setPen(Qt::white);
    p.drawText(x, baseline, QStringLiteral("Tessaly"));
}

// The phone body that frames the player area (206 x 320 at `screen`).
void phoneBody(QPainter& p, const QRect& screen) {
    const QRectF body = QRectF(screen).adjusted(-12, -10, 12, 80);
    shadow(p, body, 26, 6);
    p.setBrush(Qt::NoBrush);
    QLinearGradient g(body.topLeft(), body.topRight());
    g.setColorAt(0, QColor(0x3a, 0x44, 0x5c));
    g.setColorAt(0.5, QColor(0x4b, 0x57, 0x72));
    g.setColorAt(1, QColor(0x33, 0x3c, 0x52));
    p.fillPath(rounded(body, 26), g);
    p.setPen(QPen(QColor(0x1b, 0x22, 0x33), 1.2));
    p.drawPath(rounded(body, 26));
    p.setPen(QPen(QColor(255, 255, 255, 60), 1));
    p.drawPath(rounded(body.adjusted(2, 2, -2, -2), 24));
    // the screen opening, where the player area lies
    p.fillPath(rounded(QRectF(screen).adjusted(-3, -3, 3, 3), 6), QColor(0x12, 0x17, 0x24));
    p.fillRect(screen, QColor(0x1e, 0x26, 0x38));
    // earpiece and keypad hint below the screen
    p.fillPath(rounded(QRectF(screen.center().x() - 18, body.top() + 3, 36, 4), 2),
               QColor(0x1b, 0x22, 0x33));
    const qreal keysTop = screen.bottom() + 18;
    const QRectF pad(screen.center().x() - 34, keysTop, 68, 44);
    p.fillPath(rounded(pad, 22), QColor(0x2c, 0x34, 0x48));
    p.setPen(QPen(QColor(255, 255, 255, 40), 1));
    p.drawPath(rounded(pad, 22));
    p.fillPath(rounded(QRectF(pad.center().x() - 12, pad.center().y() - 12, 24, 24), 12),
               QColor(0x3e, 0x48, 0x60));
}

QImage mainSkin() {
    const int W = 886, H = 488;
    QImage image = canvas(W, H, false);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);

    QLinearGradient body(0, 36, 0, H);
    body.setColorAt(0, kBodyTop);
    body.setColorAt(1, kBodyBottom);
    p.fillRect(QRect(0, 36, W, H - 36), body);
    captionBar(p, W);
    logo(p, QRectF(12, 7, 22, 22));
    // The caption text is the window's own label (lblCaption), drawn by the program.

    // Tool tabs: the resting tabs stand out of the panel's left edge.
    for (int i = 0; i < 5; ++i) {
        const QRectF tab(10.5, 78 + i * 44 + 1.5, 40, 40);
        QLinearGradient g(tab.topLeft(), tab.topRight());
        g.setColorAt(0, QColor(0xd2, 0xd9, 0xe6));
        g.setColorAt(1, QColor(0xe0, 0xe6, 0xf0));
        p.fillPath(rounded(tab, 7), g);
        p.setPen(QPen(kBorder, 1));
        p.drawPath(rounded(tab, 7));
    }

    // picWork: the tool-page panel with the canvas, text and details on its right.
    panel(p, QRectF(42, 44, 596, 286), 10, QColor(0xf6, 0xf8, 0xfc), kPage);
    // the header band above the pages
    p.save();
    p.setClipPath(rounded(QRectF(42.5, 44.5, 595, 285), 10));
    QLinearGradient band(0, 44, 0, 72);
    band.setColorAt(0, QColor(0xe3, 0xe8, 0xf2));
    band.setColorAt(1, QColor(0xea, 0xee, 0xf6));
    p.fillRect(QRectF(42, 44, 596, 28), band);
    p.fillRect(QRectF(42, 71, 596, 1), QColor(0xd0, 0xd7, 0xe4));
    p.restore();
    // the tool pages' place
    p.setPen(QPen(QColor(0xd6, 0xdc, 0xe8), 1, Qt::DashLine));
    p.drawPath(rounded(QRectF(71.5, 73.5, 361, 253), 6));
    // the slide canvas: a dark mat with a fine light frame
    shadow(p, QRectF(446, 68, 172, 132), 6, 3);
    p.fillPath(rounded(QRectF(446, 68, 172, 132), 6), QColor(0x2e, 0x38, 0x50));
    p.fillRect(QRect(451, 73, 162, 122), QColor(0x44, 0x50, 0x6a));
    p.fillRect(QRect(452, 74, 160, 120), Qt::white);
    // the text field and the details strip
    well(p, QRectF(451, 203, 162, 74), 4, Qt::white, kBorder);
    well(p, QRectF(451, 283, 162, 42), 4, QColor(0xf7, 0xf9, 0xfc), kBorder);

    // The slide strip.
    panel(p, QRectF(8, 336, 460, 120), 10, QColor(0xfb, 0xfc, 0xfe), QColor(0xf1, 0xf4, 0xf9));
    well(p, QRectF(12, 340, 452, 112), 6, QColor(0xf4, 0xf6, 0xfa), QColor(0xcc, 0xd3, 0xe1));

    // The rendered slide: a phone-screen bezel.
    shadow(p, QRectF(470, 334, 168, 128), 9);
    QLinearGradient bezel(470, 334, 470, 462);
    bezel.setColorAt(0, QColor(0x3a, 0x44, 0x5c));
    bezel.setColorAt(1, QColor(0x22, 0x29, 0x3b));
    p.fillPath(rounded(QRectF(470, 334, 168, 128), 9), bezel);
    p.fillRect(QRect(474, 338, 160, 120), QColor(0x12, 0x17, 0x24));

    // The status bar.
    QLinearGradient status(0, 462, 0, H);
    status.setColorAt(0, QColor(0xcc, 0xd4, 0xe3));
    status.setColorAt(1, QColor(0xc2, 0xcb, 0xdc));
    p.fillRect(QRect(0, 462, 644, H - 462), status);
    p.fillRect(QRect(0, 462, 644, 1), QColor(0xb0, 0xba, 0xce));
    p.fillRect(QRect(0, 463, 644, 1), QColor(255, 255, 255, 140));
    // a socket for the lamp
    p.setBrush(QColor(0xb4, 0xbe, 0xd2));
    p.setPen(Qt::NoPen);
    p.drawEllipse(QRectF(10, 465, 20, 20));
    p.setBrush(Qt::NoBrush);
    // dividers between the groups
    for (int x : {130, 224, 350}) {
        p.fillRect(QRect(x, 466, 1, 18), QColor(0xa8, 0xb2, 0xc6));
        p.fillRect(QRect(x + 1, 466, 1, 18), QColor(255, 255, 255, 130));
    }

    // The docked player column.
    QLinearGradient dock(644, 36, 886, 36);
    dock.setColorAt(0, QColor(0xd0, 0xd7, 0xe5));
    dock.setColorAt(1, QColor(0xdc, 0xe2, 0xee));
    p.fillRect(QRect(644, 38, W - 644, H - 38), dock);
    phoneBody(p, QRect(662, 52, 206, 320));

    // The window's border; at 643 it is the right edge of the window without the docked player
    // and a divider with it.
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setBrush(Qt::NoBrush);
    p.setPen(kFrame);
    p.drawRect(0, 0, W - 1, H - 1);
    p.drawLine(643, 38, 643, H - 1);
    p.setPen(QColor(255, 255, 255, 90));
    p.drawLine(644, 38, 644, H - 2);
    p.drawLine(1, 38, 1, H - 2);
    return image;
}

QImage previewSkin() {
    const int W = 256, H = 488;
    QImage image = canvas(W, H, false);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient body(0, 36, W, H);
    body.setColorAt(0, QColor(0xd6, 0xdd, 0xea));
    body.setColorAt(1, QColor(0xc8, 0xd0, 0xe0));
    p.fillRect(QRect(0, 36, W, H - 36), body);
    captionBar(p, W);
    logo(p, QRectF(10, 8, 20, 20));
    phoneBody(p, QRect(25, 52, 206, 320));
    // the time display and the play controls' shelf
    panel(p, QRectF(24, 456, 208, 24), 8, QColor(0xf6, 0xf8, 0xfc), kPage);
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setBrush(Qt::NoBrush);
    p.setPen(kFrame);
    p.drawRect(0, 0, W - 1, H - 1);
    return image;
}

QImage buttonFace(int state) {
    // 0 normal, 1 hot, 2 pressed, 3 disabled
    QImage image = canvas(24, 24);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QColor top, bottom, line;
    switch (state) {
    case 1:
        top = QColor(0xff, 0xf6, 0xe2);
        bottom = QColor(0xfe, 0xd8, 0x90);
        line = QColor(0xe0, 0x9a, 0x2a);
        break;
    case 2:
        top = QColor(0xf2, 0xb0, 0x44);
        bottom = QColor(0xfd, 0xd0, 0x80);
        line = QColor(0xb0, 0x72, 0x14);
        break;
    case 3:
        top = QColor(0xf1, 0xf3, 0xf6);
        bottom = QColor(0xe8, 0xeb, 0xf0);
        line = QColor(0xcc, 0xd1, 0xda);
        break;
    default:
        top = QColor(0xff, 0xff, 0xff);
        bottom = QColor(0xe2, 0xe7, 0xf0);
        line = QColor(0x98, 0xa3, 0xb9);
        break;
    }
    const QRectF r(0.5, 0.5, 23, 23);
    QLinearGradient g(0, 0, 0, 24);
    g.setColorAt(0, top);
    g.setColorAt(1, bottom);
    p.fillPath(rounded(r, 5), g);
    if (state != 2 && state != 3) {
        p.setPen(QPen(QColor(255, 255, 255, 200), 1));
        p.drawLine(QPointF(5, 1.5), QPointF(19, 1.5));
    } else if (state == 2) {
        QLinearGradient inner(0, 0, 0, 5);
        inner.setColorAt(0, QColor(0x60, 0x38, 0x00, 70));
        inner.setColorAt(1, QColor(0x60, 0x38, 0x00, 0));
        p.save();
        p.setClipPath(rounded(r, 5));
        p.fillRect(QRectF(0, 0, 24, 5), inner);
        p.restore();
    }
    p.setPen(QPen(line, 1));
    p.drawPath(rounded(r, 5));
    return image;
}

QImage captionFace(int state) {
    QImage image = canvas(16, 16);
    if (state == 0)
        return image;
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.fillPath(rounded(QRectF(0.5, 0.5, 15, 15), 4),
               state == 1 ? QColor(255, 255, 255, 50) : QColor(0xfd, 0xbe, 0x51, 150));
    return image;
}

QImage titleGlyph(const QString& kind) {
    QImage image = canvas(16, 16);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QPen pen(Qt::white, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    p.setPen(pen);
    if (kind == QLatin1String("close")) {
        p.drawLine(QPointF(4.5, 4.5), QPointF(11.5, 11.5));
        p.drawLine(QPointF(11.5, 4.5), QPointF(4.5, 11.5));
    } else if (kind == QLatin1String("minimize")) {
        p.drawLine(QPointF(4, 11), QPointF(12, 11));
    } else {
        // dock: the player slides into the window (arrow pointing left into a frame);
        // undock: out of it (arrow pointing right out of the frame)
        pen.setWidthF(1.4);
        p.setPen(pen);
        p.drawRoundedRect(QRectF(2.5, 3.5, 11, 9), 1.5, 1.5);
        const bool in = kind == QLatin1String("dock");
        pen.setWidthF(1.6);
        p.setPen(pen);
        const qreal y = 8;
        if (in) {
            p.drawLine(QPointF(11, y), QPointF(5.5, y));
            p.drawLine(QPointF(5.5, y), QPointF(7.8, y - 2.3));
            p.drawLine(QPointF(5.5, y), QPointF(7.8, y + 2.3));
        } else {
            p.drawLine(QPointF(5, y), QPointF(10.5, y));
            p.drawLine(QPointF(10.5, y), QPointF(8.2, y - 2.3));
            p.drawLine(QPointF(10.5, y), QPointF(8.2, y + 2.3));
        }
    }
    return image;
}

QImage tabFace() {
    QImage image = canvas(34, 42);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    // The raised tab runs into the page on its right, so its right side is open.
    const QRectF r(0.5, 0.5, 44, 41);
    QLinearGradient g(0, 0, 34, 0);
    g.setColorAt(0, QColor(0xfb, 0xfc, 0xfe));
    g.setColorAt(1, kPage);
    p.fillPath(rounded(r, 8), g);
    p.setPen(QPen(kBorder, 1));
    p.drawPath(rounded(r, 8));
    // the amber marker of the selected tab
    p.fillPath(rounded(QRectF(2, 9, 3, 24), 1.5), kAmber);
    // the page's own colour over the seam, so the tab and the page are one surface
    p.fillRect(QRectF(33, 1, 1, 40), kPage);
    return image;
}

QImage tabIcons() {
    QImage image = canvas(5 * 24, 24);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QColor ink(0x33, 0x40, 0x5e);
    for (int i = 0; i < 5; ++i) {
        p.save();
        p.translate(i * 24, 0);
        switch (i) {
        case 0: { // background: a landscape picture
            p.fillPath(rounded(QRectF(3, 5, 18, 14), 2.5), QColor(0x7c, 0xb4, 0xf0));
            QPainterPath hill;
            hill.moveTo(3, 19);
            hill.lineTo(9, 11);
            hill.lineTo(13, 15);
            hill.lineTo(16, 12);
            hill.lineTo(21, 19);
            hill.closeSubpath();
            p.save();
            p.setClipPath(rounded(QRectF(3, 5, 18, 14), 2.5));
            p.fillPath(hill, QColor(0x3c, 0x8a, 0x5a));
            p.restore();
            p.setBrush(kAmber);
            p.setPen(Qt::NoPen);
            p.drawEllipse(QPointF(16.5, 9), 2, 2);
            p.setPen(QPen(ink, 1.4));
            p.setBrush(Qt::NoBrush);
            p.drawPath(rounded(QRectF(3, 5, 18, 14), 2.5));
            break;
        }
        case 1: { // text: a bold T with lines
            p.setFont(font(16, true));
            p.setPen(ink);
            p.drawText(QRectF(2, 2, 12, 18), Qt::AlignCenter, QStringLiteral("T"));
            p.setPen(QPen(kAmberDeep, 2, Qt::SolidLine, Qt::RoundCap));
            p.drawLine(QPointF(15, 8), QPointF(21, 8));
            p.drawLine(QPointF(15, 12.5), QPointF(21, 12.5));
            p.drawLine(QPointF(4, 19.5), QPointF(21, 19.5));
            break;
        }
        case 2: { // sound: a note
            p.setPen(QPen(ink, 2, Qt::SolidLine, Qt::RoundCap));
            p.drawLine(QPointF(10, 17), QPointF(10, 5));
            p.drawLine(QPointF(10, 5), QPointF(18, 3.5));
            p.drawLine(QPointF(18, 3.5), QPointF(18, 15));
            p.setPen(Qt::NoPen);
            p.setBrush(ink);
            p.drawEllipse(QPointF(7.5, 17.5), 3.2, 2.6);
            p.drawEllipse(QPointF(15.5, 15.5), 3.2, 2.6);
            break;
        }
        case 3: { // symbols: a star
            QPainterPath star;
            for (int k = 0; k < 10; ++k) {
                const double angle = -M_PI / 2 + k * M_PI / 5;
                const double radius = k % 2 == 0 ? 9.5 : 4.2;
                const QPointF pt(12 + radius * std::cos(angle), 12.5 + radius * std::sin(angle));
                if (k == 0)
                    star.moveTo(pt);
                else
                    star.lineTo(pt);
            }
            star.closeSubpath();
            p.fillPath(star, kAmber);
            p.setPen(QPen(ink, 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            p.drawPath(star);
            break;
        }
        default: { // recorder: a microphone with a red dot
            p.setPen(QPen(ink, 1.6, Qt::SolidLine, Qt::RoundCap));
            p.setBrush(QColor(0xdd, 0xe3, 0xee));
            p.drawRoundedRect(QRectF(8, 3, 8, 12), 4, 4);
            p.setBrush(Qt::NoBrush);
            QPainterPath cup;
            cup.moveTo(5.5, 11);
            cup.cubicTo(5.5, 18, 18.5, 18, 18.5, 11);
            p.drawPath(cup);
            p.drawLine(QPointF(12, 17), QPointF(12, 21));
            p.drawLine(QPointF(8.5, 21), QPointF(15.5, 21));
            p.setPen(Qt::NoPen);
            p.setBrush(QColor(0xe0, 0x3c, 0x3c));
            p.drawEllipse(QPointF(19, 4.5), 3, 3);
            break;
        }
        }
        p.restore();
    }
    return image;
}

QImage lamps() {
    QImage image = canvas(7 * 16, 16);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QColor hues[3] = {QColor(0x3c, 0xd0, 0x64), QColor(0x46, 0x96, 0xff),
                            QColor(0xff, 0xaa, 0x2c)};
    for (int i = 0; i < 7; ++i) {
        const QPointF c(i * 16 + 8, 8);
        const bool bright = i > 0 && i % 2 == 0;
        QColor base = i == 0 ? QColor(0x58, 0x60, 0x70) : hues[(i - 1) / 2];
        if (i > 0 && !bright)
            base = base.darker(190);
        if (bright) { // glow
            QRadialGradient glow(c, 8);
            QColor halo = base;
            halo.setAlpha(110);
            glow.setColorAt(0.5, halo);
            halo.setAlpha(0);
            glow.setColorAt(1, halo);
            p.setPen(Qt::NoPen);
            p.setBrush(glow);
            p.drawEllipse(c, 8, 8);
        }
        QRadialGradient body(c + QPointF(-1.5, -1.5), 6.5);
        body.setColorAt(0, base.lighter(bright ? 160 : 125));
        body.setColorAt(1, base);
        p.setBrush(body);
        p.setPen(QPen(QColor(0x20, 0x26, 0x34), 1));
        p.drawEllipse(c, 5.5, 5.5);
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(255, 255, 255, bright ? 200 : 90));
        p.drawEllipse(c + QPointF(-1.8, -2), 1.6, 1.2);
    }
    return image;
}

QImage progressFrames() {
    const int n = 36, w = 144, h = 12, period = 24;
    QImage image = canvas(n * w, h);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < n; ++i) {
        p.save();
        p.translate(i * w, 0);
        const QPainterPath trough = rounded(QRectF(0.5, 0.5, w - 1, h - 1), 5.5);
        QLinearGradient back(0, 0, 0, h);
        back.setColorAt(0, QColor(0xf7, 0xc8, 0x6a));
        back.setColorAt(1, QColor(0xfd, 0xbe, 0x51));
        p.fillPath(trough, back);
        p.setClipPath(trough);
        const double offset = double(i) * period / n;
        for (double x = -2 * period + offset; x < w + period; x += period) {
            QPainterPath stripe;
            stripe.moveTo(x, h);
            stripe.lineTo(x + h, 0);
            stripe.lineTo(x + h + period / 2.0, 0);
            stripe.lineTo(x + period / 2.0, h);
            stripe.closeSubpath();
            p.fillPath(stripe, QColor(255, 255, 255, 90));
        }
        QLinearGradient gloss(0, 0, 0, h);
        gloss.setColorAt(0, QColor(255, 255, 255, 110));
        gloss.setColorAt(0.5, QColor(255, 255, 255, 0));
        p.fillRect(QRectF(0, 0, w, h), gloss);
        p.setClipping(false);
        p.setPen(QPen(QColor(0xc8, 0x86, 0x1e), 1));
        p.drawPath(trough);
        p.restore();
    }
    return image;
}

// Stylised slides fanned out, for the splash.
void slideFan(QPainter& p, const QPointF& centre) {
    const QColor fills[3] = {QColor(0x7c, 0xb4, 0xf0), QColor(0xfd, 0xbe, 0x51),
                             QColor(0x8a, 0xd8, 0xa8)};
    for (int i = 0; i < 3; ++i) {
        p.save();
        p.translate(centre);
        p.rotate(-14 + i * 12);
        p.translate(-50 + i * 12, -40 - i * 4);
        const QRectF card(0, 0, 100, 80);
        shadow(p, card, 8, 5);
        p.fillPath(rounded(card, 8), Qt::white);
        const QRectF pic(7, 7, 86, 50);
        p.fillPath(rounded(pic, 4), fills[i]);
        QPainterPath hill;
        hill.moveTo(pic.left(), pic.bottom());
        hill.lineTo(pic.left() + 28, pic.top() + 20);
        hill.lineTo(pic.left() + 46, pic.top() + 34);
        hill.lineTo(pic.left() + 60, pic.top() + 24);
        hill.lineTo(pic.right(), pic.bottom());
        hill.closeSubpath();
        p.save();
        p.setClipPath(rounded(pic, 4));
        p.fillPath(hill, QColor(0x2e, 0x46, 0x77, 190));
        p.restore();
        p.fillPath(rounded(QRectF(7, 63, 60, 4), 2), QColor(0xc8, 0xd0, 0xe0));
        p.fillPath(rounded(QRectF(7, 70, 40, 4), 2), QColor(0xdc, 0xe2, 0xee));
        p.restore();
    }
}

QImage splash() {
    const int W = 440, H = 280;
    QImage image = canvas(W, H, false);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient g(0, 0, W, H);
    g.setColorAt(0, kNavyDeep);
    g.setColorAt(1, kNavyB);
    p.fillRect(image.rect(), g);
    QRadialGradient glow(QPointF(340, 90), 220);
    glow.setColorAt(0, QColor(0x5a, 0x82, 0xc8, 110));
    glow.setColorAt(1, QColor(0x5a, 0x82, 0xc8, 0));
    p.fillRect(image.rect(), glow);
    slideFan(p, QPointF(330, 130));
    logo(p, QRectF(32, 58, 48, 48));
    p.setFont(font(44, true));
    p.setPen(QColor(0, 0, 0, 80));
    p.drawText(31, 160, QStringLiteral("Tessaly"));
    p.setPen(Qt::white);
    p.drawText(30, 158, QStringLiteral("Tessaly"));
    p.fillRect(QRectF(32, 204, 64, 3), kAmber);
    // the version label stands at 32,238 (drawn by the window)
    p.setPen(QPen(QColor(255, 255, 255, 40), 1));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRectF(0.5, 0.5, W - 1, H - 1));
    return image;
}

QImage about() {
    const int W = 440, H = 300;
    QImage image = canvas(W, H, false);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient body(0, 100, 0, H);
    body.setColorAt(0, QColor(0xf6, 0xf8, 0xfc));
    body.setColorAt(1, kPage);
    p.fillRect(image.rect(), body);
    QLinearGradient band(0, 0, W, 100);
    band.setColorAt(0, kNavyDeep);
    band.setColorAt(1, kNavyB);
    p.fillRect(QRect(0, 0, W, 100), band);
    QRadialGradient glow(QPointF(380, 30), 160);
    glow.setColorAt(0, QColor(0x5a, 0x82, 0xc8, 100));
    glow.setColorAt(1, QColor(0x5a, 0x82, 0xc8, 0));
    p.fillRect(QRect(0, 0, W, 100), glow);
    p.fillRect(QRect(0, 100, W, 3), kAmber);
    logo(p, QRectF(360, 24, 52, 52));
    // the title and version labels stand at 28,22 and 30,64 (drawn by the window); pictures
    // carry no words but the product name, so that every text can be translated
    // a hairline above the buttons
    p.fillRect(QRect(24, 242, W - 48, 1), QColor(0xd0, 0xd7, 0xe4));
    p.setPen(QPen(kFrame, 1));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRectF(0.5, 0.5, W - 1, H - 1));
    return image;
}

} // namespace

// The desktop icon: the caption bar's logo on a clear square.
QImage appIcon(int size) {
    QImage image = canvas(size, size);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal margin = size / 24.0;
    logo(p, QRectF(margin, margin, size - 2 * margin, size - 2 * margin));
    return image;
}

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: skinart <data folder>\n");
        return 2;
    }
    gOut = QString::fromLocal8Bit(argv[1]);
    save(mainSkin(), QStringLiteral("skin/default/main.bmp"), true);
    save(previewSkin(), QStringLiteral("skin/default/preview.bmp"), true);
    const char* states[4] = {"normal", "hot", "pressed", "disabled"};
    for (int i = 0; i < 4; ++i)
        save(buttonFace(i),
             QStringLiteral("resources/button_%1.png").arg(QLatin1String(states[i])));
    for (int i = 0; i < 3; ++i)
        save(captionFace(i),
             QStringLiteral("resources/caption_%1.png").arg(QLatin1String(states[i])));
    for (const char* kind : {"close", "minimize", "dock", "undock"})
        save(titleGlyph(QLatin1String(kind)),
             QStringLiteral("resources/title_%1.png").arg(QLatin1String(kind)));
    save(tabFace(), QStringLiteral("resources/tab.png"));
    save(tabIcons(), QStringLiteral("resources/tab_icons.png"));
    save(lamps(), QStringLiteral("resources/lamp.png"));
    save(progressFrames(), QStringLiteral("resources/progress.png"));
    save(splash(), QStringLiteral("resources/splash.png"));
    save(about(), QStringLiteral("resources/about.png"));
    // The desktop entry's icon is installed from dist/, beside the data.
    for (int size : {48, 256})
        save(appIcon(size), QStringLiteral("../dist/icons/tessaly-%1.png").arg(size));
    return gFailures == 0 ? 0 : 1;
}
