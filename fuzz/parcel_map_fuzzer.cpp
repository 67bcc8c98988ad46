// SPDX-License-Identifier: Apache-2.0
//
// A parcel from another process: the map that was accepted from it, marshalled, is read the same.

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "fuzz_target.h"
#include "ipc_utils.h"
#include "message_parcel.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr size_t MOST_ENTRIES = 10000;

using Map = std::map<int32_t, std::string>;

// Nothing is made up: every entry stood in the parcel, whatever sign and zeros were in front of it.
void CheckOrigin(const Map &accepted, const std::string &bytes)
{
    for (const auto &[key, value] : accepted) {
        const std::string entry = std::to_string(std::abs(int64_t{key})) + "#" + value;
        Require(bytes.find(entry) != std::string::npos, "what was accepted stood in the parcel");
    }
}

void Check(const uint8_t *data, size_t size)
{
    MessageParcel parcel;
    void *block = std::malloc(size + 1);  // the parcel frees it
    std::memcpy(block, data, size);
    Require(parcel.ParseFrom(reinterpret_cast<uintptr_t>(block), size), "a parcel takes any bytes");
    const uint32_t count = parcel.ReadUint32();
    Require(parcel.RewindRead(0), "a parcel can be read again");
    Map accepted;
    const bool isWhole = IpcUtils::UnMarshalling(parcel, accepted);
    Require(accepted.size() <= count && accepted.size() <= MOST_ENTRIES, "no more entries than announced");
    Require(count <= MOST_ENTRIES || (!isWhole && accepted.empty()), "a count over the limit is refused at once");
    CheckOrigin(accepted, std::string(data, data + size));

    Map merged = accepted;
    Require(parcel.RewindRead(0), "a parcel can be read again");
    Require(IpcUtils::UnMarshalling(parcel, merged) == isWhole && merged == accepted,
            "reading the parcel a second time changes nothing");

    MessageParcel marshalled;
    Require(IpcUtils::Marshalling(marshalled, accepted), "what was accepted can be marshalled");
    Require(size < sizeof(count) || marshalled.GetDataSize() <= size + 3,
            "marshalling takes the fewest bytes, but for the padding at the end, which may be cut off");
    Map again;
    Require(IpcUtils::UnMarshalling(marshalled, again) && again == accepted, "every entry comes back");
    Require(marshalled.GetReadableBytes() == 0, "all that was marshalled is read");
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    OHOS::DistributedHardware::OstraAdapter::Check(data, size);
    return 0;
}
