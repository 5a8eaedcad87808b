#pragma once

#include <QWidget>
#include <cstdint>
#include <memory>

class QLabel;
class GrButtonIII;
namespace Ui {
class frmPreview;
}

// The preview player: a fixed-size, frameless window with a phone on its skin. The phone's
// screen, picPreviewPlayer, is the piece that moves into the main window when the preview is
// docked; imgPreview on it shows the slide. The show itself is run by the main window, which
// this window asks by its signals.
class frmPreview : public QWidget {
    Q_OBJECT
public:
    // The window's size in twips.
    static constexpr int kWidth = 3840;
    static constexpr int kHeight = 7320;

    explicit frmPreview(QWidget* parent = nullptr);
    ~frmPreview() override;

    // Takes the look of the preview named by the skin section `section`: the window's picture,
    // the phone and the place of the slide on it.
    void InitPreview(const QString& section);
    // Offers the player area to the main window (raises Dock).
    void DockPreview();
    void PlayerStarted();
    void PlayerStopped();
    // Shows "elapsed/total" in seconds, as "#0.0".
    void DisplayPreviewTime(std::int32_t total, std::int32_t elapsed);
    Q_INVOKABLE void TranslateForm();

    // The menu string of imgPreview's pop-up.
    QString PreviewMenuString() const;

    QWidget* picPreviewPlayer() const;
    QLabel* picPhone() const;
    QLabel* imgPreview() const;
    QLabel* lblTime() const;
    GrButtonIII* cmdPlay() const;

signals:
    void StartPlayer();
    void StopPlayer();
    void ClosePreview();
    // The player area `picture`, at (left, top) in this window.
    void Dock(QWidget* picture, int left, int top);
    void DownloadPicture();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Form_Load();
    void cmdClose_Click();
    void cmdMinimize_Click();
    void imgPreview_RightClick();
    void loadPhone(const QString& back);

    std::unique_ptr<Ui::frmPreview> ui;
};
