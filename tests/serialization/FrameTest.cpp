#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <Korvo/Common/Serialization/Converter.h>
#include <Korvo/Common/Serialization/Deserializer.h>
#include <Korvo/Common/Serialization/DeserializerImpl.h>
#include <Korvo/Common/Serialization/InvalidConversionException.h>
#include <Korvo/Common/Serialization/InvalidFormatException.h>
#include <Korvo/Common/Serialization/PointerBuffer.h>
#include <Korvo/Common/Serialization/Serializer.h>
#include <Korvo/Common/Serialization/SerializerImpl.h>
#include <Korvo/Common/Serialization/Thrift/PermissiveMemoryBuffer.h>

#include "FrameRecords_types.h"

namespace {

using namespace Korvo::Common::Serialization;
using Korvo::Testing::Generated::Item;
using Korvo::Testing::Generated::Needy;

std::vector<unsigned char> Bytes(const Buffer& buffer) {
    return {buffer.Pointer(), buffer.Pointer() + buffer.Size()};
}

// A domain class and its converters, as the payload and reply builders use them.
struct Person {
    std::string name;
};

struct PersonToItem final : Converter<Person, Item> {
    ConversionResult To(const Person& source, Item& target) const override {
        if (source.name.empty()) {
            return ConversionResult::Failure("A person needs a name.");
        }
        target.name = source.name;
        return ConversionResult::Success();
    }
    ConversionResult To(Person&& source, Item& target) const override { return To(source, target); }
};

struct ItemToPerson final : Converter<Item, Person> {
    ConversionResult To(const Item& source, Person& target) const override {
        if (source.name == "nobody") {
            return ConversionResult::Failure("nobody is not a person");
        }
        target.name = source.name;
        return ConversionResult::Success();
    }
    ConversionResult To(Item&& source, Person& target) const override { return To(source, target); }
};

using PersonSerializer = Serializer<SerializerImpl<Item>, Person, PersonToItem>;
using PersonDeserializer = Deserializer<DeserializerImpl<Item>, Person, ItemToPerson>;

TEST(SerializerImpl, OneFieldEncodesToHeaderValueAndStopExactly) {
    Item item;
    item.name = "ab";
    auto buffer = SerializerImpl<Item>().Serialize(item);
    // Field 1 as binary (delta 1, type 8), length 2, the two bytes, then the stop byte.
    EXPECT_EQ(Bytes(*buffer), (std::vector<unsigned char>{0x18, 0x02, 'a', 'b', 0x00}));
}

TEST(SerializerImpl, RecordLongerThanTheInitialCapacityComesOutWhole) {
    Item item;
    item.name = "long";
    item.__set_blob(std::string(5000, '\x5a'));
    auto buffer = SerializerImpl<Item>().Serialize(item);
    EXPECT_GT(buffer->Size(), 5000u);

    Item decoded;
    DeserializerImpl<Item>().Deserialize(*buffer, decoded);
    EXPECT_EQ(decoded, item);
}

TEST(PermissiveMemoryBuffer, TakesOwnedBytesOnceOnly) {
    {
        Korvo::Common::Serialization::Thrift::PermissiveMemoryBuffer transport(16);
        transport.write(reinterpret_cast<const uint8_t*>("hello"), 5);
        unsigned char* bytes = nullptr;
        unsigned int size = 0;
        transport.takeBuffer(&bytes, &size);
        ASSERT_EQ(size, 5u);
        EXPECT_EQ(std::memcmp(bytes, "hello", 5), 0);
        try {
            transport.takeBuffer(&bytes, &size);
            ADD_FAILURE() << "a second takeBuffer must throw";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "Cannot take pointer if not owned");
        }
        // The transport no longer owns the bytes; under AddressSanitizer a double free or a
        // leak here fails the test.
        std::free(bytes);
    }
    unsigned char observed[4] = {1, 2, 3, 4};
    Korvo::Common::Serialization::Thrift::PermissiveMemoryBuffer view(observed, 4);
    unsigned char* bytes = nullptr;
    unsigned int size = 0;
    EXPECT_THROW(view.takeBuffer(&bytes, &size), std::runtime_error);
}

TEST(PointerBuffer, ReleasesOwnedBytesExactlyOnceAndViewsNever) {
    int released = 0;
    unsigned char bytes[3] = {1, 2, 3};
    {
        PointerBuffer owner(bytes, 3, true, [&](unsigned char* pointer) {
            EXPECT_EQ(pointer, bytes);
            ++released;
        });
        PointerBuffer view(bytes, 3);
        EXPECT_EQ(owner.Pointer(), bytes);
        EXPECT_EQ(view.Size(), 3u);
    }
    EXPECT_EQ(released, 1);
    {
        PointerBuffer notOwned(bytes, 3, false, [&](unsigned char*) { ++released; });
    }
    EXPECT_EQ(released, 1);
}

TEST(DeserializerImpl, UndecodableInputIsInvalidFormat) {
    const std::string truncated(
        "\x18\x05"
        "ab",
        4);  // claims five bytes, holds two
    const std::string onlyId(
        "\x18\x01"
        "x\x00",
        4);                                          // required field 2 missing
    const std::string wrongType("\x15\x02\x00", 3);  // field 1 as i32: skipped, then 2 missing
    for (const std::string& input : {std::string(), truncated, onlyId, wrongType}) {
        Needy record;
        try {
            DeserializerImpl<Needy>().Deserialize(
                reinterpret_cast<const unsigned char*>(input.data()),
                static_cast<unsigned int>(input.size()), record);
            ADD_FAILURE() << "accepted " << input.size() << " bytes";
        } catch (const InvalidFormatException& error) {
            EXPECT_STREQ(error.what(), "The input could not be parsed by the deserializer");
        }
    }
    Needy complete;
    const std::string valid(
        "\x18\x01"
        "x\x15\x04\x00",
        6);
    DeserializerImpl<Needy>().Deserialize(reinterpret_cast<const unsigned char*>(valid.data()), 6,
                                          complete);
    EXPECT_EQ(complete.id, "x");
    EXPECT_EQ(complete.count, 2);
}

TEST(SerializerAndDeserializer, DomainObjectRoundTripsThroughItsConverters) {
    auto buffer = PersonSerializer().Serialize(Person{"Ada"});
    Person decoded;
    PersonDeserializer().Deserialize(*buffer, decoded);
    EXPECT_EQ(decoded.name, "Ada");
}

TEST(SerializerAndDeserializer, ConverterFailureIsInvalidConversionWithItsMessage) {
    try {
        PersonSerializer().Serialize(Person{});
        ADD_FAILURE() << "an empty name must not serialize";
    } catch (const InvalidConversionException& error) {
        EXPECT_STREQ(error.what(), "A person needs a name.");
    }
    auto nobody = PersonSerializer().Serialize(Person{"nobody"});
    Person decoded;
    try {
        PersonDeserializer().Deserialize(*nobody, decoded);
        ADD_FAILURE() << "the converter's failure must surface";
    } catch (const InvalidConversionException& error) {
        EXPECT_STREQ(error.what(), "nobody is not a person");
    }
}

}  // namespace
