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

// The language key of each item caption, by key; empty where no item has that key.
const char* const kCaptionKeys[ctlMainMenu::kItemCount] = {
    "",                           // 0
    "MNU_FILE_NEW",               // 1
    "MNU_FILE_OPEN",              // 2
    "MNU_FILE_SAVE",              // 3
    "MNU_FILE_SAVEAS",            // 4
    "MNU_FILE_DELETE",            // 5
    "MNU_FILE_SETTINGS",          // 6
    "MNU_FILE_SAVEAS_TPL",        // 7
    "MNU_FILE_SAVEAS_SIS",        // 8
    "MNU_FILE_OPEN_TPL",          // 9
    "MNU_FILE_EXIT",              // 10
    "MNU_SLIDE_ADD",              // 11
    "MNU_SLIDE_INSERT",           // 12: title of a sub-menu
    "MNU_SLIDE_BEFORE",           // 13
    "MNU_SLIDE_AFTER",            // 14
    "MNU_SLIDE_DUPLICATE",        // 15: title of a sub-menu
    "MNU_SLIDE_BEFORE",           // 16
    "MNU_SLIDE_AFTER",            // 17
    "MNU_SLIDE_DELETE",           // 18: title of a sub-menu
    "MNU_SLIDE_DELETE_SLIDE",     // 19
    "MNU_SLIDE_DELETE_IMAGE",     // 20
    "MNU_SLIDE_DELETE_SOUND",     // 21
    "MNU_SLIDE_DELETE_TEXT",      // 22
    "MNU_SLIDE_BACKGROUND",       // 23
    "MNU_SLIDE_PREVIEW",          // 24
    "MNU_SLIDE_DOWNLOAD_PICTURE", // 25
    "",                           // 26
    "MNU_HELP_ABOUT",             // 27
};

const char* const kMenuKeys[ctlMainMenu::kMenuCount] = {"MNU_FILE", "MNU_SLIDE", "MNU_HELP"};
const char* const kMenuDefaults[ctlMainMenu::kMenuCount] = {"File", "Slide", "Help"};

constexpr int kLabelGap = 8;

// The text of `key` from the localiser, or from the program's text look-up without one.
QString textOf(const clsXMLocalizer* localizer, const char* key) {
    const QString name = QString::fromLatin1(key);
    return localizer ? localizer->GetString(name) : localText(name);
}

} // namespace

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
    for (int key = 0; key < kItemCount; ++key)
        if (*kCaptionKeys[key])
            mCaptions[key] = localText(QString::fromLatin1(kCaptionKeys[key]));
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
        mLabels[i]->setText(textOf(localizer, kMenuKeys[i]));
        mLabels[i]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    for (int key = 0; key < kItemCount; ++key)
        if (*kCaptionKeys[key])
            mCaptions[key] = textOf(localizer, kCaptionKeys[key]);
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
    auto item = [this](int key) {
        return mCaptions[key] + QLatin1Char(';') + QString::number(key);
    };
    auto marked = [this](int key) {
        return mMarks[key] + mCaptions[key] + QLatin1Char(';') + QString::number(key);
    };
    QStringList file{item(1), item(2), QStringLiteral("-"), item(3), item(4), QStringLiteral("-")};
    if (mTemplates)
        file << item(9) << item(7) << item(8) << QStringLiteral("-");
    file << item(5) << QStringLiteral("-") << item(6) << QStringLiteral("-") << item(10);
    mStrings[0] = file.join(QLatin1Char(','));

    const QString title = QStringLiteral("%1;0");
    QStringList slide;
    slide << item(11);
    slide << QStringList{title.arg(mCaptions[12]), item(13), item(14)}.join(QLatin1Char('|'));
    slide << QStringList{title.arg(mCaptions[15]), item(16), item(17)}.join(QLatin1Char('|'));
    slide << QStringList{title.arg(mCaptions[18]),
                         marked(19),
                         QStringLiteral("-"),
                         marked(20),
                         marked(21),
                         marked(22)}
                 .join(QLatin1Char('|'));
    slide << QStringLiteral("-") << item(23) << QStringLiteral("-") << item(24) << item(25);
    mStrings[1] = slide.join(QLatin1Char(','));

    mStrings[2] = item(27);
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
