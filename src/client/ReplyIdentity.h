#pragma once

#include <optional>
#include <string>

#include <Korvo/Plexis/Tessel/Client/BaseMessage.h>

namespace Korvo::Plexis::Tessel::Client::Detail {

/// The command identifier a reply's bytes carry (field 1, `commandGuid`, of every reply record
/// that has one), read without decoding the rest: other fields are skipped, and when the field
/// occurs twice the last one counts, as in a full decoding. Nothing when the reply carries none,
/// carries the empty identifier, or cannot be read (the reply builder then reports it).
std::optional<std::string> CarriedCommandGuid(const BaseMessage& reply);

}  // namespace Korvo::Plexis::Tessel::Client::Detail
