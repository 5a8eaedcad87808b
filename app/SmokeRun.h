#pragma once

#include "platform/modDialogs.h"

#include <QObject>
#include <QString>
#include <QStringList>

class frmMain;

// TESSALY_SMOKE_REPORT=<file> lets a script check a started program from outside. Every box is
// answered with its default button and recorded instead of shown (dialogs are cancelled, pop-up
// menus choose nothing). Once start-up has ended, the current message is saved through the
// window's Save As path under TESSALY_SMOKE_NAME ("Smoke test" when unset); then <file>
// receives, one "name=value" line each: the window title, the message name the window showed,
// the menu bar's captions joined by "|", the saved file, whether the save succeeded ("1"/"0"),
// and the boxes shown. Then the program exits the normal way.
class SmokeRun : public QObject, public DialogResponder {
public:
    SmokeRun(QObject* parent, QString reportFile);
    ~SmokeRun() override;
    // Starts the run once the window's start-up has ended.
    void watch(frmMain* window);

    int msgBox(const QString& text, int style, const QString& title) override;
    bool chooseColor(QWidget*, std::int32_t&, int) override { return false; }
    bool getOpenFileName(QWidget*, QString&, const QString&, const QString&, const QString&,
                         const QString&) override {
        return false;
    }
    QString popupChoice(QMenu*, const QPoint&) override { return {}; }

private:
    QStringList menuCaptions() const;
    void run();
    void write(const QString& text) const;

    QString mFile;
    DialogResponder* mPrevious;
    frmMain* mWindow = nullptr;
    QStringList mBoxes;
    bool mExiting = false;
};
