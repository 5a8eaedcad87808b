#include "DocumentTestSupport.h"

#include "document/clsMessage.h"
#include "platform/modShared.h"

#include <QFile>
#include <gtest/gtest.h>

TEST(MessageTest, NewMessageIsTheTemplateWithDeclarationAndEmptySlides) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("First"));
    EXPECT_EQ(message->serialise(),
              "<?xml version=\"1.0\" encoding=\"utf-8\"?><ROOT><HEADER><CONTENT version=\"1.0\" "
              "type=\"Tessaly messages\"/></HEADER><MESSAGE "
              "name=\"First\"><SLIDES/></MESSAGE></ROOT>");
    EXPECT_EQ(message->document().first_child().type(), pugi::node_declaration);
    EXPECT_TRUE(message->isChanged());
    EXPECT_EQ(message->DefaultDuration(), 3000);
    EXPECT_TRUE(message->readProblem().isEmpty());
}

TEST(MessageTest, LoadedFileKeepsItsOwnContentAndIsStillChanged) {
    TestHome home;
    auto message = messageFromXml(
        home, QStringLiteral("Folder"),
        "<ROOT><HEADER/><MESSAGE name=\"Stored\" created=\"yesterday\"><SLIDES><SLIDE "
        "name=\"Slide\" index=\"1\" dur=\"1500\"><IMAGE url=\"Slide_1\"/><SOUND/><TEXT "
        "text=\"hi\"/><DRAWOBJECTS><BACKGROUND name=\"background\" "
        "color=\"255\"/></DRAWOBJECTS></SLIDE></SLIDES></MESSAGE></ROOT>");
    // The name is the MESSAGE attribute; the folder is the name the message was opened by.
    EXPECT_EQ(message->name(), QStringLiteral("Stored"));
    EXPECT_EQ(message->Path(), home.file(QStringLiteral("Messages/Folder/")));
    EXPECT_TRUE(message->isChanged());
    EXPECT_EQ(message->Slides()->Item(1)->Duration(), 1500);
    // A loaded file without a declaration gets none added.
    EXPECT_EQ(message->serialise().rfind("<ROOT>", 0), 0u);
}

TEST(MessageTest, MissingSlidesAreAppendedAndABrokenFileGivesAFreshMessage) {
    TestHome home;
    auto message =
        messageFromXml(home, QStringLiteral("M"), "<ROOT><HEADER/><MESSAGE name=\"M\"/></ROOT>");
    EXPECT_EQ(body(*message), "<ROOT><HEADER/><MESSAGE name=\"M\"><SLIDES/></MESSAGE></ROOT>");
    for (const QByteArray& broken : {QByteArray("<ROOT><MESSAGE name=\"x\"><SLIDES><SLIDE"),
                                     QByteArray("\xff\xfe\x00garbage"), QByteArray("")}) {
        message = messageFromXml(home, QStringLiteral("Broken"), broken);
        EXPECT_EQ(body(*message),
                  std::string(kHead) + "<MESSAGE name=\"Broken\"><SLIDES/></MESSAGE></ROOT>");
    }
    EXPECT_EQ(newMessage(home, QStringLiteral("Nowhere"))->Slides()->Count(), 0);
    EXPECT_FALSE(QFile::exists(home.file(QStringLiteral("Messages/Nowhere"))));
}

TEST(MessageTest, DocumentWithoutRootHasNoSlideCollection) {
    TestHome home;
    auto message = messageFromXml(home, QStringLiteral("Other"), "<OTHER><MESSAGE/></OTHER>");
    EXPECT_EQ(message->Slides(), nullptr);
    message->setDefaultDuration(5000); // nothing to forward to
    EXPECT_EQ(message->DefaultDuration(), -1);
    EXPECT_EQ(message->name(), QString());
    EXPECT_FALSE(message->readProblem().isEmpty());
    EXPECT_FALSE(message->SaveMessageAs(QStringLiteral("Named"))) << "nothing carries the name";
}

// Every value the program reads when it shows a message must read, or the message is refused
// as a whole instead of failing half-way through showing it.
TEST(MessageTest, ReadProblemNamesAValueThatIsNoNumber) {
    TestHome home;
    const std::string head = "<ROOT><MESSAGE name=\"S\"><SLIDES><SLIDE name=\"Slide\" ";
    const std::string tail = "</SLIDE></SLIDES></MESSAGE></ROOT>";
    const struct {
        std::string xml;
        bool readable;
    } cases[] = {
        {"index=\"1\" dur=\"1500\"><SOUND dur=\"\"/>", true},
        {"index=\"1\" dur=\"soon\">", false},
        {"index=\"first\" dur=\"1\">", false},
        {"index=\"99999\" dur=\"1\">", false},
        {"index=\"1\" dur=\"1\"><SOUND dur=\"99999999999\"/>", false},
        {"index=\"1\"><DRAWOBJECTS><BACKGROUND color=\"red\"/></DRAWOBJECTS>", false},
        {"index=\"1\"><DRAWOBJECTS><DRAWOBJECT type=\"image\" x=\"abc\"/></DRAWOBJECTS>", false},
    };
    for (const auto& c : cases) {
        auto message = messageFromXml(home, QStringLiteral("S"),
                                      QByteArray::fromStdString(head + c.xml + tail));
        ASSERT_EQ(message->Slides()->Count(), 1) << c.xml;
        EXPECT_EQ(message->readProblem().isEmpty(), c.readable) << c.xml;
    }
}

TEST(MessageTest, NameWriteMovesThePathAndPathWriteDoesNothing) {
    TestHome home;
    auto message = newMessage(home, gUntitledName);
    message->setName(QStringLiteral("Holiday"));
    EXPECT_EQ(message->Path(), home.file(QStringLiteral("Messages/Holiday/")));
    message->setPath(QStringLiteral("/somewhere/else/"));
    EXPECT_EQ(message->Path(), home.file(QStringLiteral("Messages/Holiday/")));
    message->setCreated(QStringLiteral("2026-01-01"));
    EXPECT_EQ(body(*message), std::string(kHead) +
                                  "<MESSAGE name=\"Holiday\" "
                                  "created=\"2026-01-01\"><SLIDES/></MESSAGE></ROOT>");
}

TEST(MessageTest, DeleteSlideRemovesOnlyAnExistingSlide) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("D"));
    message->DeleteSlide(1); // empty: nothing happens
    message->setDefaultDuration(4500);
    message->Slides()->Add();
    message->Slides()->Add();
    EXPECT_EQ(message->Slides()->Item(2)->Duration(), 4500);
    message->DeleteSlide(5);
    message->DeleteSlide(1);
    ASSERT_EQ(message->Slides()->Count(), 1);
    EXPECT_EQ(message->Slides()->Item(1)->Index(), 1);
}

TEST(MessageTest, CopySlideCopiesValuesAndAppendsDrawObjects) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("C"));
    auto source = message->Slides()->Add();
    auto destination = message->Slides()->Add();
    source->setColor(123);
    source->setDuration(7000);
    source->setSoundDuration(6500);
    QImage picture(4, 3, QImage::Format_RGB32);
    picture.fill(Qt::red);
    source->setImage(picture);
    source->setSound(QStringLiteral("/sounds/a.wav"));
    source->setText(QStringLiteral("one\ntwo"));
    source->DrawObjects()->setBackPicture(QStringLiteral("/bg.bmp"));
    source->DrawObjects()->setBackType(QStringLiteral("kind"));
    source->DrawObjects()->Add({QStringLiteral("t1"), QStringLiteral("text")});
    destination->DrawObjects()->Add({QStringLiteral("keep"), QStringLiteral("text")});

    message->CopySlide(*destination, *source);
    EXPECT_EQ(destination->Color(), 123);
    EXPECT_EQ(destination->Duration(), 7000);
    EXPECT_EQ(destination->SoundDuration(), 6500);
    EXPECT_EQ(destination->Image(), picture);
    EXPECT_EQ(destination->Sound(), QStringLiteral("/sounds/a.wav"));
    EXPECT_EQ(destination->GetTextAttribute(QStringLiteral("text")),
              QStringLiteral("one\r\ntwo")); // the copy takes the normalised text
    EXPECT_EQ(destination->DrawObjects()->BackPicture(), QStringLiteral("/bg.bmp"));
    EXPECT_EQ(getAttr(destination->DrawObjects()->backgroundElement(), "type"), QString());
    ASSERT_EQ(destination->DrawObjects()->Count(), 2);
    EXPECT_EQ(destination->DrawObjects()->Item(1)->name(), QStringLiteral("keep"));
    EXPECT_EQ(destination->DrawObjects()->Item(2)->name(), QStringLiteral("t1"));

    // Onto itself, the objects are doubled once.
    message->CopySlide(*source, *source);
    ASSERT_EQ(source->DrawObjects()->Count(), 2);
    EXPECT_EQ(source->DrawObjects()->Item(2)->name(), QStringLiteral("t1"));
}
