#include "support/ScriptedResponder.h"

#include <gtest/gtest.h>

namespace {
ScriptedResponder::MenuReader gMenuReader = nullptr;

template <typename T> std::optional<T> takeFront(std::deque<T>& queue) {
    if (queue.empty())
        return std::nullopt;
    T front = std::move(queue.front());
    queue.pop_front();
    return front;
}
} // namespace

void ScriptedResponder::setMenuReader(MenuReader reader) {
    gMenuReader = reader;
}

ScriptedResponder::ScriptedResponder() : mPrevious(setDialogResponder(this)) {}

ScriptedResponder::~ScriptedResponder() {
    setDialogResponder(mPrevious);
}

int ScriptedResponder::msgBox(const QString& text, int style, const QString& title) {
    boxes.push_back({text, style, title});
    return takeFront(boxAnswers).value_or(msgBoxDefaultAnswer(style));
}

bool ScriptedResponder::chooseColor(QWidget*, std::int32_t& colour, int) {
    ++colourRequests;
    const std::optional<std::int32_t> answer = takeFront(colours).value_or(std::nullopt);
    if (answer)
        colour = *answer;
    return answer.has_value();
}

bool ScriptedResponder::getOpenFileName(QWidget*, QString& fileName, const QString&, const QString&,
                                        const QString&, const QString&) {
    ++openFileRequests;
    const QString answer = takeFront(openFiles).value_or(QString());
    if (!answer.isEmpty())
        fileName = answer;
    return !answer.isEmpty();
}

bool ScriptedResponder::getFolderName(QWidget*, QString& folder, const QString&, const QString&) {
    ++folderRequests;
    const QString answer = takeFront(folders).value_or(QString());
    if (!answer.isEmpty())
        folder = answer;
    return !answer.isEmpty();
}

QString ScriptedResponder::popupChoice(QMenu* menu, const QPoint&) {
    if (!gMenuReader) {
        ADD_FAILURE() << "a pop-up menu was shown in a test program without the widgets support";
        return {};
    }
    const Popup popup = gMenuReader(menu);
    popups.push_back(popup);
    const QString key = takeFront(popupKeys).value_or(QString());
    if (key.isEmpty() || !popup.keys.contains(key) || popup.disabled.contains(key))
        return {};
    return key;
}
