#include "PublishSupport.h"

#include "document/clsSlide.h"
#include "store/modTar.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

// A makesis stand-in that records its arguments beside itself and writes the .sis, or fails.
QString fakeMakesis(const TestHome& home, const QString& folder, int exitCode) {
    const QString script = home.file(folder + QStringLiteral("/makesis"));
    home.write(
        folder + QStringLiteral("/makesis"),
        "#!/bin/sh\nprintf '%s\\n' \"$#\" \"$@\" > \"$0.args\"\n: > \"${1%.pkg}.sis\"\nexit " +
            QByteArray::number(exitCode) + "\n");
    QFile::setPermissions(script, QFile::permissions(script) | QFileDevice::ExeOwner);
    return home.file(folder);
}

QStringList tarNames(const QString& archive) {
    QProcess tar;
    tar.start(QStringLiteral("tar"), {QStringLiteral("tf"), archive});
    tar.waitForFinished(30000);
    return QString::fromUtf8(tar.readAllStandardOutput())
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

struct Packaging : ::testing::Test, PublishStore {
    // A stored two-slide message, its folder then renamed to `name`, opened under that name.
    std::shared_ptr<clsMessage> storedAs(const QString& name) {
        if (!make(QStringLiteral("Base"), 2, [](int i, clsSlide& slide) {
                if (i == 1)
                    slide.setText(QStringLiteral("only text"));
            }))
            return nullptr;
        if (!QDir().rename(folder(QStringLiteral("Base")), folder(name)))
            return nullptr;
        auto message = manager.OpenMsg(name);
        if (message)
            message->setName(name);
        return message;
    }
};

} // namespace

TEST_F(Packaging, NameWithShellCharactersPacksAndRunsNothing) {
    const QString name = QStringLiteral("$(id) a;touch x");
    auto message = storedAs(name);
    ASSERT_TRUE(message);
    manager.setCompanionFolder(fakeMakesis(home, QStringLiteral("tools"), 0));
    ASSERT_EQ(manager.SaveAsMMS(*message, true, 0), 0)
        << manager.GetSaveAsMMSStatus().toStdString();

    const QString out = output(name);
    QByteArray expected = "#{\"$(id) a;touch x\"},(0x101F8A52),1,0,0,TYPE=SISUPGRADE\r\n"
                          "(0x101F8A52),1,0,0,{\"CopyOnlyStub\"}\r\n"
                          "(0x101F80BE), 1, 0, 0, {\"NorvaneQ50xPlatformProductID\"}\r\n";
    for (const char* file : {"Slide_1.jpg", "Slide_2.jpg", "texts.xml", "mms.smil"})
        expected += "\"" + out.toUtf8() + file +
                    "\"-\"!:\\documents\\MMS\\Templates\\$(id) a;touch x\\" + file + "\"\r\n";
    QFile package(out + QStringLiteral("mms.pkg"));
    ASSERT_TRUE(package.open(QIODevice::ReadOnly));
    EXPECT_EQ(package.readAll(), expected);
    // makesis had the package as its one argument, and made the .sis beside it.
    QFile arguments(home.file(QStringLiteral("tools/makesis.args")));
    ASSERT_TRUE(arguments.open(QIODevice::ReadOnly));
    EXPECT_EQ(arguments.readAll(), "1\n" + out.toUtf8() + "mms.pkg\n");
    EXPECT_TRUE(QFileInfo::exists(out + QStringLiteral("mms.sis")));
    EXPECT_EQ(tarNames(out + QStringLiteral("mms.tpl")),
              QStringList({"Slide_1.jpg", "Slide_2.jpg", "texts.xml", "mms.smil"}));
    for (const QString& place :
         {QDir::currentPath(), home.path(), home.file(QStringLiteral("Messages"))})
        EXPECT_FALSE(QFileInfo::exists(place + QStringLiteral("/x"))) << place.toStdString();
}

TEST_F(Packaging, FailingMakesisIsAPackingFailure) {
    auto message = storedAs(QStringLiteral("Trip"));
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(1);
    manager.setCompanionFolder(fakeMakesis(home, QStringLiteral("broken"), 5));
    EXPECT_EQ(manager.SaveAsMMS(*message, true, 0), 4);
    EXPECT_EQ(manager.GetSaveAsMMSStatus(),
              QStringLiteral("The message could not be packed (5) makesis"));
}

TEST_F(Packaging, NameAnAttributeCannotHoldStopsBeforeWriting) {
    auto message = storedAs(QStringLiteral("a<b"));
    ASSERT_TRUE(message);
    manager.setCompanionFolder(fakeMakesis(home, QStringLiteral("tools"), 0));
    EXPECT_EQ(manager.SaveAsMMS(*message, true, 0), 1);
    EXPECT_TRUE(manager.GetSaveAsMMSStatus().startsWith(QStringLiteral("Error (-2147467259) ")))
        << manager.GetSaveAsMMSStatus().toStdString();
    EXPECT_TRUE(QDir(output(QStringLiteral("a<b"))).isEmpty());
    EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("tools/makesis.args"))));
}

TEST(TarTest, RefusedCommandsLeaveNoArchive) {
    TestHome home;
    home.write(QStringLiteral("a b.txt"), "one");
    const QString archive = home.file(QStringLiteral("out.tpl"));
    const QString longName = home.file(QString(101, QLatin1Char('n')));
    home.write(QString(101, QLatin1Char('n')), "long");
    const struct {
        QString command;
        int result;
    } cases[] = {
        {QStringLiteral("-fc \"%1\" \"%2\"").arg(archive, home.file("missing")), TarUnreadableFile},
        {QStringLiteral("-fc \"%1\" \"%2\"").arg(archive, longName), TarBadEntry},
        {QStringLiteral("-fc \"%1\"").arg(archive), TarBadCommand},
        {QStringLiteral("--bogus -fc \"%1\" \"%2\"").arg(archive, home.file("a b.txt")),
         TarBadCommand},
    };
    for (const auto& c : cases) {
        char buffer[16];
        std::memset(buffer, 'x', sizeof buffer);
        EXPECT_EQ(Tar(0, c.command.toUtf8(), buffer, sizeof buffer), c.result)
            << c.command.toStdString();
        EXPECT_NE(std::memchr(buffer, '\0', sizeof buffer), nullptr);
        EXPECT_TRUE(
            QDir(home.path()).entryList({QStringLiteral("out.tpl*")}, QDir::Files).isEmpty());
    }
    const QString good = QStringLiteral("--use-directory=0 --display-dialog=0 -fc \"%1\" \"%2\"")
                             .arg(archive, home.file(QStringLiteral("a b.txt")));
    EXPECT_EQ(Tar(0, good.toUtf8(), nullptr, 0), TarOk);
    EXPECT_EQ(tarNames(archive), QStringList{QStringLiteral("a b.txt")});
}
