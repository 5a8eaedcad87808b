#include "browse/frmMessageList.h"
#include "controls/modTranslate.h"
#include "ui_frmMessageList.h"

#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "document/modDocument.h"
#include "platform/modDialogs.h"
#include "platform/modShared.h"
#include "platform/modText.h"
#include "store/clsMMSManager.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <algorithm>

namespace {
const char* const kTabStopsProperty = "tabStops";

// Draws an entry's tab-separated fields at the list's tab stops.
class TabStopDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem item = option;
        initStyleOption(&item, index);
        const QStringList fields = item.text.split(QLatin1Char('\t'));
        item.text.clear();
        const QWidget* view = option.widget;
        QStyle* style = view ? view->style() : QApplication::style();
        style->drawControl(QStyle::CE_ItemViewItem, &item, painter, view);

        const QList<int> stops = tabStops(view, option.fontMetrics);
        const QRect text = style->subElementRect(QStyle::SE_ItemViewItemText, &item, view);
        painter->save();
        painter->setFont(item.font);
        const bool selected = option.state & QStyle::State_Selected;
        painter->setPen(item.palette.color(QPalette::Normal,
                                           selected ? QPalette::HighlightedText : QPalette::Text));
        int x = text.left();
        for (int i = 0; i < fields.size(); ++i) {
            if (i > 0) {
                // The next stop right of the text so far, or one average character on.
                int next = x + option.fontMetrics.averageCharWidth();
                for (int stop : stops)
                    if (text.left() + stop > x) {
                        next = std::max(next, text.left() + stop);
                        break;
                    }
                x = next;
            }
            QRect cell(x, text.top(), text.right() - x, text.height());
            if (i + 1 < fields.size() && i + 1 <= stops.size() - 1)
                cell.setRight(text.left() + stops[i + 1] - 6);
            const QString shown =
                option.fontMetrics.elidedText(fields[i], Qt::ElideRight, cell.width());
            painter->drawText(cell, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, shown);
            x += option.fontMetrics.horizontalAdvance(shown);
        }
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setHeight(std::max(size.height(), option.fontMetrics.height()) + 6);
        return size;
    }

    static QList<int> tabStops(const QWidget* view, const QFontMetrics& metrics) {
        QList<int> stops;
        if (!view)
            return stops;
        const QVariantList units = view->property(kTabStopsProperty).toList();
        for (const QVariant& unit : units)
            stops << unit.toInt() * metrics.averageCharWidth() / 4;
        return stops;
    }
};

// `text` without the characters a name may not hold; the first one taken goes to `refused`.
QString withoutIllegal(const QString& text, QString& refused) {
    QString kept;
    kept.reserve(text.size());
    for (const QChar c : text) {
        if (frmMessageList::illegalCharacters().contains(c)) {
            if (refused.isEmpty())
                refused = c;
        } else {
            kept += c;
        }
    }
    return kept;
}

// Trims blanks only, as the name box always has.
QString trimBlanks(const QString& text) {
    qsizetype from = 0;
    qsizetype to = text.size();
    while (from < to && text.at(from) == QLatin1Char(' '))
        ++from;
    while (to > from && text.at(to - 1) == QLatin1Char(' '))
        --to;
    return text.mid(from, to - from);
}
} // namespace

const QString& frmMessageList::illegalCharacters() {
    return illegalNameCharacters();
}

frmMessageList::frmMessageList(clsMMSManager* manager, QWidget* parent)
    : QDialog(parent), mUi(std::make_unique<Ui::frmMessageList>()), mManager(manager) {
    mUi->setupUi(this);
    setFixedSize(size());
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);
    lblTitle = mUi->lblTitle;
    lstMsg = mUi->lstMsg;
    lblMsgName = mUi->lblMsgName;
    txtName = mUi->txtName;
    lblIllegalChar = mUi->lblIllegalChar;
    cmdOpen = mUi->cmdOpen;
    cmdCancel = mUi->cmdCancel;
    mListGeometry = lstMsg->geometry();
    mTitleText = lblTitle->text();

    lstMsg->setItemDelegate(new TabStopDelegate(lstMsg));
    txtName->installEventFilter(this);
    lblIllegalChar->setAttribute(Qt::WA_TransparentForMouseEvents);
    QPalette warning = lblIllegalChar->palette();
    warning.setColor(QPalette::WindowText, QColor(0xb0, 0x20, 0x20));
    lblIllegalChar->setPalette(warning);

    connect(txtName, &QLineEdit::textChanged, this, &frmMessageList::txtName_Change);
    connect(lstMsg, &QListWidget::itemClicked, this, &frmMessageList::lstMsg_Click);
    // A selection made with the keyboard counts as a click, as in any list box.
    connect(lstMsg, &QListWidget::itemSelectionChanged, this, [this] {
        QListWidgetItem* current = lstMsg->currentItem();
        if (current && current->isSelected())
            lstMsg_Click(current);
    });
    connect(lstMsg, &QListWidget::itemDoubleClicked, this, &frmMessageList::lstMsg_DblClick);
    connect(cmdOpen, &QPushButton::clicked, this, &frmMessageList::cmdOpen_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmMessageList::cmdCancel_Click);
}

frmMessageList::~frmMessageList() = default;

QString frmMessageList::textOf(const QString& key) const {
    return localText(key);
}

void frmMessageList::DoTabs(QListWidget* list, const QList<int>& tabs) {
    if (!list)
        return;
    list->setProperty(kTabStopsProperty, QVariant());
    QVariantList units;
    for (int tab : tabs)
        units << tab;
    list->setProperty(kTabStopsProperty, units);
    list->viewport()->update();
}

void frmMessageList::TranslateForm() {
    if (gLocalizer())
        ::TranslateForm(this);
}

QString frmMessageList::firstField(const QString& entry) {
    return entry.section(QLatin1Char('\t'), 0, 0);
}

void frmMessageList::Form_Load() {
    mEnded = false;
    lstMsg->setGeometry(mListGeometry);
    lblTitle->setText(mTitleText);
    lblMsgName->show();
    txtName->show();
    {
        const QSignalBlocker blockList(lstMsg);
        const QSignalBlocker blockName(txtName);
        lstMsg->clear();
        txtName->clear();
    }
    DoTabs(lstMsg, {0, 122});
    TranslateForm();
    lblIllegalChar->clear();

    QStringList entries;
    if (mManager)
        mManager->ListMessages(entries);
    QStringList shown;
    for (const QString& entry : entries) {
        // Untitled work is never offered, wherever the untitled text stands in the name.
        if (!gUntitledName.isEmpty() && firstField(entry).contains(gUntitledName))
            continue;
        shown << entry;
    }
    std::sort(shown.begin(), shown.end(), [](const QString& a, const QString& b) {
        return QString::localeAwareCompare(firstField(a), firstField(b)) < 0;
    });
    const QSignalBlocker blockList(lstMsg);
    lstMsg->addItems(shown);
    lstMsg->setCurrentItem(nullptr);
}

void frmMessageList::SetFunction(int mode) {
    mMode = mode;
    Form_Load();
    lstMsg->setSelectionMode(mode == Delete ? QAbstractItemView::ExtendedSelection
                                            : QAbstractItemView::SingleSelection);
    switch (mode) {
    case Open:
        setWindowTitle(textOf(QStringLiteral("STR_DLGMSG_OPEN")));
        cmdOpen->setText(textOf(QStringLiteral("BTN_OPEN")));
        break;
    case New:
        setWindowTitle(textOf(QStringLiteral("STR_DLGMSG_NEW")));
        cmdOpen->setText(textOf(QStringLiteral("BTN_OK")));
        break;
    case SaveAs:
        setWindowTitle(textOf(QStringLiteral("STR_DLGMSG_SAVEAS")));
        cmdOpen->setText(textOf(QStringLiteral("BTN_SAVE")));
        break;
    case Delete:
        setWindowTitle(textOf(QStringLiteral("STR_DLGMSG_DELETE")));
        cmdOpen->setText(textOf(QStringLiteral("BTN_OK")));
        lblMsgName->hide();
        txtName->hide();
        lblTitle->setText(textOf(QStringLiteral("STR_DLGMSG_TITLE")));
        lstMsg->resize(lstMsg->width(), cmdOpen->y() - lstMsg->y() - 4);
        break;
    default:
        break;
    }
    cmdOpen->setEnabled(false);
    if (mode == Delete)
        lstMsg->setFocus();
    else
        txtName->setFocus();
}

bool frmMessageList::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtName && event->type() == QEvent::KeyPress) {
        const QString typed = static_cast<QKeyEvent*>(event)->text();
        if (typed.size() == 1 && illegalCharacters().contains(typed.at(0))) {
            lblIllegalChar->setText(textOf(QStringLiteral("STR_ILLEG_CHR")) + typed);
            QApplication::beep();
            return true; // the character does not enter
        }
        if (!typed.isEmpty())
            lblIllegalChar->clear();
    }
    return QDialog::eventFilter(watched, event);
}

bool frmMessageList::listHolds(const QString& name) const {
    for (int i = 0; i < lstMsg->count(); ++i)
        if (firstField(lstMsg->item(i)->text()) == name)
            return true;
    return false;
}

void frmMessageList::txtName_Change() {
    if (mTrimming)
        return;
    // Pasted or set text is held to the same rule as typed text.
    QString refused;
    const QString text = withoutIllegal(txtName->text(), refused);
    if (!refused.isEmpty()) {
        lblIllegalChar->setText(textOf(QStringLiteral("STR_ILLEG_CHR")) + refused);
        QApplication::beep();
    }
    const QString trimmed = trimBlanks(text);
    if (trimmed != txtName->text()) {
        // The caret keeps its place in the name: it moves back by the characters taken before
        // it and by the blanks taken from the front, and stays inside what is left.
        qsizetype leading = 0;
        while (leading < text.size() && text.at(leading) == QLatin1Char(' '))
            ++leading;
        QString ignored;
        const qsizetype caret =
            withoutIllegal(txtName->text().left(txtName->cursorPosition()), ignored).size();
        const qsizetype kept =
            std::clamp<qsizetype>(caret - std::min(caret, leading), 0, trimmed.size());
        mTrimming = true;
        txtName->setText(trimmed);
        txtName->setCursorPosition(static_cast<int>(kept));
        mTrimming = false;
    }
    if (trimmed.isEmpty()) {
        cmdOpen->setEnabled(false);
    } else if (mMode == New) {
        cmdOpen->setEnabled(!listHolds(trimmed));
    } else {
        cmdOpen->setEnabled(true);
    }
}

void frmMessageList::lstMsg_Click(QListWidgetItem* item) {
    if (!item)
        return;
    txtName->setText(firstField(item->text()));
    lblIllegalChar->clear();
}

void frmMessageList::lstMsg_DblClick(QListWidgetItem* item) {
    if (!item)
        return;
    lstMsg_Click(item);
    if (mMode == Open)
        end(Open, txtName->text());
}

void frmMessageList::cmdOpen_Click() {
    if (!cmdOpen->isEnabled())
        return;
    if (mMode == Delete) {
        QStringList names;
        for (int i = 0; i < lstMsg->count(); ++i)
            if (lstMsg->item(i)->isSelected())
                names << firstField(lstMsg->item(i)->text());
        mSelectedNames = names;
        end(Delete, names.join(QLatin1Char(',')));
        return;
    }
    const QString name = txtName->text();
    if (mMode == SaveAs && listHolds(name)) {
        const QStringList params{name, QStringLiteral("\r\n\r\n")};
        const QString question = localTextPar(QStringLiteral("STR_MSG_EXISTS"), params);
        if (MsgBox(question, Vb::YesNo | Vb::Question, textOf(QStringLiteral("BTN_SAVEAS"))) !=
            Vb::Yes)
            return;
    }
    end(mMode, name);
}

void frmMessageList::cmdCancel_Click() {
    if (mEnded)
        return;
    mEnded = true;
    emit SelectedMessage(Cancelled, QString());
    unload(QDialog::Rejected);
}

void frmMessageList::reject() {
    cmdCancel_Click();
}

void frmMessageList::end(int mode, const QString& name) {
    if (mEnded)
        return;
    mEnded = true;
    hide(); // the owner's handler runs with the dialog out of sight
    emit SelectedMessage(mode, name);
    unload(QDialog::Accepted);
}

void frmMessageList::unload(int result) {
    QDialog::done(result);
    const QSignalBlocker blockList(lstMsg);
    const QSignalBlocker blockName(txtName);
    lstMsg->clear();
    txtName->clear();
    lblIllegalChar->clear();
}
