#include "platform/modDialogs.h"

#include "platform/modShared.h"

#include <QAction>
#include <QApplication>
#include <QColor>
#include <QColorDialog>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>

namespace {

QMessageBox::StandardButton standardButton(int answer) {
    switch (answer) {
    case Vb::OK:
        return QMessageBox::Ok;
    case Vb::Cancel:
        return QMessageBox::Cancel;
    case Vb::Abort:
        return QMessageBox::Abort;
    case Vb::Retry:
        return QMessageBox::Retry;
    case Vb::Ignore:
        return QMessageBox::Ignore;
    case Vb::Yes:
        return QMessageBox::Yes;
    case Vb::No:
        return QMessageBox::No;
    default:
        return QMessageBox::NoButton;
    }
}

QMessageBox::Icon boxIcon(int style) {
    switch (style & 0x70) {
    case Vb::Critical:
        return QMessageBox::Critical;
    case Vb::Question:
        return QMessageBox::Question;
    case Vb::Exclamation:
        return QMessageBox::Warning;
    case Vb::Information:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

void collectItems(const QMenu* menu, ScriptedResponder::Popup& popup) {
    for (QAction* action : menu->actions()) {
        if (action->isSeparator())
            continue;
        if (action->menu()) {
            collectItems(action->menu(), popup);
            continue;
        }
        const QString key = action->data().toString();
        popup.keys << key;
        popup.captions << action->text();
        if (!action->isEnabled())
            popup.disabled << key;
        if (action->isChecked())
            popup.checked << key;
    }
}

class QtDialogs final : public DialogResponder {
public:
    int msgBox(const QString& text, int style, const QString& title) override {
        QMessageBox box(boxIcon(style), title, text, QMessageBox::NoButton,
                        QApplication::activeWindow());
        const std::vector<int> answers = msgBoxButtons(style);
        for (int answer : answers)
            box.addButton(standardButton(answer));
        box.setDefaultButton(standardButton(msgBoxDefaultAnswer(style)));
        if (std::find(answers.begin(), answers.end(), int(Vb::Cancel)) != answers.end())
            box.setEscapeButton(standardButton(Vb::Cancel));
        else if (answers.size() == 1)
            box.setEscapeButton(standardButton(answers.front()));
        box.exec();
        const auto clicked = box.standardButton(box.clickedButton());
        for (int answer : answers)
            if (standardButton(answer) == clicked)
                return answer;
        return answers.size() == 1 ? answers.front() : int(Vb::Cancel);
    }

    bool chooseColor(QWidget* parent, std::int32_t& colour, int) override {
        const QColor chosen = QColorDialog::getColor(fromVbColor(colour), parent);
        if (!chosen.isValid())
            return false;
        colour = toVbColor(chosen);
        return true;
    }

    bool getOpenFileName(QWidget* parent, QString& fileName, const QString& title,
                         const QString& filter, const QString& defaultExt,
                         const QString& initialDir) override {
        QFileDialog dialog(parent, title, initialDir, vbFilterToQt(filter));
        dialog.setFileMode(QFileDialog::ExistingFile);
        dialog.setAcceptMode(QFileDialog::AcceptOpen);
        if (!defaultExt.isEmpty())
            dialog.setDefaultSuffix(defaultExt);
        if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
            return false;
        fileName = dialog.selectedFiles().constFirst();
        return true;
    }

    QString popupChoice(QMenu* menu, const QPoint& globalPos) override {
        QAction* chosen = menu->exec(globalPos);
        return chosen ? chosen->data().toString() : QString();
    }
};

QtDialogs& qtDialogs() {
    static QtDialogs dialogs;
    return dialogs;
}

DialogResponder* gResponder = nullptr;

} // namespace

std::vector<int> msgBoxButtons(int style) {
    switch (style & 0x7) {
    case Vb::OKCancel:
        return {Vb::OK, Vb::Cancel};
    case Vb::AbortRetryIgnore:
        return {Vb::Abort, Vb::Retry, Vb::Ignore};
    case Vb::YesNoCancel:
        return {Vb::Yes, Vb::No, Vb::Cancel};
    case Vb::YesNo:
        return {Vb::Yes, Vb::No};
    case Vb::RetryCancel:
        return {Vb::Retry, Vb::Cancel};
    default:
        return {Vb::OK};
    }
}

int msgBoxDefaultAnswer(int style) {
    const std::vector<int> answers = msgBoxButtons(style);
    std::size_t index = 0;
    if (style & Vb::DefaultButton3)
        index = 2;
    else if (style & Vb::DefaultButton2)
        index = 1;
    return answers[std::min(index, answers.size() - 1)];
}

std::int32_t toVbColor(const QColor& colour) {
    return colour.red() | (colour.green() << 8) | (colour.blue() << 16);
}

QColor fromVbColor(std::int32_t colour) {
    return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
}

QString vbFilterToQt(const QString& filter) {
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList result;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString patterns = parts[i + 1];
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        QString name = parts[i];
        // A description that already shows its patterns keeps them once.
        const auto open = name.indexOf(QLatin1Char('('));
        if (open >= 0)
            name = name.left(open).trimmed();
        result << QStringLiteral("%1 (%2)").arg(name, patterns);
    }
    return result.join(QStringLiteral(";;"));
}

void setDialogResponder(DialogResponder* responder) {
    gResponder = responder;
}

DialogResponder* dialogResponder() {
    return gResponder ? gResponder : &qtDialogs();
}

int MsgBox(const QString& text, int style, const QString& title) {
    return dialogResponder()->msgBox(text, style, title.isEmpty() ? kAppTitle : title);
}

bool ChooseColor(QWidget* parent, std::int32_t& colour, int flags) {
    return dialogResponder()->chooseColor(parent, colour, flags);
}

bool GetOpenFileName(QWidget* parent, QString& fileName, const QString& title,
                     const QString& filter, const QString& defaultExt, const QString& initialDir) {
    return dialogResponder()->getOpenFileName(parent, fileName, title, filter, defaultExt,
                                              initialDir);
}

QString PopupChoice(QMenu* menu, const QPoint& globalPos) {
    return dialogResponder()->popupChoice(menu, globalPos);
}

ScriptedResponder::ScriptedResponder() : mPrevious(gResponder) {
    setDialogResponder(this);
}

ScriptedResponder::~ScriptedResponder() {
    setDialogResponder(mPrevious);
}

int ScriptedResponder::msgBox(const QString& text, int style, const QString& title) {
    boxes.push_back({text, style, title});
    if (boxAnswers.empty())
        return msgBoxDefaultAnswer(style);
    const int answer = boxAnswers.front();
    boxAnswers.pop_front();
    return answer;
}

bool ScriptedResponder::chooseColor(QWidget*, std::int32_t& colour, int) {
    ++colourRequests;
    if (colours.empty())
        return false;
    const auto answer = colours.front();
    colours.pop_front();
    if (!answer)
        return false;
    colour = *answer;
    return true;
}

bool ScriptedResponder::getOpenFileName(QWidget*, QString& fileName, const QString&, const QString&,
                                        const QString&, const QString&) {
    ++openFileRequests;
    if (openFiles.empty())
        return false;
    const QString answer = openFiles.front();
    openFiles.pop_front();
    if (answer.isEmpty())
        return false;
    fileName = answer;
    return true;
}

QString ScriptedResponder::popupChoice(QMenu* menu, const QPoint&) {
    Popup popup;
    collectItems(menu, popup);
    popups.push_back(popup);
    if (popupKeys.empty())
        return {};
    const QString key = popupKeys.front();
    popupKeys.pop_front();
    if (!popup.keys.contains(key) || popup.disabled.contains(key))
        return {};
    return key;
}
