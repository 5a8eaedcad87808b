#pragma once

#include <QAbstractButton>
#include <QPixmap>
#include <array>

// The skinned push button: a face picture for each of the states normal, hot (mouse over it),
// pressed and disabled, stretched to the button's size around a fixed border, with the caption
// (its "text") and an optional icon drawn on it. Code can show the button pressed and read that
// state back, independently of the mouse.
class GrButtonIII : public QAbstractButton {
    Q_OBJECT
    Q_PROPERTY(bool pressed READ Pressed WRITE setPressed)

public:
    enum Face { FaceNormal = 0, FaceHot = 1, FacePressed = 2, FaceDisabled = 3 };

    explicit GrButtonIII(QWidget* parent = nullptr);

    // A null picture gives back the skin's default face for that state.
    void setFacePicture(Face face, const QPixmap& picture);
    QPixmap facePicture(Face face) const;
    // The border of the face pictures that is not stretched, in pixels.
    void setFaceBorder(int border);
    int FaceBorder() const { return mBorder; }

    // "Shown pressed": the button shows its pressed face until code releases it.
    bool Pressed() const { return mPressed; }
    void setPressed(bool pressed);

    // The face the button shows now.
    Face CurrentFace() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    // The look of a small button on the dark caption bar: see-through when resting, a light
    // glow under the mouse, amber when pressed, with the white glyph resources/title_<glyph>.png
    // ("close", "minimize", "dock", "undock"). Returns false when the skin lacks the glyph.
    bool setCaptionLook(const QString& glyph);

    // The skin's default face of a state: resources/button_<state>.png of the application
    // folder, or a drawn face when the file is missing.
    static QPixmap DefaultFace(Face face);

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    std::array<QPixmap, 4> mFaces;
    int mBorder = 6;
    bool mPressed = false;
    bool mHot = false;
};
