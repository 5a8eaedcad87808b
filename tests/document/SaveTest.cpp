#include "DocumentTestSupport.h"

#include "document/clsMessage.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QProcess>
#include <QStandardPaths>
#include <gtest/gtest.h>

namespace {
QStringList entries(const QString& folder) {
    QStringList list = QDir(folder).entryList(
        QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Name);
    return list;
}

QImage picture(QColor colour, int w = 160, int h = 120) {
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

QByteArray fileBytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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
            files.insert(name, fileBytes(path));
        }
    }
    return files;
}

// The message of the round trip: three slides with every kind of value.
std::unique_ptr<clsMessage> richMessage(const TestHome& home, const QString& name) {
    auto message = newMessage(home, name);
    auto s1 = message->Slides()->Add();
    auto s2 = message->Slides()->Add();
    auto s3 = message->Slides()->Add();
    s1->setText(QStringLiteral("First line\r\nsecond line\r\nthird"));
    s2->setText(QStringLiteral("Ünïcödé & <markup> \"quoted\""));
    s3->setText(QStringLiteral("plain"));
    s1->setDuration(4200);
    s2->setDuration(3000);
    s3->setDuration(12345);
    s1->setSound(QStringLiteral("/archive/Sounds/bell.wav"));
    s1->setSoundDuration(4100);
    s1->setImage(picture(QColor(10, 200, 30)));
    s3->setImage(picture(QColor(250, 0, 5)));
    s2->setColor(8421376);
    s2->DrawObjects()->setBackPicture(QStringLiteral("/archive/Backgrounds/sky.jpg"));
    clsDrawProperties text;
    text.name = QStringLiteral("Text1");
    text.typ = QStringLiteral("text");
    text.X = 5;
    text.Y = 6;
    text.w = 150;
    text.h = 30;
    text.fontAlign = 1;
    text.fontName = QStringLiteral("DejaVu Sans");
    text.fontSize = 11;
    text.fontColor = 255;
    text.zorder = 2;
    text.Data = QStringLiteral("on the canvas\r\ntwo lines");
    text.fontItalic = true;
    clsDrawProperties image;
    image.name = QStringLiteral("Image1");
    image.typ = QStringLiteral("image");
    image.X = -10;
    image.Y = 20;
    image.w = 64;
    image.h = 48;
    image.zorder = 1;
    image.Data = QStringLiteral("/archive/Pictures/star.gif");
    s2->DrawObjects()->Add(image);
    s2->DrawObjects()->Add(text);
    return message;
}
} // namespace

TEST(SaveTest, RoundTripKeepsEveryValueAndWritesExactlyTheFiles) {
    TestHome home;
    auto message = richMessage(home, QStringLiteral("Trip"));
    ASSERT_TRUE(message->SaveMessage()) << message->lastError().toStdString();
    EXPECT_FALSE(message->isChanged());
    const QString folder = home.file(QStringLiteral("Messages/Trip"));
    EXPECT_EQ(entries(folder),
              (QStringList{QStringLiteral("Slide_1.bmp"), QStringLiteral("Slide_2.bmp"),
                           QStringLiteral("Slide_3.bmp"), QStringLiteral("message.xml")}));
    EXPECT_EQ(entries(home.file(QStringLiteral("Messages"))), QStringList{QStringLiteral("Trip")})
        << "no working folders are left behind";

    auto back = newMessage(home, QStringLiteral("Trip"));
    EXPECT_EQ(back->name(), QStringLiteral("Trip"));
    ASSERT_EQ(back->Slides()->Count(), 3);
    for (int i = 1; i <= 3; ++i) {
        auto a = message->Slides()->Item(i);
        auto b = back->Slides()->Item(i);
        EXPECT_EQ(b->Index(), i);
        EXPECT_EQ(b->Text(), a->Text());
        EXPECT_EQ(b->Duration(), a->Duration());
        EXPECT_EQ(b->Sound(), a->Sound());
        EXPECT_EQ(b->SoundDuration(), a->SoundDuration());
        EXPECT_EQ(b->Color(), a->Color());
        EXPECT_EQ(b->DrawObjects()->BackPicture(), a->DrawObjects()->BackPicture());
        ASSERT_EQ(b->DrawObjects()->Count(), a->DrawObjects()->Count());
        for (int j = 1; j <= a->DrawObjects()->Count(); ++j)
            EXPECT_EQ(b->DrawObjects()->Item(j)->GetAllPproperties(),
                      a->DrawObjects()->Item(j)->GetAllPproperties());
    }
    EXPECT_EQ(back->Slides()->Item(1)->Text(),
              QStringLiteral("First line\r\nsecond line\r\nthird"));
    EXPECT_EQ(back->Slides()->Item(2)->Text(), QStringLiteral("Ünïcödé & <markup> \"quoted\""));
    EXPECT_EQ(back->Slides()->Item(2)->DrawObjects()->Item(2)->Text(),
              QStringLiteral("on the canvas\r\ntwo lines"));
    EXPECT_EQ(back->serialise(), message->serialise());

    // Pictures: the slides' own as 24-bit bitmaps, the built-in one for the slide without.
    const QImage first(folder + QStringLiteral("/Slide_1.bmp"));
    ASSERT_FALSE(first.isNull());
    EXPECT_EQ(first.size(), QSize(160, 120));
    EXPECT_EQ(first.pixelColor(80, 60), QColor(10, 200, 30));
    EXPECT_EQ(fileBytes(folder + QStringLiteral("/Slide_1.bmp")).at(28), 24) << "bits per pixel";
    EXPECT_EQ(QImage(folder + QStringLiteral("/Slide_3.bmp")).pixelColor(0, 0), QColor(250, 0, 5));
    EXPECT_EQ(fileBytes(folder + QStringLiteral("/Slide_2.bmp")), emptySlideBitmap());
}

TEST(SaveTest, BuiltInEmptyPictureIsA160By120BitmapWith256Colours) {
    const QByteArray& bytes = emptySlideBitmap();
    ASSERT_FALSE(bytes.isEmpty());
    QImage image;
    ASSERT_TRUE(image.loadFromData(bytes, "BMP"));
    EXPECT_EQ(image.size(), QSize(160, 120));
    EXPECT_EQ(image.format(), QImage::Format_Indexed8);
    EXPECT_EQ(image.colorCount(), 256);
    EXPECT_EQ(bytes, fileBytes(QStringLiteral(TESSALY_SOURCE_DATA "/resources/200.bmp")));
}

TEST(SaveTest, MessageXmlParsesElsewhereWithTheExpectedTree) {
    const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    if (python.isEmpty())
        GTEST_SKIP() << "python3 is not installed";
    TestHome home;
    auto message = richMessage(home, QStringLiteral("Tree"));
    ASSERT_TRUE(message->SaveMessage());
    // The standard library parser prints every element with its attribute names, depth first.
    const char* script = R"PY(
import sys, xml.etree.ElementTree as ET
root = ET.parse(sys.argv[1]).getroot()
def walk(e, depth):
    print("  " * depth + e.tag + " " + ",".join(e.attrib.keys()))
    for c in e: walk(c, depth + 1)
walk(root, 0)
print("TEXT1=" + repr(root.find("MESSAGE/SLIDES/SLIDE/TEXT").get("text")))
print("HEAD=" + repr(open(sys.argv[1], "rb").read(44)))
)PY";
    QProcess process;
    process.start(python, {QStringLiteral("-c"), QString::fromUtf8(script),
                           home.file(QStringLiteral("Messages/Tree/message.xml"))});
    ASSERT_TRUE(process.waitForFinished(20000));
    ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    const QString expected = QStringLiteral(
        "ROOT \n"
        "  HEADER \n"
        "    CONTENT version,type\n"
        "  MESSAGE name\n"
        "    SLIDES \n"
        "      SLIDE name,index,dur\n"
        "        IMAGE \n"
        "        SOUND url,dur\n"
        "        TEXT text\n"
        "        DRAWOBJECTS \n"
        "          BACKGROUND name,color\n"
        "      SLIDE name,index,dur\n"
        "        IMAGE \n"
        "        SOUND \n"
        "        TEXT text\n"
        "        DRAWOBJECTS \n"
        "          BACKGROUND name,color,url\n"
        "          DRAWOBJECT name,type,x,y,w,h,zorder,image\n"
        "          DRAWOBJECT name,type,x,y,w,h,zorder,text,fname,fsize,fcolor,falign,fbold,"
        "fitalic,funderline\n"
        "      SLIDE name,index,dur\n"
        "        IMAGE \n"
        "        SOUND \n"
        "        TEXT text\n"
        "        DRAWOBJECTS \n"
        "          BACKGROUND name,color\n"
        "TEXT1='First line\\r\\nsecond line\\r\\nthird'\n"
        "HEAD=b'<?xml version=\"1.0\" encoding=\"utf-8\"?><ROOT>'\n");
    EXPECT_EQ(QString::fromUtf8(process.readAllStandardOutput()).toStdString(),
              expected.toStdString());
}

TEST(SaveTest, EmptyMessageSavesOnlyTheDocument) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("Empty"));
    ASSERT_TRUE(message->SaveMessage());
    EXPECT_EQ(entries(home.file(QStringLiteral("Messages/Empty"))),
              QStringList{QStringLiteral("message.xml")});
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

TEST(SaveTest, RenamedMessageSavesUnderTheNewName) {
    TestHome home;
    auto message = richMessage(home, QStringLiteral("Before"));
    ASSERT_TRUE(message->SaveMessage());
    const auto before = snapshot(home.file(QStringLiteral("Messages/Before")));
    ASSERT_EQ(before.size(), 4);
    message->setName(QStringLiteral("After"));
    message->Slides()->Item(1)->setText(QStringLiteral("changed"));
    ASSERT_TRUE(message->SaveMessage());
    // The save writes the new folder only; the folder under the old name stays as it was.
    EXPECT_EQ(entries(home.file(QStringLiteral("Messages"))),
              (QStringList{QStringLiteral("After"), QStringLiteral("Before")}));
    EXPECT_EQ(snapshot(home.file(QStringLiteral("Messages/Before"))), before);
    const QByteArray after = fileBytes(home.file(QStringLiteral("Messages/After/message.xml")));
    EXPECT_TRUE(after.contains("name=\"After\""));
    EXPECT_TRUE(after.contains("changed"));
    EXPECT_FALSE(before.value(QStringLiteral("message.xml")).contains("changed"));
}

TEST(SaveTest, DamagedDocumentIsKeptAsABackupWithItsPictures) {
    TestHome home;
    const QByteArray damaged = "<ROOT><HEADER><MESSAGE name=\"Broken\"><SLIDES";
    const QByteArray bitmap = "BM not really a picture";
    home.write(QStringLiteral("Messages/Broken/Slide_1.bmp"), bitmap);
    auto message = messageFromXml(home, QStringLiteral("Broken"), damaged);
    ASSERT_NE(message->Slides(), nullptr);
    EXPECT_EQ(message->Slides()->Count(), 0) << "a damaged document opens as a fresh one";
    EXPECT_EQ(message->backupNames(),
              (QStringList{QStringLiteral("message.xml.bak"), QStringLiteral("Slide_1.bmp.bak")}));
    message->Slides()->Add()->setImage(picture(QColor(0, 0, 255)));
    ASSERT_TRUE(message->SaveMessage()) << message->lastError().toStdString();
    const QString folder = home.file(QStringLiteral("Messages/Broken"));
    EXPECT_EQ(entries(folder),
              (QStringList{QStringLiteral("Slide_1.bmp"), QStringLiteral("Slide_1.bmp.bak"),
                           QStringLiteral("message.xml"), QStringLiteral("message.xml.bak")}));
    EXPECT_EQ(fileBytes(folder + QStringLiteral("/message.xml.bak")), damaged);
    EXPECT_EQ(fileBytes(folder + QStringLiteral("/Slide_1.bmp.bak")), bitmap);
    EXPECT_EQ(QImage(folder + QStringLiteral("/Slide_1.bmp")).pixelColor(1, 1), QColor(0, 0, 255));

    // Later saves, in this session or after opening the message again, keep the backups.
    ASSERT_TRUE(message->SaveMessage());
    EXPECT_EQ(fileBytes(folder + QStringLiteral("/message.xml.bak")), damaged);
    auto again = newMessage(home, QStringLiteral("Broken"));
    EXPECT_TRUE(again->backupNames().isEmpty()) << "the saved document reads fine";
    ASSERT_EQ(again->Slides()->Count(), 1);
    ASSERT_TRUE(again->SaveMessage());
    EXPECT_EQ(fileBytes(folder + QStringLiteral("/message.xml.bak")), damaged);
    EXPECT_EQ(fileBytes(folder + QStringLiteral("/Slide_1.bmp.bak")), bitmap);
    EXPECT_EQ(entries(home.file(QStringLiteral("Messages"))),
              QStringList{QStringLiteral("Broken")});
}

TEST(SaveTest, NormalSaveWritesNoBackup) {
    TestHome home;
    auto message = richMessage(home, QStringLiteral("Fine"));
    ASSERT_TRUE(message->SaveMessage());
    auto back = newMessage(home, QStringLiteral("Fine"));
    EXPECT_TRUE(back->backupNames().isEmpty());
    ASSERT_TRUE(back->SaveMessage());
    EXPECT_EQ(entries(home.file(QStringLiteral("Messages/Fine"))),
              (QStringList{QStringLiteral("Slide_1.bmp"), QStringLiteral("Slide_2.bmp"),
                           QStringLiteral("Slide_3.bmp"), QStringLiteral("message.xml")}));
}

TEST(SaveTest, UnreadablePictureRecordedByTheCallerIsKept) {
    TestHome home;
    auto first = richMessage(home, QStringLiteral("Pics"));
    ASSERT_TRUE(first->SaveMessage());
    const QString folder = home.file(QStringLiteral("Messages/Pics"));
    const QByteArray garbage = "this is no bitmap";
    home.write(QStringLiteral("Messages/Pics/Slide_2.bmp"), garbage);
    auto message = newMessage(home, QStringLiteral("Pics"));
    message->keepUnreadable(QStringLiteral("Slide_2.bmp"));
    message->keepUnreadable(QStringLiteral("Slide_2.bmp"));  // once is enough
    message->keepUnreadable(QStringLiteral("../elsewhere")); // never outside the folder
    EXPECT_EQ(message->backupNames(), QStringList{QStringLiteral("Slide_2.bmp.bak")});
    ASSERT_TRUE(message->SaveMessage());
    EXPECT_EQ(fileBytes(folder + QStringLiteral("/Slide_2.bmp.bak")), garbage);
    EXPECT_NE(fileBytes(folder + QStringLiteral("/Slide_2.bmp")), garbage);
}

TEST(SaveTest, StoreFolderIsMadeWhenMissing) {
    TestHome home;
    auto message = std::make_unique<clsMessage>();
    message->Initialize(home.file(QStringLiteral("deep/store")), QStringLiteral("message.xml"),
                        QStringLiteral("M"));
    EXPECT_EQ(message->Path(), home.file(QStringLiteral("deep/store/M/")));
    ASSERT_TRUE(message->SaveMessage());
    EXPECT_TRUE(QFileInfo::exists(home.file(QStringLiteral("deep/store/M/message.xml"))));
}

// Failures must leave the last good folder exactly as it was. Each of these fails even for
// the super-user: names the file system refuses and a file standing where a folder must go.
TEST(SaveTest, FailedSaveLeavesThePreviousFolderUntouched) {
    TestHome home;
    auto message = richMessage(home, QStringLiteral("Safe"));
    ASSERT_TRUE(message->SaveMessage());
    const QString folder = home.file(QStringLiteral("Messages/Safe"));
    const auto before = snapshot(folder);
    ASSERT_EQ(before.size(), 4);

    // A slide whose picture name is longer than the file system takes, after other files of the
    // new folder were already written.
    message->Slides()->Item(1)->setText(QStringLiteral("edited"));
    pugi::xml_node slide = message->Slides()->Item(3)->DOMElement();
    slide.attribute("name").set_value(std::string(300, 'x').c_str());
    EXPECT_FALSE(message->SaveMessage());
    EXPECT_FALSE(message->lastError().isEmpty());
    EXPECT_EQ(snapshot(folder), before);

    // A slide name that would leave the folder.
    slide.attribute("name").set_value("../escape");
    EXPECT_FALSE(message->SaveMessage());
    EXPECT_EQ(snapshot(folder), before);
    EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("Messages/escape_3.bmp"))));

    // A document file name in a folder that does not exist.
    slide.attribute("name").set_value("Slide");
    auto other = std::make_unique<clsMessage>();
    other->Initialize(home.file(QStringLiteral("Messages/")), QStringLiteral("no/such.xml"),
                      QStringLiteral("Safe"));
    EXPECT_FALSE(other->SaveMessage());
    EXPECT_EQ(snapshot(folder), before);

    EXPECT_EQ(entries(home.file(QStringLiteral("Messages"))), QStringList{QStringLiteral("Safe")})
        << "failed saves leave no working folders";
    // And the message saves fine once the cause is gone.
    ASSERT_TRUE(message->SaveMessage());
    EXPECT_NE(snapshot(folder), before);
}

TEST(SaveTest, NamesTheFileSystemRefusesGiveFalse) {
    TestHome home;
    const QString store = home.file(QStringLiteral("Messages"));
    for (const QString& name :
         {QString(300, QLatin1Char('n')), QStringLiteral("a/b"), QStringLiteral(".."), QString()}) {
        auto message = richMessage(home, name);
        EXPECT_FALSE(message->SaveMessage()) << name.toStdString();
        EXPECT_FALSE(message->lastError().isEmpty()) << name.toStdString();
    }
    EXPECT_TRUE(entries(store).isEmpty());
}

TEST(SaveTest, HiddenAndBackslashNamesAreRefusedWithAReason) {
    TestHome home;
    const QString store = home.file(QStringLiteral("Messages"));
    QDir().mkpath(store);
    for (const QString& name : {QStringLiteral(".hidden"), QStringLiteral("."),
                                QStringLiteral("a\\b"), QStringLiteral("\\")}) {
        auto message = richMessage(home, name);
        EXPECT_FALSE(message->SaveMessage()) << name.toStdString();
        EXPECT_TRUE(message->lastError().contains(QStringLiteral("cannot name a message")))
            << message->lastError().toStdString();
    }
    EXPECT_TRUE(entries(store).isEmpty()) << "nothing, not even a working folder, is written";
    EXPECT_FALSE(messageNameProblem(QStringLiteral(".x")).isEmpty());
    EXPECT_FALSE(messageNameProblem(QStringLiteral("x/y")).isEmpty());
    EXPECT_TRUE(messageNameProblem(QStringLiteral("Trip. 2")).isEmpty()) << "a dot inside is fine";
}

TEST(SaveTest, FileInTheWayOfTheFolderIsKept) {
    TestHome home;
    home.write(QStringLiteral("Messages/Blocked"), "user data");
    auto message = richMessage(home, QStringLiteral("Blocked"));
    EXPECT_FALSE(message->SaveMessage());
    EXPECT_EQ(home.read(QStringLiteral("Messages/Blocked")), QByteArray("user data"));
    EXPECT_EQ(entries(home.file(QStringLiteral("Messages"))),
              QStringList{QStringLiteral("Blocked")});
}

TEST(SaveTest, NameDifferingOnlyInCaseFromAnotherMessageGivesFalse) {
    TestHome home;
    auto first = richMessage(home, QStringLiteral("Trip"));
    ASSERT_TRUE(first->SaveMessage());
    const auto before = snapshot(home.file(QStringLiteral("Messages/Trip")));
    auto second = newMessage(home, QStringLiteral("TRIP"));
    second->Slides()->Add();
    EXPECT_FALSE(second->SaveMessage());
    EXPECT_EQ(entries(home.file(QStringLiteral("Messages"))), QStringList{QStringLiteral("Trip")});
    EXPECT_EQ(snapshot(home.file(QStringLiteral("Messages/Trip"))), before);
}

TEST(SaveTest, SaveImageWritesABitmapIntoTheFolder) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("Pic"));
    ASSERT_TRUE(message->SaveMessage());
    EXPECT_TRUE(message->SaveImage(picture(Qt::blue, 8, 8), QStringLiteral("extra"),
                                   QStringLiteral("bmp")));
    EXPECT_TRUE(message->isChanged());
    EXPECT_EQ(QImage(home.file(QStringLiteral("Messages/Pic/extra.bmp"))).pixelColor(1, 1),
              QColor(Qt::blue));
    auto unsaved = newMessage(home, QStringLiteral("NoFolder"));
    EXPECT_FALSE(
        unsaved->SaveImage(picture(Qt::blue, 8, 8), QStringLiteral("x"), QStringLiteral("bmp")));
}
