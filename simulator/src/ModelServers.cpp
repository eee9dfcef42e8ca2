// Servers joining, leaving, going off and on the network.
#include "Model.h"

namespace Korvo::Plexis::Tessel::Simulator {

namespace Events = Notification;

int Model::AddServer() {
    const int serverId = servers.empty() ? 1 : servers.rbegin()->first + 1;
    AddServerWithChannels(serverId);
    Events::ServerAddedEventArgs args;
    args.serverId = serverId;
    args.server = servers.at(serverId).info;
    emitter->Notify(ServerName(serverId), args);
    return serverId;
}

bool Model::RemoveServer(int serverId) {
    if (servers.erase(serverId) == 0) {
        return false;
    }
    for (auto entry = players.begin(); entry != players.end();) {
        entry = entry->first.GetServer() == serverId ? players.erase(entry) : std::next(entry);
    }
    for (auto entry = recorders.begin(); entry != recorders.end();) {
        entry = entry->first.GetServer() == serverId ? recorders.erase(entry) : std::next(entry);
    }
    Events::ServerRemovedEventArgs args;
    args.serverId = serverId;
    emitter->Notify(ServerName(serverId), args);
    return true;
}

bool Model::SetOnline(int serverId, bool online) {
    const auto found = servers.find(serverId);
    if (found == servers.end()) {
        return false;
    }
    found->second.online = online;
    found->second.info.status = online ? 1 : 0;
    if (online) {
        Events::ServerAddedEventArgs args;
        args.serverId = serverId;
        args.server = found->second.info;
        emitter->Notify(ServerName(serverId), args);
    } else {
        Events::DisconnectedFromNetworkEventArgs args;
        args.serverId = serverId;
        emitter->Notify(ServerName(serverId), args);
    }
    return true;
}

void Model::AnnounceServers() {
    for (const auto& [id, server] : servers) {
        Events::ServerAddedEventArgs args;
        args.serverId = id;
        args.server = server.info;
        emitter->Notify(ServerName(id), args);
    }
}
}  // namespace Korvo::Plexis::Tessel::Simulator
