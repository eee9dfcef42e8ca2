// The command, reply and notification tables, with the field list of every class they reach, as
// plain Python data. The Python layer builds its named methods and its key spelling from it, and
// the stub generator writes the type stubs from it, so that neither repeats a name.

#include "Schema.h"

#include <cxxabi.h>

#include <cstdint>
#include <cstdlib>
#include <array>
#include <map>
#include <optional>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include <Korvo/Plexis/Tessel/Client/CommandTypes.h>
#include <Korvo/Plexis/Tessel/Client/Connection.h>
#include <Korvo/Plexis/Tessel/Client/NotificationTypes.h>

namespace Korvo::Python {
namespace {

namespace py = pybind11;
namespace Commands = Plexis::Tessel::HighLevelOperations::Commands;
namespace Client = Plexis::Tessel::Client;
namespace FieldList = Plexis::Data::FieldList;

// What kind of member type a field holds.
namespace Fields {
template <class T>
struct IsArray : std::false_type {};
template <class T, std::size_t N>
struct IsArray<std::array<T, N>> : std::true_type {};
template <class T>
struct IsVector : std::false_type {};
template <class T, class A>
struct IsVector<std::vector<T, A>> : std::true_type {};
template <class T>
struct IsSet : std::false_type {};
template <class T, class C, class A>
struct IsSet<std::set<T, C, A>> : std::true_type {};
template <class T>
struct IsMap : std::false_type {};
template <class K, class V, class C, class A>
struct IsMap<std::map<K, V, C, A>> : std::true_type {};
template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};
template <class T, class = void>
struct HasDescriptor : std::false_type {};
template <class T>
struct HasDescriptor<T, std::void_t<decltype(T::Descriptor())>> : std::true_type {};
template <class Entry>
struct IsBaseEntry : std::false_type {};
template <class Base>
struct IsBaseEntry<FieldList::BaseFields<Base>> : std::true_type {};
}  // namespace Fields

// The class's own name, without its namespaces.
template <class T>
std::string ShortName() {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> full(
        abi::__cxa_demangle(typeid(T).name(), nullptr, nullptr, &status), std::free);
    std::string name = status == 0 ? full.get() : typeid(T).name();
    const auto colon = name.rfind("::");
    return colon == std::string::npos ? name : name.substr(colon + 2);
}

// Collects the classes reached from the tables: name -> list of (field, type).
class Collector {
public:
    template <class T>
    py::tuple Type();

    template <class T>
    py::list FieldsOf() {
        py::list fields;
        Walk<T>(fields);
        return fields;
    }

    py::dict classes;

private:
    template <class T>
    void Walk(py::list& fields) {
        std::apply(
            [&](const auto&... entry) {
                (
                    [&](const auto& one) {
                        using Entry = std::decay_t<decltype(one)>;
                        if constexpr (Fields::IsBaseEntry<Entry>::value) {
                            Walk<typename Entry::Type>(fields);
                        } else {
                            using Member = typename Entry::Type;
                            // The channel reply's count follows from its list and is not written.
                            if constexpr (std::is_same_v<T, Commands::ChannelCommandReply> &&
                                          std::is_same_v<Member, std::int32_t>) {
                                return;
                            }
                            fields.append(py::make_tuple(one.name, Type<Member>()));
                        }
                    }(entry),
                    ...);
            },
            T::Descriptor());
    }
};

template <class T>
py::tuple Collector::Type() {
    if constexpr (std::is_same_v<T, bool>) {
        return py::make_tuple("bool");
    } else if constexpr (std::is_integral_v<T>) {
        return py::make_tuple("int");
    } else if constexpr (std::is_same_v<T, std::string> || std::is_base_of_v<Plexis::Data::Guid, T> ||
                         std::is_same_v<T, Plexis::Data::Channels::Guid>) {
        return py::make_tuple("str");
    } else if constexpr (std::is_same_v<T, Plexis::Data::Clips::AsciiOrUtf16String>) {
        return py::make_tuple("text");
    } else if constexpr (std::is_same_v<T, TimePoints::TimeCode>) {
        if (!classes.contains("TimeCode")) {
            py::list fields;
            fields.append(py::make_tuple("rateNumerator", py::make_tuple("int")));
            fields.append(py::make_tuple("rateDenominator", py::make_tuple("int")));
            fields.append(py::make_tuple("sample", py::make_tuple("int")));
            fields.append(py::make_tuple("dropFrame", py::make_tuple("bool")));
            fields.append(py::make_tuple("valid", py::make_tuple("bool")));
            classes["TimeCode"] = fields;
        }
        return py::make_tuple("class", "TimeCode");
    } else if constexpr (Fields::IsOptional<T>::value) {
        return py::make_tuple("optional", Type<typename T::value_type>());
    } else if constexpr (Fields::IsVector<T>::value || Fields::IsSet<T>::value ||
                         Fields::IsArray<T>::value) {
        return py::make_tuple("list", Type<typename T::value_type>());
    } else if constexpr (Fields::IsMap<T>::value) {
        return py::make_tuple("map", Type<typename T::key_type>(),
                              Type<typename T::mapped_type>());
    } else if constexpr (Fields::HasDescriptor<T>::value) {
        const std::string name = ShortName<T>();
        if (!classes.contains(name.c_str())) {
            classes[name.c_str()] = py::list();  // marks it before recursing into itself
            classes[name.c_str()] = FieldsOf<T>();
        }
        return py::make_tuple("class", name);
    } else {
        static_assert(sizeof(T) == 0, "a member type without a Python form");
    }
}

}  // namespace

py::dict Schema() {
    Collector collector;
    py::list commands;
    Client::ForEachCommand([&](auto* params) {
        using Params = std::remove_pointer_t<decltype(params)>;
        using Traits = Client::CommandTraits<Params>;
        commands.append(py::make_tuple(
            std::string(Traits::kName),
            std::string(Client::ReplyTraits<typename Traits::Reply>::kClassName),
            Traits::kReadOnly, Client::kIsContinuous<Params>, collector.FieldsOf<Params>()));
    });
    py::list replies;
    Client::ForEachReply([&](auto* reply) {
        using Reply = std::remove_pointer_t<decltype(reply)>;
        using Traits = Client::ReplyTraits<Reply>;
        replies.append(py::make_tuple(std::string(Traits::kClassName), Traits::kAcceptsPart,
                                      collector.FieldsOf<Reply>()));
    });
    py::list notifications;
    Client::ForEachNotification([&](auto* args) {
        using Args = std::remove_pointer_t<decltype(args)>;
        using Traits = Client::NotificationTraits<Args>;
        notifications.append(py::make_tuple(std::string(Traits::kName),
                                            std::string(Traits::kFamilyName),
                                            collector.FieldsOf<Args>()));
    });
    py::dict schema;
    schema["commands"] = commands;
    schema["replies"] = replies;
    schema["notifications"] = notifications;
    schema["classes"] = collector.classes;
    return schema;
}

}  // namespace Korvo::Python
