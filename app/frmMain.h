#pragma once

#include <QWidget>

// The main window.
class frmMain : public QWidget {
    Q_OBJECT
public:
    explicit frmMain(QWidget* parent = nullptr);

protected:
    void closeEvent(QCloseEvent* event) override;
};
