#include "controls/clsPopupMenu.h"

#include "platform/modDialogs.h"

#include <QAction>
#include <QCursor>
#include <QMenu>

namespace {

// The leading number of `text`: blanks skipped, an optional sign, then digits; anything else
// ends the number. No number gives 0.
std::int32_t leadingNumber(const QString& text) {
    const QString trimmed = text.trimmed();
    qsizetype i = 0;
    bool negative = false;
    if (i < trimmed.size() && (trimmed[i] == QLatin1Char('-') || trimmed[i] == QLatin1Char('+'))) {
        negative = trimmed[i] == QLatin1Char('-');
        ++i;
    }
    std::int64_t value = 0;
    for (; i < trimmed.size() && trimmed[i].isDigit(); ++i) {
        value = value * 10 + trimmed[i].digitValue();
        if (value > INT32_MAX)
            return 0; // too large for a key: no key
    }
    return static_cast<std::int32_t>(negative ? -value : value);
}

} // namespace

void clsPopupMenu::addItem(QMenu& target, const QString& item) {
    if (item.trimmed() == QLatin1String("-")) {
        target.addSeparator();
        return;
    }
    QString caption = item;
    std::int32_t key = 0;
    const qsizetype semicolon = item.indexOf(QLatin1Char(';'));
    if (semicolon >= 0) {
        caption = item.left(semicolon);
        key = leadingNumber(item.mid(semicolon + 1));
    } else {
        key = ++mCounter;
    }
    bool disabled = false;
    bool checked = false;
    if (item.contains(QLatin1Char('!'))) {
        disabled = true;
        caption = caption.mid(1);
    } else if (item.contains(QLatin1Char('#'))) {
        checked = true;
        caption = caption.mid(1);
    }
    QAction* action = target.addAction(caption);
    action->setData(QString::number(key));
    if (disabled)
        action->setEnabled(false);
    if (checked) {
        action->setCheckable(true);
        action->setChecked(true);
    }
}

void clsPopupMenu::BuildMenu(QMenu& target, const QString& menu) {
    mCounter = 0;
    const QStringList items = menu.split(QLatin1Char(','));
    for (const QString& item : items) {
        if (!item.contains(QLatin1Char('|'))) {
            addItem(target, item);
            continue;
        }
        const QStringList pieces = item.split(QLatin1Char('|'));
        const QString& head = pieces.front();
        const qsizetype semicolon = head.indexOf(QLatin1Char(';'));
        QMenu* sub = target.addMenu(semicolon >= 0 ? head.left(semicolon) : head);
        for (qsizetype i = 1; i < pieces.size(); ++i)
            addItem(*sub, pieces[i]);
    }
}

std::int32_t clsPopupMenu::PopupString(const QString& menu) {
    const QPoint at = QCursor::pos();
    return PopupStringXY(menu, at.x(), at.y());
}

std::int32_t clsPopupMenu::PopupStringXY(const QString& menu, std::int32_t x, std::int32_t y) {
    QMenu popup;
    BuildMenu(popup, menu);
    const QString chosen = PopupChoice(&popup, QPoint(x, y));
    return chosen.isEmpty() ? 0 : leadingNumber(chosen);
}
