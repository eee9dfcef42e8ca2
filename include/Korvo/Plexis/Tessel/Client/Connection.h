#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

#include <Korvo/Common/Messaging/ConnectionState.h>
#include <Korvo/Common/Messaging/TransportOptions.h>
#include <Korvo/Plexis/Tessel/Client/CommandClient.h>
#include <Korvo/Plexis/Tessel/Client/CommandTypes.h>
#include <Korvo/Plexis/Tessel/Client/NotificationClient.h>

namespace Korvo::Plexis::Tessel::Client {

/// How far a command got. Every operation ends with exactly one of these, reported as soon as it
/// is known.
enum class Outcome : std::uint8_t {
    Pending,    ///< not ended yet
    Replied,    ///< the server replied; the reply is there
    NotSent,    ///< never reached the wire (link down, connection closed): it did not run, and
                ///< sending it again is safe
    LinkLost,   ///< sent, then the link dropped before the final reply: it may or may not have run
    TimedOut,   ///< the time limit passed; the request is forgotten and a late reply is dropped
    Cancelled,  ///< cancelled by the application, replaced by a newer value in the latest-value
                ///< lane, or ended by the connection's destructor; it may have run
    BadReply,   ///< a reply came that cannot be decoded, is of a class the command cannot
                ///< receive, or was over `CommandClient::Limits::waitingReplyBytes`
};

/// "Pending", "Replied", "NotSent", ...
const char* ToString(Outcome outcome) noexcept;

/// Everything a `Connection` needs to reach one server.
struct ConnectionOptions {
    /// A readable name, at the start of every line the connection logs (logger "Connection").
    std::string name = "tessel";
    /// The server's command endpoint, in `Common::Messaging::EndPoint`'s text form.
    std::string commandEndPoint;
    /// Its notification endpoints; empty: no notification link is made.
    std::vector<std::string> notificationEndPoints;
    /// The notification topics to subscribe to; empty: every notification.
    std::vector<std::string> topics;
    /// The server's CURVE public key (Z85 or hexadecimal), used for every endpoint above that
    /// does not carry one of its own; empty: those links are not encrypted.
    std::string serverPublicKey;
    /// The time limit of a call that does not set its own.
    std::chrono::milliseconds timeLimit{5000};
    /// Socket-level time and byte limits of both links.
    Common::Messaging::TransportOptions transport;
    /// What the command link holds for one request.
    CommandClient::Limits limits;
};

template <class Params>
class Operation;

namespace Detail {
class OperationCore;  // the state of one call, shared by the connection and its `Operation`
class Engine;         // the state of a connection, shared with its threads
}  // namespace Detail

// What the templates below call into the library for; not for applications.
namespace Calls {

using Detail::OperationCore;

// The operations of `Operation<Params>`, type-erased.
Outcome OutcomeOf(const OperationCore& core);
const Data::Guid& GuidOf(const OperationCore& core);
const std::string& ReasonOf(const OperationCore& core);
const HighLevelOperations::Commands::CommandReply* ReplyOf(const OperationCore& core);
Outcome WaitFor(const OperationCore& core, const std::chrono::milliseconds* limit);
void Cancel(OperationCore& core);

using PartCallback = std::function<void(const HighLevelOperations::Commands::CommandReply&)>;
using DoneCallback = std::function<void(const std::shared_ptr<OperationCore>&)>;

// What a typed call hands to the untyped engine.
struct CallSetup {
    std::string_view commandName;
    CommandFamily family;
    std::vector<int> replyTypes;   // type codes of the reply classes the command may receive
    int partType;                  // the one reply class that may come in parts
    std::chrono::milliseconds timeLimit;
    PartCallback onPart;
    DoneCallback onDone;
    int retries;
    std::string laneKey;  // not empty: the latest-value lane of that key
};

template <class Tuple>
struct TypeCodes;
template <class... Replies>
struct TypeCodes<std::tuple<Replies...>> {
    static std::vector<int> Get() { return {Replies::kType...}; }
    template <class R>
    static constexpr bool kContains = (std::is_same_v<R, Replies> || ...);
};

// The lane key of a command whose values may replace each other, or "" for any other.
std::string LaneKeyOf(const HighLevelOperations::Commands::DialCommandParams& params);

}  // namespace Calls

/// Whether `Params` is a continuous control that may use the latest-value lane
/// (`Connection::SendLatest`): a command whose newer value makes an older, unsent one pointless.
/// Only dial; commands that accumulate (step) or start something (play) are not.
template <class Params>
inline constexpr bool kIsContinuous =
    std::is_same_v<Params, HighLevelOperations::Commands::DialCommandParams>;

/// How one call is made; every field is optional.
template <class Params>
struct CallOptions {
    /// The reply class that answers `Params` when it runs.
    using Reply = typename CommandTraits<Params>::Reply;

    /// The time limit of this call; zero: `ConnectionOptions::timeLimit`.
    std::chrono::milliseconds timeLimit{0};
    /// Called once when the operation ends, whatever the outcome, on the connection's callback
    /// thread (see `Connection`).
    std::function<void(const Operation<Params>&)> onDone;
    /// Called with each part of a reply that arrives in "[part]" messages, in order, on the
    /// callback thread, before `onDone`. When set, the parts are handed over instead of being
    /// joined: the reply of the operation holds the final message only. Lets a long listing be
    /// processed without holding all of it. Parts not yet handed over wait undecoded in the
    /// command link's reply queue: when a slow callback lets more than
    /// `CommandClient::Limits::waitingReplyBytes` wait, the operation ends with `BadReply`.
    std::function<void(const Reply&)> onPart;
    /// How many times to send a command again after `NotSent` or `LinkLost`, within the time
    /// limit. Allowed for commands that only read (`CommandTraits<Params>::kReadOnly`); a
    /// non-zero value for any other throws `std::invalid_argument` from `Send`. Each new
    /// attempt waits until the link is connected again.
    int retries = 0;
};

/// One command sent through a `Connection`: poll it, wait for it, cancel it. A copyable handle;
/// the operation runs to its end whether or not a handle is kept. Any thread.
template <class Params>
class Operation {
public:
    using Replies = typename CommandTraits<Params>::Replies;

    /// The command identifier the command was sent with (filled in when the parameters had
    /// none).
    const Data::Guid& CommandGuid() const { return Calls::GuidOf(*core); }

    /// The outcome so far; `Pending` until the operation ends. Does not wait.
    Outcome GetOutcome() const { return Calls::OutcomeOf(*core); }
    bool IsDone() const { return GetOutcome() != Outcome::Pending; }

    /// Waits until the operation ends (its time limit bounds the wait) and returns the outcome.
    /// Throws `std::logic_error` when called on the connection's callback thread (from any
    /// callback of the connection), where it would wait for itself.
    Outcome Wait() const { return Calls::WaitFor(*core, nullptr); }

    /// Waits at most `limit`; `Pending` when the operation has not ended by then. Throws like
    /// `Wait`.
    Outcome Wait(std::chrono::milliseconds limit) const { return Calls::WaitFor(*core, &limit); }

    /// Ends the operation with `Cancelled` unless it has ended already; a reply that comes later
    /// is dropped. The command may still run on the server if it was sent. Never waits for a
    /// callback.
    void Cancel() const { Calls::Cancel(*core); }

    /// The reply as `R` (one of `Replies`): when the outcome is `Replied` with a reply of that
    /// class, else null. A reply that came in parts is joined into one object (its lists
    /// concatenated in order), unless `CallOptions::onPart` was set. Valid as long as a handle
    /// of this operation lives.
    template <class R>
    const R* Get() const {
        static_assert(Calls::TypeCodes<Replies>::template kContains<R>,
                      "this command never receives that reply class");
        return dynamic_cast<const R*>(Calls::ReplyOf(*core));
    }

    /// The reply, of any class, when the outcome is `Replied`; else null.
    const HighLevelOperations::Commands::CommandReply* GetReply() const {
        return Calls::ReplyOf(*core);
    }

    /// For `BadReply`, `NotSent`, `LinkLost` and `Cancelled`: what happened, in words; may be
    /// empty.
    const std::string& Reason() const { return Calls::ReasonOf(*core); }

    explicit Operation(std::shared_ptr<Calls::OperationCore> core) : core(std::move(core)) {}

private:
    std::shared_ptr<Calls::OperationCore> core;
};

/// One replay server, as an application sees it: typed asynchronous commands over one command
/// link (both families), the notification link, and the link's state.
///
/// Threads. The connection runs one callback thread of its own: every callback the application
/// gives it (`onDone`, `onPart`, state watchers) runs there, one at a time, in order, never
/// while the library holds a lock of its own. Keep callbacks short: a slow one delays all the
/// others. A callback may call `Send`, `SendLatest` and `Cancel`, but not `Wait` (it throws
/// `std::logic_error`) nor the destructor. Replies are received and decoded by the command
/// link's reception thread, which also wakes a thread in `Wait`; notifications run on the
/// notification client's thread (see `NotificationClient`). All members may be called from any
/// thread.
///
/// Nothing is sent again by the library on its own, except for read-only commands given
/// `CallOptions::retries`.
class Connection {
public:
    /// Starts connecting (in the background) and subscribing, and starts the callback thread.
    /// Throws `std::invalid_argument` for an endpoint or key that does not parse and
    /// `Common::Messaging::TransportException` when a link cannot be set up.
    explicit Connection(ConnectionOptions options);

    /// Ends every operation still pending with `Cancelled` (their `onDone` is called), closes
    /// both links and joins the callback thread. Must not be called from a callback.
    ~Connection();

    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Sends one command; its class alone decides the command name and the replies it may get.
    /// An empty `commandGuid` is filled with a fresh identifier (`Operation::CommandGuid`). Never
    /// waits for the server: an operation that cannot be sent is returned already ended with
    /// `NotSent` (its `onDone` still runs on the callback thread). Throws what converting the
    /// parameters throws (`InvalidConversionException`) and `std::invalid_argument` for retries
    /// of a command that writes.
    template <class Params>
    Operation<Params> Send(Params params, CallOptions<Params> options = {}) {
        return Start(std::move(params), std::move(options), false);
    }

    /// Sends a continuous control (see `kIsContinuous`) through the latest-value lane of its
    /// players: at most one command of the lane is in flight; one sent while another is in
    /// flight waits, and replaces (ends with `Cancelled`) any older one still waiting. The last
    /// value set is always the last one to reach the server, and nothing queues behind a slow
    /// server. The waiting one is sent when the one in flight ends, whatever its outcome.
    template <class Params>
    Operation<Params> SendLatest(Params params, CallOptions<Params> options = {}) {
        static_assert(kIsContinuous<Params>, "only continuous controls use the latest-value lane");
        return Start(std::move(params), std::move(options), true);
    }

    /// The readable name given in the options.
    const std::string& Name() const;

    /// The command link's state.
    Common::Messaging::ConnectionState GetState() const;

    /// Waits until the command link is `Connected`, at most `limit`; whether it is. Throws
    /// `std::logic_error` on the callback thread.
    bool WaitConnected(std::chrono::milliseconds limit) const;

    /// Calls `watcher` on the callback thread with each new state of the command link, starting
    /// with the state it is in now. Returns an identifier for `Unwatch`.
    int Watch(std::function<void(Common::Messaging::ConnectionState)> watcher);

    /// Removes a watcher; it is not called again once this returns, unless it is running now
    /// (then this call comes from another thread than the callback thread and does not wait).
    void Unwatch(int watcher);

    /// The notification link, or null when no notification endpoint was given. Fill its lists
    /// as `NotificationClient` says.
    NotificationClient* Notifications();

    /// The command client underneath (both families), for what `Connection` does not offer.
    CommandClient& Commands();

private:
    template <class Params>
    Operation<Params> Start(Params params, CallOptions<Params> options, bool latest) {
        static_assert(kIsCommand<Params>, "not a command parameters class");
        using Traits = CommandTraits<Params>;
        if (options.retries != 0 && !Traits::kReadOnly) {
            throw std::invalid_argument(
                "Connection: only commands that only read may be sent again.");
        }
        Calls::CallSetup setup{Traits::kName,
                                Traits::kFamily,
                                Calls::TypeCodes<typename Traits::Replies>::Get(),
                                Traits::Reply::kType,
                                options.timeLimit,
                                {},
                                {},
                                options.retries,
                                {}};
        if (options.onPart) {
            setup.onPart = [onPart = std::move(options.onPart)](
                               const HighLevelOperations::Commands::CommandReply& part) {
                onPart(static_cast<const typename Traits::Reply&>(part));
            };
        }
        if (options.onDone) {
            setup.onDone = [onDone = std::move(options.onDone)](
                               const std::shared_ptr<Calls::OperationCore>& core) {
                onDone(Operation<Params>(core));
            };
        }
        if constexpr (kIsContinuous<Params>) {
            if (latest) {
                setup.laneKey = Calls::LaneKeyOf(params);
            }
        }
        auto owned = std::make_unique<Params>(std::move(params));
        auto* raw = owned.get();
        return Operation<Params>(StartUntyped(std::move(owned), *raw, std::move(setup)));
    }

    std::shared_ptr<Calls::OperationCore> StartUntyped(
        std::unique_ptr<HighLevelOperations::Commands::CommandParams> owned,
        HighLevelOperations::Commands::CommandParams& params, Calls::CallSetup setup);

    std::shared_ptr<Detail::Engine> engine;
};

}  // namespace Korvo::Plexis::Tessel::Client
