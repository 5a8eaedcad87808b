#pragma once

#include "platform/modDialogs.h"

#include <QStringList>
#include <deque>
#include <optional>

// Answers the dialog seam from queues and records every request. An empty queue answers a box
// with its default button, and cancels colour and file dialogs and pop-up menus.
class ScriptedResponder : public DialogResponder {
public:
    struct Box {
        QString text;
        int style;
        QString title;
    };
    struct Popup {
        QStringList keys;     // every item's key, sub-menus included, in menu order
        QStringList captions; // the captions in the same order
        QStringList disabled; // keys of disabled items
        QStringList checked;  // keys of checked items
    };
    // Reads the items of a pop-up menu; the window tests' main installs one.
    using MenuReader = Popup (*)(const QMenu* menu);
    static void setMenuReader(MenuReader reader);

    ScriptedResponder();           // installs itself
    ~ScriptedResponder() override; // restores the previous responder
    ScriptedResponder(const ScriptedResponder&) = delete;
    ScriptedResponder& operator=(const ScriptedResponder&) = delete;

    std::deque<int> boxAnswers;
    std::deque<std::optional<std::int32_t>> colours; // nullopt: cancel
    std::deque<QString> openFiles;                   // "": cancel
    std::deque<QString> folders;                     // "": cancel
    std::deque<QString> popupKeys; // a key that is absent or disabled chooses nothing

    std::vector<Box> boxes;
    std::vector<Popup> popups;
    int colourRequests = 0;
    int openFileRequests = 0;
    int folderRequests = 0;

    int msgBox(const QString& text, int style, const QString& title) override;
    bool chooseColor(QWidget* parent, std::int32_t& colour, int flags) override;
    bool getOpenFileName(QWidget* parent, QString& fileName, const QString& title,
                         const QString& filter, const QString& defaultExt,
                         const QString& initialDir) override;
    bool getFolderName(QWidget* parent, QString& folder, const QString& title,
                       const QString& initialDir) override;
    QString popupChoice(QMenu* menu, const QPoint& globalPos) override;

private:
    DialogResponder* mPrevious;
};
