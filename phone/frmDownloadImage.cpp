#include "phone/frmDownloadImage.h"
#include "ui_frmDownloadImage.h"

#include "controls/GrButtonIII.h"
#include "controls/ctlProgressBar.h"
#include "controls/modSkin.h"
#include "controls/modTitleBar.h"
#include "controls/modTranslate.h"
#include "phone/clsMMSCommunication.h"
#include "phone/modSendWindow.h"
#include "platform/AppPaths.h"
#include "platform/modText.h"
#include "store/clsMMSManager.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QRadioButton>

namespace {
// SavePictureBoxImage's formats.
constexpr std::int32_t kJpeg = 1;
constexpr std::int32_t kGif = 2;
} // namespace

frmDownloadImage::frmDownloadImage(clsMMSManager* manager, clsMMSCommunication* communication,
                                   QWidget* owner)
    : QDialog(owner, Qt::Dialog | Qt::FramelessWindowHint),
      ui(std::make_unique<Ui::frmDownloadImage>()), mManager(manager),
      mCommunication(communication) {
    ui->setupUi(this);
    // The two format options form one control array.
    const QList<QRadioButton*> options = {ui->optImageFmt0, ui->optImageFmt1};
    for (int i = 0; i < options.size(); ++i) {
        options[i]->setObjectName(QStringLiteral("optImageFmt"));
        options[i]->setProperty("index", i);
    }
    dressSendWindow(this, ui->cmdClose, ui->ctlProgressBar1);
    connect(ui->cmdDownload, &QAbstractButton::clicked, this, &frmDownloadImage::cmdDownload_Click);
    connect(ui->cmdCancel, &QAbstractButton::clicked, this, &frmDownloadImage::cmdCancel_Click);
    connect(ui->cmdClose, &QAbstractButton::released, this, &frmDownloadImage::cmdCancel_Click);
    TranslateForm();
    placeAtLowerRight(this, owner);
}

frmDownloadImage::~frmDownloadImage() = default;

QLabel* frmDownloadImage::lblDownloadStatus() const {
    return ui->lblDownloadStatus;
}
QRadioButton* frmDownloadImage::optImageFmt(int index) const {
    return index == 0 ? ui->optImageFmt0 : ui->optImageFmt1;
}
GrButtonIII* frmDownloadImage::cmdDownload() const {
    return ui->cmdDownload;
}
GrButtonIII* frmDownloadImage::cmdCancel() const {
    return ui->cmdCancel;
}
GrButtonIII* frmDownloadImage::cmdClose() const {
    return ui->cmdClose;
}
ctlProgressBar* frmDownloadImage::ctlProgressBar1() const {
    return ui->ctlProgressBar1;
}

void frmDownloadImage::TranslateForm() {
    ::TranslateForm(this);
}

void frmDownloadImage::setPicture(const QImage& picture) {
    mPicture = picture;
    ui->picDownload->setPixmap(QPixmap::fromImage(picture).scaled(
        ui->picDownload->size() - QSize(2, 2), Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

void frmDownloadImage::cmdDownload_Click() {
    ui->cmdDownload->setEnabled(false);
    ui->lblDownloadStatus->clear();
    ui->lblDownloadStatus->setText(localText(QStringLiteral("STR_DOWNLOAD_IMG")));
    ui->lblDownloadStatus->repaint();
    ui->ctlProgressBar1->Start(true);

    const bool jpeg = ui->optImageFmt0->isChecked();
    const QString folder = mManager ? mManager->GetMessagePath() : QString();
    const QString file =
        joinPath(folder, jpeg ? QStringLiteral("MyImage.jpg") : QStringLiteral("MyImage.gif"));
    const bool written = !folder.isEmpty() && !mPicture.isNull() &&
                         mManager->SavePictureBoxImage(file, mPicture, jpeg ? kJpeg : kGif);
    if (written)
        SendPicture(file);
    else
        ui->lblDownloadStatus->setText(localText(QStringLiteral("STR_ERROR_PICT_CONV")) +
                                       QStringLiteral("\n\n") +
                                       localText(QStringLiteral("STR_NO_MSG_DOWNLOAD")));
    ui->ctlProgressBar1->Start(false);
    ui->cmdDownload->setEnabled(true);
}

void frmDownloadImage::SendPicture(const QString& file) {
    ui->lblDownloadStatus->setText(localText(QStringLiteral("STR_DOWNLOAD_INFO")));
    mSending = true;
    ui->cmdCancel->setEnabled(false);
    ui->cmdDownload->setEnabled(false);
    const QPointer<frmDownloadImage> self(this); // the program may end during the send
    const std::int32_t result =
        mCommunication ? mCommunication->SendFile(file) : clsMMSCommunication::NoDevice;
    if (!self)
        return;
    ui->lblDownloadStatus->setText(localText(QStringLiteral("STR_NO_MSG_DOWNLOAD")));
    const QString key = sendResultKey(result);
    if (!key.isEmpty())
        ui->lblDownloadStatus->setText(localText(key));
    ui->cmdCancel->setEnabled(true);
    ui->cmdDownload->setEnabled(true);
    mSending = false;
}

void frmDownloadImage::cmdCancel_Click() {
    if (mSending)
        return;
    ui->lblDownloadStatus->clear();
    hide();
    done(QDialog::Rejected);
}

// Escape goes the way of Cancel.
void frmDownloadImage::reject() {
    cmdCancel_Click();
}

void frmDownloadImage::mousePressEvent(QMouseEvent* event) {
    if (!mSending)
        DragWindow(this, event->button() == Qt::LeftButton ? 1 : 0);
}

void frmDownloadImage::paintEvent(QPaintEvent*) {
    QPainter(this).drawPixmap(0, 0, formPicture(this));
}
