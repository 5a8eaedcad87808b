#include "DocumentTestSupport.h"

#include "config/clsPropertiesXML.h"
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "platform/Failure.h"

#include <gtest/gtest.h>

namespace {
std::string drawObjectsOf(const clsSlide& slide) {
    std::ostringstream out;
    slide.DrawObjects()->drawObjectsElement().print(out, "", pugi::format_raw);
    return out.str();
}

// clang-format off
clsDrawProperties textObject() {
    return {QStringLiteral("Text1"), QStringLiteral("text"), -5, 7, 100, 20, 2,
            QStringLiteral("DejaVu Sans"), 14, 16711680, 3, QStringLiteral("Hello & <you>"),
            true, false, true};
}

clsDrawProperties imageObject() {
    return {QStringLiteral("Image1"), QStringLiteral("image"), 1, 2, 30, 40, 0, {}, 0, 0, 1,
            QStringLiteral("/pictures/star.gif")};
}
// clang-format on
} // namespace

TEST(DrawObjectsTest, ObjectsAreWrittenInTheirOrderByKind) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("D"));
    auto slide = message->Slides()->Add();
    auto text = slide->DrawObjects()->Add(textObject());
    auto image = slide->DrawObjects()->Add(imageObject());
    ASSERT_TRUE(text && image);
    EXPECT_EQ(drawObjectsOf(*slide),
              "<DRAWOBJECTS><BACKGROUND name=\"background\" color=\"16777215\"/>"
              "<DRAWOBJECT name=\"Text1\" type=\"text\" x=\"-5\" y=\"7\" w=\"100\" h=\"20\" "
              "zorder=\"3\" text=\"Hello &amp; &lt;you>\" fname=\"DejaVu Sans\" fsize=\"14\" "
              "fcolor=\"16711680\" falign=\"2\" fbold=\"True\" fitalic=\"False\" "
              "funderline=\"True\"/>"
              "<DRAWOBJECT name=\"Image1\" type=\"image\" x=\"1\" y=\"2\" w=\"30\" h=\"40\" "
              "zorder=\"1\" image=\"/pictures/star.gif\"/></DRAWOBJECTS>");
    EXPECT_EQ(text->GetAllPproperties(), textObject());
    EXPECT_EQ(image->GetAllPproperties(), imageObject());
    EXPECT_EQ(slide->DrawObjects()->Item(2), image);
}

TEST(DrawObjectsTest, ReadingTakesTrueExactlyAndATextObjectNeedsItsNumbers) {
    TestHome home;
    auto message = messageFromXml(
        home, QStringLiteral("D"),
        "<ROOT><MESSAGE name=\"D\"><SLIDES><SLIDE name=\"Slide\" index=\"1\"><DRAWOBJECTS>"
        "<DRAWOBJECT name=\"t\" type=\"text\" x=\"1\" y=\"2\" w=\"3\" h=\"4\" zorder=\"5\" "
        "fsize=\"6\" fcolor=\"7\" falign=\"8\" fbold=\"true\" fitalic=\"True\" funderline=\"1\"/>"
        "<DRAWOBJECT name=\"e\" type=\"text\" x=\"1\" y=\"2\" w=\"3\" h=\"4\" zorder=\"5\"/>"
        "<DRAWOBJECT name=\"p\" type=\"image\" x=\"1\" y=\"2\" w=\"3\" h=\"4\" zorder=\"5\" "
        "image=\"/a.bmp\"/><BACKGROUND/></DRAWOBJECTS></SLIDE></SLIDES></MESSAGE></ROOT>");
    auto objects = message->Slides()->Item(1)->DrawObjects();
    EXPECT_EQ(objects->BackColor(), 0) << "a background without colour";
    const clsDrawProperties text = objects->Item(1)->GetAllPproperties();
    EXPECT_FALSE(text.fontBold);
    EXPECT_TRUE(text.fontItalic);
    EXPECT_FALSE(text.fontUnderline);
    EXPECT_EQ(text.fontAlign, 8);
    EXPECT_THROW(objects->Item(2)->GetAllPproperties(), Failure);
    const clsDrawProperties picture = objects->Item(3)->GetAllPproperties();
    EXPECT_EQ(picture.Data, QStringLiteral("/a.bmp"));
    EXPECT_EQ(picture.fontSize, 0);
}

TEST(DrawObjectsTest, LoadedSlideWithoutBackgroundIsMidGrey) {
    TestHome home;
    auto message = messageFromXml(
        home, QStringLiteral("D"),
        "<ROOT><MESSAGE name=\"D\"><SLIDES><SLIDE name=\"Slide\" index=\"1\" dur=\"1\"><IMAGE/>"
        "<SOUND/><TEXT/><DRAWOBJECTS><DRAWOBJECT name=\"p\" type=\"image\"/></DRAWOBJECTS>"
        "</SLIDE></SLIDES></MESSAGE></ROOT>");
    auto slide = message->Slides()->Item(1);
    EXPECT_EQ(slide->Color(), 8421504);
    EXPECT_EQ(drawObjectsOf(*slide),
              "<DRAWOBJECTS><DRAWOBJECT name=\"p\" type=\"image\"/><BACKGROUND "
              "name=\"background\" color=\"8421504\"/></DRAWOBJECTS>");
}

TEST(DrawObjectsTest, BackgroundValuesAndTheReadOfBackType) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("D"));
    auto objects = message->Slides()->Add()->DrawObjects();
    objects->setBackColor(-16777216);
    EXPECT_EQ(objects->BackColor(), -16777216);
    objects->setBackPicture(QStringLiteral("/backgrounds/sky.jpg"));
    objects->setBackType(QStringLiteral("tiled"));
    EXPECT_EQ(getAttr(objects->backgroundElement(), "type"), QStringLiteral("tiled"));
    // Reading the type hands it on to the picture and gives nothing back.
    EXPECT_EQ(objects->BackType(), QString());
    EXPECT_EQ(objects->BackPicture(), QStringLiteral("tiled"));
}

TEST(DrawObjectsTest, ClearKeepsTheBackgroundAndRemoveKeepsTheElement) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("Keep"));
    auto slide = message->Slides()->Add();
    auto objects = slide->DrawObjects();
    objects->setBackColor(255);
    objects->setBackPicture(QStringLiteral("/bg.png"));
    objects->Add(textObject());
    auto held = objects->Add(imageObject());

    objects->Remove(1);
    EXPECT_EQ(objects->Item(1), held);
    EXPECT_THROW(objects->Item(2), Failure);
    EXPECT_NE(message->serialise().find("Text1"), std::string::npos) << "its element stays";

    objects->Clear();
    EXPECT_EQ(objects->Count(), 0);
    EXPECT_EQ(drawObjectsOf(*slide), "<DRAWOBJECTS><BACKGROUND name=\"background\" "
                                     "color=\"255\" url=\"/bg.png\"/></DRAWOBJECTS>");
    // An object still held goes on working on its own copy.
    held->setImage(QStringLiteral("/other.png"));
    EXPECT_EQ(message->serialise().find("/other.png"), std::string::npos);
}

TEST(DrawObjectsTest, NewSlideTakesTheBackgroundPreferenceOfItsMoment) {
    TestHome home;
    SharedConfig shared;
    clsPropertiesXML& properties = shared.setProperties(std::make_unique<clsPropertiesXML>());
    properties.Initialize(home.file(QStringLiteral("prefs.xml")), QStringLiteral("tessaly"));
    auto message = newMessage(home, QStringLiteral("P"));
    properties.SetProp(QStringLiteral("preferences"), QStringLiteral("BackgroundColor"),
                       QStringLiteral("255"));
    auto red = message->Slides()->Add();
    properties.SetProp(QStringLiteral("preferences"), QStringLiteral("BackgroundColor"),
                       QStringLiteral("65280"));
    EXPECT_EQ(red->Color(), 255);
    EXPECT_EQ(message->Slides()->Add()->Color(), 65280);
}
