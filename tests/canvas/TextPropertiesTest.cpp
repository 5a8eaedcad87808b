// The text panel: what it shows of a label, and what it reports for each change.
#include "canvas/ctlTextProperties.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/GrButtonIII.h"
#include "support/ScriptedResponder.h"
#include "support/TestHome.h"

#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

struct Panel : ::testing::Test {
    Panel() : apply(&panel, &ctlTextProperties::Apply) {
        fonts = ctlTextProperties::AvailableFontNames();
        panel.resize(360, 226);
    }
    TextAttributes lastApply() const { return apply.last().at(0).value<TextAttributes>(); }
    TextAttributes label(const QString& caption, int fontIndex) const {
        return {caption, fonts.value(fontIndex), 14, 0x3366CC, true, false, true, 2};
    }

    ctlTextProperties panel;
    QStringList fonts;
    QSignalSpy apply;
};

// The user's choice of an entry in one of the lists.
void choose(QComboBox* list, int index) {
    list->setCurrentIndex(index);
    emit list->activated(index);
}

} // namespace

TEST_F(Panel, StartsAtTheStartSizeWithNoFontChosen) {
    ASSERT_GE(fonts.size(), 2) << "the test needs two installed font families";
    EXPECT_EQ(panel.cboFontName()->count(), fonts.size());
    EXPECT_EQ(panel.cboFontName()->currentIndex(), -1);
    EXPECT_EQ(panel.cboFontSize()->currentIndex(), 6);
    EXPECT_EQ(panel.lblFontSize()->text(), QStringLiteral("10 pt"));
    EXPECT_FALSE(panel.cboFontName()->isVisibleTo(&panel));
    EXPECT_TRUE(panel.cmdAlign(0)->Pressed());
    EXPECT_EQ(panel.cmdAlign(1)->objectName(), QStringLiteral("cmdAlign"));
    EXPECT_EQ(panel.cmdAlign(2)->property("index").toInt(), 2);
}

TEST_F(Panel, SetSelectionShowsTheLabelAndAppliesItOnce) {
    const std::pair<const char*, const char*> lineEnds[] = {{"a\rb", "a\r\nb"},
                                                            {"a\nb", "a\r\nb"},
                                                            {"a\r\nb", "a\r\nb"},
                                                            {"a\r\r\nb\n", "a\r\n\r\nb\r\n"},
                                                            {"one line", "one line"}};
    QSignalSpy typed(&panel, &ctlTextProperties::TextChanged);
    for (const auto& [given, held] : lineEnds) {
        apply.clear();
        panel.SetSelection(label(QString::fromLatin1(given), 1));
        EXPECT_EQ(panel.Text(), QString::fromLatin1(held));
        ASSERT_EQ(apply.size(), 1);
        EXPECT_EQ(lastApply(), label(QString::fromLatin1(held), 1));
    }
    // A shown text is a change of the text too, but only when it differs from the one before:
    // three of the five texts above.
    ASSERT_EQ(typed.size(), 3);
    EXPECT_EQ(typed.last().at(0).toString(), QStringLiteral("one line"));
    EXPECT_TRUE(panel.cmdBold()->Pressed() && panel.cmdUnderline()->Pressed());
    EXPECT_FALSE(panel.cmdItalic()->Pressed());
    EXPECT_TRUE(panel.cmdAlign(2)->Pressed() && !panel.cmdAlign(0)->Pressed());
    EXPECT_EQ(panel.picTextColor()->palette().color(QPalette::Window), QColor(0xCC, 0x66, 0x33));
    EXPECT_EQ(panel.lblFontName()->text(), fonts[1]);
    EXPECT_EQ(panel.lblFontSize()->text(), QStringLiteral("14 pt"));
    EXPECT_EQ(panel.txtObject()->font().family(), fonts[1]);
    EXPECT_TRUE(panel.txtObject()->font().bold());
    EXPECT_EQ(panel.lblFontPreview()->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignHCenter);

    // A font that is not installed and a size not on the list leave both lists where they
    // were, so that the label gets the former font back.
    TextAttributes missing = label(QStringLiteral("x"), 0);
    missing.fontName = QStringLiteral("No Such Font Family 7");
    missing.size = 13;
    panel.SetSelection(missing);
    EXPECT_EQ(lastApply().fontName, fonts[1]);
    EXPECT_EQ(lastApply().size, 14);
}

TEST_F(Panel, EachEventReportsThePanelsValues) {
    panel.SetSelection(label(QStringLiteral("Hi"), 0));
    QSignalSpy typed(&panel, &ctlTextProperties::TextChanged);
    QSignalSpy added(&panel, &ctlTextProperties::AddText);
    QSignalSpy picker(&panel, &ctlTextProperties::ColorPicker);
    panel.txtObject()->moveCursor(QTextCursor::End);
    QTest::keyClick(panel.txtObject(), Qt::Key_Return);
    QTest::keyClicks(panel.txtObject(), QStringLiteral("yo"));
    ASSERT_EQ(typed.size(), 3);
    EXPECT_EQ(typed.last().at(0).toString(), QStringLiteral("Hi\r\nyo"));

    QTest::mouseClick(panel.bAdd(), Qt::LeftButton);
    ASSERT_EQ(added.size(), 1);
    EXPECT_EQ(added.last().at(0).value<TextAttributes>(), label(QStringLiteral("Hi\r\nyo"), 0));

    QTest::mouseClick(panel.cmdColorPicker(), Qt::LeftButton);
    EXPECT_EQ(picker.size(), 1);
    EXPECT_TRUE(panel.cmdColorPicker()->Pressed());
    apply.clear();
    panel.SetTextColor(0x00FF80); // what the canvas picked: red 0x80, green 0xFF
    EXPECT_FALSE(panel.cmdColorPicker()->Pressed());
    EXPECT_EQ(panel.picTextColor()->toolTip(), QStringLiteral("RGB(128,255,0)"));
    ASSERT_EQ(apply.size(), 1);
    EXPECT_EQ(lastApply().colour, 0x00FF80);
    QTest::mouseClick(panel.cmdColorPicker(), Qt::LeftButton);
    QTest::mouseClick(panel.cmdColorPicker(), Qt::LeftButton); // released by a second click
    EXPECT_EQ(picker.size(), 2);
    EXPECT_FALSE(panel.cmdColorPicker()->Pressed());
}

TEST_F(Panel, TogglesAndAlignmentShowAndReportTheStyle) {
    struct Case {
        GrButtonIII* button;
        bool TextAttributes::*style;
    };
    for (const Case& c : {Case{panel.cmdBold(), &TextAttributes::bold},
                          Case{panel.cmdItalic(), &TextAttributes::italic},
                          Case{panel.cmdUnderline(), &TextAttributes::underline}}) {
        for (bool on : {true, false}) {
            apply.clear();
            QTest::mouseClick(c.button, Qt::LeftButton);
            EXPECT_EQ(c.button->Pressed(), on);
            ASSERT_EQ(apply.size(), 1);
            EXPECT_EQ(lastApply().*c.style, on);
            const QFont shown = panel.lblFontPreview()->font();
            EXPECT_EQ(shown.bold() || shown.italic() || shown.underline(), on);
        }
    }
    const Qt::Alignment shown[] = {Qt::AlignLeft, Qt::AlignRight, Qt::AlignHCenter};
    for (int index : {2, 1, 0}) {
        QTest::mouseClick(panel.cmdAlign(index), Qt::LeftButton);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(panel.cmdAlign(i)->Pressed(), i == index);
        EXPECT_EQ(lastApply().alignment, index);
        EXPECT_EQ(panel.lblFontPreview()->alignment() & Qt::AlignHorizontal_Mask, shown[index]);
    }
}

TEST_F(Panel, ColourDialogSetsTheColourAndCancelChangesNothing) {
    ScriptedResponder responder;
    responder.colours = {std::nullopt, 0x0000FF};
    panel.DisplayColor(0x102030);
    panel.cmdColorPicker()->setPressed(true);
    apply.clear();
    QTest::mouseClick(panel.cmdTextColor(), Qt::LeftButton); // cancelled
    EXPECT_EQ(responder.colourRequests, 1);
    EXPECT_EQ(apply.size(), 0);
    EXPECT_EQ(panel.TextColor(), 0x102030);
    EXPECT_FALSE(panel.cmdColorPicker()->Pressed());
    QTest::mouseClick(panel.cmdTextColor(), Qt::LeftButton);
    EXPECT_EQ(panel.TextColor(), 0x0000FF);
    EXPECT_EQ(panel.picTextColor()->toolTip(), QStringLiteral("RGB(255,0,0)"));
    const QLabel* sample = panel.lblFontPreview();
    EXPECT_EQ(sample->palette().color(sample->foregroundRole()), QColor(Qt::red));
    ASSERT_EQ(apply.size(), 1);
    EXPECT_EQ(lastApply().colour, 0x0000FF);
}

TEST_F(Panel, FontListsOpenFromTheirButtonsAndRefuseAMissingFont) {
    panel.show();
    QTest::mouseClick(panel.cmdFontSize(), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return panel.ComboOpen(); }, 2000));
    EXPECT_TRUE(panel.cboFontSize()->isVisible());
    QTest::mouseClick(panel.cmdFontSize(), Qt::LeftButton); // a second click closes it
    ASSERT_TRUE(QTest::qWaitFor([&] { return !panel.cboFontSize()->isVisible(); }, 2000));
    EXPECT_FALSE(panel.ComboOpen());

    apply.clear();
    choose(panel.cboFontSize(), panel.cboFontSize()->findText(QStringLiteral("24")));
    EXPECT_EQ(panel.lblFontSize()->text(), QStringLiteral("24 pt"));
    EXPECT_EQ(lastApply().size, 24);
    EXPECT_EQ(panel.lblFontPreview()->font().pixelSize(), 32);

    ScriptedResponder responder;
    panel.SetSelection(label(QStringLiteral("x"), 1));
    panel.cboFontName()->addItem(QStringLiteral("Uninstalled Family 9"));
    choose(panel.cboFontName(), panel.cboFontName()->count() - 1);
    ASSERT_EQ(responder.boxes.size(), 1u);
    EXPECT_EQ(responder.boxes[0].style, 64);
    EXPECT_EQ(responder.boxes[0].title, QStringLiteral("STR_FONT_SELECT"));
    EXPECT_EQ(responder.boxes[0].text, QStringLiteral("Uninstalled Family 9STR_NO_FONT"));
    EXPECT_EQ(lastApply().fontName, fonts[1]); // the look stays
    EXPECT_EQ(panel.lblFontName()->text(), fonts[1]);
    choose(panel.cboFontName(), 0);
    EXPECT_EQ(responder.boxes.size(), 1u);
    EXPECT_EQ(panel.lblFontName()->text(), fonts[0]);
}

TEST(TextPanelLanguage, GermanTextsAndTheLookSurviveTranslation) {
    TestHome home(/*withData=*/true);
    SharedConfig shared;
    clsPropertiesXML& props = shared.setProperties(std::make_unique<clsPropertiesXML>());
    props.SetProp(QStringLiteral("paths"), QStringLiteral("language"),
                  QStringLiteral("\\language\\tessaly\\"));
    props.SetProp(QStringLiteral("languages"), QStringLiteral("de-de"),
                  QStringLiteral("Deutsch,1"));
    clsXMLocalizer& localizer = shared.setLocalizer(std::make_unique<clsXMLocalizer>(props));
    ASSERT_TRUE(localizer.SetLanguage(QStringLiteral("de-de")));
    ctlTextProperties panel;
    panel.cmdBold()->click();
    const QFont look = panel.txtObject()->font();
    const QString fontName = panel.lblFontName()->text();
    panel.TranslateControl(&localizer);
    EXPECT_EQ(panel.bAdd()->text(), QStringLiteral("Text hinzufügen"));
    EXPECT_EQ(panel.cmdAlign(1)->toolTip(), QStringLiteral("Rechtsbündig"));
    EXPECT_EQ(panel.cmdBold()->toolTip(), QStringLiteral("Fett"));
    EXPECT_EQ(panel.txtObject()->font(), look);
    EXPECT_EQ(panel.lblFontName()->text(), fontName);
    EXPECT_EQ(panel.lblFontSize()->text(), QStringLiteral("10 pt"));
}
