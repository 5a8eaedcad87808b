#include "controls/ctlVerticalTab.h"

#include "config/clsXMLocalizer.h"
#include "controls/modSkin.h"
#include "controls/modTranslate.h"
#include "platform/modText.h"

#include <QLabel>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace {

const char* const kTooltipKeys[ctlVerticalTab::kTabCount] = {
    "STR_BACKGROUND_TITLE", "STR_TEXT_TITLE", "STR_AUDIO_TITLE", "STR_SYMBOLS_TITLE",
    "STR_AUDIO_REC_TITLE"};

constexpr int kIconSize = 24;
constexpr int kTabHeight = 42;

// The raised face of the selected tab, drawn when the skin's picture is missing: the page colour
// with a rounded outer edge and an amber marker.
QPixmap drawnTabFace() {
    QPixmap picture(ctlVerticalTab::kTabWidth, kTabHeight);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(QRectF(0.5, 0.5, ctlVerticalTab::kTabWidth + 8, kTabHeight - 1), 7, 7);
    painter.fillPath(path, QColor(0xef, 0xf2, 0xf8));
    painter.setPen(QColor(0xb4, 0xbe, 0xd2));
    painter.drawPath(path);
    painter.fillRect(QRectF(0, 8, 3, kTabHeight - 16), QColor(0xfd, 0xbe, 0x51));
    return picture;
}

// Simple icons drawn when the skin's icon strip is missing.
QPixmap drawnIcon(int index) {
    QPixmap picture(kIconSize, kIconSize);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x3a, 0x44, 0x5c), 2));
    switch (index) {
    case 0:
        painter.drawRect(4, 5, 16, 14);
        break;
    case 1:
        painter.drawText(picture.rect(), Qt::AlignCenter, QStringLiteral("T"));
        break;
    case 2:
        painter.drawEllipse(6, 12, 6, 6);
        painter.drawLine(12, 15, 12, 4);
        break;
    case 3:
        painter.drawEllipse(5, 5, 14, 14);
        break;
    default:
        painter.setBrush(QColor(0xd0, 0x3a, 0x3a));
        painter.drawEllipse(6, 6, 12, 12);
        break;
    }
    return picture;
}

} // namespace

ctlVerticalTab::ctlVerticalTab(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("ctlVerticalTab"));
    resize(sizeHint());
    QPixmap face = resourcePicture(QStringLiteral("tab.png"));
    if (face.isNull())
        face = drawnTabFace();
    const QList<QPixmap> icons = resourceStrip(QStringLiteral("tab_icons.png"), kTabCount);
    for (int i = 0; i < kTabCount; ++i) {
        const int top = kTop + i * kTabPitch;
        auto* tab = new QLabel(this);
        tab->setObjectName(QStringLiteral("ImgTab"));
        tab->setProperty("index", i);
        tab->setPixmap(face);
        tab->setGeometry(0, top + (kTabPitch - kTabHeight) / 2, kTabWidth, kTabHeight);
        tab->hide();
        mImgTab << tab;

        auto* icon = new QLabel(this);
        icon->setObjectName(QStringLiteral("ImgIcon"));
        icon->setProperty("index", i);
        icon->setPixmap(icons.isEmpty() ? drawnIcon(i) : icons[i]);
        icon->setGeometry((kTabWidth - kIconSize) / 2 + 1, top + (kTabPitch - kIconSize) / 2,
                          kIconSize, kIconSize);
        mImgIcon << icon;
    }
    for (int i = 0; i < kTabCount; ++i) {
        auto* click = new QLabel(this);
        click->setObjectName(QStringLiteral("ImgClick"));
        click->setProperty("index", i);
        click->setGeometry(0, kTop + i * kTabPitch, kTabWidth, kTabPitch);
        click->setCursor(Qt::PointingHandCursor);
        click->installEventFilter(this);
        mImgClick << click;
    }
    TranslateControl(nullptr);
}

QSize ctlVerticalTab::sizeHint() const {
    return {kTabWidth, 2 * kTop + kTabCount * kTabPitch};
}

void ctlVerticalTab::SetTab(int index) {
    if (index < 0 || index >= kTabCount)
        return;
    ImgClick_Click(index);
}

void ctlVerticalTab::TranslateControl(clsXMLocalizer* localizer) {
    if (localizer) {
        QList<QWidget*> children;
        for (QWidget* child : findChildren<QWidget*>())
            children << child;
        ChangeCharSetUsrCtrl(*localizer, children);
    }
    for (int i = 0; i < kTabCount; ++i) {
        const QString key = QString::fromLatin1(kTooltipKeys[i]);
        const QString tip = localizer ? localizer->GetString(key) : localText(key);
        mImgTab[i]->setToolTip(tip);
        mImgIcon[i]->setToolTip(tip);
        mImgClick[i]->setToolTip(tip);
    }
}

void ctlVerticalTab::SetBackground(QWidget* form, QWidget* control) {
    if (!form || !control)
        return;
    mBackground = backgroundPiece(form, control);
    update();
}

void ctlVerticalTab::ImgClick_Click(int index) {
    for (QLabel* tab : mImgTab)
        tab->hide();
    mImgTab[index]->show();
    mImgTab[index]->lower();
    if (mSelected >= 0)
        mImgIcon[mSelected]->move(mImgIcon[mSelected]->pos() + QPoint(-2, 2));
    mImgIcon[index]->move(mImgIcon[index]->pos() + QPoint(2, -2));
    mSelected = index;
    emit TabClick(index);
}

bool ctlVerticalTab::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease) {
        auto* label = qobject_cast<QLabel*>(watched);
        auto* mouse = static_cast<QMouseEvent*>(event);
        if (label && mImgClick.contains(label) && mouse->button() == Qt::LeftButton &&
            label->rect().contains(mouse->position().toPoint())) {
            ImgClick_Click(label->property("index").toInt());
            return true;
        }
    } else if (event->type() == QEvent::MouseButtonPress && mImgClick.contains(watched)) {
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void ctlVerticalTab::paintEvent(QPaintEvent*) {
    if (mBackground.isNull())
        return;
    QPainter painter(this);
    painter.drawPixmap(0, 0, mBackground);
}
