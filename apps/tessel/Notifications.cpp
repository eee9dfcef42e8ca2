#include "Notifications.h"

#include <cstdio>
#include <ctime>

#include <nlohmann/json.hpp>

#include <Korvo/Plexis/Notification/AnglesGroupCreationFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/AnglesGroupDeletionFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/AnglesGroupUpdateFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipCreationFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipDeletionFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipMoveFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/ClipUpdateFinishedEventArgs.h>
#include <Korvo/Plexis/Notification/MassClipDeletionEventArgs.h>
#include <Korvo/Plexis/Notification/MassClipUpdateEventArgs.h>
#include <Korvo/Plexis/Notification/PlayerStateChangedEventArgs.h>
#include <Korvo/Plexis/Notification/RecorderStateChangedEventArgs.h>
#include <Korvo/Plexis/Notification/RecordingRangesChangedEventArgs.h>
#include <Korvo/Plexis/Notification/ServerAddedEventArgs.h>
#include <Korvo/Plexis/Tessel/Json/NotificationJson.h>

#include "Text.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace Events = Notification;
using Data::Clips::Clip;

namespace {

std::string ClipText(const Clip& clip) {
    return "clip \"" + TextOf(clip.name) + "\" " + Trimmed(clip.umId);
}

std::string GroupText(const Data::Clips::Groups::AnglesGroup& group) {
    return "angles group " + group.groupGuid.GetValue() + " (" +
           std::to_string(group.angles.size()) + " angles)";
}

// The summary of a clip or angles-group notification; the most derived class decides.
std::string Summary(const Events::CommandEventArgs& args, std::string& createdClip) {
    if (const auto* created = dynamic_cast<const Events::ClipCreationEventArgs*>(&args)) {
        if (dynamic_cast<const Events::ClipCreationFinishedEventArgs*>(&args) != nullptr) {
            createdClip = Trimmed(created->clip.umId);
        }
        return ClipText(created->clip) + " from \"" + TextOf(created->sourceClip.name) + "\", " +
               created->inTimecode + " - " + created->outTimecode;
    }
    if (const auto* updated = dynamic_cast<const Events::ClipUpdateEventArgs*>(&args)) {
        return ClipText(updated->newClip) + (updated->succeeded ? "" : " (not applied)");
    }
    if (const auto* deleted = dynamic_cast<const Events::ClipDeletionEventArgs*>(&args)) {
        return ClipText(deleted->clip);
    }
    if (const auto* moved = dynamic_cast<const Events::ClipMoveEventArgs*>(&args)) {
        return ClipText(moved->newClip) + ", slot " + std::to_string(moved->oldClip.kivIndex) +
               " -> " + std::to_string(moved->newClip.kivIndex);
    }
    if (const auto* mass = dynamic_cast<const Events::MassClipUpdateEventArgs*>(&args)) {
        return std::to_string(mass->clipCount) + " clips updated";
    }
    if (const auto* mass = dynamic_cast<const Events::MassClipDeletionEventArgs*>(&args)) {
        return std::to_string(mass->clipCount) + " clips deleted";
    }
    if (const auto* group = dynamic_cast<const Events::AnglesGroupCreationEventArgs*>(&args)) {
        return GroupText(group->anglesGroup);
    }
    if (const auto* group = dynamic_cast<const Events::AnglesGroupUpdateEventArgs*>(&args)) {
        return GroupText(group->anglesGroup);
    }
    if (const auto* group = dynamic_cast<const Events::AnglesGroupDeletionEventArgs*>(&args)) {
        return "angles group " + group->groupGuid.GetValue();
    }
    return "";
}

// The summary of a status notification and the server it concerns.
std::string Summary(const System::EventArgs& args, std::int32_t& serverId) {
    if (const auto* player = dynamic_cast<const Events::PlayerStateChangedEventArgs*>(&args)) {
        const auto& state = player->state;
        serverId = player->serverId;
        return player->channelGuid.ToString() + " " + PlayModeText(state.playMode) + " " +
               Dash(state.currentTimecode) + ", " + LoadedText(state) + ", speed " +
               SpeedText(state.infoOnAir.speedNumerator, state.infoOnAir.speedDenominator);
    }
    if (const auto* recorder = dynamic_cast<const Events::RecorderStateChangedEventArgs*>(&args)) {
        serverId = recorder->serverId;
        return recorder->channelGuid.ToString() + " " +
               (recorder->state.isRecording ? "recording " : "stopped ") +
               Dash(recorder->state.currentTimecode);
    }
    if (const auto* ranges = dynamic_cast<const Events::RecordingRangesChangedEventArgs*>(&args)) {
        serverId = ranges->channelGuid.GetServer();
        const auto count = ranges->ranges.size();
        std::string text = ranges->channelGuid.ToString() + " " + std::to_string(count) +
                           (count == 1 ? " range" : " ranges");
        if (!ranges->ranges.empty()) {
            text += ", last " + ranges->ranges.back().inTimecode + " - " +
                    ranges->ranges.back().outTimecode;
        }
        return text + (ranges->isRecording ? ", recording" : "");
    }
    if (const auto* server = dynamic_cast<const Events::ServerStatusEventArgs*>(&args)) {
        serverId = server->serverId;
        if (const auto* added = dynamic_cast<const Events::ServerAddedEventArgs*>(&args)) {
            return "server " + std::to_string(serverId) + " \"" + added->server.name + "\"";
        }
        return "server " + std::to_string(serverId);
    }
    return "";
}

std::string TypeOf(const std::string& json) {
    return nlohmann::json::parse(json).at("type").get<std::string>();
}

NotificationLine Describe(const Events::CommandEventArgs& args) {
    NotificationLine line;
    line.received = std::chrono::system_clock::now();
    line.json = Json::NotificationToJson(args);
    line.type = TypeOf(line.json);
    line.serverId = args.serverId;
    line.summary = Summary(args, line.createdClip);
    return line;
}

NotificationLine Describe(const System::EventArgs& args) {
    NotificationLine line;
    line.received = std::chrono::system_clock::now();
    line.json = Json::NotificationToJson(args);
    line.type = TypeOf(line.json);
    line.summary = Summary(args, line.serverId);
    return line;
}

// `Handlers` is one family's list: functions of (the type's enumerator, the family's arguments).
template <class Handlers>
void AttachTo(Handlers& handlers, const std::function<void(const NotificationLine&)>& sink) {
    handlers.push_back([sink](auto, const auto& args) { sink(Describe(args)); });
}

}  // namespace

std::string FormatLine(const NotificationLine& line) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(line.received);
    const auto millis =
        std::chrono::duration_cast<std::chrono::milliseconds>(line.received.time_since_epoch())
            .count() %
        1000;
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[64];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d.%03d  %-28s server %-3d ", local.tm_hour,
                  local.tm_min, local.tm_sec, static_cast<int>(millis), line.type.c_str(),
                  static_cast<int>(line.serverId));
    return text + line.summary;
}

void AttachDescriber(Client::NotificationClient& client,
                     std::function<void(const NotificationLine&)> sink) {
    AttachTo(client.clipCommandHandlers, sink);
    AttachTo(client.clipStatusHandlers, sink);
    AttachTo(client.channelStatusHandlers, sink);
    AttachTo(client.serverStatusHandlers, sink);
}

}  // namespace Korvo::Plexis::Tessel::Cli
