#include "support/ScriptedResponder.h"

#include <QColor>
#include <gtest/gtest.h>

TEST(MsgBoxStyles, ButtonSetsAndDefaults) {
    EXPECT_EQ(msgBoxButtons(Vb::Critical), std::vector<int>{Vb::OK});
    EXPECT_EQ(msgBoxButtons(Vb::YesNoCancel | Vb::Question),
              (std::vector<int>{Vb::Yes, Vb::No, Vb::Cancel}));
    EXPECT_EQ(msgBoxDefaultAnswer(36), Vb::Yes);
    EXPECT_EQ(msgBoxDefaultAnswer(Vb::YesNo | Vb::DefaultButton2), Vb::No);
    EXPECT_EQ(msgBoxDefaultAnswer(Vb::YesNoCancel | Vb::DefaultButton3), Vb::Cancel);
    // A default button beyond the set falls on the last button.
    EXPECT_EQ(msgBoxDefaultAnswer(Vb::OKOnly | Vb::DefaultButton3), Vb::OK);
}

TEST(DialogSeam, WithoutADisplayBoxesTakeTheirDefaultAndDialogsCancel) {
    ASSERT_EQ(setDialogResponder(nullptr), nullptr);
    EXPECT_EQ(MsgBox(QStringLiteral("Save?"), Vb::YesNoCancel | Vb::DefaultButton2), Vb::No);
    std::int32_t colour = 0x123456;
    EXPECT_FALSE(ChooseColor(nullptr, colour));
    EXPECT_EQ(colour, 0x123456);
    QString file = QStringLiteral("kept");
    EXPECT_FALSE(GetOpenFileName(nullptr, file, {}, {}));
    EXPECT_EQ(file, QStringLiteral("kept"));
    EXPECT_EQ(PopupChoice(nullptr, {}), QString());
}

TEST(ScriptedResponder, AnswersFromItsQueuesRecordsAndRestoresThePrevious) {
    ScriptedResponder outer;
    {
        ScriptedResponder responder;
        responder.boxAnswers = {Vb::No};
        EXPECT_EQ(MsgBox(QStringLiteral("Save?"), 35, QStringLiteral("Title")), Vb::No);
        EXPECT_EQ(MsgBox(QStringLiteral("Done"), 64), Vb::OK); // empty queue: default button
        ASSERT_EQ(responder.boxes.size(), 2u);
        EXPECT_EQ(responder.boxes[0].style, 35);
        EXPECT_EQ(responder.boxes[1].title, QStringLiteral("Tessaly"));

        responder.colours = {0x00FF8040, std::nullopt};
        std::int32_t colour = 0;
        EXPECT_TRUE(ChooseColor(nullptr, colour, 3));
        EXPECT_FALSE(ChooseColor(nullptr, colour, 3));
        EXPECT_EQ(colour, 0x00FF8040) << "a cancelled dialog leaves the colour";
        responder.openFiles = {QStringLiteral("/tmp/a.gif"), QString()};
        QString file;
        EXPECT_TRUE(GetOpenFileName(nullptr, file, {}, {}));
        EXPECT_FALSE(GetOpenFileName(nullptr, file, {}, {}));
        EXPECT_EQ(file, QStringLiteral("/tmp/a.gif"));
        EXPECT_EQ(responder.openFileRequests, 2);
    }
    EXPECT_EQ(dialogResponder(), &outer);
}

TEST(Colours, StoredRedInTheLowByte) {
    EXPECT_EQ(toVbColor(QColor(255, 0, 0)), 0x0000FF);
    EXPECT_EQ(toVbColor(QColor(0, 0, 255)), 0xFF0000);
    EXPECT_EQ(fromVbColor(8421504), QColor(128, 128, 128));
}

TEST(FileFilters, ClassicFilterBecomesQtFilter) {
    EXPECT_EQ(vbFilterToQt(QStringLiteral("Pictures|*.bmp;*.gif|All files (*.*)|*.*")),
              QStringLiteral("Pictures (*.bmp *.gif);;All files (*.*)"));
}

TEST(FailedComparisons, PrintQtValuesAsText) {
    EXPECT_EQ(testing::PrintToString(QStringLiteral("a\"\n")), R"("a\"\n")");
    EXPECT_EQ(testing::PrintToString(QStringList{QStringLiteral("x")}), R"(QList("x"))");
    EXPECT_EQ(testing::PrintToString(QByteArray("b")), R"("b")");
}
