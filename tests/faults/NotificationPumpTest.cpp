// Faults on the receiving side of notifications that no peer causes: memory running out, a
// failing poll, one endpoint that cannot be read or re-created, and a careless application that
// destroys its client from a callback. None may end delivery for good, spin, or crash.

#include <cstdio>
#include <new>
#include <thread>

#include <Korvo/Common/Messaging/TransportException.h>

#include "faults/FaultSupport.h"
#include "messaging/FaultInjection.h"

namespace Korvo::Testing {
namespace {

using Clock = std::chrono::steady_clock;
using Common::Messaging::TransportException;
using Common::Messaging::Detail::FaultPoint;
using Plexis::Tessel::Client::NotificationClient;

// Installs a fault for the test's scope; `active` switches it on and off.
struct InjectedFault {
    InjectedFault(FaultPoint point, std::string address, std::function<void()> raise)
        : point(point), address(std::move(address)), raise(std::move(raise)) {
        Common::Messaging::Detail::SetFaultHook([this](FaultPoint at, const std::string& where) {
            if (active.load() && at == this->point &&
                (this->address.empty() || where == this->address)) {
                this->raise();
            }
        });
    }
    ~InjectedFault() { Common::Messaging::Detail::SetFaultHook(nullptr); }

    const FaultPoint point;
    const std::string address;
    const std::function<void()> raise;
    std::atomic<bool> active{true};
};

struct PumpFault {
    const char* name;
    FaultPoint point;
    bool firstEndpointOnly;  // the other endpoint must go on delivering meanwhile
    std::function<void()> raise;
};

const std::vector<PumpFault> kPumpFaults{
    {"memory runs out while queueing", FaultPoint::PumpQueue, false,
     [] { throw std::bad_alloc(); }},
    {"waiting for input fails", FaultPoint::PumpWait, false,
     [] { throw TransportException("cannot wait for input: Interrupted system call"); }},
    {"one endpoint cannot be read", FaultPoint::TakeFromLink, true,
     [] { throw TransportException("cannot receive: Bad file descriptor"); }},
    {"one endpoint's link cannot be re-created", FaultPoint::OpenSocket, true,
     [] { throw TransportException("cannot connect: Too many open files"); }},
};

TEST(NotificationPumpTest, ATransientFaultCostsLittleCpuSparesOtherEndpointsAndDeliveryRecovers) {
    for (const PumpFault& fault : kPumpFaults) {
        SCOPED_TRACE(fault.name);
        auto messagingLog = RecordedLogger("Messaging", ILogger::Error);
        auto clientLog = RecordedLogger("NotificationClient", ILogger::Error);
        PublisherPeer failing;
        PublisherPeer healthy;
        TransportOptions options = QuickOptions();
        options.maxNotificationSize = 1024;  // a larger one makes the transport drop the link
        NotificationClient client(
            {Common::Messaging::EndPoint(failing.Address()),
             Common::Messaging::EndPoint(healthy.Address())},
            {}, options);
        Deliveries delivered;
        delivered.Attach(client);
        ASSERT_TRUE(failing.WaitForSubscriptions({""}));
        ASSERT_TRUE(healthy.WaitForSubscriptions({""}));
        auto& subscription = client.GetSubscription();
        ASSERT_TRUE(Eventually([&] {
            return subscription.GetConnectionStates() ==
                   std::vector<ConnectionState>{ConnectionState::Connected,
                                                ConnectionState::Connected};
        }));

        InjectedFault injected(fault.point, fault.firstEndpointOnly ? failing.Address() : "",
                               fault.raise);
        failing.Publish("ServerStatus", "ServerAdded", ServerAdded(1));
        if (fault.point == FaultPoint::OpenSocket) {
            // Oversized: the transport drops the link for good, and re-creating it fails.
            failing.Publish("ServerStatus", "ServerAdded", ServerAdded(1, 2048));
            ASSERT_TRUE(Eventually([&] {
                return subscription.GetConnectionStates()[0] == ConnectionState::Disconnected &&
                       CountLogged(*messagingLog, "cannot re-create the link") > 0;
            }));
        }
        ASSERT_TRUE(Eventually([&] {
            return CountLogged(*messagingLog, "trying again in") > 0;
        }));

        // While the fault lasts: little CPU, few log lines, the healthy endpoint still served.
        const auto window = std::chrono::milliseconds(1500);
        const auto linesBefore = messagingLog->Texts().size() + clientLog->Texts().size();
        const auto cpuBefore = CpuTime();
        const auto windowEnd = Clock::now() + window;
        for (int id = 100; Clock::now() < windowEnd; ++id) {
            healthy.Publish("ServerStatus", "ServerAdded", ServerAdded(id));
            if (fault.firstEndpointOnly) {
                EXPECT_TRUE(delivered.WaitForId(id));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        const auto cpu = CpuTime() - cpuBefore;
        const auto lines =
            messagingLog->Texts().size() + clientLog->Texts().size() - linesBefore;
        EXPECT_LT(cpu.count(), window.count() / 20) << "ms of CPU";  // under 5 % of a core
        EXPECT_LT(lines, 30u);
        EXPECT_FALSE(subscription.IsShutDown());
        if (fault.point == FaultPoint::OpenSocket) {
            EXPECT_EQ(subscription.GetConnectionStates()[0], ConnectionState::Disconnected);
        }

        // Once the cause is gone, both endpoints deliver again without help.
        injected.active.store(false);
        const auto cleared = Clock::now();
        bool recovered = false;
        for (int id = 1000; !recovered && Clock::now() < cleared + kPatience; ++id) {
            failing.Publish("ServerStatus", "ServerAdded", ServerAdded(id));
            recovered = delivered.WaitForId(id, std::chrono::milliseconds(50));
        }
        ASSERT_TRUE(recovered);
        const auto recovery = Clock::now() - cleared;
        healthy.Publish("ServerStatus", "ServerAdded", ServerAdded(5000));
        EXPECT_TRUE(delivered.WaitForId(5000));
        std::printf("[ fault    ] %s: %lld ms CPU in %lld ms, %zu log lines, recovered in %lld ms\n",
                    fault.name, static_cast<long long>(cpu.count()),
                    static_cast<long long>(window.count()), lines,
                    static_cast<long long>(
                        std::chrono::duration_cast<std::chrono::milliseconds>(recovery).count()));
    }
}

TEST(NotificationPumpTest, ACallbackMayDestroyItsOwnClient) {
    PublisherPeer publisher;
    const int threadsBefore = ThreadCount();
    auto client = std::make_unique<NotificationClient>(
        std::vector<Common::Messaging::EndPoint>{Common::Messaging::EndPoint(publisher.Address())},
        std::vector<std::string>{});
    Deliveries calls;
    {
        auto lock = client->LockHandlers();
        const std::string captured(64, 'c');  // lives in the callback, which outlives the client
        client->serverAddedHandlers.push_back(
            [&client, &calls, captured](const Events::ServerAddedEventArgs&) {
                calls.Add(1);
                client.reset();
                calls.Add(static_cast<int>(captured.size()));
            });
        client->serverAddedHandlers.push_back(
            [&calls](const Events::ServerAddedEventArgs&) { calls.Add(2); });
        client->serverStatusHandlers.push_back(
            [&calls](Events::ServerStatusEvent::Type, const Events::ServerStatusEventArgs&) {
                calls.Add(3);
            });
    }
    ASSERT_TRUE(publisher.WaitForSubscriptions({""}));
    publisher.Publish("ServerStatus", "ServerAdded", ServerAdded(1));
    publisher.Publish("ServerStatus", "ServerAdded", ServerAdded(2));

    ASSERT_TRUE(calls.WaitFor([](const std::vector<int>& ids) { return ids.size() >= 2; }));
    // Every thread of the client ends by itself; nothing after the destroying callback is called.
    EXPECT_TRUE(Eventually([&] { return ThreadCount() == threadsBefore; }));
    EXPECT_TRUE(calls.WaitFor(
        [](const std::vector<int>& ids) { return ids == std::vector<int>{1, 64}; },
        std::chrono::milliseconds(0)));
}

}  // namespace
}  // namespace Korvo::Testing
