// The main window's side of sending to the phone: the transport at start, the Send button, the
// picture download and the progress of publishing.
#include "app/frmMain.h"
#include "ui_frmMain.h"

#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "phone/clsMMSCommunication.h"
#include "phone/frmDownloadImage.h"
#include "phone/frmDownloadMMS.h"
#include "platform/Failure.h"
#include "platform/modDialogs.h"
#include "platform/modText.h"
#include "store/clsMMSManager.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>

namespace {

const QString kPreferences = QStringLiteral("preferences");

// Lets window events run until `done` holds, waking at least every 20 ms.
template <typename Done> void waitUntil(Done done) {
    QTimer wake;
    wake.start(20);
    while (!done())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

} // namespace

void frmMain::connectSendCommands() {
    connect(ui->cmdDownload, &QAbstractButton::clicked, this, &frmMain::SendMessageToPhone);
}

void frmMain::InitCommunication() {
    mMMSCommunication = std::make_unique<clsMMSCommunication>();
    connect(mMMSCommunication.get(), &clsMMSCommunication::Connect, this,
            &frmMain::MMSCommunication_Connect);
    const std::int32_t wanted =
        preference(kPreferences, QStringLiteral("CommunicationType"), QStringLiteral("1")).toInt();
    const std::int32_t result = mMMSCommunication->Initialize(wanted);
    if (result == clsMMSCommunication::None && wanted != clsMMSCommunication::None) {
        // Said once: the preference is switched off at once.
        MsgBox(localText(QStringLiteral("STR_COM_INFO1")) + QStringLiteral("\n\n") +
                   localText(QStringLiteral("STR_COM_INFO2")),
               Vb::Exclamation, localText(QStringLiteral("STR_COM_INFO_TITLE")));
        if (gProperties()) {
            gProperties()->SetProp(kPreferences, QStringLiteral("CommunicationType"),
                                   QStringLiteral("0"));
            gProperties()->SaveXmlFile();
        }
    } else if (result == clsMMSCommunication::Ir) {
        const QString os = GetOsName();
        if (!os.isEmpty()) {
            const QString command =
                preference(os.section(QLatin1Char('_'), 0, 0), QStringLiteral("IrDaCommand"),
                           QStringLiteral("IrFtp.exe \"%f%\""));
            try {
                mMMSCommunication->SetIrDaCommandline(command);
            } catch (const Failure&) {
                // A companion that does not take its command shows no device.
            }
        }
    }
    mCommunicationReady = true;
}

void frmMain::SendMessageToPhone() {
    if (!mMessage)
        return;
    const bool changed = mChanged;
    ui->cmdDownload->setEnabled(false);
    SaveCurrentMessage(false);

    if (!mFrmDownloadMMS) {
        mFrmDownloadMMS = new frmDownloadMMS(mMMSManager.get(), mMMSCommunication.get(), this);
        connect(mMMSManager.get(), &clsMMSManager::ProsessingSlide, this,
                &frmMain::MMSManager_ProsessingSlide);
    }
    mFrmDownloadMMS->show();
    // Events run from here on; the program may end meanwhile and take this window with it.
    const QPointer<frmMain> self(this);
    QCoreApplication::processEvents();
    if (!self || !mFrmDownloadMMS)
        return;

    const std::int32_t timeFormat = preference(kPreferences, QStringLiteral("MMSTimeFormat"),
                                               QStringLiteral("ms")) == QLatin1String("s")
                                        ? 1
                                        : 0;
    mFrmDownloadMMS->DownloadMMS(*mMessage, true, timeFormat);
    // The window stays until the user has read it.
    const QPointer<frmDownloadMMS> window = mFrmDownloadMMS;
    waitUntil([&window] { return !window || !window->isVisible(); });
    if (!self)
        return;

    mChanged = changed;
    ui->cmdDownload->setEnabled(true);
}

void frmMain::MMSManager_ProsessingSlide(std::int16_t slideIndex, std::int16_t slideCount) {
    if (!mFrmDownloadMMS || !mFrmDownloadMMS->isVisible())
        return;
    if (slideIndex < 1) {
        if (slideCount == 1)
            mFrmDownloadMMS->SetStatusTxt(localText(QStringLiteral("STR_COMPRESS")));
        else if (slideCount == 2)
            mFrmDownloadMMS->SetStatusTxt(localText(QStringLiteral("STR_READY")));
        return;
    }
    mFrmDownloadMMS->SetStatusTxt(localTextPar(
        QStringLiteral("STR_PROCESS"), {QString::number(slideIndex), QString::number(slideCount)}));
}

void frmMain::ShowDownloadPicture() {
    // On the heap: should the program end while it is open, the main window takes it along.
    const QPointer<frmDownloadImage> window =
        new frmDownloadImage(mMMSManager.get(), mMMSCommunication.get(), this);
    window->setPicture(ui->picPreview->pixmap().toImage());
    window->exec();
    delete window.data();
}
