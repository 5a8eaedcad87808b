#pragma once

#include <QWidget>
#include <memory>

class QLabel;
class QTimer;
class clsWindowShrink;
namespace Ui {
class frmSplash;
}

// The greeting shown during start-up. Loading it sets gSplashActive; it stays in front for four
// seconds (41 ticks of TimerSplash), or until a click or CloseSplash, then shrinks away and
// unloads itself, which clears gSplashActive.
class frmSplash : public QWidget {
    Q_OBJECT

public:
    static constexpr int kLastTick = 40;

    // Loads the one splash window (creating it when there is none) and returns it.
    static frmSplash* Load();
    // The splash window while it is loaded, else nullptr.
    static frmSplash* Instance();

    ~frmSplash() override;

    // Starts the shrink at once and sets the counter to 35.
    void CloseSplash();
    // The version label: major.minor.revision.
    void TranslateForm();
    // Stops both timers, clears gSplashActive and closes the window for good.
    void Unload();

    int Counter() const { return mCounter; }
    bool Shrinking() const;
    QTimer* TimerSplash() const { return mTimerSplash; }
    QTimer* ShrinkTimer() const { return mShrinkTimer; }
    QLabel* Image1() const;
    QLabel* lblVersion() const;

signals:
    void Unloaded();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    frmSplash();
    void TimerSplash_Timer();
    void startShrink();
    void clicked();

    std::unique_ptr<Ui::frmSplash> ui;
    QTimer* mTimerSplash = nullptr;
    QTimer* mShrinkTimer = nullptr;
    clsWindowShrink* mShrink = nullptr;
    int mCounter = 0;
    bool mUnloaded = false;
};
