#include "config/clsPropertiesXML.h"
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "platform/Failure.h"
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
    ScriptedResponder responder;
    QStringList names{QStringLiteral("keep")};
    EXPECT_EQ(store.manager.ListMessages(names), -1);
    EXPECT_EQ(names, QStringList{QStringLiteral("keep")});
    EXPECT_TRUE(responder.boxes.empty());
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

TEST(MMSManagerTest, UninitialisedStoreFailsWithABox) {
    TestHome home;
    clsMMSManager manager;
    ScriptedResponder responder;
    QStringList names;
    EXPECT_EQ(manager.ListMessages(names), -1);
    ASSERT_EQ(responder.boxes.size(), 1u);
    EXPECT_EQ(responder.boxes[0].title, QStringLiteral("ListMessages"));
    EXPECT_TRUE(responder.boxes[0].text.endsWith(QStringLiteral("\r\nError code: 91")));
    EXPECT_EQ(responder.boxes[0].style, Vb::Critical);
    EXPECT_FALSE(manager.CopyMsg(QStringLiteral("a"), QStringLiteral("b")));
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

TEST(MMSManagerTest, RenameOfADocumentWithoutMessageLeavesTheFolder) {
    Store store;
    store.home.write(QStringLiteral("Messages/Odd/message.xml"), "<OTHER/>");
    auto odd = store.manager.OpenMsg(QStringLiteral("Odd"));
    ASSERT_FALSE(odd->hasMessageElement());
    EXPECT_FALSE(store.manager.RenameMsg(*odd, QStringLiteral("Renamed")));
    EXPECT_TRUE(QFileInfo::exists(store.folder(QStringLiteral("Odd/message.xml"))));
    EXPECT_FALSE(QFileInfo::exists(store.folder(QStringLiteral("Renamed"))));
    EXPECT_EQ(odd->Path(), store.folder(QStringLiteral("Odd/")));
}

TEST(MMSManagerTest, StoreOperationsRefuseTheNamesSavingRefuses) {
    Store store;
    auto message = store.manager.CreateMsg(QStringLiteral("Good"));
    ASSERT_TRUE(message->SaveMessage());
    QDir().mkpath(store.folder(QStringLiteral(".hidden")));
    store.home.write(QStringLiteral("Messages/.hidden/message.xml"), "<ROOT/>");
    for (const QString& bad : {QStringLiteral(".hidden"), QStringLiteral(".x"),
                               QStringLiteral("a\\b"), QStringLiteral("a/b"), QString()}) {
        EXPECT_FALSE(store.manager.RenameMsg(*message, bad)) << bad.toStdString();
        EXPECT_FALSE(store.manager.CopyMsg(QStringLiteral("Good"), bad)) << bad.toStdString();
        EXPECT_FALSE(store.manager.CopyMsg(bad, QStringLiteral("Good"))) << bad.toStdString();
        auto created = store.manager.CreateMsg(bad);
        EXPECT_FALSE(created->SaveMessage()) << bad.toStdString();
        EXPECT_FALSE(created->lastError().isEmpty());
    }
    ScriptedResponder responder;
    EXPECT_FALSE(store.manager.DeleteMsg(QStringLiteral(".hidden"), false));
    EXPECT_EQ(responder.boxes.size(), 1u);
    EXPECT_TRUE(QFileInfo::exists(store.folder(QStringLiteral(".hidden/message.xml"))));
    EXPECT_EQ(message->name(), QStringLiteral("Good"));
    QStringList names;
    EXPECT_EQ(store.manager.ListMessages(names), 0);
    EXPECT_EQ(namesOf(names), QStringList{QStringLiteral("Good")});
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

TEST(MMSManagerTest, DeleteMovesTheFolderAway) {
    Store store;
    ASSERT_TRUE(store.manager.CreateMsg(QStringLiteral("Gone"))->SaveMessage());
    ASSERT_TRUE(store.manager.CreateMsg(QStringLiteral("Stays"))->SaveMessage());
    ScriptedResponder responder;
    EXPECT_TRUE(store.manager.DeleteMsg(QStringLiteral("Gone"), true));
    EXPECT_FALSE(QFileInfo::exists(store.folder(QStringLiteral("Gone"))));
    EXPECT_TRUE(QFileInfo::exists(store.folder(QStringLiteral("Stays/message.xml"))));
    EXPECT_TRUE(responder.boxes.empty());
}

TEST(MMSManagerTest, DeleteOfAnUntitledMessageWithoutFolderIsSilent) {
    Store store;
    ScriptedResponder responder;
    EXPECT_FALSE(store.manager.DeleteMsg(gUntitledName, false));
    EXPECT_TRUE(responder.boxes.empty());
}

TEST(MMSManagerTest, DeleteFailureShowsTheErrorBox) {
    Store store;
    ScriptedResponder responder;
    EXPECT_FALSE(store.manager.DeleteMsg(QStringLiteral("Nothing"), true));
    ASSERT_EQ(responder.boxes.size(), 1u);
    EXPECT_EQ(responder.boxes[0].style, Vb::Critical);
    EXPECT_EQ(responder.boxes[0].title, QStringLiteral("STR_ERROR"));
    EXPECT_TRUE(responder.boxes[0].text.startsWith(QStringLiteral("STR_ERROR_DEL_MSG\r\n")));
    // An empty name never reaches the store folder itself.
    EXPECT_FALSE(store.manager.DeleteMsg(QString(), true));
    EXPECT_TRUE(QFileInfo(store.folder(QString())).isDir());
    EXPECT_EQ(responder.boxes.size(), 2u);
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
    EXPECT_EQ(manager.GetSaveAsMMSStatus(), QString());
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

// Damaged documents of every kind open without a crash: each value either reads or raises the
// program's failure, never anything worse.
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
        ASSERT_TRUE(copy);
        if (!copy->Slides())
            continue;
        ++opened;
        for (const auto& slide : *copy->Slides()) {
            try {
                (void)slide->Text();
                (void)slide->Sound();
                (void)slide->Duration();
                (void)slide->SoundDuration();
                (void)slide->Color();
                (void)slide->ImageFile();
                for (const auto& object : *slide->DrawObjects())
                    (void)object->GetAllPproperties();
            } catch (const Failure&) {
                // a value that is not a number: the program's own failure
            }
        }
        copy->Slides()->Add();
        if (copy->Slides()->Count() > 1)
            copy->Slides()->Remove(1);
    }
    EXPECT_GT(opened, 0);
}
