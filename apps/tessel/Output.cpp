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
// One function set per reply class: how many items a message holds, how a person sees the
// messages of one reply, and which of its items failed.

template <class R>
using Messages = std::vector<const R*>;

template <class R, class Item, class AddRow>
void PrintItems(const Messages<R>& replies, std::vector<Item> R::*items,
                std::vector<std::string> headers, const char* empty, AddRow addRow,
                std::ostream& out) {
    Table table(std::move(headers));
    for (const R* reply : replies) {
        for (const Item& item : reply->*items) {
            addRow(item, table);
        }
    }
    table.Print(out, empty);
}

void AddFailure(const Data::OperationStatus& status, const std::string& what,
                std::vector<std::string>& failures) {
    if (status.code != 0) {
        failures.push_back(what + ": " + StatusText(status));
    }
}

// Replies without items.

std::size_t Count(const Commands::SuccessReply&) {
    return 0;
}
void Print(const Messages<Commands::SuccessReply>&, std::ostream& out) {
    out << "ok\n";
}
void Failures(const Commands::SuccessReply&, std::vector<std::string>&) {}

std::size_t Count(const Commands::FailureReply&) {
    return 0;
}
void Print(const Messages<Commands::FailureReply>& replies, std::ostream& out) {
    out << "failed: " << replies.back()->message << '\n';
}
void Failures(const Commands::FailureReply& reply, std::vector<std::string>& failures) {
    failures.push_back("the server failed the command: " + reply.message);
}

std::size_t Count(const Commands::UnknownCommandReply&) {
    return 0;
}
void Print(const Messages<Commands::UnknownCommandReply>& replies, std::ostream& out) {
    out << "unknown command: " << replies.back()->message << '\n';
}
void Failures(const Commands::UnknownCommandReply& reply, std::vector<std::string>& failures) {
    failures.push_back("the server does not know the command: " + reply.message);
}

// Channel commands.

std::size_t Count(const Commands::ChannelCommandReply& reply) {
    return static_cast<std::size_t>(reply.count);
}
void Print(const Messages<Commands::ChannelCommandReply>& replies, std::ostream& out) {
    Table table({"CHANNEL", "RESULT"});
    for (const auto* reply : replies) {
        for (const auto& result : *reply) {
            table.AddRow({result.channelGuid.ToString(), StatusText(result.status)});
        }
    }
    table.Print(out, "no channel results");
}
void Failures(const Commands::ChannelCommandReply& reply, std::vector<std::string>& failures) {
    for (const auto& result : reply) {
        AddFailure(result.status, result.channelGuid.ToString(), failures);
    }
}

std::size_t Count(const Commands::GetChannelsCommandReply& reply) {
    return reply.playerStates.size() + reply.recorderStates.size();
}
void Print(const Messages<Commands::GetChannelsCommandReply>& replies, std::ostream& out) {
    Table players({"PLAYER", "NAME", "MODE", "LOADED", "TIMECODE", "SPEED", "REMAINING"});
    Table recorders({"RECORDER", "NAME", "STATE", "TIMECODE", "SINCE", "RECORDED"});
    for (const auto* reply : replies) {
        for (const auto& [channel, state] : reply->playerStates) {
            players.AddRow(
                {channel.ToString(), state.channelName, PlayModeText(state.playMode),
                 LoadedText(state), Dash(state.currentTimecode),
                 SpeedText(state.infoOnAir.speedNumerator, state.infoOnAir.speedDenominator),
                 Dash(state.remainingTimecode)});
        }
        for (const auto& [channel, state] : reply->recorderStates) {
            recorders.AddRow({channel.ToString(), state.channelName,
                              state.isRecording ? "recording" : "stopped",
                              Dash(state.currentTimecode),
                              state.isRecording ? Dash(state.recordStartTimecode) : "-",
                              FieldsText(state.recordedFields)});
        }
    }
    players.Print(out, "no players");
    out << '\n';
    recorders.Print(out, "no recorders");
}
void Failures(const Commands::GetChannelsCommandReply&, std::vector<std::string>&) {}

std::size_t Count(const Commands::GetMultiviewerDataCommandReply& reply) {
    return reply.playerDataOverrides.size();
}
void Print(const Messages<Commands::GetMultiviewerDataCommandReply>& replies, std::ostream& out) {
    Table table({"PLAYER", "MESSAGE", "CONTROL", "PROGRAM", "POST-ROLL", "CLIP IN", "CLIP OUT",
                 "FIRST OUTPUT"});
    for (const auto* reply : replies) {
        for (const auto& [player, data] : reply->playerDataOverrides) {
            table.AddRow({player.ToString(), OptionalText(data.message),
                          OptionalText(data.controlMode), OptionalText(data.programMode),
                          OptionalText(data.isPostRollEnabled), OptionalText(data.clipCreationIn),
                          OptionalText(data.clipCreationOut),
                          OptionalText(data.isFirstControlledMediaOutput)});
        }
    }
    table.Print(out, "no multiviewer data");
}
void Failures(const Commands::GetMultiviewerDataCommandReply& reply,
              std::vector<std::string>& failures) {
    AddFailure(reply.status, "multiviewer data", failures);
}

// Data commands.

void AddClipRow(const Data::Clips::Clip& clip, Table& table) {
    table.AddRow({Trimmed(clip.umId), TextOf(clip.name),
                  FieldsText(clip.outBoundField - clip.inBoundField),
                  Dash(clip.inBoundTodTimecode.value_or("")), KeywordsText(clip.keywords)});
}

std::size_t Count(const Commands::GetClipsCommandReply& reply) {
    return reply.clips.size();
}
void Print(const Messages<Commands::GetClipsCommandReply>& replies, std::ostream& out) {
    PrintItems(replies, &Commands::GetClipsCommandReply::clips,
               {"UMID", "NAME", "DURATION", "IN", "KEYWORDS"}, "no clips", AddClipRow, out);
}
void Failures(const Commands::GetClipsCommandReply&, std::vector<std::string>&) {}

std::size_t Count(const Commands::ClipCommandReply& reply) {
    return reply.results.size();
}
void Print(const Messages<Commands::ClipCommandReply>& replies, std::ostream& out) {
    PrintItems(
        replies, &Commands::ClipCommandReply::results, {"UMID", "NAME", "RESULT"},
        "no clip results",
        [](const Commands::ClipResult& result, Table& table) {
            table.AddRow(
                {Trimmed(result.clip.umId), TextOf(result.clip.name), StatusText(result.status)});
        },
        out);
}
void Failures(const Commands::ClipCommandReply& reply, std::vector<std::string>& failures) {
    for (const auto& result : reply.results) {
        AddFailure(result.status, "clip " + Trimmed(result.clip.umId), failures);
    }
}

std::size_t Count(const Commands::PlaylistCommandReply& reply) {
    return reply.results.size();
}
void Print(const Messages<Commands::PlaylistCommandReply>& replies, std::ostream& out) {
    PrintItems(
        replies, &Commands::PlaylistCommandReply::results, {"UMID", "NAME", "RESULT"},
        "no playlist results",
        [](const Commands::PlaylistResult& result, Table& table) {
            table.AddRow({Trimmed(result.playlist.sequence.umId),
                          TextOf(result.playlist.sequence.name), StatusText(result.status)});
        },
        out);
}
void Failures(const Commands::PlaylistCommandReply& reply, std::vector<std::string>& failures) {
    for (const auto& result : reply.results) {
        AddFailure(result.status, "playlist " + Trimmed(result.playlist.sequence.umId), failures);
    }
}

std::size_t Count(const Commands::AnglesGroupCommandReply& reply) {
    return reply.clipCommandReply.results.size();
}
void Print(const Messages<Commands::AnglesGroupCommandReply>& replies, std::ostream& out) {
    Messages<Commands::ClipCommandReply> clips;
    for (const auto* reply : replies) {
        out << "angles group " << reply->groupGuid.GetValue() << ": " << StatusText(reply->status)
            << '\n';
        clips.push_back(&reply->clipCommandReply);
    }
    Print(clips, out);
}
void Failures(const Commands::AnglesGroupCommandReply& reply, std::vector<std::string>& failures) {
    AddFailure(reply.status, "angles group " + reply.groupGuid.GetValue(), failures);
    Failures(reply.clipCommandReply, failures);
}

std::size_t Count(const Commands::GetServersCommandReply& reply) {
    return reply.servers.size();
}
void Print(const Messages<Commands::GetServersCommandReply>& replies, std::ostream& out) {
    PrintItems(
        replies, &Commands::GetServersCommandReply::servers,
        {"ID", "NAME", "HOST", "VERSION", "STATUS", "CHANNELS", "LOCAL"}, "no servers",
        [](const Data::Servers::ServerInfo& server, Table& table) {
            table.AddRow({std::to_string(server.serverId), server.name, Dash(server.hostName),
                          Dash(server.version), std::to_string(server.status),
                          JoinNumbers(server.channelNumbers), server.isLocal ? "yes" : ""});
        },
        out);
}
void Failures(const Commands::GetServersCommandReply&, std::vector<std::string>&) {}

std::size_t Count(const Commands::GetTrainsCommandReply& reply) {
    return reply.trains.size();
}
void Print(const Messages<Commands::GetTrainsCommandReply>& replies, std::ostream& out) {
    PrintItems(
        replies, &Commands::GetTrainsCommandReply::trains,
        {"RECORDER", "UMID", "STATE", "RANGES", "LAST RANGE"}, "no trains",
        [](const Data::Clips::Train& train, Table& table) {
            const auto& ranges = train.recordingRanges;
            table.AddRow(
                {Dash(train.recorderName), Trimmed(train.clip.umId),
                 train.isRecording ? "recording" : "stopped", std::to_string(ranges.size()),
                 ranges.empty() ? "-"
                                : ranges.back().inTimecode + " - " + ranges.back().outTimecode});
        },
        out);
}
void Failures(const Commands::GetTrainsCommandReply&, std::vector<std::string>&) {}

std::size_t Count(const Commands::GetPlaylistsCommandReply& reply) {
    return reply.playlists.size();
}
void Print(const Messages<Commands::GetPlaylistsCommandReply>& replies, std::ostream& out) {
    PrintItems(
        replies, &Commands::GetPlaylistsCommandReply::playlists,
        {"UMID", "NAME", "ELEMENTS", "DURATION"}, "no playlists",
        [](const Data::Sequences::Playlist& playlist, Table& table) {
            const auto& track = playlist.audioVideoTrack;
            const auto elements = track.elements ? static_cast<std::int32_t>(track.elements->size())
                                                 : track.numberOfElements.value_or(0);
            table.AddRow({Trimmed(playlist.sequence.umId), TextOf(playlist.sequence.name),
                          std::to_string(elements),
                          FieldsText(playlist.sequence.durationWithoutEffects)});
        },
        out);
}
void Failures(const Commands::GetPlaylistsCommandReply&, std::vector<std::string>&) {}

std::size_t Count(const Commands::GetAnglesGroupsCommandReply& reply) {
    return reply.anglesGroups.size();
}
void Print(const Messages<Commands::GetAnglesGroupsCommandReply>& replies, std::ostream& out) {
    PrintItems(
        replies, &Commands::GetAnglesGroupsCommandReply::anglesGroups,
        {"GROUP", "ANGLES", "CAMERAS"}, "no angles groups",
        [](const Data::Clips::Groups::AnglesGroup& group, Table& table) {
            std::vector<std::int32_t> cameras;
            for (const auto& angle : group.angles) {
                cameras.push_back(angle.second.camera);
            }
            table.AddRow({group.groupGuid.GetValue(), std::to_string(group.angles.size()),
                          JoinNumbers(cameras)});
        },
        out);
}
void Failures(const Commands::GetAnglesGroupsCommandReply&, std::vector<std::string>&) {}

// ---------------------------------------------------------------------------------------------
// The table of reply classes, each row instantiating the functions above for its class.

struct ReplyKind {
    int type;
    const char* items;
    std::size_t (*count)(const CommandReply&);
    void (*print)(const std::vector<const CommandReply*>&, std::ostream&);
    void (*failures)(const CommandReply&, std::vector<std::string>&);
};

template <class R>
ReplyKind KindOf(const char* items) {
    return {R::kType, items,
            [](const CommandReply& reply) { return Count(static_cast<const R&>(reply)); },
            [](const std::vector<const CommandReply*>& replies, std::ostream& out) {
                Messages<R> typed;
                for (const CommandReply* reply : replies) {
                    typed.push_back(static_cast<const R*>(reply));
                }
                Print(typed, out);
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

Table::Table(std::vector<std::string> headers) : headers(std::move(headers)) {}

void Table::AddRow(std::vector<std::string> cells) {
    cells.resize(headers.size());
    rows.push_back(std::move(cells));
}

void Table::Print(std::ostream& out, const std::string& empty) const {
    if (rows.empty()) {
        out << empty << '\n';
        return;
    }
    std::vector<std::size_t> widths;
    for (const auto& header : headers) {
        widths.push_back(header.size());
    }
    for (const auto& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], DisplayWidth(row[column]));
        }
    }
    const auto printRow = [&](const std::vector<std::string>& cells) {
        std::string line;
        for (std::size_t column = 0; column < cells.size(); ++column) {
            line += cells[column];
            if (column + 1 < cells.size()) {
                line.append(widths[column] - DisplayWidth(cells[column]) + 2, ' ');
            }
        }
        out << line << '\n';
    };
    printRow(headers);
    for (const auto& row : rows) {
        printRow(row);
    }
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

void PrintReadable(const Replies& replies, std::ostream& out) {
    // Consecutive messages of one class (the parts of a listing and its final) print together.
    std::size_t first = 0;
    while (first < replies.size()) {
        std::size_t end = first + 1;
        while (end < replies.size() && replies[end]->GetType() == replies[first]->GetType()) {
            ++end;
        }
        std::vector<const CommandReply*> group;
        for (std::size_t index = first; index < end; ++index) {
            group.push_back(replies[index].get());
        }
        KindOf(*replies[first]).print(group, out);
        first = end;
    }
}

void PrintJson(const Replies& replies, std::ostream& out) {
    for (const auto& reply : replies) {
        out << Json::CommandReplyToJson(*reply) << '\n';
    }
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
