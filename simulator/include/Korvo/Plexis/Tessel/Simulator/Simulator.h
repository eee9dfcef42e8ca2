#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace Korvo::Plexis::Tessel::Simulator {

/// Faults the simulator injects into its replies, to test how a client copes. All off by default.
/// Fractions are probabilities between 0 and 1, drawn per command from the simulator's seeded
/// random generator; delays are at most one hour.
struct Faults {
    std::chrono::milliseconds replyDelay{0};   ///< every reply waits this long before it is sent
    std::chrono::milliseconds replyJitter{0};  ///< plus a random extra delay up to this much
    double dropFraction = 0;       ///< commands whose reply (every part of it) is never sent
    double malformedFraction = 0;  ///< commands whose final reply carries undecodable bytes
    double duplicateFraction = 0;  ///< commands whose final reply is sent twice
    bool silent = false;           ///< commands are read and ignored: the server stops answering
    /// Notifications never published, as a publisher dropping for a slow subscriber would.
    double notificationDropFraction = 0;
    /// Notifications held back by `notificationDelay` and published after later ones.
    double notificationDelayFraction = 0;
    std::chrono::milliseconds notificationDelay{0};
};

/// The largest count of servers, of channels in all, or of seeded items the options accept.
inline constexpr int kMaxCount = 100000;

/// How a simulator starts: where it listens, what it holds, and which faults it injects.
struct SimulatorOptions {
    /// Where the command ROUTER socket binds; port `*` picks a free one (read it back with
    /// `CommandEndpoint()`). `inproc://` addresses live in the library's shared ZeroMQ context.
    std::string commandAddress = "tcp://127.0.0.1:*";
    /// Where the notification publisher binds; same rules.
    std::string notificationAddress = "tcp://127.0.0.1:*";
    /// The server's CURVE secret key (Z85, 40 characters); empty for unencrypted links.
    std::string curveSecretKey;

    std::uint64_t seed = 1;     ///< makes the seeded content and the fault draws repeatable
    int servers = 2;            ///< servers, numbered from 1, named "replay-<n>"
    int playersPerServer = 4;   ///< players of each server, channels 0 .. n-1
    int recordersPerServer = 2; ///< recorders of each server, numbered after its players
    int clips = 50;             ///< clips made by the seed, spread over the servers
    int playlists = 3;          ///< playlists made by the seed, of seeded clips
    int anglesGroups = 3;       ///< angles groups made by the seed, of seeded clips

    /// Listings (clips, angles groups) and clip or playlist results longer than this are sent
    /// as "[part]" messages of at most this many items, then the final message.
    std::size_t partSize = 500;
    /// A clip command touching more clips than this publishes one mass notification instead of
    /// one per clip.
    std::size_t massThreshold = 10;

    /// When set, clips, playlists and angles groups are read from this file at start (when it
    /// exists) instead of being seeded, and written back after each change and at the end; the
    /// file is replaced atomically.
    std::string stateFile;
    /// The largest state file read: a longer one, or one that is not a regular file, stops the
    /// start with `std::runtime_error` before anything of it is read.
    std::size_t stateFileLimitBytes = std::size_t{256} << 20;

    /// Memory bounds, in bytes of reply payload. Replies waiting for a peer that does not read
    /// them: at most `peerQueueBytes` for one peer and `sendQueueBytes` for all together (plus
    /// up to 8 messages per peer in ZeroMQ's own queue); replies held back by `replyDelay`: at
    /// most `delayedReplyBytes`, of which at most `peerQueueBytes` for one peer. A reply beyond a bound is dropped and counted
    /// (`Statistics::repliesShed`); one message is always let through to an empty queue. What a
    /// departed peer held is freed.
    std::size_t peerQueueBytes = std::size_t{16} << 20;
    std::size_t sendQueueBytes = std::size_t{64} << 20;
    std::size_t delayedReplyBytes = std::size_t{64} << 20;
    /// Subscription topics kept for `WaitForSubscriber`, in bytes; beyond, further ones are not
    /// kept (counted in `Statistics::subscriptionsIgnored`), though still served by the publisher.
    std::size_t subscriptionBytes = std::size_t{4} << 20;

    Faults faults;  ///< faults injected from the start
};

/// What the simulator has seen and done since it started; counters only grow.
struct Statistics {
    std::uint64_t commandsReceived = 0;    ///< well-formed commands read
    std::uint64_t malformedReceived = 0;   ///< messages dropped for a bad envelope
    std::uint64_t repliesSent = 0;         ///< reply messages sent, parts included
    std::uint64_t repliesDropped = 0;      ///< replies withheld by a fault
    std::uint64_t notificationsPublished = 0;
    std::uint64_t restarts = 0;
    std::uint64_t repliesShed = 0;           ///< replies dropped at a memory bound
    std::uint64_t subscriptionsIgnored = 0;  ///< topics beyond `subscriptionBytes`, not kept
    std::uint64_t notificationsDropped = 0;  ///< withheld by `notificationDropFraction`
    std::uint64_t notificationsDelayed = 0;  ///< held back by `notificationDelayFraction`
    std::uint64_t unannouncedChanges = 0;    ///< made by the `...Unannounced` calls
};

/// A replay-server simulator speaking the client's protocol: a ROUTER socket answers the 30
/// commands from an in-memory model of servers, players, recorders, clips, trains, playlists and
/// angles groups, and a publisher sends a notification for every change. Time runs with the
/// clock at 50 fields a second: playing players move, recording recorders grow their trains.
///
/// It owns one thread, which alone touches the sockets and the model; the methods below may be
/// called from any thread (not from several at once for `Stop`). The wire conventions it follows
/// are those of docs/protocol.md; what it models is described in docs/simulator.md.
class Simulator {
public:
    /// Seeds (or loads) the model, binds both sockets and starts the thread. Throws
    /// `std::invalid_argument` for bad options (a count out of its range, see `kMaxCount`),
    /// `std::runtime_error` at once when a socket cannot bind (an address in use included) or
    /// the state file cannot be read.
    explicit Simulator(SimulatorOptions options);

    /// Stops (see `Stop`).
    ~Simulator();

    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /// The endpoint a client connects its commands to, with the actual port and, for an
    /// encrypted server, ";curve=<public key>": ready for `Common::Messaging::EndPoint`.
    const std::string& CommandEndpoint() const noexcept;
    /// The same for notifications.
    const std::string& NotificationEndpoint() const noexcept;
    /// The server's CURVE public key (Z85), empty when unencrypted.
    const std::string& PublicKey() const noexcept;

    /// Replaces the injected faults; applies to commands read from now on. Throws
    /// `std::invalid_argument` for a fraction outside 0 .. 1 (NaN included) or a delay outside
    /// 0 .. 1 hour.
    void SetFaults(const Faults& faults);
    Faults GetFaults() const;

    /// Simulates a server restart: closes both sockets (replies not yet sent are lost), binds the
    /// same endpoints again and announces every server with "ServerAdded". The model is kept, as
    /// a server keeps its storage. Returns once the sockets are bound again. When an address is
    /// still taken after 2 seconds it throws `std::runtime_error` naming it; the simulator then
    /// keeps running unbound and tries again every second until it is bound.
    void Restart();

    /// Server `serverId` loses the network: "DisconnectedFromNetwork" is published and commands
    /// to its channels fail until `ReturnToNetwork`, which publishes "ServerAdded". False for an
    /// unknown server.
    bool DropOffNetwork(int serverId);
    bool ReturnToNetwork(int serverId);

    /// Changes a channel as an operator at the server's own panel would, publishing nothing: an
    /// idle player loads the first clip (cued), any other player goes idle; a recorder starts or
    /// stops recording. `channel` is a channel's text ("player:1:0"). False for an unknown one.
    bool ChangeChannelUnannounced(const std::string& channel);
    /// Renames a clip (by its material identifier) the same way, publishing nothing. False for an
    /// unknown clip.
    bool ChangeClipUnannounced(const std::string& umId, const std::string& name);

    /// Adds a server with the configured channels, publishing "ServerAdded"; returns its number.
    int AddServer();
    /// Removes a server and its channels, publishing "ServerRemoved". False for an unknown one.
    bool RemoveServer(int serverId);

    /// Waits until a subscriber has subscribed to a topic that `topic` begins with (the empty
    /// topic receives everything), so that what is published next reaches it. False after
    /// `limit`.
    bool WaitForSubscriber(const std::string& topic, std::chrono::milliseconds limit);

    /// A copy of the counters.
    Statistics GetStatistics() const;

    /// Number of clips the model holds now.
    std::size_t ClipCount() const;

    /// Ends the thread, writes the state file when one is set, and closes the sockets. A second
    /// call returns at once.
    void Stop();

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

/// A fresh CURVE key pair in Z85: {public, secret}. Throws `std::runtime_error` when the ZeroMQ
/// library was built without CURVE.
std::pair<std::string, std::string> GenerateCurveKeyPair();

}  // namespace Korvo::Plexis::Tessel::Simulator
