#include "DocumentTestSupport.h"

#include "document/clsMessage.h"
#include "platform/Failure.h"

#include <gtest/gtest.h>

namespace {
const std::string kEmptyDraw =
    "<DRAWOBJECTS><BACKGROUND name=\"background\" color=\"16777215\"/></DRAWOBJECTS>";

std::string slideXml(const std::string& attributes, const std::string& image = "<IMAGE/>") {
    return "<SLIDE " + attributes + ">" + image + "<SOUND/><TEXT/>" + kEmptyDraw + "</SLIDE>";
}

std::string slidesOf(const clsMessage& message) {
    const std::string all = body(message);
    const auto from = all.find("<SLIDES");
    const auto to = all.find("</MESSAGE>");
    return all.substr(from, to - from);
}
} // namespace

TEST(SlidesTest, AddUsesTheDefaultDurationAndLeavesTheImageUrlOut) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("S"));
    message->setDefaultDuration(2500);
    ASSERT_TRUE(message->Slides()->Add());
    EXPECT_EQ(slidesOf(*message),
              "<SLIDES>" + slideXml("name=\"Slide\" index=\"1\" dur=\"2500\"") + "</SLIDES>");
}

TEST(SlidesTest, AddBeforeTheOnlySlideRenumbersBothAndUses3000) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("S"));
    message->setDefaultDuration(9000);
    auto first = message->Slides()->Add();
    first->setText(QStringLiteral("old"));
    auto inserted = message->Slides()->AddBefore(1);
    ASSERT_TRUE(inserted);
    EXPECT_EQ(message->Slides()->Item(1), inserted);
    EXPECT_EQ(message->Slides()->Item(2), first);
    EXPECT_EQ(slidesOf(*message),
              "<SLIDES>" +
                  slideXml("name=\"Slide\" index=\"1\" dur=\"3000\"", "<IMAGE url=\"Slide_1\"/>") +
                  "<SLIDE name=\"Slide\" index=\"2\" dur=\"9000\"><IMAGE url=\"Slide_2\"/><SOUND/>"
                  "<TEXT text=\"old\"/>" +
                  kEmptyDraw + "</SLIDE></SLIDES>");
}

TEST(SlidesTest, AddAfterInTheMiddleKeepsDocumentAndCollectionInStep) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("S"));
    for (int i = 0; i < 3; ++i)
        message->Slides()->Add()->setText(QString::number(i + 1));
    auto added = message->Slides()->AddAfter(1);
    ASSERT_TRUE(added);
    EXPECT_EQ(added->Duration(), 3000);
    // Renumbering starts at the given index: the slides from there on get their url.
    EXPECT_EQ(message->Slides()->Item(1)->GetImageAttribute(QStringLiteral("url")),
              QStringLiteral("Slide_1"));
    auto last = message->Slides()->AddAfter(4);
    EXPECT_EQ(message->Slides()->Item(5), last) << "after the last";
    QStringList texts;
    int position = 1;
    for (pugi::xml_node slide : message->Slides()->slidesElement().children("SLIDE")) {
        EXPECT_EQ(message->Slides()->Item(position)->DOMElement(), slide);
        texts << QString::fromUtf8(slide.child("TEXT").attribute("text").value());
        ++position;
    }
    EXPECT_EQ(texts, (QStringList{QStringLiteral("1"), QString(), QStringLiteral("2"),
                                  QStringLiteral("3"), QString()}));
}

TEST(SlidesTest, InsertionsOutOfRangeGiveNullAndChangeNothing) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("S"));
    const std::string before = message->serialise();
    EXPECT_FALSE(message->Slides()->AddBefore(1));
    EXPECT_FALSE(message->Slides()->AddAfter(0));
    EXPECT_FALSE(message->Slides()->AddAfter(1));
    EXPECT_EQ(message->serialise(), before);
    message->Slides()->Add();
    EXPECT_FALSE(message->Slides()->AddBefore(0));
    EXPECT_FALSE(message->Slides()->AddAfter(2));
    EXPECT_EQ(message->Slides()->Count(), 1);
    EXPECT_FALSE(message->Slides()->Item(0));
    EXPECT_FALSE(message->Slides()->Item(2));
}

TEST(SlidesTest, RemoveRenumbersAndOldReferenceWorksOnItsDetachedElement) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("S"));
    message->Slides()->Remove(1); // empty: nothing happens
    for (int i = 0; i < 3; ++i)
        message->Slides()->Add()->setText(QStringLiteral("t%1").arg(i + 1));
    auto removed = message->Slides()->Item(2);
    auto held = removed->DrawObjects()->Add(clsDrawProperties{QStringLiteral("pic")});

    message->Slides()->Remove(2);
    ASSERT_EQ(message->Slides()->Count(), 2);
    EXPECT_EQ(message->Slides()->Item(2)->Text(), QStringLiteral("t3"));
    EXPECT_EQ(message->Slides()->Item(2)->GetImageAttribute(QStringLiteral("url")),
              QStringLiteral("Slide_2"));
    EXPECT_EQ(message->serialise().find("t2"), std::string::npos);

    // The removed slide and its draw object still read and write, outside the message.
    removed->setText(QStringLiteral("changed"));
    held->setImage(QStringLiteral("/y.png"));
    EXPECT_EQ(message->serialise().find("changed"), std::string::npos);
    EXPECT_EQ(message->serialise().find("/y.png"), std::string::npos);
    EXPECT_THROW(message->Slides()->Remove(7), Failure);
}

TEST(SlidesTest, MissingValuesReadAsZeroOrEmpty) {
    TestHome home;
    auto message = messageFromXml(
        home, QStringLiteral("S"),
        "<ROOT><MESSAGE name=\"S\"><SLIDES><SLIDE name=\"Slide\" index=\"1\"><IMAGE/><SOUND "
        "dur=\"\"/><TEXT/></SLIDE></SLIDES></MESSAGE></ROOT>");
    auto slide = message->Slides()->Item(1);
    EXPECT_EQ(slide->Duration(), 0);
    EXPECT_EQ(slide->SoundDuration(), 0);
    EXPECT_EQ(slide->Sound(), QString());
    // A slide without DRAWOBJECTS gets one with a background of the preferred colour.
    EXPECT_EQ(slide->Color(), 16777215);
}

TEST(SlidesTest, TextLineEndsAreNormalisedOnReadOnly) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("S"));
    auto slide = message->Slides()->Add();
    slide->setText(QStringLiteral("a\nb\rc\r\nd\n\re"));
    EXPECT_EQ(slide->GetTextAttribute(QStringLiteral("text")), QStringLiteral("a\nb\rc\r\nd\n\re"));
    EXPECT_EQ(slide->Text(), QStringLiteral("a\r\nb\r\nc\r\nd\r\n\r\ne"));
}

TEST(SlidesTest, SlideOutlivesItsMessage) {
    TestHome home;
    std::shared_ptr<clsSlide> slide;
    {
        auto message = newMessage(home, QStringLiteral("Gone"));
        slide = message->Slides()->Add();
        slide->setText(QStringLiteral("still here"));
    }
    EXPECT_EQ(slide->Text(), QStringLiteral("still here"));
}
