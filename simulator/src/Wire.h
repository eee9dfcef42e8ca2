#pragma once

// The simulator's side of the wire: commands decoded, replies and notifications encoded, all
// through the library's own converters and the tables that list every record.

#include <cstddef>
#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/InvalidFormatException.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Client/CommandTypes.h>
#include <Korvo/Plexis/Tessel/Client/NotificationTypes.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

namespace Korvo::Plexis::Tessel::Simulator {

namespace Commands = HighLevelOperations::Commands;
namespace Generated = Serialization::Thrift::Commands::Generated;
namespace NotifierGenerated = Serialization::Thrift::Notifier::Generated;

/// A payload that does not decode, or decodes into something the converters refuse.
class UndecodablePayload : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// One message to send: its header and its payload bytes.
struct OutgoingMessage {
    std::string header;
    std::string payload;
};

/// One notification to publish.
struct Notice {
    std::string topic;
    std::string header;
    std::string payload;
};

template <class Record>
std::string Encode(const Record& record) {
    auto buffer = Common::Serialization::SerializerImpl<Record>().Serialize(record);
    return {reinterpret_cast<const char*>(buffer->Pointer()), buffer->Size()};
}

/// Converts a domain value with `Converter` and encodes the record. A failed conversion is a fault
/// of the model, never of a client: it throws `std::logic_error`.
template <class Converter, class Record, class Domain>
std::string ConvertAndEncode(const Domain& value, const char* name) {
    Record record;
    const auto result = Converter().To(value, record);
    if (!result.success) {
        throw std::logic_error(std::string("simulator built an invalid ") + name + ": " +
                               result.message);
    }
    return Encode(record);
}

/// The header a reply travels under: its reply type name ("UnknownCommand" for an
/// `UnknownCommandReply`).
template <class Reply>
std::string ReplyHeader() {
    return std::string(Client::ReplyTraits<Reply>::kName);
}

/// Collects what the model answers to one command (its reply messages, in order) and what it
/// publishes. Replies too long for one message are cut into "[part]" messages.
class Emitter {
public:
    explicit Emitter(std::size_t partSize) : partSize(partSize == 0 ? 1 : partSize) {}

    /// One reply, sent as one message.
    template <class R>
    void Reply(const R& reply) {
        Add(ReplyHeader<R>(), reply);
    }

    /// Listings and per-item results: cut by `partSize` items.
    void Reply(Commands::GetClipsCommandReply reply) {
        Sliced(std::move(reply), &Commands::GetClipsCommandReply::clips);
    }
    void Reply(Commands::GetAnglesGroupsCommandReply reply) {
        Sliced(std::move(reply), &Commands::GetAnglesGroupsCommandReply::anglesGroups);
    }
    void Reply(Commands::ClipCommandReply reply) {
        Sliced(std::move(reply), &Commands::ClipCommandReply::results);
    }
    void Reply(Commands::PlaylistCommandReply reply) {
        Sliced(std::move(reply), &Commands::PlaylistCommandReply::results);
    }

    /// The results of a channel command: one `ChannelCommandReply` message per 12 results.
    void ChannelResults(const Data::Guid& commandGuid,
                        const std::vector<Commands::ChannelResult>& results);

    /// Publishes `args` under "<family>/<serverName>" (or the bare family without a name).
    template <class Args>
    void Notify(const std::string& serverName, const Args& args) {
        using Traits = Client::NotificationTraits<Args>;
        using W = Serialization::Thrift::Notifier::WireOf<Args>;
        std::string topic(Traits::kFamilyName);
        if (!serverName.empty()) {
            topic += '/' + serverName;
        }
        const std::string name(Traits::kName);
        notices.push_back({std::move(topic), name,
                           ConvertAndEncode<typename W::ToThrift, typename W::Record>(
                               args, name.c_str())});
    }

    std::vector<OutgoingMessage> replies;
    std::vector<Notice> notices;

private:
    template <class R>
    void Add(std::string header, const R& reply) {
        using W = Serialization::Thrift::Commands::WireOf<R>;
        replies.push_back({std::move(header),
                           ConvertAndEncode<typename W::ToThrift, typename W::Record>(
                               reply, Client::ReplyTraits<R>::kClassName.data())});
    }

    // Every part but the last carries the "[part]" prefix; an empty list is one final message.
    template <class R, class Item>
    void Sliced(R reply, std::vector<Item> R::*items) {
        std::vector<Item> all = std::move(reply.*items);
        const std::string name = ReplyHeader<R>();
        std::size_t start = 0;
        do {
            const std::size_t end = std::min(all.size(), start + partSize);
            (reply.*items).assign(std::make_move_iterator(all.begin() + start),
                                  std::make_move_iterator(all.begin() + end));
            Add(end < all.size() ? "[part]" + name : name, reply);
            start = end;
        } while (start < all.size());
    }

    std::size_t partSize;
};

namespace Detail {

template <class Domain, class Handler>
void DecodeAndHandle(const unsigned char* bytes, unsigned int size, Handler& handler) {
    using Wire = Serialization::Thrift::Commands::WireOf<Domain>;
    typename Wire::Record record;
    try {
        Common::Serialization::DeserializerImpl<typename Wire::Record>().Deserialize(bytes, size,
                                                                                     record);
    } catch (const Common::Serialization::InvalidFormatException& failure) {
        throw UndecodablePayload(failure.what());
    }
    Domain params;
    const auto result = typename Wire::FromThrift().To(std::move(record), params);
    if (!result.success) {
        throw UndecodablePayload(result.message);
    }
    handler.Handle(params);
}

}  // namespace Detail

/// Decodes the payload of `commandName` and hands the parameters to `handler`, an object with a
/// `Handle(const <X>CommandParams&)` overload for every command. False when the name is not a
/// command; throws `UndecodablePayload` when the bytes do not make that command's parameters.
template <class Handler>
bool Dispatch(const std::string& commandName, const unsigned char* bytes, unsigned int size,
              Handler& handler) {
    using Entry = void (*)(const unsigned char*, unsigned int, Handler&);
    static const std::unordered_map<std::string_view, Entry> table = [] {
        std::unordered_map<std::string_view, Entry> entries;
        Client::ForEachCommand([&](auto* params) {
            using Params = std::remove_pointer_t<decltype(params)>;
            entries.emplace(Client::CommandTraits<Params>::kName,
                            &Detail::DecodeAndHandle<Params, Handler>);
        });
        return entries;
    }();
    const auto found = table.find(commandName);
    if (found == table.end()) {
        return false;
    }
    found->second(bytes, size, handler);
    return true;
}

}  // namespace Korvo::Plexis::Tessel::Simulator
