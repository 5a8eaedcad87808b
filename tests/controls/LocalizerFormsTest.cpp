// Translation of windows: the control kinds, control arrays, fonts, and what the walk leaves.
#include "config/LocalizerSupport.h"

#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/GrButtonIII.h"
#include "controls/modTranslate.h"
#include "platform/modLocale.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QToolButton>

// A custom control on a window: it translates itself under its class name.
class ctlSample : public QWidget {
    Q_OBJECT
public:
    explicit ctlSample(QWidget* parent = nullptr) : QWidget(parent) {
        inner = new QPushButton(QStringLiteral("inner"), this);
        inner->setObjectName(QStringLiteral("cmdInner"));
    }
    QPushButton* inner;
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
  <c name="lblItem" index="0"><caption>First</caption></c>
  <c name="lblItem" index="1"><caption>Second</caption><text>The second one</text></c>
  <c name="cmdSkin" index=""><caption>Skinned</caption><text>A skinned button</text></c>
  <c name="mnuFile" index=""><caption>File</caption></c>
  <c name="mnuFileNew" index=""><caption>New</caption><text>Make a new one</text></c>
  <c name="lblNoTip" index=""><caption>No tip</caption><text></text></c>
  <c name="lblPage" index=""><caption>On a page</caption></c>
</form>
<form name="ctlSample" caption=""><c name="cmdInner" index=""><caption>Inner</caption></c></form>
)";

class LocalizerForms : public LocalizerFixture {
protected:
    void SetUp() override {
        writeLanguage(QStringLiteral("en-us"), QString::fromUtf8(kForms), {});
        localizer = &shared.setLocalizer(std::make_unique<clsXMLocalizer>(props));
        localizer->SetThreadLocale(1033);
        ASSERT_TRUE(localizer->SetLanguage(QStringLiteral("en-us")));
        form.setObjectName(QStringLiteral("frmTest"));
        add<QPushButton>("cmdOk");
        add<QLabel>("lblName");
        add<QCheckBox>("chkAsk");
        add<QRadioButton>("optA");
        add<QLabel>("lblMissing");
        add<QLabel>("lblNoTip")->setToolTip(QStringLiteral("kept tip"));
        add<QLineEdit>("txtName")->setText(QStringLiteral("typed"));
        add<QToolButton>("cmdTool", add<QGroupBox>("fraGroup")); // inside a frame
        add<QLabel>("lblOnSkin", add<GrButtonIII>("cmdSkin"))->setText(QStringLiteral("face"));
        for (int i = 0; i < 3; ++i) {
            auto* item = add<QLabel>("lblItem");
            item->setProperty("index", i);
            item->setToolTip(QStringLiteral("old tip"));
        }
        add<QLabel>("picShown")->setPixmap(QPixmap(4, 4));
        menu = add<QMenu>("mnuFile");
        menu->addAction(QStringLiteral("old new"))->setObjectName(QStringLiteral("mnuFileNew"));
        sample = new ctlSample(&form);
        auto* page = new QWidget;
        add<QTabWidget>("tabPages")->addTab(page, QStringLiteral("page"));
        add<QLabel>("lblPage", page);
    }

    template <typename T> T* add(const char* name, QWidget* parent = nullptr) {
        auto* widget = new T(parent ? parent : &form);
        widget->setObjectName(QString::fromLatin1(name));
        return widget;
    }
    template <typename T> T* control(const char* name, int index = -1) {
        for (T* found : form.findChildren<T*>(QString::fromLatin1(name)))
            if (index < 0 || found->property("index").toInt() == index)
                return found;
        return nullptr;
    }
    QString text(const char* name, int index = -1) {
        return control<QAbstractButton>(name) ? control<QAbstractButton>(name)->text()
                                              : control<QLabel>(name, index)->text();
    }

    SharedConfig shared;
    clsXMLocalizer* localizer = nullptr;
    QWidget form;
    QMenu* menu = nullptr;
    ctlSample* sample = nullptr;
};

} // namespace

TEST_F(LocalizerForms, EachKindTakesItsCaptionAndToolTip) {
    ASSERT_TRUE(TranslateForm(&form)); // through the shared localiser
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Test window"));
    const std::pair<const char*, const char*> captions[] = {
        {"cmdOk", "&OK"},         {"lblName", "Name:"}, {"chkAsk", "Ask first"},
        {"optA", "Option A"},     {"cmdTool", "Tool"},  {"cmdSkin", "Skinned"},
        {"lblPage", "On a page"}, {"lblMissing", ""},   {"lblNoTip", "No tip"}};
    for (const auto& [name, caption] : captions)
        EXPECT_EQ(text(name), QString::fromUtf8(caption)) << name;
    EXPECT_EQ(control<QGroupBox>("fraGroup")->title(), QStringLiteral("Group"));
    EXPECT_EQ(control<QWidget>("cmdOk")->toolTip(), QStringLiteral("Confirm the choice"));
    EXPECT_EQ(control<QWidget>("cmdSkin")->toolTip(), QStringLiteral("A skinned button"));
    EXPECT_EQ(control<QLabel>("lblNoTip")->toolTip(), QStringLiteral("kept tip")); // empty entry
    EXPECT_EQ(menu->title(), QStringLiteral("File"));
    EXPECT_EQ(menu->actions().at(0)->text(), QStringLiteral("New"));
    EXPECT_EQ(menu->actions().at(0)->toolTip(), QStringLiteral("Make a new one"));
    EXPECT_EQ(text("lblItem", 0), QStringLiteral("First")); // control arrays by index
    EXPECT_EQ(text("lblItem", 1), QStringLiteral("Second"));
    EXPECT_EQ(control<QLabel>("lblItem", 1)->toolTip(), QStringLiteral("The second one"));
    EXPECT_EQ(text("lblItem", 2), QString()); // no entry: no caption, the tool tip stays
    EXPECT_EQ(control<QLabel>("lblItem", 2)->toolTip(), QStringLiteral("old tip"));
}

TEST_F(LocalizerForms, OtherControlsAndLentPiecesAreLeftAlone) {
    auto* player = add<QWidget>("picPlayer");
    player->setProperty("ownerForm", QStringLiteral("ctlSample"));
    auto* play = add<QPushButton>("cmdOk", player);
    play->setText(QStringLiteral("Play"));
    ASSERT_TRUE(TranslateForm(*localizer, &form));
    EXPECT_EQ(play->text(), QStringLiteral("Play")); // lent by another window
    EXPECT_EQ(control<QLineEdit>("txtName")->text(), QStringLiteral("typed"));
    EXPECT_FALSE(control<QLabel>("picShown")->pixmap().isNull()); // a picture box
    EXPECT_EQ(text("lblOnSkin"), QStringLiteral("face"));         // inside the skinned button
    EXPECT_EQ(sample->inner->text(), QStringLiteral("inner"));    // a custom control's own
    EXPECT_EQ(control<QTabWidget>("tabPages")->tabText(0), QStringLiteral("page"));
    // Translated on their own, the custom control and the lent piece take their own texts.
    ASSERT_TRUE(TranslateForm(*localizer, sample));
    EXPECT_EQ(sample->inner->text(), QStringLiteral("Inner"));
    play->setObjectName(QStringLiteral("cmdInner"));
    ASSERT_TRUE(TranslateForm(*localizer, player));
    EXPECT_EQ(play->text(), QStringLiteral("Inner"));
}

TEST_F(LocalizerForms, NothingToTranslateAnswersFalse) {
    EXPECT_FALSE(TranslateForm(*localizer, nullptr));
    shared.releaseLocalizer();
    EXPECT_FALSE(TranslateForm(&form));
}

TEST_F(LocalizerForms, FontsFollowTheSystemLocaleNotTheLanguage) {
    QLabel* label = control<QLabel>("lblName");
    label->setFont(QFont(QStringLiteral("Courier"), 8));
    ASSERT_TRUE(TranslateForm(*localizer, &form)); // an English locale leaves fonts alone
    EXPECT_EQ(label->font().family(), QStringLiteral("Courier"));
    localizer->SetThreadLocale(2052); // Chinese: the font of code page 936
    ASSERT_TRUE(TranslateForm(*localizer, &form));
    EXPECT_EQ(label->font().family(), QString::fromUtf16(u"\u5B8B\u4F53"));
    EXPECT_EQ(label->font().pointSize(), 9);

    QLabel loose, untouched;
    loose.setFont(QFont(QStringLiteral("Courier"), 8));
    untouched.setFont(loose.font());
    localizer->SetThreadLocale(1049); // Russian: the system's font
    ChangeCharSetUsrCtrl(*localizer, {&loose, nullptr});
    EXPECT_TRUE(loose.font().family().isEmpty());
    localizer->SetThreadLocale(3081); // English (Australia)
    ChangeCharSetUsrCtrl(*localizer, {&untouched});
    EXPECT_EQ(untouched.font().family(), QStringLiteral("Courier"));
    localizer->SetThreadLocale(0); // by default the system's locale
    EXPECT_EQ(localizer->ThreadLocale(), userDefaultLCID());
}

#include "LocalizerFormsTest.moc"
