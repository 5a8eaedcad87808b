// Fuzz target: any bytes as the message.xml of a stored message, opened from the message list
// as the user would. The main window must refuse the message with its box or open what it can
// read, and in either case go on with a message it can work with: no failure may escape.
#include "app/frmMain.h"
#include "browse/frmMessageList.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/ctlMainMenu.h"
#include "document/clsDrawObjects.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "platform/modDialogs.h"
#include "platform/modShared.h"
#include "store/clsMMSManager.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"

#include <QFile>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace {

// The program's state for the whole run: an application folder, the shared objects, scripted
// boxes and one main window.
struct World {
    TestHome home{true};
    SharedConfig shared;
    ScriptedResponder boxes;
    std::unique_ptr<frmMain> window;

    World() {
        shared.setProperties(std::make_unique<clsPropertiesXML>())
            .SetProp(QStringLiteral("preferences"), QStringLiteral("AskNewSlide"),
                     QStringLiteral("0"));
        shared.setLocalizer(std::make_unique<clsXMLocalizer>(*gProperties()))
            .SetLanguage(QStringLiteral("en-us"));
        gStarting = true;
        gSplashActive = false;
        window = std::make_unique<frmMain>();
        window->setAttribute(Qt::WA_DeleteOnClose, false);
        window->show();
    }
};

World* gWorld = nullptr;

struct WorldEnvironment : ::testing::Environment {
    void SetUp() override { gWorld = new World; }
    void TearDown() override {
        delete gWorld;
        gWorld = nullptr;
    }
};
const auto* const kEnvironment = ::testing::AddGlobalTestEnvironment(new WorldEnvironment);

} // namespace

// Seeds: messages the program itself writes (slides with text, sound and draw objects), and the
// damage the window must refuse.
std::vector<QByteArray> fuzzSeeds() {
    clsMMSManager* store = gWorld->window->MMSManager();
    auto message = store->CreateMsg(QStringLiteral("Seed"));
    for (int i = 1; i <= 3; ++i) {
        auto slide = message->Slides()->Add();
        slide->setText(QStringLiteral("Slide %1 ä").arg(i));
        slide->setDuration(1000 * i);
        slide->setSound(QStringLiteral("beep.wav"));
        slide->setSoundDuration(800);
        slide->DrawObjects()->setBackColor(0xFF00FF);
        clsDrawProperties text;
        text.typ = QStringLiteral("text");
        text.Data = QStringLiteral("Hi");
        slide->DrawObjects()->Add(text);
    }
    if (!message->SaveMessage())
        return {};
    QFile file(gWorld->home.file(QStringLiteral("Messages/Seed/message.xml")));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray good = file.readAll();
    return {
        good,
        QByteArray(good).replace("dur=\"1000\"", "dur=\"x\""),
        QByteArray(good).replace("index=\"2\"", "index=\"99999\""),
        QByteArray(good).replace("ROOT", "RXXT"),
        QByteArray(good).replace("fsize=", "fsize=\"big\" a="),
        QByteArray("<?xml version=\"1.0\"?><ROOT><MESSAGE name=\"x\"><SLIDES/></MESSAGE></ROOT>"),
        QByteArray()};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    World& world = *gWorld;
    world.window->setChanged(false);
    world.window->NewMessage(gUntitledName); // a refused message leaves this one
    world.home.write(QStringLiteral("Messages/Fuzz/message.xml"),
                     QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    world.window->mFrmOpen_SelectedMessage(frmMessageList::Open, QStringLiteral("Fuzz"));
    world.boxes.boxes.clear();

    // The window goes on with a message it can work with.
    frmMain& window = *world.window;
    if (!window.message() || !window.message()->Slides() || !window.slide())
        ADD_FAILURE() << "no usable message after opening:\n"
                      << std::string(reinterpret_cast<const char*>(data), size);
    window.ctlMainMenu1_MenuClick(MenuKey::SlideAdd);
    window.UpdateTotalTime();
    return 0;
}
