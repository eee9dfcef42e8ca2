// Every record, with every field set to a value other than its default, survives writing and
// reading unchanged.
//
// The records are filled by their own generated `read` over FillingProtocol, which invents the
// fields: for each field id in turn it offers every Thrift type until the record accepts one (a
// record rejects a type by calling `skip`), answers each value read with a fresh non-zero number
// or text, and gives every list, set and map two elements. A struct ends after a run of ids that
// no type fits. So no record needs a hand-written filler, and a field added to a .thrift file is
// covered without touching this test.

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include <thrift/TToString.h>
#include <thrift/protocol/TVirtualProtocol.h>
#include <thrift/transport/TBufferTransports.h>

#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/AnglesGroups.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Channels.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Clips.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Commands.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Common.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/DataCommands.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Notifications.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Replies.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Sequences.h>
#include <Korvo/Plexis/Tessel/Serialization/Thrift/Records/Servers.h>

#include "RecordBytes.h"

namespace {

using apache::thrift::protocol::TType;
namespace protocol = apache::thrift::protocol;

class FillingProtocol : public protocol::TVirtualProtocol<FillingProtocol> {
public:
    FillingProtocol()
        : TVirtualProtocol(std::make_shared<apache::thrift::transport::TMemoryBuffer>()) {}

    /// Field ids the outermost record accepted, in order.
    const std::vector<int16_t>& TopLevelIds() const { return topLevelIds; }

    uint32_t readStructBegin(std::string&) {
        Accept();
        frames.emplace_back();
        return 0;
    }
    uint32_t readStructEnd() {
        if (frames.size() == 1) {
            topLevelIds = frames.back().accepted;
        }
        frames.pop_back();
        return 0;
    }
    uint32_t readFieldBegin(std::string&, TType& type, int16_t& id) {
        Frame& frame = frames.back();
        if (frame.offered && frame.taken) {
            frame.accepted.push_back(frame.id);
            Advance(frame, false);
        } else if (frame.offered && ++frame.typeIndex == kTypes.size()) {
            Advance(frame, true);
        }
        frame.offered = frame.unusedRun < kUnusedIdsBeforeStop;
        frame.taken = false;
        type = frame.offered ? kTypes[frame.typeIndex] : protocol::T_STOP;
        id = frame.id;
        return 0;
    }
    uint32_t readFieldEnd() { return 0; }
    uint32_t skip(TType) { return 0; }  // the record refused the offered type

    uint32_t readListBegin(TType& elementType, uint32_t& size) {
        return Container(elementType, size);
    }
    uint32_t readSetBegin(TType& elementType, uint32_t& size) {
        return Container(elementType, size);
    }
    uint32_t readMapBegin(TType& keyType, TType& valueType, uint32_t& size) {
        valueType = protocol::T_STRUCT;
        return Container(keyType, size);
    }
    uint32_t readListEnd() { return 0; }
    uint32_t readSetEnd() { return 0; }
    uint32_t readMapEnd() { return 0; }

    using TVirtualProtocol::readBool;
    uint32_t readBool(bool& value) { return Value(value, true); }
    uint32_t readByte(int8_t& value) { return Value(value, static_cast<int8_t>(Next() % 100 + 1)); }
    uint32_t readI16(int16_t& value) {
        return Value(value, static_cast<int16_t>(Next() % 30000 + 1));
    }
    uint32_t readI32(int32_t& value) { return Value(value, static_cast<int32_t>(Next())); }
    uint32_t readI64(int64_t& value) { return Value(value, (int64_t{1} << 40) + Next()); }
    uint32_t readDouble(double& value) { return Value(value, Next() + 0.5); }
    uint32_t readString(std::string& value) {
        return Value(value, "text " + std::to_string(Next()));
    }
    uint32_t readBinary(std::string& value) { return readString(value); }

private:
    static constexpr std::array<TType, 11> kTypes = {
        protocol::T_BOOL, protocol::T_BYTE,   protocol::T_I16,    protocol::T_I32,
        protocol::T_I64,  protocol::T_DOUBLE, protocol::T_STRING, protocol::T_STRUCT,
        protocol::T_MAP,  protocol::T_SET,    protocol::T_LIST};
    // Records leave at most two ids unused in a row (ids 1 and 2 of the load-boundaries
    // parameter), so three unused ids end a struct.
    static constexpr int kUnusedIdsBeforeStop = 3;

    struct Frame {
        int16_t id = 1;
        size_t typeIndex = 0;
        int unusedRun = 0;
        bool offered = false;  // a field header was handed out and not yet settled
        bool taken = false;    // the record read a value for it
        std::vector<int16_t> accepted;
    };

    static void Advance(Frame& frame, bool unused) {
        frame.unusedRun = unused ? frame.unusedRun + 1 : 0;
        ++frame.id;
        frame.typeIndex = 0;
    }
    void Accept() {
        if (!frames.empty()) {
            frames.back().taken = true;
        }
    }
    template <class T, class V>
    uint32_t Value(T& target, V value) {
        Accept();
        target = value;
        return 0;
    }
    uint32_t Container(TType& elementType, uint32_t& size) {
        Accept();
        elementType = protocol::T_STRUCT;  // generated readers go by the declared type
        size = 2;
        return 0;
    }
    int32_t Next() { return ++counter; }

    std::vector<Frame> frames;
    std::vector<int16_t> topLevelIds;
    int32_t counter = 0;
};

template <class Record>
Record Filled(std::vector<int16_t>* topLevelIds = nullptr) {
    FillingProtocol filler;
    Record record;
    record.read(&filler);
    if (topLevelIds != nullptr) {
        *topLevelIds = filler.TopLevelIds();
    }
    return record;
}

std::vector<int16_t> Ids(int16_t first, int16_t last, std::vector<int16_t> except = {}) {
    std::vector<int16_t> ids;
    for (int16_t id = first; id <= last; ++id) {
        if (std::find(except.begin(), except.end(), id) == except.end()) {
            ids.push_back(id);
        }
    }
    return ids;
}

TEST(RecordFilling, FillerSetsEveryFieldIncludingThoseAfterGaps) {
    std::vector<int16_t> ids;
    const auto clip =
        Filled<Korvo::Plexis::Tessel::Serialization::Thrift::Data::Clips::Generated::Clip>(&ids);
    EXPECT_EQ(ids, Ids(1, 49));
    EXPECT_TRUE(clip.__isset.lowResEssence);
    EXPECT_EQ(clip.keywords.size(), 2u);
    EXPECT_NE(clip.lowResEssence.verticalFrameSize, 0);

    Filled<Korvo::Plexis::Tessel::Serialization::Thrift::Data::Sequences::Generated::Sequence>(
        &ids);
    EXPECT_EQ(ids, Ids(1, 17, {8}));
    Filled<Korvo::Plexis::Tessel::Serialization::Thrift::Commands::Generated::
               SetLoadBoundariesCommandParam>(&ids);
    EXPECT_EQ(ids, Ids(3, 4));
}

template <class Record>
class RecordRoundTrip : public ::testing::Test {};

// Test names carry the record's name, the text its printout starts with.
struct RecordName {
    template <class Record>
    static std::string GetName(int) {
        const std::string printed = apache::thrift::to_string(Record());
        return printed.substr(0, printed.find('('));
    }
};

namespace Common = Korvo::Plexis::Data::Generated;
namespace Groups = Korvo::Plexis::Data::Clips::Groups::Generated;
namespace Channels = Korvo::Plexis::Tessel::Serialization::Thrift::Data::Channels::Generated;
namespace Clips = Korvo::Plexis::Tessel::Serialization::Thrift::Data::Clips::Generated;
namespace Sequences = Korvo::Plexis::Tessel::Serialization::Thrift::Data::Sequences::Generated;
namespace Servers = Korvo::Plexis::Tessel::Serialization::Thrift::Data::Servers::Generated;
namespace Commands = Korvo::Plexis::Tessel::Serialization::Thrift::Commands::Generated;
namespace Notifier = Korvo::Plexis::Tessel::Serialization::Thrift::Notifier::Generated;

using AllRecords = ::testing::Types<
    // Common, angles groups, servers
    Common::Guid, Common::PlayerDataOverrides, Common::OperationStatus, Groups::AnglesGroupItem,
    Groups::AnglesGroup, Servers::ServerInfo,
    // Channels
    Channels::AbsoluteLoadBoundary, Channels::RelativeLoadBoundary,
    Channels::SpecializedLoadBoundary, Channels::LoadBoundary, Channels::PlayerClipOnAir,
    Channels::PlayerInfoOnAir, Channels::PlayerState, Channels::RecorderState,
    // Clips
    Clips::AsciiOrUtf16String, Clips::Essence, Clips::Clip, Clips::RecordingRange, Clips::Train,
    // Sequences
    Sequences::Speed, Sequences::SequenceId, Sequences::TagProperty, Sequences::Tag,
    Sequences::Element, Sequences::AudioVideoElement, Sequences::AudioVideoTrack,
    Sequences::Sequence, Sequences::Playlist,
    // Channel commands
    Commands::PlayCommandParams, Commands::LiveCommandParams, Commands::ChainCommandParams,
    Commands::DialCommandParams, Commands::StepCommandParams, Commands::SyncCommandParams,
    Commands::LoadClipCommandParam, Commands::LoadClipsCommandParams,
    Commands::LoadSequenceCommandParam, Commands::LoadSequencesCommandParams,
    Commands::SetLoadBoundariesCommandParam, Commands::SetLoadBoundariesCommandParams,
    Commands::GoIdleCommandParams, Commands::StartRecordingCommandParams,
    Commands::StopRecordingCommandParams, Commands::GetChannelsCommandParams,
    Commands::GetMultiviewerDataCommandParams, Commands::SetMultiviewerDataCommandParams,
    // Data commands
    Commands::PingCommandParams, Commands::GetClipsCommandParams, Commands::GetTrainsCommandParams,
    Commands::GetAnglesGroupsCommandParams, Commands::GetServersCommandParams,
    Commands::GetPlaylistsCommandParams, Commands::DeleteClipsCommandParams,
    Commands::CreateClipParams, Commands::CreateClipsCommandParams, Commands::UpdateClipParams,
    Commands::UpdateClipsCommandParams, Commands::CreateAnglesGroupCommandParams,
    Commands::UpdateAnglesGroupCommandParams, Commands::DeleteAnglesGroupCommandParams,
    Commands::CreatePlaylistsCommandParams, Commands::UpdatePlaylistParams,
    Commands::UpdatePlaylistsCommandParams, Commands::DeletePlaylistsCommandParams,
    // Replies
    Commands::SuccessReply, Commands::FailureReply, Commands::UnknownCommandReply,
    Commands::ChannelResult, Commands::ChannelCommandReply, Commands::GetChannelsCommandReply,
    Commands::GetMultiviewerDataCommandReply, Commands::ClipResultsItem, Commands::ClipCommandReply,
    Commands::PlaylistResultsItem, Commands::PlaylistCommandReply,
    Commands::AnglesGroupCommandReply, Commands::GetServersCommandReply,
    Commands::GetClipsCommandReply, Commands::GetTrainsCommandReply,
    Commands::GetPlaylistsCommandReply, Commands::GetAnglesGroupsCommandReply,
    // Notifications
    Notifier::ClipCommandEventArgs, Notifier::ClipCreationStartedEventArgs,
    Notifier::ClipCreationFinishedEventArgs, Notifier::ClipUpdateFinishedEventArgs,
    Notifier::ClipDeletionFinishedEventArgs, Notifier::ClipMoveStartedEventArgs,
    Notifier::ClipMoveFinishedEventArgs, Notifier::MassClipUpdateFinishedEventArgs,
    Notifier::MassClipDeletionFinishedEventArgs, Notifier::AnglesGroupCreationEventArgs,
    Notifier::AnglesGroupUpdateEventArgs, Notifier::AnglesGroupDeletionEventArgs,
    Notifier::AnglesGroupCreationFinishedEventArgs, Notifier::AnglesGroupUpdateFinishedEventArgs,
    Notifier::AnglesGroupDeletionFinishedEventArgs, Notifier::RecordingRangesChangedEventArgs,
    Notifier::RecorderStateChangedEventArgs, Notifier::PlayerStateChangedEventArgs,
    Notifier::ServerAddedEventArgs, Notifier::ServerRemovedEventArgs,
    Notifier::DisconnectedFromNetworkEventArgs>;
TYPED_TEST_SUITE(RecordRoundTrip, AllRecords, RecordName);

TYPED_TEST(RecordRoundTrip, EveryFieldSetSurvivesWritingAndReading) {
    const TypeParam filled = Filled<TypeParam>();
    ASSERT_NE(filled, TypeParam());

    const auto bytes = Korvo::Testing::Encode(filled);
    const auto decoded = Korvo::Testing::Deserialize<TypeParam>(bytes);
    EXPECT_EQ(decoded, filled);
    EXPECT_EQ(Korvo::Testing::Encode(decoded), bytes);
}

}  // namespace
