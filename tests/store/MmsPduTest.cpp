#include "MmsPduDecoder.h"
#include "PublishSupport.h"
#include "store/modMmsPdu.h"

#include <QFileInfo>
#include <gtest/gtest.h>

namespace {

const QString kPublish = QStringLiteral(TESSALY_BIN_DIR "/tessaly-publish");

DecodedPdu decoded(const QString& path) {
    try {
        return PduReader(readFile(path)).read();
    } catch (const std::runtime_error& error) {
        ADD_FAILURE() << path.toStdString() << ": " << error.what();
        return {};
    }
}

// The request's fixed headers, its body type and, part by part, the names, types and bytes of
// the files in `folder`.
void expectRequest(const DecodedPdu& pdu, const QString& folder, const QStringList& parts) {
    EXPECT_EQ(pdu.messageType, 0x80); // m-send-req
    EXPECT_FALSE(pdu.transactionId.isEmpty());
    EXPECT_EQ(pdu.version, u"1.2"_s);
    EXPECT_TRUE(pdu.fromInserted);
    EXPECT_EQ(pdu.type.media, u"application/vnd.wap.multipart.related"_s);
    EXPECT_EQ(pdu.type.parameters.value(u"type"_s), u"application/smil"_s);
    EXPECT_EQ(pdu.type.parameters.value(u"start"_s), u"<mms.smil>"_s);
    ASSERT_EQ(pdu.parts.size(), parts.size());
    for (int i = 0; i < parts.size(); ++i) {
        const QStringList expected = parts[i].split(u' ');
        const DecodedPart& part = pdu.parts[i];
        EXPECT_EQ(part.location, expected[0]);
        EXPECT_EQ(part.contentId, u'<' + expected[0] + u'>');
        EXPECT_EQ(part.type.media, expected[1]) << i;
        EXPECT_EQ(part.type.parameters.value(u"charset"_s), expected.value(2)) << i;
        EXPECT_TRUE(part.data == readFile(folder + expected[0])) << i;
    }
}

struct PduExport : ::testing::Test, PublishStore {};

} // namespace

TEST_F(PduExport, ThreeSlidesWithSoundAndText) {
    home.write(u"sounds/tone.wav"_s, sineWav(8000, 1, 500));
    home.write(u"sounds/tune.mp3"_s, "ID3 not really an mp3");
    auto message = make(u"Trip"_s, 3, [&](int i, clsSlide& slide) {
        if (i == 2)
            return;
        slide.setSound(home.file(i == 1 ? u"sounds/tone.wav"_s : u"sounds/tune.mp3"_s));
        slide.setText(i == 1 ? u"Hello"_s : u"Grüße"_s);
    });
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(2);
    manager.setMakePdu(true, {u"+49 170 1234567"_s, u"ann@example.org"_s});
    ASSERT_EQ(manager.SaveAsMMS(*message, true, 0), 0)
        << manager.GetSaveAsMMSStatus().toStdString();

    const QString out = output(u"Trip"_s);
    const DecodedPdu pdu = decoded(out + u"mms.mms"_s);
    EXPECT_EQ(pdu.subject, u"Trip"_s);
    EXPECT_EQ(pdu.subjectCharset, 0);
    EXPECT_EQ(pdu.to, QStringList({"+491701234567/TYPE=PLMN", "ann@example.org"}));
    expectRequest(pdu, out,
                  {"mms.smil application/smil", "Slide_1.jpg image/jpeg", "Slide_1.amr audio/amr",
                   "Slide_1.txt text/plain 106", "Slide_2.jpg image/jpeg", "Slide_3.jpg image/jpeg",
                   "Slide_3.mp3 audio/mpeg", "Slide_3.txt text/plain 106"});
    // The request travels beside the packages, not in them.
    EXPECT_FALSE(manager.fileList().contains(u"mms.mms"_s));
    EXPECT_FALSE(tarNames(out + u"mms.tpl"_s).contains(u"mms.mms"_s));
}

TEST_F(PduExport, CommandWithRecipientsAndANonAsciiSubject) {
    const QString name = u"Ärger über Grüße aus dem Urlaub"_s;
    ASSERT_TRUE(make(name, 1, [](int, clsSlide& slide) { slide.setText(u"x"_s); }));
    int code = -1;
    const QByteArray said = runTool(
        kPublish, {folder(name), "--packages", "none", "--pdu", "--to", "0301234", "--to", "+4917"},
        &code);
    ASSERT_EQ(code, 0) << said.toStdString();
    const DecodedPdu pdu = decoded(output(name) + u"mms.mms"_s);
    EXPECT_EQ(pdu.subject, name);
    EXPECT_EQ(pdu.subjectCharset, 106);
    EXPECT_EQ(pdu.to, QStringList({"0301234/TYPE=PLMN", "+4917/TYPE=PLMN"}));
    expectRequest(
        pdu, output(name),
        {"mms.smil application/smil", "Slide_1.jpg image/jpeg", "Slide_1.txt text/plain 106"});

    for (const QStringList& wrong :
         {QStringList{"--to", "0301234"}, QStringList{"--pdu", "--to", "call me"}}) {
        EXPECT_EQ(runTool(kPublish, QStringList{folder(name)} + wrong, &code).contains("--to"),
                  true);
        EXPECT_EQ(code, 64);
    }
}

TEST_F(PduExport, OnlyOnRequestAndNeverHalfWritten) {
    auto message = make(u"Ask"_s, 1, [](int, clsSlide&) {});
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(0);
    const QString request = output(u"Ask"_s) + u"mms.mms"_s;
    ASSERT_EQ(manager.SaveAsMMS(*message, true, 0), 0);
    EXPECT_FALSE(QFileInfo::exists(request));
    gProperties()->SetProp(u"preferences"_s, u"MakePdu"_s, u"1"_s);
    ASSERT_EQ(manager.SaveAsMMS(*message, true, 0), 0);
    EXPECT_EQ(decoded(request).parts.size(), 2);

    // A bad recipient or a file the presentation names but the folder lacks: nothing written.
    ASSERT_TRUE(QFile::remove(request));
    QString problem;
    EXPECT_FALSE(writeMmsPdu(output(u"Ask"_s), u"Ask"_s, {u"12ab"_s}, &problem));
    EXPECT_TRUE(problem.contains(u"12ab"_s));
    ASSERT_TRUE(QFile::remove(output(u"Ask"_s) + u"Slide_1.jpg"_s));
    EXPECT_FALSE(writeMmsPdu(output(u"Ask"_s), u"Ask"_s, {}, &problem));
    EXPECT_TRUE(problem.contains(u"Slide_1.jpg"_s));
    EXPECT_FALSE(QFileInfo::exists(request));
    manager.setMakePdu(true);
    EXPECT_EQ(manager.SaveAsMMS(*message, true, 0), 0); // the picture is made again
    manager.setMakePdu(false);
    EXPECT_EQ(manager.SaveAsMMS(*message, true, 0), 0);
    EXPECT_FALSE(QFileInfo::exists(request));
}
