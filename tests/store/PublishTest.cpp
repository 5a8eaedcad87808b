#include "PublishSupport.h"

#include "document/clsSlide.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace {

struct Par {
    const char* dur;
    const char* img = nullptr;
    const char* audio = nullptr;
    const char* text = nullptr;
};

// mms.smil as the test expects it, built here as a tree.
std::string expectedSmil(const QString& name, const std::vector<Par>& pars) {
    pugi::xml_document document;
    pugi::xml_node smil = document.append_child("smil");
    pugi::xml_node head = smil.append_child("head");
    const auto meta = [&head](const char* metaName, const char* content) {
        pugi::xml_node node = head.append_child("meta");
        node.append_attribute("name") = metaName;
        node.append_attribute("content") = content;
    };
    meta("title", name.toUtf8().constData());
    meta("author", "MMS");
    pugi::xml_node layout = head.append_child("layout");
    pugi::xml_node root = layout.append_child("root-layout");
    root.append_attribute("width") = "160";
    root.append_attribute("height") = "160";
    for (const auto& [id, height, top] : {std::tuple{"Image", "120", "0"}, {"Text", "20", "120"}}) {
        pugi::xml_node region = layout.append_child("region");
        region.append_attribute("id") = id;
        region.append_attribute("width") = "160";
        region.append_attribute("height") = height;
        region.append_attribute("left") = "0";
        region.append_attribute("top") = top;
    }
    pugi::xml_node body = smil.append_child("body");
    for (const Par& par : pars) {
        pugi::xml_node node = body.append_child("par");
        node.append_attribute("dur") = par.dur;
        if (par.img) {
            pugi::xml_node img = node.append_child("img");
            img.append_attribute("src") = par.img;
            img.append_attribute("region") = "Image";
        }
        if (par.audio)
            node.append_child("audio").append_attribute("src") = par.audio;
        if (par.text) {
            pugi::xml_node text = node.append_child("text");
            text.append_attribute("src") = par.text;
            text.append_attribute("region") = "Text";
        }
    }
    std::ostringstream out;
    document.save(out, "", pugi::format_raw | pugi::format_no_declaration);
    return canonicalXml(QByteArray::fromStdString(out.str()));
}

// texts.xml as expected: the title, then a file per (name, text).
std::string expectedTexts(const QString& title, const QList<QPair<QString, QString>>& files) {
    pugi::xml_document document;
    pugi::xml_node message = document.append_child("mms-text-files").append_child("message");
    message.append_child("title").text().set(title.toUtf8().constData());
    for (const auto& [name, text] : files) {
        pugi::xml_node file = message.append_child("file");
        file.append_attribute("filename") = name.toUtf8().constData();
        file.text().set(text.toUtf8().constData());
    }
    std::ostringstream out;
    document.save(out, "", pugi::format_raw | pugi::format_no_declaration);
    return canonicalXml(QByteArray::fromStdString(out.str()));
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QMap<QString, QByteArray> folderBytes(const QString& folder, const QString& except) {
    QMap<QString, QByteArray> files;
    for (const QString& name : QDir(folder).entryList(QDir::Files))
        if (name != except)
            files.insert(name, readFile(folder + name));
    return files;
}

QByteArray runTool(const QString& program, const QStringList& arguments, int* exitCode = nullptr) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000))
        return "(did not finish)";
    if (exitCode)
        *exitCode = process.exitCode();
    return process.readAllStandardOutput() + process.readAllStandardError();
}

QStringList tarNames(const QString& archive) {
    int code = -1;
    const QByteArray listing =
        runTool(QStringLiteral("tar"), {QStringLiteral("tf"), archive}, &code);
    return code == 0 ? QString::fromUtf8(listing).split(QLatin1Char('\n'), Qt::SkipEmptyParts)
                     : QStringList{QStringLiteral("(tar failed) ") + QString::fromUtf8(listing)};
}

// Milliseconds of sound ffmpeg decodes from an AMR file.
int decodedMs(const QString& amr) {
    QProcess process;
    process.start(QStringLiteral("ffmpeg"),
                  {"-v", "error", "-i", amr, "-f", "s16le", "-ac", "1", "-ar", "8000", "-"});
    if (!process.waitForFinished(30000) || process.exitCode() != 0)
        return -1;
    return int(process.readAllStandardOutput().size() / 16);
}

struct Publish : ::testing::Test, PublishStore {};

} // namespace

TEST_F(Publish, ThreeSlidesFromTheWindowAndTheCommandAreTheSame) {
    home.write(QStringLiteral("sounds/stereo.wav"), sineWav(44100, 2, 1000));
    home.write(QStringLiteral("sounds/mono.wav"), sineWav(8000, 1, 500));
    auto message = make(QStringLiteral("Trip"), 3, [&](int i, clsSlide& slide) {
        if (i == 1) {
            slide.setSound(home.file(QStringLiteral("sounds/stereo.wav")));
            slide.setText(QStringLiteral("Hello <world> & you"));
        } else if (i == 2) {
            slide.setDuration(2500);
        } else {
            slide.setSound(home.file(QStringLiteral("sounds/mono.wav")));
            slide.setText(QStringLiteral("Two\r\nlines"));
        }
    });
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(2);
    QSignalSpy progress(&manager, &clsMMSManager::ProsessingSlide);
    ASSERT_EQ(manager.SaveAsMMS(*message, true, 0), 0)
        << manager.GetSaveAsMMSStatus().toStdString();
    EXPECT_EQ(manager.GetSaveAsMMSStatus(), QStringLiteral("OK"));
    const QList<QList<QVariant>> phases{{1, 3}, {2, 3}, {3, 3}, {-1, 1}, {-1, 2}};
    ASSERT_EQ(progress.size(), phases.size());
    for (qsizetype i = 0; i < phases.size(); ++i)
        EXPECT_EQ(progress[i][0].toInt() * 10 + progress[i][1].toInt(),
                  phases[i][0].toInt() * 10 + phases[i][1].toInt());

    const QString out = output(QStringLiteral("Trip"));
    EXPECT_EQ(manager.fileList(), QStringLiteral("Slide_1.jpg;Slide_1.amr;Slide_1.txt;Slide_2.jpg;"
                                                 "Slide_3.jpg;Slide_3.amr;Slide_3.txt;texts.xml;"
                                                 "mms.smil"));
    const QByteArray smil = readFile(out + QStringLiteral("mms.smil"));
    EXPECT_TRUE(smil.startsWith("<?xml version=\"1.0\" encoding=\"utf-8\"?><smil>"));
    EXPECT_EQ(canonicalXml(smil),
              expectedSmil(QStringLiteral("Trip"),
                           {{"3000ms", "Slide_1.jpg", "Slide_1.amr", "Slide_1.txt"},
                            {"2500ms", "Slide_2.jpg"},
                            {"3000ms", "Slide_3.jpg", "Slide_3.amr", "Slide_3.txt"}}));
    EXPECT_EQ(canonicalXml(readFile(out + QStringLiteral("texts.xml"))),
              expectedTexts(QStringLiteral("Trip"),
                            {{QStringLiteral("Slide_1.txt"), QStringLiteral("Hello <world> & you")},
                             {QStringLiteral("Slide_3.txt"), QStringLiteral("Two\r\nlines")}}));
    EXPECT_EQ(readFile(out + QStringLiteral("Slide_3.txt")), QByteArray("Two\r\nlines\r\n"));
    EXPECT_EQ(tarNames(out + QStringLiteral("mms.tpl")),
              QStringList({"Slide_1.jpg", "Slide_1.amr", "Slide_2.jpg", "Slide_3.jpg",
                           "Slide_3.amr", "texts.xml", "mms.smil"}));
    EXPECT_NEAR(decodedMs(out + QStringLiteral("Slide_1.amr")), 1000, 40);
    EXPECT_NEAR(decodedMs(out + QStringLiteral("Slide_3.amr")), 500, 40);
    for (int i = 1; i <= 3; ++i) {
        const QImage picture(out + QStringLiteral("Slide_%1.jpg").arg(i));
        EXPECT_EQ(picture.size(), QSize(160, 120)) << i;
    }

    const QMap<QString, QByteArray> fromWindow = folderBytes(out, QStringLiteral("mms.tpl"));
    int code = -1;
    const QByteArray said = runTool(
        QStringLiteral(TESSALY_BIN_DIR "/tessaly-publish"),
        {folder(QStringLiteral("Trip")), QStringLiteral("--packages"), QStringLiteral("tpl")},
        &code);
    ASSERT_EQ(code, 0) << said.toStdString();
    EXPECT_TRUE(fromWindow == folderBytes(out, QStringLiteral("mms.tpl")));
    EXPECT_EQ(tarNames(out + QStringLiteral("mms.tpl")).size(), 7);
}

TEST_F(Publish, NoSlidesGiveTheTwoDocumentsAndAnEmptiedFolder) {
    auto message = make(QStringLiteral("Empty"), 0, [](int, clsSlide&) {});
    ASSERT_TRUE(message);
    home.write(QStringLiteral("Messages/Empty/mms/old.jpg"), "from before");
    manager.ClearTemplateFileType(2);
    ASSERT_EQ(manager.SaveAsMMS(*message, true, 1), 0);
    const QString out = output(QStringLiteral("Empty"));
    EXPECT_FALSE(QFileInfo::exists(out + QStringLiteral("old.jpg")));
    EXPECT_EQ(manager.fileList(), QStringLiteral("texts.xml;mms.smil"));
    EXPECT_EQ(canonicalXml(readFile(out + QStringLiteral("mms.smil"))),
              expectedSmil(QStringLiteral("Empty"), {}));
    EXPECT_EQ(canonicalXml(readFile(out + QStringLiteral("texts.xml"))),
              expectedTexts(QStringLiteral("Empty"), {}));
    EXPECT_EQ(tarNames(out + QStringLiteral("mms.tpl")), QStringList({"texts.xml", "mms.smil"}));
}

TEST_F(Publish, SoundsByExtensionAndConversion) {
    home.write(QStringLiteral("sounds/noext"), sineWav(8000, 1, 200));
    home.write(QStringLiteral("sounds/a b.wav"), sineWav(22050, 1, 300));
    home.write(QStringLiteral("sounds/tune.mp3"), "ID3 not really an mp3");
    auto message = make(QStringLiteral("Sounds"), 4, [&](int i, clsSlide& slide) {
        const char* sounds[] = {"sounds/noext", "sounds/a b.wav", "sounds/tune.mp3", ""};
        slide.setSound(i < 4 ? home.file(QString::fromUtf8(sounds[i - 1])) : QString());
        if (i == 4)
            slide.setDuration(0); // skipped
    });
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(0);
    const QString out = output(QStringLiteral("Sounds"));
    for (const bool convert : {false, true}) {
        gProperties()->SetProp(QStringLiteral("preferences"), QStringLiteral("ImageFormat"),
                               convert ? QStringLiteral("bmp") : QStringLiteral("gif"));
        ASSERT_EQ(manager.SaveAsMMS(*message, convert, 1), 0) << convert;
        const char* ext = convert ? "bmp" : "gif";
        const QByteArray pictures[] = {"Slide_1." + QByteArray(ext), "Slide_2." + QByteArray(ext),
                                       "Slide_3." + QByteArray(ext)};
        EXPECT_EQ(canonicalXml(readFile(out + QStringLiteral("mms.smil"))),
                  expectedSmil(
                      QStringLiteral("Sounds"),
                      {{"3.000s", pictures[0].constData(), ""},
                       {"3.000s", pictures[1].constData(), convert ? "Slide_2.amr" : "Slide_2.wav"},
                       {"3.000s", pictures[2].constData(), "Slide_3.mp3"}}));
        EXPECT_EQ(readFile(out + QStringLiteral("Slide_3.mp3")), "ID3 not really an mp3");
        // The copied wave stays beside its conversion, outside the list.
        EXPECT_TRUE(QFileInfo::exists(out + QStringLiteral("Slide_2.wav")));
        EXPECT_EQ(manager.fileList().contains(QStringLiteral("Slide_2.wav")), !convert);
        EXPECT_EQ(QImage(out + QString::fromLatin1(pictures[0])).size(), QSize(160, 120));
        EXPECT_FALSE(
            QFileInfo::exists(out + QStringLiteral("Slide_4.") + QString::fromLatin1(ext)));
    }
    EXPECT_NEAR(decodedMs(out + QStringLiteral("Slide_2.amr")), 300, 40);
}

TEST_F(Publish, FailedStepsGiveTheirStatusAndText) {
    home.write(QStringLiteral("sounds/broken.wav"), "RIFF\x10\0\0\0WAVEfmt junk");
    auto message = make(QStringLiteral("Faults"), 2, [&](int i, clsSlide& slide) {
        slide.setText(QStringLiteral("t"));
        if (i == 2)
            slide.setSound(home.file(QStringLiteral("sounds/broken.wav")));
    });
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(0);
    EXPECT_EQ(manager.SaveAsMMS(*message, true, 0), 3);
    EXPECT_EQ(manager.GetSaveAsMMSStatus(),
              QStringLiteral("The sound could not be converted (1) wav2amr"));

    message->Slides()->Item(2)->setSound(home.file(QStringLiteral("sounds/gone.wav")));
    EXPECT_EQ(manager.SaveAsMMS(*message, true, 0), 3);
    EXPECT_EQ(manager.GetSaveAsMMSStatus(),
              QStringLiteral("The sound could not be converted (53) FileCopy"));

    // A picture failure leaves the other slides published.
    message->Slides()->Item(2)->setSound(QString());
    ASSERT_TRUE(QFile::remove(folder(QStringLiteral("Faults")) + QStringLiteral("Slide_1.bmp")));
    EXPECT_EQ(manager.SaveAsMMS(*message, true, 0), 2);
    EXPECT_TRUE(manager.GetSaveAsMMSStatus().startsWith(
        QStringLiteral("The picture could not be converted (")));
    EXPECT_EQ(manager.fileList(),
              QStringLiteral("Slide_1.txt;Slide_2.jpg;Slide_2.txt;texts.xml;mms.smil"));
}
