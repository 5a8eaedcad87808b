#pragma once

#include <QImage>
#include <QList>
#include <QWidget>
#include <array>
#include <cstdint>

class QScrollBar;
class clsMessage;
class clsSlide;
class clsXMLocalizer;

// One tile of the strip: the picture DrawThumb painted, kept until it is drawn again.
class SlideThumbTile : public QWidget {
    Q_OBJECT
public:
    explicit SlideThumbTile(QWidget* parent = nullptr) : QWidget(parent) {}
    QImage& surface() { return mSurface; }
    const QImage& surface() const { return mSurface; }

signals:
    void released(Qt::MouseButton button);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QImage mSurface;
};

// The strip of slides below the canvas: a row of square tiles, each with the slide's picture,
// its number, a mark for a sound and its duration, on a surface that a scroll bar slides left
// and right. It keeps no copy of the message: the owner draws it anew after any change of the
// slides' order or count (DrawThumbs) and after a change of one slide (DrawThumb).
//
// Children: PictureScroll (the wide surface), picSlideThumb (the tiles, made on demand, hidden
// when not in use, each with its 1-based "index" property) and HScroll.
class ctlSlideThumbs : public QWidget {
    Q_OBJECT
public:
    // Keys of the pop-up menu.
    enum MenuKey : std::int32_t {
        KeyAdd = 1,
        KeyInsertBefore = 3,
        KeyInsertAfter = 4,
        KeyDuplicateBefore = 6,
        KeyDuplicateAfter = 7,
        KeyDeleteSlide = 9,
        KeyDeleteImage = 10,
        KeyDeleteSound = 11,
        KeyDeleteText = 12,
    };
    // Tile body and unselected frame, selection frame, page behind the tiles (classic order:
    // blue, green, red).
    static constexpr std::int32_t kFrameColor = 0xD2BAAA;
    static constexpr std::int32_t kSelectionColor = 0x01DBFF;
    static constexpr std::int32_t kPageColor = 0xF8F2EF;

    explicit ctlSlideThumbs(QWidget* parent = nullptr);

    // The twelve texts of the pop-up menu.
    void TranslateControl(clsXMLocalizer* localizer);
    // Rebuilds the whole strip from the message's slides; the last tile ends selected.
    void DrawThumbs(const clsMessage& message);
    // Redraws the tile of `slide`; `selected` moves the selection frame to it.
    void DrawThumb(bool selected, const clsSlide& slide);
    // Shows the last tile at the right edge (only with more than five tiles).
    void ScrollToEnd();
    void RightClickMenuEnabled(bool enabled) { mMenuEnabled = enabled; }

    // The pop-up menu as a menu string; `onTile` false when it opened outside the tiles.
    QString MenuString(bool onTile) const;

    int TileCount() const { return mTilesInUse; }
    // 1-based; -1 when no tile is selected.
    int SelectedTile() const { return mSelected; }
    // Tile `index` (1-based), also one not in use; null beyond the tiles made so far.
    SlideThumbTile* Tile(int index) const;
    QWidget* PictureScroll() const { return mPictureScroll; }
    QScrollBar* HScroll() const { return mHScroll; }

signals:
    // A tile was clicked with the left button; the selection frame moves after this.
    void SlideClick(int index);
    // A key of the pop-up was chosen on tile `index` (0 outside the tiles); also key 1 with
    // index 1 for a left click on the strip's own surface beside the tiles.
    void MenuClick(std::int32_t key, int index);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Resize();
    SlideThumbTile* NewTile();
    void PaintFrame(int index, std::int32_t colour);
    void ShowPopup(int index);
    void Tile_Release(int index, Qt::MouseButton button);
    void Tile_Click(int index);
    void Surface_Release(bool own, Qt::MouseButton button);
    void HScroll_Change(int value);
    int LastTileRight() const;

    QWidget* mPictureScroll = nullptr;
    QScrollBar* mHScroll = nullptr;
    QList<SlideThumbTile*> mTiles;
    int mTilesInUse = 0;
    int mSelected = -1;
    bool mRightClickGuard = false;
    bool mMenuEnabled = true;
    std::array<QString, 12> mMenuText;
};
