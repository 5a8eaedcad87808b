#include "DocumentTestSupport.h"

#include "document/clsMessage.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace {
QStringList entries(const QString& folder) {
    return QDir(folder).entryList(
        QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Name);
}

QImage picture(QColor colour, int w = 160, int h = 120) {
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

// Every file below `folder`, relative path and content.
QMap<QString, QByteArray> snapshot(const QString& folder) {
    QMap<QString, QByteArray> files;
    QDir dir(folder);
    for (const QString& name : entries(folder)) {
        const QString path = dir.filePath(name);
        if (QFileInfo(path).isDir()) {
            const auto inner = snapshot(path);
            for (auto it = inner.begin(); it != inner.end(); ++it)
                files.insert(name + QLatin1Char('/') + it.key(), it.value());
        } else {
            QFile file(path);
            files.insert(name, file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
        }
    }
    return files;
}

// Three slides with every kind of value: pictures on the first and third, objects on the second.
std::unique_ptr<clsMessage> richMessage(const TestHome& home, const QString& name) {
    auto message = newMessage(home, name);
    auto s1 = message->Slides()->Add();
    auto s2 = message->Slides()->Add();
    auto s3 = message->Slides()->Add();
    s1->setText(QStringLiteral("First line\r\nsecond line\r\nthird"));
    s2->setText(QStringLiteral("Ünïcödé & <markup> \"quoted\""));
    s1->setSound(QStringLiteral("/archive/Sounds/bell.wav"));
    s1->setSoundDuration(4100);
    s1->setImage(picture(QColor(10, 200, 30)));
    s3->setImage(picture(QColor(250, 0, 5)));
    s2->setColor(8421376);
    s2->DrawObjects()->setBackPicture(QStringLiteral("/archive/Backgrounds/sky.jpg"));
    clsDrawProperties text{QStringLiteral("Text1"), QStringLiteral("text"), -10};
    text.Data = QStringLiteral("on the canvas\r\ntwo lines");
    text.fontItalic = true;
    s2->DrawObjects()->Add(text);
    s2->DrawObjects()->Add({QStringLiteral("Image1"), QStringLiteral("image")});
    return message;
}

const QStringList kRichFiles{QStringLiteral("Slide_1.bmp"), QStringLiteral("Slide_2.bmp"),
                             QStringLiteral("Slide_3.bmp"), QStringLiteral("message.xml")};
} // namespace

TEST(SaveTest, RoundTripKeepsEveryValueAndWritesExactlyTheFiles) {
    TestHome home;
    auto message = richMessage(home, QStringLiteral("Trip"));
    ASSERT_TRUE(message->SaveMessage()) << message->lastError().toStdString();
    EXPECT_FALSE(message->isChanged());
    const QString folder = home.file(QStringLiteral("Messages/Trip"));
    EXPECT_EQ(entries(folder), kRichFiles);
    EXPECT_EQ(entries(home.file(QStringLiteral("Messages"))), QStringList{QStringLiteral("Trip")})
        << "no working folders are left behind";

    auto back = newMessage(home, QStringLiteral("Trip"));
    EXPECT_EQ(back->serialise(), message->serialise());
    EXPECT_TRUE(back->backupNames().isEmpty()) << "a document that reads needs no backup";

    // Pictures: the slides' own as 24-bit bitmaps, the built-in one for the slide without.
    const QImage first(folder + QStringLiteral("/Slide_1.bmp"));
    EXPECT_EQ(first.pixelColor(80, 60), QColor(10, 200, 30));
    EXPECT_EQ(home.read(QStringLiteral("Messages/Trip/Slide_1.bmp")).at(28), 24) << "bits/pixel";
    EXPECT_EQ(QImage(folder + QStringLiteral("/Slide_3.bmp")).pixelColor(0, 0), QColor(250, 0, 5));
    EXPECT_EQ(home.read(QStringLiteral("Messages/Trip/Slide_2.bmp")), emptySlideBitmap());
}

TEST(SaveTest, MissingStoreFolderIsMadeAndAnEmptyMessageSavesOnlyTheDocument) {
    TestHome home;
    auto message = std::make_unique<clsMessage>();
    message->Initialize(home.file(QStringLiteral("deep/store")), QStringLiteral("message.xml"),
                        QStringLiteral("M"));
    ASSERT_TRUE(message->SaveMessage());
    EXPECT_EQ(entries(home.file(QStringLiteral("deep/store/M"))),
              QStringList{QStringLiteral("message.xml")});
    // SaveImage writes into the saved folder.
    EXPECT_TRUE(message->SaveImage(picture(Qt::blue, 8, 8), QStringLiteral("extra"),
                                   QStringLiteral("bmp")));
    EXPECT_TRUE(message->isChanged());
    EXPECT_EQ(QImage(home.file(QStringLiteral("deep/store/M/extra.bmp"))).pixelColor(1, 1),
              QColor(Qt::blue));
}

TEST(SaveTest, SaveRebuildsTheFolder) {
    TestHome home;
    auto message = richMessage(home, QStringLiteral("Again"));
    ASSERT_TRUE(message->SaveMessage());
    home.write(QStringLiteral("Messages/Again/mms/mms.smil"), "<smil/>");
    home.write(QStringLiteral("Messages/Again/notes.txt"), "x");
    message->DeleteSlide(1);
    ASSERT_TRUE(message->SaveMessage());
    EXPECT_EQ(entries(home.file(QStringLiteral("Messages/Again"))),
              (QStringList{QStringLiteral("Slide_1.bmp"), QStringLiteral("Slide_2.bmp"),
                           QStringLiteral("message.xml")}));
    // The old third slide is now the second, its picture written under the new number.
    EXPECT_EQ(QImage(home.file(QStringLiteral("Messages/Again/Slide_2.bmp"))).pixelColor(3, 3),
              QColor(250, 0, 5));
}

TEST(SaveTest, SaveAsTakesTheNewNameOnlyOnceTheSaveSucceeded) {
    TestHome home;
    auto message = richMessage(home, QStringLiteral("Old"));
    ASSERT_TRUE(message->SaveMessage());

    // A file stands where the new folder must go: nothing changes, not even the document.
    home.write(QStringLiteral("Messages/Blocked"), "user data");
    const std::string document = message->serialise();
    EXPECT_FALSE(message->SaveMessageAs(QStringLiteral("Blocked")));
    EXPECT_FALSE(message->lastError().isEmpty());
    EXPECT_EQ(message->name(), QStringLiteral("Old"));
    EXPECT_EQ(message->Path(), home.file(QStringLiteral("Messages/Old/")));
    EXPECT_EQ(message->serialise(), document);
    EXPECT_EQ(home.read(QStringLiteral("Messages/Blocked")), QByteArray("user data"));

    ASSERT_TRUE(message->SaveMessageAs(QStringLiteral("New")));
    EXPECT_EQ(message->name(), QStringLiteral("New"));
    EXPECT_EQ(message->Path(), home.file(QStringLiteral("Messages/New/")));
    EXPECT_EQ(entries(home.file(QStringLiteral("Messages/New"))), kRichFiles);
    EXPECT_TRUE(home.read(QStringLiteral("Messages/New/message.xml")).contains("name=\"New\""));
    EXPECT_TRUE(QFileInfo::exists(home.file(QStringLiteral("Messages/Old/message.xml"))));
}

TEST(SaveTest, DamagedDocumentIsKeptAsABackupWithItsPictures) {
    TestHome home;
    const QByteArray damaged = "<ROOT><HEADER><MESSAGE name=\"Broken\"><SLIDES";
    const QByteArray bitmap = "BM not really a picture";
    home.write(QStringLiteral("Messages/Broken/Slide_1.bmp"), bitmap);
    auto message = messageFromXml(home, QStringLiteral("Broken"), damaged);
    EXPECT_EQ(message->Slides()->Count(), 0) << "a damaged document opens as a fresh one";
    EXPECT_EQ(message->backupNames(),
              (QStringList{QStringLiteral("message.xml.bak"), QStringLiteral("Slide_1.bmp.bak")}));
    message->Slides()->Add()->setImage(picture(QColor(0, 0, 255)));
    ASSERT_TRUE(message->SaveMessage()) << message->lastError().toStdString();
    EXPECT_EQ(home.read(QStringLiteral("Messages/Broken/message.xml.bak")), damaged);
    EXPECT_EQ(home.read(QStringLiteral("Messages/Broken/Slide_1.bmp.bak")), bitmap);

    // Later saves, after opening the message again, keep the backups.
    ASSERT_TRUE(newMessage(home, QStringLiteral("Broken"))->SaveMessage());
    EXPECT_EQ(home.read(QStringLiteral("Messages/Broken/message.xml.bak")), damaged);
    EXPECT_EQ(home.read(QStringLiteral("Messages/Broken/Slide_1.bmp.bak")), bitmap);
}

// Failures must leave the last good folder exactly as it was. Each of these fails even for
// the super-user: names the file system refuses and a file standing where a folder must go.
TEST(SaveTest, FailedSaveLeavesThePreviousFolderUntouched) {
    TestHome home;
    auto message = richMessage(home, QStringLiteral("Safe"));
    ASSERT_TRUE(message->SaveMessage());
    const auto before = snapshot(home.file(QStringLiteral("Messages/Safe")));

    // A picture name longer than the file system takes, after other files were written.
    message->Slides()->Item(1)->setText(QStringLiteral("edited"));
    pugi::xml_node slide = message->Slides()->Item(3)->DOMElement();
    slide.attribute("name").set_value(std::string(300, 'x').c_str());
    EXPECT_FALSE(message->SaveMessage());
    EXPECT_FALSE(message->lastError().isEmpty());
    slide.attribute("name").set_value("../escape");
    EXPECT_FALSE(message->SaveMessage());
    EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("Messages/escape_3.bmp"))));
    EXPECT_EQ(snapshot(home.file(QStringLiteral("Messages/Safe"))), before);
    EXPECT_EQ(entries(home.file(QStringLiteral("Messages"))), QStringList{QStringLiteral("Safe")})
        << "failed saves leave no working folders";

    slide.attribute("name").set_value("Slide");
    ASSERT_TRUE(message->SaveMessage());
    EXPECT_NE(snapshot(home.file(QStringLiteral("Messages/Safe"))), before);
}

TEST(SaveTest, RefusedNamesWriteNothing) {
    TestHome home;
    const QString store = home.file(QStringLiteral("Messages"));
    home.write(QStringLiteral("Messages/Blocked"), "user data");
    for (const QString& name :
         {QStringLiteral("a,b"), QStringLiteral("Trip. 2"), QStringLiteral(".hidden"),
          QStringLiteral(".."), QStringLiteral("a/b"), QStringLiteral("a\\b"),
          QStringLiteral("tab\there"), QStringLiteral("100%"), QString(),
          QString(300, QLatin1Char('n')), QStringLiteral("Blocked")}) {
        auto message = richMessage(home, name);
        EXPECT_FALSE(message->SaveMessage()) << name.toStdString();
        EXPECT_FALSE(message->lastError().isEmpty()) << name.toStdString();
    }
    EXPECT_EQ(entries(store), QStringList{QStringLiteral("Blocked")});
    EXPECT_EQ(home.read(QStringLiteral("Messages/Blocked")), QByteArray("user data"));
    EXPECT_TRUE(messageNameProblem(QStringLiteral("a,b")).contains(QStringLiteral("\",\"")));
    EXPECT_TRUE(messageNameProblem(QStringLiteral("Trip 2 - Ünïcödé")).isEmpty());
}

// Here the file system tells names apart by case: "TRIP" is a folder of its own.
TEST(SaveTest, NamesDifferingOnlyInCaseAreTwoMessagesWhereTheFileSystemSaysSo) {
    TestHome home;
    auto first = richMessage(home, QStringLiteral("Trip"));
    ASSERT_TRUE(first->SaveMessage());
    if (QFileInfo::exists(home.file(QStringLiteral("Messages/TRIP"))))
        GTEST_SKIP() << "this file system ignores case";
    const auto before = snapshot(home.file(QStringLiteral("Messages/Trip")));
    auto second = newMessage(home, QStringLiteral("TRIP"));
    second->Slides()->Add();
    ASSERT_TRUE(second->SaveMessage()) << second->lastError().toStdString();
    EXPECT_EQ(entries(home.file(QStringLiteral("Messages"))),
              (QStringList{QStringLiteral("TRIP"), QStringLiteral("Trip")}));
    EXPECT_EQ(snapshot(home.file(QStringLiteral("Messages/Trip"))), before);
}
