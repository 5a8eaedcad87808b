#pragma once

#include "browse/clsMediaList.h"
#include "controls/BoxStatusSink.h"

#include <QFont>
#include <QImage>
#include <QWidget>
#include <cstdint>
#include <vector>

class QLabel;
class QMouseEvent;
class QPainter;
class QPaintEvent;
class QScrollBar;
class QTimer;
class GrButtonIII;
class clsXMLocalizer;

// The scrolling list of media tiles on a tool page: one file of a folder per tile (pictures or
// sounds), with buttons to add the chosen file to the slide, to browse for a file elsewhere and
// to move a file to the trash. Tiles count from 1.
//
// Pictures are read for the tiles without holding up the window: the tiles in view are read at
// once when the list loads, the rest in small batches from a zero-length timer on the window's
// own thread, tiles in view first, so the window keeps answering while a large folder fills.
class ctlBrowser : public QWidget {
    Q_OBJECT

public:
    enum ThumbType { PictureThumbs = 0, SoundThumbs = 1 };
    // The second value of ItemClick: a click on the chosen tile alternates these two.
    enum ClickAction { ActionPlay = 1, ActionStop = 2 };
    static constexpr int kDefaultThumbWidth = 96;
    static constexpr int kDefaultThumbHeight = 88;

    explicit ctlBrowser(QWidget* parent = nullptr);
    ~ctlBrowser() override;

    // Button captions and tool tips, and the file dialog's texts, in the language in use.
    void TranslateControl(clsXMLocalizer* localizer);
    void SetBrowserThumbType(int type);
    int BrowserThumbType() const { return mThumbType; }
    void UseExternalBrowser(bool flag) { mUseExternalBrowser = flag; }
    // Reads the folder again and redraws; the selection goes and bDelete is disabled.
    void LoadFiles();
    // The page colour for the control and its tiles, the accent for the caption strip (both
    // with red in the low byte).
    void SetControlBackColor(std::int32_t back, std::int32_t fore);
    int CaptionHeight() const;

    QString Path() const { return mPath; }
    void setPath(const QString& path) { mPath = path; }
    QString Caption() const;
    void setCaption(const QString& caption);
    bool CaptionVisible() const { return mCaptionVisible; }
    void setCaptionVisible(bool visible);
    bool ButtonsVisible() const { return mButtonsVisible; }
    void setButtonsVisible(bool visible);
    QString Files() const { return mFiles; }
    void setFiles(const QString& files) { mFiles = files; }
    QString Thumbs() const { return mThumbs; }
    void setThumbs(const QString& thumbs) { mThumbs = thumbs; }
    QFont TabFont() const { return mTabFont; }
    void setTabFont(const QFont& font);
    int ThumbWidth() const { return mThumbWidth; }
    // Taken when the drawing surface is at least that wide, else the surface's width.
    void setThumbWidth(int width);
    int ThumbHeight() const { return mThumbHeight; }
    void setThumbHeight(int height);
    // The file name of tile `index`; below 1 the full path of the last file browsed in.
    QString FileName(int index) const;
    QString RightClickMenu() const { return mRightClickMenu; }
    void setRightClickMenu(const QString& menu) { mRightClickMenu = menu; }

    int selectedIndex() const { return mSelectedIndex; }
    int hotIndex() const { return mHotIndex; }
    const clsMediaList& list() const { return mList; }
    // The tile at `y` on the drawing surface, 0 when there is none.
    int HitTest(int y) const;
    // Tiles whose picture is still to be read.
    int PendingThumbs() const { return mPending; }
    // The picture tile `index` shows (scaled to the tile), null when it has none (yet).
    QImage Thumbnail(int index) const;

    QLabel* lblCaption() const { return mLblCaption; }
    GrButtonIII* bAdd() const { return mBAdd; }
    GrButtonIII* bBrowse() const { return mBBrowse; }
    GrButtonIII* bDelete() const { return mBDelete; }
    QWidget* tabBack() const { return mTabBack; }
    QWidget* tabView() const { return mTabView; }
    QScrollBar* VScroll() const { return mVScroll; }

signals:
    // A click on the tile that is already chosen; `action` alternates ActionPlay, ActionStop.
    void ItemClick(int index, int action);
    void SelectionChanged(int index);
    // A double click on a tile, bAdd, or a file browsed in (index 0).
    void ItemChosen(int index);
    // bBrowse while the extended browser is in use.
    void BrowseWanted();
    // Every tile's picture has been read.
    void ThumbsLoaded();

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // What is known of one tile's picture.
    struct Thumb {
        enum State : unsigned char { Pending, Ready, Missing };
        QImage picture;
        QSize original; // the file's own size, shown under its name
        State state = Pending;
    };

    void makeChildren();
    void placeChildren();
    void drawView();
    void resetThumbs();
    void readVisibleThumbs();
    void TimerThumbs_Timer();
    int nextPendingThumb();
    void readThumb(int index);
    QRect pictureBox(int index) const;
    QRect tileRect(int index) const;
    std::pair<int, int> visibleTiles() const;
    void paintView(QPaintEvent* event);
    void paintTile(QPainter& painter, int index);
    void paintMarks(QPainter& painter);
    void tabView_MouseDown(QMouseEvent* event);
    void tabView_MouseMove(QMouseEvent* event);
    void tabView_MouseUp(QMouseEvent* event);
    void tabView_DblClick(QMouseEvent* event);
    void selectTile(int index);
    void setHotTile(int index);
    void VScroll_Change(int value);
    void bAdd_Click();
    void bBrowse_Click();
    QString browsePicture();
    QString browseSound();
    void bDelete_Click();
    QString dialogFilter(const QString& kindKey) const;

    clsMediaList mList;
    QString mPath;
    QString mFiles;
    QString mThumbs;
    QString mRightClickMenu;
    QString mBrowsedFile;
    QFont mTabFont;
    int mThumbWidth = kDefaultThumbWidth;
    int mThumbHeight = kDefaultThumbHeight;
    int mSelectedIndex = -1;
    int mHotIndex = 0;
    int mThumbType = PictureThumbs;
    bool mUseExternalBrowser = false;
    bool mCaptionVisible = true;
    bool mButtonsVisible = true;
    bool mPlaying = false; // the last ItemClick asked to play
    QColor mBackColor;
    QColor mAccentColor;

    std::vector<Thumb> mThumbCache;
    int mPending = 0;
    std::size_t mNextThumb = 0; // where the sequential fill goes on
    unsigned mGeneration = 0;   // counts list loads, so a read that outlives its list is dropped
    bool mReading = false;
    QTimer* mTimerThumbs = nullptr;
    BoxStatusSink mBoxes;

    QWidget* mPicCaption = nullptr;
    QLabel* mLblCaption = nullptr;
    QWidget* mPicButtons = nullptr;
    GrButtonIII* mBAdd = nullptr;
    GrButtonIII* mBBrowse = nullptr;
    GrButtonIII* mBDelete = nullptr;
    QWidget* mTabBack = nullptr;
    QWidget* mTabView = nullptr;
    QScrollBar* mVScroll = nullptr;
};
