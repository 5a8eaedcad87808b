#pragma once

#include <QDialog>
#include <QStringList>
#include <memory>

class QLabel;
class QTimer;
class GrButtonIII;
class clsWindowShrink;
namespace Ui {
class frmAbout;
}

// The about window: product name, version and legal text on the skin's picture. OK or Escape
// closes it with the same shrink as the splash. "System Info..." starts the desktop's system
// information program.
class frmAbout : public QDialog {
    Q_OBJECT

public:
    explicit frmAbout(QWidget* parent = nullptr);
    ~frmAbout() override;

    // Starts the first system information program found on the search path; without one, a box
    // with STR_NO_SYS_INFO titled STR_SYS_INFO. Returns whether a program was started.
    bool StartSysInfo();
    // The programs StartSysInfo looks for, in order.
    static QStringList SysInfoPrograms();

    // Starts the closing shrink; the window is done when it ends.
    void CloseAbout();
    bool Shrinking() const;

    QTimer* ShrinkTimer() const { return mShrinkTimer; }
    QLabel* lblTitle() const;
    QLabel* lblVersion() const;
    QLabel* lblDisclaimer() const;
    GrButtonIII* cmdOk() const;
    GrButtonIII* cmdSysInfo() const;

public slots:
    void reject() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    std::unique_ptr<Ui::frmAbout> ui;
    QTimer* mShrinkTimer = nullptr;
    clsWindowShrink* mShrink = nullptr;
    QPoint mTitleHome;
};
