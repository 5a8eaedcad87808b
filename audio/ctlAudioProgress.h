#pragma once

#include <QString>
#include <QWidget>
#include <cstdint>

// The small time scale of the recorder and the trim window: a bar filled to the value, the
// value as text on it, and the scale's two end texts below. The bar is given in per cent of the
// scale; the value text is the scale's value at that point, written by the value format.
class ctlAudioProgress : public QWidget {
    Q_OBJECT

public:
    explicit ctlAudioProgress(QWidget* parent = nullptr);

    // The colour behind the control (red in the low byte) and the colour of the bar.
    void SetBackground(std::int32_t back, std::int32_t bar);
    // Moves the bar to `percent` (0 to 100, clamped) of the scale.
    void ShowProgress(double percent);
    // The pattern the value text is written by ("#0.0s").
    void SetValueFormat(const QString& format);
    // The scale in the unit of the value text.
    void SetMinMaxValue(double min, double max);
    // The texts shown at the two ends of the scale.
    void SetMinMaxValueText(const QString& minText, const QString& maxText);

    double Percent() const { return mPercent; }
    // The value text on view.
    QString ValueText() const;
    QString MinText() const { return mMinText; }
    QString MaxText() const { return mMaxText; }

    QSize sizeHint() const override { return {168, 34}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString mFormat = QStringLiteral("#0.0s");
    double mMin = 0;
    double mMax = 0;
    double mPercent = 0;
    QString mMinText;
    QString mMaxText;
    QColor mBack;
    QColor mBar;
};
