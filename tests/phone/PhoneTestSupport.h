#pragma once

#include "PrivateBus.h"
#include "phone/clsMMSCommunication.h"

#include <QDBusMessage>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

// A test on a private bus: the bus is up before the test touches it, and the helper processes
// the test started end with it.
class PhoneBusTest : public ::testing::Test {
protected:
    void SetUp() override {
        QString error;
        ASSERT_TRUE(PrivateBus::ensure(&error)) << error.toStdString();
    }
    void TearDown() override { PrivateBus::stopProcesses(); }

    // Waits until the facade has raised `count` Connect events in all.
    static bool waitForConnects(QSignalSpy& spy, int count) {
        return QTest::qWaitFor([&] { return spy.count() >= count; }, 10000);
    }

    static QByteArray readAll(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
    }
    static void writeFile(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
};

// Calls `method` on a bus object and fails the test on an error reply.
inline QVariantList callOn(QDBusConnection bus, const QString& service, const QString& path,
                           const QString& interface, const QString& method,
                           const QVariantList& arguments = {}) {
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = bus.call(message, QDBus::Block, 10000);
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage)
        << method.toStdString() << ": " << reply.errorMessage().toStdString();
    return reply.arguments();
}
