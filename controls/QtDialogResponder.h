#pragma once

#include "platform/modDialogs.h"

// The program's boxes, colour and file dialogs and pop-up menus as Qt shows them. Main makes
// one right after the application object exists; while it lives it answers the dialog seam, and
// on its end the previous responder answers again.
class QtDialogResponder final : public DialogResponder {
public:
    QtDialogResponder();
    ~QtDialogResponder() override;
    QtDialogResponder(const QtDialogResponder&) = delete;
    QtDialogResponder& operator=(const QtDialogResponder&) = delete;

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
