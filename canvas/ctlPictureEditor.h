#pragma once

#include "canvas/TextAttributes.h"

#include <QColor>
#include <QImage>
#include <QMetaType>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <vector>

class QLabel;
class QTextEdit;
class QTimer;
class clsDrawObjects;

// A picture on the surface: drawn stretched over its own rectangle.
class CanvasPicture : public QWidget {
    Q_OBJECT
public:
    explicit CanvasPicture(QWidget* parent);
    void setPicture(const QImage& picture);
    const QImage& picture() const { return mPicture; }
    // Draws the picture at the object's place on `painter` (surface coordinates).
    void paintOn(QPainter& painter) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage mPicture;
};

// A text label on the surface; it sizes itself to its text when the text or style changes. Its
// ground does not show: the surface shows through around the letters.
class CanvasLabel : public QWidget {
    Q_OBJECT
public:
    explicit CanvasLabel(QWidget* parent);
    void setText(const TextAttributes& text);
    const TextAttributes& text() const { return mText; }
    void setCaption(const QString& caption);
    // The font as the slide shows it: the point size as pixels at 96 dots an inch.
    static QFont slideFont(const TextAttributes& text);
    static int alignmentFlags(int alignment);
    void paintOn(QPainter& painter) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void autoSize();
    TextAttributes mText;
};

// The composing surface of one slide: a background (a picture stretched over the surface, or a
// plain colour) with pictures and text labels over it, handles on the selected object, dragging,
// resizing, keys, in-place text editing, a colour picker and pop-up menus. The objects live here
// while the slide is on screen and go to and from the slide's clsDrawObjects by
// LoadDrawObjects and SaveDrawObjects.
class ctlPictureEditor : public QWidget {
    Q_OBJECT
public:
    explicit ctlPictureEditor(QWidget* parent = nullptr);
    ~ctlPictureEditor() override;

    // Public operations.
    void TranslateControl();
    void ClearPicture();
    void LoadDrawObjects(clsDrawObjects* objects);
    void SaveDrawObjects(clsDrawObjects* objects);
    // False (the canvas unchanged) when the file cannot be read as a picture.
    bool AddBackgroundImage(const QString& file);
    void BrowseAddBackground();
    // With `ask` the colour comes from the colour dialog; a cancel changes nothing.
    void SetBackgroundColor(std::int32_t colour, bool ask);
    void SetDefaultBackgroundColor();
    // False (nothing added) when the file cannot be read as a picture.
    bool AddImage(const QString& file, const QString& name);
    void BrowseAddPicture();
    void DelPicture(int index);
    void AddText(const TextAttributes& text);
    void ApplyText(const TextAttributes& text);
    void ChangeText(const QString& caption);
    void DelText(int index);
    // The surface as composed (background, objects back to front, no handles) at `size`.
    QImage RenderImage(const QSize& size, bool smooth);
    // The same into `target`'s picture, at the target's size; smooth when `smooth` is above 0.
    void RenderImage(QLabel* target, int smooth);
    void EnabledColorPicker();

    // State, for the owner and the tests.
    QWidget* surface() const { return mPicture1; }
    QWidget* selected() const { return mSelected; }
    const std::vector<std::int16_t>& stackOrder() const { return mStackOrder; }
    int imageCount() const { return mImageCount; }
    int textCount() const { return mTextCount; }
    CanvasPicture* image(int index) const;
    CanvasLabel* label(int index) const;
    const TextAttributes& nextTextDefaults() const { return mDefaults; }
    bool editing() const { return mEditing; }
    QTextEdit* textEditor() const { return mTxtEdit; }
    QLabel* handle(int index) const;
    QRectF outline() const { return mOutline; }
    bool outlineShown() const { return mOutlineShown; }
    QColor backColor() const { return mBackColor; }

signals:
    void TextSelected(const TextAttributes& text);
    void ImageSelected(int index, const QString& name);
    void NothingSelected();
    void CanvasChanged();
    void ColorPicked(std::int32_t colour);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Slots and stacking.
    void unloadAll();
    int takeSlot(bool picture);
    void growStackOrder();
    void MoveToFront(std::int16_t entry);
    void MoveToBack(std::int16_t entry);
    void BringToFront(QWidget* object);
    void SendToBack(QWidget* object);
    void restackWidgets();
    std::int16_t entryOf(QWidget* object) const;
    QWidget* objectOf(std::int16_t entry) const;
    QWidget* objectAt(const QPoint& surfacePos) const;
    int handleAt(const QPoint& surfacePos) const;
    bool isLive(std::int16_t entry) const;

    // Objects.
    CanvasPicture* AddPictureObject(const QImage& picture, const QString& name,
                                    const QString& file);
    CanvasLabel* AddTextObject(const QString& caption);
    void DuplicateImage();
    void DuplicateText();
    static QImage fallbackPicture();
    QImage readChosenPicture(const QString& file) const;

    // Background.
    void applyBackgroundPicture(const QImage& picture);
    void applyBackgroundColor(const QColor& colour);
    static QImage StretchCopy(const QImage& source, const QSize& target, bool smooth);
    QImage composeSurface() const;

    // Selection, dragging and keys.
    void SelectObject(QWidget* object);
    void HideNodes();
    void BeginMove(QWidget* object, const QPoint& grab);
    void ContinueMove(const QPoint& surfacePos);
    void ContinueResize(const QPoint& surfacePos);
    void setOutline(const QRectF& outline);
    void clearOutline();
    void surfaceMousePress(QMouseEvent* event);
    void surfaceMouseMove(QMouseEvent* event);
    void surfaceMouseRelease(QMouseEvent* event);
    void surfaceDoubleClick(QMouseEvent* event);
    void objectClick(QWidget* object);
    bool surfaceKeyPress(QKeyEvent* event);
    bool surfaceKeyRelease(QKeyEvent* event);
    void TimerAutoUpdate_Timer();
    void picColorPicker_MouseUp(const QPoint& pos);

    // Text editing.
    void BeginTextEdit();
    void EndTextEdit();
    void endEditIfOn();
    void placeTextEditor(const CanvasLabel* label);

    // Menus.
    int ShowMenu(const QStringList& captions);
    void ShowObjectMenu(void (ctlPictureEditor::*duplicate)(),
                        void (ctlPictureEditor::*remove)(int));
    void removeObject(QWidget* object, int& count);
    void ShowImageMenu();
    void ShowTextMenu();
    void ShowCanvasMenu();

    void changed();

    QWidget* mPicture1 = nullptr;
    QWidget* mOutlineLayer = nullptr;
    QLabel* mPicColorPicker = nullptr;
    QTextEdit* mTxtEdit = nullptr;
    QTimer* mTimerAutoUpdate = nullptr;
    std::vector<CanvasPicture*> mImages;
    std::vector<CanvasLabel*> mTexts;
    std::vector<QLabel*> mNodes;
    std::vector<std::int16_t> mStackOrder{0};
    int mImageCount = 0;
    int mTextCount = 0;
    QWidget* mSelected = nullptr;
    bool mEditing = false;
    bool mPendingNewText = false;
    bool mNotifyChanges = true;
    clsDrawObjects* mDrawObjects = nullptr;
    TextAttributes mDefaults;
    QImage mBackPicture; // already stretched to the surface; null for a plain colour
    QImage mBackSource;  // the background picture as loaded
    QColor mBackColor = Qt::white;
    QImage mPickerImage;

    int mActiveNode = -1;
    bool mMoving = false;
    bool mRightClickDone = false;
    bool mEditJustBegun = false; // the release after a double click belongs to it
    QWidget* mPressed = nullptr; // the object the button went down on, for the click after
    QRectF mOutline;
    QRectF mStart;
    bool mOutlineShown = false;
    QPoint mGrab;

    QStringList mMenuTexts; // captions fetched by TranslateControl
};
