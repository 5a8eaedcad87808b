#pragma once

#include <QWidget>
#include <cstdint>
#include <memory>

class QLabel;
class QProgressBar;
class QSlider;
class QTimer;
class GrButtonIII;
class ctlAudioRecorder;
namespace Ui {
class FrmAudioEdit;
}

// The trim window: two sliders set the start mark A and the end mark B of the sound that the
// recorder's player has open, and a bar follows the play position. The marks go to the
// recorder's player when a slider is let go and when the window closes.
class FrmAudioEdit : public QWidget {
    Q_OBJECT

public:
    static constexpr int kPollInterval = 200;

    // `panel` takes the marks; `owner` is the window this one stays above.
    FrmAudioEdit(ctlAudioRecorder* panel, QWidget* owner);
    ~FrmAudioEdit() override;

    // Shows the sound open under `alias` (the file `path`, `length` ms as the panel measured
    // it): both sliders span the length the service gives, A at 0 and B at the end. A sound that
    // does not answer its length, or has none, is said in a box and shows nothing.
    void SetAudioSource(const QString& path, std::int32_t length, const QString& alias);
    Q_INVOKABLE void TranslateForm();

    std::int32_t markStart() const { return mMarkStart; }
    std::int32_t markEnd() const { return mMarkEnd; }

    QSlider* SliderStart() const;
    QSlider* SliderEnd() const;
    QProgressBar* ProgressBar1() const;
    QLabel* lblStart() const;
    QLabel* lblEnd() const;
    QLabel* lblCurrent() const;
    QLabel* lblMaxTime() const;
    QLabel* lblInfo() const;
    QLabel* lblFileName() const;
    GrButtonIII* cmdClose() const;
    QTimer* TimerPlay() const { return mTimerPlay; }

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void SliderStart_Change(int value);
    void SliderEnd_Change(int value);
    void handOverMarks();
    void TimerPlay_Timer();
    void cmdClose_Click();
    QString soundFacts(std::int32_t length);

    std::unique_ptr<Ui::FrmAudioEdit> ui;
    ctlAudioRecorder* mPanel;
    QString mAlias = QStringLiteral("csound");
    std::int32_t mMarkStart = 0;
    std::int32_t mMarkEnd = 0;
    QTimer* mTimerPlay = nullptr;
};
