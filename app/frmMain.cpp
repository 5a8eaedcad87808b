#include "app/frmMain.h"
#include "controls/modTranslate.h"
#include "ui_frmMain.h"

#include "app/TerminationSignals.h"
#include "app/frmPreview.h"
#include "app/frmSettings.h"
#include "app/modMain.h"
#include "audio/ctlAudioRecorder.h"
#include "audio/mmstimer.h"
#include "audio/modPlaySound.h"
#include "browse/ctlBrowser.h"
#include "browse/ctlSlideThumbs.h"
#include "browse/frmMessageList.h"
#include "canvas/ctlPictureEditor.h"
#include "canvas/ctlTextProperties.h"
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/BoxStatusSink.h"
#include "controls/ctlMainMenu.h"
#include "controls/frmAbout.h"
#include "controls/frmSplash.h"
#include "controls/modGlyphs.h"
#include "controls/modSkin.h"
#include "controls/modTitleBar.h"
#include "document/clsDrawObject.h"
#include "document/clsDrawObjects.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "phone/clsMMSCommunication.h"
#include "platform/AppPaths.h"
#include "platform/Failure.h"
#include "platform/Twips.h"
#include "platform/VbFormat.h"
#include "platform/modDialogs.h"
#include "platform/modShared.h"
#include "platform/modText.h"
#include "store/clsMMSManager.h"
#include "store/modRecovery.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QTimer>

namespace {

const QString kPreferences = QStringLiteral("preferences");

QString pref(const QString& key, const QString& defaultValue) {
    return preference(kPreferences, key, defaultValue);
}

void pumpEvents() {
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
}

// Lets window events run until the splash has gone, sleeping between events.
void waitForSplash() {
    while (gSplashActive)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

// How often the recovery copy of a changed message is written.
constexpr int kRecoveryInterval = 60 * 1000;

// Reads every number of `message` that the window and the slide controls read, and writes back
// what the window stores from its controls, so that a damaged document is refused when it is
// opened rather than failing on a later click. Raises the failure of the first value that
// cannot be read or written.
void checkUsable(clsMessage& message) {
    if (!message.Slides())
        raiseObjectNotSet(QStringLiteral("frmMain.OpenMessage"));
    for (const auto& slide : *message.Slides()) {
        slide->Index();
        slide->Color();
        slide->SoundDuration();
        slide->setDuration(slide->Duration());
        slide->setText(slide->Text());
        slide->setSound(slide->Sound());
        if (clsDrawObjects* objects = slide->DrawObjects()) {
            objects->BackColor();
            for (const auto& object : *objects)
                object->GetAllPproperties();
        }
    }
}

// The text of each tool page, by page index.
// The line over each tool page. The three browser pages name themselves in their own caption,
// so their line says how to use them instead.
const char* const kToolTitles[] = {"STR_BACKGROUND_HINT", "STR_TEXT_TITLE", "STR_AUDIO_HINT",
                                   "STR_SYMBOLS_HINT", "STR_AUDIO_REC_TITLE"};

QString toolTitle(int index) {
    return localText(QString::fromLatin1(kToolTitles[index]));
}

} // namespace

frmMain::frmMain(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::frmMain>()) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowFlag(Qt::WindowMaximizeButtonHint, false);

    // The tool pages form one control array.
    const QList<QWidget*> pages = {ui->picToolsTab0, ui->picToolsTab1, ui->picToolsTab2,
                                   ui->picToolsTab3, ui->picToolsTab4};
    for (int i = 0; i < pages.size(); ++i) {
        pages[i]->setObjectName(QStringLiteral("picToolsTab"));
        pages[i]->setProperty("index", i);
    }

    mTimerExitWait = new QTimer(this);
    mTimerExitWait->setObjectName(QStringLiteral("TimerExitWait"));
    mTimerExitWait->setInterval(100);
    connect(mTimerExitWait, &QTimer::timeout, this, &frmMain::TimerExitWait_Timer);

    mTimerRecovery = new QTimer(this);
    mTimerRecovery->setObjectName(QStringLiteral("TimerRecovery"));
    mTimerRecovery->setInterval(kRecoveryInterval);
    connect(mTimerRecovery, &QTimer::timeout, this, &frmMain::TimerRecovery_Timer);
    if (TerminationSignals* termination = TerminationSignals::instance())
        connect(termination, &TerminationSignals::terminationRequested, this,
                &frmMain::EndedBySystem);

    connect(ui->ctlMainMenu1, &ctlMainMenu::MenuClick, this, &frmMain::ctlMainMenu1_MenuClick);
    connect(ui->ctlMainMenu1, &ctlMainMenu::MenuMouseDown, this,
            [this](int button, int, float, float) { DragWindow(this, button); });
    connect(ui->cmdMinimize, &QAbstractButton::clicked, this, [this] { showMinimized(); });
    connect(ui->cmdClose, &QAbstractButton::released, this, [this] { RequestExit(); });
    connect(ui->cmdAddNewSlide, &QAbstractButton::clicked, this, [this] {
        if (mMessage)
            AddSlide(askNewSlide(), true);
    });
    connect(ui->txtMessage, &QPlainTextEdit::textChanged, this, &frmMain::txtMessage_Change);
    connect(ui->ctlUpDown1, &ctlUpDown::ValueChanged, this, [this](std::int32_t& value) {
        if (mSlide) {
            mSlide->setDuration(value);
            ui->ctlSlideThumbs1->DrawThumb(true, *mSlide);
        }
        UpdateTotalTime();
    });
    connect(ui->ctlVerticalTab1, &ctlVerticalTab::TabClick, this,
            &frmMain::ctlVerticalTab1_TabClick);
    connect(ui->ctlPictureEditor1, &ctlPictureEditor::CanvasChanged, this,
            &frmMain::ctlPictureEditor1_CanvasChanged);
    connectTextPanel();
    connectSoundControls();
    connectBrowsers();
    connectSendCommands();
    connectSlideStrip();
    connectSlideCommands();
    connectPreview();
    ui->lblCaption->installEventFilter(this);
    ui->lblMessageTitle->installEventFilter(this);

    Form_Load();
}

// The canvas and the text panel speak to each other through the window.
void frmMain::connectTextPanel() {
    ctlPictureEditor* canvas = ui->ctlPictureEditor1;
    ctlTextProperties* panel = ui->ctlTextProperties1;
    connect(canvas, &ctlPictureEditor::TextSelected, panel, [panel](const TextAttributes& text) {
        panel->SetSelection(text);
        panel->ApplyEnabled(true);
    });
    connect(canvas, &ctlPictureEditor::ImageSelected, panel,
            [panel](int, const QString&) { panel->ApplyEnabled(false); });
    connect(canvas, &ctlPictureEditor::NothingSelected, panel,
            [panel] { panel->ApplyEnabled(false); });
    connect(canvas, &ctlPictureEditor::ColorPicked, panel, &ctlTextProperties::SetTextColor);
    connect(panel, &ctlTextProperties::AddText, canvas, &ctlPictureEditor::AddText);
    connect(panel, &ctlTextProperties::Apply, canvas, &ctlPictureEditor::ApplyText);
    connect(panel, &ctlTextProperties::ColorPicker, canvas, &ctlPictureEditor::EnabledColorPicker);
    connect(panel, &ctlTextProperties::TextChanged, canvas, &ctlPictureEditor::ChangeText);
}

// The media panes hand their files to the canvas and the sound preview.
void frmMain::connectBrowsers() {
    ctlBrowser* backgrounds = ui->ctlBrowserBackground;
    connect(backgrounds, &ctlBrowser::ItemChosen, this, [this, backgrounds](int index) {
        const QString name = backgrounds->FileName(index);
        ui->ctlPictureEditor1->AddBackgroundImage(index > 0 ? backgrounds->Path() + name : name);
        mChanged = true;
        EnableSlideCommands(true);
    });
    ctlBrowser* symbols = ui->ctlBrowserPictures;
    connect(symbols, &ctlBrowser::ItemChosen, this, [this, symbols](int index) {
        const QString name = symbols->FileName(index);
        const QString file = index < 1 ? fileNameOf(name) : name;
        ui->ctlPictureEditor1->AddImage(index < 1 ? name : symbols->Path() + name, file);
    });
    ctlBrowser* sounds = ui->ctlBrowserAudio;
    connect(sounds, &ctlBrowser::ItemClick, this, [sounds](int index, int action) {
        if (action == ctlBrowser::ActionPlay && !sounds->FileName(index).isEmpty())
            playFile(sounds->Path() + sounds->FileName(index));
        else if (action == ctlBrowser::ActionStop)
            stopPlaying();
    });
    connect(sounds, &ctlBrowser::ItemChosen, this, [this, sounds](int index) {
        const QString name = sounds->FileName(index);
        QString file = index < 1 ? fileNameOf(name) : name;
        QString folder = index < 1 ? name.left(name.size() - file.size()) : sounds->Path();
        AssignSound(folder, file);
    });
    // A recording saved into the archive shows at once in the sounds pane.
    connect(ui->ctlAudioRecorder1, &ctlAudioRecorder::ArchiveChanged, sounds,
            [sounds] { sounds->LoadFiles(); });
}

frmMain::~frmMain() {
    // A docked player area goes back to its window, which takes it along.
    if (mFrmPreview && mDockedPicture)
        mDockedPicture->setParent(mFrmPreview);
    if (gMainWindow == this)
        gMainWindow = nullptr;
}

QString frmMain::text(const QString& key) const {
    return localText(key);
}

bool frmMain::askNewSlide() const {
    return pref(QStringLiteral("AskNewSlide"), QStringLiteral("1")) == QLatin1String("1");
}

// ---------------------------------------------------------------------------------------------
// Life of the window

void frmMain::Form_Load() {
    TranslateForm();
    gUntitledName = text(QStringLiteral("STR_UNTITLED"));
    ui->lblCaption->setText(windowTitle());
    styleLabels();
    ui->lblTime->clear();
    ui->ctlUpDown1->setDecSep(gDecimalSeparator);
    InitMessageManager();
    InitSkin();
    InitPreviewMode();
    mFrmOpen = new frmMessageList(mMMSManager.get(), this);
    connect(mFrmOpen, &frmMessageList::SelectedMessage, this, &frmMain::mFrmOpen_SelectedMessage);
}

void frmMain::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!mActivated)
        Form_Activate();
}

void frmMain::Form_Activate() {
    mActivated = true;
    ui->ctlMainMenu1->SetBackground(this, ui->ctlMainMenu1);

    bool splashVisible = false;
    if (gSplashActive && frmSplash::Instance()) {
        splashVisible = frmSplash::Instance()->isVisible();
        frmSplash::Instance()->hide();
        pumpEvents();
    }

    const QColor back =
        fromVbColor(pref(QStringLiteral("BackgroundColor"), QStringLiteral("16777215")).toInt());
    QPalette palette = ui->picPreview->palette();
    palette.setColor(QPalette::Window, back);
    ui->picPreview->setPalette(palette);
    ui->picPreview->setAutoFillBackground(true);

    ui->txtMessage->setPlainText(ui->txtMessage->toolTip());
    pumpEvents();

    if (gSplashActive && frmSplash::Instance()) {
        frmSplash::Instance()->CloseSplash();
        if (splashVisible)
            frmSplash::Instance()->show();
    }

    InitTools();
    mChanged = false;
    ui->ctlAudioRecorder1->SetMaxRecordTime(
        pref(QStringLiteral("MaxRecordTime"), QStringLiteral("300000")).toInt());

    if (!mMessage)
        NewMessage(gUntitledName);

    waitForSplash();
    // The question about a recovery copy waits until the window is on the screen behind it.
    QTimer::singleShot(0, this, &frmMain::OfferRecoveryCopy);
    mTimerRecovery->start();

    if (!mCommunicationReady)
        InitCommunication();
    gStarting = false;
}

void frmMain::InitMessageManager() {
    mMMSManager = std::make_unique<clsMMSManager>();
    static BoxStatusSink boxes; // holds nothing: one serves every manager
    mMMSManager->setStatusSink(&boxes);
    const QString messages =
        gProperties()
            ? gProperties()->GetProp(QStringLiteral("paths"), QStringLiteral("messages"), QString())
            : QString();
    const QString file = gProperties()
                             ? gProperties()->GetProp(QStringLiteral("paths"),
                                                      QStringLiteral("messagefile"), QString())
                             : QString();
    // Without both keys the manager stays without a store: its operations then fail.
    if (!messages.isEmpty() && !file.isEmpty())
        mMMSManager->Initialize(joinPath(appFolder(), messages), file);
    mMMSManager->RecoverInterruptedSaves();
}

void frmMain::InitSkin() {
    placeToolPages();
    for (ctlBrowser* browser :
         {ui->ctlBrowserBackground, ui->ctlBrowserPictures, ui->ctlBrowserAudio})
        browser->SetControlBackColor(kToolBackColor, kToolAccentColor);
    ui->ctlTextProperties1->SetControlBackColor(kToolBackColor, kToolAccentColor);
    ui->ctlAudioRecorder1->SetControlBackColor(kToolBackColor, kToolAccentColor);
    mWindowWidth = mDocked ? kWindowWidthDocked : kWindowWidthUndocked;
    mWindowHeight = kWindowHeight;
    ShowTitleBar(this, false);
    setFixedSize(twipsToPixels(mWindowWidth), twipsToPixels(mWindowHeight));

    for (GrButtonIII* button : {ui->cmdClose, ui->cmdMinimize, ui->cmdUndock})
        button->setCaptionLook(button == ui->cmdClose      ? QStringLiteral("close")
                               : button == ui->cmdMinimize ? QStringLiteral("minimize")
                                                           : QStringLiteral("undock"));
    ui->cmdUndock->setVisible(mDocked);
    const std::pair<GrButtonIII*, const char*> glyphs[] = {
        {ui->cmdAddNewSlide, "add"},    {ui->cmdDuplicateSlide, "duplicate"},
        {ui->cmdDeleteSlide, "delete"}, {ui->bPlayAudio, "play"},
        {ui->bStopAudio, "stop"},       {ui->bDeleteAudio, "remove"}};
    for (const auto& [button, glyph] : glyphs)
        button->setIcon(toolGlyph(QString::fromLatin1(glyph)));

    const QString skin = pref(QStringLiteral("Skin"), QString());
    if (!skin.isEmpty() && gProperties()) {
        const QString back = gProperties()->GetProp(skin, QStringLiteral("BackPicture"), QString());
        if (!back.isEmpty()) {
            const QPixmap picture(resolveDataPath(back, false));
            if (picture.isNull())
                MsgBox(QStringLiteral("The background bitmap could not be loaded!"),
                       Vb::Exclamation, QStringLiteral("InitSkin"));
            else
                setFormPicture(this, picture);
        }
        InitPreviewSkin(skin);
    }
    ui->ctlVerticalTab1->SetBackground(this, ui->ctlVerticalTab1);
    ui->ctlMainMenu1->SetBackground(this, ui->ctlMainMenu1);
    update();
}

// Fonts and colours of the labels that lie on the skin.
void frmMain::styleLabels() {
    const auto style = [](QLabel* label, int pixels, bool bold, const QColor& colour) {
        QFont font = label->font();
        font.setPixelSize(pixels);
        font.setBold(bold);
        label->setFont(font);
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText, colour);
        label->setPalette(palette);
    };
    style(ui->lblCaption, 17, true, Qt::white);
    style(ui->lblMessageTitle, 13, false, QColor(0xc9, 0xd4, 0xea));
    const QColor text(0x2a, 0x33, 0x48);
    for (QLabel* label : {ui->lblPhoneConnected, ui->lblSlideNo, ui->lblTotalTimeDesc,
                          ui->lblMaxTime, ui->lblMessageSize})
        style(label, 11, false, text);
    style(ui->lblMaxTime, 11, true, text);
    style(ui->lblToolTitle, 12, true, text);
    style(ui->lblSoundFile, 11, false, text);
    ui->lblMaxTime->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    ui->lblMessageTitle->setTextFormat(Qt::PlainText);

    // The sound's progress: a thin bar over its back.
    ui->LblSoundProgressBack->setAutoFillBackground(true);
    ui->lblSoundProgress->setAutoFillBackground(true);
    QPalette back = ui->LblSoundProgressBack->palette();
    back.setColor(QPalette::Window, QColor(0xd5, 0xdc, 0xe9));
    ui->LblSoundProgressBack->setPalette(back);
    back.setColor(QPalette::Window, fromVbColor(kToolAccentColor));
    ui->lblSoundProgress->setPalette(back);

    ui->txtMessage->setFrameShape(QFrame::NoFrame);
    ui->txtMessage->setStyleSheet(
        QStringLiteral("QPlainTextEdit { background: white; border: 1px solid #b8c2d6; "
                       "border-radius: 4px; color: #2a3348; }"
                       "QPlainTextEdit[prompt=\"true\"] { color: #8a93a8; }"));
}

void frmMain::placeToolPages() {
    const QColor page = fromVbColor(kToolBackColor);
    const QList<QWidget*> pages = ui->picWork->findChildren<QWidget*>(QStringLiteral("picToolsTab"),
                                                                      Qt::FindDirectChildrenOnly);
    for (QWidget* p : pages) {
        p->move(30, 30);
        QPalette palette = p->palette();
        palette.setColor(QPalette::Window, page);
        p->setPalette(palette);
        p->setAutoFillBackground(true);
    }
}

void frmMain::InitTools() {
    ui->ctlVerticalTab1->SetTab(pref(QStringLiteral("SelectedTool"), QStringLiteral("0")).toInt());
    // The archive is the user's own: on first use each folder is filled with the samples that
    // came with the program, so recordings, added pictures and deletions all land in one place
    // the user may change. Where the copy cannot be made, the panes show the samples themselves.
    const QString root = preference(QStringLiteral("paths"), QStringLiteral("archive"),
                                    QStringLiteral("\\Archive\\"));
    const auto archive = [&root](const char* folder) {
        const QString relative = root + QString::fromLatin1(folder);
        const QString own = resolveAppPath(relative);
        if (QFileInfo::exists(own))
            return own;
        const QString shipped = resolveDataPath(relative);
        return seedFolder(shipped, own) ? own : shipped;
    };
    const auto setUp = [](ctlBrowser* browser, int type, const QString& caption) {
        browser->SetBrowserThumbType(type);
        browser->setCaptionVisible(true);
        browser->setButtonsVisible(true);
        QFont font = browser->TabFont();
        font.setPointSize(11);
        font.setBold(true);
        browser->setTabFont(font);
        browser->setCaption(caption);
    };
    ctlBrowser* backgrounds = ui->ctlBrowserBackground;
    setUp(backgrounds, ctlBrowser::PictureThumbs, text(QStringLiteral("STR_BACKGROUND_TITLE")));
    backgrounds->setFiles(QStringLiteral("*.bmp,*.gif,*.jpg,*.jpeg"));
    backgrounds->setPath(archive("Backgrounds"));
    backgrounds->setThumbs(QString());
    backgrounds->setThumbHeight(backgrounds->ThumbWidth() * 3 / 4 + 16);
    backgrounds->LoadFiles();
    backgrounds->UseExternalBrowser(pref(QStringLiteral("ExtendedBrowser"), QStringLiteral("0")) ==
                                    QLatin1String("1"));

    ctlBrowser* symbols = ui->ctlBrowserPictures;
    setUp(symbols, ctlBrowser::PictureThumbs, text(QStringLiteral("STR_SYMBOLS_TITLE")));
    symbols->setFiles(QStringLiteral("*.bmp,*.gif,*.jpg,*.jpeg"));
    symbols->setPath(archive("Pictures"));
    symbols->setThumbs(QString());
    symbols->setThumbHeight(backgrounds->ThumbWidth() * 3 / 4 + 16);
    symbols->LoadFiles();

    ctlBrowser* sounds = ui->ctlBrowserAudio;
    setUp(sounds, ctlBrowser::SoundThumbs, text(QStringLiteral("STR_AUDIO_TITLE")));
    sounds->setFiles(QStringLiteral("*.wav,*.mid,*.midi,*.imy"));
    sounds->setPath(archive("Sounds"));
    sounds->setThumbs(QStringLiteral("101,302,302,302"));
    sounds->setThumbHeight(48);
    sounds->LoadFiles();

    ui->ctlTextProperties1->setCaption(text(QStringLiteral("STR_TEXT_TITLE")));
    InitSoundTools();
}

void frmMain::ctlVerticalTab1_TabClick(int index) {
    const QList<QWidget*> pages = ui->picWork->findChildren<QWidget*>(QStringLiteral("picToolsTab"),
                                                                      Qt::FindDirectChildrenOnly);
    for (QWidget* page : pages) {
        if (page->property("index").toInt() != index)
            continue;
        page->raise();
        ui->lblToolTitle->setText(toolTitle(index));
        if (gProperties())
            gProperties()->SetProp(kPreferences, QStringLiteral("SelectedTool"),
                                   QString::number(index));
    }
}

bool frmMain::RequestExit() {
    const QString title = windowTitle();
    bool exit = false;
    if (!mChanged) {
        exit = MsgBox(text(QStringLiteral("ASK_EXIT")), Vb::YesNo | Vb::Question, title) == Vb::Yes;
    } else {
        const int answer =
            MsgBox(text(QStringLiteral("ASK_SAVECHANGES")), Vb::YesNoCancel | Vb::Question, title);
        if (answer == Vb::No) {
            exit = true;
        } else if (answer == Vb::Yes) {
            if (!mMessage) {
                exit = true;
            } else if (mMessage->name() != gUntitledName) {
                exit = SaveCurrentMessage(false);
            } else {
                exit = !ShowSaveAsDialog();
            }
        }
    }
    if (exit)
        mTimerExitWait->start();
    return exit;
}

void frmMain::TimerExitWait_Timer() {
    if (gStarting)
        return; // start-up is still running; keep ticking
    mTimerExitWait->stop();
    mUnloading = true;
    close();
}

void frmMain::closeEvent(QCloseEvent* event) {
    // The close box goes the same way as the Exit command; only the program itself unloads.
    if (!mUnloading) {
        event->ignore();
        RequestExit();
        return;
    }
    Form_Unload();
    event->accept();
}

void frmMain::Form_Unload() {
    if (mUnloaded)
        return;
    mUnloaded = true;
    waitForSplash();

    mTimerRecovery->stop();
    // A message the system ended with unsaved changes waits for the next start; every other
    // end was the user's choice, so an older copy is not offered again.
    if (!mEndedBySystem)
        removeRecoveryCopy();
    else if (mMessage && mChanged)
        WriteRecoveryCopy();

    mMMSManager.reset();
    mMMSCommunication.reset();
    delete mFrmOpen;
    mFrmOpen = nullptr;

    if (gProperties())
        gProperties()->SaveXmlFile();
    releaseSharedObjects();

    for (QWidget* window : QApplication::topLevelWidgets())
        if (window != this && window->objectName() != objectName())
            window->close();
    emit Unloaded();
}

void frmMain::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        Form_Resize();
}

void frmMain::Form_Resize() {
    FollowMainWindowState();
    if (windowState() & Qt::WindowMaximized) {
        // The window keeps its size: a maximised state goes back to normal at once.
        QTimer::singleShot(0, this, [this] { showNormal(); });
        return;
    }
    if (!(windowState() & Qt::WindowMinimized))
        setFixedSize(twipsToPixels(mWindowWidth), twipsToPixels(mWindowHeight));
}

void frmMain::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QPixmap picture = formPicture(this);
    if (picture.isNull())
        painter.fillRect(rect(), palette().window());
    else
        painter.drawPixmap(0, 0, picture);
}

void frmMain::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        DragWindow(this, 1);
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
    // A drag starts when the mouse moves over the caption labels with the left button held.
    if ((watched == ui->lblCaption || watched == ui->lblMessageTitle) &&
        event->type() == QEvent::MouseMove &&
        (static_cast<QMouseEvent*>(event)->buttons() & Qt::LeftButton)) {
        DragWindow(this, 1);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

// ---------------------------------------------------------------------------------------------
// Translation and settings

void frmMain::TranslateForm() {
    const bool changed = mChanged;
    const QString oldTip = ui->txtMessage->toolTip();
    const QString maxTime = ui->lblMaxTime->text();
    const QString time = ui->lblTime->text();
    const QString phone = ui->lblPhoneConnected->text();

    if (gLocalizer())
        ::TranslateForm(this);
    ui->ctlMainMenu1->EnableTemplates(
        pref(QStringLiteral("TemplateLoadSave"), QStringLiteral("0")) == QLatin1String("1"));
    if (gLocalizer()) {
        ui->ctlMainMenu1->TranslateControl(gLocalizer());
        ui->ctlVerticalTab1->TranslateControl(gLocalizer());
        ui->ctlSlideThumbs1->TranslateControl(gLocalizer());
    }
    ui->ctlPictureEditor1->TranslateControl();
    if (gLocalizer())
        ui->ctlTextProperties1->TranslateControl(gLocalizer());
    if (gLocalizer())
        ui->ctlAudioRecorder1->TranslateControl(gLocalizer());
    ui->ctlAudioRecorder1->setCaption(text(QStringLiteral("STR_AUDIO_REC_TITLE")));
    for (ctlBrowser* browser :
         {ui->ctlBrowserBackground, ui->ctlBrowserPictures, ui->ctlBrowserAudio})
        browser->TranslateControl(gLocalizer());
    ui->ctlBrowserBackground->setCaption(text(QStringLiteral("STR_BACKGROUND_TITLE")));
    ui->ctlBrowserPictures->setCaption(text(QStringLiteral("STR_SYMBOLS_TITLE")));
    ui->ctlBrowserAudio->setCaption(text(QStringLiteral("STR_AUDIO_TITLE")));
    ui->ctlTextProperties1->setCaption(text(QStringLiteral("STR_TEXT_TITLE")));
    const int tool = ui->ctlVerticalTab1->SelectedIndex();
    if (tool >= 0 && tool < int(std::size(kToolTitles)))
        ui->lblToolTitle->setText(toolTitle(tool));

    const QString tip = text(QStringLiteral("STR_CLICK_TO_ADD"));
    ui->txtMessage->setToolTip(tip);
    if (ui->txtMessage->toPlainText() == oldTip) {
        const QSignalBlocker block(ui->txtMessage);
        ui->txtMessage->setPlainText(tip);
    }

    ShowTitleBar(this, false);
    UpdateTitle();
    ui->lblMaxTime->setText(maxTime);
    ui->lblTime->setText(time);
    ui->lblPhoneConnected->setText(phone);
    mChanged = changed;
}

void frmMain::ApplySettings() {
    InitSkin();
    UpdateSizeEstimate();
}

void frmMain::ShowSettings() {
    // On the heap: a window that goes while the dialog is open takes the dialog with it.
    QPointer<frmSettings> settings = new frmSettings(this);
    mFrmSettings = settings;
    connect(settings, &frmSettings::Apply, this, &frmMain::mfrmSettings_Apply);
    connect(settings, &frmSettings::Ok, this, &frmMain::mfrmSettings_Ok);
    settings->exec();
    delete settings.data();
    mFrmSettings = nullptr;
}

void frmMain::mfrmSettings_Apply(bool changed) {
    if (changed)
        ApplySettings();
}

void frmMain::mfrmSettings_Ok(bool changed) {
    mfrmSettings_Apply(changed);
}

void frmMain::MMSCommunication_Connect(bool connected, int connectionType, const QString& name) {
    const bool blink = pref(QStringLiteral("BlinkLed"), QStringLiteral("1")) == QLatin1String("1");
    if (!connected) {
        ui->lblPhoneConnected->clear();
        ui->lblPhoneConnected->setToolTip(QString());
        ui->ctlBlink1->Start(0, blink);
        UpdateSizeEstimate();
        return;
    }
    ui->lblPhoneConnected->setToolTip(name);
    ui->lblPhoneConnected->setText(name.size() > 10 ? name.left(7) + QStringLiteral("...") : name);
    ui->ctlBlink1->Start(connectionType == 1 || connectionType == 2 ? connectionType : 3, blink);
    UpdateSizeEstimate();
}

// ---------------------------------------------------------------------------------------------
// Menu

void frmMain::ctlMainMenu1_MenuClick(std::int32_t key) {
    const bool ask = askNewSlide();
    switch (key) {
    case MenuKey::FileNew:
        gUntitledName = text(QStringLiteral("STR_UNTITLED"));
        NewMessage(gUntitledName);
        break;
    case MenuKey::FileOpen:
        if (AskSaveCurrent())
            ShowOpenDialog();
        break;
    case MenuKey::FileSave:
        if (mMessage) {
            if (mMessage->name() != gUntitledName)
                SaveCurrentMessage(false);
            else
                ShowSaveAsDialog();
        }
        break;
    case MenuKey::FileSaveAs:
        ShowSaveAsDialog();
        break;
    case MenuKey::FileDelete:
        ShowDeleteDialog();
        break;
    case MenuKey::FileSettings:
        ShowSettings();
        break;
    case MenuKey::FileSaveAsTemplate:
    case MenuKey::FileSaveAsSis:
    case MenuKey::FileOpenTemplate:
        // Templates and packages are made only when a message is sent.
        break;
    case MenuKey::FileExit:
        RequestExit();
        break;
    case MenuKey::SlideAdd:
        AddSlide(ask, true);
        break;
    case MenuKey::SlideInsertBefore:
        if (mSlide)
            InsertSlideBefore(mSlide->Index(), ask);
        break;
    case MenuKey::SlideInsertAfter:
        if (mSlide)
            InsertSlideAfter(mSlide->Index(), ask);
        break;
    case MenuKey::SlideDuplicateBefore:
        if (mSlide)
            DuplicateSlideBefore(mSlide->Index(), ask);
        break;
    case MenuKey::SlideDuplicateAfter:
        if (mSlide)
            DuplicateSlideAfter(mSlide->Index(), ask);
        break;
    case MenuKey::SlideDeleteSlide:
        if (mSlide)
            DeleteSlide(mSlide->Index(), askDeleteSlide());
        break;
    case MenuKey::SlideDeleteImage:
        if (mSlide)
            DeleteSlideImage(mSlide->Index());
        break;
    case MenuKey::SlideDeleteSound:
        if (mSlide)
            DeleteSlideSound(mSlide->Index());
        break;
    case MenuKey::SlideDeleteText:
        if (mSlide)
            DeleteSlideText(mSlide->Index());
        break;
    case MenuKey::SlidePreview:
        cmdPreview_Click();
        break;
    case MenuKey::SlideBackground:
        ui->ctlPictureEditor1->SetBackgroundColor(0, true);
        break;
    case MenuKey::SlideDownloadPicture:
        ShowDownloadPicture();
        break;
    case MenuKey::HelpAbout: {
        frmAbout about(this); // translates itself when it loads
        about.exec();
        break;
    }
    default:
        // Keys of sub-menus are never raised.
        break;
    }
}

// ---------------------------------------------------------------------------------------------
// Message list dialogs and the life of the message

void frmMain::ShowOpenDialog() {
    mDialogCancelled = false;
    mFrmOpen->SetFunction(frmMessageList::Open);
    mFrmOpen->exec();
}

void frmMain::ShowNewDialog() {
    mDialogCancelled = false;
    mFrmOpen->SetFunction(frmMessageList::New);
    mFrmOpen->exec();
}

bool frmMain::ShowSaveAsDialog() {
    mDialogCancelled = false;
    mFrmOpen->SetFunction(frmMessageList::SaveAs);
    mFrmOpen->exec();
    while (mFrmOpen->isVisible())
        pumpEvents();
    return mDialogCancelled;
}

void frmMain::ShowDeleteDialog() {
    mFrmOpen->SetFunction(frmMessageList::Delete);
    mFrmOpen->exec();
}

void frmMain::mFrmOpen_SelectedMessage(int mode, const QString& rawName) {
    pumpEvents();
    const QString name = rawName.trimmed();
    if (mode != frmMessageList::Cancelled && name.isEmpty()) {
        MsgBox(text(QStringLiteral("STR_ENTER_NAME")), Vb::Information,
               text(QStringLiteral("APP_PRODUCTNAME")));
        mDialogCancelled = true; // nothing was done: a command waiting on the dialog stops
        return;
    }
    switch (mode) {
    case frmMessageList::Cancelled:
        mDialogCancelled = true;
        break;
    case frmMessageList::Open:
        OpenMessage(name, false);
        break;
    case frmMessageList::New:
        NewMessage(name);
        break;
    case frmMessageList::SaveAs:
        if (mMessage)
            SaveMessageAs(name);
        else
            mDialogCancelled = true;
        break;
    case frmMessageList::Delete: {
        // The names as the dialog chose them: a stored name may itself hold a ",".
        const QStringList chosen = mFrmOpen->SelectedNames();
        DeleteMessages(chosen.join(QLatin1Char(',')) == rawName ? chosen : QStringList{name});
        break;
    }
    default:
        break;
    }
}

void frmMain::NewMessage(const QString& name) {
    if (!AskSaveCurrent())
        return;
    if (name == gUntitledName)
        mMMSManager->DeleteMsg(name, false);
    std::shared_ptr<clsMessage> created = mMMSManager->CreateMsg(name);
    if (!created) {
        // The store refuses a name it could never save; the current message stays.
        MsgBox(text(QStringLiteral("STR_ILLEG_CHR")) + name, Vb::Exclamation,
               text(QStringLiteral("APP_PRODUCTNAME")));
        return;
    }
    mMessage = created;
    mSlide.reset();
    AddSlide(false, false);
    mChanged = false;
}

void frmMain::OpenMessage(const QString& name, bool askFirst) {
    if (askFirst && !AskSaveCurrent())
        return;
    mFrmOpen->hide();
    std::shared_ptr<clsMessage> opened;
    try {
        opened = mMMSManager->OpenMsg(name);
        if (!opened)
            raiseFailure(FailureNumber::InvalidProcedureCall, QStringLiteral("OpenMessage"));
        checkUsable(*opened);
    } catch (const Failure&) {
        // A damaged message is refused; the current one stays as it was.
        MsgBox(text(QStringLiteral("STR_OPEN_MSG_ERROR")) + QLatin1Char('\n') + name, Vb::Critical,
               text(QStringLiteral("STR_ERROR")));
        return;
    }
    ShowMessage(opened, false);
}

void frmMain::ShowMessage(std::shared_ptr<clsMessage> message, bool changed) {
    mMessage = std::move(message);
    mSlide.reset();
    LoadSlideToUI(1);
    if (!mSlide)
        AddSlide(false, false);
    DrawSlideStrip(false);
    UpdateTitle();
    UpdateTotalTime();
    mChanged = changed;
}

bool frmMain::SaveCurrentMessage(bool askName) {
    if (!mMessage)
        return true;
    StoreSlideFromUI();
    if (askName) {
        ShowSaveAsDialog();
        return true;
    }
    // A failed save is said, and the message stays marked as changed so that nothing is lost
    // without a question.
    if (!mMessage->SaveMessage()) {
        ShowSaveError();
        return false;
    }
    mChanged = false;
    return true;
}

void frmMain::SaveMessageAs(const QString& name) {
    if (!mMessage)
        return;
    // Untitled work is trashed by the next New and never listed: no message is saved so.
    if (!gUntitledName.isEmpty() && name.contains(gUntitledName)) {
        MsgBox(localTextPar(QStringLiteral("STR_NAME_UNTITLED"), {gUntitledName}), Vb::Exclamation,
               text(QStringLiteral("BTN_SAVEAS")));
        mDialogCancelled = true;
        return;
    }
    StoreSlideFromUI();
    // The message takes the new name only once it is saved under it.
    const bool saved =
        name == mMessage->name() ? mMessage->SaveMessage() : mMessage->SaveMessageAs(name);
    UpdateTitle();
    if (!saved) {
        // A save that did not happen counts as a cancelled dialog, so an exit waits for it.
        ShowSaveError();
        mDialogCancelled = true;
        return;
    }
    mChanged = false;
}

void frmMain::ShowSaveError() {
    MsgBox(text(QStringLiteral("STR_SAVE_MSG_ERROR")), Vb::Critical,
           text(QStringLiteral("STR_ERROR")));
}

bool frmMain::AskSaveCurrent() {
    if (!mMessage || !mChanged)
        return true;
    if (MsgBox(text(QStringLiteral("STR_SAVE_MSG")), Vb::YesNo | Vb::Question,
               text(QStringLiteral("BTN_SAVE"))) != Vb::Yes)
        return true;
    if (mMessage->name() == gUntitledName)
        return !ShowSaveAsDialog();
    return SaveCurrentMessage(false);
}

void frmMain::DeleteMessages(const QStringList& names) {
    for (const QString& name : names) {
        if (!mMessage || name != mMessage->name()) {
            mMMSManager->DeleteMsg(name, true);
        } else {
            MsgBox(text(QStringLiteral("STR_CANNOT_DELMSG")) + QStringLiteral("\n\n") + name,
                   Vb::Exclamation, text(QStringLiteral("STR_DELETE_MSG")));
        }
    }
}

// ---------------------------------------------------------------------------------------------
// Recovery and the end by the system

void frmMain::WriteRecoveryCopy() {
    StoreSlideFromUI();
    writeRecoveryCopy(*mMessage); // a copy that cannot be written leaves the previous one
}

void frmMain::TimerRecovery_Timer() {
    if (!mMessage)
        return;
    if (mChanged)
        WriteRecoveryCopy();
    else
        removeRecoveryCopy(); // saved since: nothing to recover
}

void frmMain::OfferRecoveryCopy() {
    if (!hasRecoveryCopy())
        return;
    // Asked over the window, once the splash of start-up has finished its timed life.
    if (frmSplash* splash = gSplashActive ? frmSplash::Instance() : nullptr) {
        connect(splash, &frmSplash::Unloaded, this, &frmMain::OfferRecoveryCopy,
                Qt::SingleShotConnection);
        return;
    }
    const int answer = MsgBox(localTextPar(QStringLiteral("STR_RECOVER_MSG"), {recoveryCopyName()}),
                              Vb::YesNo | Vb::Question, text(QStringLiteral("APP_PRODUCTNAME")));
    if (answer == Vb::Yes) {
        if (auto restored = restoreRecoveryCopy(*mMMSManager))
            ShowMessage(restored, true); // not saved yet
    }
    removeRecoveryCopy();
}

void frmMain::EndedBySystem() {
    if (mEndedBySystem)
        return;
    mEndedBySystem = true;
    // The message as it stands now: a question still open may go on to replace it.
    if (mMessage && mChanged)
        WriteRecoveryCopy();
    else
        removeRecoveryCopy();
    // The session is going away: the splash does not get to finish its timed life, and dialogs
    // still open are dismissed, since the end does not ask.
    if (frmSplash* splash = frmSplash::Instance())
        splash->Unload();
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* dialog = qobject_cast<QDialog*>(window); dialog && dialog->isVisible())
            dialog->reject();
    mTimerExitWait->start();
}

// ---------------------------------------------------------------------------------------------
// Slides

void frmMain::AddSlide(bool ask, bool storeFirst) {
    if (!mMessage || !mMessage->Slides())
        return;
    const bool yes =
        !ask || MsgBox(text(QStringLiteral("STR_ADD_NEW_SLIDE")), Vb::YesNo | Vb::Question,
                       text(QStringLiteral("STR_APPEND_SLIDE"))) == Vb::Yes;
    if (yes) {
        if (storeFirst)
            StoreSlideFromUI();
        const auto added = mMessage->Slides()->Add();
        LoadSlideToUI(added->Index());
        DrawSlideStrip(true);
        EnableSlideCommands(true);
        mChanged = true;
    }
    UpdateTotalTime();
    UpdateTitle();
}

void frmMain::StoreSlideFromUI() {
    if (!mSlide)
        return;
    ui->ctlPictureEditor1->RenderImage(ui->picPreview, 1);
    mSlide->setImage(ui->picPreview->pixmap().toImage());
    mSlide->setDuration(ui->ctlUpDown1->Value());
    const QString text = ui->txtMessage->toPlainText();
    mSlide->setText(text == ui->txtMessage->toolTip() ? QString() : text);
    mSlide->setSound(ui->lblSoundFile->toolTip());
    ui->ctlPictureEditor1->SaveDrawObjects(mSlide->DrawObjects());
}

void frmMain::LoadSlideToUI(int index) {
    mSlide = mMessage && mMessage->Slides() ? mMessage->Slides()->Item(index) : nullptr;
    if (mSlide) {
        ui->ctlPictureEditor1->LoadDrawObjects(mSlide->DrawObjects());
        LoadDuration();
        LoadTextAndSound();
        EnableSlideCommands(true);
    }
    RefreshPreviewImage();
}

void frmMain::RefreshPreviewImage() {
    ui->ctlPictureEditor1->RenderImage(ui->picPreview, 1);
    ShowSlideInPreview(mSlide ? mSlide->Image() : QImage());
}

void frmMain::ctlPictureEditor1_CanvasChanged() {
    ui->ctlPictureEditor1->RenderImage(ui->picPreview, 1);
    if (mSlide)
        mSlide->setImage(ui->picPreview->pixmap().toImage());
    ShowChangedSlide();
    mChanged = true;
    UpdateSizeEstimate();
}

void frmMain::LoadDuration() {
    const QSignalBlocker block(ui->ctlUpDown1);
    ui->ctlUpDown1->setValue(mSlide->Duration());
}

void frmMain::LoadTextAndSound() {
    const QString slideText = mSlide->Text();
    ui->txtMessage->setPlainText(slideText.isEmpty() ? ui->txtMessage->toolTip() : slideText);
    const QString sound = mSlide->Sound();
    if (sound.isEmpty()) {
        ui->lblSoundFile->clear();
        ui->lblSoundFile->setToolTip(QString());
        return;
    }
    QString caption = fileNameOf(sound);
    if (mSlide->SoundDuration() > 0)
        caption += QStringLiteral(" - ") +
                   Format(mSlide->SoundDuration() / 1000.0, QStringLiteral("#0.0s"));
    ui->lblSoundFile->setText(caption);
    ui->lblSoundFile->setToolTip(sound);
}

void frmMain::UpdateTitle() {
    ui->lblSlideNo->setText(mSlide ? text(QStringLiteral("MNU_SLIDE_DELETE_SLIDE")) +
                                         QLatin1Char(' ') + QString::number(mSlide->Index())
                                   : QStringLiteral("-----"));
    ui->lblMessageTitle->setText(mMessage ? mMessage->name() : QString());
}

std::int32_t frmMain::UpdateTotalTime() {
    std::int32_t total = 0;
    if (mMessage && mMessage->Slides())
        for (const auto& s : *mMessage->Slides())
            total += s->Duration();
    ui->lblMaxTime->setText(Format(total / 1000.0, QStringLiteral("#0.0s")));
    UpdateSizeEstimate();
    return total;
}

void frmMain::UpdateSizeEstimate() {
    // The size shares its place on the status strip with the name of a connected phone.
    ui->lblMessageSize->setVisible(ui->lblPhoneConnected->text().isEmpty());
    if (!mMessage) {
        ui->lblMessageSize->clear();
        return;
    }
    PublishSettings settings;
    settings.messageFolder = mMMSManager->GetMessagePath() + mMessage->name() + QLatin1Char('/');
    settings.format = pref(QStringLiteral("ImageFormat"), QStringLiteral("jpg"));
    const std::int64_t size = mSizeEstimator.Estimate(*mMessage, settings).total();
    const std::int64_t budget = maxMessageSize();
    const QString estimate = kilobytes(size);
    ui->lblMessageSize->setText(localTextPar(QStringLiteral("STR_SIZE_ESTIMATE"),
                                             {estimate.chopped(3), kilobytes(budget)}));
    ui->lblMessageSize->setToolTip(
        localTextPar(QStringLiteral("STR_SIZE_ESTIMATE_TIP"), {estimate, kilobytes(budget)}));
    QPalette palette = ui->lblMessageSize->palette();
    palette.setColor(QPalette::WindowText,
                     size > budget ? QColor(0xc0, 0x1c, 0x28) : QColor(0x2a, 0x33, 0x48));
    ui->lblMessageSize->setPalette(palette);
    QFont font = ui->lblMessageSize->font();
    font.setBold(size > budget);
    ui->lblMessageSize->setFont(font);
}

void frmMain::EnableSlideCommands(bool enabled) {
    // While the show or the slide's sound plays, the slide commands wait for its end.
    if (enabled && slideCommandsHeld())
        return;
    ui->cmdDeleteSlide->setEnabled(enabled);
    for (std::int32_t key : {MenuKey::SlideDeleteSlide, MenuKey::SlideDeleteImage,
                             MenuKey::SlideDeleteSound, MenuKey::SlideDeleteText})
        ui->ctlMainMenu1->MenuItemEnabled(key, enabled);
    ui->ctlSlideThumbs1->RightClickMenuEnabled(enabled);
}

// ---------------------------------------------------------------------------------------------
// The slide's sound and the recorder

void frmMain::connectSoundControls() {
    mTimerPlay = new QTimer(this);
    mTimerPlay->setObjectName(QStringLiteral("TimerPlay"));
    mTimerPlay->setInterval(200);
    connect(mTimerPlay, &QTimer::timeout, this, &frmMain::TimerPlay_Timer);
    connect(ui->bPlayAudio, &QAbstractButton::clicked, this, &frmMain::bPlayAudio_Click);
    connect(ui->bStopAudio, &QAbstractButton::clicked, this, &frmMain::bStopAudio_Click);
    connect(ui->bDeleteAudio, &QAbstractButton::clicked, this, [this] {
        if (mSlide)
            DeleteSlideSound(mSlide->Index());
    });
    ctlAudioRecorder* recorder = ui->ctlAudioRecorder1;
    connect(recorder, &ctlAudioRecorder::PathsWanted, this,
            &frmMain::ctlAudioRecorder1_PathsWanted);
    connect(recorder, &ctlAudioRecorder::SoundReady, this, &frmMain::AssignSound);
}

void frmMain::InitSoundTools() {
    ui->ctlAudioRecorder1->SetEnabled(hasWaveOutDevice());
    ui->ctlAudioRecorder1->setCaption(text(QStringLiteral("STR_AUDIO_REC_TITLE")));
}

void frmMain::ctlAudioRecorder1_PathsWanted(QString& archivePath, QString& messagePath) {
    const QString archive = preference(QStringLiteral("paths"), QStringLiteral("archive"),
                                       QStringLiteral("\\Archive\\"));
    archivePath = resolveAppPath(archive) + QStringLiteral("Sounds/");
    messagePath = mMessage ? mMessage->Path() : QString();
}

void frmMain::bPlayAudio_Click() {
    const QString sound = ui->lblSoundFile->toolTip();
    if (sound.isEmpty())
        return;
    mSoundLength = playFile(sound);
    mTimerPlay->start();
    ui->bPlayAudio->setPressed(true);
    for (GrButtonIII* button : {ui->bDeleteAudio, ui->cmdDuplicateSlide, ui->cmdAddNewSlide})
        button->setEnabled(false);
    EnableSlideCommands(false);
}

void frmMain::TimerPlay_Timer() {
    const std::int32_t position = getPlayPosition();
    if (position < 1) {
        mTimerPlay->stop();
        ui->lblSoundProgress->resize(0, ui->lblSoundProgress->height());
        ui->bPlayAudio->setPressed(false);
        ui->bDeleteAudio->setEnabled(true);
        EnableSlideCommands(true);
        ui->cmdDuplicateSlide->setEnabled(true);
        ui->cmdAddNewSlide->setEnabled(true);
        stopPlaying();
        return;
    }
    const int width =
        mSoundLength > 0
            ? static_cast<int>(qint64(ui->LblSoundProgressBack->width()) * position / mSoundLength)
            : 0;
    ui->lblSoundProgress->resize(std::min(width, ui->LblSoundProgressBack->width()),
                                 ui->lblSoundProgress->height());
}

void frmMain::bStopAudio_Click() {
    stopPlaying();
    ui->bDeleteAudio->setEnabled(true);
}

void frmMain::DeleteSlideSound(int index) {
    const auto slide = mMessage && mMessage->Slides() ? mMessage->Slides()->Item(index) : nullptr;
    if (slide) {
        slide->setSound(QString());
        if (slide == mSlide) {
            ui->lblSoundFile->clear();
            ui->lblSoundFile->setToolTip(QString());
        }
    }
    mChanged = true;
    if (slide)
        ui->ctlSlideThumbs1->DrawThumb(true, *slide);
    UpdateSizeEstimate();
}

void frmMain::AssignSound(QString& path, QString& fileName) {
    if (!mSlide)
        return;
    std::int32_t duration = 0;
    if (!path.isEmpty() && !fileName.isEmpty()) {
        if (!acceptSound(path + fileName, duration))
            return;
    } else {
        path.clear();
        fileName.clear();
    }
    ui->lblSoundFile->setText(fileName);
    ui->lblSoundFile->setToolTip(path + fileName);
    mSlide->setSound(path + fileName);
    if (duration > 0) {
        mSlide->setDuration(duration);
        mSlide->setSoundDuration(duration);
        ui->lblSoundFile->setText(fileName + QStringLiteral(" - ") +
                                  Format(duration / 1000.0, QStringLiteral("#0.0s")));
    }
    LoadDuration();
    ui->ctlSlideThumbs1->DrawThumb(true, *mSlide);
    UpdateTotalTime();
    EnableSlideCommands(true);
    mChanged = true;
}

// Whether `file` may go on the slide: recommended sounds silently, others after a question or
// not at all. `duration` takes the sound's length in milliseconds.
bool frmMain::acceptSound(const QString& file, std::int32_t& duration) {
    QString name = file;
    const QStringList info = getSoundInfo(name).split(QLatin1Char(';'));
    const QString type = info.value(0);
    const QString title = text(QStringLiteral("APP_PRODUCTNAME"));
    // A wave sound that could not be opened has no facts: it is refused as any unknown kind.
    const bool measured = info.size() >= 4;
    bool accepted = false;
    if (type == QLatin1String("WAV") && measured) {
        accepted = (info[2] == QLatin1String("8000") && info[3] == QLatin1String("16")) ||
                   MsgBox(text(QStringLiteral("STR_AUDIO_INFO1")) + QLatin1Char('\n') +
                              text(QStringLiteral("STR_AUDIO_INFO2")) + QStringLiteral("\n\n") +
                              text(QStringLiteral("STR_AUDIO_INFO3")) + QStringLiteral("\n\n") +
                              text(QStringLiteral("STR_AUDIO_FILE")) + QLatin1Char('\n') + file +
                              QLatin1Char('\n') + info[2] + QLatin1Char(' ') +
                              text(QStringLiteral("STR_SAMPLES_SEC")) + QLatin1Char(' ') + info[3] +
                              QLatin1Char(' ') + text(QStringLiteral("STR_BITSPER_SAMP")) +
                              QStringLiteral("\n\n") + text(QStringLiteral("STR_ADD_ANYWAY")),
                          Vb::YesNo | Vb::Information, title) == Vb::Yes;
    } else if (type == QLatin1String("MID") || type == QLatin1String("MIDI") ||
               type == QLatin1String("MI")) {
        accepted = true;
    } else if (type == QLatin1String("IMY")) {
        accepted = MsgBox(text(QStringLiteral("STR_AUDIO_INFO4")) + QStringLiteral("\n\n") +
                              text(QStringLiteral("STR_AUDIO_INFO5")) + QStringLiteral("\n\n\n") +
                              text(QStringLiteral("STR_AUDIO_FILE")) + QLatin1Char('\n') + file +
                              QStringLiteral("\n\n") + text(QStringLiteral("STR_ADD_AUDIO_Q")),
                          Vb::YesNo | Vb::Information, title) == Vb::Yes;
    } else {
        MsgBox(text(QStringLiteral("STR_AUDIO_INFO6")) + QStringLiteral("\n\n") + file +
                   QStringLiteral("\n\n") + text(QStringLiteral("STR_AUDIO_INFO3")),
               Vb::Information, title);
    }
    if (accepted)
        duration = info.value(1).toInt();
    return accepted;
}
