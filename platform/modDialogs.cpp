#include "platform/modDialogs.h"

#include "platform/modShared.h"

#include <QColor>
#include <algorithm>
#include <utility>

namespace {

// The answerer without a display.
class DefaultAnswers final : public DialogResponder {
public:
    int msgBox(const QString&, int style, const QString&) override {
        return msgBoxDefaultAnswer(style);
    }
    bool chooseColor(QWidget*, std::int32_t&, int) override { return false; }
    bool getOpenFileName(QWidget*, QString&, const QString&, const QString&, const QString&,
                         const QString&) override {
        return false;
    }
    QString popupChoice(QMenu*, const QPoint&) override { return {}; }
};

DefaultAnswers& defaultAnswers() {
    static DefaultAnswers answers;
    return answers;
}

DialogResponder* gResponder = nullptr;

} // namespace

std::vector<int> msgBoxButtons(int style) {
    switch (style & 0x7) {
    case Vb::OKCancel:
        return {Vb::OK, Vb::Cancel};
    case Vb::AbortRetryIgnore:
        return {Vb::Abort, Vb::Retry, Vb::Ignore};
    case Vb::YesNoCancel:
        return {Vb::Yes, Vb::No, Vb::Cancel};
    case Vb::YesNo:
        return {Vb::Yes, Vb::No};
    case Vb::RetryCancel:
        return {Vb::Retry, Vb::Cancel};
    default:
        return {Vb::OK};
    }
}

int msgBoxDefaultAnswer(int style) {
    const std::vector<int> answers = msgBoxButtons(style);
    std::size_t index = 0;
    if (style & Vb::DefaultButton3)
        index = 2;
    else if (style & Vb::DefaultButton2)
        index = 1;
    return answers[std::min(index, answers.size() - 1)];
}

std::int32_t toVbColor(const QColor& colour) {
    return colour.red() | (colour.green() << 8) | (colour.blue() << 16);
}

QColor fromVbColor(std::int32_t colour) {
    return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
}

QString vbFilterToQt(const QString& filter) {
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList result;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString patterns = parts[i + 1];
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        QString name = parts[i];
        // A description that already shows its patterns keeps them once.
        const auto open = name.indexOf(QLatin1Char('('));
        if (open >= 0)
            name = name.left(open).trimmed();
        result << QStringLiteral("%1 (%2)").arg(name, patterns);
    }
    return result.join(QStringLiteral(";;"));
}

DialogResponder* setDialogResponder(DialogResponder* responder) {
    return std::exchange(gResponder, responder);
}

DialogResponder* dialogResponder() {
    return gResponder ? gResponder : &defaultAnswers();
}

int MsgBox(const QString& text, int style, const QString& title) {
    return dialogResponder()->msgBox(text, style, title.isEmpty() ? kAppTitle : title);
}

bool ChooseColor(QWidget* parent, std::int32_t& colour, int flags) {
    return dialogResponder()->chooseColor(parent, colour, flags);
}

bool GetOpenFileName(QWidget* parent, QString& fileName, const QString& title,
                     const QString& filter, const QString& defaultExt, const QString& initialDir) {
    return dialogResponder()->getOpenFileName(parent, fileName, title, filter, defaultExt,
                                              initialDir);
}

bool GetFolderName(QWidget* parent, QString& folder, const QString& title,
                   const QString& initialDir) {
    return dialogResponder()->getFolderName(parent, folder, title, initialDir);
}

QString PopupChoice(QMenu* menu, const QPoint& globalPos) {
    return dialogResponder()->popupChoice(menu, globalPos);
}
