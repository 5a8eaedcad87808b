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

using namespace Qt::StringLiterals;

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
            .SetLanguage(u"en-us"_s);
        manager.Initialize(home.file(u"Messages"_s), u"message.xml"_s);
        manager.ClearTemplateFileType(2); // the template is all these sends need
    }

    // A stored message of one slide with a picture, and a sound when `sound` is given.
    std::shared_ptr<clsMessage> storedMessage(const QString& sound = {}) {
        auto message = manager.CreateMsg(u"Greeting"_s);
        auto slide = message->Slides()->Add();
        QImage picture(160, 120, QImage::Format_RGB32);
        picture.fill(Qt::darkCyan);
        slide->setImage(picture);
        slide->setText(u"Hello"_s);
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
    EXPECT_TRUE(QFileInfo::exists(message->Path() + u"mms/mms.tpl"_s));

    window.cmdDownloadClose()->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_TRUE(window.lblDownloadError()->text().isEmpty());
}

// The package follows the phone's name, whatever the transport: a "Q500" gets the installer.
TEST_F(SendWindows, PackageIsChosenByTheDeviceName) {
    startFake(facade, u"Nokia q500 X"_s);
    auto message = storedMessage();
    frmDownloadMMS window(&manager, &facade, nullptr);
    window.DownloadMMS(*message, true, 0);
    EXPECT_EQ(fake(u"Files"_s).value(0).toStringList(),
              QStringList{message->Path() + u"mms/mms.sis"_s});
    EXPECT_EQ(window.lblProcessStatus()->text(), text("STR_READY"));
    EXPECT_TRUE(window.lblDownloadError()->text().isEmpty());
}

TEST_F(SendWindows, FailedExportShowsItsReasonAndSendsNothing) {
    startFake(facade, u"Phone"_s);
    const QString sound = home.file(u"broken.wav"_s);
    writeFile(sound, "RIFF0000WAVEnot a sound");
    auto message = storedMessage(sound);
    frmDownloadMMS window(&manager, &facade, nullptr);
    window.DownloadMMS(*message, true, 0);
    EXPECT_TRUE(window.lblProcessStatus()->text().isEmpty());
    EXPECT_EQ(window.lblDownloadError()->text(),
              manager.GetSaveAsMMSStatus() + u"\n\n"_s + text("STR_NO_FILE_DOWNLOAD"));
    EXPECT_TRUE(manager.GetSaveAsMMSStatus().startsWith(text("STR_ERROR_AUDIO_CONV")))
        << manager.GetSaveAsMMSStatus().toStdString();
    EXPECT_TRUE(fake(u"Files"_s).value(0).toStringList().isEmpty());
    EXPECT_TRUE(window.cmdDownloadClose()->isEnabled());
}

TEST_F(SendWindows, PictureThatCannotBeConvertedIsNotSent) {
    startFake(facade, u"Phone"_s);
    frmDownloadImage window(&manager, &facade, nullptr);
    window.setPicture(QImage()); // nothing to convert
    window.cmdDownload_Click();
    EXPECT_EQ(window.lblDownloadStatus()->text(),
              text("STR_ERROR_PICT_CONV") + u"\n\n"_s + text("STR_NO_MSG_DOWNLOAD"));
    EXPECT_TRUE(fake(u"Files"_s).value(0).toStringList().isEmpty());
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
    const QString phone = home.file(u"Phone"_s);
    ASSERT_TRUE(QDir().mkpath(phone));
    clsPropertiesXML& properties = shared.setProperties(std::make_unique<clsPropertiesXML>());
    properties.SetProp(u"preferences"_s, u"CommunicationType"_s, u"3"_s);
    properties.SetProp(u"preferences"_s, u"PhoneFolder"_s, phone);
    properties.SetProp(u"preferences"_s, u"AskNewSlide"_s, u"0"_s);
    ASSERT_TRUE(properties.SaveXmlFile()); // the companion reads the file
    shared.setLocalizer(std::make_unique<clsXMLocalizer>(properties)).SetLanguage(u"en-us"_s);
    gStarting = true;
    gSplashActive = false;
    QPointer<frmMain> window = new frmMain();
    window->show();
    ASSERT_TRUE(window->MMSCommunication());
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->MMSCommunication()->connected(); }, 30000));
    EXPECT_EQ(window->findChild<QLabel*>(u"lblPhoneConnected"_s)->text(), u"Phone"_s);
    EXPECT_EQ(window->findChild<ctlBlink*>(u"ctlBlink1"_s)->Mode(), 3);
    EXPECT_TRUE(boxes.boxes.empty());
    window->MMSManager()->ClearTemplateFileType(2);

    QStringList seen; // the send window's lines when it was done
    auto* closer = new QTimer(window);
    QObject::connect(closer, &QTimer::timeout, [&] {
        frmDownloadMMS* sendWindow = window->FrmDownloadMMS();
        // Done once the close button is back and the opening line has gone.
        if (!sendWindow || !sendWindow->isVisible() ||
            !sendWindow->cmdDownloadClose()->isEnabled() ||
            sendWindow->lblProcessStatus()->text() == text("STR_DOWNLOAD_MSG"))
            return;
        seen = {sendWindow->lblProcessStatus()->text(), sendWindow->lblDownloadError()->text()};
        photograph(window, u"send-window-en.png"_s);
        sendWindow->cmdDownloadClose()->click();
    });
    closer->start(20);
    window->setChanged(true);
    window->findChild<GrButtonIII*>(u"cmdDownload"_s)->click();
    closer->stop();
    EXPECT_EQ(seen, (QStringList{text("STR_READY"), QString()}));
    const QString published = window->message()->Path() + u"mms/mms.tpl"_s;
    EXPECT_EQ(readAll(QDir(phone).filePath(u"mms.tpl"_s)), readAll(published));
    EXPECT_TRUE(readAll(published).contains("mms.smil"));
    EXPECT_TRUE(window->changed()) << "the store before the send is no change of state";

    // The slide's picture through its own window (menu key 25).
    QTimer::singleShot(0, [&] {
        auto* pictureWindow = qobject_cast<frmDownloadImage*>(QApplication::activeModalWidget());
        ASSERT_TRUE(pictureWindow);
        pictureWindow->cmdDownload_Click();
        seen = {pictureWindow->lblDownloadStatus()->text()};
        photograph(window, u"send-picture-en.png"_s);
        pictureWindow->cmdCancel_Click();
    });
    window->ctlMainMenu1_MenuClick(25);
    EXPECT_EQ(seen, QStringList{text("STR_READY")});
    const QImage sent(QDir(phone).filePath(u"MyImage.jpg"_s));
    EXPECT_EQ(sent.size(), QSize(160, 120));
    delete window.data();
}

} // namespace
