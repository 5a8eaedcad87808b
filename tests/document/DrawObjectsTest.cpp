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

clsDrawProperties textObject() {
    clsDrawProperties p;
    p.name = QStringLiteral("Text1");
    p.typ = QStringLiteral("text");
    p.X = -5;
    p.Y = 7;
    p.w = 100;
    p.h = 20;
    p.fontAlign = 2;
    p.fontName = QStringLiteral("DejaVu Sans");
    p.fontSize = 14;
    p.fontColor = 16711680;
    p.zorder = 3;
    p.Data = QStringLiteral("Hello & <you>");
    p.fontBold = true;
    p.fontItalic = false;
    p.fontUnderline = true;
    return p;
}

clsDrawProperties imageObject() {
    clsDrawProperties p;
    p.name = QStringLiteral("Image1");
    p.typ = QStringLiteral("image");
    p.X = 1;
    p.Y = 2;
    p.w = 30;
    p.h = 40;
    p.zorder = 1;
    p.Data = QStringLiteral("/pictures/star.gif");
    return p;
}

// Installs a preferences store for one test.
class PreferencesFixture : public ::testing::Test {
protected:
    void SetUp() override {
        mProperties.Initialize(mHome.file(QStringLiteral("prefs.xml")), QStringLiteral("tessaly"));
    }

    TestHome mHome;
    SharedConfig mShared;
    clsPropertiesXML& mProperties = mShared.setProperties(std::make_unique<clsPropertiesXML>());
};
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
    EXPECT_EQ(slide->DrawObjects()->Count(), 2);
    EXPECT_EQ(slide->DrawObjects()->Item(2), image);
}

TEST(DrawObjectsTest, PropertiesAreTheStoredText) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("D"));
    auto object = message->Slides()->Add()->DrawObjects()->Add(textObject());
    EXPECT_EQ(object->name(), QStringLiteral("Text1"));
    EXPECT_EQ(object->typ(), QStringLiteral("text"));
    EXPECT_EQ(object->XPos(), QStringLiteral("-5"));
    EXPECT_EQ(object->Ypos(), QStringLiteral("7"));
    EXPECT_EQ(object->Width(), QStringLiteral("100"));
    EXPECT_EQ(object->Height(), QStringLiteral("20"));
    EXPECT_EQ(object->fontName(), QStringLiteral("DejaVu Sans"));
    EXPECT_EQ(object->fontSize(), QStringLiteral("14"));
    EXPECT_EQ(object->fontColor(), QStringLiteral("16711680"));
    EXPECT_EQ(object->fontAlign(), QStringLiteral("2"));
    EXPECT_EQ(object->zorder(), QStringLiteral("3"));
    EXPECT_EQ(object->Image(), QString());
    object->setXPos(QStringLiteral("abc"));
    EXPECT_EQ(object->XPos(), QStringLiteral("abc"));
    EXPECT_THROW(object->GetAllPproperties(), Failure);
}

TEST(DrawObjectsTest, StyleFlagsAreTrueOnlyForTrueExactly) {
    TestHome home;
    auto message = messageFromXml(
        home, QStringLiteral("D"),
        "<ROOT><MESSAGE name=\"D\"><SLIDES><SLIDE name=\"Slide\" index=\"1\" dur=\"1\"><IMAGE/>"
        "<SOUND/><TEXT/><DRAWOBJECTS><BACKGROUND name=\"background\" color=\"1\"/><DRAWOBJECT "
        "name=\"t\" type=\"text\" x=\"1\" y=\"2\" w=\"3\" h=\"4\" zorder=\"5\" text=\"x\" "
        "fname=\"f\" fsize=\"6\" fcolor=\"7\" falign=\"8\" fbold=\"true\" fitalic=\"True\" "
        "funderline=\"1\"/></DRAWOBJECTS></SLIDE></SLIDES></MESSAGE></ROOT>");
    const clsDrawProperties p =
        message->Slides()->Item(1)->DrawObjects()->Item(1)->GetAllPproperties();
    EXPECT_FALSE(p.fontBold);
    EXPECT_TRUE(p.fontItalic);
    EXPECT_FALSE(p.fontUnderline);
    EXPECT_EQ(p.fontAlign, 8);
}

TEST(DrawObjectsTest, TextObjectWithAnEmptyNumberFailsButAPictureDoesNotNeedFontValues) {
    TestHome home;
    auto message = messageFromXml(
        home, QStringLiteral("D"),
        "<ROOT><MESSAGE name=\"D\"><SLIDES><SLIDE name=\"Slide\" index=\"1\" dur=\"1\"><IMAGE/>"
        "<SOUND/><TEXT/><DRAWOBJECTS><DRAWOBJECT name=\"t\" type=\"text\" x=\"1\" y=\"2\" "
        "w=\"3\" h=\"4\" zorder=\"5\" text=\"x\"/><DRAWOBJECT name=\"p\" type=\"image\" x=\"1\" "
        "y=\"2\" w=\"3\" h=\"4\" zorder=\"5\" image=\"/a.bmp\"/></DRAWOBJECTS></SLIDE></SLIDES>"
        "</MESSAGE></ROOT>");
    auto objects = message->Slides()->Item(1)->DrawObjects();
    ASSERT_EQ(objects->Count(), 2);
    EXPECT_THROW(objects->Item(1)->GetAllPproperties(), Failure);
    const clsDrawProperties picture = objects->Item(2)->GetAllPproperties();
    EXPECT_EQ(picture.Data, QStringLiteral("/a.bmp"));
    EXPECT_EQ(picture.fontName, QString());
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
    EXPECT_EQ(slide->DrawObjects()->BackColor(), 8421504);
    EXPECT_EQ(slide->Color(), 8421504);
    EXPECT_EQ(drawObjectsOf(*slide),
              "<DRAWOBJECTS><DRAWOBJECT name=\"p\" type=\"image\"/><BACKGROUND "
              "name=\"background\" color=\"8421504\"/></DRAWOBJECTS>");
}

TEST(DrawObjectsTest, BackgroundValuesAndTheReadOfBackType) {
    TestHome home;
    auto message = newMessage(home, QStringLiteral("D"));
    auto objects = message->Slides()->Add()->DrawObjects();
    EXPECT_EQ(objects->BackPicture(), QString());
    objects->setBackColor(-16777216);
    EXPECT_EQ(objects->BackColor(), -16777216);
    objects->setBackPicture(QStringLiteral("/backgrounds/sky.jpg"));
    objects->setBackType(QStringLiteral("tiled"));
    EXPECT_EQ(getAttr(objects->backgroundElement(), "type"), QStringLiteral("tiled"));
    // Reading the type hands it on to the picture and gives nothing back.
    EXPECT_EQ(objects->BackType(), QString());
    EXPECT_EQ(objects->BackPicture(), QStringLiteral("tiled"));
    EXPECT_EQ(objects->mediaTypes(),
              (QStringList{QStringLiteral("none"), QStringLiteral("text/plain"),
                           QStringLiteral("image/bitmap"), QStringLiteral("image/jpg"),
                           QStringLiteral("image/gif")}));
}

TEST(DrawObjectsTest, BackColorOfAMissingAttributeIsZero) {
    TestHome home;
    auto message = messageFromXml(
        home, QStringLiteral("D"),
        "<ROOT><MESSAGE name=\"D\"><SLIDES><SLIDE name=\"Slide\" index=\"1\"><DRAWOBJECTS>"
        "<BACKGROUND name=\"background\"/></DRAWOBJECTS></SLIDE></SLIDES></MESSAGE></ROOT>");
    EXPECT_EQ(message->Slides()->Item(1)->DrawObjects()->BackColor(), 0);
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
    EXPECT_EQ(objects->Count(), 1);
    EXPECT_EQ(objects->Item(1), held);
    EXPECT_THROW(objects->Item(2), Failure);
    EXPECT_THROW(objects->Remove(0), Failure);
    ASSERT_TRUE(message->SaveMessage());
    {
        auto reopened = newMessage(home, QStringLiteral("Keep"));
        EXPECT_EQ(reopened->Slides()->Item(1)->DrawObjects()->Count(), 2)
            << "a removed object comes back unless the objects were cleared";
    }

    objects->Clear();
    EXPECT_EQ(objects->Count(), 0);
    EXPECT_EQ(drawObjectsOf(*slide), "<DRAWOBJECTS><BACKGROUND name=\"background\" "
                                     "color=\"255\" url=\"/bg.png\"/></DRAWOBJECTS>");
    // An object still held goes on working on its own copy.
    EXPECT_EQ(held->Image(), QStringLiteral("/pictures/star.gif"));
    held->setImage(QStringLiteral("/other.png"));
    EXPECT_EQ(message->serialise().find("/other.png"), std::string::npos);
    ASSERT_TRUE(message->SaveMessage());
    auto reopened = newMessage(home, QStringLiteral("Keep"));
    EXPECT_EQ(reopened->Slides()->Item(1)->DrawObjects()->Count(), 0);
    EXPECT_EQ(reopened->Slides()->Item(1)->DrawObjects()->BackPicture(), QStringLiteral("/bg.png"));
}

TEST(DrawObjectsTest, LoadKeepsTheOrderOfTheFile) {
    TestHome home;
    auto message = messageFromXml(
        home, QStringLiteral("D"),
        "<ROOT><MESSAGE name=\"D\"><SLIDES><SLIDE name=\"Slide\" index=\"1\"><DRAWOBJECTS>"
        "<DRAWOBJECT name=\"c\" zorder=\"1\"/><BACKGROUND/><DRAWOBJECT name=\"a\" zorder=\"3\"/>"
        "<OTHER/><DRAWOBJECT name=\"b\" zorder=\"2\"/></DRAWOBJECTS></SLIDE></SLIDES></MESSAGE>"
        "</ROOT>");
    QStringList names;
    for (const auto& object : *message->Slides()->Item(1)->DrawObjects())
        names << object->name();
    EXPECT_EQ(names, (QStringList{QStringLiteral("c"), QStringLiteral("a"), QStringLiteral("b")}));
}

TEST_F(PreferencesFixture, NewSlideTakesTheBackgroundPreferenceOfItsMoment) {
    auto message = newMessage(mHome, QStringLiteral("P"));
    mProperties.SetProp(QStringLiteral("preferences"), QStringLiteral("BackgroundColor"),
                        QStringLiteral("255"));
    auto red = message->Slides()->Add();
    mProperties.SetProp(QStringLiteral("preferences"), QStringLiteral("BackgroundColor"),
                        QStringLiteral("65280"));
    auto green = message->Slides()->Add();
    EXPECT_EQ(red->Color(), 255);
    EXPECT_EQ(green->Color(), 65280);
}
