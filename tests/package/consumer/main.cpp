// An application of someone else's: links the installed library and pings a server at the command
// endpoint given as its argument. Exit 0 when the server answered with a reply other than a
// failure.
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <iostream>
#include <mutex>

#include <Korvo/Plexis/Tessel/Client.h>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: consumer <command endpoint>\n";
        return 2;
    }
    using namespace Korvo::Plexis::Tessel;
    namespace Messaging = Korvo::Common::Messaging;
    namespace Commands = HighLevelOperations::Commands;

    auto& loggers = Logging::Loggers::GetInstance();
    loggers.SetLoggerFactory(std::make_unique<Logging::StandardErrorLoggerFactory>());

    // A command sent before the link is up is dropped: wait for it first.
    std::mutex mutex;
    std::condition_variable changed;
    bool connected = false;
    auto messenger = std::make_unique<Client::ZmqMessenger>(
        Messaging::EndPoint(argv[1]), Messaging::TransportOptions{},
        [&](Messaging::ConnectionState state) {
            std::lock_guard<std::mutex> lock(mutex);
            connected = state == Messaging::ConnectionState::Connected;
            changed.notify_all();
        });
    Client::CommandClient client(std::move(messenger),
                                 std::make_shared<Client::DataCommandParamsPayloadBuilder>(),
                                 std::make_shared<Client::DataCommandReplyBuilder>());
    {
        std::unique_lock<std::mutex> lock(mutex);
        if (!changed.wait_for(lock, std::chrono::seconds(30), [&] { return connected; })) {
            std::cerr << "consumer: no link to " << argv[1] << '\n';
            return EXIT_FAILURE;
        }
    }

    Commands::PingCommandParams ping;
    ping.commandGuid = Korvo::Plexis::Data::Guid("consumer-ping");
    auto pending = client.Request("PingCommand", ping);
    using Kind = Client::PendingCommandReply::ItemKind;
    while (pending && pending->IsPending()) {
        auto item = pending->Next(std::chrono::seconds(30));
        if (item.kind == Kind::TimedOut || item.kind == Kind::Cancelled) {
            break;
        }
        if (item.kind == Kind::Partial) {
            continue;
        }
        auto reply = pending->BuildReply(item);
        std::cout << "consumer: " << Json::CommandReplyToJson(*reply) << '\n';
        return reply->GetType() == Commands::FailureReply::kType ? EXIT_FAILURE : EXIT_SUCCESS;
    }
    std::cerr << "consumer: no reply from " << argv[1] << '\n';
    return EXIT_FAILURE;
}
