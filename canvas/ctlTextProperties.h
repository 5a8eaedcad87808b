#pragma once

#include "canvas/TextAttributes.h"

#include <QWidget>
#include <cstdint>
#include <memory>

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QTimer;
class GrButtonIII;
class clsXMLocalizer;
namespace Ui {
class ctlTextProperties;
}

// The text page of the tools: the user writes a text for the canvas and sets its font, size,
// style, colour and alignment. The panel shows the selected label's values; every change of look
// goes to the canvas at once as one Apply with all eight attributes, and bAdd asks for a new
// text with the panel's present values.
class ctlTextProperties : public QWidget {
    Q_OBJECT

public:
    static constexpr int kAlignCount = 3;
    static constexpr int kStartSizeIndex = 6;

    explicit ctlTextProperties(QWidget* parent = nullptr);
    ~ctlTextProperties() override;

    // Captions and tool tips from the localiser's table for this control; the text and the
    // look stay as they are. Without a localiser nothing changes.
    void TranslateControl(clsXMLocalizer* localizer);
    QString Caption() const;
    void setCaption(const QString& caption);
    // The page colour for the panel and its labels, the accent for the caption strip (both with
    // red in the low byte).
    void SetControlBackColor(std::int32_t back, std::int32_t fore);
    // Shows a label's values. Line ends of the caption become "\r\n"; a font name or size that
    // is not on its list leaves that list on its former entry. Ends with one Apply.
    void SetSelection(const TextAttributes& attributes);
    // The colour that the canvas's picker found: shown, and the picker button released.
    void SetTextColor(std::int32_t colour);
    void ApplyEnabled(bool enabled);
    bool IsApplyEnabled() const { return mApplyEnabled; }
    // Shows `colour` in the swatch and the sample, then applies the look.
    void DisplayColor(std::int32_t colour);

    // The values an Apply or AddText reports now.
    TextAttributes CurrentAttributes() const;
    // The text as the text box holds it, with "\r\n" line ends.
    QString Text() const;
    // The colour of the swatch.
    std::int32_t TextColor() const;
    int Alignment() const;

    QPlainTextEdit* txtObject() const;
    QComboBox* cboFontName() const;
    QComboBox* cboFontSize() const;
    GrButtonIII* cmdFontName() const;
    GrButtonIII* cmdFontSize() const;
    QLabel* lblFontName() const;
    QLabel* lblFontSize() const;
    QLabel* lblFontPreview() const;
    GrButtonIII* cmdBold() const;
    GrButtonIII* cmdItalic() const;
    GrButtonIII* cmdUnderline() const;
    GrButtonIII* cmdAlign(int index) const;
    QLabel* picTextColor() const;
    GrButtonIII* cmdTextColor() const;
    GrButtonIII* cmdColorPicker() const;
    GrButtonIII* bAdd() const;
    QLabel* lblCaption() const;
    QTimer* TimerComboClick() const { return mTimerComboClick; }
    // True while one of the font lists is on view.
    bool ComboOpen() const { return mComboOpen; }

    // The font families that can be shown here: the system's families whose font reads back
    // under the same name.
    static QStringList AvailableFontNames();
    // "\r\n" and bare "\r" become "\n", then every "\n" becomes "\r\n".
    static QString NormalisedLineEnds(const QString& text);

signals:
    void AddText(const TextAttributes& attributes);
    void Apply(const TextAttributes& attributes);
    void ColorPicker();
    void TextChanged(const QString& text);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fillFontLists();
    void drawGlyphs();
    void connectControls();
    void SetAlignment(int index);
    void UpdateLook();
    void showLook();
    void RaiseApply();
    void showFontValues();
    void showSwatch(std::int32_t colour);
    void openComboLater(QComboBox* combo);
    void TimerComboClick_Timer();
    void hideCombo(QComboBox* combo);
    void cboFontName_Click(int index);
    void cboFontSize_Click(int index);
    void cmdTextColor_Click();
    void cmdColorPicker_Click();
    void flipStyle(GrButtonIII* button);
    void txtObject_Change();
    int selectedSize() const;

    std::unique_ptr<Ui::ctlTextProperties> ui;
    QTimer* mTimerComboClick = nullptr;
    QComboBox* mOpenCombo = nullptr;
    QWidget* mPopups[2] = {nullptr, nullptr}; // the pop-up windows of the two lists
    bool mComboOpen = false;
    QString mText; // the text of the last TextChanged
    bool mApplyEnabled = false;
    int mAlignment = 0;
};
