// The model's clock and its life: time codes, construction, the change flag. The rest of the model
// lives beside it, one file per room: ModelSeeding (the servers, channels and catalogue it starts
// with), ModelPlayout (how channels move and what their state reads), ModelChannels (channel
// commands), ModelCatalogue (clip, playlist and angles-group commands), ModelServers (servers
// coming and going).
#include "Model.h"

#include <algorithm>
#include <cstdio>

namespace Korvo::Plexis::Tessel::Simulator {

namespace {

std::string FormatTimecode(std::int64_t fields) {
    const std::int64_t frames = fields / 2;
    char text[32];
    std::snprintf(text, sizeof text, "%02lld:%02lld:%02lld:%02lld",
                  static_cast<long long>(frames / (25 * 3600)),
                  static_cast<long long>(frames / (25 * 60) % 60),
                  static_cast<long long>(frames / 25 % 60), static_cast<long long>(frames % 25));
    return text;
}

}  // namespace

std::string TimecodeOf(std::int64_t fields) {
    return FormatTimecode(((fields % kFieldsPerDay) + kFieldsPerDay) % kFieldsPerDay);
}

std::string DurationTimecodeOf(std::int64_t fields) {
    return FormatTimecode(std::max<std::int64_t>(0, fields));
}

Model::Model(const SimulatorOptions& options, std::function<std::int64_t()> nowMs)
    : options(options), nowMs(std::move(nowMs)), random(options.seed) {
    Seed();
}

bool Model::TakeDirty() {
    const bool was = dirty;
    dirty = false;
    return was;
}

}  // namespace Korvo::Plexis::Tessel::Simulator
