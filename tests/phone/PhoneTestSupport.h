#pragma once

#include "phone/clsMMSCommunication.h"

#include <QDBusConnection>
#include <QSignalSpy>
#include <gtest/gtest.h>

// A test on a D-Bus daemon of its own, started before the test first touches a bus. It serves
// as both the session and the system bus of this process and of every program it starts; the
// helper processes a test starts end with the test.
class PhoneBusTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    static void startHelper(const QString& program, const QStringList& arguments);
    // Lets events run until `name` is owned on `bus` (gone, with `owned` false); 10 s at most.
    static bool waitForName(const QString& name, bool owned = true,
                            QDBusConnection bus = QDBusConnection::sessionBus());
    // Until the facade has raised `count` Connect events in all.
    static bool waitForConnects(QSignalSpy& spy, int count);
    static QByteArray readAll(const QString& path);
    // The scripted companion (FakeTransport.cpp) under the Bluetooth companion's name, taken
    // into use by `facade`; with `phone`, it reports that phone and the facade has heard of it.
    static void startFake(clsMMSCommunication& facade, const QString& phone = {});
    // A call on the scripted companion's control object.
    static QVariantList fake(const QString& method, const QVariantList& arguments = {});
    static void writeFile(const QString& path, const QByteArray& bytes);
};

// Calls `method` on a bus object; an error reply fails the test.
QVariantList callOn(QDBusConnection bus, const QString& service, const QString& path,
                    const QString& interface, const QString& method,
                    const QVariantList& arguments = {});
