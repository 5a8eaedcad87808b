// The transport facade against a scripted companion (FakeTransport.cpp) on a private bus.
#include "PhoneTestSupport.h"
#include "phone/TransportNames.h"
#include "phone/clsTransportServer.h"

#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace {

const QString kFake = QStringLiteral("ObexCommunication");

class FacadeTest : public PhoneBusTest {
protected:
    void SetUp() override {
        PhoneBusTest::SetUp();
        ASSERT_TRUE(dir.isValid());
        file = dir.filePath(QStringLiteral("mms.tpl"));
        writeFile(file, "package");
        startHelper(QStringLiteral(TESSALY_BIN_DIR "/phone_fake_transport"), {kFake});
        ASSERT_TRUE(waitForName(Transport::busName(kFake)));
        ASSERT_EQ(facade.Initialize(clsMMSCommunication::Obex), clsMMSCommunication::Obex);
    }

    QVariantList control(const QString& method, const QVariantList& arguments = {}) {
        return callOn(QDBusConnection::sessionBus(), Transport::busName(kFake),
                      QStringLiteral("/control"), QStringLiteral("org.tessaly.TestTransport1"),
                      method, arguments);
    }
    QStringList filesSent() { return control(QStringLiteral("Files")).value(0).toStringList(); }

    void connectPhone(const QString& name) {
        QSignalSpy spy(&facade, &clsMMSCommunication::Connect);
        control(QStringLiteral("AddDevice"), {2, name});
        ASSERT_TRUE(waitForConnects(spy, 1));
    }

    QTemporaryDir dir;
    QString file;
    clsMMSCommunication facade;
};

TEST_F(FacadeTest, SendWithoutDeviceGivesNoDeviceAndSendsNothing) {
    EXPECT_EQ(facade.SendFile(file), clsMMSCommunication::NoDevice);
    EXPECT_FALSE(facade.sending());
    EXPECT_FALSE(facade.connected());
    EXPECT_TRUE(filesSent().isEmpty());
}

TEST_F(FacadeTest, SecondDeviceIsIgnoredAndItsLeavingKeepsTheFirst) {
    QSignalSpy spy(&facade, &clsMMSCommunication::Connect);
    control(QStringLiteral("AddDevice"), {2, QStringLiteral("Phone A")});
    control(QStringLiteral("AddDevice"), {2, QStringLiteral("Phone B")});
    control(QStringLiteral("RemoveDevice"), {2, QStringLiteral("Phone B")});
    ASSERT_TRUE(waitForConnects(spy, 3));
    EXPECT_TRUE(facade.connected());
    EXPECT_EQ(facade.deviceName(), QStringLiteral("Phone A"));
    EXPECT_EQ(facade.deviceId(), facade.deviceName());
    // Every event passes on, with the name the facade holds.
    EXPECT_EQ(spy.at(1), (QVariantList{true, 2, QStringLiteral("Phone A")}));
    EXPECT_EQ(spy.at(2), (QVariantList{false, 2, QStringLiteral("Phone A")}));

    control(QStringLiteral("RemoveDevice"), {2, QStringLiteral("Phone A")});
    ASSERT_TRUE(waitForConnects(spy, 4));
    EXPECT_FALSE(facade.connected());
    EXPECT_EQ(facade.deviceId(), QString());
}

TEST_F(FacadeTest, OnlyTheEndStatesOfProgressEndTheWait) {
    connectPhone(QStringLiteral("Phone"));
    const struct {
        const char* scenario;
        std::int32_t status;
    } cases[] = {{"complete", clsMMSCommunication::Sent},
                 {"noise", clsMMSCommunication::Sent}, // 1, 3, 0, 5 pass; 2 ends the wait
                 {"fail", clsMMSCommunication::Failed}};
    for (const auto& c : cases) {
        control(QStringLiteral("SetScenario"), {QString::fromLatin1(c.scenario)});
        EXPECT_EQ(facade.SendFile(file), c.status) << c.scenario;
        EXPECT_FALSE(facade.sending()) << c.scenario;
    }
    EXPECT_EQ(filesSent(), QStringList(3, file));
}

TEST_F(FacadeTest, RefusedSendStaysBusyUntilProgressClearsIt) {
    connectPhone(QStringLiteral("Phone"));
    control(QStringLiteral("SetScenario"), {QStringLiteral("refuse")});
    EXPECT_EQ(facade.SendFile(file), clsMMSCommunication::Failed);
    EXPECT_EQ(facade.SendFile(file), clsMMSCommunication::Busy);
    control(QStringLiteral("EmitProgress"), {4});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !facade.sending(); }, 5000));
    control(QStringLiteral("SetScenario"), {QStringLiteral("complete")});
    EXPECT_EQ(facade.SendFile(file), clsMMSCommunication::Sent);
}

TEST_F(FacadeTest, SendWhileSendingGivesBusy) {
    connectPhone(QStringLiteral("Phone"));
    control(QStringLiteral("SetScenario"), {QStringLiteral("hold")});
    std::int32_t second = -1;
    // Runs inside the first send's wait.
    QTimer::singleShot(50, [&] {
        second = facade.SendFile(file);
        control(QStringLiteral("EmitProgress"), {2});
    });
    EXPECT_EQ(facade.SendFile(file), clsMMSCommunication::Sent);
    EXPECT_EQ(second, clsMMSCommunication::Busy);
    EXPECT_EQ(filesSent().size(), 1);
}

TEST_F(FacadeTest, CompanionEndingDuringASendGivesFailed) {
    connectPhone(QStringLiteral("Phone"));
    QSignalSpy spy(&facade, &clsMMSCommunication::Connect);
    control(QStringLiteral("SetScenario"), {QStringLiteral("crash")});
    EXPECT_EQ(facade.SendFile(file), clsMMSCommunication::Failed);
    EXPECT_FALSE(facade.sending());
    // The phone went with the companion: the lamp goes dark.
    ASSERT_TRUE(waitForConnects(spy, 1));
    EXPECT_EQ(spy.last().value(0).toBool(), false);
    EXPECT_FALSE(facade.connected());
}

TEST_F(PhoneBusTest, CompanionThatIsNotInstalledGivesTypeNone) {
    QTemporaryDir empty;
    clsTransportServer::setCompanionFolders({empty.path()});
    clsMMSCommunication facade;
    EXPECT_EQ(facade.Initialize(clsMMSCommunication::Ir), clsMMSCommunication::None);
    EXPECT_EQ(facade.communicationType(), clsMMSCommunication::None);
    clsTransportServer::setCompanionFolders({});
    EXPECT_EQ(facade.Initialize(7), clsMMSCommunication::None);
    EXPECT_EQ(facade.SendFile(QStringLiteral("/nonexistent")), clsMMSCommunication::NoDevice);
}

TEST_F(PhoneBusTest, CompanionStartsOnDemandAndQuitsWhenTheProgramLetsGo) {
    const QString name = Transport::busName(QStringLiteral("Q500Communication"));
    auto facade = std::make_unique<clsMMSCommunication>();
    ASSERT_EQ(facade->Initialize(clsMMSCommunication::Q500), clsMMSCommunication::Q500);
    EXPECT_TRUE(waitForName(name));
    // Choosing again keeps the companion; giving it up ends it.
    ASSERT_EQ(facade->Initialize(clsMMSCommunication::Q500), clsMMSCommunication::Q500);
    EXPECT_EQ(facade->Initialize(clsMMSCommunication::None), clsMMSCommunication::None);
    EXPECT_TRUE(waitForName(name, false));
}

} // namespace
