#pragma once

#include "app/clsPreviewTiming.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <cstdint>
#include <memory>

class QImage;
class QTimer;
class clsMMSManager;
class clsMMSCommunication;
class frmDownloadMMS;
class clsMessage;
class clsSlide;
class frmMessageList;
class frmPreview;
class frmSettings;
class mmstimer;
namespace Ui {
class frmMain;
}

// The main window, hub of every command: it owns the current message and slide, the change
// flag, the message store manager and the message list dialog. A fixed-size, frameless window
// drawn on the skin picture; the user drags it by its caption, menu bar and labels.
class frmMain : public QWidget {
    Q_OBJECT
public:
    // Window sizes in twips.
    static constexpr int kWindowWidthUndocked = 9660;
    static constexpr int kWindowWidthDocked = 13290;
    static constexpr int kWindowHeight = 7320;

    explicit frmMain(QWidget* parent = nullptr);
    ~frmMain() override;

    // Translates the window; a language change never marks the document changed.
    Q_INVOKABLE void TranslateForm();

    // The window's state, for the windows that work with it.
    clsMessage* message() const { return mMessage.get(); }
    clsSlide* slide() const { return mSlide.get(); }
    bool changed() const { return mChanged; }
    void setChanged(bool changed) { mChanged = changed; }
    clsMMSManager* MMSManager() const { return mMMSManager.get(); }
    clsMMSCommunication* MMSCommunication() const { return mMMSCommunication.get(); }
    // The send window, once a message was sent.
    frmDownloadMMS* FrmDownloadMMS() const { return mFrmDownloadMMS; }
    QTimer* TimerExitWait() const { return mTimerExitWait; }
    // Writes the recovery copy of a changed message every minute.
    QTimer* TimerRecovery() const { return mTimerRecovery; }

    // Commands; the menu bar, the buttons and the dialogs end here.
    void ctlMainMenu1_MenuClick(std::int32_t key);
    bool RequestExit();
    void NewMessage(const QString& name);
    void OpenMessage(const QString& name, bool askFirst);
    // False when the message could not be written.
    bool SaveCurrentMessage(bool askName);
    void SaveMessageAs(const QString& name);
    // Offers to save a changed message; false when the command that asked must stop (the
    // Save As dialog was cancelled or the save failed).
    bool AskSaveCurrent();
    void DeleteMessages(const QStringList& names);
    void ShowOpenDialog();
    void ShowNewDialog();
    bool ShowSaveAsDialog();
    void ShowDeleteDialog();
    void mFrmOpen_SelectedMessage(int mode, const QString& name);
    void ApplySettings();
    // The Settings command: the settings window, shown modal, exists only while it is open.
    void ShowSettings();
    frmSettings* settingsWindow() const { return mFrmSettings; }
    void mfrmSettings_Apply(bool changed);
    void mfrmSettings_Ok(bool changed);
    // Sending to the phone (frmMainSend.cpp).
    void SendMessageToPhone();
    void ShowDownloadPicture();
    void MMSCommunication_Connect(bool connected, int connectionType, const QString& name);
    // The system ends the program: it ends as Exit does, without asking; a changed message is
    // kept as the recovery copy and the preferences are saved.
    void EndedBySystem();

    // Slides.
    void AddSlide(bool ask, bool storeFirst);
    void StoreSlideFromUI();
    void LoadSlideToUI(int index);
    void RefreshPreviewImage();
    void UpdateTitle();
    std::int32_t UpdateTotalTime();
    void EnableSlideCommands(bool enabled);
    // A new slide before or after the slide at `index`, after a question when `ask`; the new
    // slide becomes the current one. A duplicate is always a copy of the current slide.
    void InsertSlideBefore(int index, bool ask);
    void InsertSlideAfter(int index, bool ask);
    void DuplicateSlideBefore(int index, bool ask);
    void DuplicateSlideAfter(int index, bool ask);
    // Deletes the slide at `index`; the only slide of a message is emptied instead.
    void DeleteSlide(int index, bool ask);
    // Take the picture or the text off the slide at `index`.
    void DeleteSlideImage(int index);
    void DeleteSlideText(int index);
    // A picture from the extended picture browser: kept in the Work folder and put on the
    // canvas as the background. False, after a box, when it could not be written.
    bool mFrmPictureBrowser_AddPicture(const QImage& picture);

    // The slide's sound.
    // Checks the sound `path` + `fileName` (path ending with a separator) and gives it to the
    // current slide, whose duration becomes the sound's length; a sound of the wrong kind is
    // refused or asked about in a box. Two empty names take the sound off the slide.
    void AssignSound(QString& path, QString& fileName);
    void DeleteSlideSound(int index);
    // Plays the slide's sound, moving the progress under it until it ends.
    QTimer* TimerPlay() const { return mTimerPlay; }
    // Preview playback and the player window.
    void StartPreview();
    void StopPreview();
    void cmdPreview_Click();
    void SetPreviewDocked(bool docked);
    // The player window; made on first use.
    frmPreview* previewWindow();
    bool playing() const { return mPlaying; }
    bool docked() const { return mDocked; }
    const clsPreviewTiming& previewTiming() const { return mPreviewTiming; }
    mmstimer* TimerPreviewPlay() const { return mTimerPreviewPlay; }
    // One tick of the preview's timer, `clock` milliseconds after the show started.
    void TimerPreviewPlay_Timer(qint64 clock);

signals:
    // The window has run its unload steps and is going.
    void Unloaded();

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Form_Load();
    void Form_Activate();
    void Form_Unload();
    void Form_Resize();
    void InitMessageManager();
    void InitSkin();
    void InitTools();
    void InitCommunication();
    void MMSManager_ProsessingSlide(std::int16_t slideIndex, std::int16_t slideCount);
    void connectSendCommands();
    void TimerExitWait_Timer();
    void TimerRecovery_Timer();
    void WriteRecoveryCopy();
    void OfferRecoveryCopy();
    void connectTextPanel();
    void connectSoundControls();
    void InitSoundTools();
    void bPlayAudio_Click();
    void bStopAudio_Click();
    void TimerPlay_Timer();
    void ctlAudioRecorder1_PathsWanted(QString& archivePath, QString& messagePath);
    bool acceptSound(const QString& file, std::int32_t& duration);
    void connectBrowsers();
    // Makes `message` the current one, shown from its first slide.
    void ShowMessage(std::shared_ptr<clsMessage> message, bool changed);
    void ShowSaveError();
    void LoadDuration();
    void LoadTextAndSound();
    void txtMessage_Change();
    void ctlPictureEditor1_CanvasChanged();
    void ctlVerticalTab1_TabClick(int index);
    void placeToolPages();
    void styleLabels();
    bool askNewSlide() const;
    bool askDeleteSlide() const;

    // Slide commands (frmMainSlides.cpp).
    enum class NewSlidePlace { Before, After };
    struct NewSlide {
        int index;
        bool ask;
        NewSlidePlace place;
        bool duplicate;
    };
    void connectSlideCommands();
    bool ConfirmNewSlide(const NewSlide& request) const;
    void PlaceNewSlide(const NewSlide& request);
    void RemoveSlide(int index);
    void EmptyOnlySlide();
    bool showsTextPrompt() const;
    void ShowTextPromptLook();
    void txtMessage_Focus(bool entered);
    void ctlBrowserBackground_Browse();
    // Whether the show or the slide's sound plays, which holds the slide commands back.
    bool slideCommandsHeld() const;
    QString text(const QString& key) const;

    // The slide strip.
    void connectSlideStrip();
    void DrawSlideStrip(bool scrollToEnd);
    void ShowChangedSlide();
    void ctlSlideThumbs1_SlideClick(int index);
    void ctlSlideThumbs1_MenuClick(std::int32_t key, int index);

    // The preview.
    void connectPreview();
    void PreviewStep();
    void PlaySlide(int index);
    void ResetPreviewTime();
    void DisplayPreviewTime();
    void ShowSlideInPreview(const QImage& picture);
    void mFrmPreview_ClosePreview();
    void mFrmPreview_Dock(QWidget* picture, int left, int top);
    void InitPreviewSkin(const QString& section);
    void InitPreviewMode();
    void ShowPreviewInMode();
    void ShowFloatingPreview(bool waitForMainWindow = true);
    void FollowMainWindowState();

    std::unique_ptr<Ui::frmMain> ui;
    std::shared_ptr<clsMessage> mMessage;
    std::shared_ptr<clsSlide> mSlide;
    bool mChanged = false;
    bool mActivated = false;
    bool mDialogCancelled = false;
    bool mUnloading = false;
    bool mUnloaded = false;
    bool mEndedBySystem = false;
    int mWindowWidth = kWindowWidthUndocked;
    int mWindowHeight = kWindowHeight;
    bool mDocked = false;
    std::unique_ptr<clsMMSManager> mMMSManager;
    std::unique_ptr<clsMMSCommunication> mMMSCommunication;
    frmDownloadMMS* mFrmDownloadMMS = nullptr;
    bool mCommunicationReady = false;
    frmMessageList* mFrmOpen = nullptr;
    frmSettings* mFrmSettings = nullptr;
    QTimer* mTimerExitWait = nullptr;
    QTimer* mTimerRecovery = nullptr;
    QTimer* mTimerPlay = nullptr;
    std::int32_t mSoundLength = 0; // of the slide's sound that plays

    frmPreview* mFrmPreview = nullptr;
    mmstimer* mTimerPreviewPlay = nullptr;
    clsPreviewTiming mPreviewTiming;
    QElapsedTimer mPreviewClock;
    bool mPlaying = false;
    QPointer<QWidget> mDockedPicture;
    int mDockLeft = 0;
    int mDockTop = 0;
};
