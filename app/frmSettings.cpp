#include "app/frmSettings.h"
#include "ui_frmSettings.h"

#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/GrButtonIII.h"
#include "controls/modTitleBar.h"
#include "controls/modTranslate.h"
#include "platform/AppPaths.h"
#include "platform/Failure.h"
#include "platform/modDialogs.h"
#include "platform/modText.h"
#include "store/modSizeEstimate.h"

#include <QButtonGroup>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPixmap>
#include <QShortcut>

namespace {

const QString kPreferences = QStringLiteral("preferences");
const QString kPreviewPrefix = QStringLiteral("Preview_");
const QString kSkinPrefix = QStringLiteral("Skin_");
const QString kPhoneFolder = QStringLiteral("PhoneFolder");
// The communication option that copies to a phone mounted as a folder.
constexpr int kFolderOption = 3;

QString pref(const QString& key, const QString& defaultValue) {
    return preference(kPreferences, key, defaultValue);
}

void setPref(const QString& section, const QString& key, const QString& value) {
    if (clsPropertiesXML* properties = gProperties())
        properties->SetProp(section, key, value);
}

QString flag(bool on) {
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

// A check box that shows a "1"/"0" preference.
struct FlagControl {
    QCheckBox* box;
    const char* key;
    const char* defaultValue;
};

// The values of the picture formats, in list order; the list shows them in capitals.
const char* const kImageFormats[] = {"jpg", "gif", "bmp"};
// The largest message sizes offered, in bytes, with the text keys of their names: the MMS
// content classes, then two sizes carriers take.
const std::pair<std::int64_t, const char*> kMessageSizes[] = {
    {30720, "STR_SIZE_CLASS_TEXT"},        {30720, "STR_SIZE_CLASS_IMAGE_BASIC"},
    {102400, "STR_SIZE_CLASS_IMAGE_RICH"}, {307200, "STR_SIZE_CLASS_VIDEO_RICH"},
    {614400, "STR_SIZE_CLASS_600"},        {1048576, "STR_SIZE_CLASS_1024"}};
// The values of MMSTimeFormat by option index.
const char* const kTimeFormats[] = {"ms", "s"};

// Selects the entry whose data (or, without data, text) is `value`; false when none is.
bool selectEntry(QComboBox* combo, const QString& value) {
    int index = combo->findData(value);
    if (index < 0)
        index = combo->findText(value);
    if (index < 0)
        return false;
    combo->setCurrentIndex(index);
    return true;
}

// The caption of a skin or preview type: its name without the prefix, words apart, and the
// default one in the user's language.
QString entryCaption(const QString& name, const QString& prefix) {
    QString caption = name.startsWith(prefix) ? name.mid(prefix.size()) : name;
    caption.replace(QLatin1Char('_'), QLatin1Char(' '));
    if (caption.compare(QLatin1String("Default"), Qt::CaseInsensitive) == 0)
        return localText(QStringLiteral("STR_DEFAULT"));
    return caption;
}

// Gives every entry of `combo` the caption of its value again, e.g. after a change of language.
void recaption(QComboBox* combo, const QString& prefix) {
    for (int i = 0; i < combo->count(); ++i)
        combo->setItemText(i, entryCaption(combo->itemData(i).toString(), prefix));
}

QString chosenValue(const QComboBox* combo) {
    const QVariant data = combo->currentData();
    return data.isValid() ? data.toString() : combo->currentText();
}

// Shows `file` (below the application or data folder) scaled into `target`; empty when the
// picture cannot be read.
void showPicture(QLabel* target, const QString& file) {
    const QPixmap picture = file.isEmpty() ? QPixmap() : QPixmap(resolveDataPath(file, false));
    if (picture.isNull()) {
        target->setPixmap(QPixmap());
        return;
    }
    target->setPixmap(picture.scaled(target->size() - QSize(2, 2), Qt::KeepAspectRatio,
                                     Qt::SmoothTransformation));
}

} // namespace

frmSettings::frmSettings(QWidget* parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmSettings>()) {
    ui->setupUi(this);
    setWindowFlag(Qt::FramelessWindowHint, true);
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);
    nameControlArrays();
    styleWindow();
    connectControls();
    Form_Load();
}

frmSettings::~frmSettings() = default;

// Controls that form an array share one objectName and carry their index in "index", the way
// the language files name them.
void frmSettings::nameControlArrays() {
    const auto name = [](const QList<QWidget*>& controls, const char* arrayName) {
        for (int i = 0; i < controls.size(); ++i) {
            controls[i]->setObjectName(QString::fromLatin1(arrayName));
            controls[i]->setProperty("index", i);
        }
    };
    mTabs = {ui->tabCaption0, ui->tabCaption1, ui->tabCaption2, ui->tabCaption3};
    name({mTabs.begin(), mTabs.end()}, "tabCaption");
    name({ui->frmTabs0, ui->frmTabs1, ui->frmTabs2, ui->frmTabs3}, "frmTabs");
    name({ui->chkTimeFormat0, ui->chkTimeFormat1}, "chkTimeFormat");
    name({ui->ctlDockState0, ui->ctlDockState1, ui->ctlDockState2}, "ctlDockState");
    name({ui->chkCommunication0, ui->chkCommunication1, ui->chkCommunication2,
          ui->chkCommunication3},
         "chkCommunication");
    // The notes keep the index of their option; option 0 has none.
    const QList<QLabel*> notes = {ui->lblCommunication1, ui->lblCommunication2,
                                  ui->lblCommunication3};
    for (int i = 0; i < notes.size(); ++i) {
        notes[i]->setObjectName(QStringLiteral("lblCommunication"));
        notes[i]->setProperty("index", i + 1);
    }

    const auto group = [this](const QList<QAbstractButton*>& buttons) {
        auto* result = new QButtonGroup(this);
        for (int i = 0; i < buttons.size(); ++i)
            result->addButton(buttons[i], i);
        return result;
    };
    mTimeFormat = group({ui->chkTimeFormat0, ui->chkTimeFormat1});
    mDockState = group({ui->ctlDockState0, ui->ctlDockState1, ui->ctlDockState2});
    mCommunication = group({ui->chkCommunication0, ui->chkCommunication1, ui->chkCommunication2,
                            ui->chkCommunication3});
}

void frmSettings::styleWindow() {
    ui->cmdClose->setCaptionLook(QStringLiteral("close"));
    for (QComboBox* combo : {ui->cboImageFormat, ui->cboSkins, ui->cboPreviewType,
                             ui->ComboLanguage, ui->cboMaxMessageSize})
        combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    for (const char* format : kImageFormats)
        ui->cboImageFormat->addItem(QString::fromLatin1(format).toUpper(),
                                    QString::fromLatin1(format));
    ui->picTabBottom->raise();
    ui->picCaption->installEventFilter(this);
    ui->lblCaption->installEventFilter(this);
    setStyleSheet(QStringLiteral(
        "frmSettings { background: #1d2b4a; }"
        "QFrame#picCaption { background: qlineargradient(x1:0, y1:0, x2:1, y2:0,"
        " stop:0 #1d2b4a, stop:1 #304a7c); border-bottom: 2px solid #fdbe51; }"
        "QLabel#lblCaption { color: white; font-weight: bold; font-size: 11pt; }"
        "QFrame#picBody { background: #eff2f8; }"
        "QPushButton#tabCaption { background: #e1e6ee; color: #1d2b4a; border: 1px solid #b4bfcf;"
        " border-bottom: none; border-top-left-radius: 5px; border-top-right-radius: 5px;"
        " padding: 6px 16px; }"
        "QPushButton#tabCaption:hover { background: #eef1f6; }"
        "QPushButton#tabCaption:checked { background: white; color: #10192c; }"
        "QFrame#frmTabs { background: white; border: 1px solid #b4bfcf; }"
        "QWidget#picTabBottom { background: white; }"
        "QLabel#lblTimeFormat, QLabel#lblImageFormat, QLabel#lblDockState, QLabel#lblLanguage,"
        " QLabel#lblMaxMessageSize { font-weight: bold; color: #1d2b4a; padding-top: 6px; }"
        "QLabel#lblCommunication, QLabel#lblLanguageInfo { color: #5a6578; }"
        "QGroupBox#FrameCommunication { font-weight: bold; color: #1d2b4a; }"
        "QGroupBox#FrameCommunication > QRadioButton { font-weight: normal; }"
        "QGroupBox#FrameCommunication > QLabel { font-weight: normal; }"));
    ui->picTabBottom->setAttribute(Qt::WA_StyledBackground);
}

void frmSettings::connectControls() {
    auto* tabs = new QButtonGroup(this);
    for (int i = 0; i < mTabs.size(); ++i)
        tabs->addButton(mTabs[i], i);
    connect(tabs, &QButtonGroup::idClicked, this, &frmSettings::tabCaption_Click);
    // Ctrl+Tab and Ctrl+Shift+Tab go through the pages, as in any tabbed dialog.
    const auto step = [this](int by) {
        return [this, by] {
            tabCaption_Click((currentPage() + by + int(mTabs.size())) % int(mTabs.size()));
        };
    };
    connect(new QShortcut(QKeySequence(QKeySequence::NextChild), this), &QShortcut::activated, this,
            step(1));
    connect(new QShortcut(QKeySequence(QKeySequence::PreviousChild), this), &QShortcut::activated,
            this, step(-1));
    for (QCheckBox* box :
         {ui->chkAskNewSlide, ui->chkAskDeleteSlide, ui->chkShowSplash, ui->chkPreviewPlayer,
          ui->chkBlinkPhoneConnect, ui->chkExtendedBrowser, ui->chkMakePdu})
        connect(box, &QCheckBox::clicked, this, &frmSettings::OptionClick);
    connect(mTimeFormat, &QButtonGroup::idClicked, this, &frmSettings::OptionClick);
    connect(mDockState, &QButtonGroup::idClicked, this, &frmSettings::OptionClick);
    connect(mCommunication, &QButtonGroup::idClicked, this, &frmSettings::chkCommunication_Click);
    connect(mCommunication, &QButtonGroup::idToggled, this, &frmSettings::ShowPhoneFolder);
    connect(ui->txtPhoneFolder, &QLineEdit::textEdited, this, &frmSettings::OptionClick);
    connect(ui->cmdPhoneFolder, &QPushButton::clicked, this, &frmSettings::cmdPhoneFolder_Click);
    for (QComboBox* combo : {ui->cboImageFormat, ui->ComboLanguage, ui->cboMaxMessageSize})
        connect(combo, &QComboBox::activated, this, &frmSettings::OptionClick);
    connect(ui->cboSkins, &QComboBox::currentIndexChanged, this, &frmSettings::cboSkins_Click);
    connect(ui->cboSkins, &QComboBox::activated, this, &frmSettings::OptionClick);
    connect(ui->cboPreviewType, &QComboBox::currentIndexChanged, this,
            &frmSettings::cboPreviewType_Click);
    connect(ui->cboPreviewType, &QComboBox::activated, this, &frmSettings::OptionClick);
    connect(ui->bTextColor, &QPushButton::clicked, this, &frmSettings::bTextColor_Click);
    connect(ui->cmdApply, &QPushButton::clicked, this, &frmSettings::cmdApply_Click);
    connect(ui->cmdOk, &QPushButton::clicked, this, &frmSettings::cmdOk_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmSettings::cmdCancel_Click);
    // The close button answers the left button only.
    ui->cmdClose->installEventFilter(this);
}

// ---------------------------------------------------------------------------------------------
// Loading

void frmSettings::Form_Load() {
    mLoading = true;
    TranslateForm();
    LoadValues();
    tabCaption_Click(General);
    mChanged = false;
    ui->cmdApply->setEnabled(false);
    mLoading = false;
}

void frmSettings::TranslateForm() {
    if (gLocalizer())
        ::TranslateForm(this);
    ui->lblCaption->setText(windowTitle());
    ui->txtPhoneFolder->setPlaceholderText(localText(QStringLiteral("STR_PHONE_FOLDER_HINT")));
    ui->txtPhoneFolder->setToolTip(localText(QStringLiteral("STR_PHONE_FOLDER_TIP")));
    LoadMessageSizes(QString());
    recaption(ui->cboSkins, kSkinPrefix);
    recaption(ui->cboPreviewType, kPreviewPrefix);
    // The captions of the tabs change their widths.
    placeTabBottom();
}

void frmSettings::LoadValues() {
    const FlagControl flags[] = {{ui->chkAskNewSlide, "AskNewSlide", "1"},
                                 {ui->chkAskDeleteSlide, "AskDeleteSlide", "1"},
                                 {ui->chkShowSplash, "ShowSplash", "1"},
                                 {ui->chkPreviewPlayer, "ShowPreview", "1"},
                                 {ui->chkBlinkPhoneConnect, "BlinkLed", "1"},
                                 {ui->chkExtendedBrowser, "ExtendedBrowser", "0"},
                                 {ui->chkMakePdu, "MakePdu", "0"}};
    for (const FlagControl& control : flags)
        control.box->setChecked(
            pref(QString::fromLatin1(control.key), QString::fromLatin1(control.defaultValue)) ==
            QLatin1String("1"));

    const int dock = pref(QStringLiteral("PreviewMode"), QStringLiteral("0")).toInt();
    if (QAbstractButton* option = mDockState->button(dock))
        option->setChecked(true);
    LoadTimeFormat();
    selectEntry(ui->cboImageFormat, pref(QStringLiteral("ImageFormat"), QStringLiteral("jpg")));
    LoadMessageSizes(QString::number(maxMessageSize()));
    SetBackColor(pref(QStringLiteral("BackgroundColor"), QStringLiteral("16777215")).toInt());

    GetInstalledLanguages();
    mOldLanguage = pref(QStringLiteral("Language"), QStringLiteral("en-us"));
    selectEntry(ui->ComboLanguage, mOldLanguage);
    LoadSkins();
    LoadCommunication();
}

// The sizes by name in the current language, the entry chosen kept; with `chosen` (bytes) its
// entry is selected. A size of the preferences that has no name shows in kilobytes, so that
// saving keeps it.
void frmSettings::LoadMessageSizes(const QString& chosen) {
    QComboBox* combo = ui->cboMaxMessageSize;
    for (int i = 0; i < int(std::size(kMessageSizes)); ++i) {
        const QString name = localText(QString::fromLatin1(kMessageSizes[i].second));
        if (i < combo->count())
            combo->setItemText(i, name);
        else
            combo->addItem(name, QString::number(kMessageSizes[i].first));
    }
    if (!chosen.isEmpty() && !selectEntry(combo, chosen)) {
        combo->addItem(kilobytes(chosen.toLongLong()), chosen);
        combo->setCurrentIndex(combo->count() - 1);
    }
}

// Seconds may be offered only where the preferences allow them.
void frmSettings::LoadTimeFormat() {
    mAllowSeconds = pref(QStringLiteral("AllowSeconds"), QStringLiteral("0")) != QLatin1String("0");
    const QString format = pref(QStringLiteral("MMSTimeFormat"), QStringLiteral("ms"));
    const bool seconds = mAllowSeconds && format == QLatin1String(kTimeFormats[1]);
    mTimeFormat->button(seconds ? 1 : 0)->setChecked(true);
    ui->chkTimeFormat1->setEnabled(mAllowSeconds);
}

QStringList frmSettings::GetInstalledLanguages() {
    const QString chosen = chosenValue(ui->ComboLanguage);
    ui->ComboLanguage->clear();
    QStringList codes;
    clsXMLocalizer* localizer = gLocalizer();
    if (!localizer)
        return codes;
    const QStringList files = QDir(localizer->GetLangPath())
                                  .entryList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name);
    for (const QString& file : files) {
        const QString code = QFileInfo(file).completeBaseName();
        try {
            if (!localizer->IsLanguageInstalled(code))
                continue;
        } catch (const Failure&) {
            continue; // a catalogue record without its enabled field offers nothing
        }
        const QString name =
            gProperties()->GetProp(QStringLiteral("languages"), code, QString()).section(',', 0, 0);
        ui->ComboLanguage->addItem(name.isEmpty() ? code : name, code);
        codes << code;
    }
    selectEntry(ui->ComboLanguage, chosen);
    return codes;
}

void frmSettings::LoadSkins() {
    ui->cboSkins->clear();
    ui->cboPreviewType->clear();
    for (const QString& skin :
         pref(QStringLiteral("Skins"), QString()).split(';', Qt::SkipEmptyParts))
        ui->cboSkins->addItem(entryCaption(skin, kSkinPrefix), skin);
    for (const QString& preview :
         pref(QStringLiteral("Previews"), QString()).split(';', Qt::SkipEmptyParts)) {
        const QString type =
            preview.startsWith(kPreviewPrefix) ? preview.mid(kPreviewPrefix.size()) : preview;
        ui->cboPreviewType->addItem(entryCaption(type, kPreviewPrefix), type);
    }
    const QString skin = pref(QStringLiteral("Skin"), QString());
    selectEntry(ui->cboSkins, skin);
    const QString preview = skin.isEmpty() ? QString()
                                           : preference(skin, QStringLiteral("Preview"),
                                                        QStringLiteral("Preview_Default"));
    selectEntry(ui->cboPreviewType,
                preview.startsWith(kPreviewPrefix) ? preview.mid(kPreviewPrefix.size()) : preview);
    cboSkins_Click();
    cboPreviewType_Click();
}

// Only the options that this installation supports are on view; the others close up.
void frmSettings::LoadCommunication() {
    const QStringList supported =
        pref(QStringLiteral("CommunicationTypesSupported"), QStringLiteral("0;1;2")).split(';');
    const QList<QLabel*> notes = {nullptr, ui->lblCommunication1, ui->lblCommunication2,
                                  ui->lblCommunication3};
    for (int i = 0; i < notes.size(); ++i) {
        const bool shown = supported.contains(QString::number(i));
        mCommunication->button(i)->setVisible(shown);
        mCommunication->button(i)->setEnabled(shown);
        if (notes[i])
            notes[i]->setVisible(shown);
    }
    ui->picPhoneFolder->setVisible(supported.contains(QString::number(kFolderOption)));
    ui->txtPhoneFolder->setText(pref(kPhoneFolder, QString()));
    mCommunicationType = pref(QStringLiteral("CommunicationType"), QStringLiteral("0")).toInt();
    if (QAbstractButton* option = mCommunication->button(mCommunicationType))
        option->setChecked(true);
    ShowPhoneFolder();
}

// The phone's folder can be named while the folder option is chosen.
void frmSettings::ShowPhoneFolder() {
    ui->picPhoneFolder->setEnabled(mCommunication->checkedId() == kFolderOption);
}

// The chooser opens at the folder named so far, or at the home folder.
void frmSettings::cmdPhoneFolder_Click() {
    const QString current = resolveAppPath(ui->txtPhoneFolder->text().trimmed(), false);
    QString folder = !current.isEmpty() && QFileInfo(current).isDir() ? current : QDir::homePath();
    if (!GetFolderName(this, folder, localText(QStringLiteral("STR_PHONE_FOLDER_TITLE")), folder))
        return;
    ui->txtPhoneFolder->setText(QDir::cleanPath(folder));
    OptionClick();
}

// ---------------------------------------------------------------------------------------------
// Pages and controls

void frmSettings::tabCaption_Click(int page) {
    if (page < 0 || page >= mTabs.size())
        return;
    ui->picTabs->setCurrentIndex(page);
    for (int i = 0; i < mTabs.size(); ++i)
        mTabs[i]->setChecked(i == page);
    placeTabBottom();
}

int frmSettings::currentPage() const {
    return ui->picTabs->currentIndex();
}

// The strip under the chosen tab covers the page's border there, so that the tab looks joined
// to its page.
void frmSettings::placeTabBottom() {
    const int page = ui->picTabs->currentIndex();
    if (page < 0 || page >= mTabs.size())
        return;
    QPushButton* tab = mTabs[page];
    const QPoint topLeft = tab->mapTo(ui->picBody, QPoint(1, 0));
    const int pageTop = ui->picTabs->mapTo(ui->picBody, QPoint(0, 0)).y();
    ui->picTabBottom->setGeometry(topLeft.x(), pageTop - 1, tab->width() - 2, 2);
    ui->picTabBottom->raise();
}

void frmSettings::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    placeTabBottom();
}

void frmSettings::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    placeTabBottom();
}

void frmSettings::cboSkins_Click() {
    const QString skin = chosenValue(ui->cboSkins);
    showPicture(ui->imgPreview,
                skin.isEmpty() ? QString() : preference(skin, QStringLiteral("BackPicture"), {}));
}

void frmSettings::cboPreviewType_Click() {
    const QString type = chosenValue(ui->cboPreviewType);
    showPicture(ui->picSkin, type.isEmpty() ? QString()
                                            : preference(kPreviewPrefix + type,
                                                         QStringLiteral("PreviewBackPicture"), {}));
}

void frmSettings::SetBackColor(std::int32_t colour) {
    const QColor shown = fromVbColor(colour);
    ui->picTextColor->setStyleSheet(
        QStringLiteral("QFrame#picTextColor { background: %1; border: 1px solid #7d8799; }")
            .arg(shown.name()));
    ui->picTextColor->setProperty("colour", colour);
    ui->picTextColor->setToolTip(
        QStringLiteral("RGB(%1,%2,%3)").arg(shown.red()).arg(shown.green()).arg(shown.blue()));
}

std::int32_t frmSettings::backColor() const {
    return ui->picTextColor->property("colour").toInt();
}

void frmSettings::bTextColor_Click() {
    std::int32_t colour = backColor();
    if (!ChooseColor(this, colour))
        return;
    SetBackColor(colour);
    OptionClick();
}

void frmSettings::chkCommunication_Click(int index) {
    if (!mLoading && index != mCommunicationType)
        MsgBox(localText(QStringLiteral("STR_COM_RESTART")), Vb::Information,
               localText(QStringLiteral("STR_COM_SETTINGS")));
    mCommunicationType = index;
    OptionClick();
}

void frmSettings::OptionClick() {
    if (mLoading)
        return;
    mChanged = true;
    ui->cmdApply->setEnabled(true);
}

// ---------------------------------------------------------------------------------------------
// Saving and the buttons

void frmSettings::Save() {
    const std::pair<QCheckBox*, const char*> flagsBeforeColour[] = {
        {ui->chkAskNewSlide, "AskNewSlide"},
        {ui->chkAskDeleteSlide, "AskDeleteSlide"},
        {ui->chkShowSplash, "ShowSplash"},
        {ui->chkPreviewPlayer, "ShowPreview"},
        {ui->chkBlinkPhoneConnect, "BlinkLed"}};
    for (const auto& [box, key] : flagsBeforeColour)
        setPref(kPreferences, QString::fromLatin1(key), flag(box->isChecked()));
    setPref(kPreferences, QStringLiteral("BackgroundColor"), QString::number(backColor()));
    setPref(kPreferences, QStringLiteral("ExtendedBrowser"),
            flag(ui->chkExtendedBrowser->isChecked()));
    setPref(kPreferences, QStringLiteral("MakePdu"), flag(ui->chkMakePdu->isChecked()));
    if (ui->cboImageFormat->currentIndex() >= 0)
        setPref(kPreferences, QStringLiteral("ImageFormat"), chosenValue(ui->cboImageFormat));
    if (ui->cboMaxMessageSize->currentIndex() >= 0)
        setPref(kPreferences, QStringLiteral("MaxMessageSize"), chosenValue(ui->cboMaxMessageSize));
    const int time = std::max(0, mTimeFormat->checkedId());
    setPref(kPreferences, QStringLiteral("MMSTimeFormat"), QString::fromLatin1(kTimeFormats[time]));
    if (mDockState->checkedId() >= 0)
        setPref(kPreferences, QStringLiteral("PreviewMode"),
                QString::number(mDockState->checkedId()));
    if (mCommunication->checkedId() >= 0)
        setPref(kPreferences, QStringLiteral("CommunicationType"),
                QString::number(mCommunication->checkedId()));
    // An installation without the folder option keeps the folder it has.
    if (!ui->picPhoneFolder->isHidden())
        setPref(kPreferences, kPhoneFolder, ui->txtPhoneFolder->text().trimmed());
    SaveSkin();
    SaveLanguage();
    mChanged = false;
}

// An installation without skins keeps the skin it has.
void frmSettings::SaveSkin() {
    if (ui->cboSkins->currentIndex() < 0)
        return;
    const QString skin = chosenValue(ui->cboSkins);
    setPref(kPreferences, QStringLiteral("Skin"), skin);
    if (ui->cboPreviewType->currentIndex() >= 0)
        setPref(skin, QStringLiteral("Preview"), kPreviewPrefix + chosenValue(ui->cboPreviewType));
}

// A new language translates every open window at once; the same one again translates nothing.
void frmSettings::SaveLanguage() {
    if (ui->ComboLanguage->currentIndex() < 0)
        return;
    const QString language = chosenValue(ui->ComboLanguage);
    setPref(kPreferences, QStringLiteral("Language"), language);
    if (language != mOldLanguage && gLocalizer()) {
        gLocalizer()->SetLanguage(language);
        TranslateOpenWindows();
    }
    mOldLanguage = language;
}

void frmSettings::cmdApply_Click() {
    const bool wasChanged = mChanged;
    Save();
    ui->cmdApply->setEnabled(false);
    emit Apply(wasChanged);
}

void frmSettings::cmdOk_Click() {
    const bool wasChanged = mChanged;
    Save();
    ui->cmdApply->setEnabled(false);
    emit Ok(wasChanged);
    accept();
}

void frmSettings::cmdCancel_Click() {
    emit Cancel();
    QDialog::reject();
}

// Escape and the window's close end as Cancel does.
void frmSettings::reject() {
    cmdCancel_Click();
}

bool frmSettings::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease && watched == ui->cmdClose) {
        auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::LeftButton && ui->cmdClose->rect().contains(mouse->pos()))
            cmdCancel_Click();
        return false;
    }
    if (event->type() == QEvent::MouseButtonPress &&
        (watched == ui->picCaption || watched == ui->lblCaption) &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
        DragWindow(this, 1);
        return true;
    }
    return QDialog::eventFilter(watched, event);
}
