#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>

#include <Korvo/Common/Messaging/ObjectShutDownException.h>
#include <Korvo/Plexis/Tessel/Logging/Loggers.h>

#include "client/NotificationDispatch.h"
#include "logging/LogSupport.h"
#include "logging/LogText.h"

namespace Korvo::Plexis::Tessel::Client {
namespace {

using Common::Messaging::Message;
using Logging::ILogger;

constexpr const char* kSource = "Korvo/Plexis/Tessel/Client/NotificationClient";

}  // namespace

NotificationClient::NotificationClient(const std::vector<Common::Messaging::EndPoint>& endPoints,
                                       const std::vector<std::string>& topics,
                                       const Common::Messaging::TransportOptions& options)
    : subscription(
          std::make_unique<Common::Messaging::Client::Subscription>(endPoints, topics, options)),
      logger(Logging::Loggers::GetInstance().GetLogger("NotificationClient")) {
    worker = std::async(std::launch::async, &NotificationClient::Run, this);
}

NotificationClient::~NotificationClient() {
    subscription->ShutDown();
    if (worker.valid()) {
        worker.wait();
    }
}

void NotificationClient::Run() {
    const Detail::NotificationDispatch dispatch;
    while (!subscription->IsShutDown()) {
        try {
            const auto event = subscription->Receive();
            const Message& message = event.Payload();
            std::lock_guard<std::mutex> lock(handlersMutex);
            if (!dispatch(*this, message)) {
                // The text names the last table searched, whatever the unknown type.
                Logging::Log(logger, ILogger::Error, "Run: serverStatusMessageTypes unknown.",
                             kSource, 154);
            }
        } catch (const Common::Messaging::ObjectShutDownException& error) {
            Logging::LogComposed(
                logger, ILogger::Trace,
                [&] {
                    return std::string("Run: Object shutDown exception (") + error.what() + ").";
                },
                kSource, 158);
            return;
        } catch (const std::exception& error) {
            Logging::LogComposed(
                logger, ILogger::Error,
                [&] { return "Run: Exception (" + Logging::Printable(error.what()) + ")."; }, kSource,
                162);
        } catch (...) {
            Logging::Log(logger, ILogger::Error, "Run: Exception unknown.", kSource, 165);
        }
    }
}

}  // namespace Korvo::Plexis::Tessel::Client
