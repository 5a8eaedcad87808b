#pragma once

#include <QWidget>
#include <cstdint>
#include <memory>

class QLabel;
class GrButtonIII;
class ctlProgressBar;
class clsMessage;
class clsMMSManager;
class clsMMSCommunication;
namespace Ui {
class frmDownloadMMS;
}

// The window that publishes the current message and hands the package to the phone, showing
// the stages as they pass. Closing it only hides it, so that the next send finds it ready.
class frmDownloadMMS : public QWidget {
    Q_OBJECT

public:
    // `manager` publishes, `communication` sends; both belong to the main window `owner`.
    frmDownloadMMS(clsMMSManager* manager, clsMMSCommunication* communication, QWidget* owner);
    ~frmDownloadMMS() override;

    void TranslateForm();
    // Shows `text` as the stage and repaints at once.
    void SetStatusTxt(const QString& text);
    // Publishes `message` and sends its package: the installation package to a device whose
    // name holds "Q500", the template to all others. The outcome stays in the window.
    void DownloadMMS(clsMessage& message, bool convertSound, std::int32_t timeFormat);
    // Places the window at the lower right corner of its owner with the opening texts.
    void Form_Load();

    QLabel* lblProcessStatus() const;
    QLabel* lblDownloadError() const;
    GrButtonIII* cmdDownloadClose() const;
    GrButtonIII* cmdClose() const;
    ctlProgressBar* ctlProgressBar1() const;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void CloseWindow();
    // The send of the published package, step 4 on.
    void SendPackage(const clsMessage& message);

    std::unique_ptr<Ui::frmDownloadMMS> ui;
    clsMMSManager* mManager;
    clsMMSCommunication* mCommunication;
};
