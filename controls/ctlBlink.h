#pragma once

#include <QList>
#include <QWidget>

class QLabel;
class QTimer;

// The phone connection lamp. Picture 0 is the dark lamp; modes 1, 2 and 3 alternate between the
// pictures 1 and 2, 3 and 4, 5 and 6 every 400 ms, or stop on the second of the pair after the
// first change when blinking is off.
class ctlBlink : public QWidget {
    Q_OBJECT

public:
    static constexpr int kPictureCount = 7;

    explicit ctlBlink(QWidget* parent = nullptr);

    void Start(int mode, bool blink);

    int Mode() const { return mMode; }
    bool Blink() const { return mBlink; }
    // The index of the picture on view.
    int PictureShown() const { return mShown; }
    QTimer* TimerBlink() const { return mTimerBlink; }
    QLabel* imgBlink(int index) const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void TimerBlink_Timer();
    void showPicture(int index);

    QList<QLabel*> mImgBlink;
    QTimer* mTimerBlink = nullptr;
    int mMode = 0;
    bool mBlink = false;
    bool mPhase = false;
    int mImageA = 0;
    int mImageB = 0;
    int mShown = 0;
};
