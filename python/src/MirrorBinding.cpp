// `_tessel.Mirror` and `_tessel.SourceSnapshot`: a `Client::Mirror` whose changes reach the event
// loop through a `Bridge`, and its snapshots read a part at a time. Values cross as the JSON form
// of replies, written on the mirror's thread for changes and on the caller's thread, with the
// GIL released, for snapshots. The mirror's watcher only writes text and posts it: it never
// touches a Python object.

#include "Bindings.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

#include <pybind11/stl.h>

#include <Korvo/Plexis/Tessel/Client/Mirror.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetAnglesGroupsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandReply.h>
#include <Korvo/Plexis/Tessel/Json/CommandReplyJson.h>

#include "Bridge.h"

namespace Korvo::Python {
namespace {

namespace py = pybind11;
namespace Client = Plexis::Tessel::Client;
namespace Commands = Plexis::Tessel::HighLevelOperations::Commands;
namespace Channels = Plexis::Data::Channels;
namespace Clips = Plexis::Data::Clips;

std::chrono::milliseconds Period(double seconds, const char* what) {
    if (!(seconds > 0) || seconds > 24 * 3600.0) {
        throw std::invalid_argument(std::string(what) + " is between 0 and 24 hours");
    }
    return std::chrono::milliseconds(std::max<std::int64_t>(1, std::llround(seconds * 1000)));
}

double Seconds(std::chrono::system_clock::time_point at) {
    return std::chrono::duration<double>(at.time_since_epoch()).count();
}

// Values cross in the JSON form of the listing reply that carries their kind (a player state in
// a GetChannelsCommandReply, a clip in a GetClipsCommandReply, ...); the Python side takes them
// out again. A compact JSON text holds no line break, so several are joined with "\n".
std::string Text(const Commands::CommandReply& reply) {
    return Plexis::Tessel::Json::CommandReplyToJson(reply);
}

std::string Carry(int, const Plexis::Data::Servers::ServerInfo& value) {
    Commands::GetServersCommandReply reply;
    reply.servers.push_back(value);
    return Text(reply);
}
std::string Carry(const Channels::Guid& key, const Channels::PlayerState& value) {
    Commands::GetChannelsCommandReply reply;
    reply.playerStates.emplace(key, value);
    return Text(reply);
}
// Two lines: the state, then the ranges and loop flag as a train.
std::string Carry(const Channels::Guid& key, const Client::MirroredRecorder& value) {
    Commands::GetChannelsCommandReply states;
    states.recorderStates.emplace(key, value.state);
    Commands::GetTrainsCommandReply ranges;
    Clips::Train train;
    train.recordingRanges = value.ranges;
    train.isLoopRecording = value.isLoopRecording;
    ranges.trains.push_back(std::move(train));
    return Text(states) + "\n" + Text(ranges);
}
std::string Carry(const std::string&, const Clips::Clip& value) {
    Commands::GetClipsCommandReply reply;
    reply.clips.push_back(value);
    return Text(reply);
}
std::string Carry(const std::string&, const Plexis::Data::Sequences::Playlist& value) {
    Commands::GetPlaylistsCommandReply reply;
    reply.playlists.push_back(value);
    return Text(reply);
}
std::string Carry(const std::string&, const Clips::Groups::AnglesGroup& value) {
    Commands::GetAnglesGroupsCommandReply reply;
    reply.anglesGroups.push_back(value);
    return Text(reply);
}
std::string Carry(const std::string&, const Clips::Train& value) {
    Commands::GetTrainsCommandReply reply;
    reply.trains.push_back(value);
    return Text(reply);
}

std::string KeyText(int key) { return std::to_string(key); }
std::string KeyText(const Channels::Guid& key) { return key.ToString(); }
std::string KeyText(const std::string& key) { return key; }

// A value, or empty lines (as many as its kind has) for none.
template <class Key, class Item>
std::string CarryOrNone(const Key& key, const std::shared_ptr<const Item>& value) {
    if (value) {
        return Carry(key, *value);
    }
    return std::is_same_v<Item, Client::MirroredRecorder> ? "\n" : "";
}

// A change as the bridge carries it: its kind, its source and the change as a code, and as text
// the lines of `before`, those of `after`, then the key (last, as it is not JSON). A sync state
// change is "serverId\nbefore\nafter".
struct EventText {
    const char* kind;
    std::size_t source;
    int change;
    std::string text;
};

template <class Key, class Item>
EventText Describe(const char* kind, const Client::ItemChanged<Key, Item>& event) {
    return {kind, event.source, static_cast<int>(event.change),
            CarryOrNone(event.key, event.before) + "\n" + CarryOrNone(event.key, event.after) +
                "\n" + KeyText(event.key)};
}

EventText Describe(const Client::MirrorEvent& event) {
    struct Visitor {
        EventText operator()(const Client::SyncStateChanged& e) const {
            return {"SyncStateChanged", e.source, 0,
                    std::to_string(e.serverId) + "\n" + Client::ToString(e.before) + "\n" +
                        Client::ToString(e.after)};
        }
        EventText operator()(const Client::ServerChanged& e) const {
            return Describe("ServerChanged", e);
        }
        EventText operator()(const Client::PlayerChanged& e) const {
            return Describe("PlayerChanged", e);
        }
        EventText operator()(const Client::RecorderChanged& e) const {
            return Describe("RecorderChanged", e);
        }
        EventText operator()(const Client::ClipChanged& e) const {
            return Describe("ClipChanged", e);
        }
        EventText operator()(const Client::PlaylistChanged& e) const {
            return Describe("PlaylistChanged", e);
        }
        EventText operator()(const Client::AnglesGroupChanged& e) const {
            return Describe("AnglesGroupChanged", e);
        }
        EventText operator()(const Client::TrainChanged& e) const {
            return Describe("TrainChanged", e);
        }
    };
    return std::visit(Visitor{}, event);
}

// Every entry of a table as (key, carried value).
template <class Map>
std::vector<std::pair<std::string, std::string>> CarryAll(const Map& map) {
    std::vector<std::pair<std::string, std::string>> out;
    out.reserve(map.size());
    for (const auto& [key, value] : map) {
        if (value) {
            out.emplace_back(KeyText(key), Carry(key, *value));
        }
    }
    return out;
}

// What `function` returns, run with the GIL released.
template <class Function>
auto Release(Function&& function) {
    py::gil_scoped_release release;
    return function();
}

using Table = std::vector<std::pair<std::string, std::string>>;

// One source of a snapshot. Each part is written when asked for, so that a caller who only
// looks at the players does not pay for the catalogue.
class PySourceSnapshot {
public:
    explicit PySourceSnapshot(Client::SourceSnapshot source) : source(std::move(source)) {}

    std::string Name() const { return source.Name(); }
    std::string CatalogueState() const { return Client::ToString(source.CatalogueState()); }
    double CatalogueConfirmedAt() const { return Seconds(source.CatalogueConfirmedAt()); }

    // (number, sync state, confirmed at, carried server information) per server.
    std::vector<std::tuple<int, std::string, double, std::string>> Servers() const {
        return Release([&] {
            std::vector<std::tuple<int, std::string, double, std::string>> out;
            for (const auto& [number, server] : source.Servers()) {
                out.emplace_back(number, Client::ToString(server.state),
                                 Seconds(server.confirmedAt), Carry(number, server.info));
            }
            return out;
        });
    }
    Table Players() const { return Release([&] { return CarryAll(source.Players()); }); }
    Table Recorders() const { return Release([&] { return CarryAll(source.Recorders()); }); }
    Table Playlists() const { return Release([&] { return CarryAll(source.Playlists()); }); }
    Table AnglesGroups() const { return Release([&] { return CarryAll(source.AnglesGroups()); }); }
    Table Trains() const { return Release([&] { return CarryAll(source.Trains()); }); }

    // The carried clip, or an empty text when the mirror has none of that identifier.
    std::string Clip(const std::string& umId) const {
        return Release([&] {
            const auto clip = source.FindClip(umId);
            return clip ? Carry(umId, *clip) : std::string();
        });
    }
    std::size_t ClipCount() const { return source.ClipCount(); }
    std::vector<std::string> ClipIds() const {
        return Release([&] {
            std::vector<std::string> ids;
            ids.reserve(source.ClipCount());
            source.ForEachClip([&](const auto& clip) { ids.push_back(clip->umId); });
            return ids;
        });
    }

private:
    Client::SourceSnapshot source;
};

class PyMirror {
public:
    // `sources`: (name, commands, notifications, server key, time limit) per endpoint pair.
    using Source =
        std::tuple<std::string, std::string, std::vector<std::string>, std::string, double>;

    PyMirror(const std::vector<Source>& sources, double channelCheck, double catalogueCheck,
             std::size_t heldBytes, double listingTimeLimit, std::size_t eventBytes,
             const py::object& wake)
        : bridge(std::make_shared<Bridge>(wake.ptr(), eventBytes)), sources(sources.size()) {
        try {
            Client::MirrorOptions options;
            for (const auto& [name, commands, notifications, key, limit] : sources) {
                Client::ConnectionOptions connection;
                connection.name = name;
                connection.commandEndPoint = commands;
                connection.notificationEndPoints = notifications;
                connection.serverPublicKey = key;
                connection.timeLimit = Period(limit, "a time limit");
                options.sources.push_back(std::move(connection));
            }
            options.channelCheckPeriod = Period(channelCheck, "the channel check period");
            options.catalogueCheckPeriod = Period(catalogueCheck, "the catalogue check period");
            options.heldNotificationBytes = heldBytes;
            options.listingTimeLimit = Period(listingTimeLimit, "the listing time limit");
            py::gil_scoped_release release;
            mirror = std::make_unique<Client::Mirror>(std::move(options));
            // Changes before this watcher was added are in the first snapshot the caller takes.
            mirror->Watch([bridge = bridge, listening = listening](const Client::MirrorEvent& event) {
                // Nothing is written while nobody on the loop reads changes: a resync of a large
                // catalogue would otherwise pay for text that is thrown away.
                if (!listening->load(std::memory_order_relaxed)) {
                    return;
                }
                EventText text = Describe(event);
                bridge->PostNotification(text.kind, std::move(text.text), text.source, text.change);
            });
        } catch (...) {
            Close();
            bridge->ReleaseWake();
            throw;
        }
    }

    ~PyMirror() { Close(); }

    PyMirror(const PyMirror&) = delete;
    PyMirror& operator=(const PyMirror&) = delete;

    std::vector<PySourceSnapshot> Snapshot() const {
        const Client::Mirror& live = Live();
        Client::MirrorSnapshot snapshot;
        {
            py::gil_scoped_release release;
            snapshot = live.Snapshot();
        }
        std::vector<PySourceSnapshot> sources;
        for (const auto& source : snapshot.Sources()) {
            sources.emplace_back(source);
        }
        return sources;
    }

    py::dict Statistics() const {
        const Client::MirrorStatistics statistics = Live().Statistics();
        py::dict out;
        out["notifications_applied"] = statistics.notificationsApplied;
        out["notifications_dropped"] = statistics.notificationsDropped;
        out["resyncs"] = statistics.resyncs;
        out["verifications"] = statistics.verifications;
        std::uint64_t differences = 0;
        for (const auto count : statistics.differences) {
            differences += count;
        }
        out["differences"] = differences;
        return out;
    }

    void Resync(std::size_t source) {
        Client::Mirror& live = Live();
        if (source >= sources) {
            throw std::out_of_range("no source " + std::to_string(source));
        }
        py::gil_scoped_release release;
        live.Resync(source);
    }

    // Whether changes are written and handed to the loop at all.
    void Listen(bool on) { listening->store(on, std::memory_order_relaxed); }

    py::list Take() { return bridge->Take(); }
    std::uint64_t Dropped() const { return bridge->Dropped(); }

    // Stops the mirror's thread and closes its connections with the GIL released: the thread's
    // last wake-up may need it.
    void Close() {
        if (!mirror) {
            return;
        }
        bridge->Close();
        auto closing = std::move(mirror);
        {
            py::gil_scoped_release release;
            closing.reset();
        }
        bridge->ReleaseWake();
    }

    bool Closed() const { return !mirror; }

private:
    Client::Mirror& Live() const {
        if (!mirror) {
            throw std::runtime_error("the mirror is closed");
        }
        return *mirror;
    }

    std::shared_ptr<Bridge> bridge;
    std::shared_ptr<std::atomic<bool>> listening = std::make_shared<std::atomic<bool>>(false);
    std::unique_ptr<Client::Mirror> mirror;
    const std::size_t sources;
};

}  // namespace

void BindMirror(py::module_& module) {
    py::class_<PySourceSnapshot>(module, "SourceSnapshot")
        .def_property_readonly("name", &PySourceSnapshot::Name)
        .def_property_readonly("catalogue_state", &PySourceSnapshot::CatalogueState)
        .def_property_readonly("catalogue_confirmed_at", &PySourceSnapshot::CatalogueConfirmedAt)
        .def("servers", &PySourceSnapshot::Servers)
        .def("players", &PySourceSnapshot::Players)
        .def("recorders", &PySourceSnapshot::Recorders)
        .def("playlists", &PySourceSnapshot::Playlists)
        .def("angles_groups", &PySourceSnapshot::AnglesGroups)
        .def("trains", &PySourceSnapshot::Trains)
        .def("clip", &PySourceSnapshot::Clip)
        .def("clip_count", &PySourceSnapshot::ClipCount)
        .def("clip_ids", &PySourceSnapshot::ClipIds);
    py::class_<PyMirror>(module, "Mirror")
        .def(py::init<const std::vector<PyMirror::Source>&, double, double, std::size_t, double,
                      std::size_t, const py::object&>(),
             py::arg("sources"), py::arg("channel_check"), py::arg("catalogue_check"),
             py::arg("held_bytes"), py::arg("listing_time_limit"), py::arg("event_bytes"),
             py::arg("wake"))
        .def("snapshot", &PyMirror::Snapshot)
        .def("statistics", &PyMirror::Statistics)
        .def("resync", &PyMirror::Resync)
        .def("listen", &PyMirror::Listen)
        .def("take", &PyMirror::Take)
        .def("dropped", &PyMirror::Dropped)
        .def("close", &PyMirror::Close)
        .def_property_readonly("closed", &PyMirror::Closed);
}

}  // namespace Korvo::Python
