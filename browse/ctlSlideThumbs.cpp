#include "browse/ctlSlideThumbs.h"

#include "config/clsXMLocalizer.h"
#include "controls/clsPopupMenu.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "platform/VbFormat.h"
#include "platform/modDialogs.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

namespace {

// The menu texts in the order of their positions 1 to 12.
const char* const kMenuKeys[] = {
    "MNU_SLIDE_ADD",          "MNU_SLIDE_INSERT",       "MNU_SLIDE_BEFORE",
    "MNU_SLIDE_AFTER",        "MNU_SLIDE_DUPLICATE",    "MNU_SLIDE_BEFORE",
    "MNU_SLIDE_AFTER",        "MNU_SLIDE_DELETE",       "MNU_SLIDE_DELETE_SLIDE",
    "MNU_SLIDE_DELETE_IMAGE", "MNU_SLIDE_DELETE_SOUND", "MNU_SLIDE_DELETE_TEXT"};

// Point sizes become pixel sizes, so that a tile looks the same at any screen resolution.
QFont stripFont(const QString& family, int points, bool bold) {
    QFont font(family);
    font.setPixelSize(static_cast<int>(std::lround(points * 4.0 / 3.0)));
    font.setBold(bold);
    return font;
}

const QString kVerdana = QStringLiteral("Verdana");
// The sound mark of the tile: a note.
const QChar kSoundMark(0x266A);

void drawTextAt(QPainter& painter, int x, int top, const QString& text) {
    painter.drawText(QPoint(x, top + painter.fontMetrics().ascent()), text);
}

// The tile's body in the frame colour, its corners cut by two pixels.
void drawBody(QPainter& painter, int w, int h, const QColor& frame) {
    painter.setPen(QPen(frame, 1));
    // A line ends before its end point, as the tiles have always been drawn.
    const auto line = [&painter](int x1, int y, int x2) {
        if (x2 > x1)
            painter.drawLine(x1, y, x2 - 1, y);
    };
    line(2, 0, w - 2);
    line(1, 1, w - 1);
    line(0, 2, w);
    painter.fillRect(QRect(QPoint(0, 3), QPoint(w, h - 4)), frame);
    line(0, h - 3, w);
    line(1, h - 2, w - 1);
    line(2, h - 1, w - 2);
}

void drawPicture(QPainter& painter, int w, const clsSlide& slide) {
    const int iw = w - 6;
    const int ih = iw * 3 / 4 - 2;
    if (iw <= 0 || ih <= 0)
        return;
    if (slide.Image().isNull())
        painter.fillRect(QRect(QPoint(3, 3), QPoint(iw + 2, ih + 2)), fromVbColor(slide.Color()));
    else
        painter.drawImage(QRect(3, 3, iw, ih), slide.Image());
}

// Number, sound mark and duration along the tile's foot.
void drawCaptions(QPainter& painter, int w, int h, const clsSlide& slide) {
    painter.setPen(Qt::white);
    painter.setFont(stripFont(kVerdana, 8, true));
    const int th = painter.fontMetrics().height(); // of "Aj": the line's full height
    const QString number = QString::number(slide.Index());
    drawTextAt(painter, 3, h - th - 4, number);
    const int nw = painter.fontMetrics().horizontalAdvance(number) + 1;
    if (!slide.Sound().isEmpty()) {
        painter.setFont(stripFont(kVerdana, 11, false));
        drawTextAt(painter, nw + 3, h - th - 8, QString(kSoundMark));
    }
    painter.setFont(stripFont(kVerdana, 7, false));
    const QString duration = Format(slide.Duration() / 1000.0, QStringLiteral("#0.0s"));
    const QFontMetrics metrics = painter.fontMetrics();
    drawTextAt(painter, w - metrics.horizontalAdvance(duration) + 1, h - metrics.height() - 4,
               duration);
}

} // namespace

void SlideThumbTile::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!mSurface.isNull())
        painter.drawImage(0, 0, mSurface);
}

void SlideThumbTile::mouseReleaseEvent(QMouseEvent* event) {
    if (rect().contains(event->position().toPoint()))
        emit released(event->button());
}

ctlSlideThumbs::ctlSlideThumbs(QWidget* parent) : QWidget(parent) {
    mPictureScroll = new QWidget(this);
    mPictureScroll->setObjectName(QStringLiteral("PictureScroll"));
    mPictureScroll->installEventFilter(this);
    mHScroll = new QScrollBar(Qt::Horizontal, this);
    mHScroll->setObjectName(QStringLiteral("HScroll"));
    mHScroll->setRange(0, 0);
    connect(mHScroll, &QScrollBar::valueChanged, this, &ctlSlideThumbs::HScroll_Change);
    for (int i = 0; i < 12; ++i)
        mMenuText[i] = QString::fromLatin1(kMenuKeys[i]);
    // The first tile of the array exists from the start and gives the others their size.
    NewTile();
    mTilesInUse = 0;
    mTiles.front()->hide();
}

SlideThumbTile* ctlSlideThumbs::Tile(int index) const {
    return index >= 1 && index <= mTiles.size() ? mTiles[index - 1] : nullptr;
}

void ctlSlideThumbs::TranslateControl(clsXMLocalizer* localizer) {
    if (!localizer)
        return;
    for (int i = 0; i < 12; ++i)
        mMenuText[i] = localizer->GetString(QString::fromLatin1(kMenuKeys[i]));
}

void ctlSlideThumbs::resizeEvent(QResizeEvent*) {
    Resize();
}

void ctlSlideThumbs::Resize() {
    const int scrollHeight = mHScroll->sizeHint().height();
    if (height() <= scrollHeight)
        return;
    mPictureScroll->setGeometry(0, 0, mPictureScroll->width(), height() - scrollHeight);
    mHScroll->setGeometry(0, height() - scrollHeight, width(), scrollHeight);
    const int side = mPictureScroll->height() - 2;
    if (side > 0)
        mTiles.front()->setGeometry(1, 1, side, side);
    mPictureScroll->resize(mTilesInUse == 0 ? 0 : LastTileRight(), mPictureScroll->height());
    const int tileWidth = mTiles.front()->width();
    mHScroll->setPageStep(tileWidth);
    mHScroll->setSingleStep(std::max(1, tileWidth / 4));
}

int ctlSlideThumbs::LastTileRight() const {
    const SlideThumbTile* last = mTiles.back();
    return last->x() + last->width() + 1;
}

SlideThumbTile* ctlSlideThumbs::NewTile() {
    SlideThumbTile* tile = nullptr;
    if (mTilesInUse == mTiles.size()) {
        tile = new SlideThumbTile(mPictureScroll);
        tile->setObjectName(QStringLiteral("picSlideThumb"));
        tile->setProperty("index", int(mTiles.size()) + 1);
        const int index = int(mTiles.size()) + 1;
        connect(tile, &SlideThumbTile::released, this,
                [this, index](Qt::MouseButton button) { Tile_Release(index, button); });
        mTiles.append(tile);
    } else {
        for (SlideThumbTile* candidate : mTiles)
            if (candidate->isHidden()) {
                tile = candidate;
                break;
            }
    }
    ++mTilesInUse;
    const QSize size = mTiles.front()->size();
    const int index = tile->property("index").toInt();
    tile->setGeometry((size.width() + 2) * (index - 1), 1, size.width(), size.height());
    return tile;
}

void ctlSlideThumbs::DrawThumbs(const clsMessage& message) {
    // A strip not shown yet has not been laid out for its size.
    if (testAttribute(Qt::WA_PendingResizeEvent) || mTiles.front()->size().isEmpty())
        Resize();
    if (mSelected > 0)
        PaintFrame(mSelected, kFrameColor);
    for (SlideThumbTile* tile : mTiles)
        tile->hide();
    mTilesInUse = 0;
    if (const clsSlides* slides = message.Slides()) {
        for (int i = 1; i <= slides->Count(); ++i) {
            SlideThumbTile* tile = NewTile();
            if (auto slide = slides->Item(i))
                DrawThumb(true, *slide);
            tile->show();
        }
    }
    const SlideThumbTile* last = mTilesInUse > 0 ? mTiles[mTilesInUse - 1] : mTiles.front();
    const int w = static_cast<std::int16_t>(mTilesInUse > 0 ? last->x() + last->width() + 1 : 0);
    mPictureScroll->resize(w, mPictureScroll->height());
    if (w <= width()) {
        mHScroll->setValue(0);
        mHScroll->setMaximum(0);
    } else {
        mHScroll->setMaximum(mPictureScroll->width() - width());
        mPictureScroll->move(-mHScroll->value(), mPictureScroll->y());
    }
    update();
}

void ctlSlideThumbs::ScrollToEnd() {
    if (mTilesInUse <= 5)
        return;
    mHScroll->setMaximum(std::max(0, mPictureScroll->width() - width()));
    mHScroll->setValue(mHScroll->maximum());
    mPictureScroll->move(-mHScroll->value(), mPictureScroll->y());
}

void ctlSlideThumbs::HScroll_Change(int value) {
    mPictureScroll->move(-value, mPictureScroll->y());
}

void ctlSlideThumbs::DrawThumb(bool selected, const clsSlide& slide) {
    SlideThumbTile* tile = Tile(slide.Index());
    if (!tile || slide.Index() > mTilesInUse)
        return;
    const int w = tile->width();
    const int h = tile->height();
    QImage& surface = tile->surface();
    surface = QImage(w, h, QImage::Format_RGB32);
    surface.fill(fromVbColor(kPageColor));
    {
        QPainter painter(&surface);
        drawBody(painter, w, h, fromVbColor(kFrameColor));
        drawPicture(painter, w, slide);
    }
    if (selected) {
        if (mSelected > 0 && mSelected != slide.Index())
            PaintFrame(mSelected, kFrameColor);
        mSelected = slide.Index();
        PaintFrame(mSelected, kSelectionColor);
    }
    {
        QPainter painter(&surface);
        drawCaptions(painter, w, h, slide);
    }
    tile->update();
}

void ctlSlideThumbs::PaintFrame(int index, std::int32_t colour) {
    SlideThumbTile* tile = Tile(index);
    if (!tile || tile->surface().isNull())
        return;
    const int s = static_cast<std::int16_t>(tile->width());
    QPainter painter(&tile->surface());
    painter.setPen(QPen(fromVbColor(colour), 2, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);
    // The right side mirrors the left one inside the tile, so that all four sides show.
    painter.drawRect(QRect(QPoint(2, 2), QPoint(std::min(s + 1, s - 2), s * 3 / 4 - 1)));
    tile->update();
}

QString ctlSlideThumbs::MenuString(bool onTile) const {
    const QString a = !onTile || !mMenuEnabled ? QStringLiteral("!") : QString();
    const QString b = !mMenuEnabled ? QStringLiteral("!") : QString();
    const auto item = [this](const QString& mark, int position, int key) {
        return mark + mMenuText[position - 1] + QLatin1Char(';') + QString::number(key);
    };
    const QStringList entries = {
        item(b, 1, KeyAdd),
        QStringList{item({}, 2, 0), item(a, 3, KeyInsertBefore), item(a, 4, KeyInsertAfter)}.join(
            QLatin1Char('|')),
        QStringList{item({}, 5, 0), item(a, 6, KeyDuplicateBefore), item(a, 7, KeyDuplicateAfter)}
            .join(QLatin1Char('|')),
        QStringLiteral("-"),
        QStringList{item({}, 8, 0), item(a, 9, KeyDeleteSlide), QStringLiteral("-"),
                    item(a, 10, KeyDeleteImage), item(a, 11, KeyDeleteSound),
                    item(a, 12, KeyDeleteText)}
            .join(QLatin1Char('|'))};
    return entries.join(QLatin1Char(','));
}

void ctlSlideThumbs::ShowPopup(int index) {
    clsPopupMenu popup;
    const std::int32_t key = popup.PopupString(MenuString(index > 0));
    if (key > 0)
        emit MenuClick(key, index);
}

// A release of any button ends in a click, as on the classic picture surfaces: a right button
// opens the pop-up first and leaves a guard that eats the click that follows it.
void ctlSlideThumbs::Tile_Release(int index, Qt::MouseButton button) {
    if (button == Qt::RightButton) {
        mRightClickGuard = true;
        ShowPopup(index);
    }
    Tile_Click(index);
}

void ctlSlideThumbs::Tile_Click(int index) {
    if (mRightClickGuard) {
        mRightClickGuard = false;
        return;
    }
    emit SlideClick(index);
    if (mSelected > 0)
        PaintFrame(mSelected, kFrameColor);
    mSelected = index;
    PaintFrame(mSelected, kSelectionColor);
}

void ctlSlideThumbs::Surface_Release(bool own, Qt::MouseButton button) {
    if (button == Qt::RightButton) {
        mRightClickGuard = true;
        ShowPopup(0);
    }
    if (mRightClickGuard) {
        mRightClickGuard = false;
        return;
    }
    if (own && button == Qt::LeftButton)
        emit MenuClick(KeyAdd, 1);
}

void ctlSlideThumbs::mouseReleaseEvent(QMouseEvent* event) {
    if (rect().contains(event->position().toPoint()))
        Surface_Release(true, event->button());
}

bool ctlSlideThumbs::eventFilter(QObject* watched, QEvent* event) {
    if (watched == mPictureScroll && event->type() == QEvent::MouseButtonRelease) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mPictureScroll->rect().contains(mouse->position().toPoint()))
            Surface_Release(false, mouse->button());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void ctlSlideThumbs::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), fromVbColor(kPageColor));
}
