// SPDX-License-Identifier: Apache-2.0
//
// Parcels: replays the recorded and handwritten cases, and tests arguments that these cannot express.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
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
    void *const block = std::memcpy(std::malloc(bytes.size()), bytes.data(), bytes.size());
    g_block = reinterpret_cast<uintptr_t>(block);
    const bool isTaken = g_parcel->ParseFrom(g_block, bytes.size());
    if (!isTaken) {
        std::free(block);
    }
    return isTaken;
}

Fields Block(const uint8_t *data, size_t size)
{
    return {data == nullptr ? "null" : ToHex(std::string(reinterpret_cast<const char *>(data), size))};
}

#define GET(Name) operations[#Name] = Call(+[] { return g_parcel->Name(); });
#define SET(Name, Type) operations[#Name] = Call(+[](Type value) { return g_parcel->Name(value); });

// Writes a string or block, which may be null.
#define WRITE(name, call, Type)                                   \
    operations[name] = Call(+[](const Type *value) {              \
        const auto *const data = value ? value->data() : nullptr; \
        const size_t size = value ? value->size() : 0;            \
        return g_parcel->call;                                    \
    });

// Reads into a variable that is initialized to `before`.
#define READ_INTO(name, call, Type, before)        \
    operations[name] = Call(+[]() -> Fields {      \
        Type value = before;                       \
        const auto result = g_parcel->call;        \
        return {Show(result) + " " + Show(value)}; \
    });

#define VALUES(Name, ListName, Type, before, ...)                \
    SET(Write##Name, Type)                                       \
    GET(Read##Name)                                              \
    READ_INTO("Read" #Name "&", Read##Name(value), Type, before) \
    SET(Write##ListName##Vector, std::vector<Type>)              \
    READ_INTO("Read" #ListName "Vector", Read##ListName##Vector(&value), std::vector<Type>, {__VA_ARGS__})

Operations ParcelOperations()
{
    Operations operations = {
        {"ReadBuffer", Call(+[](size_t size) { return Block(g_parcel->ReadBuffer(size), size); })},
        {"ReadUnpadBuffer", Call(+[](size_t size) { return Block(g_parcel->ReadUnpadBuffer(size), size); })},
        {"SkipBytes", Call(+[](size_t count) -> Fields { return g_parcel->SkipBytes(count), Fields{"done"}; })},
        {"FlushBuffer", Call(+[]() -> Fields { return g_parcel->FlushBuffer(), Fields{"done"}; })},
        {"ParseFrom", Call(ParseFrom)},
        {"ParseFromNothing", Call(+[] { return g_parcel->ParseFrom(0, 0); })},
        {"DataIsTheGivenBlock", Call(+[] { return g_parcel->GetData() == g_block; })},
    };
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
    WRITE("WriteString8WithLength", WriteString8WithLength(data, size), std::string)
    WRITE("WriteString16WithLength", WriteString16WithLength(data, size), std::u16string)
    READ_INTO("ReadString8WithLength&", ReadString8WithLength(value), int32_t, 77)
    READ_INTO("ReadString16WithLength&", ReadString16WithLength(value), int32_t, 77)
    WRITE("WriteBuffer", WriteBuffer(data, size), Bytes)
    WRITE("WriteUnpadBuffer", WriteUnpadBuffer(data, size), Bytes)
    WRITE("WriteBufferAddTerminator1", WriteBufferAddTerminator(data, size, 1), Bytes)
    WRITE("WriteBufferAddTerminator2", WriteBufferAddTerminator(data, size, 2), Bytes)
    SET(WriteCString, const char *)
    GET(ReadCString)
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
    return operations;
}

}  // namespace

TEST(Parcel, MatchesRecording)
{
    Operations operations = ParcelOperations();
    for (auto &[name, operation] : operations) {
        operation = [call = operation](const Fields &in) -> Fields {
            const std::string result = call(in).front();
            return {result, Show(g_parcel->GetReadPosition()), Show(g_parcel->GetDataSize())};
        };
    }
    operations["case"] = Call(+[] {
        g_parcel = std::make_unique<MessageParcel>();
        return Fields();
    });
    operations["end"] = Call(+[]() -> Fields {
        return {ToHex(std::string(reinterpret_cast<const char *>(g_parcel->GetData()), g_parcel->GetDataSize()))};
    });
    EXPECT_EQ(Replay("recorded/parcel.txt", 307, operations), 10u);
    Replay("handwritten/parcel.txt", 4, operations);
}

TEST(Parcel, IsUsableAfterRejectedCalls)
{
    Parcel parcel;
    EXPECT_FALSE(parcel.ParseFrom(0, 1) || parcel.WriteBufferAddTerminator(nullptr, 4, 1));
    EXPECT_FALSE(parcel.ReadInt32Vector(nullptr) || parcel.ReadInt8Vector(nullptr));
    EXPECT_TRUE(parcel.SetMaxCapacity(SIZE_MAX));
    EXPECT_TRUE(parcel.WriteUint32(1));
    EXPECT_FALSE(parcel.WriteBuffer("", SIZE_MAX / 2)) << "allocation fails";
    EXPECT_EQ(parcel.ReadUint32(), 1u);
    parcel.FlushBuffer();
    EXPECT_EQ(parcel.GetReadPosition(), 0u);
}
