#include "app/frmMain.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "platform/modShared.h"
#include "store/modSizeEstimate.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"
#include "tests/audio/AudioTestUtil.h"

#include <QLabel>
#include <QPixmap>
#include <QPointer>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// The main window of a new message, over a fresh application folder with English texts.
struct SizeBudgetWindow : ::testing::Test {
    TestHome home{true};
    ScriptedResponder boxes;
    SharedConfig shared;
    QPointer<frmMain> window;

    void SetUp() override {
        shared.setProperties(std::make_unique<clsPropertiesXML>());
        shared.setLocalizer(std::make_unique<clsXMLocalizer>(*gProperties()))
            .SetLanguage(u"en-us"_s);
        gStarting = true;
        gSplashActive = false;
        window = new frmMain();
        gMainWindow = window;
        window->show();
    }
    void TearDown() override { delete window.data(); }

    QLabel* sizeLabel() const { return window->findChild<QLabel*>(u"lblMessageSize"_s); }
    // The label's text for the message as the estimator sees it.
    QString expected(std::int64_t budget) const {
        clsSizeEstimator estimator;
        const QString kb = kilobytes(estimator.Estimate(*window->message(), {}).total());
        return u"≈ %1 / %2"_s.arg(kb.chopped(3), kilobytes(budget));
    }
};

} // namespace

TEST_F(SizeBudgetWindow, StatusStripFollowsTheMessageAndTheLargestSize) {
    ASSERT_TRUE(window->message());
    EXPECT_EQ(sizeLabel()->text(), expected(307200));
    const QColor normal = sizeLabel()->palette().color(QPalette::WindowText);

    // Half a minute of sound is about 40 KB of AMR: above a 30 KB budget.
    const QString folder = home.path() + u'/';
    audiotest::writeFile(folder + u"long.wav"_s, audiotest::wavBytes(8000, 16, 1, 8000 * 30));
    QString path = folder, name = u"long.wav"_s;
    window->AssignSound(path, name);
    const QString withSound = sizeLabel()->text();
    EXPECT_EQ(withSound, expected(307200));
    EXPECT_EQ(sizeLabel()->palette().color(QPalette::WindowText), normal);

    gProperties()->SetProp(u"preferences"_s, u"MaxMessageSize"_s, u"30720"_s);
    window->ApplySettings();
    EXPECT_EQ(sizeLabel()->text(), expected(30720));
    EXPECT_NE(sizeLabel()->palette().color(QPalette::WindowText), normal) << "the warning colour";
    EXPECT_TRUE(sizeLabel()->font().bold());
    // With TESSALY_SCREENSHOTS set (a folder), this state is kept as size-budget-en.png, the
    // picture of docs/screenshots.
    if (const QString shots = qEnvironmentVariable("TESSALY_SCREENSHOTS"); !shots.isEmpty()) {
        EXPECT_TRUE(window->grab().save(shots + u"/size-budget-en.png"_s));
    }

    // A connected phone's name takes the place while it is shown.
    window->MMSCommunication_Connect(true, 1, u"Phone"_s);
    EXPECT_FALSE(sizeLabel()->isVisible());
    window->MMSCommunication_Connect(false, 0, QString());
    EXPECT_TRUE(sizeLabel()->isVisible());
}
