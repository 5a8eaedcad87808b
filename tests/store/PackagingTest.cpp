#include "PublishSupport.h"

#include "store/modTar.h"

#include <QDir>
#include <QFileInfo>
#include <cstring>
#include <gtest/gtest.h>

namespace {

// A makesis stand-in that records its arguments beside itself, writes the .sis and exits with
// `exitCode`. Gives its folder.
QString fakeMakesis(const TestHome& home, const QString& folder, int exitCode) {
    home.write(
        folder + u"/makesis"_s,
        "#!/bin/sh\nprintf '%s\\n' \"$#\" \"$@\" > \"$0.args\"\n: > \"${1%.pkg}.sis\"\nexit " +
            QByteArray::number(exitCode) + "\n");
    const QString script = home.file(folder + u"/makesis"_s);
    QFile::setPermissions(script, QFile::permissions(script) | QFileDevice::ExeOwner);
    return home.file(folder);
}

struct Packaging : ::testing::Test, PublishStore {
    // A stored two-slide message (a text on the first), its folder renamed to `name`, opened.
    std::shared_ptr<clsMessage> storedAs(const QString& name) {
        if (!make(u"Base"_s, 2,
                  [](int i, clsSlide& slide) { slide.setText(i == 1 ? u"x"_s : u""_s); }) ||
            !QDir().rename(folder(u"Base"_s), folder(name)))
            return nullptr;
        auto message = manager.OpenMsg(name);
        if (message)
            message->setName(name);
        return message;
    }
};

} // namespace

TEST_F(Packaging, NameWithShellCharactersPacksAndRunsNothing) {
    const QString name = u"$(id) a;touch x"_s;
    auto message = storedAs(name);
    ASSERT_TRUE(message);
    manager.setCompanionFolder(fakeMakesis(home, u"tools"_s, 0));
    ASSERT_EQ(manager.SaveAsMMS(*message, true, 0), 0)
        << manager.GetSaveAsMMSStatus().toStdString();

    const QString out = output(name);
    QByteArray expected = "#{\"$(id) a;touch x\"},(0x101F8A52),1,0,0,TYPE=SISUPGRADE\r\n"
                          "(0x101F8A52),1,0,0,{\"CopyOnlyStub\"}\r\n"
                          "(0x101F80BE), 1, 0, 0, {\"NorvaneQ50xPlatformProductID\"}\r\n";
    for (const char* file : {"Slide_1.jpg", "Slide_2.jpg", "texts.xml", "mms.smil"})
        expected += "\"" + out.toUtf8() + file +
                    "\"-\"!:\\documents\\MMS\\Templates\\$(id) a;touch x\\" + file + "\"\r\n";
    EXPECT_EQ(readFile(out + u"mms.pkg"_s), expected);
    // makesis had the package as its one argument, and made the .sis beside it.
    EXPECT_EQ(readFile(home.file(u"tools/makesis.args"_s)), "1\n" + out.toUtf8() + "mms.pkg\n");
    EXPECT_TRUE(QFileInfo::exists(out + u"mms.sis"_s));
    EXPECT_EQ(tarNames(out + u"mms.tpl"_s),
              QStringList({"Slide_1.jpg", "Slide_2.jpg", "texts.xml", "mms.smil"}));
    for (const QString& place : {QDir::currentPath(), home.path(), home.file(u"Messages"_s)})
        EXPECT_FALSE(QFileInfo::exists(place + u"/x"_s)) << place.toStdString();
}

TEST_F(Packaging, FailingMakesisIsAPackingFailure) {
    auto message = storedAs(u"Trip"_s);
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(1);
    manager.setCompanionFolder(fakeMakesis(home, u"broken"_s, 5));
    EXPECT_EQ(manager.SaveAsMMS(*message, true, 0), 4);
    EXPECT_EQ(manager.GetSaveAsMMSStatus(), u"The message could not be packed (5) makesis"_s);
}

TEST_F(Packaging, NameAnAttributeCannotHoldStopsBeforeWriting) {
    for (const QString& name : {u"a<b"_s, u"a&b"_s, u"a\"b"_s}) {
        auto message = storedAs(name);
        ASSERT_TRUE(message) << name.toStdString();
        manager.setCompanionFolder(fakeMakesis(home, u"tools"_s, 0));
        EXPECT_EQ(manager.SaveAsMMS(*message, true, 0), 1);
        EXPECT_TRUE(manager.GetSaveAsMMSStatus().startsWith(u"Error (-2147467259) "_s))
            << manager.GetSaveAsMMSStatus().toStdString();
        EXPECT_TRUE(QDir(output(name)).isEmpty());
        EXPECT_FALSE(QFileInfo::exists(home.file(u"tools/makesis.args"_s)));
    }
}

TEST(TarTest, RefusedCommandsLeaveNoArchive) {
    TestHome home;
    home.write(u"a b.txt"_s, "one");
    home.write(QString(101, u'n'), "long");
    const QString archive = home.file(u"out.tpl"_s);
    const struct {
        QString files;
        int result;
    } cases[] = {
        {u"-fc \"%1\" \"%2\""_s.arg(archive, home.file(u"missing"_s)), TarUnreadableFile},
        {u"-fc \"%1\" \"%2\""_s.arg(archive, home.file(QString(101, u'n'))), TarBadEntry},
        {u"-fc \"%1\""_s.arg(archive), TarBadCommand},
        {u"--bogus -fc \"%1\" \"%2\""_s.arg(archive, home.file(u"a b.txt"_s)), TarBadCommand},
    };
    for (const auto& c : cases) {
        char buffer[16];
        std::memset(buffer, 'x', sizeof buffer);
        EXPECT_EQ(Tar(0, c.files.toUtf8(), buffer, sizeof buffer), c.result)
            << c.files.toStdString();
        EXPECT_NE(std::memchr(buffer, '\0', sizeof buffer), nullptr);
        EXPECT_TRUE(QDir(home.path()).entryList({u"out.tpl*"_s}, QDir::Files).isEmpty());
    }
    const QString good = u"--use-directory=0 --display-dialog=0 -fc \"%1\" \"%2\""_s.arg(
        archive, home.file(u"a b.txt"_s));
    EXPECT_EQ(Tar(0, good.toUtf8(), nullptr, 0), TarOk);
    EXPECT_EQ(tarNames(archive), QStringList{u"a b.txt"_s});
}
