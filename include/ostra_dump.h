// SPDX-License-Identifier: Apache-2.0

/// @file
/// Dumps of raw stream bytes to files in /data/local/tmp/, switched by the system parameter
/// sys.ostra.audio.dump.write.enable. Callers that set it themselves include parameter.h as well.
///
///     OstraDump::GetInstance().Init();                              // before the streams start
///     OstraDump::GetInstance().DumpStreamData("mic.pcm", data, size);
///     OstraDump::GetInstance().UnInit();                            // after they end
///
/// The value of the parameter is the write mode: with "w" a file keeps the bytes of the last call, with "a" those of
/// all calls; any other value opens no file. **If no file appears,** look at the log at debug level (on the host,
/// `OSTRA_HOST_LOG_LEVEL=debug`); file names of more than 34 characters are refused without a message.

#ifndef OSTRA_DUMP_H
#define OSTRA_DUMP_H

#include <atomic>
#include <cstdio>
#include <string>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

/// The system parameter that switches dumps on; its value is the write mode.
inline const std::string DUMP_WRITE_ENABLE_KEY = "sys.ostra.audio.dump.write.enable";
/// The directory of the dumps.
inline const std::string DUMP_DIR = "/data/local/tmp";
/// What precedes the name of a dump in its path.
inline const std::string DUMP_PATH_PREFIX = "/data/local/tmp/";

/// The process-wide switch, write mode and writer of dumps.
///
/// DumpStreamData is thread-safe for different files; calls for the same file must be synchronized. Init and UnInit
/// must not run while another thread dumps or opens a dump file, since the write mode is not guarded: switch dumps on
/// before the streams start, and off after they end. Failures are only logged. Operations throw std::bad_alloc if a
/// string cannot be allocated; no file is then opened.
class OstraDump {
public:
    /// Returns the only object, which is created by the first call, switched off, and never destroyed.
    OSTRA_EXPORT static OstraDump &GetInstance();

    OstraDump(const OstraDump &) = delete;
    OstraDump &operator=(const OstraDump &) = delete;

    /// Reads the parameter and switches dumps on or off; the last call counts.
    ///
    /// Dumps are off, with the mode unchanged, if the value is unset, empty, "-1" or longer than 29 bytes. Any other
    /// value switches them on and becomes the mode. Only "w" and "a" are modes that open a file.
    OSTRA_EXPORT void Init();

    /// Reads the system parameter `key`, at most 29 bytes, into `value`.
    ///
    /// Returns true if it is set and not "-1". Returns false if:
    /// - It is unset or "-1"; `value` is then "-1".
    /// - `key` is null or refused by the platform, or the value is empty or too long; an error is logged, and `value`
    /// is
    ///   unchanged.
    OSTRA_EXPORT bool GetSysPara(const char *key, std::string &value);

    /// Switches dumps off and forgets the mode. Keeps the files.
    OSTRA_EXPORT void UnInit();

    /// Opens DUMP_PATH_PREFIX + fileName in the current mode, writes `size` bytes and closes the file.
    ///
    /// **All users may write to the directory, and `fileName` is not checked:** ".." and symbolic links are followed
    /// to any file, and a FIFO blocks the caller until a reader opens it, which then receives the bytes. A size of 0
    /// opens the file, which empties it in mode "w".
    ///
    /// Writes nothing if:
    /// - `data` is null or `size` is negative, even while dumps are off; logged as an error.
    /// - Dumps are off; logged at debug level.
    /// - The path has more than 50 characters; not logged.
    /// - The file cannot be opened; logged at debug level.
    ///
    /// If some bytes are not in the file after it is closed, an error is logged.
    OSTRA_EXPORT void DumpStreamData(const std::string &fileName, const unsigned char *data, int size);

    /// Opens a file in the mode that Init read; the caller closes it, for instance with CloseDumpFile.
    ///
    /// Follows symbolic links and opens FIFOs like DumpStreamData. Returns null if:
    /// - `path` has more than 50 characters; not logged.
    /// - The mode is neither "w" nor "a", or the file cannot be opened; logged at debug level.
    OSTRA_EXPORT FILE *OpenDumpFile(const std::string &path);

    /// Closes the file and sets the pointer to null. Does nothing if either pointer is null.
    OSTRA_EXPORT void CloseDumpFile(FILE **file);

private:
    OstraDump() = default;
    ~OstraDump() = default;

    std::atomic<bool> enable_{false};
    std::string dumpMode_;
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // OSTRA_DUMP_H
