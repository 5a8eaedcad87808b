// The Qt boxes behind the dialog seam, answered by keys as a user would.
#include "controls/QtDialogResponder.h"
#include "support/ScriptedResponder.h"

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {
// Presses `key` on the next message box that shows, and tells its title.
void pressOnNextBox(Qt::Key key, QString* title) {
    auto* poll = new QTimer;
    QObject::connect(poll, &QTimer::timeout, poll, [poll, key, title] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return;
        *title = box->windowTitle();
        QTest::keyClick(box, key);
        poll->deleteLater();
    });
    poll->start(10);
}
} // namespace

TEST(QtDialogs, BoxesAnswerWithTheButtonTheKeysChoose) {
    ScriptedResponder outer;
    {
        const QtDialogResponder dialogs;
        EXPECT_EQ(dialogResponder(), &dialogs);
        const struct {
            int style;
            Qt::Key key;
            int answer;
        } cases[] = {{Vb::YesNoCancel | Vb::DefaultButton2, Qt::Key_Return, Vb::No},
                     {Vb::YesNoCancel | Vb::Question, Qt::Key_Escape, Vb::Cancel},
                     {Vb::OKOnly | Vb::Critical, Qt::Key_Escape, Vb::OK},
                     {Vb::YesNo, Qt::Key_Return, Vb::Yes}};
        for (const auto& c : cases) {
            QString title;
            pressOnNextBox(c.key, &title);
            EXPECT_EQ(MsgBox(QStringLiteral("Question"), c.style), c.answer) << c.style;
            EXPECT_EQ(title, QStringLiteral("Tessaly"));
        }
    }
    EXPECT_EQ(dialogResponder(), &outer);
    EXPECT_TRUE(outer.boxes.empty());
}
