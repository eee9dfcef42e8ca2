// Any record of the protocol, chosen by the first byte: whatever the decoder accepts must encode,
// decode again to an equal record, and encode again to the same bytes.

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <tuple>

#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/InvalidFormatException.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>

#include "FuzzInputs.h"

namespace {

using namespace Korvo::Common::Serialization;

template <class Record>
void RoundTrip(const std::uint8_t* bytes, std::size_t size) {
    Record first;
    try {
        DeserializerImpl<Record>().Deserialize(bytes, static_cast<unsigned int>(size), first);
    } catch (const InvalidFormatException&) {
        return;
    }
    const auto encoded = SerializerImpl<Record>().Serialize(first);
    Record second;
    DeserializerImpl<Record>().Deserialize(*encoded, second);  // must not throw
    const auto again = SerializerImpl<Record>().Serialize(second);
    if (!(first == second) || encoded->Size() != again->Size() ||
        std::memcmp(encoded->Pointer(), again->Pointer(), encoded->Size()) != 0) {
        std::abort();
    }
}

using RoundTripOne = void (*)(const std::uint8_t*, std::size_t);

template <class... Records>
constexpr auto Table(std::tuple<Records...>*) {
    return std::array<RoundTripOne, sizeof...(Records)>{&RoundTrip<Records>...};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static constexpr auto table = Table(static_cast<Korvo::Fuzzing::AllRecords*>(nullptr));
    if (size == 0) {
        return 0;
    }
    table[Korvo::Fuzzing::Choice(data[0], table.size())](data + 1, size - 1);
    return 0;
}
