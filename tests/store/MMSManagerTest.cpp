#include "config/clsPropertiesXML.h"
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "document/modDocument.h"
#include "platform/Failure.h"
#include "platform/FolderSwap.h"
#include "platform/StatusSink.h"
#include "platform/modDialogs.h"
#include "platform/modShared.h"
#include "store/clsMMSManager.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace {
// A manager over <home>/Messages/.
struct Store {
    TestHome home;
    clsMMSManager manager;
    Store() {
        manager.Initialize(home.file(QStringLiteral("Messages\\")), QStringLiteral("message.xml"));
    }
    QString folder(const QString& name) const {
        return home.file(QStringLiteral("Messages/") + name);
    }
};

QImage filled(QColor colour) {
    QImage image(160, 120, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

// Records what the store reports and answers from a queue (then with the default button).
struct RecordingSink : StatusSink {
    std::vector<ScriptedResponder::Box> asked;
    std::deque<int> answers;
    int ask(const QString& text, int style, const QString& title) override {
        asked.push_back({text, style, title});
        if (answers.empty())
            return msgBoxDefaultAnswer(style);
        const int answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

QStringList namesOf(const QStringList& entries) {
    QStringList names;
    for (const QString& entry : entries)
        names << entry.section(QLatin1Char('\t'), 0, 0);
    names.sort();
    return names;
}
} // namespace

TEST(MMSManagerTest, InitializeKeepsTheStoreFolderAndMakesIt) {
    Store store;
    EXPECT_EQ(store.manager.GetMessagePath(), store.home.file(QStringLiteral("Messages/")));
    EXPECT_TRUE(QFileInfo(store.folder(QString())).isDir());
}

TEST(MMSManagerTest, EmptyStoreListsMinusOneAndLeavesTheArray) {
    Store store;
    RecordingSink sink;
    store.manager.setStatusSink(&sink);
    QStringList names{QStringLiteral("keep")};
    EXPECT_EQ(store.manager.ListMessages(names), -1);
    EXPECT_EQ(names, QStringList{QStringLiteral("keep")});
    EXPECT_TRUE(sink.asked.empty());
}

TEST(MMSManagerTest, ListGivesNameTabDateForEachFolder) {
    Store store;
    for (const QString& name : {QStringLiteral("Alpha"), QStringLiteral("beta gamma")})
        ASSERT_TRUE(store.manager.CreateMsg(name)->SaveMessage());
    store.home.write(QStringLiteral("Messages/loose.txt"), "not a message");
    QStringList names;
    EXPECT_EQ(store.manager.ListMessages(names), 1);
    ASSERT_EQ(names.size(), 2);
    EXPECT_EQ(namesOf(names), (QStringList{QStringLiteral("Alpha"), QStringLiteral("beta gamma")}));
    for (const QString& entry : names) {
        const QStringList parts = entry.split(QLatin1Char('\t'));
        ASSERT_EQ(parts.size(), 2);
        // The test locale is English (United States): "11/22/2026 8:11:48 PM".
        const QDateTime when =
            QLocale().toDateTime(parts[1], QStringLiteral("M/d/yyyy h:mm:ss AP"));
        ASSERT_TRUE(when.isValid()) << parts[1].toStdString();
        EXPECT_LE(qAbs(when.secsTo(QDateTime::currentDateTime())), 3600);
    }
}

TEST(MMSManagerTest, UninitialisedStoreReportsToItsSinkAndShowsNoBox) {
    TestHome home;
    clsMMSManager manager;
    ScriptedResponder responder;
    QStringList names;
    EXPECT_EQ(manager.ListMessages(names), -1) << "the quiet sink by default";
    RecordingSink sink;
    manager.setStatusSink(&sink);
    EXPECT_EQ(manager.ListMessages(names), -1);
    ASSERT_EQ(sink.asked.size(), 1u);
    EXPECT_EQ(sink.asked[0].title, QStringLiteral("ListMessages"));
    EXPECT_TRUE(sink.asked[0].text.endsWith(QStringLiteral("\r\nError code: 91")));
    EXPECT_EQ(sink.asked[0].style, Vb::Critical);
    EXPECT_FALSE(manager.CopyMsg(QStringLiteral("a"), QStringLiteral("b")));
    EXPECT_TRUE(responder.boxes.empty());
}

TEST(MMSManagerTest, CreateTakesTheSlideDurationPreference) {
    Store store;
    std::shared_ptr<clsMessage> message, opened;
    {
        SharedConfig shared;
        clsPropertiesXML& properties = shared.setProperties(std::make_unique<clsPropertiesXML>());
        properties.Initialize(store.home.file(QStringLiteral("prefs.xml")),
                              QStringLiteral("tessaly"));
        properties.SetProp(QStringLiteral("preferences"), QStringLiteral("SlideDuration"),
                           QStringLiteral("4200"));
        message = store.manager.CreateMsg(QStringLiteral("New"));
        opened = store.manager.OpenMsg(QStringLiteral("New"));
    }
    EXPECT_EQ(message->DefaultDuration(), 4200);
    EXPECT_EQ(opened->DefaultDuration(), 4200);
    EXPECT_EQ(message->Slides()->Count(), 0);
    EXPECT_EQ(message->name(), QStringLiteral("New"));
    EXPECT_FALSE(QFileInfo::exists(store.folder(QStringLiteral("New"))));
    EXPECT_EQ(store.manager.CreateMsg(QStringLiteral("Other"))->DefaultDuration(), 3000);
}

TEST(MMSManagerTest, OpenReadsThePicturesAndMissingOnesNeverStopIt) {
    Store store;
    auto message = store.manager.CreateMsg(QStringLiteral("Pics"));
    message->Slides()->Add()->setImage(filled(Qt::red));
    message->Slides()->Add();
    message->Slides()->Add()->setImage(filled(Qt::green));
    ASSERT_TRUE(store.manager.SaveMsg(*message));
    QFile::remove(store.folder(QStringLiteral("Pics/Slide_3.bmp")));
    store.home.write(QStringLiteral("Messages/Pics/Slide_2.bmp"), "BM broken");

    auto opened = store.manager.OpenMsg(QStringLiteral("Pics"));
    ASSERT_EQ(opened->Slides()->Count(), 3);
    EXPECT_EQ(opened->Slides()->Item(1)->Image().pixelColor(5, 5), QColor(Qt::red));
    EXPECT_TRUE(opened->Slides()->Item(2)->Image().isNull());
    EXPECT_TRUE(opened->Slides()->Item(3)->Image().isNull());

    // Saving writes the empty picture for the slide, but the unreadable file is kept beside it;
    // a missing one needs no backup.
    EXPECT_EQ(opened->backupNames(), QStringList{QStringLiteral("Slide_2.bmp.bak")});
    ASSERT_TRUE(store.manager.SaveMsg(*opened)) << opened->lastError().toStdString();
    QFile backup(store.folder(QStringLiteral("Pics/Slide_2.bmp.bak")));
    ASSERT_TRUE(backup.open(QIODevice::ReadOnly));
    EXPECT_EQ(backup.readAll(), QByteArray("BM broken"));
    EXPECT_FALSE(QImage(store.folder(QStringLiteral("Pics/Slide_2.bmp"))).isNull());
    EXPECT_FALSE(QFileInfo::exists(store.folder(QStringLiteral("Pics/Slide_3.bmp.bak"))));
}

TEST(MMSManagerTest, OpenOfADamagedDocumentKeepsItOnTheNextSave) {
    Store store;
    const QByteArray damaged = "<ROOT><HEADER></ROOT>";
    store.home.write(QStringLiteral("Messages/Hurt/message.xml"), damaged);
    store.home.write(QStringLiteral("Messages/Hurt/Slide_1.bmp"), "BM old picture");
    auto opened = store.manager.OpenMsg(QStringLiteral("Hurt"));
    ASSERT_TRUE(store.manager.SaveMsg(*opened));
    QFile backup(store.folder(QStringLiteral("Hurt/message.xml.bak")));
    ASSERT_TRUE(backup.open(QIODevice::ReadOnly));
    EXPECT_EQ(backup.readAll(), damaged);
    EXPECT_TRUE(QFileInfo::exists(store.folder(QStringLiteral("Hurt/Slide_1.bmp.bak"))));
}

TEST(MMSManagerTest, OpenOfAFolderWithoutDocumentGivesAnEmptyMessage) {
    Store store;
    QDir().mkpath(store.folder(QStringLiteral("Bare")));
    auto opened = store.manager.OpenMsg(QStringLiteral("Bare"));
    EXPECT_EQ(opened->name(), QStringLiteral("Bare"));
    EXPECT_EQ(opened->Slides()->Count(), 0);
    store.home.write(QStringLiteral("Messages/Broken/message.xml"), "<ROOT><MESSAGE");
    auto broken = store.manager.OpenMsg(QStringLiteral("Broken"));
    EXPECT_EQ(broken->name(), QStringLiteral("Broken"));
    EXPECT_EQ(broken->Slides()->Count(), 0);
}

TEST(MMSManagerTest, RenameMovesTheFolderAndRefusesAnExistingOne) {
    Store store;
    auto message = store.manager.CreateMsg(QStringLiteral("Old"));
    EXPECT_FALSE(store.manager.RenameMsg(*message, QStringLiteral("New"))) << "not saved yet";
    ASSERT_TRUE(message->SaveMessage());
    ASSERT_TRUE(store.manager.CreateMsg(QStringLiteral("Taken"))->SaveMessage());

    EXPECT_FALSE(store.manager.RenameMsg(*message, QStringLiteral("Taken")));
    EXPECT_EQ(message->name(), QStringLiteral("Old"));
    EXPECT_TRUE(QFileInfo::exists(store.folder(QStringLiteral("Old/message.xml"))));
    EXPECT_FALSE(store.manager.RenameMsg(*message, QStringLiteral("../Outside")));

    EXPECT_TRUE(store.manager.RenameMsg(*message, QStringLiteral("New")));
    EXPECT_EQ(message->name(), QStringLiteral("New"));
    EXPECT_EQ(message->Path(), store.folder(QStringLiteral("New/")));
    EXPECT_FALSE(QFileInfo::exists(store.folder(QStringLiteral("Old"))));
    EXPECT_TRUE(QFileInfo::exists(store.folder(QStringLiteral("New/message.xml"))));
}

TEST(MMSManagerTest, OpenRefusesADocumentItCannotShowAndLeavesItAsItIs) {
    Store store;
    const QByteArray slide = "<ROOT><MESSAGE name=\"N\"><SLIDES><SLIDE name=\"Slide\" ";
    const QByteArray tail = "/></SLIDES></MESSAGE></ROOT>";
    for (const QByteArray& xml :
         {QByteArray("<OTHER><MESSAGE/></OTHER>"), slide + "index=\"1\" dur=\"long\"" + tail,
          slide + "index=\"one\" dur=\"1\"" + tail}) {
        store.home.write(QStringLiteral("Messages/Odd/message.xml"), xml);
        EXPECT_EQ(store.manager.OpenMsg(QStringLiteral("Odd")), nullptr) << xml.toStdString();
        EXPECT_EQ(store.home.read(QStringLiteral("Messages/Odd/message.xml")), xml);
    }
    // Nor can such a message be renamed: nothing carries its name.
    clsMessage odd;
    store.home.write(QStringLiteral("Messages/Odd/message.xml"), "<OTHER/>");
    odd.Initialize(store.folder(QString()), QStringLiteral("message.xml"), QStringLiteral("Odd"));
    EXPECT_FALSE(store.manager.RenameMsg(odd, QStringLiteral("Renamed")));
    EXPECT_FALSE(QFileInfo::exists(store.folder(QStringLiteral("Renamed"))));
}

TEST(MMSManagerTest, StoreOperationsRefuseTheNamesSavingRefuses) {
    Store store;
    auto message = store.manager.CreateMsg(QStringLiteral("Good"));
    ASSERT_TRUE(message->SaveMessage());
    for (const QString& other : {QStringLiteral("a"), QStringLiteral("b")})
        ASSERT_TRUE(store.manager.CreateMsg(other)->SaveMessage());
    store.home.write(QStringLiteral("Messages/.hidden/message.xml"), "<ROOT/>");
    RecordingSink sink;
    store.manager.setStatusSink(&sink);
    const QStringList bad{QStringLiteral("a,b"),  QStringLiteral(".hidden"), QStringLiteral("a.b"),
                          QStringLiteral("a\\b"), QStringLiteral("a/b"),     QString()};
    for (const QString& name : bad) {
        EXPECT_FALSE(store.manager.RenameMsg(*message, name)) << name.toStdString();
        EXPECT_FALSE(store.manager.SaveMsgAs(*message, name)) << name.toStdString();
        EXPECT_FALSE(store.manager.CopyMsg(QStringLiteral("Good"), name)) << name.toStdString();
        EXPECT_FALSE(store.manager.CopyMsg(name, QStringLiteral("Good"))) << name.toStdString();
        EXPECT_EQ(store.manager.CreateMsg(name), nullptr) << name.toStdString();
        EXPECT_FALSE(store.manager.DeleteMsg(name, false)) << name.toStdString();
    }
    EXPECT_EQ(sink.asked.size(), static_cast<size_t>(bad.size())) << "each delete says why";
    EXPECT_EQ(message->name(), QStringLiteral("Good"));
    QStringList names;
    EXPECT_EQ(store.manager.ListMessages(names), 2) << "not one folder went";
    EXPECT_TRUE(QFileInfo::exists(store.folder(QStringLiteral(".hidden/message.xml"))));
}

TEST(MMSManagerTest, CopyOverwritesFilesKeepsOthersAndLeavesSubFoldersBehind) {
    Store store;
    auto source = store.manager.CreateMsg(QStringLiteral("Src"));
    source->Slides()->Add();
    ASSERT_TRUE(source->SaveMessage());
    store.home.write(QStringLiteral("Messages/Src/mms/mms.smil"), "<smil/>");
    store.home.write(QStringLiteral("Messages/Dst/message.xml"), "old");
    store.home.write(QStringLiteral("Messages/Dst/own.txt"), "mine");

    EXPECT_TRUE(store.manager.CopyMsg(QStringLiteral("Src"), QStringLiteral("Dst")));
    EXPECT_EQ(store.home.read(QStringLiteral("Messages/Dst/message.xml")),
              store.home.read(QStringLiteral("Messages/Src/message.xml")));
    EXPECT_TRUE(QFileInfo::exists(store.folder(QStringLiteral("Dst/Slide_1.bmp"))));
    EXPECT_EQ(store.home.read(QStringLiteral("Messages/Dst/own.txt")), QByteArray("mine"));
    EXPECT_FALSE(QFileInfo::exists(store.folder(QStringLiteral("Dst/mms"))));
    EXPECT_EQ(
        QDir(store.folder(QStringLiteral("Dst"))).entryList(QDir::Files | QDir::Hidden).size(), 3);

    EXPECT_TRUE(store.manager.CopyMsg(QStringLiteral("Src"), QStringLiteral("Fresh")));
    EXPECT_TRUE(QFileInfo::exists(store.folder(QStringLiteral("Fresh/message.xml"))));
    EXPECT_FALSE(store.manager.CopyMsg(QStringLiteral("Missing"), QStringLiteral("X")));
    EXPECT_FALSE(store.manager.CopyMsg(QStringLiteral("Src"), QString()));
}

TEST(MMSManagerTest, DeleteMovesTheFolderToTheTrash) {
    Store store;
    ASSERT_TRUE(store.manager.CreateMsg(QStringLiteral("Gone"))->SaveMessage());
    ASSERT_TRUE(store.manager.CreateMsg(QStringLiteral("Stays"))->SaveMessage());
    RecordingSink sink;
    store.manager.setStatusSink(&sink);
    EXPECT_TRUE(store.manager.DeleteMsg(QStringLiteral("Gone"), true));
    EXPECT_FALSE(QFileInfo::exists(store.folder(QStringLiteral("Gone"))));
    const QString trash = qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/Trash/");
    EXPECT_TRUE(QFileInfo::exists(trash + QStringLiteral("info/Gone.trashinfo")));
    QDir(trash).removeRecursively();
    EXPECT_TRUE(sink.asked.empty());
}

TEST(MMSManagerTest, WithoutATrashDeleteAsksBeforeDeletingForGood) {
    Store store;
    const QByteArray dataHome = qgetenv("XDG_DATA_HOME");
    store.home.write(QStringLiteral("not-a-folder"), "x");
    qputenv("XDG_DATA_HOME", store.home.file(QStringLiteral("not-a-folder")).toLocal8Bit());
    ASSERT_TRUE(store.manager.CreateMsg(QStringLiteral("Trip"))->SaveMessage());
    RecordingSink sink;
    store.manager.setStatusSink(&sink);
    sink.answers = {Vb::No};
    EXPECT_FALSE(store.manager.DeleteMsg(QStringLiteral("Trip"), false));
    EXPECT_TRUE(QFileInfo::exists(store.folder(QStringLiteral("Trip/message.xml"))));
    ASSERT_EQ(sink.asked.size(), 1u) << "a No is no failure";
    EXPECT_EQ(sink.asked[0].text, QStringLiteral("STR_DELETE_FOR_GOOD\r\n\r\nTrip"));
    EXPECT_EQ(sink.asked[0].title, QStringLiteral("STR_DELETE_MSG"));
    EXPECT_EQ(sink.asked[0].style, Vb::YesNo | Vb::Question | Vb::DefaultButton2);
    store.manager.setStatusSink(nullptr); // the quiet sink answers with the default: No
    EXPECT_FALSE(store.manager.DeleteMsg(QStringLiteral("Trip"), true));
    EXPECT_TRUE(QFileInfo::exists(store.folder(QStringLiteral("Trip/message.xml"))));
    store.manager.setStatusSink(&sink);
    sink.answers = {Vb::Yes};
    EXPECT_TRUE(store.manager.DeleteMsg(QStringLiteral("Trip"), true));
    EXPECT_FALSE(QFileInfo::exists(store.folder(QStringLiteral("Trip"))));
    qputenv("XDG_DATA_HOME", dataHome);
}

TEST(MMSManagerTest, DeleteOfAnUntitledMessageWithoutFolderIsSilent) {
    Store store;
    RecordingSink sink;
    store.manager.setStatusSink(&sink);
    EXPECT_FALSE(store.manager.DeleteMsg(gUntitledName, false));
    EXPECT_TRUE(sink.asked.empty());
}

TEST(MMSManagerTest, DeleteFailureGoesToTheSinkAsTheErrorBox) {
    Store store;
    RecordingSink sink;
    store.manager.setStatusSink(&sink);
    EXPECT_FALSE(store.manager.DeleteMsg(QStringLiteral("Nothing"), true));
    ASSERT_EQ(sink.asked.size(), 1u);
    EXPECT_EQ(sink.asked[0].style, Vb::Critical);
    EXPECT_EQ(sink.asked[0].title, QStringLiteral("STR_ERROR"));
    EXPECT_TRUE(sink.asked[0].text.startsWith(QStringLiteral("STR_ERROR_DEL_MSG\r\n")));
}

TEST(MMSManagerTest, TemplateKindsSwitchTheOutputs) {
    clsMMSManager manager;
    EXPECT_TRUE(manager.makeTemplate());
    EXPECT_TRUE(manager.makeSis());
    manager.ClearTemplateFileType(1);
    EXPECT_FALSE(manager.makeTemplate());
    EXPECT_TRUE(manager.makeSis());
    manager.ClearTemplateFileType(7);
    EXPECT_TRUE(manager.makeSis());
    manager.ClearTemplateFileType(0);
    EXPECT_FALSE(manager.makeSis());
    manager.SetTemplateFileType(2);
    EXPECT_TRUE(manager.makeSis());
    EXPECT_FALSE(manager.makeTemplate());
    manager.SetTemplateFileType(0);
    EXPECT_TRUE(manager.makeTemplate());
}

TEST(MMSManagerTest, SavePictureBoxImageWritesTheChosenForm) {
    Store store;
    const QString stem = store.home.file(QStringLiteral("shot."));
    EXPECT_TRUE(
        store.manager.SavePictureBoxImage(stem + QStringLiteral("png"), filled(Qt::blue), 0));
    EXPECT_EQ(QImage(stem + QStringLiteral("bmp")).pixelColor(3, 3), QColor(Qt::blue));
    EXPECT_TRUE(store.manager.SavePictureBoxImage(stem + QStringLiteral("x"), filled(Qt::blue), 2));
    EXPECT_FALSE(QImage(stem + QStringLiteral("gif")).isNull());
}

// Damaged documents of every kind either open with every value readable or are refused.
TEST(MMSManagerTest, DamagedDocumentsOpenWithoutACrash) {
    Store store;
    auto message = store.manager.CreateMsg(QStringLiteral("Seed"));
    for (int i = 0; i < 3; ++i) {
        auto slide = message->Slides()->Add();
        slide->setText(QStringLiteral("text %1").arg(i));
        slide->setSound(QStringLiteral("/s.wav"));
        clsDrawProperties p;
        p.name = QStringLiteral("o");
        p.typ = i == 1 ? QStringLiteral("image") : QStringLiteral("text");
        p.Data = QStringLiteral("data");
        slide->DrawObjects()->Add(p);
    }
    ASSERT_TRUE(message->SaveMessage());
    const QByteArray original = store.home.read(QStringLiteral("Messages/Seed/message.xml"));
    std::uint32_t seed = 12345;
    auto next = [&seed] {
        seed = seed * 1664525u + 1013904223u;
        return seed >> 8;
    };
    int opened = 0;
    int refused = 0;
    for (int round = 0; round < 300; ++round) {
        QByteArray damaged = original;
        const int edits = 1 + static_cast<int>(next() % 4);
        for (int e = 0; e < edits && !damaged.isEmpty(); ++e) {
            const int at = static_cast<int>(next() % static_cast<std::uint32_t>(damaged.size()));
            switch (next() % 3) {
            case 0:
                damaged[at] = static_cast<char>(next() & 0xff);
                break;
            case 1:
                damaged.remove(at, 1 + static_cast<int>(next() % 12));
                break;
            default:
                damaged.insert(at, damaged.mid(static_cast<int>(next() % damaged.size()), 8));
                break;
            }
        }
        store.home.write(QStringLiteral("Messages/Seed/message.xml"), damaged);
        auto copy = store.manager.OpenMsg(QStringLiteral("Seed"));
        if (!copy) {
            ++refused;
            continue;
        }
        ++opened;
        // What opens shows: every value it reads reads.
        for (const auto& slide : *copy->Slides()) {
            EXPECT_NO_THROW((void)slide->Duration()) << damaged.toStdString();
            EXPECT_NO_THROW((void)slide->SoundDuration()) << damaged.toStdString();
            EXPECT_NO_THROW((void)slide->Color()) << damaged.toStdString();
            for (const auto& object : *slide->DrawObjects())
                EXPECT_NO_THROW((void)object->GetAllPproperties()) << damaged.toStdString();
        }
        copy->Slides()->Add();
        if (copy->Slides()->Count() > 1)
            copy->Slides()->Remove(1);
    }
    EXPECT_GT(opened, 0);
    EXPECT_GT(refused, 0);
}

namespace {
// A working folder of `name` as a save leaves it, holding `files`.
QString leftover(const Store& store, SaveWorkingFolder::Kind kind, const QString& name,
                 const QStringList& files) {
    const QString folder = newSaveWorkingFolder(store.folder(QString()), kind, name);
    for (const QString& file : files)
        store.home.write(QDir(store.home.path()).relativeFilePath(folder) + QLatin1Char('/') + file,
                         file.toUtf8());
    QDir().mkpath(folder);
    return folder;
}
} // namespace

TEST(MMSManagerTest, RecoveryClearsLeftoversAndPutsBackAMissingFolder) {
    Store store;
    const QString doc = QStringLiteral("message.xml");
    const QString bmp = QStringLiteral("Slide_1.bmp");
    store.home.write(QStringLiteral("Messages/Kept/message.xml"), "kept");
    leftover(store, SaveWorkingFolder::Staged, QStringLiteral("Kept"), {doc});
    leftover(store, SaveWorkingFolder::Previous, QStringLiteral("Kept"), {doc});
    // The crash fell between the two renames: the new folder goes in.
    leftover(store, SaveWorkingFolder::Staged, QStringLiteral("Swapped-2"), {doc, bmp});
    leftover(store, SaveWorkingFolder::Previous, QStringLiteral("Swapped-2"), {doc});
    // Only the previous folder is whole.
    leftover(store, SaveWorkingFolder::Staged, QStringLiteral("Early"), {bmp});
    leftover(store, SaveWorkingFolder::Previous, QStringLiteral("Early"), {doc, bmp});
    // A first save that never wrote its document leaves nothing worth keeping.
    leftover(store, SaveWorkingFolder::Staged, QStringLiteral("Never"), {bmp});
    store.home.write(QStringLiteral("Messages/.other/file"), "not ours");

    store.manager.RecoverInterruptedSaves();
    QDir folder(store.folder(QString()));
    EXPECT_EQ(folder.entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name),
              (QStringList{QStringLiteral(".other"), QStringLiteral("Early"),
                           QStringLiteral("Kept"), QStringLiteral("Swapped-2")}));
    EXPECT_EQ(store.home.read(QStringLiteral("Messages/Kept/message.xml")), QByteArray("kept"));
    EXPECT_TRUE(QFileInfo::exists(store.folder(QStringLiteral("Swapped-2/Slide_1.bmp"))));
    EXPECT_TRUE(QFileInfo::exists(store.folder(QStringLiteral("Early/Slide_1.bmp"))));
    ASSERT_TRUE(store.manager.OpenMsg(QStringLiteral("Early")));
}

TEST(MMSManagerTest, FolderSwapTradesTwoFoldersEitherWay) {
    TestHome home;
    const QString a = home.file(QStringLiteral("a"));
    const QString b = home.file(QStringLiteral("b"));
    const QString aside = home.file(QStringLiteral("aside"));
    home.write(QStringLiteral("a/new"), "new");
    home.write(QStringLiteral("b/old"), "old");
    QString error;
    ASSERT_TRUE(swapFolders(a, b, aside, &error)) << error.toStdString();
    EXPECT_TRUE(QFileInfo::exists(b + QStringLiteral("/new")));
    EXPECT_TRUE(QFileInfo::exists(a + QStringLiteral("/old")));
    ASSERT_TRUE(swapFoldersByRenames(a, b, aside, &error)) << error.toStdString();
    EXPECT_TRUE(QFileInfo::exists(b + QStringLiteral("/old")));
    EXPECT_TRUE(QFileInfo::exists(a + QStringLiteral("/new")));
    EXPECT_FALSE(QFileInfo::exists(aside));
    // The place aside is taken: nothing moves, and the reason is given.
    home.write(QStringLiteral("aside/taken"), "x");
    EXPECT_FALSE(swapFoldersByRenames(a, b, aside, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(QFileInfo::exists(b + QStringLiteral("/old")));
    EXPECT_TRUE(QFileInfo::exists(a + QStringLiteral("/new")));
}

// The question saving and renaming ask the file system: is this name another entry's folder?
TEST(MMSManagerTest, SameFolderIsDecidedByTheFileSystemNotByTheName) {
    Store store;
    store.home.write(QStringLiteral("Messages/Trip/message.xml"), "<x/>");
    store.home.write(QStringLiteral("Messages/trip/message.xml"), "<x/>");
    const QString trip = store.folder(QStringLiteral("Trip"));
    const QString link = store.folder(QStringLiteral("Link"));
    ASSERT_TRUE(QFile::link(trip, link));
    EXPECT_TRUE(sameFileSystemEntry(link, trip)) << "the first path is followed";
    EXPECT_FALSE(sameFileSystemEntry(trip, link)) << "the second is not";
    EXPECT_FALSE(sameFileSystemEntry(trip, store.folder(QStringLiteral("trip"))));
    EXPECT_FALSE(sameFileSystemEntry(trip, store.folder(QStringLiteral("none"))));
}
