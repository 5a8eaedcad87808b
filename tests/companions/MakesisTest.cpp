// makesis run as the program runs it, its output read back by a reader of the format's own.
#include "companions/SisReader.h"
#include "support/TestHome.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

struct Outcome {
    int exitCode = -1;
    QString errors;
};

Outcome makesis(const QStringList& arguments, const QString& folder) {
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(QStringLiteral(TESSALY_BIN_DIR "/makesis"), arguments);
    EXPECT_TRUE(process.waitForFinished(30000));
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardError())};
}

// The package the program writes for a message (CRLF lines, absolute sources).
QByteArray messagePackage(const QString& outputFolder, const QString& message,
                          const QStringList& files) {
    QString pkg = QStringLiteral("#{\"%1\"},(0x101F8A52),1,0,0,TYPE=SISUPGRADE\r\n"
                                 "(0x101F8A52),1,0,0,{\"CopyOnlyStub\"}\r\n"
                                 "(0x101F80BE), 1, 0, 0, {\"NorvaneQ50xPlatformProductID\"}\r\n")
                      .arg(message);
    for (const QString& file : files)
        pkg += QStringLiteral("\"%1%2\"-\"!:\\documents\\MMS\\Templates\\%3\\%2\"\r\n")
                   .arg(outputFolder, file, message);
    return pkg.toUtf8();
}

QStringList requisitesOf(const SisRead& sis) {
    QStringList list;
    for (const SisRead::Requisite& r : sis.requisites)
        list << QString::asprintf("%x %u.%u.%u ", r.uid, r.major, r.minor, r.variant) +
                    r.names.join(QLatin1Char('|'));
    return list;
}

} // namespace

TEST(Makesis, MessagePackageReadsBackWithEveryFile) {
    TestHome home;
    const QString out = home.path() + QStringLiteral("/Messages/Café trip/mms/");
    const QList<std::pair<QString, QByteArray>> files = {
        {"mms.smil", QByteArray("<smil><body/></smil>").repeated(40)},
        {"Slide 1.jpg", QByteArray("\xff\xd8\x00\x01 jpeg \xff\xd9", 12)},
        {"sound.amr", QByteArray("#!AMR\n")},
        {"texts.xml", QByteArray()}};
    QStringList names;
    for (const auto& [name, content] : files) {
        home.write(QStringLiteral("Messages/Café trip/mms/") + name, content);
        names << name;
    }
    home.write(QStringLiteral("Messages/Café trip/mms/mms.pkg"),
               messagePackage(out, QStringLiteral("Café trip"), names));

    const Outcome run = makesis({out + QStringLiteral("mms.pkg")}, home.path());
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const QByteArray bytes = home.read(QStringLiteral("Messages/Café trip/mms/mms.sis"));
    const SisRead sis = readSis(bytes);

    EXPECT_EQ(std::vector(sis.uid, sis.uid + 4),
              (std::vector<std::uint32_t>{0x101F8A52, 0x10003A12, 0x10000419, 0x8FACD553}));
    EXPECT_EQ(sis.uid[3], sis.uid4Expected);
    EXPECT_EQ(sis.checksum, sis.checksumExpected);
    // SISUPGRADE 1.0.0 for the installer of release 6, drive chosen at installation, names in
    // UTF-16, contents compressed.
    EXPECT_EQ(std::tuple(sis.type, sis.major, sis.minor, sis.variant, sis.installerVersion,
                         sis.drive, sis.options),
              std::tuple(5, 1, 0, 0u, 200u, '!', 0x1));
    EXPECT_EQ(sis.languages, QList<std::uint16_t>{1});
    EXPECT_EQ(sis.names, QStringList{QStringLiteral("Café trip")});
    EXPECT_EQ(requisitesOf(sis), (QStringList{"101f8a52 1.0.0 CopyOnlyStub",
                                              "101f80be 1.0.0 NorvaneQ50xPlatformProductID"}));
    ASSERT_EQ(sis.files.size(), files.size());
    for (int i = 0; i < files.size(); ++i) {
        SCOPED_TRACE(files[i].first.toStdString());
        EXPECT_EQ(sis.files[i].target,
                  QStringLiteral("!:\\documents\\MMS\\Templates\\Café trip\\") + files[i].first);
        EXPECT_EQ(sis.files[i].source, out + files[i].first);
        EXPECT_EQ(sis.files[i].content, files[i].second);
    }
    EXPECT_FALSE(bytes.contains("</smil><smil>")) << "the SMIL text is stored compressed";

    QByteArray damaged = bytes;
    damaged[40] = char(damaged[40] ^ 1); // the major version
    EXPECT_NE(readSis(damaged).checksum, readSis(damaged).checksumExpected);
}

TEST(Makesis, LanguagesWindowsStyleSourceUncompressedAndNamedOutput) {
    TestHome home;
    home.write(QStringLiteral("pkg/media/a b.gif"), QByteArray("GIF89a"));
    home.write(QStringLiteral("pkg/two.pkg"),
               "; two languages\n&EN,FR\n"
               "#{\"Say \"\"hi\"\"\",\"Salut\"},(0x10000001),2,3,4,NOCOMPRESS ; trailing\n"
               "(0x10000002),5,6,7,{\"Base\",\"Socle\"}\n"
               "\n\"media\\a b.gif\" - \"c:\\x\\a b.gif\",FF\n");

    const Outcome run =
        makesis({QStringLiteral("pkg/two.pkg"), QStringLiteral("out.sis")}, home.path());
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("pkg/two.sis"))));
    const SisRead sis = readSis(home.read(QStringLiteral("out.sis")));
    EXPECT_EQ(sis.checksum, sis.checksumExpected);
    EXPECT_EQ(std::tuple(sis.uid[0], sis.type, sis.major, sis.minor, sis.variant, sis.options),
              std::tuple(0x10000001u, 0, 2, 3, 4u, 0x9));
    EXPECT_EQ(sis.languages, (QList<std::uint16_t>{1, 2}));
    EXPECT_EQ(sis.names, (QStringList{QStringLiteral("Say \"hi\""), QStringLiteral("Salut")}));
    EXPECT_EQ(requisitesOf(sis), QStringList{"10000002 5.6.7 Base|Socle"});
    ASSERT_EQ(sis.files.size(), 1);
    EXPECT_EQ(sis.files[0].source, home.file(QStringLiteral("pkg/media/a b.gif")));
    EXPECT_EQ(sis.files[0].target, QStringLiteral("c:\\x\\a b.gif"));
    EXPECT_EQ(sis.files[0].content, QByteArray("GIF89a"));
}

TEST(Makesis, BadDescriptionNamesLineAndReasonAndWritesNothing) {
    const char* header = "#{\"M\"},(0x101F8A52),1,0,0\n";
    const struct {
        QByteArray pkg;
        const char* error;
    } cases[] = {
        {QByteArray(header) + "\"present.txt\"-\"!:\\a\\p.txt\"\n\"gone.gif\"-\"!:\\a\\g.gif\"\n",
         "mms.pkg:3: cannot read \""},
        {"\"present.txt\"-\"!:\\a\\p.txt\"\n", "mms.pkg:1: the package line"},
        {"; nothing\n", "mms.pkg: there is no package line"},
        {"#{\"M\"},(0x101F8A52),1,0\n", "mms.pkg:1: expected \",\" after the minor version"},
        {"#{\"M},(0x1),1,0,0\n", "mms.pkg:1: the package name has no closing double quote"},
        {"#{\"M\",\"N\"},(0x1),1,0,0\n", "mms.pkg:1: 2 names are given for 1 languages"},
        {"#{\"M\"},(0x1),70000,0,0\n", "mms.pkg:1: the major version 70000 is too large"},
        {"&EN,XX\n", "mms.pkg:1: unknown language \"XX\""},
        {QByteArray(header) + "\"present.txt\"-\"documents\\p.txt\"\n",
         "mms.pkg:2: the target \"documents\\p.txt\" must be a file on a drive"},
        {QByteArray(header) +
             "\"present.txt\"-\"!:\\a\\p.txt\"\n\"present.txt\"-\"!:\\A\\P.txt\"\n",
         "mms.pkg:3: the target \"!:\\A\\P.txt\" is already given on line 2"},
        {QByteArray(header) + "%{\"Vendor\"}\n", "mms.pkg:2: this kind of line is not supported"},
        {QByteArray(header) + "\"present.txt\"-\"!:\\a\\p.txt\" x\n",
         "mms.pkg:2: unexpected \"x\""},
        {QByteArray("#{\"\xc3\x28\"}"), "mms.pkg: the description is neither UTF-8 nor UTF-16"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pkg.toStdString());
        TestHome home;
        home.write(QStringLiteral("present.txt"), "here");
        home.write(QStringLiteral("mms.pkg"), c.pkg);
        home.write(QStringLiteral("mms.sis"), "the previous package");
        const Outcome run = makesis({QStringLiteral("mms.pkg")}, home.path());
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.errors.startsWith(QString::fromUtf8(c.error))) << run.errors.toStdString();
        EXPECT_EQ(home.read(QStringLiteral("mms.sis")), QByteArray("the previous package"));
        EXPECT_EQ(QDir(home.path()).entryList(QDir::Files).size(), 3);
    }
    EXPECT_EQ(makesis({}, QDir::tempPath()).exitCode, 2);
}

TEST(Makesis, ReaderChecksMatchKnownAnswers) {
    EXPECT_EQ(sisCrc("123456789"), 0x31C3);
    // The UID check value of every multi-bitmap file (UIDs 0x10000037, 0x10000042, 0).
    EXPECT_EQ(sisUidCheck(0x10000037, 0x10000042, 0), 0x47396439u);
}

TEST(Makesis, InstalledBesideTheProgramsHelpers) {
    TestHome home;
    QProcess install;
    install.start(QStringLiteral(TESSALY_CMAKE),
                  {QStringLiteral("--install"), QStringLiteral(TESSALY_BUILD_DIR),
                   QStringLiteral("--prefix"), home.path(), QStringLiteral("--component"),
                   QStringLiteral("makesis")});
    ASSERT_TRUE(install.waitForFinished(60000));
    ASSERT_EQ(install.exitCode(), 0) << install.readAllStandardError().toStdString();
    const QFileInfo installed(home.file(QStringLiteral("libexec/tessaly/makesis")));
    EXPECT_TRUE(installed.isFile() && installed.isExecutable());
}
