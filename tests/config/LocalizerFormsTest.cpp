// Translation of windows: titles, captions and tool tips of the control kinds that take them,
// control arrays, missing entries, and what the walk over a window leaves alone.
#include "LocalizerSupport.h"

#include "config/clsXMLocalizer.h"

#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QToolButton>
#include <QWidget>

// Stands for the skinned button of the control kit, which this library does not link: the
// localiser knows it by its class name.
class GrButtonIII : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText)
public:
    using QWidget::QWidget;
    QString text() const { return mText; }
    void setText(const QString& text) { mText = text; }

private:
    QString mText;
};

// A custom control on a window: it translates itself under its class name.
class ctlSample : public QWidget {
    Q_OBJECT
public:
    explicit ctlSample(QWidget* parent = nullptr) : QWidget(parent) {
        inner = new QPushButton(QStringLiteral("inner"), this);
        inner->setObjectName(QStringLiteral("cmdInner"));
        label = new QLabel(QStringLiteral("label"), this);
        label->setObjectName(QStringLiteral("lblInner"));
    }
    QPushButton* inner;
    QLabel* label;
};

namespace {

const char kForms[] = R"(
<form name="frmTest" caption="Test window">
  <c name="cmdOk" index=""><caption>&amp;OK</caption><text>Confirm the choice</text></c>
  <c name="lblName" index=""><caption>Name:</caption></c>
  <c name="chkAsk" index=""><caption>Ask first</caption></c>
  <c name="optA" index=""><caption>Option A</caption></c>
  <c name="fraGroup" index=""><caption>Group</caption></c>
  <c name="cmdTool" index=""><caption>Tool</caption></c>
  <c name="txtName" index=""><caption>never shown</caption></c>
  <c name="lblItem" index="0"><caption>First</caption></c>
  <c name="lblItem" index="1"><caption>Second</caption><text>The second one</text></c>
  <c name="cmdSkin" index=""><caption>Skinned</caption><text>A skinned button</text></c>
  <c name="mnuFile" index=""><caption>File</caption></c>
  <c name="mnuFileNew" index=""><caption>New</caption><text>Make a new one</text></c>
  <c name="lblNoTip" index=""><caption>No tip</caption><text></text></c>
  <c name="cmdInner" index=""><caption>must not reach the inner button</caption></c>
  <c name="lblPage" index=""><caption>On a page</caption></c>
</form>
<form name="ctlSample" caption="">
  <c name="cmdInner" index=""><caption>Inner</caption></c>
</form>
)";

class LocalizerForms : public LocalizerFixture {
protected:
    void SetUp() override {
        writeLanguage(QStringLiteral("en-us"), QString::fromUtf8(kForms), {});
        localizer = std::make_unique<clsXMLocalizer>(props);
        localizer->SetThreadLocale(1033);
        ASSERT_TRUE(localizer->SetLanguage(QStringLiteral("en-us")));

        form.setObjectName(QStringLiteral("frmTest"));
        form.setWindowTitle(QStringLiteral("old title"));
        cmdOk = make<QPushButton>(QStringLiteral("cmdOk"));
        lblName = make<QLabel>(QStringLiteral("lblName"));
        chkAsk = make<QCheckBox>(QStringLiteral("chkAsk"));
        optA = make<QRadioButton>(QStringLiteral("optA"));
        fraGroup = make<QGroupBox>(QStringLiteral("fraGroup"));
        cmdTool = new QToolButton(fraGroup); // inside a frame
        cmdTool->setObjectName(QStringLiteral("cmdTool"));
        txtName = make<QLineEdit>(QStringLiteral("txtName"));
        txtName->setText(QStringLiteral("typed"));
        for (int i = 0; i < 3; ++i) {
            lblItem[i] = make<QLabel>(QStringLiteral("lblItem"));
            lblItem[i]->setProperty("index", i);
            lblItem[i]->setText(QStringLiteral("old"));
            lblItem[i]->setToolTip(QStringLiteral("old tip"));
        }
        cmdSkin = make<GrButtonIII>(QStringLiteral("cmdSkin"));
        lblMissing = make<QLabel>(QStringLiteral("lblMissing"));
        lblMissing->setText(QStringLiteral("design-time text"));
        lblNoTip = make<QLabel>(QStringLiteral("lblNoTip"));
        lblNoTip->setToolTip(QStringLiteral("kept tip"));
        picShown = make<QLabel>(QStringLiteral("picShown"));
        QPixmap pixmap(4, 4);
        pixmap.fill(Qt::red);
        picShown->setPixmap(pixmap);

        menu = new QMenu(&form);
        menu->setObjectName(QStringLiteral("mnuFile"));
        actionNew = menu->addAction(QStringLiteral("old new"));
        actionNew->setObjectName(QStringLiteral("mnuFileNew"));

        sample = new ctlSample(&form);
        sample->setObjectName(QStringLiteral("ctlSample1"));

        tabs = make<QTabWidget>(QStringLiteral("tabPages"));
        auto* page = new QWidget;
        tabs->addTab(page, QStringLiteral("page"));
        lblPage = new QLabel(QStringLiteral("old"), page);
        lblPage->setObjectName(QStringLiteral("lblPage"));
    }

    template <typename T> T* make(const QString& name) {
        auto* widget = new T(&form);
        widget->setObjectName(name);
        return widget;
    }

    std::unique_ptr<clsXMLocalizer> localizer;
    QWidget form;
    QPushButton* cmdOk = nullptr;
    QLabel* lblName = nullptr;
    QCheckBox* chkAsk = nullptr;
    QRadioButton* optA = nullptr;
    QGroupBox* fraGroup = nullptr;
    QToolButton* cmdTool = nullptr;
    QLineEdit* txtName = nullptr;
    QLabel* lblItem[3] = {};
    GrButtonIII* cmdSkin = nullptr;
    QLabel* lblMissing = nullptr;
    QLabel* lblNoTip = nullptr;
    QLabel* picShown = nullptr;
    QMenu* menu = nullptr;
    QAction* actionNew = nullptr;
    ctlSample* sample = nullptr;
    QTabWidget* tabs = nullptr;
    QLabel* lblPage = nullptr;
};

} // namespace

TEST_F(LocalizerForms, CaptionsAndToolTipsOfEachKind) {
    ASSERT_TRUE(localizer->TranslateForm(&form));
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Test window"));
    EXPECT_EQ(cmdOk->text(), QStringLiteral("&OK"));
    EXPECT_EQ(cmdOk->toolTip(), QStringLiteral("Confirm the choice"));
    EXPECT_EQ(lblName->text(), QStringLiteral("Name:"));
    EXPECT_EQ(chkAsk->text(), QStringLiteral("Ask first"));
    EXPECT_EQ(optA->text(), QStringLiteral("Option A"));
    EXPECT_EQ(fraGroup->title(), QStringLiteral("Group"));
    EXPECT_EQ(cmdTool->text(), QStringLiteral("Tool"));
    EXPECT_EQ(cmdSkin->text(), QStringLiteral("Skinned"));
    EXPECT_EQ(cmdSkin->toolTip(), QStringLiteral("A skinned button"));
    EXPECT_EQ(menu->title(), QStringLiteral("File"));
    EXPECT_EQ(actionNew->text(), QStringLiteral("New"));
    EXPECT_EQ(actionNew->toolTip(), QStringLiteral("Make a new one"));
    EXPECT_EQ(lblPage->text(), QStringLiteral("On a page"));
}

TEST_F(LocalizerForms, ControlArraysUseTheirIndex) {
    ASSERT_TRUE(localizer->TranslateForm(&form));
    EXPECT_EQ(lblItem[0]->text(), QStringLiteral("First"));
    EXPECT_EQ(lblItem[1]->text(), QStringLiteral("Second"));
    EXPECT_EQ(lblItem[1]->toolTip(), QStringLiteral("The second one"));
    // No entry for index 2: the caption empties, the tool tip stays.
    EXPECT_EQ(lblItem[2]->text(), QString());
    EXPECT_EQ(lblItem[2]->toolTip(), QStringLiteral("old tip"));
    EXPECT_EQ(lblItem[0]->toolTip(), QStringLiteral("old tip"));
}

TEST_F(LocalizerForms, MissingEntryEmptiesTheCaption) {
    ASSERT_TRUE(localizer->TranslateForm(&form));
    EXPECT_EQ(lblMissing->text(), QString());
    // An empty tool tip entry leaves the tool tip as it was.
    EXPECT_EQ(lblNoTip->text(), QStringLiteral("No tip"));
    EXPECT_EQ(lblNoTip->toolTip(), QStringLiteral("kept tip"));
}

TEST_F(LocalizerForms, OtherControlsAreLeftAlone) {
    ASSERT_TRUE(localizer->TranslateForm(&form));
    // Text boxes are not translated.
    EXPECT_EQ(txtName->text(), QStringLiteral("typed"));
    // A label that shows a picture is a picture box.
    EXPECT_FALSE(picShown->pixmap().isNull());
    // A custom control's insides belong to its own translation.
    EXPECT_EQ(sample->inner->text(), QStringLiteral("inner"));
    EXPECT_EQ(sample->label->text(), QStringLiteral("label"));
    // The tab bar's own buttons are not the window's controls.
    EXPECT_EQ(tabs->tabText(0), QStringLiteral("page"));
}

TEST_F(LocalizerForms, CustomControlTranslatesUnderItsClassName) {
    ASSERT_TRUE(localizer->TranslateForm(sample));
    EXPECT_EQ(sample->inner->text(), QStringLiteral("Inner"));
    EXPECT_EQ(sample->label->text(), QString()); // no entry for it
}

TEST_F(LocalizerForms, PiecesLentByAnotherWindowKeepTheirTexts) {
    auto* player = make<QWidget>(QStringLiteral("picPreviewPlayer"));
    player->setProperty("ownerForm", QStringLiteral("ctlSample"));
    auto* play = new QPushButton(QStringLiteral("Play"), player);
    play->setObjectName(QStringLiteral("cmdOk"));
    play->setToolTip(QStringLiteral("Play tip"));
    ASSERT_TRUE(localizer->TranslateForm(&form));
    EXPECT_EQ(play->text(), QStringLiteral("Play"));
    EXPECT_EQ(play->toolTip(), QStringLiteral("Play tip"));
    EXPECT_EQ(cmdOk->text(), QStringLiteral("&OK"));

    // The lending window translates the piece under its own name.
    play->setObjectName(QStringLiteral("cmdInner"));
    ASSERT_TRUE(localizer->TranslateForm(player));
    EXPECT_EQ(play->text(), QStringLiteral("Inner"));
}

TEST_F(LocalizerForms, WindowWithoutEntriesGetsEmptyTexts) {
    QWidget other;
    other.setObjectName(QStringLiteral("frmUnknown"));
    other.setWindowTitle(QStringLiteral("title"));
    auto* button = new QPushButton(QStringLiteral("Press"), &other);
    button->setObjectName(QStringLiteral("cmdOk"));
    auto* unnamed = new QPushButton(QStringLiteral("unnamed"), &other);
    EXPECT_TRUE(localizer->TranslateForm(&other));
    EXPECT_EQ(other.windowTitle(), QString());
    EXPECT_EQ(button->text(), QString());
    // A control without a name is none of the window's named controls.
    EXPECT_EQ(unnamed->text(), QStringLiteral("unnamed"));

    EXPECT_FALSE(localizer->TranslateForm(nullptr));
}

TEST_F(LocalizerForms, ALanguageChangeTranslatesAgain) {
    addLanguage(QStringLiteral("de-de"), QStringLiteral("Deutsch,1"));
    writeLanguage(QStringLiteral("de-de"),
                  QStringLiteral("<form name=\"frmTest\" caption=\"Testfenster\">"
                                 "<c name=\"cmdOk\" index=\"\"><caption>&amp;Gut</caption></c>"
                                 "</form>"),
                  {});
    ASSERT_TRUE(localizer->TranslateForm(&form));
    ASSERT_TRUE(localizer->SetLanguage(QStringLiteral("de-de")));
    ASSERT_TRUE(localizer->TranslateForm(&form));
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Testfenster"));
    EXPECT_EQ(cmdOk->text(), QStringLiteral("&Gut"));
    // The tool tip of the former language stays: an empty one is never written.
    EXPECT_EQ(cmdOk->toolTip(), QStringLiteral("Confirm the choice"));
    EXPECT_EQ(lblName->text(), QString());
}

#include "LocalizerFormsTest.moc"
