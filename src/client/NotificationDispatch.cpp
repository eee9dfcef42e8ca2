#include "client/NotificationDispatch.h"

#include <cstddef>

#include <Korvo/Common/Serialization/Deserializer.h>
#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Plexis/Tessel/Client/NotificationTypes.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

namespace Korvo::Plexis::Tessel::Client::Detail {
namespace {

using Common::Messaging::Message;

// Decodes one notification into a fresh `Args`, then calls the type's own callbacks and the
// family's, in list order. Whatever is thrown (undecodable bytes, a failed conversion, a
// callback's exception) leaves for the caller. Once `stop` is set (a callback destroyed the
// lists' owner) it returns without touching the lists again.
template <class Args>
void Process(const std::atomic<bool>* stop, const NotificationHandlers& handlers,
             const Message& message) {
    using namespace Common::Serialization;
    using Traits = NotificationTraits<Args>;
    using Wire = Serialization::Thrift::Notifier::WireOf<Args>;
    const PointerBuffer bytes(const_cast<unsigned char*>(message.Data()), message.DataSize());
    Args args;
    Deserializer<DeserializerImpl<typename Wire::Record>, Args, typename Wire::FromThrift>()
        .Deserialize(bytes, args);
    const auto stopped = [stop] { return stop != nullptr && stop->load(); };
    for (const auto& handler : handlers.*Traits::kHandlers) {
        handler(args);
        if (stopped()) {
            return;
        }
    }
    for (const auto& handler :
         handlers.*NotificationFamilyTraits<typename Traits::Event>::kHandlers) {
        handler(Traits::kType, args);
        if (stopped()) {
            return;
        }
    }
}

template <class Event>
bool DeliverIn(const NotificationDispatch::Family<Event>& family, const std::atomic<bool>* stop,
               const NotificationHandlers& handlers, const Message& message) {
    const auto found = family.messageTypes.find(message.GetHeader());
    if (found == family.messageTypes.end()) {
        return false;
    }
    const auto index = static_cast<std::size_t>(found->second);
    if (index < family.deliveries.size() && family.deliveries[index] != nullptr) {
        family.deliveries[index](stop, handlers, message);
    }
    return true;
}

}  // namespace

NotificationDispatch::NotificationDispatch(const std::atomic<bool>* stop) : stop(stop) {
    ForEachNotification([this](auto* args) {
        using Args = std::remove_pointer_t<decltype(args)>;
        using Traits = NotificationTraits<Args>;
        auto& family = std::get<Family<typename Traits::Event>>(families);
        family.messageTypes.emplace(Traits::kName, Traits::kType);
        const auto index = static_cast<std::size_t>(Traits::kType);
        if (family.deliveries.size() <= index) {
            family.deliveries.resize(index + 1);
        }
        family.deliveries[index] = &Process<Args>;
    });
}

bool NotificationDispatch::operator()(const NotificationHandlers& handlers,
                                      const Message& message) const {
    return std::apply(
        [&](const auto&... family) {
            return (DeliverIn(family, stop, handlers, message) || ...);
        },
        families);
}

}  // namespace Korvo::Plexis::Tessel::Client::Detail
