#include "canvas/ctlTextProperties.h"

#include "controls/GrButtonIII.h"
#include "controls/modTranslate.h"
#include "platform/modDialogs.h"
#include "platform/modText.h"
#include "ui_ctlTextProperties.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QTimer>
#include <cmath>

namespace {

// Any ascending list serves; the entry at kStartSizeIndex is the size of a new text.
constexpr int kFontSizes[] = {4, 5, 6, 7, 8, 9, 10, 11, 12, 14, 16, 18, 20, 24, 28, 36, 48, 72};
static_assert(std::size(kFontSizes) > ctlTextProperties::kStartSizeIndex);

// The list opens once the click that asked for it is over.
constexpr int kComboDelay = 10;

const QColor kGlyphColour(0x2a, 0x33, 0x48);
constexpr int kGlyphSize = 16;

// The text box and the sample follow the alignment of the pressed cmdAlign button: 0 left,
// 1 right, 2 centred.
Qt::Alignment horizontalAlignment(int index) {
    switch (index) {
    case 1:
        return Qt::AlignRight;
    case 2:
        return Qt::AlignHCenter;
    default:
        return Qt::AlignLeft;
    }
}

// The family the system gives for `name`, when it gives that family (case ignored); else "".
QString familyThatReadsBack(const QString& name) {
    if (name.isEmpty())
        return {};
    QFont font(name);
    const QString family = QFontInfo(font).family();
    return family.compare(name, Qt::CaseInsensitive) == 0 ? name : QString();
}

QPixmap glyphCanvas() {
    QPixmap picture(kGlyphSize, kGlyphSize);
    picture.fill(Qt::transparent);
    return picture;
}

QIcon letterGlyph(const QString& letter, bool bold, bool italic, bool underline) {
    QPixmap picture = glyphCanvas();
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::TextAntialiasing);
    QFont font(QStringLiteral("DejaVu Serif"));
    font.setPixelSize(14);
    font.setBold(bold);
    font.setItalic(italic);
    font.setUnderline(underline);
    painter.setFont(font);
    painter.setPen(kGlyphColour);
    painter.drawText(picture.rect(), Qt::AlignCenter, letter);
    return QIcon(picture);
}

// Four lines of text set left, right or centred.
QIcon alignGlyph(int index) {
    QPixmap picture = glyphCanvas();
    QPainter painter(&picture);
    const int lengths[] = {14, 9, 14, 9};
    for (int line = 0; line < 4; ++line) {
        const int length = lengths[line];
        int left = 1;
        if (index == 1)
            left = kGlyphSize - 1 - length;
        else if (index == 2)
            left = (kGlyphSize - length) / 2;
        painter.fillRect(left, 2 + line * 4, length, 2, kGlyphColour);
    }
    return QIcon(picture);
}

QIcon dropGlyph() {
    QPixmap picture = glyphCanvas();
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.moveTo(4, 6);
    path.lineTo(12, 6);
    path.lineTo(8, 11);
    path.closeSubpath();
    painter.fillPath(path, kGlyphColour);
    return QIcon(picture);
}

// Four colour spots: the colour dialog.
QIcon paletteGlyph() {
    QPixmap picture = glyphCanvas();
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QColor spots[] = {QColor(0xe0, 0x3a, 0x3a), QColor(0x3a, 0xa0, 0x3a),
                            QColor(0x3a, 0x6a, 0xe0), QColor(0xf0, 0xc0, 0x20)};
    for (int i = 0; i < 4; ++i) {
        painter.setBrush(spots[i]);
        painter.drawEllipse(QRectF(1 + (i % 2) * 7, 1 + (i / 2) * 7, 7, 7));
    }
    return QIcon(picture);
}

// A pipette: the colour picker on the slide.
QIcon pipetteGlyph() {
    QPixmap picture = glyphCanvas();
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kGlyphColour, 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(3, 13), QPointF(10, 6));
    painter.setPen(Qt::NoPen);
    painter.setBrush(kGlyphColour);
    painter.drawEllipse(QRectF(9, 1, 6, 6));
    return QIcon(picture);
}

void setBackColour(QWidget* widget, const QColor& colour) {
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Window, colour);
    widget->setPalette(palette);
}

void setForeColour(QWidget* widget, const QColor& colour) {
    QPalette palette = widget->palette();
    palette.setColor(QPalette::WindowText, colour);
    widget->setPalette(palette);
}

} // namespace

ctlTextProperties::ctlTextProperties(QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::ctlTextProperties>()) {
    ui->setupUi(this);
    const QList<GrButtonIII*> align = {ui->cmdAlign0, ui->cmdAlign1, ui->cmdAlign2};
    for (GrButtonIII* button : align)
        button->setObjectName(QStringLiteral("cmdAlign"));

    mTimerComboClick = new QTimer(this);
    mTimerComboClick->setObjectName(QStringLiteral("TimerComboClick"));
    mTimerComboClick->setInterval(kComboDelay);
    connect(mTimerComboClick, &QTimer::timeout, this, &ctlTextProperties::TimerComboClick_Timer);

    // The sample lies on the colour of a text field; its letters keep the text's colour.
    ui->lblFontPreview->setBackgroundRole(QPalette::Base);
    ui->lblFontPreview->setForegroundRole(QPalette::WindowText);
    drawGlyphs();
    fillFontLists();
    connectControls();
    DisplayColor(0);
    SetAlignment(0);
}

ctlTextProperties::~ctlTextProperties() = default;

QPlainTextEdit* ctlTextProperties::txtObject() const {
    return ui->txtObject;
}
QComboBox* ctlTextProperties::cboFontName() const {
    return ui->cboFontName;
}
QComboBox* ctlTextProperties::cboFontSize() const {
    return ui->cboFontSize;
}
GrButtonIII* ctlTextProperties::cmdFontName() const {
    return ui->cmdFontName;
}
GrButtonIII* ctlTextProperties::cmdFontSize() const {
    return ui->cmdFontSize;
}
QLabel* ctlTextProperties::lblFontName() const {
    return ui->lblFontName;
}
QLabel* ctlTextProperties::lblFontSize() const {
    return ui->lblFontSize;
}
QLabel* ctlTextProperties::lblFontPreview() const {
    return ui->lblFontPreview;
}
GrButtonIII* ctlTextProperties::cmdBold() const {
    return ui->cmdBold;
}
GrButtonIII* ctlTextProperties::cmdItalic() const {
    return ui->cmdItalic;
}
GrButtonIII* ctlTextProperties::cmdUnderline() const {
    return ui->cmdUnderline;
}
GrButtonIII* ctlTextProperties::cmdAlign(int index) const {
    switch (index) {
    case 0:
        return ui->cmdAlign0;
    case 1:
        return ui->cmdAlign1;
    case 2:
        return ui->cmdAlign2;
    default:
        return nullptr;
    }
}
QLabel* ctlTextProperties::picTextColor() const {
    return ui->picTextColor;
}
GrButtonIII* ctlTextProperties::cmdTextColor() const {
    return ui->cmdTextColor;
}
GrButtonIII* ctlTextProperties::cmdColorPicker() const {
    return ui->cmdColorPicker;
}
GrButtonIII* ctlTextProperties::bAdd() const {
    return ui->bAdd;
}
QLabel* ctlTextProperties::lblCaption() const {
    return ui->lblCaption;
}

QStringList ctlTextProperties::AvailableFontNames() {
    QStringList names;
    for (const QString& family : QFontDatabase::families())
        if (!QFontDatabase::isPrivateFamily(family) && !familyThatReadsBack(family).isEmpty())
            names << family;
    return names;
}

QString ctlTextProperties::NormalisedLineEnds(const QString& text) {
    QString normal = text;
    normal.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    normal.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    normal.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    return normal;
}

void ctlTextProperties::drawGlyphs() {
    const QSize size(kGlyphSize, kGlyphSize);
    const std::pair<GrButtonIII*, QIcon> glyphs[] = {
        {ui->cmdBold, letterGlyph(QStringLiteral("B"), true, false, false)},
        {ui->cmdItalic, letterGlyph(QStringLiteral("I"), false, true, false)},
        {ui->cmdUnderline, letterGlyph(QStringLiteral("U"), false, false, true)},
        {ui->cmdAlign0, alignGlyph(0)},
        {ui->cmdAlign1, alignGlyph(1)},
        {ui->cmdAlign2, alignGlyph(2)},
        {ui->cmdFontName, dropGlyph()},
        {ui->cmdFontSize, dropGlyph()},
        {ui->cmdTextColor, paletteGlyph()},
        {ui->cmdColorPicker, pipetteGlyph()}};
    for (const auto& [button, icon] : glyphs) {
        button->setIcon(icon);
        button->setIconSize(size);
        button->setFaceBorder(3);
    }
    ui->bAdd->setFaceBorder(4);
}

void ctlTextProperties::fillFontLists() {
    ui->cboFontName->addItems(AvailableFontNames());
    ui->cboFontName->setCurrentIndex(-1);
    for (int size : kFontSizes)
        ui->cboFontSize->addItem(QString::number(size));
    ui->cboFontSize->setCurrentIndex(kStartSizeIndex);

    // A new text starts in the program's usual slide font.
    QString family = familyThatReadsBack(QStringLiteral("Verdana"));
    if (family.isEmpty())
        family = familyThatReadsBack(QStringLiteral("DejaVu Sans"));
    if (!family.isEmpty()) {
        QFont font = ui->txtObject->font();
        font.setFamily(family);
        ui->txtObject->setFont(font);
    }
    // The lists are hidden until their button asks; a list that closes goes away again.
    QComboBox* lists[] = {ui->cboFontName, ui->cboFontSize};
    for (int i = 0; i < 2; ++i) {
        lists[i]->hide();
        mPopups[i] = lists[i]->view()->window();
        mPopups[i]->installEventFilter(this);
        lists[i]->installEventFilter(this);
    }
}

void ctlTextProperties::connectControls() {
    connect(ui->txtObject, &QPlainTextEdit::textChanged, this,
            &ctlTextProperties::txtObject_Change);
    connect(ui->cmdFontName, &QAbstractButton::clicked, this,
            [this] { openComboLater(ui->cboFontName); });
    connect(ui->cmdFontSize, &QAbstractButton::clicked, this,
            [this] { openComboLater(ui->cboFontSize); });
    connect(ui->cboFontName, &QComboBox::activated, this, &ctlTextProperties::cboFontName_Click);
    connect(ui->cboFontSize, &QComboBox::activated, this, &ctlTextProperties::cboFontSize_Click);
    for (GrButtonIII* button : {ui->cmdBold, ui->cmdItalic, ui->cmdUnderline})
        connect(button, &QAbstractButton::clicked, this, [this, button] { flipStyle(button); });
    for (int i = 0; i < kAlignCount; ++i)
        connect(cmdAlign(i), &QAbstractButton::clicked, this, [this, i] { SetAlignment(i); });
    connect(ui->cmdTextColor, &QAbstractButton::clicked, this,
            &ctlTextProperties::cmdTextColor_Click);
    connect(ui->cmdColorPicker, &QAbstractButton::clicked, this,
            &ctlTextProperties::cmdColorPicker_Click);
    connect(ui->bAdd, &QAbstractButton::clicked, this,
            [this] { emit AddText(CurrentAttributes()); });
}

// ---------------------------------------------------------------------------------------------
// Public operations

void ctlTextProperties::TranslateControl(clsXMLocalizer* localizer) {
    if (!localizer)
        return;
    // The text box and the sample show the text's own font, never the language's.
    const QFont textFont = ui->txtObject->font();
    const QFont sampleFont = ui->lblFontPreview->font();
    TranslateForm(*localizer, this);
    ui->txtObject->setFont(textFont);
    ui->lblFontPreview->setFont(sampleFont);
    showFontValues();
}

QString ctlTextProperties::Caption() const {
    return ui->lblCaption->text();
}

void ctlTextProperties::setCaption(const QString& caption) {
    ui->lblCaption->setText(caption);
}

void ctlTextProperties::SetControlBackColor(std::int32_t back, std::int32_t fore) {
    setAutoFillBackground(true);
    setBackColour(this, fromVbColor(back));
    for (QLabel* label : {ui->lblFontName, ui->lblFontSize})
        setBackColour(label, fromVbColor(back));
    setBackColour(ui->lblCaption, fromVbColor(fore));
}

void ctlTextProperties::SetSelection(const TextAttributes& attributes) {
    ui->txtObject->setPlainText(NormalisedLineEnds(attributes.caption));
    ui->cmdBold->setPressed(attributes.bold);
    ui->cmdItalic->setPressed(attributes.italic);
    ui->cmdUnderline->setPressed(attributes.underline);
    showSwatch(attributes.colour);
    // As SetAlignment does it, but without its UpdateLook: the lists below are not in place
    // yet, and the one Apply comes last.
    if (attributes.alignment >= 0 && attributes.alignment < kAlignCount) {
        for (int i = 0; i < kAlignCount; ++i)
            cmdAlign(i)->setPressed(i == attributes.alignment);
        mAlignment = attributes.alignment;
    }
    // Family names are the same in any case, as the font's read-back check has it.
    const int name = ui->cboFontName->findText(attributes.fontName, Qt::MatchFixedString);
    if (name >= 0)
        ui->cboFontName->setCurrentIndex(name);
    const int size = ui->cboFontSize->findText(QString::number(attributes.size));
    if (size >= 0)
        ui->cboFontSize->setCurrentIndex(size);
    UpdateLook();
}

void ctlTextProperties::SetTextColor(std::int32_t colour) {
    DisplayColor(colour);
    ui->cmdColorPicker->setPressed(false);
}

void ctlTextProperties::ApplyEnabled(bool enabled) {
    mApplyEnabled = enabled;
}

void ctlTextProperties::DisplayColor(std::int32_t colour) {
    showSwatch(colour);
    UpdateLook();
}

void ctlTextProperties::showSwatch(std::int32_t colour) {
    const int red = colour & 0xFF;
    const int green = (colour >> 8) & 0xFF;
    const int blue = (colour >> 16) & 0xFF;
    setBackColour(ui->picTextColor, QColor(red, green, blue));
    ui->picTextColor->setToolTip(QStringLiteral("RGB(%1,%2,%3)").arg(red).arg(green).arg(blue));
    setForeColour(ui->lblFontPreview, QColor(red, green, blue));
}

TextAttributes ctlTextProperties::CurrentAttributes() const {
    const QFont sample = ui->lblFontPreview->font();
    TextAttributes attributes;
    attributes.caption = Text();
    attributes.fontName = ui->txtObject->font().family();
    attributes.size = static_cast<std::int16_t>(ui->cboFontSize->currentText().toInt());
    attributes.colour = TextColor();
    attributes.bold = sample.bold();
    attributes.italic = sample.italic();
    attributes.underline = sample.underline();
    attributes.alignment = static_cast<std::int16_t>(mAlignment);
    return attributes;
}

QString ctlTextProperties::Text() const {
    // A multi-line text box of the program holds its lines with "\r\n" between them.
    return NormalisedLineEnds(ui->txtObject->toPlainText());
}

std::int32_t ctlTextProperties::TextColor() const {
    return toVbColor(ui->picTextColor->palette().color(QPalette::Window));
}

int ctlTextProperties::Alignment() const {
    return mAlignment;
}

// ---------------------------------------------------------------------------------------------
// The look

void ctlTextProperties::SetAlignment(int index) {
    for (int i = 0; i < kAlignCount; ++i)
        cmdAlign(i)->setPressed(false);
    cmdAlign(index)->setPressed(true);
    mAlignment = index;
    UpdateLook();
}

void ctlTextProperties::UpdateLook() {
    showLook();
    RaiseApply();
}

// Steps 1 and 2 of every change: the text box and the sample take the chosen look.
void ctlTextProperties::showLook() {
    // A name the system does not know leaves the font as it was.
    const QString family = familyThatReadsBack(ui->cboFontName->currentText());
    QFont textFont = ui->txtObject->font();
    if (!family.isEmpty())
        textFont.setFamily(family);
    textFont.setBold(ui->cmdBold->Pressed());
    textFont.setItalic(ui->cmdItalic->Pressed());
    textFont.setUnderline(ui->cmdUnderline->Pressed());
    ui->txtObject->setFont(textFont);
    QTextOption option = ui->txtObject->document()->defaultTextOption();
    option.setAlignment(horizontalAlignment(mAlignment));
    ui->txtObject->document()->setDefaultTextOption(option);

    // The sample shows the size as a slide does, at four thirds of a pixel to the point.
    QFont sample = textFont;
    sample.setPixelSize(std::max(1, int(std::lround(selectedSize() * 4.0 / 3.0))));
    ui->lblFontPreview->setFont(sample);
    ui->lblFontPreview->setAlignment(horizontalAlignment(mAlignment) | Qt::AlignVCenter);
    setForeColour(ui->lblFontPreview, fromVbColor(TextColor()));
    showFontValues();
}

void ctlTextProperties::RaiseApply() {
    emit Apply(CurrentAttributes());
}

void ctlTextProperties::showFontValues() {
    ui->lblFontName->setText(ui->txtObject->font().family());
    ui->lblFontSize->setText(ui->cboFontSize->currentText() + QStringLiteral(" pt"));
}

int ctlTextProperties::selectedSize() const {
    return ui->cboFontSize->currentText().toInt();
}

void ctlTextProperties::flipStyle(GrButtonIII* button) {
    button->setPressed(!button->Pressed());
    UpdateLook();
}

// Every change of the text, typed or shown by SetSelection; setting the same text again is none.
void ctlTextProperties::txtObject_Change() {
    const QString text = Text();
    if (text == mText)
        return;
    mText = text;
    emit TextChanged(text);
}

// ---------------------------------------------------------------------------------------------
// The font lists

void ctlTextProperties::openComboLater(QComboBox* combo) {
    mOpenCombo = combo;
    mTimerComboClick->start();
}

void ctlTextProperties::TimerComboClick_Timer() {
    mTimerComboClick->stop();
    if (!mOpenCombo)
        return;
    if (mComboOpen) {
        hideCombo(mOpenCombo);
        return;
    }
    mOpenCombo->show();
    mOpenCombo->raise();
    mComboOpen = true;
    mOpenCombo->showPopup();
}

void ctlTextProperties::hideCombo(QComboBox* combo) {
    mComboOpen = false;
    if (!combo || !combo->isVisible())
        return;
    // Hidden first: closing the pop-up comes back here through the event filter.
    combo->hide();
    combo->hidePopup();
}

void ctlTextProperties::cboFontName_Click(int index) {
    const QString name = ui->cboFontName->itemText(index);
    if (familyThatReadsBack(name).isEmpty())
        MsgBox(name + localText(QStringLiteral("STR_NO_FONT")), Vb::Information,
               localText(QStringLiteral("STR_FONT_SELECT")));
    hideCombo(ui->cboFontName);
    UpdateLook();
}

void ctlTextProperties::cboFontSize_Click(int /*index*/) {
    hideCombo(ui->cboFontSize);
    UpdateLook();
}

// ---------------------------------------------------------------------------------------------
// Colour

void ctlTextProperties::cmdTextColor_Click() {
    ui->cmdColorPicker->setPressed(false);
    std::int32_t colour = TextColor();
    if (ChooseColor(this, colour))
        DisplayColor(colour);
}

void ctlTextProperties::cmdColorPicker_Click() {
    ui->cmdColorPicker->setPressed(!ui->cmdColorPicker->Pressed());
    if (ui->cmdColorPicker->Pressed())
        emit ColorPicker();
}

// ---------------------------------------------------------------------------------------------
// Events of the panel and its lists

void ctlTextProperties::mousePressEvent(QMouseEvent* event) {
    // A click beside an open list closes it through the timer, as a second click on its button.
    if (mComboOpen)
        mTimerComboClick->start();
    QWidget::mousePressEvent(event);
}

bool ctlTextProperties::eventFilter(QObject* watched, QEvent* event) {
    const std::pair<QComboBox*, QWidget*> lists[] = {{ui->cboFontName, mPopups[0]},
                                                     {ui->cboFontSize, mPopups[1]}};
    for (const auto& [combo, popup] : lists) {
        const bool popupClosed = watched == popup && event->type() == QEvent::Hide;
        const bool focusLost =
            watched == combo && event->type() == QEvent::FocusOut && popup && !popup->isVisible();
        if ((popupClosed || focusLost) && combo->isVisible())
            hideCombo(combo);
    }
    return QWidget::eventFilter(watched, event);
}
