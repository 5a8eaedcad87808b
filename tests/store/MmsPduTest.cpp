#include "MmsPduDecoder.h"
#include "PublishSupport.h"
#include "store/modMmsPdu.h"

#include <QFileInfo>
#include <gtest/gtest.h>

namespace {

// The request `folder`/mms.mms as read back: its headers (the fixed ones around `headers`), and
// each part as "name type", with the Content-ID "<name>" and the bytes of the file in `folder`.
void expectRequest(const QString& folder, const QStringList& headers, const QStringList& parts) {
    DecodedPdu pdu;
    try {
        pdu = PduReader(readFile(folder + u"mms.mms"_s)).read();
    } catch (const std::runtime_error& error) {
        FAIL() << error.what();
    }
    EXPECT_EQ(pdu.transactionId.size(), 32);
    EXPECT_EQ(pdu.headers, QStringList({"type=128", "transaction=" + pdu.transactionId,
                                        "version=1.2", "from=insert"}) +
                               headers +
                               QStringList({"content-type=application/vnd.wap.multipart.related;"
                                            "type=application/smil;start=<mms.smil>"}));
    QStringList read;
    for (const DecodedPart& part : pdu.parts) {
        read << part.location + u' ' + part.type;
        EXPECT_EQ(part.contentId, u'<' + part.location + u'>');
        EXPECT_TRUE(part.data == readFile(folder + part.location)) << part.location.toStdString();
    }
    EXPECT_EQ(read, parts);
}

const QString kPublish = QStringLiteral(TESSALY_BIN_DIR "/tessaly-publish");
struct PduExport : ::testing::Test, PublishStore {};

} // namespace

TEST_F(PduExport, ThreeSlidesWithSoundAndText) {
    home.write(u"sounds/tone.wav"_s, sineWav(8000, 1, 500));
    home.write(u"sounds/tune.mp3"_s, "ID3 not really an mp3");
    auto message = make(u"Trip"_s, 3, [&](int i, clsSlide& slide) {
        if (i != 2) {
            slide.setSound(home.file(i == 1 ? u"sounds/tone.wav"_s : u"sounds/tune.mp3"_s));
            slide.setText(i == 1 ? u"Hello"_s : u"Grüße"_s);
        }
    });
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(2);
    manager.setMakePdu(true, {u"+49 170 1234567"_s, u"ann@example.org"_s});
    ASSERT_EQ(manager.SaveAsMMS(*message, true, 0), 0)
        << manager.GetSaveAsMMSStatus().toStdString();
    const QString out = output(u"Trip"_s);
    expectRequest(out, {"subject=Trip", "to=+491701234567/TYPE=PLMN", "to=ann@example.org"},
                  {"mms.smil application/smil", "Slide_1.jpg image/jpeg", "Slide_1.amr audio/amr",
                   "Slide_1.txt text/plain;charset=106", "Slide_2.jpg image/jpeg",
                   "Slide_3.jpg image/jpeg", "Slide_3.mp3 audio/mpeg",
                   "Slide_3.txt text/plain;charset=106"});
    // The request travels beside the packages, not in them.
    EXPECT_FALSE(tarNames(out + u"mms.tpl"_s).contains(u"mms.mms"_s));
}

TEST_F(PduExport, CommandWithRecipientsAndANonAsciiSubject) {
    const QString name = u"Ärger über Grüße aus dem Urlaub"_s; // longer than a short length
    ASSERT_TRUE(make(name, 1, [](int, clsSlide&) {}));
    const QString message = folder(name);
    int code = -1;
    const QByteArray said = runTool(
        kPublish, {message, "--packages", "none", "--pdu", "--to", "0301234", "--to", "+4917"},
        &code);
    ASSERT_EQ(code, 0) << said.toStdString();
    expectRequest(output(name),
                  {u"subject(106)="_s + name, "to=0301234/TYPE=PLMN", "to=+4917/TYPE=PLMN"},
                  {"mms.smil application/smil", "Slide_1.jpg image/jpeg"});
    for (const QStringList& wrong : {QStringList{message, "--to", "0301234"},
                                     QStringList{message, "--pdu", "--to", "call me"}}) {
        EXPECT_TRUE(runTool(kPublish, wrong, &code).contains("--to"));
        EXPECT_EQ(code, 64);
    }
}

TEST_F(PduExport, OnlyOnRequestAndNeverHalfWritten) {
    auto message = make(u"Ask"_s, 1, [](int, clsSlide&) {});
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(0);
    const QString out = output(u"Ask"_s);
    const auto made = [&] {
        return manager.SaveAsMMS(*message, true, 0) == 0 && QFileInfo::exists(out + u"mms.mms"_s);
    };
    EXPECT_FALSE(made()); // the preference MakePdu is "0"
    gProperties()->SetProp(u"preferences"_s, u"MakePdu"_s, u"1"_s);
    EXPECT_TRUE(made());
    manager.setMakePdu(false); // the manager's word over the preference
    EXPECT_FALSE(made());

    manager.setMakePdu(true, {u"12ab"_s});
    EXPECT_EQ(manager.SaveAsMMS(*message, true, 0), 4);
    EXPECT_EQ(manager.GetSaveAsMMSStatus(), u"The message could not be packed (75) 12ab is "
                                            "neither a phone number nor an e-mail address"_s);
    QString problem;
    ASSERT_TRUE(QFile::remove(out + u"Slide_1.jpg"_s));
    EXPECT_FALSE(writeMmsPdu(out, u"Ask"_s, {}, &problem));
    EXPECT_TRUE(problem.contains(u"Slide_1.jpg"_s));
    EXPECT_FALSE(QFileInfo::exists(out + u"mms.mms"_s));

    // A charset other than UTF-8 goes by name.
    const QByteArray other =
        mmsSendRequest({u"t"_s, u"s"_s, {}, {{u"a.xml"_s, u"text/xml; charset=latin1"_s, "x"}}});
    EXPECT_EQ(PduReader(other).read().parts.value(0).type, u"text/xml;charset=latin1"_s);
}
