// The send windows, and a whole send from the main window to a phone mounted as a folder.
#include "PhoneTestSupport.h"
#include "app/frmMain.h"
#include "app/modMain.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/GrButtonIII.h"
#include "controls/ctlBlink.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "phone/TransportNames.h"
#include "phone/frmDownloadImage.h"
#include "phone/frmDownloadMMS.h"
#include "platform/modShared.h"
#include "platform/modText.h"
#include "store/clsMMSManager.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QRadioButton>
#include <QScreen>
#include <QTest>
#include <QTimer>

namespace {

QString text(const char* key) {
    return localText(QString::fromLatin1(key));
}

// English texts and a store of messages in a fresh application folder.
class SendWindows : public PhoneBusTest {
protected:
    void SetUp() override {
        PhoneBusTest::SetUp();
        shared.setProperties(std::make_unique<clsPropertiesXML>());
        shared.setLocalizer(std::make_unique<clsXMLocalizer>(*gProperties()))
            .SetLanguage(QStringLiteral("en-us"));
        manager.Initialize(home.file(QStringLiteral("Messages")), QStringLiteral("message.xml"));
        manager.ClearTemplateFileType(2); // the template is all these sends need
    }

    // A stored message of one slide with a picture, and a sound when `sound` is given.
    std::shared_ptr<clsMessage> storedMessage(const QString& sound = {}) {
        auto message = manager.CreateMsg(QStringLiteral("Greeting"));
        auto slide = message->Slides()->Add();
        QImage picture(160, 120, QImage::Format_RGB32);
        picture.fill(Qt::darkCyan);
        slide->setImage(picture);
        slide->setText(QStringLiteral("Hello"));
        if (!sound.isEmpty())
            slide->setSound(sound);
        EXPECT_TRUE(message->SaveMessage());
        return message;
    }

    TestHome home{true};
    SharedConfig shared;
    ScriptedResponder boxes;
    clsMMSManager manager;
    clsMMSCommunication facade;
};

TEST_F(SendWindows, SendWithoutPhoneSaysSoAndCanBeClosed) {
    auto message = storedMessage();
    frmDownloadMMS window(&manager, &facade, nullptr);
    EXPECT_EQ(window.lblProcessStatus()->text(), text("STR_DOWNLOAD_MSG"));
    window.show();
    window.DownloadMMS(*message, true, 0);
    EXPECT_EQ(window.lblProcessStatus()->text(), text("STR_NO_MSG_DOWNLOAD"));
    EXPECT_EQ(window.lblDownloadError()->text(), text("STR_NO_DEVICE_CONNECTED"));
    EXPECT_TRUE(window.cmdDownloadClose()->isEnabled());
    EXPECT_TRUE(QFileInfo::exists(message->Path() + QStringLiteral("mms/mms.tpl")));

    window.cmdDownloadClose()->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_TRUE(window.lblDownloadError()->text().isEmpty());
}

// The package follows the phone's name, whatever the transport: a "Q500" gets the installer.
TEST_F(SendWindows, PackageIsChosenByTheDeviceName) {
    startFake(facade, QStringLiteral("Nokia q500 X"));
    auto message = storedMessage();
    frmDownloadMMS window(&manager, &facade, nullptr);
    window.DownloadMMS(*message, true, 0);
    EXPECT_EQ(fake(QStringLiteral("Files")).value(0).toStringList(),
              QStringList{message->Path() + QStringLiteral("mms/mms.sis")});
    EXPECT_EQ(window.lblProcessStatus()->text(), text("STR_READY"));
    EXPECT_TRUE(window.lblDownloadError()->text().isEmpty());
}

TEST_F(SendWindows, FailedExportShowsItsReasonAndSendsNothing) {
    startFake(facade, QStringLiteral("Phone"));
    const QString sound = home.file(QStringLiteral("broken.wav"));
    writeFile(sound, "RIFF0000WAVEnot a sound");
    auto message = storedMessage(sound);
    frmDownloadMMS window(&manager, &facade, nullptr);
    window.DownloadMMS(*message, true, 0);
    EXPECT_TRUE(window.lblProcessStatus()->text().isEmpty());
    EXPECT_EQ(window.lblDownloadError()->text(),
              manager.GetSaveAsMMSStatus() + QStringLiteral("\n\n") + text("STR_NO_FILE_DOWNLOAD"));
    EXPECT_TRUE(manager.GetSaveAsMMSStatus().startsWith(text("STR_ERROR_AUDIO_CONV")))
        << manager.GetSaveAsMMSStatus().toStdString();
    EXPECT_TRUE(fake(QStringLiteral("Files")).value(0).toStringList().isEmpty());
    EXPECT_TRUE(window.cmdDownloadClose()->isEnabled());
}

TEST_F(SendWindows, PictureThatCannotBeConvertedIsNotSent) {
    startFake(facade, QStringLiteral("Phone"));
    frmDownloadImage window(&manager, &facade, nullptr);
    window.setPicture(QImage()); // nothing to convert
    window.cmdDownload_Click();
    EXPECT_EQ(window.lblDownloadStatus()->text(),
              text("STR_ERROR_PICT_CONV") + QStringLiteral("\n\n") + text("STR_NO_MSG_DOWNLOAD"));
    EXPECT_TRUE(fake(QStringLiteral("Files")).value(0).toStringList().isEmpty());
    EXPECT_TRUE(window.cmdDownload()->isEnabled());
}

// With TESSALY_SCREENSHOT_DIR set, the screen under the main window is saved into that folder:
//   TESSALY_SCREENSHOT_DIR=docs/screenshots QT_QPA_PLATFORM=xcb xvfb-run -a
//     build/bin/phone_window_tests --gtest_filter='*MainWindowSends*'   (one command line)
void photograph(QWidget* window, const QString& name) {
    const QString folder = qEnvironmentVariable("TESSALY_SCREENSHOT_DIR");
    if (folder.isEmpty())
        return;
    QTest::qWait(300); // the window system shows what was painted
    const QRect area = window->frameGeometry();
    EXPECT_TRUE(window->screen()
                    ->grabWindow(0, area.x(), area.y(), area.width(), area.height())
                    .save(QDir(folder).filePath(name)));
}

// The whole road from the main window: the transport chosen in the preferences starts with the
// window, the lamp lights, Send publishes and the package arrives in the phone's folder; the
// picture of the slide follows through its own window.
TEST_F(PhoneBusTest, MainWindowSendsToAPhoneFolder) {
    TestHome home(true);
    ScriptedResponder boxes;
    SharedConfig shared;
    const QString phone = home.file(QStringLiteral("Phone"));
    ASSERT_TRUE(QDir().mkpath(phone));
    clsPropertiesXML& properties = shared.setProperties(std::make_unique<clsPropertiesXML>());
    properties.SetProp(QStringLiteral("preferences"), QStringLiteral("CommunicationType"),
                       QStringLiteral("3"));
    properties.SetProp(QStringLiteral("preferences"), QStringLiteral("PhoneFolder"), phone);
    properties.SetProp(QStringLiteral("preferences"), QStringLiteral("AskNewSlide"),
                       QStringLiteral("0"));
    ASSERT_TRUE(properties.SaveXmlFile()); // the companion reads the file
    shared.setLocalizer(std::make_unique<clsXMLocalizer>(properties))
        .SetLanguage(QStringLiteral("en-us"));
    gStarting = true;
    gSplashActive = false;
    QPointer<frmMain> window = new frmMain();
    window->show();
    ASSERT_TRUE(window->MMSCommunication());
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->MMSCommunication()->connected(); }, 10000));
    EXPECT_EQ(window->findChild<QLabel*>(QStringLiteral("lblPhoneConnected"))->text(),
              QStringLiteral("Phone"));
    EXPECT_EQ(window->findChild<ctlBlink*>(QStringLiteral("ctlBlink1"))->Mode(), 3);
    EXPECT_TRUE(boxes.boxes.empty());
    window->MMSManager()->ClearTemplateFileType(2);

    QStringList seen; // the send window's lines when it was done
    auto* closer = new QTimer(window);
    QObject::connect(closer, &QTimer::timeout, [&] {
        frmDownloadMMS* sendWindow = window->FrmDownloadMMS();
        if (!sendWindow || !sendWindow->isVisible() || !sendWindow->cmdDownloadClose()->isEnabled())
            return;
        seen = {sendWindow->lblProcessStatus()->text(), sendWindow->lblDownloadError()->text()};
        photograph(window, QStringLiteral("send-window-en.png"));
        sendWindow->cmdDownloadClose()->click();
    });
    closer->start(20);
    window->setChanged(true);
    window->findChild<GrButtonIII*>(QStringLiteral("cmdDownload"))->click();
    closer->stop();
    EXPECT_EQ(seen, (QStringList{text("STR_READY"), QString()}));
    const QString published = window->message()->Path() + QStringLiteral("mms/mms.tpl");
    EXPECT_EQ(readAll(QDir(phone).filePath(QStringLiteral("mms.tpl"))), readAll(published));
    EXPECT_TRUE(readAll(published).contains("mms.smil"));
    EXPECT_TRUE(window->changed()) << "the store before the send is no change of state";

    // The slide's picture through its own window (menu key 25).
    QTimer::singleShot(0, [&] {
        auto* pictureWindow = qobject_cast<frmDownloadImage*>(QApplication::activeModalWidget());
        ASSERT_TRUE(pictureWindow);
        pictureWindow->cmdDownload_Click();
        seen = {pictureWindow->lblDownloadStatus()->text()};
        photograph(window, QStringLiteral("send-picture-en.png"));
        pictureWindow->cmdCancel_Click();
    });
    window->ctlMainMenu1_MenuClick(25);
    EXPECT_EQ(seen, QStringList{text("STR_READY")});
    const QImage sent(QDir(phone).filePath(QStringLiteral("MyImage.jpg")));
    EXPECT_EQ(sent.size(), QSize(160, 120));
    delete window.data();
}

} // namespace
