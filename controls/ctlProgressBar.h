#pragma once

#include <QList>
#include <QWidget>

class QLabel;
class QTimer;

// A moving strip shown while something runs: 36 frames played in a loop every 80 ms.
class ctlProgressBar : public QWidget {
    Q_OBJECT

public:
    static constexpr int kFrameCount = 36;

    explicit ctlProgressBar(QWidget* parent = nullptr);

    // Shows the strip and runs it (true), or hides and stops it (false).
    void Start(bool on);

    // The index of the frame the next tick shows.
    int Frame() const { return mFrame; }
    // The frame on view.
    int FrameShown() const { return mShown; }
    QLabel* ImageShow() const { return mImageShow; }
    QLabel* Image1(int index) const;
    QTimer* ProgressTimer() const { return mProgressTimer; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void mProgressTimer_Timer();
    void showFrame(int frame);

    QList<QLabel*> mImage1;
    QLabel* mImageShow = nullptr;
    QTimer* mProgressTimer = nullptr;
    int mFrame = 0;
    int mShown = 0;
};
