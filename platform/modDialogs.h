#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>

class QMenu;
class QWidget;
class QColor;

// Every box, colour or file dialog and pop-up choice of the program goes through this seam.
// Main installs the Qt dialogs (controls/QtDialogResponder.h); tests install a responder that
// answers from a script and records what was asked. With none installed the seam needs no
// display: each box answers with its default button, dialogs are cancelled and pop-up menus
// choose nothing, so headless commands never block on a box. No other code shows a QMessageBox.

// Styles and answers of a message box, with the classic numbers.
namespace Vb {
enum MsgBoxStyle : int {
    OKOnly = 0,
    OKCancel = 1,
    AbortRetryIgnore = 2,
    YesNoCancel = 3,
    YesNo = 4,
    RetryCancel = 5,
    Critical = 16,
    Question = 32,
    Exclamation = 48,
    Information = 64,
    DefaultButton2 = 256,
    DefaultButton3 = 512,
};
enum MsgBoxResult : int { OK = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7 };
} // namespace Vb

// The answers a box of `style` offers, in the order of its buttons.
std::vector<int> msgBoxButtons(int style);
// The answer of the box's default button.
int msgBoxDefaultAnswer(int style);

// A colour as the program stores it: red in the low byte, then green, then blue.
std::int32_t toVbColor(const QColor& colour);
QColor fromVbColor(std::int32_t colour);

// "Pictures (*.bmp;*.gif)|*.bmp;*.gif|All files|*.*" as a Qt file dialog filter.
QString vbFilterToQt(const QString& filter);

class DialogResponder {
public:
    virtual ~DialogResponder() = default;
    virtual int msgBox(const QString& text, int style, const QString& title) = 0;
    // Returns false when the user cancels; `colour` holds the start colour and the choice.
    virtual bool chooseColor(QWidget* parent, std::int32_t& colour, int flags) = 0;
    // Returns false when the user cancels; `fileName` receives the chosen file.
    virtual bool getOpenFileName(QWidget* parent, QString& fileName, const QString& title,
                                 const QString& filter, const QString& defaultExt,
                                 const QString& initialDir) = 0;
    // Returns false when the user cancels; `folder` receives the chosen folder. A responder
    // without a folder dialog cancels.
    virtual bool getFolderName(QWidget* /*parent*/, QString& /*folder*/, const QString& /*title*/,
                               const QString& /*initialDir*/) {
        return false;
    }
    // Shows `menu` at `globalPos` and returns the key (action data) of the chosen item, or "".
    virtual QString popupChoice(QMenu* menu, const QPoint& globalPos) = 0;
};

// Installs a responder (nullptr restores the answerer without a display) and returns the one
// installed before (nullptr when none was). The caller keeps ownership.
DialogResponder* setDialogResponder(DialogResponder* responder);
DialogResponder* dialogResponder();

// An empty title gives the application title.
int MsgBox(const QString& text, int style = Vb::OKOnly, const QString& title = {});
bool ChooseColor(QWidget* parent, std::int32_t& colour, int flags = 0);
bool GetOpenFileName(QWidget* parent, QString& fileName, const QString& title,
                     const QString& filter, const QString& defaultExt = {},
                     const QString& initialDir = {});
bool GetFolderName(QWidget* parent, QString& folder, const QString& title,
                   const QString& initialDir = {});
QString PopupChoice(QMenu* menu, const QPoint& globalPos);
