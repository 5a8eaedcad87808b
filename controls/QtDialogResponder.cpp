#include "controls/QtDialogResponder.h"

#include <QAction>
#include <QApplication>
#include <QColor>
#include <QColorDialog>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>

#include "platform/modText.h"

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

// The caption of a box's button in the program's language; Qt's own where the language has none.
QString buttonCaption(int answer, const QString& qtCaption) {
    const char* key = nullptr;
    switch (answer) {
    case Vb::OK:
        key = "BTN_OK";
        break;
    case Vb::Cancel:
        key = "BTN_CANCEL";
        break;
    case Vb::Abort:
        key = "BTN_ABORT";
        break;
    case Vb::Retry:
        key = "BTN_RETRY";
        break;
    case Vb::Ignore:
        key = "BTN_IGNORE";
        break;
    case Vb::Yes:
        key = "BTN_YES";
        break;
    case Vb::No:
        key = "BTN_NO";
        break;
    default:
        return qtCaption;
    }
    const QString name = QString::fromLatin1(key);
    const QString caption = localText(name);
    return caption.isEmpty() || caption == name ? qtCaption : caption;
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

// Escape picks Cancel where the box has it, else the only button of a one-button box.
void setEscapeAnswer(QMessageBox& box, const std::vector<int>& answers) {
    if (std::find(answers.begin(), answers.end(), int(Vb::Cancel)) != answers.end())
        box.setEscapeButton(standardButton(Vb::Cancel));
    else if (answers.size() == 1)
        box.setEscapeButton(standardButton(answers.front()));
}

} // namespace

QtDialogResponder::QtDialogResponder() : mPrevious(setDialogResponder(this)) {}

QtDialogResponder::~QtDialogResponder() {
    setDialogResponder(mPrevious);
}

int QtDialogResponder::msgBox(const QString& text, int style, const QString& title) {
    QMessageBox box(boxIcon(style), title, text, QMessageBox::NoButton,
                    QApplication::activeWindow());
    const std::vector<int> answers = msgBoxButtons(style);
    for (int answer : answers) {
        QPushButton* button = box.addButton(standardButton(answer));
        button->setText(buttonCaption(answer, button->text()));
    }
    box.setDefaultButton(standardButton(msgBoxDefaultAnswer(style)));
    setEscapeAnswer(box, answers);
    box.exec();
    const auto clicked = box.standardButton(box.clickedButton());
    for (int answer : answers)
        if (standardButton(answer) == clicked)
            return answer;
    return answers.size() == 1 ? answers.front() : int(Vb::Cancel);
}

bool QtDialogResponder::chooseColor(QWidget* parent, std::int32_t& colour, int) {
    const QColor chosen = QColorDialog::getColor(fromVbColor(colour), parent);
    if (!chosen.isValid())
        return false;
    colour = toVbColor(chosen);
    return true;
}

bool QtDialogResponder::getOpenFileName(QWidget* parent, QString& fileName, const QString& title,
                                        const QString& filter, const QString& defaultExt,
                                        const QString& initialDir) {
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

bool QtDialogResponder::getFolderName(QWidget* parent, QString& folder, const QString& title,
                                      const QString& initialDir) {
    QFileDialog dialog(parent, title, initialDir);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly, true);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return false;
    folder = dialog.selectedFiles().constFirst();
    return true;
}

QString QtDialogResponder::popupChoice(QMenu* menu, const QPoint& globalPos) {
    QAction* chosen = menu->exec(globalPos);
    return chosen ? chosen->data().toString() : QString();
}
