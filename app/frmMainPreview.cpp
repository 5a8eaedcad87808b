// The main window's slide strip and preview playback: the strip's events, the timed show of
// the slides, the player window and its docking into the main window.
#include "app/frmMain.h"
#include "ui_frmMain.h"

#include "app/frmPreview.h"
#include "audio/mmstimer.h"
#include "audio/modPlaySound.h"
#include "browse/ctlSlideThumbs.h"
#include "config/clsPropertiesXML.h"
#include "config/modConfig.h"
#include "controls/ctlMainMenu.h"
#include "controls/modGlyphs.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "platform/Twips.h"
#include "platform/VbFormat.h"

#include <QTimer>

namespace {

const QString kPreferences = QStringLiteral("preferences");

QString pref(const QString& key, const QString& defaultValue) {
    return preference(kPreferences, key, defaultValue);
}

void setPref(const QString& key, const QString& value) {
    if (gProperties())
        gProperties()->SetProp(kPreferences, key, value);
}

bool previewLoop() {
    return pref(QStringLiteral("PreviewLoop"), QStringLiteral("0")) != QLatin1String("0");
}

// The File and Slide menus of the menu bar.
constexpr int kFileMenu = 0;
constexpr int kSlideMenu = 1;

} // namespace

// ---------------------------------------------------------------------------------------------
// Slide strip

void frmMain::connectSlideStrip() {
    connect(ui->ctlSlideThumbs1, &ctlSlideThumbs::SlideClick, this,
            &frmMain::ctlSlideThumbs1_SlideClick);
    connect(ui->ctlSlideThumbs1, &ctlSlideThumbs::MenuClick, this,
            &frmMain::ctlSlideThumbs1_MenuClick);
    if (gLocalizer())
        ui->ctlSlideThumbs1->TranslateControl(gLocalizer());
}

// The strip anew from the message, the current slide's tile selected.
void frmMain::DrawSlideStrip(bool scrollToEnd) {
    if (!mMessage)
        return;
    ui->ctlSlideThumbs1->DrawThumbs(*mMessage);
    if (!mSlide)
        return;
    ui->ctlSlideThumbs1->DrawThumb(true, *mSlide);
    if (scrollToEnd && mMessage->Slides() && mSlide->Index() == mMessage->Slides()->Count())
        ui->ctlSlideThumbs1->ScrollToEnd();
}

// The canvas changed the current slide's picture: its tile and the idle preview follow.
void frmMain::ShowChangedSlide() {
    if (mSlide)
        ui->ctlSlideThumbs1->DrawThumb(true, *mSlide);
    ShowSlideInPreview(ui->picPreview->pixmap().toImage());
}

void frmMain::ctlSlideThumbs1_SlideClick(int index) {
    if (mSlide)
        StoreSlideFromUI();
    LoadSlideToUI(index);
    UpdateTitle();
}

// ---------------------------------------------------------------------------------------------
// Preview playback

void frmMain::connectPreview() {
    mTimerPreviewPlay = new mmstimer(this);
    mTimerPreviewPlay->setObjectName(QStringLiteral("TimerPreviewPlay"));
    mTimerPreviewPlay->setInterval(clsPreviewTiming::kTick);
    connect(mTimerPreviewPlay, &mmstimer::Timer, this,
            [this](qint64) { TimerPreviewPlay_Timer(mPreviewClock.elapsed()); });

    ui->cmdPreviewPlay->setIcon(toolGlyph(QStringLiteral("play")));
    ui->cmdPreviewStop->setIcon(toolGlyph(QStringLiteral("stop")));
    ui->lblTime->setAlignment(Qt::AlignCenter);
    QFont time = ui->lblTime->font();
    time.setPixelSize(13);
    time.setBold(true);
    ui->lblTime->setFont(time);
    connect(ui->cmdPreviewPlay, &QAbstractButton::clicked, this, &frmMain::StartPreview);
    connect(ui->cmdPreviewStop, &QAbstractButton::clicked, this, [this] {
        if (mPlaying)
            StopPreview();
    });
    connect(ui->cmdPreview, &QAbstractButton::clicked, this, &frmMain::cmdPreview_Click);
    connect(ui->cmdUndock, &QAbstractButton::clicked, this, [this] { SetPreviewDocked(false); });
}

frmPreview* frmMain::previewWindow() {
    if (mFrmPreview)
        return mFrmPreview;
    mFrmPreview = new frmPreview(this);
    connect(mFrmPreview, &frmPreview::StartPlayer, this, &frmMain::StartPreview);
    connect(mFrmPreview, &frmPreview::StopPlayer, this, &frmMain::StopPreview);
    connect(mFrmPreview, &frmPreview::ClosePreview, this, &frmMain::mFrmPreview_ClosePreview);
    connect(mFrmPreview, &frmPreview::Dock, this, &frmMain::mFrmPreview_Dock);
    connect(mFrmPreview, &frmPreview::DownloadPicture, this, &frmMain::ShowDownloadPicture);
    return mFrmPreview;
}

void frmMain::StartPreview() {
    mPreviewTiming.setLoop(previewLoop());
    if (mPlaying)
        return;
    ui->ctlSlideThumbs1->RightClickMenuEnabled(false);
    for (QWidget* button : {ui->cmdAddNewSlide, ui->cmdDuplicateSlide, ui->cmdDeleteSlide})
        button->setEnabled(false);
    ui->ctlMainMenu1->MenuEnabled(kFileMenu, false);
    ui->ctlMainMenu1->MenuEnabled(kSlideMenu, false);
    mPreviewTiming.Start(mPreviewTiming.Loop(), UpdateTotalTime());
    DisplayPreviewTime();
    ui->cmdPreviewPlay->setPressed(true);
    previewWindow()->PlayerStarted();
    mPlaying = true;
    mPreviewClock.start();
    mTimerPreviewPlay->setEnabled(true);
}

void frmMain::TimerPreviewPlay_Timer(qint64 clock) {
    // As many steps as the clock says are due: a late tick catches up instead of slowing the
    // show down.
    for (int steps = mPreviewTiming.StepsDue(clock); steps > 0 && mPlaying; --steps)
        PreviewStep();
}

void frmMain::PreviewStep() {
    const int count = mMessage && mMessage->Slides() ? mMessage->Slides()->Count() : -1;
    const bool first = mPreviewTiming.PlaySlide() == 0;
    switch (mPreviewTiming.Tick(count)) {
    case clsPreviewTiming::Step::Nothing:
        break;
    case clsPreviewTiming::Step::PlaySlide:
        if (!first)
            DisplayPreviewTime();
        PlaySlide(mPreviewTiming.PlaySlide());
        return;
    case clsPreviewTiming::Step::Wrap:
        // The loop preference is read again at the end of a pass: turned off during the pass,
        // it ends the show here.
        if (!previewLoop()) {
            StopPreview();
            return;
        }
        mPreviewTiming.Restart(true, mPreviewTiming.TotalTime());
        ResetPreviewTime();
        return;
    case clsPreviewTiming::Step::Stop:
        StopPreview();
        return;
    }
    DisplayPreviewTime();
}

void frmMain::PlaySlide(int index) {
    const auto slide = mMessage && mMessage->Slides() ? mMessage->Slides()->Item(index) : nullptr;
    if (!slide)
        return;
    mPreviewTiming.SlideStarted(slide->Duration());
    previewWindow()->imgPreview()->setPixmap(QPixmap::fromImage(slide->Image()));
    // A slide without a sound lets the sound of an earlier slide play on.
    if (!slide->Sound().isEmpty()) {
        stopPlaying();
        playFile(slide->Sound());
    }
}

void frmMain::StopPreview() {
    mTimerPreviewPlay->setEnabled(false);
    ui->cmdPreviewPlay->setPressed(false);
    stopPlaying();
    mPlaying = false;
    previewWindow()->PlayerStopped();
    RefreshPreviewImage();
    ui->ctlSlideThumbs1->RightClickMenuEnabled(true);
    for (QWidget* button : {ui->cmdAddNewSlide, ui->cmdDuplicateSlide, ui->cmdDeleteSlide})
        button->setEnabled(true);
    ui->ctlMainMenu1->MenuEnabled(kFileMenu, true);
    ui->ctlMainMenu1->MenuEnabled(kSlideMenu, true);
    ui->lblTime->clear();
}

void frmMain::ResetPreviewTime() {
    mPreviewTiming.ResetPreviewTime(UpdateTotalTime());
    DisplayPreviewTime();
}

void frmMain::DisplayPreviewTime() {
    const std::int32_t total = mPreviewTiming.TotalTime();
    const std::int32_t elapsed = mPreviewTiming.Elapsed();
    if (mFrmPreview && mFrmPreview->isVisible()) {
        mFrmPreview->DisplayPreviewTime(total, elapsed);
        return;
    }
    ui->lblTime->setText(Format(elapsed / 1000.0, QStringLiteral("#0.0")) + QLatin1Char('/') +
                         Format(total / 1000.0, QStringLiteral("#0.0")));
}

// The idle player shows the slide being edited.
void frmMain::ShowSlideInPreview(const QImage& picture) {
    if (mPlaying || !mFrmPreview || !(mDocked || mFrmPreview->isVisible()))
        return;
    // A slide not stored yet has no picture of its own: the canvas's rendering stands for it.
    mFrmPreview->imgPreview()->setPixmap(picture.isNull() ? ui->picPreview->pixmap()
                                                          : QPixmap::fromImage(picture));
}

void frmMain::cmdPreview_Click() {
    frmPreview* preview = previewWindow();
    if (!mDocked) {
        if (preview->isHidden()) {
            ShowPreviewInMode();
            RefreshPreviewImage();
        } else if (preview->isMinimized()) {
            preview->showNormal();
        }
    }
    ui->cmdPreview->setEnabled(false);
    ui->ctlMainMenu1->MenuItemEnabled(MenuKey::SlidePreview, false);
}

void frmMain::mFrmPreview_ClosePreview() {
    if (mPlaying)
        StopPreview();
    ui->cmdPreview->setEnabled(true);
    ui->ctlMainMenu1->MenuItemEnabled(MenuKey::SlidePreview, true);
}

// ---------------------------------------------------------------------------------------------
// The player window: skin, opening mode, docking

void frmMain::InitPreviewSkin(const QString& section) {
    previewWindow()->InitPreview(section);
    const QString previewSection =
        preference(section, QStringLiteral("Preview"), QStringLiteral("Preview_Default"));
    const QStringList size =
        preference(previewSection, QStringLiteral("PhoneImageSize"), QStringLiteral("160,120,0"))
            .split(QLatin1Char(','));
    if (size.size() >= 2)
        ui->picPreview->resize(size[0].trimmed().toInt(), size[1].trimmed().toInt());
    const bool border = size.size() < 3 || size[2].trimmed() != QLatin1String("0");
    ui->picPreview->setFrameShape(border ? QFrame::Box : QFrame::NoFrame);
}

void frmMain::InitPreviewMode() {
    if (pref(QStringLiteral("ShowPreview"), QStringLiteral("1")).toInt() != 1) {
        mWindowWidth = kWindowWidthUndocked;
        setFixedSize(twipsToPixels(mWindowWidth), twipsToPixels(mWindowHeight));
        return;
    }
    ShowPreviewInMode();
    // The preview is open: the command that opens it has nothing to do until it closes.
    ui->cmdPreview->setEnabled(false);
    ui->ctlMainMenu1->MenuItemEnabled(MenuKey::SlidePreview, false);
}

void frmMain::ShowPreviewInMode() {
    const QString mode = pref(QStringLiteral("PreviewMode"), QStringLiteral("0"));
    bool docked = true;
    if (mode == QLatin1String("1"))
        docked = false;
    else if (mode == QLatin1String("2"))
        docked =
            pref(QStringLiteral("PreviewModeSaved"), QStringLiteral("0")) == QLatin1String("1");
    SetPreviewDocked(docked);
}

void frmMain::SetPreviewDocked(bool docked) {
    if (docked) {
        previewWindow()->DockPreview();
    } else if (mDockedPicture) {
        if (mDockedPicture->parentWidget() != mFrmPreview) {
            mDockedPicture->setParent(mFrmPreview);
            mDockedPicture->move(mDockLeft, mDockTop);
            mDockedPicture->show();
            mWindowWidth = kWindowWidthUndocked;
            Form_Resize();
        }
        ShowFloatingPreview();
        mDockedPicture = nullptr;
        ui->cmdUndock->hide();
        ui->cmdClose->move(twipsToPixels(mWindowWidth) - 22, ui->cmdClose->y());
        ui->cmdMinimize->move(ui->cmdClose->x() - 18, ui->cmdMinimize->y());
        ui->ctlMainMenu1->move(ui->cmdMinimize->x() - ui->ctlMainMenu1->width() - 8,
                               ui->ctlMainMenu1->y());
        ui->ctlMainMenu1->SetBackground(this, ui->ctlMainMenu1);
    } else {
        mWindowWidth = kWindowWidthUndocked;
        setFixedSize(twipsToPixels(mWindowWidth), twipsToPixels(mWindowHeight));
        ShowFloatingPreview();
    }
    mDocked = docked;
    setPref(QStringLiteral("PreviewModeSaved"), docked ? QStringLiteral("1") : QStringLiteral("0"));
}

// The player window beside the main window, its top left corner at the main window's top right.
// At start-up the main window has no place yet: the player waits until it is on the screen.
void frmMain::ShowFloatingPreview(bool waitForMainWindow) {
    if (waitForMainWindow && !isVisible()) {
        QTimer::singleShot(0, this, [this] {
            if (!mDocked)
                ShowFloatingPreview(false);
        });
        return;
    }
    frmPreview* preview = previewWindow();
    preview->move(x() + twipsToPixels(mWindowWidth), y());
    preview->show();
}

void frmMain::mFrmPreview_Dock(QWidget* picture, int left, int top) {
    mDockedPicture = picture;
    mDockLeft = left;
    mDockTop = top;
    if (picture->parentWidget() != ui->picDockedPreview) {
        picture->setParent(ui->picDockedPreview);
        picture->move(0, 0);
        picture->show();
    }
    mDocked = true;
    setPref(QStringLiteral("PreviewModeSaved"), QStringLiteral("1"));
    mWindowWidth = kWindowWidthDocked;
    ui->cmdUndock->show();
    ui->cmdMinimize->move(ui->cmdUndock->x() + 18, ui->cmdMinimize->y());
    ui->cmdClose->move(ui->cmdMinimize->x() + 18, ui->cmdClose->y());
    ui->ctlMainMenu1->move(ui->cmdUndock->x() - ui->ctlMainMenu1->width() - 8,
                           ui->ctlMainMenu1->y());
    ui->ctlMainMenu1->SetBackground(this, ui->ctlMainMenu1);
    // Its window has given its screen away; the main window shows the time from now on.
    if (mFrmPreview)
        mFrmPreview->hide();
    Form_Resize();
}

// Undocked, the player window minimises and comes back with the main window.
void frmMain::FollowMainWindowState() {
    if (mDocked || !mFrmPreview || !mFrmPreview->isVisible())
        return;
    mFrmPreview->setWindowState((windowState() & Qt::WindowMinimized) ? Qt::WindowMinimized
                                                                      : Qt::WindowNoState);
}
