// SPDX-License-Identifier: Apache-2.0
//
// The parcel as recorded, and what of it could not be recorded.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "message_parcel.h"
#include "values.h"

using namespace OHOS;
using namespace replay;

namespace {

struct Player {
    Interface interface;
    std::unique_ptr<Parcel> parcel;
    uintptr_t given = 0;

    // An operation that gives one field, behind which the read position and the size of the data stand.
    void Add(const std::string &name, const std::function<std::string(const Fields &)> &operation)
    {
        interface.Add(name, [this, operation](const Fields &arguments) {
            const std::string result = operation(arguments);
            return Fields{result, std::to_string(parcel->GetReadPosition()), std::to_string(parcel->GetDataSize())};
        });
    }

    template <typename T, typename Argument>
    void AddValue(const std::string &name, bool (Parcel::*write)(Argument), T (Parcel::*read)())
    {
        using Plain = std::remove_const_t<T>;
        Add("Write" + name, [=](const Fields &in) { return Show((*parcel.*write)(Value<Plain>(in.at(0)))); });
        Add("Read" + name, [=](const Fields &) { return Show((*parcel.*read)()); });
    }

    template <typename T>
    void AddReadInto(const std::string &name, bool (Parcel::*read)(T &), T before)
    {
        Add("Read" + name + "&", [=](const Fields &) {
            T value = before;
            const bool isRead = (*parcel.*read)(value);
            return Show(isRead) + " " + Show(value);
        });
    }

    template <typename T>
    void AddVector(const std::string &name, bool (Parcel::*write)(const std::vector<T> &),
                   bool (Parcel::*read)(std::vector<T> *), const std::vector<T> &before = {})
    {
        Add("Write" + name + "Vector", [=](const Fields &in) {
            const std::vector<T> values = Values<T>(in.at(0));
            return Show((*parcel.*write)(values));
        });
        Add("Read" + name + "Vector", [=](const Fields &) {
            std::vector<T> values = before;
            const bool isRead = (*parcel.*read)(&values);
            return Show(isRead) + " " + Show(values);
        });
    }

    template <typename Text, typename Unit>
    void AddWithLength(const std::string &name, bool (Parcel::*write)(const Unit *, size_t),
                       const Text (Parcel::*read)(int32_t &))
    {
        Add("Write" + name, [=](const Fields &in) {
            const auto text = Target<Text>(in.at(0));
            return Show((*parcel.*write)(Pointer(text), text.value_or(Text()).size()));
        });
        Add("Read" + name + "&", [=](const Fields &) {
            int32_t length = 77;
            const std::string text = Show((*parcel.*read)(length));
            return text + " " + std::to_string(length);
        });
    }

    void AddBlock(const std::string &name, const std::function<bool(const void *, size_t)> &write)
    {
        Add(name, [=](const Fields &in) {
            const std::string bytes = in.at(0) == "null" ? "" : Bytes(in[0]);
            return Show(write(in[0] == "null" ? nullptr : bytes.data(), bytes.size()));
        });
    }

    std::string ShowBlock(const uint8_t *(Parcel::*read)(size_t), size_t size)
    {
        const auto *const bytes = reinterpret_cast<const char *>((*parcel.*read)(size));
        return bytes == nullptr ? "null" : Hex({bytes, size});
    }

    std::string ParseFrom(const std::string &bytes)
    {
        void *block = std::malloc(bytes.size());
        std::memcpy(block, bytes.data(), bytes.size());
        given = reinterpret_cast<uintptr_t>(block);
        const bool isTaken = parcel->ParseFrom(given, bytes.size());
        if (!isTaken) {
            std::free(block);
        }
        return Show(isTaken);
    }

    void AddAll();
};

void Player::AddAll()
{
#define SCALAR(Name, Type, before)                                          \
    AddValue<Type, Type>(#Name, &Parcel::Write##Name, &Parcel::Read##Name); \
    AddReadInto<Type>(#Name, &Parcel::Read##Name, before);
#define VECTOR(Name, ...) AddVector(#Name, &Parcel::Write##Name##Vector, &Parcel::Read##Name##Vector, ##__VA_ARGS__);
#define NUMBER(Name, Vector, Type, ...) SCALAR(Name, Type, 77) VECTOR(Vector, ##__VA_ARGS__)
    SCALAR(Bool, bool, true)
    VECTOR(Bool)
    NUMBER(Int8, Int8, int8_t)
    NUMBER(Int16, Int16, int16_t)
    NUMBER(Int32, Int32, int32_t, {9})
    NUMBER(Int64, Int64, int64_t)
    NUMBER(Uint8, UInt8, uint8_t)
    NUMBER(Uint16, UInt16, uint16_t)
    NUMBER(Uint32, UInt32, uint32_t)
    NUMBER(Uint64, UInt64, uint64_t)
    NUMBER(Float, Float, float)
    NUMBER(Double, Double, double)
    VECTOR(String, {"old"})
    VECTOR(String16)
#define GETTER(Name) Add(#Name, [this](const Fields &) { return Show(parcel->Name()); });
    GETTER(GetReadableBytes)
    GETTER(GetWritableBytes)
    GETTER(GetDataCapacity)
    GETTER(GetMaxCapacity)
    GETTER(GetWritePosition)
#define SETTER(Name) Add(#Name, [this](const Fields &in) { return Show(parcel->Name(Number<size_t>(in.at(0)))); });
    SETTER(SetDataCapacity)
    SETTER(SetDataSize)
    SETTER(SetMaxCapacity)
    SETTER(RewindRead)
    SETTER(RewindWrite)
    AddValue<uintptr_t, uintptr_t>("Pointer", &Parcel::WritePointer, &Parcel::ReadPointer);
    AddValue<const std::string, const std::string &>("String", &Parcel::WriteString, &Parcel::ReadString);
    AddReadInto<std::string>("String", &Parcel::ReadString, "prefilled");
    AddValue<const std::u16string, const std::u16string &>("String16", &Parcel::WriteString16, &Parcel::ReadString16);
    AddReadInto<std::u16string>("String16", &Parcel::ReadString16, u"pre");
    AddWithLength("String8WithLength", &Parcel::WriteString8WithLength, &Parcel::ReadString8WithLength);
    AddWithLength("String16WithLength", &Parcel::WriteString16WithLength, &Parcel::ReadString16WithLength);
    Add("WriteCString", [this](const Fields &in) { return Show(parcel->WriteCString(Pointer(Target(in.at(0))))); });
    Add("ReadCString", [this](const Fields &) {
        const char *text = parcel->ReadCString();
        return text == nullptr ? "null" : Quote(text);
    });
    AddBlock("WriteBuffer", [this](auto data, auto size) { return parcel->WriteBuffer(data, size); });
    AddBlock("WriteUnpadBuffer", [this](auto data, auto size) { return parcel->WriteUnpadBuffer(data, size); });
    for (const size_t typeSize : {size_t{1}, size_t{2}}) {
        AddBlock("WriteBufferAddTerminator" + std::to_string(typeSize), [this, typeSize](auto data, auto size) {
            return parcel->WriteBufferAddTerminator(data, size, typeSize);
        });
    }
#define BLOCK(Name) Add(#Name, [this](const Fields &in) { return ShowBlock(&Parcel::Name, Number<size_t>(in.at(0))); });
    BLOCK(ReadBuffer)
    BLOCK(ReadUnpadBuffer)
    Add("SkipBytes", [this](const Fields &in) { return parcel->SkipBytes(Number<size_t>(in.at(0))), "done"; });
    Add("FlushBuffer", [this](const Fields &) { return parcel->FlushBuffer(), "done"; });
    Add("ParseFrom", [this](const Fields &in) { return ParseFrom(Bytes(in.at(0))); });
    Add("ParseFromNothing", [this](const Fields &) { return Show(parcel->ParseFrom(0, 0)); });
    Add("DataIsTheGivenBlock", [this](const Fields &) { return Show(parcel->GetData() == given); });
    interface.operations["end"] = [this](const Fields &) -> Fields {
        return {Hex({reinterpret_cast<const char *>(parcel->GetData()), parcel->GetDataSize()})};
    };
    interface.begin = [this] {
        parcel = std::make_unique<MessageParcel>();
    };
    // No host uses unaligned values.
    interface.notOffered = {"WriteBoolUnaligned", "ReadBoolUnaligned"};
    for (const std::string type : {"Int8", "Int16", "Uint8", "Uint16"}) {
        interface.notOffered.insert({"Write" + type + "Unaligned", "Read" + type + "Unaligned&"});
    }
}

}  // namespace

TEST(HostParcel, ComesOutAsRecorded)
{
    Player player;
    player.AddAll();
    Replay("parcel.txt", player.interface);
}

// What could not be recorded.
TEST(HostParcel, RefusesSizesThatNoBlockHas)
{
    Parcel parcel;
    EXPECT_FALSE(parcel.ParseFrom(0, 1) || parcel.SetAllocator(nullptr) || parcel.ReadInt8Vector(nullptr));
    EXPECT_FALSE(parcel.ReadBoolVector(nullptr) || parcel.WriteBuffer("a", SIZE_MAX));
    EXPECT_EQ(parcel.GetDataSize() + parcel.GetOffsetsSize(), 0u);
    EXPECT_TRUE(parcel.SetMaxCapacity(SIZE_MAX));
    EXPECT_FALSE(parcel.WriteBuffer("a", SIZE_MAX - 2) || parcel.WriteString8WithLength("a", INT32_MAX));
    EXPECT_FALSE(parcel.WriteString16WithLength(u"a", SIZE_MAX));
    EXPECT_EQ(parcel.GetDataSize(), 8u);  // the lengths
    EXPECT_TRUE(parcel.ReadString().empty() && parcel.ReadString().empty());
    EXPECT_EQ(parcel.GetReadPosition(), 8u);

    Parcel parsed;
    EXPECT_TRUE(parsed.ParseFrom(0, 0));  // no write follows, not even of a count
    EXPECT_FALSE(parsed.WriteBoolVector({}) || parsed.WriteInt8Vector({}));
}

TEST(HostParcel, TakesItsBlockFromItsAllocatorWhichItOwns)
{
    struct Counting : DefaultAllocator {
        explicit Counting(std::string &record) : calls(record)
        {
        }
        ~Counting() override
        {
            calls += "end ";
        }
        void *Alloc(size_t size) override
        {
            calls += "alloc " + std::to_string(size) + " ";
            return size == 4096 ? nullptr : DefaultAllocator::Alloc(size);
        }
        void *Realloc(void *data, size_t size) override
        {
            calls += "realloc " + std::to_string(size) + " ";
            return size == 256 ? nullptr : DefaultAllocator::Realloc(data, size);
        }
        void Dealloc(void *data) override
        {
            calls += "free ";
            DefaultAllocator::Dealloc(data);
        }
        std::string &calls;
    };
    std::string calls;
    {
        Parcel parcel(new Counting(calls));
        EXPECT_FALSE(parcel.SetDataCapacity(4096));
        EXPECT_TRUE(parcel.WriteUint32(7) && parcel.WriteString(std::string(60, 'x')));
        EXPECT_FALSE(parcel.WriteCString(std::string(100, 'x').c_str()));
        EXPECT_EQ(std::pair(parcel.GetDataSize(), parcel.ReadBuffer(1, false)[0]), std::pair(size_t{72}, uint8_t{7}));
        EXPECT_FALSE(parcel.SetAllocator(std::make_unique<DefaultAllocator>().get()));
        parcel.FlushBuffer();
        EXPECT_EQ(parcel.GetDataCapacity(), 0u);
        EXPECT_TRUE(parcel.SetAllocator(new Counting(calls)) && parcel.WriteUint32(1));
    }
    EXPECT_EQ(calls, "alloc 4096 alloc 64 realloc 128 realloc 256 free end alloc 64 free end ");
}
