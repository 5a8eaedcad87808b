#include "app/SmokeRun.h"

#include "app/frmMain.h"
#include "controls/ctlMainMenu.h"
#include "document/clsMessage.h"
#include "platform/AppPaths.h"
#include "platform/modShared.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLabel>
#include <QSaveFile>
#include <QTimer>

SmokeRun::SmokeRun(QObject* parent, QString reportFile)
    : QObject(parent), mFile(std::move(reportFile)), mPrevious(dialogResponder()) {
    setDialogResponder(this);
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] {
        if (dialogResponder() == this)
            setDialogResponder(mPrevious);
    });
}

SmokeRun::~SmokeRun() {
    if (dialogResponder() == this)
        setDialogResponder(nullptr);
}

void SmokeRun::watch(frmMain* window) {
    mWindow = window;
    auto* poll = new QTimer(this);
    connect(poll, &QTimer::timeout, this, [this, poll] {
        if (gStarting || !mWindow->isVisible())
            return;
        poll->stop();
        run();
    });
    poll->start(20);
}

int SmokeRun::msgBox(const QString& text, int style, const QString& title) {
    mBoxes << title + QStringLiteral(": ") +
                  QString(text).replace(QLatin1Char('\n'), QLatin1Char(' '));
    return mExiting ? int(Vb::Yes) : msgBoxDefaultAnswer(style);
}

QStringList SmokeRun::menuCaptions() const {
    QStringList captions;
    if (const auto* menu = mWindow->findChild<ctlMainMenu*>())
        for (int i = 0; i < ctlMainMenu::kMenuCount; ++i)
            captions << (menu->MenuLabel(i) ? menu->MenuLabel(i)->text() : QString());
    return captions;
}

void SmokeRun::run() {
    QStringList lines;
    lines << QStringLiteral("title=") + mWindow->windowTitle();
    lines << QStringLiteral("message=") +
                 (mWindow->message() ? mWindow->message()->name() : QString());
    lines << QStringLiteral("menu=") + menuCaptions().join(QLatin1Char('|'));

    const QString name = qEnvironmentVariableIsEmpty("TESSALY_SMOKE_NAME")
                             ? QStringLiteral("Smoke test")
                             : qEnvironmentVariable("TESSALY_SMOKE_NAME");
    const qsizetype boxesBefore = mBoxes.size();
    mWindow->SaveMessageAs(name);
    const clsMessage* message = mWindow->message();
    const QString file =
        message ? joinPath(message->Path(), QStringLiteral("message.xml")) : QString();
    const bool saved =
        message && mBoxes.size() == boxesBefore && !mWindow->changed() && QFileInfo::exists(file);
    lines << QStringLiteral("file=") + file;
    lines << QStringLiteral("saved=") + (saved ? QStringLiteral("1") : QStringLiteral("0"));
    lines << QStringLiteral("boxes=") + QString::number(mBoxes.size());
    for (const QString& box : mBoxes)
        lines << QStringLiteral("box=") + box;
    write(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'));

    mExiting = true; // yes to the exit question
    mWindow->RequestExit();
}

void SmokeRun::write(const QString& text) const {
    QSaveFile out(mFile);
    const QByteArray bytes = text.toUtf8();
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit())
        qWarning("tessaly: cannot write the smoke report %s", qPrintable(mFile));
}
