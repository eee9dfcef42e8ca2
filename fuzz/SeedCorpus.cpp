// Writes the fuzzers' seed inputs: valid encodings of the sample values and of records with every
// field set, and the hand-made hostile payloads, each behind the byte that selects its name or
// record.
//
//   korvo_fuzz_seeds <directory>   writes <directory>/{replies,notifications,records,envelope}/

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include <Korvo/Common/Serialization/SerializerImpl.h>

#include "FuzzInputs.h"
#include "support/FillingProtocol.h"
#include "support/HostileFrames.h"
#include "support/SamplePayloads.h"

namespace {

namespace fs = std::filesystem;
using namespace Korvo;

class Corpus {
public:
    explicit Corpus(fs::path directory) : directory(std::move(directory)) {
        fs::create_directories(this->directory);
    }

    void Write(const std::string& name, std::size_t chooser, const std::string& bytes) {
        std::ofstream out(directory / (std::to_string(count++) + "-" + Sanitized(name)),
                          std::ios::binary);
        out << Fuzzing::Chooser(chooser) << bytes;
        if (!out) {
            throw std::runtime_error("cannot write into " + directory.string());
        }
    }

private:
    static std::string Sanitized(std::string name) {
        std::replace_if(
            name.begin(), name.end(),
            [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
        return name;
    }

    fs::path directory;
    int count = 0;
};

std::size_t IndexOf(const std::vector<std::string>& names, const std::string& name) {
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) {
        throw std::logic_error("no fuzzer input selects " + name);
    }
    return static_cast<std::size_t>(found - names.begin());
}

template <class Record>
std::string FilledBytes() {
    const auto buffer =
        Common::Serialization::SerializerImpl<Record>().Serialize(Testing::Filled<Record>());
    return {reinterpret_cast<const char*>(buffer->Pointer()), buffer->Size()};
}

void WriteReplies(Corpus corpus) {
    const auto& names = Fuzzing::ReplyTypeNames();
    for (const auto& sample : Testing::SampleReplyPayloads()) {
        corpus.Write(sample.name, IndexOf(names, sample.name), sample.bytes);
    }
    Plexis::Tessel::Client::ForEachReply([&](auto* reply) {
        using Reply = std::remove_pointer_t<decltype(reply)>;
        const std::string name(Plexis::Tessel::Client::ReplyTraits<Reply>::kName);
        corpus.Write("filled " + name, IndexOf(names, name),
                     FilledBytes<typename Plexis::Tessel::Serialization::Thrift::Commands::WireOf<
                         Reply>::Record>());
    });
    for (const auto& frame : Testing::HostileFrames()) {
        corpus.Write(frame.name, IndexOf(names, frame.replyType), frame.bytes);
    }
}

void WriteNotifications(Corpus corpus) {
    const auto& headers = Fuzzing::NotificationHeaders();
    for (const auto& sample : Testing::SampleNotificationPayloads()) {
        corpus.Write(sample.name, IndexOf(headers, sample.name), sample.bytes);
    }
    Plexis::Tessel::Client::ForEachNotification([&](auto* args) {
        using Args = std::remove_pointer_t<decltype(args)>;
        const std::string name(Plexis::Tessel::Client::NotificationTraits<Args>::kName);
        corpus.Write("filled " + name, IndexOf(headers, name),
                     FilledBytes<typename Plexis::Tessel::Serialization::Thrift::Notifier::WireOf<
                         Args>::Record>());
    });
    for (const auto& frame : Testing::HostileFrames()) {
        corpus.Write(frame.name, IndexOf(headers, "PlayerStateChanged"), frame.bytes);
    }
}

template <class... Records>
void WriteRecords(Corpus corpus, std::tuple<Records...>*) {
    std::size_t index = 0;
    ((corpus.Write("filled", index++, FilledBytes<Records>())), ...);
    // The hostile payloads, spread over the records.
    const auto frames = Testing::HostileFrames();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        corpus.Write(frames[i].name, (i * 7) % sizeof...(Records), frames[i].bytes);
    }
}

void WriteEnvelopes(Corpus corpus) {
    using namespace std::string_literals;
    // Frame count, then a length byte before every frame but the last.
    corpus.Write("reply", 3, "\x04\x2A\x00\x00\x00\x0CSuccessReply\x00"s);
    corpus.Write("notification", 3, "\x05topic\x0BServerAdded\x00"s);
    corpus.Write("short ticket", 3, "\x03\x01\x02\x03\x01X"s);
    corpus.Write("two frames", 2, "\x04\x01\x02\x03\x04"s);
    corpus.Write("four frames", 4, "\x04\x01\x02\x03\x04\x01X\x00"s);
    corpus.Write("no frames", 0, "");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: " << argv[0] << " <directory>\n";
        return 2;
    }
    try {
        const fs::path root = argv[1];
        WriteReplies(Corpus(root / "replies"));
        WriteNotifications(Corpus(root / "notifications"));
        WriteRecords(Corpus(root / "records"), static_cast<Fuzzing::AllRecords*>(nullptr));
        WriteEnvelopes(Corpus(root / "envelope"));
    } catch (const std::exception& error) {
        std::cerr << argv[0] << ": " << error.what() << "\n";
        return 1;
    }
    return 0;
}
