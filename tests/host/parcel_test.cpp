// SPDX-License-Identifier: Apache-2.0
//
// Parcels: replays the recordings, and tests allocators.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "host/values.h"
#include "message_parcel.h"

using namespace OHOS;
using namespace replay;

namespace {

struct Player {
    Operations operations;
    std::unique_ptr<Parcel> parcel;
    uintptr_t given = 0;

    // Adds an operation with one result field, which read position and data size follow.
    void Add(const std::string &name, const std::function<std::string(const Fields &)> &operation)
    {
        operations[name] = [this, operation](const Fields &in) -> Fields {
            const std::string result = operation(in);
            return {result, Show(parcel->GetReadPosition()), Show(parcel->GetDataSize())};
        };
    }

    template <typename Result>
    void AddRead(const std::string &name, Result (Parcel::*read)())
    {
        Add(name, [=](const Fields &) { return Show((*parcel.*read)()); });
    }

    template <typename Argument>
    void AddWrite(const std::string &name, bool (Parcel::*write)(Argument))
    {
        Add(name, [=](const Fields &in) { return Show((*parcel.*write)(Value<std::decay_t<Argument>>(in.at(0)))); });
    }

    template <typename Variable>
    using Held = std::remove_pointer_t<std::remove_reference_t<Variable>>;

    // Adds a read into a variable that holds `before`.
    template <typename Result, typename Variable>
    void AddReadInto(const std::string &name, Result (Parcel::*read)(Variable), const Held<Variable> &before)
    {
        Add(name, [=](const Fields &) {
            Held<Variable> value = before;
            std::string result;
            if constexpr (std::is_pointer_v<Variable>) {
                result = Show((*parcel.*read)(&value));
            } else {
                result = Show((*parcel.*read)(value));
            }
            return result + " " + Show(value);
        });
    }

    template <typename Unit>
    void AddWriteWithLength(const std::string &name, bool (Parcel::*write)(const Unit *, size_t))
    {
        Add(name, [=](const Fields &in) {
            const auto text = Target<std::basic_string<Unit>>(in.at(0));
            return Show((*parcel.*write)(Pointer(text), text.has_value() ? text->size() : 0));
        });
    }

    void AddWriteBlock(const std::string &name, const std::function<bool(const void *, size_t)> &write)
    {
        Add(name, [=](const Fields &in) {
            const std::string bytes = in.at(0) == "null" ? "" : Bytes(in[0]);
            return Show(write(in[0] == "null" ? nullptr : bytes.data(), bytes.size()));
        });
    }

    void AddReadBlock(const std::string &name, const uint8_t *(Parcel::*read)(size_t))
    {
        Add(name, [=](const Fields &in) {
            const auto size = Number<size_t>(in.at(0));
            const auto *const bytes = reinterpret_cast<const char *>((*parcel.*read)(size));
            return bytes == nullptr ? "null" : Hex({bytes, size});
        });
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
#define VALUES(Name, ListName, before, listBefore)                          \
    AddWrite("Write" #Name, &Parcel::Write##Name);                          \
    AddRead("Read" #Name, &Parcel::Read##Name);                             \
    AddReadInto("Read" #Name "&", &Parcel::Read##Name, before);             \
    AddWrite("Write" #ListName "Vector", &Parcel::Write##ListName##Vector); \
    AddReadInto("Read" #ListName "Vector", &Parcel::Read##ListName##Vector, listBefore);
    VALUES(Bool, Bool, true, {})
    VALUES(Int8, Int8, 77, {})
    VALUES(Int16, Int16, 77, {})
    VALUES(Int32, Int32, 77, {9})
    VALUES(Int64, Int64, 77, {})
    VALUES(Uint8, UInt8, 77, {})
    VALUES(Uint16, UInt16, 77, {})
    VALUES(Uint32, UInt32, 77, {})
    VALUES(Uint64, UInt64, 77, {})
    VALUES(Float, Float, 77, {})
    VALUES(Double, Double, 77, {})
    VALUES(String, String, "prefilled", {"old"})
    VALUES(String16, String16, u"pre", {})
    AddWrite("WritePointer", &Parcel::WritePointer);
    AddRead("ReadPointer", &Parcel::ReadPointer);
    AddWriteWithLength("WriteString8WithLength", &Parcel::WriteString8WithLength);
    AddReadInto("ReadString8WithLength&", &Parcel::ReadString8WithLength, 77);
    AddWriteWithLength("WriteString16WithLength", &Parcel::WriteString16WithLength);
    AddReadInto("ReadString16WithLength&", &Parcel::ReadString16WithLength, 77);
    Add("WriteCString", [this](const Fields &in) { return Show(parcel->WriteCString(Pointer(Target(in.at(0))))); });
    Add("ReadCString", [this](const Fields &) {
        const char *text = parcel->ReadCString();
        return text == nullptr ? "null" : Quote(text);
    });
    AddWriteBlock("WriteBuffer", [this](auto... block) { return parcel->WriteBuffer(block...); });
    AddWriteBlock("WriteUnpadBuffer", [this](auto... block) { return parcel->WriteUnpadBuffer(block...); });
    for (const size_t typeSize : {size_t{1}, size_t{2}}) {
        AddWriteBlock("WriteBufferAddTerminator" + Show(typeSize),
                      [this, typeSize](auto... block) { return parcel->WriteBufferAddTerminator(block..., typeSize); });
    }
    AddReadBlock("ReadBuffer", &Parcel::ReadBuffer);
    AddReadBlock("ReadUnpadBuffer", &Parcel::ReadUnpadBuffer);
    Add("GetReadableBytes", [this](const Fields &) { return Show(parcel->GetReadableBytes()); });
    Add("GetWritableBytes", [this](const Fields &) { return Show(parcel->GetWritableBytes()); });
    Add("GetDataCapacity", [this](const Fields &) { return Show(parcel->GetDataCapacity()); });
    Add("GetMaxCapacity", [this](const Fields &) { return Show(parcel->GetMaxCapacity()); });
    AddRead("GetWritePosition", &Parcel::GetWritePosition);
    AddWrite("SetDataCapacity", &Parcel::SetDataCapacity);
    AddWrite("SetDataSize", &Parcel::SetDataSize);
    AddWrite("SetMaxCapacity", &Parcel::SetMaxCapacity);
    AddWrite("RewindRead", &Parcel::RewindRead);
    AddWrite("RewindWrite", &Parcel::RewindWrite);
    Add("SkipBytes", [this](const Fields &in) { return parcel->SkipBytes(Number<size_t>(in.at(0))), "done"; });
    Add("FlushBuffer", [this](const Fields &) { return parcel->FlushBuffer(), "done"; });
    Add("ParseFrom", [this](const Fields &in) { return ParseFrom(Bytes(in.at(0))); });
    Add("ParseFromNothing", [this](const Fields &) { return Show(parcel->ParseFrom(0, 0)); });
    Add("DataIsTheGivenBlock", [this](const Fields &) { return Show(parcel->GetData() == given); });
    operations["end"] = [this](const Fields &) -> Fields {
        return {Hex({reinterpret_cast<const char *>(parcel->GetData()), parcel->GetDataSize()})};
    };
}

}  // namespace

TEST(Parcel, MatchesRecording)
{
    Player player;
    player.AddAll();
    const auto begin = [&] {
        player.parcel = std::make_unique<MessageParcel>();
    };
    Replay("recorded/parcel.txt", 307, player.operations, begin, "Unaligned");
}

TEST(ParcelAllocator, BelongsToTheParcel)
{
    struct Counting : DefaultAllocator {
        explicit Counting(std::string &record) : calls(record)
        {
        }
        ~Counting() override
        {
            calls += "end ";
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
    };
    std::string calls;
    {
        Parcel parcel(new Counting(calls));
        EXPECT_FALSE(parcel.ParseFrom(0, 1));
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
