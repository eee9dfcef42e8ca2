// `_tessel.Connection`: one `Client::Connection` driven through the JSON form. Calls are named by
// their command name and carry their parameters as JSON text; what happens comes back through a
// `Bridge` to the event loop. Every method that may wait or touch a socket releases the GIL.

#include "Bindings.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

#include <pybind11/stl.h>

#include <Korvo/Common/Serialization/InvalidConversionException.h>
#include <Korvo/Plexis/Tessel/Client/Connection.h>
#include <Korvo/Plexis/Tessel/Json/CommandParamsJson.h>
#include <Korvo/Plexis/Tessel/Json/CommandReplyJson.h>
#include <Korvo/Plexis/Tessel/Json/NotificationJson.h>

#include "Bridge.h"

namespace Korvo::Python {
namespace {

namespace py = pybind11;
namespace Client = Plexis::Tessel::Client;
namespace Json = Plexis::Tessel::Json;
namespace Notification = Plexis::Notification;

std::chrono::milliseconds Milliseconds(double seconds) {
    if (!(seconds >= 0) || seconds > 24 * 3600.0) {
        throw std::invalid_argument("a time limit is between 0 and 24 hours");
    }
    return std::chrono::milliseconds(static_cast<std::int64_t>(std::ceil(seconds * 1000)));
}

class PyConnection {
public:
    PyConnection(const std::string& name, const std::string& commands,
                 const std::vector<std::string>& notifications,
                 const std::vector<std::string>& topics, const std::string& serverKey,
                 double timeLimit, std::size_t notificationBytes, const py::object& wake)
        : bridge(std::make_shared<Bridge>(wake.ptr(), notificationBytes)) {
        Client::ConnectionOptions options;
        options.name = name;
        options.commandEndPoint = commands;
        options.notificationEndPoints = notifications;
        options.topics = topics;
        options.serverPublicKey = serverKey;
        options.timeLimit = Milliseconds(timeLimit);
        // The library's threads may wait for the GIL while holding their own locks (the
        // notification thread holds its handler lock while it posts), so nothing here holds the
        // GIL while it takes one of theirs.
        try {
            py::gil_scoped_release release;
            connection = std::make_unique<Client::Connection>(std::move(options));
            Subscribe();
            connection->Watch([bridge = bridge](Common::Messaging::ConnectionState state) {
                bridge->Post({Bridge::kState, 0, static_cast<int>(state),
                              Common::Messaging::ToString(state), {}});
            });
        } catch (...) {
            Close();  // with the GIL again, as the destructor would
            bridge->ReleaseWake();
            throw;
        }
    }

    ~PyConnection() { Close(); }

    PyConnection(const PyConnection&) = delete;
    PyConnection& operator=(const PyConnection&) = delete;

    // Sends `command` with the parameters in `json`; its end (and, with `stream`, each part)
    // comes back through the bridge under the returned call number.
    std::uint64_t Send(const std::string& command, const std::string& json, double timeLimit,
                       bool stream, bool latest) {
        Client::Connection& live = Live();
        auto params = Json::CommandParamsFromJson(command, json);
        const std::uint64_t id = ++lastId;
        const auto limit = Milliseconds(timeLimit);
        bool sent = false;
        Client::ForEachCommand([&](auto* tag) {
            using Params = std::remove_pointer_t<decltype(tag)>;
            if (sent || typeid(*params) != typeid(Params)) {
                return;
            }
            sent = true;
            try {
                SendTyped(live, std::move(static_cast<Params&>(*params)), id, limit, stream,
                          latest);
            } catch (const Common::Serialization::InvalidConversionException& error) {
                // Parameters the wire cannot carry are the caller's mistake, like bad JSON.
                throw std::invalid_argument(error.what());
            }
        });
        return id;
    }

    // Ends call `id` with Cancelled unless it has ended.
    void Cancel(std::uint64_t id) {
        std::function<void()> cancel;
        {
            std::lock_guard<std::mutex> lock(opsMutex);
            const auto found = ops.find(id);
            if (found == ops.end()) {
                return;
            }
            cancel = found->second;
        }
        py::gil_scoped_release release;
        cancel();
    }

    py::list Take() { return bridge->Take(); }

    std::uint64_t Dropped() const { return bridge->Dropped(); }

    bool WaitConnected(double seconds) {
        Client::Connection& live = Live();
        py::gil_scoped_release release;
        return live.WaitConnected(Milliseconds(seconds));
    }

    // Ends every pending call with Cancelled (taken by the next `Take`), closes both links and
    // joins the library's threads, with the GIL released: their last wake-ups may need it.
    void Close() {
        if (!connection) {
            return;  // closed already, or never made (the constructor released the wake)
        }
        bridge->Close();
        auto closing = std::move(connection);
        {
            // Nothing is cancelled through the map once closing has begun.
            std::lock_guard<std::mutex> lock(opsMutex);
            ops.clear();
        }
        {
            py::gil_scoped_release release;
            closing.reset();
        }
        bridge->ReleaseWake();
    }

    bool Closed() const { return !connection; }

private:
    Client::Connection& Live() {
        if (!connection) {
            throw std::runtime_error("the connection is closed");
        }
        return *connection;
    }

    template <class Params>
    void SendTyped(Client::Connection& live, Params params, std::uint64_t id,
                   std::chrono::milliseconds limit, bool stream, bool latest) {
        Client::CallOptions<Params> options;
        options.timeLimit = limit;
        options.onDone = [this, bridge = bridge, id](const Client::Operation<Params>& operation) {
            Bridge::Item item{Bridge::kDone, id, static_cast<int>(operation.GetOutcome()), {},
                              operation.Reason()};
            if (const auto* reply = operation.GetReply()) {
                item.text = Json::CommandReplyToJson(*reply);
            }
            {
                std::lock_guard<std::mutex> lock(opsMutex);
                ops.erase(id);
            }
            bridge->Post(std::move(item));
        };
        if (stream) {
            options.onPart = [bridge = bridge, id](const typename Client::CallOptions<Params>::Reply& part) {
                bridge->Post({Bridge::kPart, id, 0, Json::CommandReplyToJson(part), {}});
            };
        }
        Client::Operation<Params> operation(nullptr);
        {
            py::gil_scoped_release release;
            if constexpr (Client::kIsContinuous<Params>) {
                operation = latest ? live.SendLatest(std::move(params), std::move(options))
                                   : live.Send(std::move(params), std::move(options));
            } else {
                if (latest) {
                    throw std::invalid_argument("only continuous controls use the latest-value lane");
                }
                operation = live.Send(std::move(params), std::move(options));
            }
        }
        // Kept for `Cancel` while it runs; its `onDone` (which takes the same lock) removes it.
        std::lock_guard<std::mutex> lock(opsMutex);
        if (!operation.IsDone()) {
            ops.emplace(id, [operation] { operation.Cancel(); });
        }
    }

    void Subscribe() {
        Client::NotificationClient* notifications = connection->Notifications();
        if (notifications == nullptr) {
            return;
        }
        auto lock = notifications->LockHandlers();
        auto post = [bridge = bridge](const char* family) {
            return [bridge, family](auto, const auto& args) {
                bridge->PostNotification(family, Json::NotificationToJson(args));
            };
        };
        notifications->clipCommandHandlers.push_back(post("ClipCommand"));
        notifications->clipStatusHandlers.push_back(post("ClipStatus"));
        notifications->channelStatusHandlers.push_back(post("ChannelStatus"));
        notifications->serverStatusHandlers.push_back(post("ServerStatus"));
    }

    std::shared_ptr<Bridge> bridge;
    std::unique_ptr<Client::Connection> connection;
    std::uint64_t lastId = 0;  // under the GIL
    std::mutex opsMutex;
    std::unordered_map<std::uint64_t, std::function<void()>> ops;
};

// For the benchmark: `count` pings sent at once through a C++ `Connection` (no Python in the
// path), in seconds from the first send to the last reply; the GIL is released throughout.
double PingBurst(const std::string& commands, int count) {
    py::gil_scoped_release release;
    Client::ConnectionOptions options;
    options.name = "burst";
    options.commandEndPoint = commands;
    Client::Connection connection(options);
    if (!connection.WaitConnected(std::chrono::seconds(10))) {
        throw std::runtime_error("no server at " + commands);
    }
    std::vector<Client::Operation<Plexis::Tessel::HighLevelOperations::Commands::PingCommandParams>>
        operations;
    operations.reserve(static_cast<std::size_t>(count));
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        operations.push_back(connection.Send(Plexis::Tessel::HighLevelOperations::Commands::PingCommandParams{}));
    }
    for (const auto& operation : operations) {
        if (operation.Wait() != Client::Outcome::Replied) {
            throw std::runtime_error("a ping was not answered");
        }
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

void BindConnection(py::module_& module) {
    module.def("ping_burst", &PingBurst, py::arg("commands"), py::arg("count"));
    py::class_<PyConnection>(module, "Connection")
        .def(py::init<const std::string&, const std::string&, const std::vector<std::string>&,
                      const std::vector<std::string>&, const std::string&, double, std::size_t,
                      const py::object&>(),
             py::arg("name"), py::arg("commands"), py::arg("notifications"), py::arg("topics"),
             py::arg("server_key"), py::arg("time_limit"), py::arg("notification_bytes"),
             py::arg("wake"))
        .def("send", &PyConnection::Send, py::arg("command"), py::arg("json"),
             py::arg("time_limit"), py::arg("stream"), py::arg("latest"))
        .def("cancel", &PyConnection::Cancel)
        .def("take", &PyConnection::Take)
        .def("dropped", &PyConnection::Dropped)
        .def("wait_connected", &PyConnection::WaitConnected)
        .def("close", &PyConnection::Close)
        .def_property_readonly("closed", &PyConnection::Closed);

    py::list outcomes;
    for (auto outcome : {Client::Outcome::Pending, Client::Outcome::Replied, Client::Outcome::NotSent,
                         Client::Outcome::LinkLost, Client::Outcome::TimedOut,
                         Client::Outcome::Cancelled, Client::Outcome::BadReply}) {
        outcomes.append(py::make_tuple(static_cast<int>(outcome), Client::ToString(outcome)));
    }
    module.attr("OUTCOMES") = outcomes;
}

}  // namespace Korvo::Python
