#pragma once

#include "controls/clsPopupMenu.h"

#include <QColor>
#include <QPixmap>
#include <QStringList>
#include <QWidget>
#include <array>
#include <cstdint>

class QLabel;
class QTimer;
class clsXMLocalizer;

// The keys the menu bar raises by MenuClick, one per item. 12, 15 and 18 are the titles of the
// Slide menu's sub-menus and 26 is free: they are never raised.
namespace MenuKey {
enum : std::int32_t {
    FileNew = 1,
    FileOpen = 2,
    FileSave = 3,
    FileSaveAs = 4,
    FileDelete = 5,
    FileSettings = 6,
    FileSaveAsTemplate = 7,
    FileSaveAsSis = 8,
    FileOpenTemplate = 9,
    FileExit = 10,
    SlideAdd = 11,
    SlideInsert = 12,
    SlideInsertBefore = 13,
    SlideInsertAfter = 14,
    SlideDuplicate = 15,
    SlideDuplicateBefore = 16,
    SlideDuplicateAfter = 17,
    SlideDelete = 18,
    SlideDeleteSlide = 19,
    SlideDeleteImage = 20,
    SlideDeleteSound = 21,
    SlideDeleteText = 22,
    SlideBackground = 23,
    SlidePreview = 24,
    SlideDownloadPicture = 25,
    HelpAbout = 27,
};
} // namespace MenuKey

// The language key of the caption of `key`'s item ("MNU_FILE_NEW" for MenuKey::FileNew); "" for
// a number that names no item.
QString menuCaptionKey(std::int32_t key);

// The menu bar of the main window: three labels (File, Slide, Help) right-aligned on the skin.
// A click on a label opens its menu below it and reports the chosen item's key by MenuClick.
// Each menu is a menu string, rebuilt whenever a caption or an item's enabled state changes.
class ctlMainMenu : public QWidget {
    Q_OBJECT

public:
    static constexpr int kMenuCount = 3;
    static constexpr int kItemCount = 28; // captions and marks are indexed by key

    explicit ctlMainMenu(QWidget* parent = nullptr);
    ~ctlMainMenu() override;

    // Label captions MNU_FILE, MNU_SLIDE, MNU_HELP and all item captions from the language;
    // then the labels are placed and the menu strings rebuilt.
    void TranslateControl(clsXMLocalizer* localizer);
    // Shows the piece of `form`'s skin picture that lies under `control` (normally this bar).
    void SetBackground(QWidget* form, QWidget* control);

    // All three labels; the bar itself stays live so that it can still drag the window.
    void setMenusEnabled(bool enabled);
    bool Enabled() const { return mEnabled; }
    // Template items on the File menu from the next rebuild on (set it before TranslateControl).
    void EnableTemplates(bool enabled);
    // One label; an index outside 0..2 is ignored.
    void MenuEnabled(int menu, bool enabled);
    // The item of `key` shows disabled ("!") or enabled from the next opening.
    void MenuItemEnabled(std::int32_t key, bool enabled);

    // The menu string of label `menu` (0 File, 1 Slide, 2 Help); "" outside.
    QString MenuString(int menu) const;
    QLabel* MenuLabel(int menu) const;
    QColor NormalColor() const { return mNormalColor; }
    QColor HotColor() const { return mHotColor; }
    void setNormalColor(const QColor& colour);
    void setHotColor(const QColor& colour);
    QTimer* Timer1() const { return mTimer1; }
    QPixmap Background() const { return mBackground; }

    // Opens the menu of label `menu` as a click on it does.
    void ClickMenu(int menu);

signals:
    void MenuClick(std::int32_t key);
    void MenuMouseDown(int button, int shift, float x, float y);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void rebuildStrings();
    void placeLabels();
    void setLabelColor(QLabel* label, const QColor& colour);
    void trackHot(QLabel* hot);
    void timer1Tick();

    std::array<QLabel*, kMenuCount> mLabels{};
    std::array<QString, kMenuCount> mStrings;
    std::array<QString, kItemCount> mCaptions;
    std::array<QString, kItemCount> mMarks;
    QColor mNormalColor{0xff, 0xff, 0xff};
    QColor mHotColor{0xff, 0xff, 0x00};
    bool mTemplates = false;
    bool mEnabled = true;
    QTimer* mTimer1 = nullptr;
    clsPopupMenu* mPopup = nullptr;
    QPixmap mBackground;
};
