#pragma once

#include <QDialog>
#include <QImage>
#include <memory>

class QLabel;
class QRadioButton;
class GrButtonIII;
class ctlProgressBar;
class clsMMSManager;
class clsMMSCommunication;
namespace Ui {
class frmDownloadImage;
}

// The window that sends the current slide's picture alone, as a JPEG or GIF file. While a send
// runs it can be neither closed nor dragged.
class frmDownloadImage : public QDialog {
    Q_OBJECT

public:
    frmDownloadImage(clsMMSManager* manager, clsMMSCommunication* communication, QWidget* owner);
    ~frmDownloadImage() override;

    void TranslateForm();
    // The picture to send, shown in picDownload.
    void setPicture(const QImage& picture);
    QImage picture() const { return mPicture; }

    // Converts the picture and sends it; the outcome stays in lblDownloadStatus.
    void cmdDownload_Click();
    // Clears the status and hides the window, unless a send runs.
    void cmdCancel_Click();
    bool sending() const { return mSending; }

    QLabel* lblDownloadStatus() const;
    QRadioButton* optImageFmt(int index) const;
    GrButtonIII* cmdDownload() const;
    GrButtonIII* cmdCancel() const;
    GrButtonIII* cmdClose() const;
    ctlProgressBar* ctlProgressBar1() const;

public slots:
    void reject() override;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    // The steps of a send once the file is written.
    void SendPicture(const QString& file);

    std::unique_ptr<Ui::frmDownloadImage> ui;
    clsMMSManager* mManager;
    clsMMSCommunication* mCommunication;
    QImage mPicture;
    bool mSending = false;
};
