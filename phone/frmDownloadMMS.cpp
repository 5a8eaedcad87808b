#include "phone/frmDownloadMMS.h"
#include "ui_frmDownloadMMS.h"

#include "controls/GrButtonIII.h"
#include "controls/ctlProgressBar.h"
#include "controls/modSkin.h"
#include "controls/modTitleBar.h"
#include "controls/modTranslate.h"
#include "document/clsMessage.h"
#include "phone/clsMMSCommunication.h"
#include "phone/modSendWindow.h"
#include "platform/AppPaths.h"
#include "platform/Failure.h"
#include "platform/modText.h"
#include "store/clsMMSManager.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

frmDownloadMMS::frmDownloadMMS(clsMMSManager* manager, clsMMSCommunication* communication,
                               QWidget* owner)
    : QWidget(owner, Qt::Window | Qt::FramelessWindowHint),
      ui(std::make_unique<Ui::frmDownloadMMS>()), mManager(manager), mCommunication(communication) {
    ui->setupUi(this);
    dressSendWindow(this, ui->cmdClose, ui->ctlProgressBar1);
    connect(ui->cmdDownloadClose, &QAbstractButton::clicked, this, &frmDownloadMMS::CloseWindow);
    // The caption button acts on the release of the left button, the only one it takes.
    connect(ui->cmdClose, &QAbstractButton::released, this, &frmDownloadMMS::CloseWindow);
    TranslateForm();
    Form_Load();
}

frmDownloadMMS::~frmDownloadMMS() = default;

QLabel* frmDownloadMMS::lblProcessStatus() const {
    return ui->lblProcessStatus;
}
QLabel* frmDownloadMMS::lblDownloadError() const {
    return ui->lblDownloadError;
}
GrButtonIII* frmDownloadMMS::cmdDownloadClose() const {
    return ui->cmdDownloadClose;
}
GrButtonIII* frmDownloadMMS::cmdClose() const {
    return ui->cmdClose;
}
ctlProgressBar* frmDownloadMMS::ctlProgressBar1() const {
    return ui->ctlProgressBar1;
}

void frmDownloadMMS::TranslateForm() {
    ::TranslateForm(this);
}

void frmDownloadMMS::Form_Load() {
    placeAtLowerRight(this, parentWidget());
    ui->lblProcessStatus->setText(localText(QStringLiteral("STR_DOWNLOAD_MSG")));
    ui->lblDownloadError->clear();
}

void frmDownloadMMS::SetStatusTxt(const QString& text) {
    ui->lblProcessStatus->setText(text);
    ui->lblProcessStatus->repaint();
}

void frmDownloadMMS::DownloadMMS(clsMessage& message, bool convertSound, std::int32_t timeFormat) {
    ui->ctlProgressBar1->Start(true);
    ui->cmdDownloadClose->setEnabled(false);
    std::int32_t status = 1;
    QString statusText;
    try {
        status = mManager->SaveAsMMS(message, convertSound, timeFormat);
        statusText = mManager->GetSaveAsMMSStatus();
    } catch (const Failure& failure) {
        // A failure of the export itself ends here, as a text.
        statusText = failure.description();
    }
    if (status == 0) {
        SendPackage(message);
    } else {
        ui->lblProcessStatus->clear();
        ui->lblDownloadError->setText(statusText + QStringLiteral("\n\n") +
                                      localText(QStringLiteral("STR_NO_FILE_DOWNLOAD")));
    }
    ui->ctlProgressBar1->Start(false);
    ui->cmdDownloadClose->setEnabled(true);
}

void frmDownloadMMS::SendPackage(const clsMessage& message) {
    ui->lblProcessStatus->setText(localText(QStringLiteral("STR_DOWNLOAD_MSG")));
    ui->lblDownloadError->setText(localText(QStringLiteral("STR_DOWNLOAD_INFO")));
    const bool installer =
        mCommunication && mCommunication->deviceId().toUpper().contains(QStringLiteral("Q500"));
    const QString file = joinPath(message.Path(), installer ? QStringLiteral("mms/mms.sis")
                                                            : QStringLiteral("mms/mms.tpl"));
    // Without a facade there is no transport: as a facade of type 0 would answer.
    const QPointer<frmDownloadMMS> self(this); // the program may end during the send
    const std::int32_t result =
        mCommunication ? mCommunication->SendFile(file) : clsMMSCommunication::NoDevice;
    if (!self)
        return;
    ui->lblProcessStatus->setText(localText(QStringLiteral("STR_NO_MSG_DOWNLOAD")));
    const QString key = sendResultKey(result);
    if (result == clsMMSCommunication::Sent) {
        ui->lblProcessStatus->setText(localText(key));
        ui->lblDownloadError->clear();
    } else if (result == clsMMSCommunication::Failed) {
        ui->lblProcessStatus->clear();
        ui->lblDownloadError->setText(localText(key));
    } else if (!key.isEmpty()) {
        ui->lblDownloadError->setText(localText(key));
    }
}

void frmDownloadMMS::CloseWindow() {
    ui->ctlProgressBar1->Start(false);
    ui->lblProcessStatus->clear();
    ui->lblDownloadError->clear();
    hide();
}

void frmDownloadMMS::mousePressEvent(QMouseEvent* event) {
    DragWindow(this, event->button() == Qt::LeftButton ? 1 : 0);
}

void frmDownloadMMS::paintEvent(QPaintEvent*) {
    QPainter(this).drawPixmap(0, 0, formPicture(this));
}
