// The main window's slide commands: inserting, duplicating and deleting slides, taking a
// slide's picture, text or sound off, the strip's pop-up menu, the text box's prompt and the
// pictures the extended picture browser hands over.
#include "app/frmMain.h"
#include "ui_frmMain.h"

#include "browse/ctlBrowser.h"
#include "browse/ctlSlideThumbs.h"
#include "canvas/ctlPictureEditor.h"
#include "config/modConfig.h"
#include "controls/GrButtonIII.h"
#include "document/clsDrawObjects.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "platform/AppPaths.h"
#include "platform/modDialogs.h"
#include "platform/modText.h"

#include <QDateTime>
#include <QDir>
#include <QEvent>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QStyle>
#include <QTimer>
#include <functional>

namespace {

bool preferenceSaysYes(const char* key) {
    return preference(QStringLiteral("preferences"), QString::fromLatin1(key),
                      QStringLiteral("1")) == QLatin1String("1");
}

// Watches the text box: entering it, clicking into it or typing in it takes the prompt away
// (the box may keep the focus while another slide's prompt is loaded into it); leaving it
// empty brings the prompt back.
class PromptWatcher : public QObject {
public:
    PromptWatcher(QObject* parent, std::function<void(bool)> onEnter)
        : QObject(parent), mOnEnter(std::move(onEnter)) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        switch (event->type()) {
        case QEvent::FocusIn:
        case QEvent::MouseButtonPress:
            mOnEnter(true);
            break;
        case QEvent::KeyPress: {
            const QString typed = static_cast<QKeyEvent*>(event)->text();
            if (!typed.isEmpty() && typed.front().isPrint())
                mOnEnter(true);
            break;
        }
        case QEvent::FocusOut:
            mOnEnter(false);
            break;
        default:
            break;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void(bool)> mOnEnter;
};

} // namespace

bool frmMain::askDeleteSlide() const {
    return preferenceSaysYes("AskDeleteSlide");
}

void frmMain::connectSlideCommands() {
    connect(ui->cmdDuplicateSlide, &QAbstractButton::clicked, this, [this] {
        if (mMessage && mSlide)
            DuplicateSlideAfter(mSlide->Index(), askNewSlide());
    });
    connect(ui->cmdDeleteSlide, &QAbstractButton::clicked, this, [this] {
        if (mMessage && mSlide)
            DeleteSlide(mSlide->Index(), askDeleteSlide());
    });
    connect(ui->ctlBrowserBackground, &ctlBrowser::BrowseWanted, this,
            &frmMain::ctlBrowserBackground_Browse);
    auto* watcher = new PromptWatcher(this, [this](bool entered) { txtMessage_Focus(entered); });
    ui->txtMessage->installEventFilter(watcher);
    ui->txtMessage->viewport()->installEventFilter(watcher);
}

// ---------------------------------------------------------------------------------------------
// The text box

bool frmMain::showsTextPrompt() const {
    return ui->txtMessage->toPlainText() == ui->txtMessage->toolTip();
}

// The prompt is drawn paler than a text of the slide.
void frmMain::ShowTextPromptLook() {
    const bool prompt = showsTextPrompt();
    if (ui->txtMessage->property("prompt").toBool() == prompt)
        return;
    ui->txtMessage->setProperty("prompt", prompt);
    ui->txtMessage->style()->unpolish(ui->txtMessage);
    ui->txtMessage->style()->polish(ui->txtMessage);
}

// Entering the box takes the prompt away so that typing starts a text of its own; leaving it
// empty shows the prompt again. Neither changes what the slide stores, so neither marks the
// message changed.
void frmMain::txtMessage_Focus(bool entered) {
    if (entered ? !showsTextPrompt() : !ui->txtMessage->toPlainText().isEmpty())
        return;
    {
        const QSignalBlocker block(ui->txtMessage);
        ui->txtMessage->setPlainText(entered ? QString() : ui->txtMessage->toolTip());
    }
    ShowTextPromptLook();
}

void frmMain::txtMessage_Change() {
    // Any change of the text box marks the document, also the load of another slide's text.
    mChanged = true;
    ShowTextPromptLook();
    // A text typed or taken off makes the slide one that can be emptied again; the prompt
    // shown for a slide without text does not.
    if (!showsTextPrompt())
        EnableSlideCommands(true);
}

// ---------------------------------------------------------------------------------------------
// Adding slides

void frmMain::InsertSlideBefore(int index, bool ask) {
    PlaceNewSlide({index, ask, NewSlidePlace::Before, false});
}

void frmMain::InsertSlideAfter(int index, bool ask) {
    PlaceNewSlide({index, ask, NewSlidePlace::After, false});
}

void frmMain::DuplicateSlideBefore(int index, bool ask) {
    PlaceNewSlide({index, ask, NewSlidePlace::Before, true});
}

void frmMain::DuplicateSlideAfter(int index, bool ask) {
    PlaceNewSlide({index, ask, NewSlidePlace::After, true});
}

// The question before a slide is inserted or copied; true for Yes.
bool frmMain::ConfirmNewSlide(const NewSlide& request) const {
    if (!request.ask)
        return true;
    const bool before = request.place == NewSlidePlace::Before;
    const QString where = QString::number(request.index);
    QString question;
    if (request.duplicate)
        question = localTextPar(
            QString::fromLatin1(before ? "STR_DUPLICATE_BEFORE" : "STR_DUPLICATE_AFTER"),
            {QString::number(mSlide->Index()) + QLatin1Char('\n'), where});
    else
        question = text(QString::fromLatin1(before ? "STR_ADD_BEFORE" : "STR_ADD_AFTER")) + where +
                   QLatin1Char('?');
    return MsgBox(question, Vb::YesNo | Vb::Question, text(QStringLiteral("STR_ADD_SLIDE"))) ==
           Vb::Yes;
}

// A new slide next to the slide at `index`: empty, or a copy of the current slide wherever the
// copy goes.
void frmMain::PlaceNewSlide(const NewSlide& request) {
    if (!mMessage || !mMessage->Slides() || !mMessage->Slides()->Item(request.index))
        return;
    if (request.duplicate && !mSlide)
        return;
    if (!ConfirmNewSlide(request))
        return;
    StoreSlideFromUI();
    clsSlides& slides = *mMessage->Slides();
    const std::shared_ptr<clsSlide> added = request.place == NewSlidePlace::Before
                                                ? slides.AddBefore(request.index)
                                                : slides.AddAfter(request.index);
    if (!added)
        return;
    if (request.duplicate)
        mMessage->CopySlide(*added, *mSlide);
    ui->ctlSlideThumbs1->DrawThumbs(*mMessage);
    LoadSlideToUI(added->Index());
    ui->ctlSlideThumbs1->DrawThumb(true, *added);
    if (request.place == NewSlidePlace::After && added->Index() == slides.Count())
        ui->ctlSlideThumbs1->ScrollToEnd();
    UpdateTotalTime();
    UpdateTitle();
    EnableSlideCommands(true);
    mChanged = true;
}

// ---------------------------------------------------------------------------------------------
// Deleting

void frmMain::DeleteSlide(int index, bool ask) {
    if (mMessage && mMessage->Slides() && mMessage->Slides()->Item(index) &&
        (!ask ||
         MsgBox(text(QStringLiteral("STR_DELETE_SLIDE")) + QLatin1Char(' ') +
                    QString::number(index) + QLatin1Char('?'),
                Vb::YesNo | Vb::Question, text(QStringLiteral("STR_DELETE_SLIDE"))) == Vb::Yes)) {
        if (mMessage->Slides()->Count() >= 2)
            RemoveSlide(index);
        else
            EmptyOnlySlide();
        if (mSlide)
            ui->ctlSlideThumbs1->DrawThumb(true, *mSlide);
        mChanged = true;
    }
    UpdateTotalTime();
    UpdateTitle();
}

// One of several slides goes; the slide now at its place, or the new last one, is loaded
// without storing the slide that was current.
void frmMain::RemoveSlide(int index) {
    mMessage->DeleteSlide(index);
    ui->ctlSlideThumbs1->DrawThumbs(*mMessage);
    const int count = mMessage->Slides()->Count();
    LoadSlideToUI(index >= count ? count : index);
}

// The only slide stays and is emptied; its delete commands wait for the next change.
void frmMain::EmptyOnlySlide() {
    if (!mSlide)
        return;
    EnableSlideCommands(false);
    ui->ctlPictureEditor1->ClearPicture();
    RefreshPreviewImage();
    mSlide->setText(QString());
    mSlide->setSound(QString());
    LoadTextAndSound();
}

void frmMain::DeleteSlideImage(int index) {
    const auto slide = mMessage && mMessage->Slides() ? mMessage->Slides()->Item(index) : nullptr;
    if (slide) {
        if (clsDrawObjects* objects = slide->DrawObjects()) {
            objects->Clear();
            objects->setBackPicture(QString());
        }
        if (slide == mSlide) {
            ui->ctlPictureEditor1->ClearPicture();
        } else {
            slide->setImage(QImage());
            ui->ctlSlideThumbs1->DrawThumb(false, *slide);
        }
    }
    mChanged = true;
}

void frmMain::DeleteSlideText(int index) {
    const auto slide = mMessage && mMessage->Slides() ? mMessage->Slides()->Item(index) : nullptr;
    if (!slide)
        return;
    slide->setText(QString());
    // The box is left really empty, not showing the prompt.
    if (slide == mSlide)
        ui->txtMessage->setPlainText(QString());
    mChanged = true;
}

// ---------------------------------------------------------------------------------------------
// The strip's pop-up menu

bool frmMain::slideCommandsHeld() const {
    return mPlaying || (mTimerPlay && mTimerPlay->isActive());
}

void frmMain::ctlSlideThumbs1_MenuClick(std::int32_t key, int index) {
    // A click beside the tiles adds a slide even while the strip's menu is off: not while the
    // show or the slide's sound plays.
    if (slideCommandsHeld())
        return;
    const bool ask = askNewSlide();
    switch (key) {
    case ctlSlideThumbs::KeyAdd:
        AddSlide(ask, true);
        break;
    case ctlSlideThumbs::KeyInsertBefore:
        InsertSlideBefore(index, ask);
        break;
    case ctlSlideThumbs::KeyInsertAfter:
        InsertSlideAfter(index, ask);
        break;
    case ctlSlideThumbs::KeyDuplicateBefore:
        DuplicateSlideBefore(index, ask);
        break;
    case ctlSlideThumbs::KeyDuplicateAfter:
        DuplicateSlideAfter(index, ask);
        break;
    case ctlSlideThumbs::KeyDeleteSlide:
        DeleteSlide(index, askDeleteSlide());
        break;
    case ctlSlideThumbs::KeyDeleteImage:
        DeleteSlideImage(index);
        break;
    case ctlSlideThumbs::KeyDeleteSound:
        DeleteSlideSound(index);
        break;
    case ctlSlideThumbs::KeyDeleteText:
        DeleteSlideText(index);
        break;
    default:
        break;
    }
}

// ---------------------------------------------------------------------------------------------
// Pictures from the extended picture browser

// The picture is kept as a bitmap in the application folder's Work folder, named by the time,
// and becomes the background of the current slide. The files stay there.
bool frmMain::mFrmPictureBrowser_AddPicture(const QImage& picture) {
    const QString folder = joinPath(appFolder(), QStringLiteral("Work"));
    const QString file =
        joinPath(folder, QDateTime::currentDateTime().toString(QStringLiteral("yyMMdd_HHmmss")) +
                             QStringLiteral("B.bmp"));
    if (picture.isNull() || !QDir().mkpath(folder) || !picture.save(file, "BMP")) {
        MsgBox(text(QStringLiteral("STR_WORK_PICTURE_ERROR")) + QLatin1Char('\n') + file,
               Vb::Exclamation, text(QStringLiteral("APP_PRODUCTNAME")));
        return false;
    }
    ui->ctlPictureEditor1->AddBackgroundImage(file);
    mChanged = true;
    EnableSlideCommands(true);
    return true;
}

// With the extended browser chosen in the settings, a picture browsed in goes that browser's
// way: it is read here and handed over as a picture, kept in the Work folder.
void frmMain::ctlBrowserBackground_Browse() {
    const QString patterns = QStringLiteral("*.bmp;*.gif;*.jpg;*.jpeg");
    const QString filter = text(QStringLiteral("STR_BFILTER_PICTURE")) + QStringLiteral(" (") +
                           patterns + QStringLiteral(")|") + patterns + QLatin1Char('|') +
                           text(QStringLiteral("STR_BFILTER_ALL")) + QStringLiteral(" (*.*)|*.*");
    QString file;
    if (!GetOpenFileName(this, file, text(QStringLiteral("STR_BROWSER_PICTURE")), filter, QString(),
                         ui->ctlBrowserBackground->Path()))
        return;
    const QImage picture(file);
    if (picture.isNull()) {
        MsgBox(text(QStringLiteral("STR_NO_FILE_FOUND")) + QLatin1Char('\n') + file,
               Vb::Exclamation, text(QStringLiteral("APP_PRODUCTNAME")));
        return;
    }
    mFrmPictureBrowser_AddPicture(picture);
}
