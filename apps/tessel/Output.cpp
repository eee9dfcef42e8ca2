#include "Output.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/AnglesGroupCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ChannelCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/ClipCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/FailureReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetAnglesGroupsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetChannelsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetClipsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetMultiviewerDataCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetPlaylistsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetServersCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/GetTrainsCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/PlaylistCommandReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/SuccessReply.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/UnknownCommandReply.h>
#include <Korvo/Plexis/Tessel/Json/CommandReplyJson.h>

#include "Text.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Commands = HighLevelOperations::Commands;
using Commands::CommandReply;

namespace {

// ---------------------------------------------------------------------------------------------
// One function set per reply class: how many items a message holds, the tables its messages
// share (`Open`), how one message is shown into them (`Show`), and which of its items failed.
// A class whose messages each print on their own opens no table.

using Tables = std::vector<Table>;

template <class R, class Item, class AddRow>
void ShowItems(const R& reply, const std::vector<Item> R::*items, Tables& tables, AddRow addRow) {
    for (const Item& item : reply.*items) {
        addRow(item, tables.front());
    }
}

void AddFailure(const Data::OperationStatus& status, const std::string& what,
                std::vector<std::string>& failures) {
    if (status.code != 0) {
        failures.push_back(what + ": " + StatusText(status));
    }
}

Tables OneTable(std::ostream& out, std::vector<std::string> headers, const char* empty) {
    Tables tables;
    tables.emplace_back(out, std::move(headers), empty);
    return tables;
}

// Replies without items.

std::size_t Count(const Commands::SuccessReply&) {
    return 0;
}
Tables Open(const Commands::SuccessReply*, std::ostream&) {
    return {};
}
void Show(const Commands::SuccessReply&, Tables&, std::ostream& out) {
    out << "ok\n";
}
void Failures(const Commands::SuccessReply&, std::vector<std::string>&) {}

std::size_t Count(const Commands::FailureReply&) {
    return 0;
}
Tables Open(const Commands::FailureReply*, std::ostream&) {
    return {};
}
void Show(const Commands::FailureReply& reply, Tables&, std::ostream& out) {
    out << "failed: " << Printable(reply.message) << '\n';
}
void Failures(const Commands::FailureReply& reply, std::vector<std::string>& failures) {
    failures.push_back("the server failed the command: " + reply.message);
}

std::size_t Count(const Commands::UnknownCommandReply&) {
    return 0;
}
Tables Open(const Commands::UnknownCommandReply*, std::ostream&) {
    return {};
}
void Show(const Commands::UnknownCommandReply& reply, Tables&, std::ostream& out) {
    out << "unknown command: " << Printable(reply.message) << '\n';
}
void Failures(const Commands::UnknownCommandReply& reply, std::vector<std::string>& failures) {
    failures.push_back("the server does not know the command: " + reply.message);
}

// Channel commands.

std::size_t Count(const Commands::ChannelCommandReply& reply) {
    return static_cast<std::size_t>(reply.count);
}
Tables Open(const Commands::ChannelCommandReply*, std::ostream& out) {
    return OneTable(out, {"CHANNEL", "RESULT"}, "no channel results");
}
void Show(const Commands::ChannelCommandReply& reply, Tables& tables, std::ostream&) {
    for (const auto& result : reply) {
        tables.front().AddRow({result.channelGuid.ToString(), StatusText(result.status)});
    }
}
void Failures(const Commands::ChannelCommandReply& reply, std::vector<std::string>& failures) {
    for (const auto& result : reply) {
        AddFailure(result.status, result.channelGuid.ToString(), failures);
    }
}

// Players and recorders are two tables, so each message prints its own pair (a server sends
// the channels in one message; a listing in parts shows one pair per part).
std::size_t Count(const Commands::GetChannelsCommandReply& reply) {
    return reply.playerStates.size() + reply.recorderStates.size();
}
Tables Open(const Commands::GetChannelsCommandReply*, std::ostream&) {
    return {};
}
void Show(const Commands::GetChannelsCommandReply& reply, Tables&, std::ostream& out) {
    Table players(out, {"PLAYER", "NAME", "MODE", "LOADED", "TIMECODE", "SPEED", "REMAINING"},
                  "no players");
    for (const auto& [channel, state] : reply.playerStates) {
        players.AddRow({channel.ToString(), state.channelName, PlayModeText(state.playMode),
                        LoadedText(state), Dash(state.currentTimecode),
                        SpeedText(state.infoOnAir.speedNumerator, state.infoOnAir.speedDenominator),
                        Dash(state.remainingTimecode)});
    }
    players.Finish();
    out << '\n';
    Table recorders(out, {"RECORDER", "NAME", "STATE", "TIMECODE", "SINCE", "RECORDED"},
                    "no recorders");
    for (const auto& [channel, state] : reply.recorderStates) {
        recorders.AddRow({channel.ToString(), state.channelName,
                          state.isRecording ? "recording" : "stopped", Dash(state.currentTimecode),
                          state.isRecording ? Dash(state.recordStartTimecode) : "-",
                          FieldsText(state.recordedFields)});
    }
    recorders.Finish();
}
void Failures(const Commands::GetChannelsCommandReply&, std::vector<std::string>&) {}

std::size_t Count(const Commands::GetMultiviewerDataCommandReply& reply) {
    return reply.playerDataOverrides.size();
}
Tables Open(const Commands::GetMultiviewerDataCommandReply*, std::ostream& out) {
    return OneTable(out,
                    {"PLAYER", "MESSAGE", "CONTROL", "PROGRAM", "POST-ROLL", "CLIP IN", "CLIP OUT",
                     "FIRST OUTPUT"},
                    "no multiviewer data");
}
void Show(const Commands::GetMultiviewerDataCommandReply& reply, Tables& tables, std::ostream&) {
    for (const auto& [player, data] : reply.playerDataOverrides) {
        tables.front().AddRow(
            {player.ToString(), OptionalText(data.message), OptionalText(data.controlMode),
             OptionalText(data.programMode), OptionalText(data.isPostRollEnabled),
             OptionalText(data.clipCreationIn), OptionalText(data.clipCreationOut),
             OptionalText(data.isFirstControlledMediaOutput)});
    }
}
void Failures(const Commands::GetMultiviewerDataCommandReply& reply,
              std::vector<std::string>& failures) {
    AddFailure(reply.status, "multiviewer data", failures);
}

// Data commands.

std::size_t Count(const Commands::GetClipsCommandReply& reply) {
    return reply.clips.size();
}
Tables Open(const Commands::GetClipsCommandReply*, std::ostream& out) {
    return OneTable(out, {"UMID", "NAME", "DURATION", "IN", "KEYWORDS"}, "no clips");
}
void Show(const Commands::GetClipsCommandReply& reply, Tables& tables, std::ostream&) {
    ShowItems(
        reply, &Commands::GetClipsCommandReply::clips, tables,
        [](const Data::Clips::Clip& clip, Table& table) {
            table.AddRow({Trimmed(clip.umId), TextOf(clip.name),
                          FieldsText(clip.outBoundField - clip.inBoundField),
                          Dash(clip.inBoundTodTimecode.value_or("")), KeywordsText(clip.keywords)});
        });
}
void Failures(const Commands::GetClipsCommandReply&, std::vector<std::string>&) {}

std::size_t Count(const Commands::ClipCommandReply& reply) {
    return reply.results.size();
}
Tables Open(const Commands::ClipCommandReply*, std::ostream& out) {
    return OneTable(out, {"UMID", "NAME", "RESULT"}, "no clip results");
}
void Show(const Commands::ClipCommandReply& reply, Tables& tables, std::ostream&) {
    ShowItems(reply, &Commands::ClipCommandReply::results, tables,
              [](const Commands::ClipResult& result, Table& table) {
                  table.AddRow({Trimmed(result.clip.umId), TextOf(result.clip.name),
                                StatusText(result.status)});
              });
}
void Failures(const Commands::ClipCommandReply& reply, std::vector<std::string>& failures) {
    for (const auto& result : reply.results) {
        AddFailure(result.status, "clip " + Trimmed(result.clip.umId), failures);
    }
}

std::size_t Count(const Commands::PlaylistCommandReply& reply) {
    return reply.results.size();
}
Tables Open(const Commands::PlaylistCommandReply*, std::ostream& out) {
    return OneTable(out, {"UMID", "NAME", "RESULT"}, "no playlist results");
}
void Show(const Commands::PlaylistCommandReply& reply, Tables& tables, std::ostream&) {
    ShowItems(reply, &Commands::PlaylistCommandReply::results, tables,
              [](const Commands::PlaylistResult& result, Table& table) {
                  table.AddRow({Trimmed(result.playlist.sequence.umId),
                                TextOf(result.playlist.sequence.name), StatusText(result.status)});
              });
}
void Failures(const Commands::PlaylistCommandReply& reply, std::vector<std::string>& failures) {
    for (const auto& result : reply.results) {
        AddFailure(result.status, "playlist " + Trimmed(result.playlist.sequence.umId), failures);
    }
}

// Each message: its group's line, then its clip results.
std::size_t Count(const Commands::AnglesGroupCommandReply& reply) {
    return reply.clipCommandReply.results.size();
}
Tables Open(const Commands::AnglesGroupCommandReply*, std::ostream&) {
    return {};
}
void Show(const Commands::AnglesGroupCommandReply& reply, Tables&, std::ostream& out) {
    out << "angles group " << Printable(reply.groupGuid.GetValue()) << ": "
        << StatusText(reply.status) << '\n';
    Tables clips = Open(static_cast<const Commands::ClipCommandReply*>(nullptr), out);
    Show(reply.clipCommandReply, clips, out);
    clips.front().Finish();
}
void Failures(const Commands::AnglesGroupCommandReply& reply, std::vector<std::string>& failures) {
    AddFailure(reply.status, "angles group " + reply.groupGuid.GetValue(), failures);
    Failures(reply.clipCommandReply, failures);
}

std::size_t Count(const Commands::GetServersCommandReply& reply) {
    return reply.servers.size();
}
Tables Open(const Commands::GetServersCommandReply*, std::ostream& out) {
    return OneTable(out, {"ID", "NAME", "HOST", "VERSION", "STATUS", "CHANNELS", "LOCAL"},
                    "no servers");
}
void Show(const Commands::GetServersCommandReply& reply, Tables& tables, std::ostream&) {
    ShowItems(reply, &Commands::GetServersCommandReply::servers, tables,
              [](const Data::Servers::ServerInfo& server, Table& table) {
                  table.AddRow({std::to_string(server.serverId), server.name, Dash(server.hostName),
                                Dash(server.version), std::to_string(server.status),
                                JoinNumbers(server.channelNumbers), server.isLocal ? "yes" : ""});
              });
}
void Failures(const Commands::GetServersCommandReply&, std::vector<std::string>&) {}

std::size_t Count(const Commands::GetTrainsCommandReply& reply) {
    return reply.trains.size();
}
Tables Open(const Commands::GetTrainsCommandReply*, std::ostream& out) {
    return OneTable(out, {"RECORDER", "UMID", "STATE", "RANGES", "LAST RANGE"}, "no trains");
}
void Show(const Commands::GetTrainsCommandReply& reply, Tables& tables, std::ostream&) {
    ShowItems(
        reply, &Commands::GetTrainsCommandReply::trains, tables,
        [](const Data::Clips::Train& train, Table& table) {
            const auto& ranges = train.recordingRanges;
            table.AddRow(
                {Dash(train.recorderName), Trimmed(train.clip.umId),
                 train.isRecording ? "recording" : "stopped", std::to_string(ranges.size()),
                 ranges.empty() ? "-"
                                : ranges.back().inTimecode + " - " + ranges.back().outTimecode});
        });
}
void Failures(const Commands::GetTrainsCommandReply&, std::vector<std::string>&) {}

std::size_t Count(const Commands::GetPlaylistsCommandReply& reply) {
    return reply.playlists.size();
}
Tables Open(const Commands::GetPlaylistsCommandReply*, std::ostream& out) {
    return OneTable(out, {"UMID", "NAME", "ELEMENTS", "DURATION"}, "no playlists");
}
void Show(const Commands::GetPlaylistsCommandReply& reply, Tables& tables, std::ostream&) {
    ShowItems(reply, &Commands::GetPlaylistsCommandReply::playlists, tables,
              [](const Data::Sequences::Playlist& playlist, Table& table) {
                  const auto& track = playlist.audioVideoTrack;
                  const auto elements = track.elements
                                            ? static_cast<std::int32_t>(track.elements->size())
                                            : track.numberOfElements.value_or(0);
                  table.AddRow({Trimmed(playlist.sequence.umId), TextOf(playlist.sequence.name),
                                std::to_string(elements),
                                FieldsText(playlist.sequence.durationWithoutEffects)});
              });
}
void Failures(const Commands::GetPlaylistsCommandReply&, std::vector<std::string>&) {}

std::size_t Count(const Commands::GetAnglesGroupsCommandReply& reply) {
    return reply.anglesGroups.size();
}
Tables Open(const Commands::GetAnglesGroupsCommandReply*, std::ostream& out) {
    return OneTable(out, {"GROUP", "ANGLES", "CAMERAS"}, "no angles groups");
}
void Show(const Commands::GetAnglesGroupsCommandReply& reply, Tables& tables, std::ostream&) {
    ShowItems(reply, &Commands::GetAnglesGroupsCommandReply::anglesGroups, tables,
              [](const Data::Clips::Groups::AnglesGroup& group, Table& table) {
                  std::vector<std::int32_t> cameras;
                  for (const auto& angle : group.angles) {
                      cameras.push_back(angle.second.camera);
                  }
                  table.AddRow({group.groupGuid.GetValue(), std::to_string(group.angles.size()),
                                JoinNumbers(cameras)});
              });
}
void Failures(const Commands::GetAnglesGroupsCommandReply&, std::vector<std::string>&) {}

// ---------------------------------------------------------------------------------------------
// The table of reply classes, each row instantiating the functions above for its class.

// The messages of one class being shown: the tables they share.
class MessageGroup {
public:
    virtual ~MessageGroup() = default;
    virtual void Add(const CommandReply& reply) = 0;
    virtual void Finish() = 0;
};

template <class R>
class MessageGroupOf final : public MessageGroup {
public:
    explicit MessageGroupOf(std::ostream& out) : out(out), tables(Open(Null(), out)) {}

    void Add(const CommandReply& reply) override {
        Show(static_cast<const R&>(reply), tables, out);
    }

    void Finish() override {
        for (Table& table : tables) {
            table.Finish();
        }
    }

private:
    static const R* Null() { return nullptr; }

    std::ostream& out;
    Tables tables;
};

struct ReplyKind {
    int type;
    const char* items;
    std::size_t (*count)(const CommandReply&);
    std::unique_ptr<MessageGroup> (*open)(std::ostream&);
    void (*failures)(const CommandReply&, std::vector<std::string>&);
};

template <class R>
ReplyKind KindOf(const char* items) {
    return {R::kType, items,
            [](const CommandReply& reply) { return Count(static_cast<const R&>(reply)); },
            [](std::ostream& out) -> std::unique_ptr<MessageGroup> {
                return std::make_unique<MessageGroupOf<R>>(out);
            },
            [](const CommandReply& reply, std::vector<std::string>& failures) {
                Failures(static_cast<const R&>(reply), failures);
            }};
}

const std::vector<ReplyKind>& ReplyKinds() {
    static const std::vector<ReplyKind> kinds = {
        KindOf<Commands::SuccessReply>("items"),
        KindOf<Commands::FailureReply>("items"),
        KindOf<Commands::UnknownCommandReply>("items"),
        KindOf<Commands::ChannelCommandReply>("channel results"),
        KindOf<Commands::GetChannelsCommandReply>("channels"),
        KindOf<Commands::GetMultiviewerDataCommandReply>("players"),
        KindOf<Commands::ClipCommandReply>("clip results"),
        KindOf<Commands::PlaylistCommandReply>("playlist results"),
        KindOf<Commands::AnglesGroupCommandReply>("clip results"),
        KindOf<Commands::GetServersCommandReply>("servers"),
        KindOf<Commands::GetClipsCommandReply>("clips"),
        KindOf<Commands::GetTrainsCommandReply>("trains"),
        KindOf<Commands::GetPlaylistsCommandReply>("playlists"),
        KindOf<Commands::GetAnglesGroupsCommandReply>("angles groups"),
    };
    return kinds;
}

const ReplyKind& KindOf(const CommandReply& reply) {
    for (const ReplyKind& kind : ReplyKinds()) {
        if (kind.type == reply.GetType()) {
            return kind;
        }
    }
    throw std::invalid_argument("no reply class has type code " + std::to_string(reply.GetType()));
}

}  // namespace

Table::Table(std::ostream& out, std::vector<std::string> headers, std::string empty)
    : out(out), headers(std::move(headers)), empty(std::move(empty)) {}

void Table::AddRow(std::vector<std::string> cells) {
    cells.resize(headers.size());
    for (auto& cell : cells) {
        cell = Printable(cell);
    }
    any = true;
    if (!widths.empty()) {
        PrintRow(cells);
        return;
    }
    held.push_back(std::move(cells));
    if (held.size() >= kBufferedRows) {
        Finish();
    }
}

void Table::Finish() {
    if (!any) {
        out << empty << '\n';
        any = true;  // printed once
        widths.assign(headers.size(), 0);
        return;
    }
    if (!widths.empty()) {
        return;
    }
    for (const auto& header : headers) {
        widths.push_back(header.size());
    }
    for (const auto& row : held) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], DisplayWidth(row[column]));
        }
    }
    PrintRow(headers);
    for (const auto& row : held) {
        PrintRow(row);
    }
    held.clear();
    held.shrink_to_fit();
}

void Table::PrintRow(const std::vector<std::string>& cells) {
    std::string line;
    for (std::size_t column = 0; column < cells.size(); ++column) {
        line += cells[column];
        if (column + 1 < cells.size()) {
            const std::size_t width = DisplayWidth(cells[column]);
            line.append(widths[column] > width ? widths[column] - width + 2 : 2, ' ');
        }
    }
    out << line << '\n';
}

std::string StatusText(const Data::OperationStatus& status) {
    if (status.code == 0) {
        return "ok";
    }
    // The reasons the replay server (and its simulator) give for a refusal.
    static const char* const kReasons[] = {
        nullptr,
        "no such channel",
        "wrong kind of channel",
        "nothing loaded",
        "no such clip, playlist, group or feed",
        "already recording",
        "not recording",
        "invalid value",
        "server off the network",
        "already exists",
        "in use",
    };
    std::string text =
        "failed (" + std::to_string(status.code) + ", " + std::to_string(status.reason) + ")";
    const auto count = static_cast<std::int32_t>(sizeof kReasons / sizeof kReasons[0]);
    if (status.code == 1 && status.reason > 0 && status.reason < count) {
        text += std::string(": ") + kReasons[status.reason];
    }
    return text;
}

class ReplyPrinter::Group {
public:
    Group(int type, std::unique_ptr<MessageGroup> messages)
        : type(type), messages(std::move(messages)) {}

    int type;
    std::unique_ptr<MessageGroup> messages;
};

ReplyPrinter::ReplyPrinter(std::ostream& out, bool json) : out(out), json(json) {}

ReplyPrinter::~ReplyPrinter() = default;

void ReplyPrinter::Add(const CommandReply& reply) {
    const ReplyKind& kind = KindOf(reply);
    std::vector<std::string> failures;
    kind.failures(reply, failures);
    if (firstFailure.empty() && !failures.empty()) {
        firstFailure = failures.front();
    }
    failureCount += failures.size();
    if (json) {
        // One write of the whole line, then flushed: a reader never sees half of it.
        out << Json::CommandReplyToJson(reply) + '\n' << std::flush;
        return;
    }
    if (group && group->type != reply.GetType()) {
        Finish();
    }
    if (!group) {
        group = std::make_unique<Group>(reply.GetType(), kind.open(out));
    }
    group->messages->Add(reply);
}

void ReplyPrinter::Finish() {
    if (group) {
        group->messages->Finish();
        group.reset();
    }
}

void PrintReadable(const Replies& replies, std::ostream& out) {
    ReplyPrinter printer(out, false);
    for (const auto& reply : replies) {
        printer.Add(*reply);
    }
    printer.Finish();
}

std::vector<std::string> FailuresOf(const Replies& replies) {
    std::vector<std::string> failures;
    for (const auto& reply : replies) {
        KindOf(*reply).failures(*reply, failures);
    }
    return failures;
}

std::size_t ItemCount(const CommandReply& reply) {
    return KindOf(reply).count(reply);
}

const char* ItemName(const CommandReply& reply) {
    return KindOf(reply).items;
}

void Progress::Add(const CommandReply& reply, bool final) {
    ++parts;
    items += ItemCount(reply);
    if (!enabled || (final && !shown)) {
        return;
    }
    err << "\rreceiving " << ItemName(reply) << ": " << parts
        << (parts == 1 ? " part, " : " parts, ") << items << " items\x1b[K" << std::flush;
    shown = true;
}

void Progress::Finish() {
    if (shown) {
        err << "\r\x1b[K" << std::flush;
        shown = false;
    }
}

bool StandardErrorIsTerminal() {
    return ::isatty(STDERR_FILENO) == 1;
}

}  // namespace Korvo::Plexis::Tessel::Cli
