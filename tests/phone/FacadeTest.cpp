// The transport facade against a scripted companion (FakeTransport.cpp) on a private bus.
#include "PhoneTestSupport.h"
#include "phone/TransportNames.h"
#include "phone/clsTransportServer.h"

#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

using Status = clsMMSCommunication::Status;

class FacadeTest : public PhoneBusTest {
protected:
    void SetUp() override {
        PhoneBusTest::SetUp();
        writeFile(file, "package");
    }
    QStringList filesSent() { return fake(u"Files"_s).value(0).toStringList(); }

    QTemporaryDir dir;
    const QString file = dir.filePath(u"mms.tpl"_s);
    clsMMSCommunication facade;
};

TEST_F(FacadeTest, SendWithoutDeviceGivesNoDeviceAndSendsNothing) {
    startFake(facade);
    EXPECT_EQ(facade.SendFile(file), Status::NoDevice);
    EXPECT_FALSE(facade.sending());
    EXPECT_TRUE(filesSent().isEmpty());
}

TEST_F(FacadeTest, SecondDeviceIsIgnoredAndItsLeavingKeepsTheFirst) {
    startFake(facade, u"Phone A"_s);
    QSignalSpy spy(&facade, &clsMMSCommunication::Connect);
    fake(u"AddDevice"_s, {2, u"Phone B"_s});
    fake(u"RemoveDevice"_s, {2, u"Phone B"_s});
    ASSERT_TRUE(waitForConnects(spy, 2));
    EXPECT_TRUE(facade.connected());
    EXPECT_EQ(facade.deviceName(), u"Phone A"_s);
    EXPECT_EQ(facade.deviceId(), facade.deviceName());
    // Every event passes on, with the name the facade holds.
    EXPECT_EQ(spy.at(1), (QVariantList{false, 2, u"Phone A"_s}));

    fake(u"RemoveDevice"_s, {2, u"Phone A"_s});
    ASSERT_TRUE(waitForConnects(spy, 3));
    EXPECT_FALSE(facade.connected());
    EXPECT_EQ(facade.deviceId(), QString());
}

TEST_F(FacadeTest, OnlyTheEndStatesOfProgressEndTheWait) {
    startFake(facade, u"Phone"_s);
    const std::pair<const char*, std::int32_t> cases[] = {
        {"complete", Status::Sent},
        {"noise", Status::Sent}, // 1, 3, 0, 5 pass; only 2 ends the wait
        {"fail", Status::Failed}};
    for (const auto& [scenario, status] : cases) {
        fake(u"SetScenario"_s, {QString::fromLatin1(scenario)});
        EXPECT_EQ(facade.SendFile(file), status) << scenario;
        EXPECT_FALSE(facade.sending()) << scenario;
    }
    EXPECT_EQ(filesSent(), QStringList(3, file));
}

TEST_F(FacadeTest, RefusedSendStaysBusyUntilProgressClearsIt) {
    startFake(facade, u"Phone"_s);
    fake(u"SetScenario"_s, {u"refuse"_s});
    EXPECT_EQ(facade.SendFile(file), Status::Failed);
    EXPECT_EQ(facade.SendFile(file), Status::Busy);
    fake(u"EmitProgress"_s, {4});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !facade.sending(); }, 30000));
}

TEST_F(FacadeTest, SendWhileSendingGivesBusy) {
    startFake(facade, u"Phone"_s);
    fake(u"SetScenario"_s, {u"hold"_s});
    std::int32_t second = -1;
    QTimer::singleShot(50, [&] { // inside the first send's wait
        second = facade.SendFile(file);
        fake(u"EmitProgress"_s, {2});
    });
    EXPECT_EQ(facade.SendFile(file), Status::Sent);
    EXPECT_EQ(second, Status::Busy);
    EXPECT_EQ(filesSent().size(), 1);
}

TEST_F(FacadeTest, CompanionEndingDuringASendGivesFailedAndDropsThePhone) {
    startFake(facade, u"Phone"_s);
    QSignalSpy spy(&facade, &clsMMSCommunication::Connect);
    fake(u"SetScenario"_s, {u"crash"_s});
    EXPECT_EQ(facade.SendFile(file), Status::Failed);
    EXPECT_FALSE(facade.sending());
    ASSERT_TRUE(waitForConnects(spy, 1));
    EXPECT_EQ(spy.last().value(0), QVariant(false));
    EXPECT_FALSE(facade.connected());
}

TEST_F(FacadeTest, CompanionThatIsNotInstalledGivesTypeNone) {
    QTemporaryDir empty;
    clsTransportServer::setCompanionFolders({empty.path()});
    EXPECT_EQ(facade.Initialize(clsMMSCommunication::Ir), clsMMSCommunication::None);
    clsTransportServer::setCompanionFolders({});
    EXPECT_EQ(facade.Initialize(7), clsMMSCommunication::None);
    EXPECT_EQ(facade.SendFile(file), Status::NoDevice);
}

TEST_F(FacadeTest, CompanionStartsOnDemandAndQuitsWhenTheProgramLetsGo) {
    const QString name = Transport::busName(u"Q500Communication"_s);
    ASSERT_EQ(facade.Initialize(clsMMSCommunication::Q500), clsMMSCommunication::Q500);
    EXPECT_TRUE(waitForName(name));
    // Choosing again keeps the companion; giving it up ends it.
    ASSERT_EQ(facade.Initialize(clsMMSCommunication::Q500), clsMMSCommunication::Q500);
    EXPECT_EQ(facade.Initialize(clsMMSCommunication::None), clsMMSCommunication::None);
    EXPECT_TRUE(waitForName(name, false));
}

} // namespace
