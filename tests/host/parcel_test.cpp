// SPDX-License-Identifier: Apache-2.0
//
// Parcels: replays the recordings, and tests allocators.

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "host/recording.h"
#include "message_parcel.h"

using namespace OHOS;
using namespace replay;

namespace {

std::unique_ptr<Parcel> g_parcel;
uintptr_t g_block = 0;  // passed to ParseFrom

bool ParseFrom(const Bytes &bytes)
{
    void *block = std::malloc(bytes.size());
    bytes.copy(static_cast<char *>(block), bytes.size());
    g_block = reinterpret_cast<uintptr_t>(block);
    const bool isTaken = g_parcel->ParseFrom(g_block, bytes.size());
    if (!isTaken) {
        std::free(block);
    }
    return isTaken;
}

// Writes a string or block, which may be null, with its length.
template <typename Text, typename Unit>
Operation Writes(bool (Parcel::*write)(const Unit *, size_t))
{
    return [write](const Fields &in) -> Fields {
        const auto text = Value<std::optional<Text>>(in.at(0));
        return {Show((*g_parcel.*write)(text ? text->data() : nullptr, text ? text->size() : 0))};
    };
}

Operation ReadsBlock(const uint8_t *(Parcel::*read)(size_t))
{
    return [read](const Fields &in) -> Fields {
        const auto size = Value<size_t>(in.at(0));
        const auto *bytes = reinterpret_cast<const char *>((*g_parcel.*read)(size));
        return {bytes == nullptr ? "null" : ToHex(std::string(bytes, size))};
    };
}

#define GET(Name) operations[#Name] = Call(+[] { return g_parcel->Name(); });
#define SET(Name, Type) operations[#Name] = Call(+[](Type value) { return g_parcel->Name(value); });

// Reads into a variable that is initialized to `before`.
#define READ_INTO(name, call, Type, before) \
    operations[name] = Call(+[] {           \
        Type value = before;                \
        const auto result = g_parcel->call; \
        return std::pair(result, value);    \
    });

#define VALUES(Name, ListName, Type, before, ...)                \
    SET(Write##Name, Type)                                       \
    GET(Read##Name)                                              \
    READ_INTO("Read" #Name "&", Read##Name(value), Type, before) \
    SET(Write##ListName##Vector, std::vector<Type>)              \
    READ_INTO("Read" #ListName "Vector", Read##ListName##Vector(&value), std::vector<Type>, {__VA_ARGS__})

void AddValues(Operations &operations)
{
    VALUES(Bool, Bool, bool, true)
    VALUES(Int8, Int8, int8_t, 77)
    VALUES(Int16, Int16, int16_t, 77)
    VALUES(Int32, Int32, int32_t, 77, 9)
    VALUES(Int64, Int64, int64_t, 77)
    VALUES(Uint8, UInt8, uint8_t, 77)
    VALUES(Uint16, UInt16, uint16_t, 77)
    VALUES(Uint32, UInt32, uint32_t, 77)
    VALUES(Uint64, UInt64, uint64_t, 77)
    VALUES(Float, Float, float, 77)
    VALUES(Double, Double, double, 77)
    VALUES(String, String, std::string, "prefilled", "old")
    VALUES(String16, String16, std::u16string, u"pre")
    SET(WritePointer, uintptr_t)
    GET(ReadPointer)
    READ_INTO("ReadString8WithLength&", ReadString8WithLength(value), int32_t, 77)
    READ_INTO("ReadString16WithLength&", ReadString16WithLength(value), int32_t, 77)
    operations["WriteString8WithLength"] = Writes<std::string>(&Parcel::WriteString8WithLength);
    operations["WriteString16WithLength"] = Writes<std::u16string>(&Parcel::WriteString16WithLength);
    operations["WriteCString"] =
        Call(+[](std::optional<std::string> value) { return g_parcel->WriteCString(Pointer(value)); });
    operations["ReadCString"] = Call(+[] {
        const char *value = g_parcel->ReadCString();
        return value == nullptr ? std::nullopt : std::make_optional<std::string>(value);
    });
}

void AddBlocksAndPositions(Operations &operations)
{
    operations["WriteBuffer"] = Writes<Bytes>(&Parcel::WriteBuffer);
    operations["WriteUnpadBuffer"] = Writes<Bytes>(&Parcel::WriteUnpadBuffer);
    operations["WriteBufferAddTerminator1"] =
        Call(+[](Bytes block) { return g_parcel->WriteBufferAddTerminator(block.data(), block.size(), 1); });
    operations["WriteBufferAddTerminator2"] =
        Call(+[](Bytes block) { return g_parcel->WriteBufferAddTerminator(block.data(), block.size(), 2); });
    operations["ReadBuffer"] = ReadsBlock(&Parcel::ReadBuffer);
    operations["ReadUnpadBuffer"] = ReadsBlock(&Parcel::ReadUnpadBuffer);
    GET(GetReadableBytes)
    GET(GetWritableBytes)
    GET(GetDataCapacity)
    GET(GetMaxCapacity)
    GET(GetWritePosition)
    SET(SetDataCapacity, size_t)
    SET(SetDataSize, size_t)
    SET(SetMaxCapacity, size_t)
    SET(RewindRead, size_t)
    SET(RewindWrite, size_t)
    operations["SkipBytes"] = Call(+[](size_t count) -> Fields { return g_parcel->SkipBytes(count), Fields{"done"}; });
    operations["FlushBuffer"] = Call(+[]() -> Fields { return g_parcel->FlushBuffer(), Fields{"done"}; });
    operations["ParseFrom"] = Call(ParseFrom);
    operations["ParseFromNothing"] = Call(+[] { return g_parcel->ParseFrom(0, 0); });
    operations["DataIsTheGivenBlock"] = Call(+[] { return g_parcel->GetData() == g_block; });
}

}  // namespace

TEST(Parcel, MatchesRecording)
{
    Operations operations;
    AddValues(operations);
    AddBlocksAndPositions(operations);
    for (auto &[name, operation] : operations) {
        operation = [result = operation](const Fields &in) -> Fields {
            const std::string shown = result(in).front();
            return {shown, Show(g_parcel->GetReadPosition()), Show(g_parcel->GetDataSize())};
        };
    }
    for (const char *begin : {"WriteBool", "WriteInt8", "WriteInt16", "WriteUint8", "WriteUint16"}) {
        operations[std::string(begin) + "Unaligned"] = [](const Fields &) -> Fields {
            throw Skip();
        };
    }
    operations["ReadUint8Unaligned&"] = operations["WriteUint8Unaligned"];
    operations["case"] = [](const Fields &) -> Fields {
        g_parcel = std::make_unique<MessageParcel>();
        return {};
    };
    operations["end"] = [](const Fields &) -> Fields {
        return {ToHex(std::string(reinterpret_cast<const char *>(g_parcel->GetData()), g_parcel->GetDataSize()))};
    };
    EXPECT_EQ(Replay("recorded/parcel.txt", 307, operations), 10u);
    Replay("handwritten/parcel.txt", 1, operations);
    g_parcel.reset();
}

TEST(ParcelAllocator, BelongsToTheParcel)
{
    struct Counting : DefaultAllocator {
        explicit Counting(std::string &record) : calls(record)
        {
        }
        void *Realloc(void *data, size_t size) override
        {
            return size > 128 ? nullptr : DefaultAllocator::Realloc(data, size);
        }
        void Dealloc(void *data) override
        {
            calls += "free ";
            DefaultAllocator::Dealloc(data);
        }
        std::string &calls;
        std::shared_ptr<void> atEnd{nullptr, [&record = calls](void *) {
                                        record += "end ";
                                    }};
    };
    std::string calls;
    {
        Parcel parcel(new Counting(calls));
        EXPECT_FALSE(parcel.ParseFrom(0, 1));
        EXPECT_FALSE(parcel.ReadInt32Vector(nullptr));
        EXPECT_FALSE(parcel.ReadInt8Vector(nullptr));
        EXPECT_TRUE(parcel.WriteCString(std::string(100, 'x').c_str()));
        EXPECT_FALSE(parcel.WriteCString(std::string(100, 'y').c_str()));
        EXPECT_EQ(parcel.GetDataSize(), 104u);
        EXPECT_EQ(parcel.ReadCString(), std::string(100, 'x'));
        DefaultAllocator late;
        EXPECT_FALSE(parcel.SetAllocator(&late));
        EXPECT_FALSE(parcel.SetAllocator(nullptr));
        EXPECT_EQ(parcel.GetOffsetsSize(), 0u);
        parcel.FlushBuffer();
        EXPECT_EQ(parcel.GetDataCapacity(), 0u);
        EXPECT_TRUE(parcel.SetAllocator(new Counting(calls)));
        EXPECT_TRUE(parcel.WriteCString(std::string(63, 'z').c_str()));
        EXPECT_EQ(parcel.GetDataCapacity(), 64u);  // exactly full
    }
    EXPECT_EQ(calls, "free end free end ");
}
