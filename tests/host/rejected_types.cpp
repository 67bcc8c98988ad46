// SPDX-License-Identifier: Apache-2.0
//
// Must not compile: in each case, a template of the host platform rejects a type.

#include <filesystem>

#include "hisysevent_record.h"
#include "refbase.h"

using namespace OHOS;
using namespace OHOS::HiviewDFX;

enum class Scoped { VALUE };

int Use(const HiSysEventRecord &record)
{
#if defined(CASE_GET_PARAM_VALUE)
    int value = 0;
    return record.GetParamValue("KEY", value);
#elif defined(CASE_WRITE_KEYS)
    return HiSysEvent::Write("func", 1, "DOMAIN", "EVENT", HiSysEvent::FAULT, "KEY", 1, 2, "value");
#elif defined(CASE_WRITE_VALUE)
    return HiSysEvent::Write("func", 1, "DOMAIN", "EVENT", HiSysEvent::FAULT, "KEY", std::filesystem::path("value"));
#elif defined(CASE_WRITE_SCOPED_ENUMERATION)
    return HiSysEvent::Write("func", 1, "DOMAIN", "EVENT", HiSysEvent::FAULT, "KEY", Scoped::VALUE);
#elif defined(CASE_SPTR)
    const sptr<int> pointer = new int(0);
    return *pointer;
#endif
}
