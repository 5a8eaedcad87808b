#include "app/frmMain.h"
#include "audio/ctlAudioRecorder.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/GrButtonIII.h"
#include "controls/ctlUpDown.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "platform/modShared.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"
#include "tests/audio/AudioTestUtil.h"

#include <QLabel>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

// The main window over a fresh application folder with English texts and scripted boxes.
class SlideSound : public ::testing::Test {
protected:
    TestHome home{true};
    ScriptedResponder boxes;
    SharedConfig shared;
    QPointer<frmMain> window;
    QString folder = home.path() + QLatin1Char('/');

    void SetUp() override {
        shared.setProperties(std::make_unique<clsPropertiesXML>());
        shared.setLocalizer(std::make_unique<clsXMLocalizer>(*gProperties()))
            .SetLanguage(QStringLiteral("en-us"));
        // No phone: the window would otherwise look for a transport on the session bus.
        gProperties()->SetProp(QStringLiteral("preferences"), QStringLiteral("CommunicationType"),
                               QStringLiteral("0"));
        gStarting = true;
        gSplashActive = false;
        window = new frmMain();
        gMainWindow = window;
        window->show();
    }
    void TearDown() override { delete window.data(); }

    template <typename T> T* child(const char* name) const {
        return window->findChild<T*>(QString::fromLatin1(name));
    }
    QString soundCaption() const { return child<QLabel>("lblSoundFile")->text(); }
    QString tone(const QString& name, int rate, int bits, int milliseconds) {
        audiotest::writeFile(folder + name,
                             audiotest::wavBytes(rate, bits, 1, rate * milliseconds / 1000));
        return name;
    }
};

TEST_F(SlideSound, RecommendedWaveIsAssignedSilentlyAndSetsTheDuration) {
    QString path = folder;
    QString name = tone(QStringLiteral("voice.wav"), 8000, 16, 3400);
    window->setChanged(false);
    window->AssignSound(path, name);

    EXPECT_TRUE(boxes.boxes.empty());
    EXPECT_EQ(window->slide()->Sound(), folder + name);
    EXPECT_EQ(window->slide()->Duration(), 3400);
    EXPECT_EQ(window->slide()->SoundDuration(), 3400);
    EXPECT_EQ(child<ctlUpDown>("ctlUpDown1")->Value(), 3400);
    EXPECT_TRUE(soundCaption().startsWith(QStringLiteral("voice.wav - 3")));
    EXPECT_EQ(child<QLabel>("lblSoundFile")->toolTip(), folder + name);
    EXPECT_EQ(window->UpdateTotalTime(), 3400);
    EXPECT_TRUE(window->changed());

    window->DeleteSlideSound(window->slide()->Index());
    EXPECT_TRUE(window->slide()->Sound().isEmpty());
    EXPECT_TRUE(soundCaption().isEmpty());
}

TEST_F(SlideSound, OtherSoundsAreAskedAboutOrRefused) {
    QString path = folder;
    QString name = tone(QStringLiteral("coarse.wav"), 8000, 8, 500);
    boxes.boxAnswers = {Vb::No};
    window->AssignSound(path, name);
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].style, Vb::YesNo | Vb::Information);
    EXPECT_TRUE(boxes.boxes[0].text.contains(QStringLiteral("8000 samples per second 8 bits")));
    EXPECT_TRUE(window->slide()->Sound().isEmpty());

    boxes.boxAnswers = {Vb::Yes};
    window->AssignSound(path, name);
    EXPECT_EQ(window->slide()->Sound(), folder + name);
    EXPECT_EQ(window->slide()->Duration(), 500);

    // A kind of file no phone plays is refused, and the slide keeps its sound.
    home.write(QStringLiteral("notes.txt"), "la la");
    QString text = QStringLiteral("notes.txt");
    window->AssignSound(path, text);
    ASSERT_EQ(boxes.boxes.size(), 3u);
    EXPECT_EQ(boxes.boxes[2].style, Vb::Information);
    EXPECT_EQ(window->slide()->Sound(), folder + name);

    // Empty names take the sound off.
    QString none;
    window->AssignSound(none, none);
    EXPECT_TRUE(window->slide()->Sound().isEmpty());
}

TEST_F(SlideSound, PlayingTheSlideSoundMovesTheProgressAndStops) {
    QString path = folder;
    QString name = tone(QStringLiteral("short.wav"), 8000, 16, 1200);
    window->AssignSound(path, name);
    auto* play = child<GrButtonIII>("bPlayAudio");
    auto* progress = child<QLabel>("lblSoundProgress");
    auto* add = child<GrButtonIII>("cmdAddNewSlide");

    play->click();
    EXPECT_TRUE(play->Pressed());
    EXPECT_FALSE(add->isEnabled());
    EXPECT_FALSE(child<GrButtonIII>("bDeleteAudio")->isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([&] { return progress->width() > 0; }, 5000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->TimerPlay()->isActive(); }, 5000));
    EXPECT_EQ(progress->width(), 0);
    EXPECT_FALSE(play->Pressed());
    EXPECT_TRUE(add->isEnabled());
    EXPECT_TRUE(boxes.boxes.empty());
}

TEST_F(SlideSound, RecorderHandsItsSoundToTheSlide) {
    auto* recorder = child<ctlAudioRecorder>("ctlAudioRecorder1");
    ASSERT_NE(recorder, nullptr);
    EXPECT_EQ(recorder->cmdSetup()->text(), QStringLiteral("Input..."));
    EXPECT_EQ(recorder->cmdRecord()->toolTip(), QStringLiteral("Record"));
    QString archive;
    QString message;
    emit recorder->PathsWanted(archive, message);
    EXPECT_TRUE(archive.endsWith(QStringLiteral("/Archive/Sounds/")));
    EXPECT_TRUE(archive.startsWith(home.path()));
    EXPECT_EQ(message, window->message()->Path());

    QString path = folder;
    QString name = tone(QStringLiteral("R_261123_010203.wav"), 8000, 16, 800);
    emit recorder->SoundReady(path, name);
    EXPECT_EQ(window->slide()->Sound(), folder + name);
    EXPECT_EQ(window->slide()->Duration(), 800);
}

} // namespace
