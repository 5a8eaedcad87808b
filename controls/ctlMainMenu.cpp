#include "controls/ctlMainMenu.h"

#include "config/clsXMLocalizer.h"
#include "controls/modSkin.h"
#include "controls/modTranslate.h"
#include "platform/modText.h"

#include <QApplication>
#include <QCursor>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QTimer>

namespace {

// The language key of each item's caption.
struct MenuCaption {
    std::int32_t key;
    const char* languageKey;
};
constexpr MenuCaption kCaptions[] = {
    {MenuKey::FileNew, "MNU_FILE_NEW"},
    {MenuKey::FileOpen, "MNU_FILE_OPEN"},
    {MenuKey::FileSave, "MNU_FILE_SAVE"},
    {MenuKey::FileSaveAs, "MNU_FILE_SAVEAS"},
    {MenuKey::FileDelete, "MNU_FILE_DELETE"},
    {MenuKey::FileSettings, "MNU_FILE_SETTINGS"},
    {MenuKey::FileSaveAsTemplate, "MNU_FILE_SAVEAS_TPL"},
    {MenuKey::FileSaveAsSis, "MNU_FILE_SAVEAS_SIS"},
    {MenuKey::FileOpenTemplate, "MNU_FILE_OPEN_TPL"},
    {MenuKey::FileExit, "MNU_FILE_EXIT"},
    {MenuKey::SlideAdd, "MNU_SLIDE_ADD"},
    {MenuKey::SlideInsert, "MNU_SLIDE_INSERT"},
    {MenuKey::SlideInsertBefore, "MNU_SLIDE_BEFORE"},
    {MenuKey::SlideInsertAfter, "MNU_SLIDE_AFTER"},
    {MenuKey::SlideDuplicate, "MNU_SLIDE_DUPLICATE"},
    {MenuKey::SlideDuplicateBefore, "MNU_SLIDE_BEFORE"},
    {MenuKey::SlideDuplicateAfter, "MNU_SLIDE_AFTER"},
    {MenuKey::SlideDelete, "MNU_SLIDE_DELETE"},
    {MenuKey::SlideDeleteSlide, "MNU_SLIDE_DELETE_SLIDE"},
    {MenuKey::SlideDeleteImage, "MNU_SLIDE_DELETE_IMAGE"},
    {MenuKey::SlideDeleteSound, "MNU_SLIDE_DELETE_SOUND"},
    {MenuKey::SlideDeleteText, "MNU_SLIDE_DELETE_TEXT"},
    {MenuKey::SlideBackground, "MNU_SLIDE_BACKGROUND"},
    {MenuKey::SlidePreview, "MNU_SLIDE_PREVIEW"},
    {MenuKey::SlideDownloadPicture, "MNU_SLIDE_DOWNLOAD_PICTURE"},
    {MenuKey::HelpAbout, "MNU_HELP_ABOUT"},
};

const char* const kMenuKeys[ctlMainMenu::kMenuCount] = {"MNU_FILE", "MNU_SLIDE", "MNU_HELP"};
const char* const kMenuDefaults[ctlMainMenu::kMenuCount] = {"File", "Slide", "Help"};

constexpr int kLabelGap = 8;

// The text of `key` from the localiser, or from the program's text look-up without one.
QString textOf(const clsXMLocalizer* localizer, const QString& key) {
    return localizer ? localizer->GetString(key) : localText(key);
}

} // namespace

QString menuCaptionKey(std::int32_t key) {
    for (const MenuCaption& caption : kCaptions)
        if (caption.key == key)
            return QString::fromLatin1(caption.languageKey);
    return {};
}

ctlMainMenu::ctlMainMenu(QWidget* parent) : QWidget(parent), mPopup(new clsPopupMenu) {
    setObjectName(QStringLiteral("ctlMainMenu"));
    resize(208, 20);
    for (int i = 0; i < kMenuCount; ++i) {
        auto* label = new QLabel(QString::fromLatin1(kMenuDefaults[i]), this);
        label->setObjectName(QStringLiteral("lblMenu"));
        label->setProperty("index", i);
        label->setMouseTracking(true);
        label->setCursor(Qt::PointingHandCursor);
        label->installEventFilter(this);
        QFont bold = label->font();
        bold.setBold(true);
        label->setFont(bold);
        mLabels[i] = label;
        setLabelColor(label, mNormalColor);
    }
    mTimer1 = new QTimer(this);
    mTimer1->setObjectName(QStringLiteral("Timer1"));
    mTimer1->setInterval(50);
    connect(mTimer1, &QTimer::timeout, this, &ctlMainMenu::timer1Tick);
    for (const MenuCaption& caption : kCaptions)
        mCaptions[caption.key] = localText(QString::fromLatin1(caption.languageKey));
    placeLabels();
    rebuildStrings();
}

ctlMainMenu::~ctlMainMenu() {
    delete mPopup;
}

void ctlMainMenu::TranslateControl(clsXMLocalizer* localizer) {
    if (localizer)
        ChangeCharSetUsrCtrl(*localizer, {mLabels.begin(), mLabels.end()});
    for (int i = 0; i < kMenuCount; ++i) {
        mLabels[i]->setText(textOf(localizer, QString::fromLatin1(kMenuKeys[i])));
        mLabels[i]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    for (const MenuCaption& caption : kCaptions)
        mCaptions[caption.key] = textOf(localizer, QString::fromLatin1(caption.languageKey));
    placeLabels();
    rebuildStrings();
}

void ctlMainMenu::SetBackground(QWidget* form, QWidget* control) {
    if (!form || !control)
        return;
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, formBackColor(form));
    setPalette(palette);
    mBackground = backgroundPiece(form, control);
    update();
}

void ctlMainMenu::setMenusEnabled(bool enabled) {
    mEnabled = enabled;
    for (QLabel* label : mLabels)
        label->setEnabled(enabled);
}

void ctlMainMenu::EnableTemplates(bool enabled) {
    mTemplates = enabled;
}

void ctlMainMenu::MenuEnabled(int menu, bool enabled) {
    if (menu < 0 || menu >= kMenuCount)
        return;
    mLabels[menu]->setEnabled(enabled);
}

void ctlMainMenu::MenuItemEnabled(std::int32_t key, bool enabled) {
    if (key < 0 || key >= kItemCount)
        return;
    mMarks[key] = enabled ? QString() : QStringLiteral("!");
    rebuildStrings();
}

QString ctlMainMenu::MenuString(int menu) const {
    return menu >= 0 && menu < kMenuCount ? mStrings[menu] : QString();
}

QLabel* ctlMainMenu::MenuLabel(int menu) const {
    return menu >= 0 && menu < kMenuCount ? mLabels[menu] : nullptr;
}

void ctlMainMenu::setNormalColor(const QColor& colour) {
    mNormalColor = colour;
    for (QLabel* label : mLabels)
        setLabelColor(label, colour);
}

void ctlMainMenu::setHotColor(const QColor& colour) {
    mHotColor = colour;
}

void ctlMainMenu::rebuildStrings() {
    using namespace MenuKey;
    auto item = [this](std::int32_t key) {
        return mCaptions[key] + QLatin1Char(';') + QString::number(key);
    };
    // Only the items of the Delete sub-menu show their mark.
    auto marked = [this, &item](std::int32_t key) { return mMarks[key] + item(key); };
    const QString separator = QStringLiteral("-");
    QStringList file{item(FileNew),  item(FileOpen),   separator,
                     item(FileSave), item(FileSaveAs), separator};
    if (mTemplates)
        file << item(FileOpenTemplate) << item(FileSaveAsTemplate) << item(FileSaveAsSis)
             << separator;
    file << item(FileDelete) << separator << item(FileSettings) << separator << item(FileExit);
    mStrings[0] = file.join(QLatin1Char(','));

    auto subMenu = [this](std::int32_t title, const QStringList& items) {
        return (QStringList{mCaptions[title] + QStringLiteral(";0")} + items)
            .join(QLatin1Char('|'));
    };
    QStringList slide;
    slide << item(SlideAdd);
    slide << subMenu(SlideInsert, {item(SlideInsertBefore), item(SlideInsertAfter)});
    slide << subMenu(SlideDuplicate, {item(SlideDuplicateBefore), item(SlideDuplicateAfter)});
    slide << subMenu(SlideDelete, {marked(SlideDeleteSlide), separator, marked(SlideDeleteImage),
                                   marked(SlideDeleteSound), marked(SlideDeleteText)});
    slide << separator << item(SlideBackground) << separator << item(SlidePreview)
          << item(SlideDownloadPicture);
    mStrings[1] = slide.join(QLatin1Char(','));

    mStrings[2] = item(HelpAbout);
}

void ctlMainMenu::placeLabels() {
    int right = width();
    for (int i = kMenuCount - 1; i >= 0; --i) {
        QLabel* label = mLabels[i];
        label->adjustSize();
        label->resize(label->width(), height());
        label->move(right - label->width(), 0);
        right = label->x() - kLabelGap;
    }
}

void ctlMainMenu::setLabelColor(QLabel* label, const QColor& colour) {
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, colour);
    label->setPalette(palette);
}

void ctlMainMenu::trackHot(QLabel* hot) {
    for (QLabel* label : mLabels)
        setLabelColor(label, label == hot ? mHotColor : mNormalColor);
    mTimer1->start();
}

void ctlMainMenu::timer1Tick() {
    const QWidget* under = QApplication::widgetAt(QCursor::pos());
    if (under && (under == this || isAncestorOf(under)))
        return;
    for (QLabel* label : mLabels)
        setLabelColor(label, mNormalColor);
    mTimer1->stop();
}

void ctlMainMenu::ClickMenu(int menu) {
    if (menu < 0 || menu >= kMenuCount || !mLabels[menu]->isEnabled())
        return;
    const QString text = mStrings[menu];
    std::int32_t key = 0;
    if (text.startsWith(QLatin1Char('$'))) {
        key = text.mid(1).trimmed().toInt();
    } else {
        const QPoint corner = mLabels[menu]->mapToGlobal(QPoint(0, mLabels[menu]->height()));
        // The pop-up runs its own event loop, in which the bar may be deleted.
        const QPointer<ctlMainMenu> alive(this);
        key = mPopup->PopupStringXY(text, corner.x(), corner.y());
        if (!alive)
            return;
    }
    if (key > 0)
        emit MenuClick(key);
}

bool ctlMainMenu::eventFilter(QObject* watched, QEvent* event) {
    auto* label = qobject_cast<QLabel*>(watched);
    if (label && std::find(mLabels.begin(), mLabels.end(), label) != mLabels.end()) {
        if (event->type() == QEvent::MouseMove || event->type() == QEvent::Enter) {
            trackHot(label);
        } else if (event->type() == QEvent::MouseButtonRelease) {
            auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->button() == Qt::LeftButton &&
                label->rect().contains(mouse->position().toPoint()))
                ClickMenu(label->property("index").toInt());
            return true;
        } else if (event->type() == QEvent::MouseButtonPress) {
            return true; // the label takes the press so that the release comes to it
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ctlMainMenu::mousePressEvent(QMouseEvent* event) {
    int button = 0;
    if (event->button() == Qt::LeftButton)
        button = 1;
    else if (event->button() == Qt::RightButton)
        button = 2;
    else if (event->button() == Qt::MiddleButton)
        button = 4;
    int shift = 0;
    if (event->modifiers() & Qt::ShiftModifier)
        shift |= 1;
    if (event->modifiers() & Qt::ControlModifier)
        shift |= 2;
    if (event->modifiers() & Qt::AltModifier)
        shift |= 4;
    const QPointF at = event->position();
    emit MenuMouseDown(button, shift, float(at.x()), float(at.y()));
}

void ctlMainMenu::paintEvent(QPaintEvent*) {
    if (mBackground.isNull())
        return;
    QPainter painter(this);
    painter.drawPixmap(0, 0, mBackground);
}

void ctlMainMenu::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeLabels();
}
