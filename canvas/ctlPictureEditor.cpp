#include "canvas/ctlPictureEditor.h"

#include "config/modConfig.h"
#include "controls/clsPopupMenu.h"
#include "document/clsDrawObjects.h"
#include "imaging/modPictureLoad.h"
#include "platform/AppPaths.h"
#include "platform/Failure.h"
#include "platform/modDialogs.h"
#include "platform/modText.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QTextEdit>
#include <QTimer>
#include <algorithm>
#include <cmath>

namespace {

constexpr int kHandleSize = 5;
constexpr int kNodeCount = 8;
constexpr int kAutoUpdateMs = 400;
constexpr int kNewObjectPlace = 10;
constexpr int kColorDialogFlags = 3;

const char* const kMenuKeys[] = {
    "STR_ADD_TEXT",   "STR_PICTURE_FILE",   "STR_PICTURE_BACKGROUND", "STR_BACKGROUND_COLOR",
    "STR_TEXT_NEW",   "STR_DLG_LOAD_PIC",   "STR_DLG_LOAD_FILTER",    "STR_DUPLICATE",
    "STR_DELETE",     "STR_BRING_TO_FRONT", "STR_SEND_TO_BACK",       "STR_NO_FILE_FOUND",
    "APP_PRODUCTNAME"};
enum MenuText {
    AddTextCaption,
    PictureFileCaption,
    PictureBackground,
    BackgroundColor,
    TextNew,
    DlgLoadPic,
    DlgLoadFilter,
    Duplicate,
    Delete,
    BringToFrontCaption,
    SendToBackCaption,
    NoFileFound,
    ProductName,
};

int slotIndex(const QWidget* object) {
    return object ? object->property("index").toInt() : 0;
}

// A mouse-transparent layer over the surface that draws the rubber band by inverting the
// pixels under it, so that the box shows on any background.
class OutlineLayer : public QWidget {
public:
    explicit OutlineLayer(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_NoSystemBackground);
    }
    void setBox(const QRectF& box, bool shown) {
        mBox = box;
        mShown = shown;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        if (!mShown)
            return;
        QPainter painter(this);
        painter.setCompositionMode(QPainter::RasterOp_NotDestination);
        painter.setPen(QPen(Qt::black, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRect(qRound(mBox.left()), qRound(mBox.top()), qRound(mBox.width()),
                               qRound(mBox.height())));
    }

private:
    QRectF mBox;
    bool mShown = false;
};

} // namespace

// ---------------------------------------------------------------------------------------------
// Objects on the surface

CanvasPicture::CanvasPicture(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void CanvasPicture::setPicture(const QImage& picture) {
    mPicture = picture;
    resize(picture.size());
    update();
}

void CanvasPicture::paintOn(QPainter& painter) const {
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter.drawImage(geometry(), mPicture);
    painter.restore();
}

void CanvasPicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.translate(-pos());
    paintOn(painter);
}

CanvasLabel::CanvasLabel(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

QFont CanvasLabel::slideFont(const TextAttributes& text) {
    QFont font;
    // A font the system lacks (Verdana, most of all) falls back to DejaVu Sans.
    font.setFamilies({text.fontName, QStringLiteral("DejaVu Sans")});
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(text.size * 4.0 / 3.0))));
    font.setBold(text.bold);
    font.setItalic(text.italic);
    font.setUnderline(text.underline);
    return font;
}

int CanvasLabel::alignmentFlags(int alignment) {
    switch (alignment) {
    case 1:
        return Qt::AlignRight | Qt::AlignTop;
    case 2:
        return Qt::AlignHCenter | Qt::AlignTop;
    default:
        return Qt::AlignLeft | Qt::AlignTop;
    }
}

void CanvasLabel::setText(const TextAttributes& text) {
    mText = text;
    autoSize();
}

void CanvasLabel::setCaption(const QString& caption) {
    mText.caption = caption;
    autoSize();
}

void CanvasLabel::autoSize() {
    const QFontMetrics metrics(slideFont(mText));
    resize(metrics.size(0, mText.caption.isEmpty() ? QStringLiteral(" ") : mText.caption));
    update();
}

void CanvasLabel::paintOn(QPainter& painter) const {
    painter.save();
    painter.setFont(slideFont(mText));
    painter.setPen(fromVbColor(mText.colour));
    painter.drawText(geometry(), alignmentFlags(mText.alignment), mText.caption);
    painter.restore();
}

void CanvasLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.translate(-pos());
    paintOn(painter);
}

// ---------------------------------------------------------------------------------------------
// Life of the control

ctlPictureEditor::ctlPictureEditor(QWidget* parent) : QWidget(parent) {
    mPicture1 = new QWidget(this);
    mPicture1->setObjectName(QStringLiteral("Picture1"));
    mPicture1->setFocusPolicy(Qt::StrongFocus);
    mPicture1->setAutoFillBackground(true);
    mPicture1->installEventFilter(this);
    applyBackgroundColor(mBackColor);

    // Slot 0 of each array is the template and is never shown.
    mImages.push_back(new CanvasPicture(mPicture1));
    mTexts.push_back(new CanvasLabel(mPicture1));
    for (QWidget* slot : {static_cast<QWidget*>(mImages[0]), static_cast<QWidget*>(mTexts[0])}) {
        slot->setObjectName(slot == mImages[0] ? QStringLiteral("Images")
                                               : QStringLiteral("lblTexts"));
        slot->setProperty("index", 0);
        slot->hide();
    }

    mTxtEdit = new QTextEdit(mPicture1);
    mTxtEdit->setObjectName(QStringLiteral("txtEdit"));
    mTxtEdit->setAcceptRichText(false);
    mTxtEdit->setFrameStyle(QFrame::Box);
    mTxtEdit->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    mTxtEdit->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    mTxtEdit->hide();

    for (int i = 0; i < kNodeCount; ++i) {
        auto* node = new QLabel(mPicture1);
        node->setObjectName(QStringLiteral("node"));
        node->setProperty("index", i);
        node->setAttribute(Qt::WA_TransparentForMouseEvents);
        node->setFixedSize(kHandleSize, kHandleSize);
        node->setAutoFillBackground(true);
        QPalette palette = node->palette();
        palette.setColor(QPalette::Window, Qt::black);
        node->setPalette(palette);
        node->hide();
        mNodes.push_back(node);
    }

    mOutlineLayer = new OutlineLayer(mPicture1);

    mPicColorPicker = new QLabel(this);
    mPicColorPicker->setObjectName(QStringLiteral("picColorPicker"));
    mPicColorPicker->setCursor(Qt::CrossCursor);
    mPicColorPicker->installEventFilter(this);
    mPicColorPicker->hide();

    mTimerAutoUpdate = new QTimer(this);
    mTimerAutoUpdate->setObjectName(QStringLiteral("TimerAutoUpdate"));
    mTimerAutoUpdate->setInterval(kAutoUpdateMs);
    connect(mTimerAutoUpdate, &QTimer::timeout, this, &ctlPictureEditor::TimerAutoUpdate_Timer);

    resize(160, 120);
    TranslateControl();
}

ctlPictureEditor::~ctlPictureEditor() = default;

void ctlPictureEditor::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    mPicture1->setGeometry(rect());
    mOutlineLayer->setGeometry(mPicture1->rect());
    if (!mBackSource.isNull())
        mBackPicture = StretchCopy(mBackSource, mPicture1->size(), true);
    applyBackgroundColor(mBackColor);
}

void ctlPictureEditor::TranslateControl() {
    mMenuTexts.clear();
    for (const char* key : kMenuKeys)
        mMenuTexts << localText(QString::fromLatin1(key));
}

void ctlPictureEditor::changed() {
    if (mNotifyChanges)
        emit CanvasChanged();
}

// ---------------------------------------------------------------------------------------------
// Slots and stacking

CanvasPicture* ctlPictureEditor::image(int index) const {
    return index > 0 && index < static_cast<int>(mImages.size()) ? mImages[index] : nullptr;
}

CanvasLabel* ctlPictureEditor::label(int index) const {
    return index > 0 && index < static_cast<int>(mTexts.size()) ? mTexts[index] : nullptr;
}

QLabel* ctlPictureEditor::handle(int index) const {
    return index >= 0 && index < kNodeCount ? mNodes[index] : nullptr;
}

QWidget* ctlPictureEditor::objectOf(std::int16_t entry) const {
    if (entry > 0)
        return image(entry);
    if (entry < 0)
        return label(-entry);
    return nullptr;
}

std::int16_t ctlPictureEditor::entryOf(QWidget* object) const {
    const auto index = static_cast<std::int16_t>(slotIndex(object));
    return qobject_cast<CanvasLabel*>(object) ? static_cast<std::int16_t>(-index) : index;
}

bool ctlPictureEditor::isLive(std::int16_t entry) const {
    const QWidget* object = objectOf(entry);
    return object && !object->isHidden();
}

void ctlPictureEditor::unloadAll() {
    for (std::size_t i = 1; i < mImages.size(); ++i)
        delete mImages[i];
    for (std::size_t i = 1; i < mTexts.size(); ++i)
        delete mTexts[i];
    mImages.resize(1);
    mTexts.resize(1);
    mImages[0]->hide();
    mTexts[0]->hide();
    mImageCount = 0;
    mTextCount = 0;
    mStackOrder.assign(1, 0);
}

// A free (invisible) slot above the template, or a new one when every slot is in use.
int ctlPictureEditor::takeSlot(bool picture) {
    int& count = picture ? mImageCount : mTextCount;
    const int highest = static_cast<int>(picture ? mImages.size() : mTexts.size()) - 1;
    int index = highest + 1;
    if (count != highest) {
        for (int i = 1; i <= highest; ++i) {
            const QWidget* slot = picture ? static_cast<QWidget*>(mImages[i]) : mTexts[i];
            if (slot->isHidden()) {
                index = i;
                break;
            }
        }
    }
    if (index > highest) {
        QWidget* slot = nullptr;
        if (picture) {
            mImages.push_back(new CanvasPicture(mPicture1));
            slot = mImages.back();
            slot->setObjectName(QStringLiteral("Images"));
        } else {
            mTexts.push_back(new CanvasLabel(mPicture1));
            slot = mTexts.back();
            slot->setObjectName(QStringLiteral("lblTexts"));
        }
        slot->setProperty("index", index);
        slot->hide();
    }
    ++count;
    return index;
}

void ctlPictureEditor::growStackOrder() {
    const std::size_t needed = static_cast<std::size_t>(std::max(1, mImageCount + mTextCount));
    if (mStackOrder.size() < needed)
        mStackOrder.resize(needed, 0);
}

void ctlPictureEditor::MoveToFront(std::int16_t entry) {
    auto found = std::find(mStackOrder.begin(), mStackOrder.end(), entry);
    if (found == mStackOrder.end()) {
        // The back position is taken over, unless an object still on the surface holds it:
        // that one keeps its place and the order grows by one.
        if (isLive(mStackOrder.back()))
            mStackOrder.push_back(0);
        found = mStackOrder.end() - 1;
    }
    std::move_backward(mStackOrder.begin(), found, found + 1);
    mStackOrder.front() = entry;
    restackWidgets();
}

void ctlPictureEditor::MoveToBack(std::int16_t entry) {
    const auto found = std::find(mStackOrder.begin(), mStackOrder.end(), entry);
    if (found == mStackOrder.end())
        return;
    std::move(found + 1, mStackOrder.end(), found);
    mStackOrder.back() = entry;
    restackWidgets();
}

// The widgets on screen follow the stacking order; handles, editor and rubber band stay on top.
void ctlPictureEditor::restackWidgets() {
    for (auto it = mStackOrder.rbegin(); it != mStackOrder.rend(); ++it)
        if (QWidget* object = objectOf(*it))
            object->raise();
    for (QLabel* node : mNodes)
        node->raise();
    mTxtEdit->raise();
    mOutlineLayer->raise();
}

void ctlPictureEditor::BringToFront(QWidget* object) {
    if (!object)
        return;
    MoveToFront(entryOf(object));
    changed();
}

void ctlPictureEditor::SendToBack(QWidget* object) {
    if (!object)
        return;
    MoveToBack(entryOf(object));
    changed();
}

QWidget* ctlPictureEditor::objectAt(const QPoint& surfacePos) const {
    for (std::int16_t entry : mStackOrder) {
        if (!isLive(entry))
            continue;
        QWidget* object = objectOf(entry);
        if (object->geometry().contains(surfacePos))
            return object;
    }
    return nullptr;
}

int ctlPictureEditor::handleAt(const QPoint& surfacePos) const {
    for (int i = 0; i < kNodeCount; ++i)
        if (!mNodes[i]->isHidden() && mNodes[i]->geometry().contains(surfacePos))
            return i;
    return -1;
}

// ---------------------------------------------------------------------------------------------
// Background

QImage ctlPictureEditor::StretchCopy(const QImage& source, const QSize& target, bool smooth) {
    if (source.isNull() || target.isEmpty())
        return {};
    const QImage stretched =
        source.size() == target
            ? source
            : source.scaled(target, Qt::IgnoreAspectRatio,
                            smooth ? Qt::SmoothTransformation : Qt::FastTransformation);
    return stretched.convertToFormat(QImage::Format_RGB32);
}

void ctlPictureEditor::applyBackgroundPicture(const QImage& picture) {
    mBackSource = picture;
    mBackPicture = StretchCopy(picture, mPicture1->size(), true);
    QPalette palette = mPicture1->palette();
    palette.setBrush(QPalette::Window, QBrush(mBackPicture));
    mPicture1->setPalette(palette);
}

void ctlPictureEditor::applyBackgroundColor(const QColor& colour) {
    mBackColor = colour;
    QPalette palette = mPicture1->palette();
    if (mBackPicture.isNull())
        palette.setColor(QPalette::Window, colour);
    else
        palette.setBrush(QPalette::Window, QBrush(mBackPicture));
    mPicture1->setPalette(palette);
}

// A picture file the user chose, or a box that says why there is none. A slide being loaded
// shows no box: its missing pictures are shown as such.
QImage ctlPictureEditor::readChosenPicture(const QString& file) const {
    const PictureFile read = ReadPictureFile(file);
    if (read.picture.isNull() && mNotifyChanges)
        MsgBox(NoFileFoundText(file), Vb::Information, mMenuTexts[ProductName]);
    return read.picture;
}

bool ctlPictureEditor::AddBackgroundImage(const QString& file) {
    endEditIfOn();
    const QImage picture = readChosenPicture(file);
    if (picture.isNull())
        return false;
    applyBackgroundPicture(picture);
    if (mDrawObjects)
        mDrawObjects->setBackPicture(file);
    changed();
    return true;
}

void ctlPictureEditor::BrowseAddBackground() {
    QString file;
    if (GetOpenFileName(this, file, mMenuTexts[DlgLoadPic], mMenuTexts[DlgLoadFilter],
                        QStringLiteral("gif")))
        AddBackgroundImage(file);
}

void ctlPictureEditor::SetBackgroundColor(std::int32_t colour, bool ask) {
    if (ask && !ChooseColor(this, colour, kColorDialogFlags))
        return;
    mBackPicture = mBackSource = QImage();
    applyBackgroundColor(fromVbColor(colour));
    if (mDrawObjects) {
        mDrawObjects->setBackPicture(QString());
        mDrawObjects->setBackColor(colour);
    }
    changed();
}

void ctlPictureEditor::SetDefaultBackgroundColor() {
    SetBackgroundColor(preference(QStringLiteral("preferences"), QStringLiteral("BackgroundColor"),
                                  QStringLiteral("16777215"))
                           .toInt(),
                       false);
}

QImage ctlPictureEditor::composeSurface() const {
    QImage surface(mPicture1->size(), QImage::Format_RGB32);
    surface.fill(mBackColor);
    QPainter painter(&surface);
    if (!mBackPicture.isNull())
        painter.drawImage(0, 0, mBackPicture);
    for (auto it = mStackOrder.rbegin(); it != mStackOrder.rend(); ++it) {
        if (!isLive(*it))
            continue;
        if (*it > 0)
            image(*it)->paintOn(painter);
        else
            label(-*it)->paintOn(painter);
    }
    return surface;
}

QImage ctlPictureEditor::RenderImage(const QSize& size, bool smooth) {
    HideNodes();
    const QImage rendered = StretchCopy(composeSurface(), size, smooth);
    SelectObject(mSelected);
    return rendered;
}

void ctlPictureEditor::RenderImage(QLabel* target, int smooth) {
    if (target)
        target->setPixmap(QPixmap::fromImage(RenderImage(target->size(), smooth > 0)));
}

// ---------------------------------------------------------------------------------------------
// Loading, saving and clearing

void ctlPictureEditor::ClearPicture() {
    endEditIfOn();
    HideNodes();
    mBackPicture = mBackSource = QImage();
    const bool notify = mNotifyChanges;
    mNotifyChanges = false; // one change for the whole clearing, below
    SetDefaultBackgroundColor();
    mNotifyChanges = notify;
    unloadAll();
    mSelected = nullptr;
    changed();
}

void ctlPictureEditor::LoadDrawObjects(clsDrawObjects* objects) {
    mNotifyChanges = false;
    mDrawObjects = objects;
    mPicture1->setUpdatesEnabled(false);
    endEditIfOn();
    HideNodes();
    unloadAll();
    mSelected = nullptr;
    if (objects) {
        const QString back = objects->BackPicture();
        bool pictured = false;
        if (!back.isEmpty())
            pictured = AddBackgroundImage(back);
        if (!pictured) {
            // A background file that has gone shows the slide's colour; the document keeps
            // the file's name.
            mBackPicture = mBackSource = QImage();
            applyBackgroundColor(fromVbColor(objects->BackColor()));
        }
        for (const auto& object : *objects) {
            clsDrawProperties p;
            try {
                p = object->GetAllPproperties();
            } catch (const Failure&) {
                continue; // an object with damaged numbers is left out
            }
            if (p.typ == QLatin1String("image")) {
                CanvasPicture* picture = AddPictureObject(QImage(), p.name, p.Data);
                picture->setGeometry(p.X, p.Y, p.w, p.h);
            } else {
                CanvasLabel* text = AddTextObject(p.Data);
                text->move(p.X, p.Y);
                text->setText({p.Data, p.fontName, p.fontSize, p.fontColor, p.fontBold,
                               p.fontItalic, p.fontUnderline, p.fontAlign});
            }
        }
        SelectObject(mSelected);
    }
    mPicture1->setUpdatesEnabled(true);
    mNotifyChanges = true;
}

void ctlPictureEditor::SaveDrawObjects(clsDrawObjects* objects) {
    endEditIfOn();
    if (!objects)
        return;
    objects->Clear();
    for (int position = static_cast<int>(mStackOrder.size()) - 1; position >= 0; --position) {
        const std::int16_t entry = mStackOrder[position];
        if (!isLive(entry))
            continue;
        const QWidget* object = objectOf(entry);
        clsDrawProperties p;
        p.name = object->toolTip();
        p.X = static_cast<std::int16_t>(object->x());
        p.Y = static_cast<std::int16_t>(object->y());
        p.w = static_cast<std::int16_t>(object->width());
        p.h = static_cast<std::int16_t>(object->height());
        p.zorder = static_cast<std::int16_t>(position);
        if (entry > 0) {
            p.typ = QStringLiteral("image");
            p.Data = object->property("tag").toString();
        } else {
            const TextAttributes& t = label(-entry)->text();
            p.typ = QStringLiteral("text");
            p.Data = t.caption;
            p.fontName = t.fontName;
            p.fontSize = static_cast<std::int16_t>(t.size);
            p.fontBold = t.bold;
            p.fontItalic = t.italic;
            p.fontUnderline = t.underline;
            p.fontColor = t.colour;
            p.fontAlign = static_cast<std::int16_t>(t.alignment);
        }
        objects->Add(p);
    }
}

// ---------------------------------------------------------------------------------------------
// Pictures and texts

QImage ctlPictureEditor::fallbackPicture() {
    // Stands in for a picture whose file has gone: a framed box with a cross.
    QImage picture(32, 32, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setPen(QPen(Qt::red, 2));
    painter.drawRect(1, 1, 30, 30);
    painter.drawLine(4, 4, 27, 27);
    painter.drawLine(27, 4, 4, 27);
    return picture;
}

CanvasPicture* ctlPictureEditor::AddPictureObject(const QImage& picture, const QString& name,
                                                  const QString& file) {
    endEditIfOn();
    const int index = takeSlot(true);
    CanvasPicture* object = mImages[index];
    growStackOrder();
    MoveToFront(static_cast<std::int16_t>(index));
    object->move(kNewObjectPlace, kNewObjectPlace);
    QImage shown = picture;
    if (shown.isNull())
        shown = ReadPictureFile(file).picture;
    if (shown.isNull())
        shown = fallbackPicture();
    object->setPicture(shown);
    const int cut = name.lastIndexOf(QLatin1Char('_'));
    const QString base = name.isEmpty() ? QStringLiteral("Image")
                         : cut >= 0     ? name.left(cut)
                                        : name;
    object->setToolTip(base + QLatin1Char('_') + QString::number(index));
    object->setProperty("tag", file);
    object->show();
    mSelected = object;
    SelectObject(object);
    return object;
}

bool ctlPictureEditor::AddImage(const QString& file, const QString& name) {
    const QImage picture = readChosenPicture(file);
    if (picture.isNull())
        return false;
    AddPictureObject(picture, name, file);
    changed();
    return true;
}

void ctlPictureEditor::BrowseAddPicture() {
    QString file;
    if (GetOpenFileName(this, file, mMenuTexts[DlgLoadPic], mMenuTexts[DlgLoadFilter],
                        QStringLiteral("gif")))
        AddImage(file, fileNameOf(file));
}

void ctlPictureEditor::DelPicture(int index) {
    removeObject(image(index), mImageCount);
}

// Hides a shown object for good (its slot waits for reuse) and counts it out of `count`.
void ctlPictureEditor::removeObject(QWidget* object, int& count) {
    if (!object || object->isHidden())
        return;
    endEditIfOn();
    object->hide();
    if (count > 0)
        --count;
    HideNodes();
    mSelected = nullptr;
    changed();
}

CanvasLabel* ctlPictureEditor::AddTextObject(const QString& caption) {
    endEditIfOn();
    const int index = takeSlot(false);
    CanvasLabel* object = mTexts[index];
    growStackOrder();
    MoveToFront(static_cast<std::int16_t>(-index));
    TextAttributes text = mDefaults;
    text.caption = caption.isEmpty() ? QStringLiteral("<Text%1>").arg(index) : caption;
    object->setText(text);
    object->move(kNewObjectPlace, kNewObjectPlace);
    object->setToolTip(QStringLiteral("Text ") + QString::number(index));
    object->show();
    mSelected = object;
    SelectObject(object);
    return object;
}

void ctlPictureEditor::AddText(const TextAttributes& text) {
    CanvasLabel* object = AddTextObject(text.caption);
    TextAttributes shown = text;
    shown.caption = object->text().caption;
    object->setText(shown);
    SelectObject(object);
    changed();
}

void ctlPictureEditor::ApplyText(const TextAttributes& text) {
    auto* object = qobject_cast<CanvasLabel*>(mSelected);
    if (!object)
        return;
    object->setText(text);
    mDefaults = text;
    mDefaults.caption.clear();
    if (!mTxtEdit->isHidden()) {
        placeTextEditor(object);
        mTxtEdit->setAlignment(Qt::Alignment(CanvasLabel::alignmentFlags(text.alignment)));
    }
    changed();
    SelectObject(object);
}

void ctlPictureEditor::ChangeText(const QString& caption) {
    auto* object = qobject_cast<CanvasLabel*>(mSelected);
    if (!object || !mTxtEdit->isHidden())
        return;
    object->setCaption(caption);
    SelectObject(object);
}

void ctlPictureEditor::DelText(int index) {
    removeObject(label(index), mTextCount);
}

void ctlPictureEditor::DuplicateImage() {
    auto* source = qobject_cast<CanvasPicture*>(mSelected);
    if (!source)
        return;
    const QString name = source->toolTip().section(QLatin1Char('_'), 0, 0);
    CanvasPicture* copy =
        AddPictureObject(source->picture(), name, source->property("tag").toString());
    copy->resize(source->size());
    SelectObject(copy);
    changed();
}

void ctlPictureEditor::DuplicateText() {
    auto* source = qobject_cast<CanvasLabel*>(mSelected);
    if (!source)
        return;
    CanvasLabel* copy = AddTextObject(source->text().caption);
    copy->setText(source->text());
    copy->resize(source->size());
    SelectObject(copy);
    changed();
}

// ---------------------------------------------------------------------------------------------
// Selection and handles

void ctlPictureEditor::SelectObject(QWidget* object) {
    if (!object || object->isHidden())
        return;
    const int w = mNodes[0]->width();
    const int h = mNodes[0]->height();
    const QRect r = object->geometry();
    const int columns[] = {r.left() - w, r.left() + r.width() / 2 - w / 2, r.left() + r.width()};
    const int rows[] = {r.top() - h, r.top() + r.height() / 2 - h / 2, r.top() + r.height()};
    // Column by column: 0 top-left, 1 middle-left, 2 bottom-left, 3 top-middle, ...
    const std::pair<int, int> places[kNodeCount] = {{0, 0}, {0, 1}, {0, 2}, {1, 0},
                                                    {1, 2}, {2, 0}, {2, 1}, {2, 2}};
    for (int i = 0; i < kNodeCount; ++i) {
        mNodes[i]->move(columns[places[i].first], rows[places[i].second]);
        mNodes[i]->show();
        mNodes[i]->raise();
    }
    mTxtEdit->raise();
    mOutlineLayer->raise();
}

// Renders are composed from the objects, not captured from the screen, so hiding the handles
// needs no pass of the event loop before a render: none is made, and no timer of the window
// can run in the middle of a store.
void ctlPictureEditor::HideNodes() {
    for (QLabel* node : mNodes)
        node->hide();
}

// ---------------------------------------------------------------------------------------------
// Rubber band, moving and resizing

void ctlPictureEditor::setOutline(const QRectF& outline) {
    mOutline = outline;
    mOutlineShown = true;
    static_cast<OutlineLayer*>(mOutlineLayer)->setBox(mOutline, true);
}

void ctlPictureEditor::clearOutline() {
    mOutlineShown = false;
    static_cast<OutlineLayer*>(mOutlineLayer)->setBox(mOutline, false);
}

void ctlPictureEditor::BeginMove(QWidget* object, const QPoint& grab) {
    mGrab = grab;
    const QRect r = object->geometry();
    setOutline(QRectF(r.x(), r.y(), r.width() - 1, r.height() - 1));
}

void ctlPictureEditor::ContinueMove(const QPoint& surfacePos) {
    if (!mSelected)
        return;
    const int width = mSelected->width();
    const int height = mSelected->height();
    double left = surfacePos.x() - mGrab.x();
    double top = surfacePos.y() - mGrab.y();
    // An object may go almost out of sight, but a corner always stays within reach.
    if (mPicture1->x() - width > left)
        left = -width;
    if (left > mPicture1->width())
        left = mPicture1->width() - 1;
    if (mPicture1->y() - height > top)
        top = -height;
    if (top > mPicture1->height())
        top = mPicture1->height() - 1;
    setOutline(QRectF(left, top, mOutline.width(), mOutline.height()));
}

void ctlPictureEditor::ContinueResize(const QPoint& surfacePos) {
    const double dx = surfacePos.x() - mGrab.x();
    const double dy = surfacePos.y() - mGrab.y();
    double left = mStart.left();
    double top = mStart.top();
    double width = mStart.width();
    double height = mStart.height();
    switch (mActiveNode) {
    case 0:
        left += dx, top += dy, width -= dx, height -= dy;
        break;
    case 1:
        left += dx, width -= dx;
        break;
    case 2:
        left += dx, width -= dx, height += dy;
        break;
    case 3:
        top += dy, height -= dy;
        break;
    case 4:
        height += dy;
        break;
    case 5:
        top += dy, width += dx, height -= dy;
        break;
    case 6:
        width += dx;
        break;
    case 7:
        width += dx, height += dy;
        break;
    default:
        return;
    }
    setOutline(QRectF(left, top, width, height));
}

// ---------------------------------------------------------------------------------------------
// Mouse

bool ctlPictureEditor::eventFilter(QObject* watched, QEvent* event) {
    if (watched == mPicColorPicker && event->type() == QEvent::MouseButtonRelease) {
        picColorPicker_MouseUp(static_cast<QMouseEvent*>(event)->position().toPoint());
        return true;
    }
    if (watched != mPicture1)
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        surfaceMousePress(static_cast<QMouseEvent*>(event));
        return true;
    case QEvent::MouseMove:
        surfaceMouseMove(static_cast<QMouseEvent*>(event));
        return true;
    case QEvent::MouseButtonRelease:
        surfaceMouseRelease(static_cast<QMouseEvent*>(event));
        return true;
    case QEvent::MouseButtonDblClick:
        surfaceDoubleClick(static_cast<QMouseEvent*>(event));
        return true;
    case QEvent::KeyPress:
        return surfaceKeyPress(static_cast<QKeyEvent*>(event));
    case QEvent::KeyRelease:
        return surfaceKeyRelease(static_cast<QKeyEvent*>(event));
    default:
        return QWidget::eventFilter(watched, event);
    }
}

void ctlPictureEditor::surfaceMousePress(QMouseEvent* event) {
    if (mEditing)
        return;
    const QPoint pos = event->position().toPoint();
    const Qt::MouseButton button = event->button();
    mPicture1->setFocus(Qt::MouseFocusReason);
    const int node = button == Qt::LeftButton ? handleAt(pos) : -1;
    if (node >= 0 && mSelected) {
        mActiveNode = node;
        mPressed = nullptr;
        HideNodes();
        const QRect r = mSelected->geometry();
        mStart = QRectF(r);
        mGrab = pos;
        setOutline(QRectF(r.x(), r.y(), r.width() - 1, r.height() - 1));
        return;
    }
    mPressed = objectAt(pos);
    if (!mPressed || (button != Qt::LeftButton && button != Qt::RightButton))
        return;
    SelectObject(mPressed);
    mSelected = mPressed;
    if (button == Qt::LeftButton && !mMoving) {
        BeginMove(mPressed, pos - mPressed->pos());
        mMoving = true;
    }
}

void ctlPictureEditor::surfaceMouseMove(QMouseEvent* event) {
    if (mEditing)
        return;
    const QPoint pos = event->position().toPoint();
    if (mActiveNode >= 0 && mActiveNode < kNodeCount)
        ContinueResize(pos);
    else if (mMoving && (event->buttons() & Qt::LeftButton))
        ContinueMove(pos);
}

void ctlPictureEditor::surfaceMouseRelease(QMouseEvent* event) {
    const Qt::MouseButton button = event->button();
    if (mEditing) {
        if (mEditJustBegun)
            mEditJustBegun = false;
        else if (button == Qt::LeftButton)
            EndTextEdit();
        return;
    }
    if (mActiveNode >= 0) {
        mActiveNode = -1;
        clearOutline();
        if (mSelected) {
            mSelected->move(qRound(mOutline.left()), qRound(mOutline.top()));
            const int width = qRound(mOutline.width());
            const int height = qRound(mOutline.height());
            if (width > 0)
                mSelected->resize(width, mSelected->height());
            if (height > 0)
                mSelected->resize(mSelected->width(), height);
            changed();
            SelectObject(mSelected);
        }
        return;
    }
    if (mPressed) {
        QWidget* object = mPressed;
        if (button == Qt::LeftButton && mMoving) {
            mMoving = false;
            clearOutline();
            object->move(qRound(mOutline.left()), qRound(mOutline.top()));
            changed();
            SelectObject(object);
        } else if (button == Qt::RightButton) {
            mRightClickDone = true;
            if (qobject_cast<CanvasPicture*>(object))
                ShowImageMenu();
            else
                ShowTextMenu();
            return;
        }
        if (button == Qt::LeftButton)
            objectClick(object);
        return;
    }
    if (button == Qt::RightButton) {
        mRightClickDone = true;
        ShowCanvasMenu();
    } else if (button == Qt::LeftButton) {
        if (mRightClickDone) {
            mRightClickDone = false;
            return;
        }
        HideNodes();
        mSelected = nullptr;
        emit NothingSelected();
    }
}

void ctlPictureEditor::objectClick(QWidget* object) {
    if (auto* text = qobject_cast<CanvasLabel*>(object)) {
        emit TextSelected(text->text());
        return;
    }
    if (mRightClickDone) {
        mRightClickDone = false;
        return;
    }
    emit ImageSelected(slotIndex(object), object->toolTip());
}

void ctlPictureEditor::surfaceDoubleClick(QMouseEvent* event) {
    if (mEditing || event->button() != Qt::LeftButton)
        return;
    if (qobject_cast<CanvasLabel*>(objectAt(event->position().toPoint()))) {
        mSelected = objectAt(event->position().toPoint());
        BeginTextEdit();
        mEditJustBegun = mEditing;
    }
}

// ---------------------------------------------------------------------------------------------
// Keys

bool ctlPictureEditor::surfaceKeyPress(QKeyEvent* event) {
    if (mEditing || !mSelected)
        return false;
    QPoint step;
    switch (event->key()) {
    case Qt::Key_Left:
        step = {-1, 0};
        break;
    case Qt::Key_Right:
        step = {1, 0};
        break;
    case Qt::Key_Up:
        step = {0, -1};
        break;
    case Qt::Key_Down:
        step = {0, 1};
        break;
    default:
        return false;
    }
    if (!mNodes[0]->isHidden())
        HideNodes();
    mSelected->move(mSelected->pos() + step);
    // A run of key presses gives one change, after the last.
    mTimerAutoUpdate->stop();
    mTimerAutoUpdate->start();
    return true;
}

bool ctlPictureEditor::surfaceKeyRelease(QKeyEvent* event) {
    if (mEditing)
        return false;
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
        SelectObject(mSelected);
        return true;
    case Qt::Key_Delete:
        if (qobject_cast<CanvasPicture*>(mSelected))
            DelPicture(slotIndex(mSelected));
        else if (qobject_cast<CanvasLabel*>(mSelected))
            DelText(slotIndex(mSelected));
        return true;
    case Qt::Key_D:
        if (!(event->modifiers() & Qt::ControlModifier))
            return false;
        if (qobject_cast<CanvasPicture*>(mSelected))
            DuplicateImage();
        else if (qobject_cast<CanvasLabel*>(mSelected))
            DuplicateText();
        return true;
    default:
        return false;
    }
}

void ctlPictureEditor::TimerAutoUpdate_Timer() {
    changed();
    mTimerAutoUpdate->stop();
}

// ---------------------------------------------------------------------------------------------
// In-place text editing

void ctlPictureEditor::placeTextEditor(const CanvasLabel* label) {
    mTxtEdit->setGeometry(label->x() - 3, label->y() - 2, label->width() + 6, label->height() + 4);
}

void ctlPictureEditor::BeginTextEdit() {
    auto* object = qobject_cast<CanvasLabel*>(mSelected);
    if (!object)
        return;
    HideNodes();
    placeTextEditor(object);
    mTxtEdit->setFont(CanvasLabel::slideFont(object->text()));
    mTxtEdit->setPlainText(object->text().caption);
    mTxtEdit->selectAll();
    mTxtEdit->setAlignment(Qt::Alignment(CanvasLabel::alignmentFlags(object->text().alignment)));
    mTxtEdit->show();
    mTxtEdit->raise();
    mTxtEdit->setFocus();
    mEditing = true;
}

void ctlPictureEditor::EndTextEdit() {
    mTxtEdit->hide();
    auto* object = qobject_cast<CanvasLabel*>(mSelected);
    if (object) {
        const QString caption = mTxtEdit->toPlainText();
        const bool differs = caption != object->text().caption;
        object->setCaption(caption);
        SelectObject(object);
        if (differs)
            changed();
    }
    mEditing = false;
    if (mPendingNewText && object) {
        mPendingNewText = false;
        emit TextSelected(object->text());
    }
    SelectObject(object);
    mPicture1->setFocus();
}

void ctlPictureEditor::endEditIfOn() {
    if (mEditing)
        EndTextEdit();
}

// ---------------------------------------------------------------------------------------------
// Colour picker

void ctlPictureEditor::EnabledColorPicker() {
    mPicColorPicker->setGeometry(mPicture1->geometry());
    mPickerImage = StretchCopy(composeSurface(), mPicColorPicker->size(), true);
    mPicColorPicker->setPixmap(QPixmap::fromImage(mPickerImage));
    mPicColorPicker->show();
    mPicColorPicker->raise();
}

void ctlPictureEditor::picColorPicker_MouseUp(const QPoint& pos) {
    const bool inside = mPickerImage.rect().contains(pos);
    const QColor colour = inside ? mPickerImage.pixelColor(pos) : QColor();
    mPicColorPicker->hide();
    SelectObject(mSelected);
    if (inside)
        emit ColorPicked(toVbColor(colour));
}

// ---------------------------------------------------------------------------------------------
// Pop-up menus

int ctlPictureEditor::ShowMenu(const QStringList& captions) {
    const QString menu = captions[0] + QStringLiteral(";1,") + captions[1] +
                         QStringLiteral(";2,-,") + captions[2] + QStringLiteral(";3,") +
                         captions[3] + QStringLiteral(";4");
    clsPopupMenu popup;
    return popup.PopupString(menu);
}

// The menu of a picture or of a text: duplicating and deleting are the kind's own.
void ctlPictureEditor::ShowObjectMenu(void (ctlPictureEditor::*duplicate)(),
                                      void (ctlPictureEditor::*remove)(int)) {
    QWidget* object = mSelected;
    switch (ShowMenu({mMenuTexts[Duplicate], mMenuTexts[Delete], mMenuTexts[BringToFrontCaption],
                      mMenuTexts[SendToBackCaption]})) {
    case 1:
        (this->*duplicate)();
        break;
    case 2:
        (this->*remove)(slotIndex(object));
        break;
    case 3:
        BringToFront(object);
        break;
    case 4:
        SendToBack(object);
        break;
    default:
        break;
    }
}

void ctlPictureEditor::ShowImageMenu() {
    ShowObjectMenu(&ctlPictureEditor::DuplicateImage, &ctlPictureEditor::DelPicture);
}

void ctlPictureEditor::ShowTextMenu() {
    ShowObjectMenu(&ctlPictureEditor::DuplicateText, &ctlPictureEditor::DelText);
}

void ctlPictureEditor::ShowCanvasMenu() {
    switch (ShowMenu({mMenuTexts[AddTextCaption], mMenuTexts[PictureFileCaption],
                      mMenuTexts[PictureBackground], mMenuTexts[BackgroundColor]})) {
    case 1: {
        // A new text starts in place for typing; the panel hears of it when typing ends.
        TextAttributes text = mDefaults;
        text.caption = mMenuTexts[TextNew];
        AddText(text);
        mPendingNewText = true;
        BeginTextEdit();
        break;
    }
    case 2:
        BrowseAddPicture();
        break;
    case 3:
        BrowseAddBackground();
        break;
    case 4:
        SetBackgroundColor(toVbColor(mBackColor), true);
        break;
    default:
        break;
    }
}
