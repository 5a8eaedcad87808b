#include "controls/frmAbout.h"

#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "controls/GrButtonIII.h"
#include "controls/clsWindowShrink.h"
#include "controls/modSkin.h"
#include "controls/modTitleBar.h"
#include "controls/modTranslate.h"
#include "platform/modDialogs.h"
#include "platform/modText.h"
#include "ui_frmAbout.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>

frmAbout::frmAbout(QWidget* parent) : QDialog(parent), ui(std::make_unique<Ui::frmAbout>()) {
    ui->setupUi(this);
    setWindowFlag(Qt::FramelessWindowHint, true);
    QPixmap picture = resourcePicture(QStringLiteral("about.png"));
    if (picture.isNull())
        picture = drawnCaptionPicture(size(), 100);
    setFormPicture(this, picture);
    setFixedSize(picture.size());

    mShrinkTimer = new QTimer(this);
    mShrinkTimer->setObjectName(QStringLiteral("shrinkTimer"));
    mShrinkTimer->setInterval(30);
    mShrink = new clsWindowShrink(this, mShrinkTimer);
    connect(mShrink, &clsWindowShrink::Finished, this, [this] { done(QDialog::Accepted); });

    connect(ui->cmdOk, &QAbstractButton::clicked, this, &frmAbout::CloseAbout);
    connect(ui->cmdSysInfo, &QAbstractButton::clicked, this, [this] { StartSysInfo(); });
    ui->lblTitle->installEventFilter(this);
    mTitleHome = ui->lblTitle->pos();

    // Form_Load
    if (gLocalizer())
        ::TranslateForm(this);
    ui->lblVersion->setText(AppVersionText());
    ui->lblTitle->setText(gLocalizer() ? gLocalizer()->GetString(QStringLiteral("APP_PRODUCTNAME"))
                                       : AppProductName());
    const QString legalKey = QStringLiteral("STR_ABOUT_LEGAL");
    const QString legal = gLocalizer() ? gLocalizer()->GetString(legalKey) : QString();
    ui->lblDisclaimer->setText(legal.isEmpty() || legal == legalKey ? AppLegalText() : legal);
}

frmAbout::~frmAbout() = default;

QLabel* frmAbout::lblTitle() const {
    return ui->lblTitle;
}
QLabel* frmAbout::lblVersion() const {
    return ui->lblVersion;
}
QLabel* frmAbout::lblDisclaimer() const {
    return ui->lblDisclaimer;
}
GrButtonIII* frmAbout::cmdOk() const {
    return ui->cmdOk;
}
GrButtonIII* frmAbout::cmdSysInfo() const {
    return ui->cmdSysInfo;
}

bool frmAbout::Shrinking() const {
    return mShrink->Running();
}

void frmAbout::CloseAbout() {
    // A second Escape or OK while the window folds changes nothing.
    if (Shrinking())
        return;
    // The fixed size would stop the window from folding.
    setMinimumSize(0, 0);
    setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    mShrink->Start();
}

void frmAbout::reject() {
    CloseAbout();
}

QStringList frmAbout::SysInfoPrograms() {
    return {QStringLiteral("hardinfo2"), QStringLiteral("hardinfo"), QStringLiteral("kinfocenter"),
            QStringLiteral("gnome-system-monitor"), QStringLiteral("xfce4-taskmanager")};
}

bool frmAbout::StartSysInfo() {
    for (const QString& name : SysInfoPrograms()) {
        const QString program = QStandardPaths::findExecutable(name);
        if (!program.isEmpty() && QProcess::startDetached(program, {}))
            return true;
    }
    MsgBox(localText(QStringLiteral("STR_NO_SYS_INFO")), Vb::OKOnly,
           localText(QStringLiteral("STR_SYS_INFO")));
    return false;
}

bool frmAbout::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui->lblTitle && event->type() == QEvent::MouseButtonPress) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        DragWindow(this, mouse->button() == Qt::LeftButton ? 1 : 0);
    }
    return QDialog::eventFilter(watched, event);
}

void frmAbout::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        CloseAbout();
        return;
    }
    QDialog::keyPressEvent(event);
}

void frmAbout::paintEvent(QPaintEvent*) {
    const QPixmap picture = formPicture(this);
    if (picture.isNull())
        return;
    QPainter painter(this);
    // The picture keeps its place on the screen while the window folds.
    painter.drawPixmap(ui->lblTitle->pos() - mTitleHome, picture);
}
