#pragma once

#include <QString>
#include <QTemporaryDir>

// A fresh application folder for one test: sets TESSALY_HOME while it lives and restores the
// previous value after. With `withData` the shipped data (preferences, language files, ...) is
// copied in first.
class TestHome {
public:
    explicit TestHome(bool withData = false);
    ~TestHome();
    TestHome(const TestHome&) = delete;
    TestHome& operator=(const TestHome&) = delete;

    QString path() const { return mDir.path(); }
    QString file(const QString& relative) const;
    // Writes `content` (UTF-8) to a file below the folder, making its folders.
    void write(const QString& relative, const QByteArray& content) const;
    QByteArray read(const QString& relative) const;

private:
    QTemporaryDir mDir;
    QByteArray mPrevious;
};

// The shipped data folder of the source tree.
QString sourceDataFolder();
