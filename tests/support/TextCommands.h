#pragma once

#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Plexis/Tessel/Client/CommandParamsPayloadBuilder.h>
#include <Korvo/Plexis/Tessel/Client/CommandReplyBuilder.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandParams.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

namespace Korvo::Testing {

using Plexis::Tessel::HighLevelOperations::Commands::CommandParams;
using Plexis::Tessel::HighLevelOperations::Commands::CommandReply;

/// Parameters that are just a text; the payload is the text's bytes.
struct TextParams final : CommandParams {
    explicit TextParams(std::string text) : text(std::move(text)) {}
    std::string text;
};

/// Builds the payload of any command name from TextParams, except that "UnknownCommandName"
/// throws "Unknown command type." and "NoPayload" yields an empty pointer, like a real builder.
class TextPayloadBuilder final : public Plexis::Tessel::Client::CommandParamsPayloadBuilder {
public:
    std::unique_ptr<Common::Serialization::Buffer> BuildPayload(
        const std::string& commandName, const CommandParams& params) override {
        if (commandName == "UnknownCommandName") {
            throw std::invalid_argument("Unknown command type.");
        }
        if (commandName == "NoPayload") {
            return nullptr;
        }
        const std::string& text = static_cast<const TextParams&>(params).text;
        auto* bytes = static_cast<unsigned char*>(std::malloc(text.size() + 1));
        std::memcpy(bytes, text.data(), text.size());
        return Common::Serialization::PointerBuffer::AdoptMalloced(
            bytes, static_cast<unsigned int>(text.size()));
    }
};

/// A reply that keeps the header it was built from and the bytes as text.
struct TextReply final : Plexis::Tessel::HighLevelOperations::Commands::CommandReplyOfType<1> {
    TextReply(std::string header, std::string text)
        : header(std::move(header)), text(std::move(text)) {}
    std::string header;
    std::string text;
};

/// Builds a TextReply from any header except "Garbage", which it rejects like a real builder.
class TextReplyBuilder final : public Plexis::Tessel::Client::CommandReplyBuilder {
public:
    std::unique_ptr<CommandReply> BuildCommandReply(
        const std::string& replyType, const Common::Serialization::Buffer& buffer) override {
        if (replyType == "Garbage") {
            throw std::invalid_argument(
                "TextReplyBuilder:BuildCommandReply: Unknown command type.");
        }
        return std::make_unique<TextReply>(
            replyType, std::string(reinterpret_cast<const char*>(buffer.Pointer()), buffer.Size()));
    }
};

}  // namespace Korvo::Testing
