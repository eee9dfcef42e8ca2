// Encoding and decoding of three representative records through the library (converter, then
// the compact protocol over the library's buffer; replies through the reply builder) against the
// same generated records written and read with Thrift alone, and against memcpy of the bytes.

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <Korvo/Common/Serialization/Deserializer.h>
#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Common/Serialization/Serializer.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Plexis/Tessel/Client/DataCommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Commands/Converters.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Generated/Clips_types.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Notifier/Converters.h>

#include "support/BareThrift.h"
#include "support/Measure.h"
#include "support/Samples.h"
#include "support/Values.h"

namespace Korvo::Bench {
namespace {

using Common::Serialization::Buffer;
using Common::Serialization::PointerBuffer;
namespace Thrift = Plexis::Tessel::Serialization::Thrift;
namespace Commands = Plexis::Tessel::HighLevelOperations::Commands;
namespace Notification = Plexis::Notification;

// The library's encoder of domain `D` into wire record `W`.
template <class D, class W>
using LibrarySerializer =
    Common::Serialization::Serializer<Common::Serialization::SerializerImpl<W>, D,
                                      Thrift::ToThriftConverter<D, W>>;

// The library's decoder of wire record `W` into domain `D`.
template <class D, class W>
using LibraryDeserializer =
    Common::Serialization::Deserializer<Common::Serialization::DeserializerImpl<W>, D,
                                        Thrift::FromThriftConverter<W, D>>;

// One record measured: its domain value, its wire record and how the library decodes it. `D` is
// the domain class, `W` the generated record.
template <class D, class W>
struct Case {
    D domain;
    W wire;
    std::string bytes;

    explicit Case(D value) : domain(std::move(value)) {
        const auto result = Thrift::ToThriftConverter<D, W>().To(domain, wire);
        if (!result.success) {
            throw std::runtime_error(result.message);
        }
        bytes = BareThrift::Encode(wire);
    }
};

Plexis::Data::Clips::Clip ClipValue() {
    return Testing::Samples::Clip(7);
}

Commands::GetClipsCommandReply ClipListValue() {
    Commands::GetClipsCommandReply reply(Plexis::Data::Guid("clip-listing"));
    reply.marker = 42;
    for (int i = 0; i < 1000; ++i) {
        reply.clips.push_back(Testing::Samples::Clip(i));
    }
    return reply;
}

// The clip's converters are instantiated by ClipConverters.cpp.
using ClipCase = Case<Plexis::Data::Clips::Clip, Thrift::Data::Clips::Generated::Clip>;
using ClipListCase =
    Case<Commands::GetClipsCommandReply, Thrift::Commands::Generated::GetClipsCommandReply>;
using PlayerStateCase = Case<Notification::PlayerStateChangedEventArgs,
                             Thrift::Notifier::Generated::PlayerStateChangedEventArgs>;

template <class C>
const C& The();
template <>
const ClipCase& The<ClipCase>() {
    static const ClipCase value(ClipValue());
    return value;
}
template <>
const ClipListCase& The<ClipListCase>() {
    static const ClipListCase value(ClipListValue());
    return value;
}
template <>
const PlayerStateCase& The<PlayerStateCase>() {
    static const PlayerStateCase value(PlayerStateChangedSample());
    return value;
}

void Finish(benchmark::State& state, const std::string& bytes, const AllocationMeter& meter) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(bytes.size()));
    state.counters["bytes"] = static_cast<double>(bytes.size());
    meter.Report(state);
}

template <class D, class W>
void EncodeLibrary(benchmark::State& state, const Case<D, W>& c) {
    const AllocationMeter meter;
    for (auto _ : state) {
        std::unique_ptr<Buffer> buffer = LibrarySerializer<D, W>().Serialize(c.domain);
        benchmark::DoNotOptimize(buffer->Pointer());
    }
    Finish(state, c.bytes, meter);
}

template <class D, class W>
void EncodeThrift(benchmark::State& state, const Case<D, W>& c) {
    using namespace BareThrift;
    const AllocationMeter meter;
    for (auto _ : state) {
        auto buffer = std::make_shared<TMemoryBuffer>();
        TCompactProtocolT<TMemoryBuffer> protocol(buffer);
        c.wire.write(&protocol);
        uint8_t* bytes = nullptr;
        uint32_t size = 0;
        buffer->getBuffer(&bytes, &size);
        benchmark::DoNotOptimize(bytes);
    }
    Finish(state, c.bytes, meter);
}

// The decoding that the client applies: replies through the reply builder, the rest through the
// deserializer.
template <class D, class W>
void DecodeWithLibrary(const Case<D, W>& c, const Buffer& bytes) {
    if constexpr (std::is_base_of_v<Commands::CommandReply, D>) {
        static Plexis::Tessel::Client::DataCommandReplyBuilder builder;
        auto reply = builder.BuildCommandReply("GetClipsCommandReply", bytes);
        benchmark::DoNotOptimize(reply.get());
    } else {
        D domain;
        LibraryDeserializer<D, W>().Deserialize(bytes, domain);
        benchmark::DoNotOptimize(&domain);
    }
    (void)c;
}

template <class D, class W>
void DecodeLibrary(benchmark::State& state, const Case<D, W>& c) {
    const PointerBuffer bytes(reinterpret_cast<unsigned char*>(const_cast<char*>(c.bytes.data())),
                              static_cast<unsigned int>(c.bytes.size()));
    const AllocationMeter meter;
    for (auto _ : state) {
        DecodeWithLibrary(c, bytes);
    }
    Finish(state, c.bytes, meter);
}

template <class D, class W>
void DecodeThrift(benchmark::State& state, const Case<D, W>& c) {
    const AllocationMeter meter;
    for (auto _ : state) {
        W record;
        BareThrift::Decode(c.bytes.data(), c.bytes.size(), record);
        benchmark::DoNotOptimize(&record);
    }
    Finish(state, c.bytes, meter);
}

template <class D, class W>
void CopyBytes(benchmark::State& state, const Case<D, W>& c) {
    std::vector<char> target(c.bytes.size());
    const AllocationMeter meter;
    for (auto _ : state) {
        std::memcpy(target.data(), c.bytes.data(), c.bytes.size());
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    Finish(state, c.bytes, meter);
}

// Registers the five measurements of one record under "<Encode|Decode>/<record>/<variant>".
template <class C>
void RegisterRecord(const std::string& name) {
    const auto with = [](auto function) {
        return [function](benchmark::State& state) { function(state, The<C>()); };
    };
    benchmark::RegisterBenchmark(("Encode/" + name + "/Library").c_str(),
                                 with([](auto& s, const auto& c) { EncodeLibrary(s, c); }));
    benchmark::RegisterBenchmark(("Encode/" + name + "/Thrift").c_str(),
                                 with([](auto& s, const auto& c) { EncodeThrift(s, c); }));
    benchmark::RegisterBenchmark(("Encode/" + name + "/Memcpy").c_str(),
                                 with([](auto& s, const auto& c) { CopyBytes(s, c); }));
    benchmark::RegisterBenchmark(("Decode/" + name + "/Library").c_str(),
                                 with([](auto& s, const auto& c) { DecodeLibrary(s, c); }));
    benchmark::RegisterBenchmark(("Decode/" + name + "/Thrift").c_str(),
                                 with([](auto& s, const auto& c) { DecodeThrift(s, c); }));
    benchmark::RegisterBenchmark(("Decode/" + name + "/Memcpy").c_str(),
                                 with([](auto& s, const auto& c) { CopyBytes(s, c); }));
}

const bool registered = [] {
    RegisterRecord<ClipCase>("Clip");
    RegisterRecord<ClipListCase>("GetClipsCommandReply1000");
    RegisterRecord<PlayerStateCase>("PlayerStateChanged");
    return true;
}();

}  // namespace
}  // namespace Korvo::Bench

BENCHMARK_MAIN();
