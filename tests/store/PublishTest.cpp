#include "PublishSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace {

// One par of mms.smil; null members are left out.
QString par(const char* dur, const char* img, const char* audio = nullptr,
            const char* text = nullptr) {
    QString xml = u"<par dur=\"%1\">"_s.arg(QLatin1String(dur));
    if (img)
        xml += u"<img src=\"%1\" region=\"Image\"/>"_s.arg(QLatin1String(img));
    if (audio)
        xml += u"<audio src=\"%1\"/>"_s.arg(QLatin1String(audio));
    if (text)
        xml += u"<text src=\"%1\" region=\"Text\"/>"_s.arg(QLatin1String(text));
    return xml + u"</par>"_s;
}

// mms.smil as the test expects it, written out here and read as a tree.
std::string expectedSmil(const QString& name, const QString& pars) {
    return canonicalXml(
        (u"<smil><head><meta name=\"title\" content=\"%1\"/><meta name=\"author\" content=\"MMS\"/>"
         "<layout><root-layout width=\"160\" height=\"160\"/>"
         "<region id=\"Image\" width=\"160\" height=\"120\" left=\"0\" top=\"0\"/>"
         "<region id=\"Text\" width=\"160\" height=\"20\" left=\"0\" top=\"120\"/>"
         "</layout></head><body>%2</body></smil>"_s)
            .arg(name, pars)
            .toUtf8());
}

// Milliseconds of sound ffmpeg decodes from a file.
int decodedMs(const QString& amr) {
    int code = -1;
    const QByteArray pcm =
        runTool(u"ffmpeg"_s,
                {"-v", "error", "-i", amr, "-f", "s16le", "-ac", "1", "-ar", "8000", "-"}, &code);
    return code == 0 ? int(pcm.size() / 16) : -1;
}

QMap<QString, QByteArray> folderBytes(const QString& folder) {
    QMap<QString, QByteArray> files;
    for (const QString& name : QDir(folder).entryList(QDir::Files))
        if (name != u"mms.tpl"_s) // its members carry the files' times
            files.insert(name, readFile(folder + name));
    return files;
}

const QString kPublish = QStringLiteral(TESSALY_BIN_DIR "/tessaly-publish");

struct Publish : ::testing::Test, PublishStore {};

} // namespace

TEST_F(Publish, ThreeSlidesFromTheWindowAndTheCommandAreTheSame) {
    home.write(u"sounds/stereo.wav"_s, sineWav(44100, 2, 1000));
    home.write(u"sounds/mono.wav"_s, sineWav(8000, 1, 500));
    auto message = make(u"Trip"_s, 3, [&](int i, clsSlide& slide) {
        if (i == 2)
            return slide.setDuration(2500);
        slide.setSound(home.file(i == 1 ? u"sounds/stereo.wav"_s : u"sounds/mono.wav"_s));
        slide.setText(i == 1 ? u"Hello <world> & you"_s : u"Two\r\nlines"_s);
    });
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(2);
    QSignalSpy progress(&manager, &clsMMSManager::ProsessingSlide);
    ASSERT_EQ(manager.SaveAsMMS(*message, true, 0), 0)
        << manager.GetSaveAsMMSStatus().toStdString();
    EXPECT_EQ(manager.GetSaveAsMMSStatus(), u"OK"_s);
    QStringList phases;
    for (const auto& signal : progress)
        phases << signal[0].toString() + u'/' + signal[1].toString();
    EXPECT_EQ(phases, QStringList({"1/3", "2/3", "3/3", "-1/1", "-1/2"}));

    const QString out = output(u"Trip"_s);
    EXPECT_EQ(manager.fileList(), u"Slide_1.jpg;Slide_1.amr;Slide_1.txt;Slide_2.jpg;Slide_3.jpg;"
                                  "Slide_3.amr;Slide_3.txt;texts.xml;mms.smil"_s);
    const QByteArray smil = readFile(out + u"mms.smil"_s);
    EXPECT_TRUE(smil.startsWith("<?xml version=\"1.0\" encoding=\"utf-8\"?><smil>"));
    EXPECT_EQ(
        canonicalXml(smil),
        expectedSmil(u"Trip"_s, par("3000ms", "Slide_1.jpg", "Slide_1.amr", "Slide_1.txt") +
                                    par("2500ms", "Slide_2.jpg") +
                                    par("3000ms", "Slide_3.jpg", "Slide_3.amr", "Slide_3.txt")));
    EXPECT_EQ(canonicalXml(readFile(out + u"texts.xml"_s)),
              canonicalXml(
                  "<mms-text-files><message><title>Trip</title>"
                  "<file filename=\"Slide_1.txt\">Hello &lt;world&gt; &amp; you</file>"
                  "<file filename=\"Slide_3.txt\">Two\r\nlines</file></message></mms-text-files>"));
    EXPECT_EQ(readFile(out + u"Slide_3.txt"_s), "Two\r\nlines\r\n");
    EXPECT_EQ(tarNames(out + u"mms.tpl"_s),
              QStringList({"Slide_1.jpg", "Slide_1.amr", "Slide_2.jpg", "Slide_3.jpg",
                           "Slide_3.amr", "texts.xml", "mms.smil"}));
    EXPECT_NEAR(decodedMs(out + u"Slide_1.amr"_s), 1000, 40);
    EXPECT_NEAR(decodedMs(out + u"Slide_3.amr"_s), 500, 40);
    for (int i = 1; i <= 3; ++i)
        EXPECT_EQ(QImage(out + u"Slide_%1.jpg"_s.arg(i)).size(), QSize(160, 120)) << i;

    const QMap<QString, QByteArray> fromWindow = folderBytes(out);
    int code = -1;
    const QByteArray said = runTool(kPublish, {folder(u"Trip"_s), "--packages", "tpl"}, &code);
    ASSERT_EQ(code, 0) << said.toStdString();
    EXPECT_TRUE(fromWindow == folderBytes(out));
    EXPECT_EQ(tarNames(out + u"mms.tpl"_s).size(), 7);
}

TEST_F(Publish, SoundsByExtensionAndConversion) {
    home.write(u"sounds/noext"_s, sineWav(8000, 1, 200));
    home.write(u"sounds/a b.wav"_s, sineWav(22050, 1, 300));
    home.write(u"sounds/tune.mp3"_s, "ID3 not really an mp3");
    auto message = make(u"Sounds"_s, 4, [&](int i, clsSlide& slide) {
        const char* sounds[] = {"sounds/noext", "sounds/a b.wav", "sounds/tune.mp3"};
        if (i < 4)
            slide.setSound(home.file(QString::fromUtf8(sounds[i - 1])));
        else
            slide.setDuration(0); // skipped
    });
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(0);
    const QString out = output(u"Sounds"_s);
    for (const bool convert : {false, true}) {
        const QByteArray ext = convert ? ".bmp" : ".gif";
        gProperties()->SetProp(u"preferences"_s, u"ImageFormat"_s, QString::fromLatin1(ext.mid(1)));
        ASSERT_EQ(manager.SaveAsMMS(*message, convert, 1), 0) << convert;
        EXPECT_EQ(canonicalXml(readFile(out + u"mms.smil"_s)),
                  expectedSmil(u"Sounds"_s, par("3.000s", "Slide_1" + ext, "") +
                                                par("3.000s", "Slide_2" + ext,
                                                    convert ? "Slide_2.amr" : "Slide_2.wav") +
                                                par("3.000s", "Slide_3" + ext, "Slide_3.mp3")));
        EXPECT_EQ(readFile(out + u"Slide_3.mp3"_s), "ID3 not really an mp3");
        // The copied wave stays beside its conversion, outside the list.
        EXPECT_TRUE(QFileInfo::exists(out + u"Slide_2.wav"_s));
        EXPECT_EQ(manager.fileList().contains(u"Slide_2.wav"_s), !convert);
        EXPECT_EQ(QImage(out + u"Slide_1"_s + QString::fromLatin1(ext)).size(), QSize(160, 120));
        // Each publication empties the folder of the one before.
        EXPECT_EQ(QFileInfo::exists(out + u"Slide_1.gif"_s), !convert);
    }
    EXPECT_NEAR(decodedMs(out + u"Slide_2.amr"_s), 300, 40);
}

TEST_F(Publish, FailedStepsGiveTheirStatusAndText) {
    home.write(u"sounds/broken.wav"_s, "RIFF\x10\0\0\0WAVEfmt junk");
    auto message = make(u"Faults"_s, 2, [&](int i, clsSlide& slide) {
        slide.setText(u"t"_s);
        if (i == 2)
            slide.setSound(home.file(u"sounds/broken.wav"_s));
    });
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(0);
    EXPECT_EQ(manager.SaveAsMMS(*message, true, 0), 3);
    EXPECT_EQ(manager.GetSaveAsMMSStatus(), u"The sound could not be converted (1) wav2amr"_s);
    message->Slides()->Item(2)->setSound(home.file(u"sounds/gone.wav"_s));
    EXPECT_EQ(manager.SaveAsMMS(*message, true, 0), 3);
    EXPECT_EQ(manager.GetSaveAsMMSStatus(), u"The sound could not be converted (53) FileCopy"_s);

    // A picture failure leaves the other slides published.
    message->Slides()->Item(2)->setSound({});
    ASSERT_TRUE(QFile::remove(folder(u"Faults"_s) + u"Slide_1.bmp"_s));
    EXPECT_EQ(manager.SaveAsMMS(*message, true, 0), 2);
    EXPECT_TRUE(manager.GetSaveAsMMSStatus().startsWith(u"The picture could not be converted ("_s));
    EXPECT_EQ(manager.fileList(), u"Slide_1.txt;Slide_2.jpg;Slide_2.txt;texts.xml;mms.smil"_s);
}

TEST_F(Publish, CommandOptionsAndExitCodes) {
    home.write(u"sounds/broken.wav"_s, "RIFF junk");
    ASSERT_TRUE(make(u"Good"_s, 1, [](int, clsSlide&) {}));
    ASSERT_TRUE(make(u"Empty"_s, 0, [](int, clsSlide&) {}));
    ASSERT_TRUE(make(u"Bad"_s, 1, [&](int, clsSlide& slide) {
        slide.setSound(home.file(u"sounds/broken.wav"_s));
    }));
    const QString good = folder(u"Good"_s);
    // Without preferences of the user's the command takes the installed ones and writes none.
    ASSERT_TRUE(QFile::remove(home.file(u"tessaly.xml"_s)));
    const struct {
        QStringList arguments;
        int code;
        const char* says;
    } cases[] = {
        {{}, 64, "Name one message folder."},
        {{good, "--format", "png"}, 64, "--format takes jpg, gif or bmp."},
        {{good, "--packages", "zip"}, 64, "--packages takes"},
        {{home.file(u"Messages"_s), "--packages", "none"}, 66, "holds no message"},
        {{folder(u"Bad"_s), "--packages", "none"},
         3,
         "The sound could not be converted (1) wav2amr"},
        {{folder(u"Empty"_s), "--packages", "tpl"}, 0, ""},
        {{good, "--time", "s", "--format", "gif", "--convert-sound", "no", "--packages", "none"},
         0,
         ""},
    };
    for (const auto& c : cases) {
        int code = -1;
        const QByteArray said = runTool(kPublish, c.arguments, &code);
        EXPECT_EQ(code, c.code) << c.arguments.join(u' ').toStdString() << ": "
                                << said.toStdString();
        EXPECT_TRUE(said.contains(c.says)) << said.toStdString();
    }
    EXPECT_EQ(canonicalXml(readFile(output(u"Good"_s) + u"mms.smil"_s)),
              expectedSmil(u"Good"_s, par("3.000s", "Slide_1.gif")));
    EXPECT_FALSE(QFileInfo::exists(output(u"Good"_s) + u"mms.tpl"_s));
    EXPECT_FALSE(QFileInfo::exists(home.file(u"tessaly.xml"_s)));
    // No slides: an empty body, a title alone, and the two documents packed.
    EXPECT_EQ(canonicalXml(readFile(output(u"Empty"_s) + u"mms.smil"_s)),
              expectedSmil(u"Empty"_s, {}));
    EXPECT_EQ(
        canonicalXml(readFile(output(u"Empty"_s) + u"texts.xml"_s)),
        canonicalXml("<mms-text-files><message><title>Empty</title></message></mms-text-files>"));
    EXPECT_EQ(tarNames(output(u"Empty"_s) + u"mms.tpl"_s), QStringList({"texts.xml", "mms.smil"}));
}
