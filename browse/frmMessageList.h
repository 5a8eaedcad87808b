#pragma once

#include <QDialog>
#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>
#include <memory>

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class clsMMSManager;
namespace Ui {
class frmMessageList;
}

// One dialog for four jobs on the stored messages: open one, name a new one, save under a name,
// delete several. It lists the store's messages and hands the choice to its owner through
// SelectedMessage, raised after the dialog has gone out of sight.
class frmMessageList : public QDialog {
    Q_OBJECT

public:
    enum Mode { Cancelled = 1, Open = 2, New = 3, SaveAs = 4, Delete = 5 };

    explicit frmMessageList(clsMMSManager* manager = nullptr, QWidget* parent = nullptr);
    ~frmMessageList() override;

    // Loads the window afresh for `mode` (2 open, 3 new, 4 save as, 5 delete).
    void SetFunction(int mode);
    int mode() const { return mMode; }
    void TranslateForm();
    // Sets the tab stops of `list`, in dialog units (a quarter of the average character width).
    static void DoTabs(QListWidget* list, const QList<int>& tabs);

    // The characters a message name may not hold.
    static const QString& illegalCharacters();
    // The names chosen by the last delete, as they are stored (a name may hold a ",").
    QStringList SelectedNames() const { return mSelectedNames; }

signals:
    // mode 1 with an empty name: cancelled. In mode 5 `name` lists the names joined by ",".
    void SelectedMessage(int mode, const QString& name);

public slots:
    void reject() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void txtName_Change();
    void lstMsg_Click(QListWidgetItem* item);
    void lstMsg_DblClick(QListWidgetItem* item);
    void cmdOpen_Click();
    void cmdCancel_Click();

private:
    void Form_Load();
    void end(int mode, const QString& name);
    void unload(int result);
    bool listHolds(const QString& name) const;
    static QString firstField(const QString& entry);
    QString textOf(const QString& key) const;

    std::unique_ptr<Ui::frmMessageList> mUi;
    clsMMSManager* mManager = nullptr;
    QRect mListGeometry; // as designed; the delete mode stretches the list
    QString mTitleText;  // the caption of lblTitle when no language is loaded
    int mMode = Open;
    bool mEnded = false;
    bool mTrimming = false;
    QStringList mSelectedNames;

    QLabel* lblTitle;
    QListWidget* lstMsg;
    QLabel* lblMsgName;
    QLineEdit* txtName;
    QLabel* lblIllegalChar;
    QPushButton* cmdOpen;
    QPushButton* cmdCancel;
};
