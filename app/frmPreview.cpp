#include "app/frmPreview.h"
#include "ui_frmPreview.h"

#include "config/clsPropertiesXML.h"
#include "config/modConfig.h"
#include "controls/clsPopupMenu.h"
#include "controls/modGlyphs.h"
#include "controls/modSkin.h"
#include "controls/modTitleBar.h"
#include "controls/modTranslate.h"
#include "platform/AppPaths.h"
#include "platform/Twips.h"
#include "platform/VbFormat.h"
#include "platform/modText.h"

#include <QMouseEvent>
#include <QPainter>

namespace {

const QString kPreferences = QStringLiteral("preferences");
// The phone's screen where no phone picture lies behind the slide.
const QColor kScreenColor(30, 38, 56);

void setPreference(const QString& key, const QString& value) {
    if (gProperties())
        gProperties()->SetProp(kPreferences, key, value);
}

} // namespace

frmPreview::frmPreview(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::frmPreview>()) {
    ui->setupUi(this);
    setWindowFlag(Qt::Window, true);
    // The player area keeps its look wherever it is shown, also when lent to the main window.
    ui->picPreviewPlayer->setProperty("ownerForm", QStringLiteral("frmPreview"));
    ui->picPreviewPlayer->setAutoFillBackground(true);
    QPalette screen = ui->picPreviewPlayer->palette();
    screen.setColor(QPalette::Window, kScreenColor);
    ui->picPreviewPlayer->setPalette(screen);
    ui->imgPreview->setScaledContents(true);
    QPalette border = ui->imgPreview->palette();
    border.setColor(QPalette::WindowText, QColor(90, 100, 125));
    ui->imgPreview->setPalette(border);
    ui->imgPreview->installEventFilter(this);
    ui->lblCaption->installEventFilter(this);

    ui->cmdDock->setCaptionLook(QStringLiteral("dock"));
    ui->cmdMinimize->setCaptionLook(QStringLiteral("minimize"));
    ui->cmdClose->setCaptionLook(QStringLiteral("close"));
    ui->cmdPlay->setIcon(toolGlyph(QStringLiteral("play")));
    ui->cmdStop->setIcon(toolGlyph(QStringLiteral("stop")));

    connect(ui->cmdPlay, &QAbstractButton::clicked, this, &frmPreview::StartPlayer);
    connect(ui->cmdStop, &QAbstractButton::clicked, this, &frmPreview::StopPlayer);
    connect(ui->cmdDock, &QAbstractButton::clicked, this, &frmPreview::DockPreview);
    connect(ui->cmdMinimize, &QAbstractButton::clicked, this, &frmPreview::cmdMinimize_Click);
    connect(ui->cmdClose, &QAbstractButton::released, this, &frmPreview::cmdClose_Click);
    Form_Load();
}

frmPreview::~frmPreview() = default;

QWidget* frmPreview::picPreviewPlayer() const {
    return ui->picPreviewPlayer;
}
QLabel* frmPreview::picPhone() const {
    return ui->picPhone;
}
QLabel* frmPreview::imgPreview() const {
    return ui->imgPreview;
}
QLabel* frmPreview::lblTime() const {
    return ui->lblTime;
}
GrButtonIII* frmPreview::cmdPlay() const {
    return ui->cmdPlay;
}

void frmPreview::Form_Load() {
    setFixedSize(twipsToPixels(kWidth), twipsToPixels(kHeight));
    QFont caption = ui->lblCaption->font();
    caption.setPixelSize(15);
    caption.setBold(true);
    ui->lblCaption->setFont(caption);
    QPalette white = ui->lblCaption->palette();
    white.setColor(QPalette::WindowText, Qt::white);
    ui->lblCaption->setPalette(white);
    QFont time = ui->lblTime->font();
    time.setPixelSize(13);
    time.setBold(true);
    ui->lblTime->setFont(time);
    ui->lblTime->setAlignment(Qt::AlignCenter);
    TranslateForm();
    ui->lblTime->clear();
}

void frmPreview::TranslateForm() {
    const QString time = ui->lblTime->text();
    ::TranslateForm(this);
    ui->lblTime->setText(time);
    ShowTitleBar(this, false);
}

void frmPreview::InitPreview(const QString& section) {
    const QString backPicture =
        preference(section, QStringLiteral("PreviewBackPicture"), QString());
    const QString previewSection =
        preference(section, QStringLiteral("Preview"), QStringLiteral("Preview_Default"));
    // The window's picture may also be named with the phone it belongs to.
    const QString windowPicture =
        backPicture.isEmpty()
            ? preference(previewSection, QStringLiteral("PreviewBackPicture"), QString())
            : backPicture;
    if (!windowPicture.isEmpty()) {
        const QPixmap picture(resolveDataPath(windowPicture, false));
        if (!picture.isNull()) // a picture that cannot be read leaves the plain look
            setFormPicture(this, picture);
    }
    const QStringList size =
        preference(previewSection, QStringLiteral("PreviewSize"), QStringLiteral("21,67,164,124,1"))
            .split(QLatin1Char(','));
    loadPhone(preference(previewSection, QStringLiteral("PreviewBack"), QStringLiteral("None")));

    QWidget* player = ui->picPreviewPlayer;
    QLabel* phone = ui->picPhone;
    phone->move((player->width() - phone->width()) / 2, (player->height() - phone->height()) / 2);
    if (size.size() >= 4)
        ui->imgPreview->setGeometry(size[0].trimmed().toInt(), size[1].trimmed().toInt(),
                                    size[2].trimmed().toInt(), size[3].trimmed().toInt());
    const bool border = size.size() < 5 || size[4].trimmed() != QLatin1String("0");
    ui->imgPreview->setFrameShape(border ? QFrame::Box : QFrame::NoFrame);
    ui->imgPreview->setLineWidth(1);
    update();
}

void frmPreview::loadPhone(const QString& back) {
    QLabel* phone = ui->picPhone;
    if (back != QLatin1String("None")) {
        const QPixmap picture(resolveDataPath(back, false));
        phone->setPixmap(picture);
        if (!picture.isNull())
            phone->resize(picture.size());
        return;
    }
    phone->setGeometry(QRect(QPoint(0, 0), ui->picPreviewPlayer->size()));
    phone->setPixmap(QPixmap());
}

void frmPreview::DockPreview() {
    QWidget* player = ui->picPreviewPlayer;
    emit Dock(player, static_cast<std::int16_t>(player->x()),
              static_cast<std::int16_t>(player->y()));
}

void frmPreview::PlayerStarted() {
    ui->cmdPlay->setPressed(true);
}

void frmPreview::PlayerStopped() {
    ui->cmdPlay->setPressed(false);
    ui->lblTime->clear();
}

void frmPreview::DisplayPreviewTime(std::int32_t total, std::int32_t elapsed) {
    ui->lblTime->setText(Format(elapsed / 1000.0, QStringLiteral("#0.0")) + QLatin1Char('/') +
                         Format(total / 1000.0, QStringLiteral("#0.0")));
}

void frmPreview::cmdClose_Click() {
    setPreference(QStringLiteral("ShowPreview"), QStringLiteral("0"));
    emit ClosePreview();
    hide();
}

void frmPreview::cmdMinimize_Click() {
    emit ClosePreview();
    showMinimized();
}

QString frmPreview::PreviewMenuString() const {
    const bool noPicture = ui->imgPreview->pixmap().isNull();
    const bool loop = preference(kPreferences, QStringLiteral("PreviewLoop"),
                                 QStringLiteral("0")) != QLatin1String("0");
    return (noPicture ? QStringLiteral("!") : QString()) +
           localText(QStringLiteral("MNU_SLIDE_DOWNLOAD_PICTURE")) + QStringLiteral(";1,") +
           (loop ? QStringLiteral("#") : QString()) +
           localText(QStringLiteral("STR_PREVIEW_LOOP")) + QStringLiteral(";2");
}

void frmPreview::imgPreview_RightClick() {
    clsPopupMenu popup;
    switch (popup.PopupString(PreviewMenuString())) {
    case 1:
        emit DownloadPicture();
        break;
    case 2: {
        const bool loop = preference(kPreferences, QStringLiteral("PreviewLoop"),
                                     QStringLiteral("0")) != QLatin1String("0");
        setPreference(QStringLiteral("PreviewLoop"),
                      loop ? QStringLiteral("0") : QStringLiteral("1"));
        break;
    }
    default:
        break;
    }
}

void frmPreview::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QPixmap picture = formPicture(this);
    if (picture.isNull())
        painter.fillRect(rect(), QColor(0xef, 0xf2, 0xf8));
    else
        painter.drawPixmap(0, 0, picture);
}

void frmPreview::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        DragWindow(this, 1);
}

// A language chosen while the window was closed or docked reaches it when it shows again.
void frmPreview::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!event->spontaneous())
        TranslateForm();
}

void frmPreview::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && !(windowState() & Qt::WindowMinimized))
        setFixedSize(twipsToPixels(kWidth), twipsToPixels(kHeight));
}

bool frmPreview::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui->lblCaption && event->type() == QEvent::MouseButtonPress &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
        DragWindow(this, 1);
        return true;
    }
    if (watched == ui->imgPreview && event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::RightButton) {
        imgPreview_RightClick();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
