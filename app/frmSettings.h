#pragma once

#include <QDialog>
#include <QList>
#include <QStringList>
#include <cstdint>
#include <memory>

class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QPushButton;
class QRadioButton;
namespace Ui {
class frmSettings;
}

// The tabbed dialog over the user's preferences. It shows the values of the "preferences"
// section in its controls, writes them back on Ok or Apply, and tells its owner through Apply,
// Ok and Cancel whether anything had changed. A language chosen here translates every open
// window at once; the communication choice takes effect at the next start.
class frmSettings : public QDialog {
    Q_OBJECT

public:
    // The pages, in the order of their tabs.
    enum Page { General = 0, Appearance = 1, Language = 2, Communication = 3 };

    explicit frmSettings(QWidget* parent = nullptr);
    ~frmSettings() override;

    // Titles, captions and tool tips in the language in use; the values stay as they are.
    Q_INVOKABLE void TranslateForm();
    // Shows `colour` (red in the low byte) on the background swatch.
    void SetBackColor(std::int32_t colour);
    // Fills the language list with the language files that the catalogue offers; returns their
    // codes in list order.
    QStringList GetInstalledLanguages();

    // A click on the tab of `page`.
    void tabCaption_Click(int page);
    int currentPage() const;

    // The state the window keeps between loading and saving.
    bool changed() const { return mChanged; }
    bool allowSeconds() const { return mAllowSeconds; }
    QString oldLanguage() const { return mOldLanguage; }

    // The buttons, as a click on them does.
    void cmdApply_Click();
    void cmdOk_Click();
    void cmdCancel_Click();

signals:
    // `changed` as it was before the save.
    void Apply(bool changed);
    void Cancel();
    void Ok(bool changed);

public slots:
    void reject() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void nameControlArrays();
    void connectControls();
    void Form_Load();
    void LoadValues();
    void LoadMessageSizes(const QString& chosen);
    void LoadTimeFormat();
    void LoadSkins();
    void LoadCommunication();
    void Save();
    void SaveSkin();
    void SaveLanguage();
    void cboSkins_Click();
    void cboPreviewType_Click();
    void bTextColor_Click();
    void chkCommunication_Click(int index);
    void ShowPhoneFolder();
    void cmdPhoneFolder_Click();
    void OptionClick();
    void placeTabBottom();
    void styleWindow();
    std::int32_t backColor() const;

    std::unique_ptr<Ui::frmSettings> ui;
    QList<QPushButton*> mTabs;
    QButtonGroup* mTimeFormat = nullptr;
    QButtonGroup* mDockState = nullptr;
    QButtonGroup* mCommunication = nullptr;
    bool mChanged = false;
    bool mLoading = false;
    bool mAllowSeconds = false;
    int mCommunicationType = 0;
    QString mOldLanguage;
};
