#include "browse/ctlBrowser.h"

#include "audio/clsMCIManager.h"
#include "config/clsXMLocalizer.h"
#include "controls/GrButtonIII.h"
#include "controls/clsPopupMenu.h"
#include "controls/modSkin.h"
#include "controls/modTranslate.h"
#include "imaging/modPictureLoad.h"
#include "platform/AppPaths.h"
#include "platform/Trash.h"
#include "platform/modDialogs.h"
#include "platform/modText.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLabel>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>
#include <algorithm>

namespace {

constexpr int kCaptionStripHeight = 20;
constexpr int kButtonStripHeight = 32;
constexpr int kButtonHeight = 26;
constexpr int kNameLine = 16; // the part of a tile's height below its picture
// How long one timer tick may spend reading pictures, so the window stays responsive.
constexpr qint64 kReadBudgetMs = 8;
const QColor kNameColour(0x2a, 0x33, 0x48);
const QColor kDetailColour(0x6b, 0x74, 0x88);
const QColor kFrameColour(0xc8, 0xcc, 0xd6);
const QColor kPlaceholderColour(0xe6, 0xe8, 0xee);

const QString kSoundAliases[] = {QStringLiteral("csound"), QStringLiteral("playsound")};

void setBackColour(QWidget* widget, const QColor& colour) {
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Window, colour);
    widget->setPalette(palette);
    widget->setAutoFillBackground(true);
}

} // namespace

ctlBrowser::ctlBrowser(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("ctlBrowser"));
    mTabFont = font();
    makeChildren();
    mTimerThumbs = new QTimer(this);
    mTimerThumbs->setObjectName(QStringLiteral("TimerThumbs"));
    mTimerThumbs->setInterval(0);
    connect(mTimerThumbs, &QTimer::timeout, this, &ctlBrowser::TimerThumbs_Timer);
    SetControlBackColor(kToolBackColor, kToolAccentColor);
    resize(360, 226);
    placeChildren();
}

ctlBrowser::~ctlBrowser() = default;

void ctlBrowser::makeChildren() {
    mPicCaption = new QWidget(this);
    mPicCaption->setObjectName(QStringLiteral("picCaption"));
    mLblCaption = new QLabel(mPicCaption);
    mLblCaption->setObjectName(QStringLiteral("lblCaption"));
    mLblCaption->setIndent(6);
    mLblCaption->setTextFormat(Qt::PlainText);
    mLblCaption->setText(QStringLiteral("MT_1"));

    mPicButtons = new QWidget(this);
    mPicButtons->setObjectName(QStringLiteral("picButtons"));
    const auto button = [this](const char* name, void (ctlBrowser::*slot)()) {
        auto* b = new GrButtonIII(mPicButtons);
        b->setObjectName(QString::fromLatin1(name));
        b->setFocusPolicy(Qt::NoFocus);
        connect(b, &GrButtonIII::clicked, this, slot);
        return b;
    };
    mBAdd = button("bAdd", &ctlBrowser::bAdd_Click);
    mBBrowse = button("bBrowse", &ctlBrowser::bBrowse_Click);
    mBDelete = button("bDelete", &ctlBrowser::bDelete_Click);
    mBAdd->setText(QStringLiteral("Add"));
    mBBrowse->setText(QStringLiteral("Browse..."));
    mBDelete->setText(QStringLiteral("Delete"));
    mBAdd->setEnabled(false);
    mBDelete->setEnabled(false);

    mTabBack = new QWidget(this);
    mTabBack->setObjectName(QStringLiteral("tabBack"));
    mTabView = new QWidget(mTabBack);
    mTabView->setObjectName(QStringLiteral("tabView"));
    mTabView->setMouseTracking(true);
    mTabView->setAttribute(Qt::WA_OpaquePaintEvent);
    mTabView->installEventFilter(this);
    mVScroll = new QScrollBar(Qt::Vertical, mTabBack);
    mVScroll->setObjectName(QStringLiteral("VScroll"));
    mVScroll->hide();
    connect(mVScroll, &QScrollBar::valueChanged, this, &ctlBrowser::VScroll_Change);
}

// Caption on top, buttons below, the viewport between.
void ctlBrowser::placeChildren() {
    const int w = width();
    int top = 0;
    mPicCaption->setVisible(mCaptionVisible);
    if (mCaptionVisible) {
        mPicCaption->setGeometry(0, 0, w, kCaptionStripHeight);
        mLblCaption->setGeometry(0, 0, w, kCaptionStripHeight);
        top = kCaptionStripHeight + 2;
    }
    int bottom = height();
    mPicButtons->setVisible(mButtonsVisible);
    if (mButtonsVisible) {
        bottom -= kButtonStripHeight;
        mPicButtons->setGeometry(0, bottom, w, kButtonStripHeight);
        const int gap = 4;
        const int each = (w - 2 * gap) / 3;
        const int y = kButtonStripHeight - kButtonHeight;
        mBAdd->setGeometry(0, y, each, kButtonHeight);
        mBBrowse->setGeometry(each + gap, y, each, kButtonHeight);
        mBDelete->setGeometry(2 * (each + gap), y, w - 2 * (each + gap), kButtonHeight);
    }
    mTabBack->setGeometry(0, top, w, std::max(0, bottom - top));
    drawView();
}

void ctlBrowser::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeChildren();
}

// ---------------------------------------------------------------------------------------------
// Properties

void ctlBrowser::TranslateControl(clsXMLocalizer* localizer) {
    const QString caption = Caption();
    if (localizer)
        TranslateForm(*localizer, this);
    setCaption(caption);
    const auto text = [localizer](const char* key) {
        const QString k = QString::fromLatin1(key);
        return localizer ? localizer->GetString(k) : localText(k);
    };
    mBAdd->setText(text("BTN_ADD"));
    mBBrowse->setText(text("BTN_BROWSE"));
    mBDelete->setText(text("BTN_DELETE"));
    mTabView->update();
}

void ctlBrowser::SetBrowserThumbType(int type) {
    mThumbType = type == SoundThumbs ? SoundThumbs : PictureThumbs;
}

void ctlBrowser::SetControlBackColor(std::int32_t back, std::int32_t fore) {
    mBackColor = fromVbColor(back);
    mAccentColor = fromVbColor(fore);
    for (QWidget* w : {static_cast<QWidget*>(this), mPicButtons, mTabBack})
        setBackColour(w, mBackColor);
    setBackColour(mPicCaption, mAccentColor);
    setBackColour(mLblCaption, mAccentColor);
    mTabView->update();
}

int ctlBrowser::CaptionHeight() const {
    return mCaptionVisible ? mPicCaption->height() : 0;
}

QString ctlBrowser::Caption() const {
    return mLblCaption->text();
}

void ctlBrowser::setCaption(const QString& caption) {
    mLblCaption->setText(caption);
}

void ctlBrowser::setCaptionVisible(bool visible) {
    mCaptionVisible = visible;
    placeChildren();
}

void ctlBrowser::setButtonsVisible(bool visible) {
    mButtonsVisible = visible;
    placeChildren();
}

void ctlBrowser::setTabFont(const QFont& font) {
    mTabFont = font;
    mTabView->update();
}

void ctlBrowser::setThumbWidth(int width) {
    mThumbWidth = mTabView->width() >= width ? width : mTabView->width();
    resetThumbs();
    drawView();
}

void ctlBrowser::setThumbHeight(int height) {
    mThumbHeight = std::max(1, height);
    resetThumbs();
    drawView();
}

QString ctlBrowser::FileName(int index) const {
    if (index < 1)
        return mBrowsedFile;
    const clsMedia* media = mList.Item(index);
    return media ? media->FileName() : QString();
}

int ctlBrowser::HitTest(int y) const {
    if (y < 0)
        return 0;
    const int index = y / mThumbHeight + 1;
    return index <= mList.Count() ? index : 0;
}

QImage ctlBrowser::Thumbnail(int index) const {
    if (index < 1 || index > int(mThumbCache.size()))
        return {};
    return mThumbCache[std::size_t(index - 1)].picture;
}

// ---------------------------------------------------------------------------------------------
// The list and its pictures

void ctlBrowser::LoadFiles() {
    mBDelete->setEnabled(false);
    mBAdd->setEnabled(false);
    mList.LoadFiles(mPath, mFiles, mThumbs);
    mSelectedIndex = -1;
    mHotIndex = 0;
    mPlaying = false;
    mVScroll->setValue(0);
    resetThumbs();
    drawView();
    readVisibleThumbs();
}

void ctlBrowser::resetThumbs() {
    ++mGeneration;
    mThumbCache.assign(std::size_t(mList.Count()), Thumb());
    mPending = 0;
    mNextThumb = 0;
    int index = 0;
    for (const clsMedia& media : mList) {
        Thumb& thumb = mThumbCache[std::size_t(index++)];
        if (!media.Picture().isNull()) {
            thumb.picture = media.Picture();
            thumb.state = Thumb::Ready;
        } else if (mThumbType == SoundThumbs) {
            thumb.state = Thumb::Missing; // a sound has no picture of its own to read
        } else {
            ++mPending;
        }
    }
    if (mPending > 0)
        mTimerThumbs->start();
    else
        mTimerThumbs->stop();
}

void ctlBrowser::readVisibleThumbs() {
    const auto [first, last] = visibleTiles();
    for (int index = first; index <= last && index <= int(mThumbCache.size()); ++index)
        if (mThumbCache[std::size_t(index - 1)].state == Thumb::Pending)
            readThumb(index);
}

void ctlBrowser::TimerThumbs_Timer() {
    if (mReading)
        return; // a box of the reader is open: its own event loop runs this timer
    QElapsedTimer clock;
    clock.start();
    do {
        const int index = nextPendingThumb();
        if (index == 0) {
            mTimerThumbs->stop();
            emit ThumbsLoaded();
            return;
        }
        readThumb(index);
    } while (clock.elapsed() < kReadBudgetMs);
}

// The next tile to read: the first waiting tile in view, else the next one in list order.
int ctlBrowser::nextPendingThumb() {
    const auto [first, last] = visibleTiles();
    for (int index = first; index <= last && index <= int(mThumbCache.size()); ++index)
        if (mThumbCache[std::size_t(index - 1)].state == Thumb::Pending)
            return index;
    while (mNextThumb < mThumbCache.size()) {
        if (mThumbCache[mNextThumb].state == Thumb::Pending)
            return int(mNextThumb) + 1;
        ++mNextThumb;
    }
    return 0;
}

void ctlBrowser::readThumb(int index) {
    const unsigned generation = mGeneration;
    const QSize box = pictureBox(index).size();
    // An unreadable file gets its box here, once: the tile then stays empty. The timer rests
    // while a box is open.
    mTimerThumbs->stop();
    mReading = true;
    QImage picture = LoadPictureFile(mPath + FileName(index), mBoxes);
    mReading = false;
    if (mPending > 0)
        mTimerThumbs->start();
    if (generation != mGeneration || index > int(mThumbCache.size()))
        return; // the list was loaded again while the box was open
    Thumb& thumb = mThumbCache[std::size_t(index - 1)];
    if (thumb.state != Thumb::Pending)
        return;
    --mPending;
    if (picture.isNull()) {
        thumb.state = Thumb::Missing;
    } else {
        thumb.original = picture.size();
        if (picture.width() > box.width() || picture.height() > box.height())
            picture = picture.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        thumb.picture = picture;
        thumb.state = Thumb::Ready;
    }
    mTabView->update(tileRect(index));
}

// ---------------------------------------------------------------------------------------------
// Drawing

QRect ctlBrowser::tileRect(int index) const {
    return QRect(0, (index - 1) * mThumbHeight, mTabView->width(), mThumbHeight);
}

// Where a tile's picture goes: at its left, the tile's height less the name line, at most
// four to three as wide as it is high.
QRect ctlBrowser::pictureBox(int index) const {
    const int h = std::max(8, mThumbHeight - kNameLine);
    const int w = std::max(8, std::min(mThumbWidth - 8, h * 4 / 3));
    return QRect(4, (index - 1) * mThumbHeight + 4, w, h);
}

std::pair<int, int> ctlBrowser::visibleTiles() const {
    const int top = mVScroll->value();
    const int first = top / mThumbHeight + 1;
    const int last = (top + std::max(1, mTabBack->height()) - 1) / mThumbHeight + 1;
    return {first, std::min(last, mList.Count())};
}

void ctlBrowser::drawView() {
    const int total = mList.Count() * mThumbHeight;
    const QSize port = mTabBack->size();
    const bool scroll = total > port.height();
    const int barWidth = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const int width = std::max(0, port.width() - (scroll ? barWidth : 0));
    mVScroll->setGeometry(width, 0, barWidth, port.height());
    mVScroll->setRange(0, std::max(0, total - port.height()));
    mVScroll->setPageStep(std::max(1, port.height()));
    mVScroll->setSingleStep(std::max(1, mThumbHeight / 2));
    mVScroll->setVisible(scroll);
    mVScroll->raise();
    mTabView->setGeometry(0, -mVScroll->value(), width, std::max(total, port.height()));
    mTabView->update();
}

void ctlBrowser::VScroll_Change(int value) {
    mTabView->move(0, -value);
    if (mPending > 0 && !mTimerThumbs->isActive())
        mTimerThumbs->start();
}

void ctlBrowser::paintView(QPaintEvent* event) {
    QPainter painter(mTabView);
    painter.fillRect(event->rect(), mBackColor);
    const int first = std::max(1, event->rect().top() / mThumbHeight + 1);
    const int last = std::min(mList.Count(), event->rect().bottom() / mThumbHeight + 1);
    for (int index = first; index <= last; ++index)
        paintTile(painter, index);
    paintMarks(painter);
}

void ctlBrowser::paintTile(QPainter& painter, int index) {
    const QRect tile = tileRect(index);
    if (index == mSelectedIndex) {
        QColor tint = mAccentColor;
        tint.setAlpha(70);
        painter.fillRect(tile, tint);
    }
    painter.setPen(kPlaceholderColour);
    painter.drawLine(tile.left() + 4, tile.bottom(), tile.right() - 4, tile.bottom());

    const QRect box = pictureBox(index);
    const Thumb& thumb = mThumbCache[std::size_t(index - 1)];
    if (thumb.state == Thumb::Ready) {
        QRect place(QPoint(0, 0), thumb.picture.size());
        place.moveCenter(box.center());
        // A symbol with see-through parts shows on white, as it would on a slide.
        if (mThumbType == PictureThumbs && thumb.picture.hasAlphaChannel())
            painter.fillRect(place, Qt::white);
        painter.drawImage(place, thumb.picture);
        if (mThumbType == PictureThumbs) {
            painter.setPen(kFrameColour);
            painter.drawRect(place.adjusted(-1, -1, 0, 0));
        }
    } else if (thumb.state == Thumb::Pending) {
        painter.fillRect(box, kPlaceholderColour);
    } else {
        painter.setPen(kFrameColour);
        painter.drawRect(box.adjusted(0, 0, -1, -1));
        if (mThumbType == SoundThumbs) {
            QFont glyph = mTabFont;
            glyph.setPixelSize(std::max(8, box.height() * 2 / 3));
            painter.setFont(glyph);
            painter.setPen(kDetailColour);
            painter.drawText(box, Qt::AlignCenter, QString(QChar(0x266A)));
        }
    }

    // The name beside the picture, and what is known of the file below it.
    const QString name = FileName(index);
    const int textLeft = box.right() + 10;
    const QRect textArea(textLeft, tile.top(), std::max(0, tile.right() - 6 - textLeft),
                         tile.height() - 6);
    painter.setFont(mTabFont);
    const QFontMetrics nameMetrics(mTabFont);
    QString detail;
    if (mThumbType == PictureThumbs && thumb.original.isValid())
        detail =
            QStringLiteral("%1 \u00d7 %2").arg(thumb.original.width()).arg(thumb.original.height());
    else if (mThumbType == SoundThumbs)
        detail = QFileInfo(name).suffix().toUpper();
    QFont small = font();
    small.setPixelSize(11);
    const int lines = nameMetrics.height() + (detail.isEmpty() ? 0 : QFontMetrics(small).height());
    int y = textArea.top() + std::max(0, (textArea.height() - lines) / 2);
    painter.setPen(kNameColour);
    painter.drawText(QRect(textArea.left(), y, textArea.width(), nameMetrics.height()),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     nameMetrics.elidedText(name, Qt::ElideMiddle, textArea.width()));
    if (!detail.isEmpty()) {
        y += nameMetrics.height();
        painter.setFont(small);
        painter.setPen(kDetailColour);
        painter.drawText(QRect(textArea.left(), y, textArea.width(), QFontMetrics(small).height()),
                         Qt::AlignLeft | Qt::AlignVCenter, detail);
    }
}

// The hover frame and the selection mark invert what lies under them.
void ctlBrowser::paintMarks(QPainter& painter) {
    painter.setCompositionMode(QPainter::RasterOp_NotDestination);
    if (mHotIndex >= 1 && mHotIndex <= mList.Count()) {
        const QRect tile = tileRect(mHotIndex);
        painter.setPen(QPen(Qt::black, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(tile.adjusted(1, 1, -2, -2));
    }
    if (mSelectedIndex >= 1 && mSelectedIndex <= mList.Count()) {
        const int top = (mSelectedIndex - 1) * mThumbHeight;
        painter.fillRect(QRect(4, top + mThumbHeight - 5, std::max(1, mThumbWidth - 9), 1),
                         Qt::black);
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

// ---------------------------------------------------------------------------------------------
// Mouse

bool ctlBrowser::eventFilter(QObject* watched, QEvent* event) {
    if (watched != mTabView)
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::Paint:
        paintView(static_cast<QPaintEvent*>(event));
        return true;
    case QEvent::MouseButtonPress:
        tabView_MouseDown(static_cast<QMouseEvent*>(event));
        return true;
    case QEvent::MouseMove:
        tabView_MouseMove(static_cast<QMouseEvent*>(event));
        return true;
    case QEvent::MouseButtonRelease:
        tabView_MouseUp(static_cast<QMouseEvent*>(event));
        return true;
    case QEvent::MouseButtonDblClick:
        tabView_DblClick(static_cast<QMouseEvent*>(event));
        return true;
    case QEvent::Leave:
        setHotTile(0);
        return false;
    case QEvent::Wheel:
        QApplication::sendEvent(mVScroll, event);
        return true;
    default:
        return QWidget::eventFilter(watched, event);
    }
}

void ctlBrowser::tabView_MouseDown(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    const int index = HitTest(event->position().toPoint().y());
    if (index < 1)
        return;
    if (index == mSelectedIndex) {
        mPlaying = !mPlaying;
        emit ItemClick(index, mPlaying ? ActionPlay : ActionStop);
        return;
    }
    selectTile(index);
}

void ctlBrowser::selectTile(int index) {
    const int old = mSelectedIndex;
    mSelectedIndex = index;
    mPlaying = false;
    if (old >= 1)
        mTabView->update(tileRect(old));
    mTabView->update(tileRect(index));
    emit SelectionChanged(index);
    mBAdd->setEnabled(true);
    mBDelete->setEnabled(true);
}

void ctlBrowser::tabView_MouseMove(QMouseEvent* event) {
    const int index = HitTest(event->position().toPoint().y());
    if (index >= 1)
        setHotTile(index);
}

void ctlBrowser::setHotTile(int index) {
    if (index == mHotIndex)
        return;
    if (mHotIndex >= 1)
        mTabView->update(tileRect(mHotIndex));
    mHotIndex = index;
    if (index >= 1)
        mTabView->update(tileRect(index));
}

void ctlBrowser::tabView_MouseUp(QMouseEvent* event) {
    if (event->button() == Qt::RightButton && !mRightClickMenu.isEmpty()) {
        clsPopupMenu menu;
        menu.PopupString(mRightClickMenu);
    }
}

void ctlBrowser::tabView_DblClick(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    const int index = HitTest(event->position().toPoint().y());
    if (index >= 1)
        emit ItemChosen(index);
}

// ---------------------------------------------------------------------------------------------
// Buttons

void ctlBrowser::bAdd_Click() {
    if (mSelectedIndex >= 0)
        emit ItemChosen(mSelectedIndex);
}

void ctlBrowser::bBrowse_Click() {
    if (mUseExternalBrowser) {
        emit BrowseWanted();
        return;
    }
    const QString file = mThumbType == SoundThumbs ? browseSound() : browsePicture();
    if (file.isEmpty())
        return;
    mBrowsedFile = file;
    emit ItemChosen(0);
}

// "Picture files (*.bmp;*.gif)|*.bmp;*.gif|All files (*.*)|*.*" from the control's patterns.
QString ctlBrowser::dialogFilter(const QString& kindKey) const {
    QStringList patterns = mFiles.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (QString& pattern : patterns)
        pattern = pattern.trimmed();
    const QString own = patterns.join(QLatin1Char(';'));
    return localText(kindKey) + QStringLiteral(" (") + own + QStringLiteral(")|") + own +
           QLatin1Char('|') + localText(QStringLiteral("STR_BFILTER_ALL")) +
           QStringLiteral(" (*.*)|*.*");
}

QString ctlBrowser::browsePicture() {
    QString file;
    if (!GetOpenFileName(window(), file, localText(QStringLiteral("STR_BROWSER_PICTURE")),
                         dialogFilter(QStringLiteral("STR_BFILTER_PICTURE")), QString(), mPath))
        return {};
    return file;
}

QString ctlBrowser::browseSound() {
    const QString title = localText(QStringLiteral("STR_BROWSER_AUDIO"));
    QString filter = dialogFilter(QStringLiteral("STR_BFILTER_AUDIO"));
    clsMCIManager* manager = gMCIManager();
    if (!manager) {
        QString file;
        return GetOpenFileName(window(), file, title, filter, QString(), mPath) ? file : QString();
    }
    for (const QString& alias : kSoundAliases) {
        manager->stopSound(alias);
        manager->closeSound(alias);
    }
    filter.replace(QLatin1Char('|'), QChar(0));
    manager->browseOpenFileAlias(kSoundAliases[0], filter, 1, title, window(), mPath, true);
    return manager->mciFileName();
}

void ctlBrowser::bDelete_Click() {
    const QString title = localText(QStringLiteral("STR_BROWSER_DELETE_CAP"));
    if (mSelectedIndex < 1) {
        MsgBox(localText(QStringLiteral("STR_BROWSER_DELETE_MSG")), Vb::Information, title);
        return;
    }
    const QString name = FileName(mSelectedIndex);
    const QString file = mPath + name;
    const QString details = QStringLiteral("\r\n\r\n") + name;
    bool gone = false;
    if (trashAvailable()) {
        if (MsgBox(localText(QStringLiteral("STR_BROWSER_DELETE_ASK")) + details,
                   Vb::YesNo | Vb::Question, title) != Vb::Yes)
            return;
        gone = moveToTrash(file);
    } else {
        if (MsgBox(localText(QStringLiteral("STR_BROWSER_DELETE_FOR_GOOD")) + details,
                   Vb::YesNo | Vb::Question | Vb::DefaultButton2, title) != Vb::Yes)
            return;
        gone = deleteForGood(file);
    }
    if (!gone) {
        MsgBox(localText(QStringLiteral("STR_BROWSER_DELETE_FAILED")) + QStringLiteral("\r\n\r\n") +
                   file,
               Vb::Exclamation, title);
        return;
    }
    LoadFiles();
}
