#pragma once

#include <QList>
#include <QPixmap>
#include <QWidget>

class QLabel;
class clsXMLocalizer;

// The column of five tool tabs beside the tool pages: background, text, sound, symbols and
// recorder. The selected tab shows its raised face and its icon lifted by two pixels; a click
// reports the tab by TabClick. The pages belong to the owner.
class ctlVerticalTab : public QWidget {
    Q_OBJECT

public:
    static constexpr int kTabCount = 5;
    static constexpr int kTabWidth = 34;
    static constexpr int kTabPitch = 44;
    static constexpr int kTop = 4;

    explicit ctlVerticalTab(QWidget* parent = nullptr);

    // Acts as a click on tab `index` when it is 0..4, otherwise does nothing.
    void SetTab(int index);
    // Tooltips STR_BACKGROUND_TITLE, STR_TEXT_TITLE, STR_AUDIO_TITLE, STR_SYMBOLS_TITLE,
    // STR_AUDIO_REC_TITLE on each tab's three images.
    void TranslateControl(clsXMLocalizer* localizer);
    // Shows the piece of `form`'s skin picture that lies under `control` (normally this one).
    void SetBackground(QWidget* form, QWidget* control);

    // -1 until a tab is chosen.
    int SelectedIndex() const { return mSelected; }
    QLabel* ImgTab(int index) const { return at(mImgTab, index); }
    QLabel* ImgIcon(int index) const { return at(mImgIcon, index); }
    QLabel* ImgClick(int index) const { return at(mImgClick, index); }
    QPixmap Background() const { return mBackground; }

    QSize sizeHint() const override;

signals:
    void TabClick(int index);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    static QLabel* at(const QList<QLabel*>& list, int index) {
        return index >= 0 && index < list.size() ? list[index] : nullptr;
    }
    void ImgClick_Click(int index);

    QList<QLabel*> mImgTab;
    QList<QLabel*> mImgIcon;
    QList<QLabel*> mImgClick;
    int mSelected = -1;
    QPixmap mBackground;
};
