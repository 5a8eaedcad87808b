#include "app/frmMain.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "platform/modShared.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"
#include "tests/audio/AudioTestUtil.h"

#include <QLabel>
#include <QPixmap>
#include <QPointer>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

// The main window of a new message: the status strip's size follows a sound assigned and the
// largest size of the preferences, and gives its place to a connected phone's name.
TEST(SizeBudgetWindow, StatusStripFollowsTheMessageAndTheLargestSize) {
    TestHome home(true);
    ScriptedResponder boxes;
    SharedConfig shared;
    shared.setProperties(std::make_unique<clsPropertiesXML>());
    shared.setLocalizer(std::make_unique<clsXMLocalizer>(*gProperties())).SetLanguage(u"en-us"_s);
    gStarting = true;
    gSplashActive = false;
    const std::unique_ptr<frmMain> window = std::make_unique<frmMain>();
    gMainWindow = window.get();
    window->show();
    auto* label = window->findChild<QLabel*>(u"lblMessageSize"_s);
    const auto expected = [&](std::int64_t budget) {
        const QString kb = kilobytes(clsSizeEstimator().Estimate(*window->message(), {}).total());
        return u"≈ %1 / %2"_s.arg(kb.chopped(3), kilobytes(budget));
    };
    ASSERT_TRUE(window->message());
    EXPECT_EQ(label->text(), expected(307200));
    const QColor normal = label->palette().color(QPalette::WindowText);

    // Half a minute of sound is about 40 KB of AMR.
    audiotest::writeFile(home.file(u"long.wav"_s), audiotest::wavBytes(8000, 16, 1, 8000 * 30));
    QString path = home.path() + u'/', name = u"long.wav"_s;
    window->AssignSound(path, name);
    EXPECT_EQ(label->text(), expected(307200));
    EXPECT_EQ(label->palette().color(QPalette::WindowText), normal);

    gProperties()->SetProp(u"preferences"_s, u"MaxMessageSize"_s, u"30720"_s);
    window->ApplySettings();
    EXPECT_EQ(label->text(), expected(30720));
    EXPECT_NE(label->palette().color(QPalette::WindowText), normal) << "the warning colour";
    // With TESSALY_SCREENSHOTS set (a folder), this state is kept as size-budget-en.png, the
    // picture of docs/screenshots.
    if (const QString shots = qEnvironmentVariable("TESSALY_SCREENSHOTS"); !shots.isEmpty()) {
        EXPECT_TRUE(window->grab().save(shots + u"/size-budget-en.png"_s));
    }

    window->MMSCommunication_Connect(true, 1, u"Phone"_s);
    EXPECT_FALSE(label->isVisible());
    window->MMSCommunication_Connect(false, 0, QString());
    EXPECT_TRUE(label->isVisible());
}
