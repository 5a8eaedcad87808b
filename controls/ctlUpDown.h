#pragma once

#include <QWidget>
#include <cstdint>
#include <memory>

class QLineEdit;
class QTimer;
class GrButtonIII;
namespace Ui {
class ctlUpDown;
}

// The duration field: a time in milliseconds shown as seconds ("#0.0s"), typed in or stepped by
// 100 ms with the two arrow buttons. A held arrow steps after half a second, then ten times a
// second. Leaving the field brings a value above MaxValue down to MaxValue.
class ctlUpDown : public QWidget {
    Q_OBJECT

public:
    explicit ctlUpDown(QWidget* parent = nullptr);
    ~ctlUpDown() override;

    // Milliseconds. Setting shows the value and raises no event.
    std::int32_t Value() const { return mValue; }
    void setValue(std::int32_t value);
    // The decimal separator the field accepts when typing ("," at start).
    QString DecSep() const { return mDecSep; }
    void setDecSep(const QString& separator);
    std::int32_t MaxValue() const { return mMaxValue; }
    void setMaxValue(std::int32_t value);

    // The field's text read as milliseconds: empty is 0, a trailing "s" is cut off, the rest is
    // a number of seconds in the user's locale. Text that is no number gives the current Value.
    std::int32_t ReadField() const;

    QLineEdit* txtValue() const;
    GrButtonIII* cmdUp() const;
    GrButtonIII* cmdDown() const;
    QTimer* TimerRepeat() const { return mTimerRepeat; }
    // 0 none, 1 up, 2 down.
    int RepeatDirection() const { return mDirection; }

signals:
    // The new value in milliseconds. It is passed by reference, but the control keeps its own
    // value: a change a handler makes to it has no effect.
    void ValueChanged(std::int32_t& value);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static QString formatted(std::int32_t value);
    // The value an arrow steps from: the field read, after the lost-focus step when the field
    // holds typed text.
    std::int32_t stepStart();
    void cmdUp_Click();
    void cmdDown_Click();
    void txtValue_LostFocus();
    void startRepeat(int direction);
    void stopRepeat();
    void timerRepeat_Timer();
    void raiseChanged(std::int32_t value);

    std::unique_ptr<Ui::ctlUpDown> ui;
    std::int32_t mValue = 0;
    std::int32_t mMaxValue = 300000;
    QString mDecSep = QStringLiteral(",");
    int mDirection = 0;
    QTimer* mTimerRepeat = nullptr;
};
