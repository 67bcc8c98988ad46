// SPDX-License-Identifier: Apache-2.0
//
// Dumps of raw stream bytes into files below /data/local/tmp/, switched by the system parameter
// sys.ostra.audio.dump.write.enable: "w" leaves the bytes of the latest call in a file, "a" those of all calls.
//
//     OstraDump::GetInstance().Init();                              // before the streams start
//     OstraDump::GetInstance().DumpStreamData("mic.pcm", data, size);
//     OstraDump::GetInstance().UnInit();                            // after they end
//
// DumpStreamData may be called from any thread at once, each file from one at a time. Init and UnInit must not run
// while another thread dumps or opens a dump file: the write mode is not guarded, so the host switches dumping on
// before its streams start and off after they end. A dump that fails is told by the log alone: bytes that are not all
// in the file once it is closed as an error, a file that cannot be opened at debug level, a path that is too long not
// at all. Where memory for a text runs out, std::bad_alloc is raised and nothing is opened. Callers that set the
// parameter themselves include parameter.h beside this header.

#ifndef OSTRA_DUMP_H
#define OSTRA_DUMP_H

#include <atomic>
#include <cstdio>
#include <string>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

// The system parameter that switches dumping on and gives the write mode.
inline const std::string DUMP_WRITE_ENABLE_KEY = "sys.ostra.audio.dump.write.enable";
// The folder of the dumps.
inline const std::string DUMP_DIR = "/data/local/tmp";
// What stands before the name of a dump.
inline const std::string DUMP_PATH_PREFIX = "/data/local/tmp/";

// The switch of the dumps, their write mode, and the writing.
class OstraDump {
public:
    // The one dump, made on the first call, switched off, and never destroyed.
    OSTRA_EXPORT static OstraDump &GetInstance();

    OstraDump(const OstraDump &) = delete;
    OstraDump &operator=(const OstraDump &) = delete;

    // Reads the parameter and switches dumping on when it is set to anything but an empty text, "-1" or more than 29
    // bytes, else off. The value is the write mode; one that is neither "w" nor "a" makes each dump fail to open its
    // file. May be called again; the last call wins, but one that switches off keeps the mode.
    OSTRA_EXPORT void Init();

    // Reads the system parameter `key` into `value`, at most 29 bytes. Returns true when it is set and not "-1". An
    // unset one reads as "-1": false, but `value` is assigned. A null key, a name that the platform refuses, or a
    // value that is empty or too long, gives false with `value` unchanged, and is logged as an error.
    OSTRA_EXPORT bool GetSysPara(const char *key, std::string &value);

    // Switches dumping off and forgets the mode. Files stay.
    OSTRA_EXPORT void UnInit();

    // Opens DUMP_PATH_PREFIX + fileName in the mode, writes `size` bytes and closes it. `fileName` is not checked: ".."
    // in it and symbolic links are followed, wherever they lead. Null data or a negative size is logged as an error,
    // also while dumping is off, and nothing is opened. A size of 0 opens the file, which empties it in mode "w". A
    // path of more than 50 characters is refused without a log.
    OSTRA_EXPORT void DumpStreamData(const std::string &fileName, const unsigned char *data, int size);

    // Opens a file for dumping in the mode that Init read. Returns null when the path is longer than 50 characters
    // (which is not logged), when the mode is neither "w" nor "a", or when the file cannot be opened. The caller closes
    // the file, for instance with CloseDumpFile.
    OSTRA_EXPORT FILE *OpenDumpFile(const std::string &path);

    // Closes the file and sets the pointer to null; does nothing for null.
    OSTRA_EXPORT void CloseDumpFile(FILE **file);

private:
    OstraDump() = default;
    ~OstraDump() = default;

    std::atomic<bool> enable_{false};
    std::string dumpMode_;
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // OSTRA_DUMP_H
