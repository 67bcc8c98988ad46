// SPDX-License-Identifier: Apache-2.0

/// @file
/// Dumps of raw stream bytes to files in /data/local/tmp/, enabled by the system parameter
/// sys.ostra.audio.dump.write.enable. Callers that set the parameter themselves include parameter.h as well.
///
///     OstraDump::GetInstance().Init();                              // before the streams start
///     OstraDump::GetInstance().DumpStreamData("mic.pcm", data, size);
///     OstraDump::GetInstance().UnInit();                            // after they end
///
/// The value of the parameter is the write mode: with "w" a file contains the bytes of the last call, with "a" those of
/// all calls. With any other value no file is opened. **If no file appears,** check the log at debug level (on the
/// host, `OSTRA_HOST_LOG_LEVEL=debug`). File names of more than 34 bytes are rejected without a log line.

#ifndef OSTRA_DUMP_H
#define OSTRA_DUMP_H

#include <atomic>
#include <cstdio>
#include <string>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

/// The system parameter that enables dumps; its value is the write mode.
inline const std::string DUMP_WRITE_ENABLE_KEY = "sys.ostra.audio.dump.write.enable";
/// The directory of the dumps.
inline const std::string DUMP_DIR = "/data/local/tmp";
/// The prefix of the path of each dump.
inline const std::string DUMP_PATH_PREFIX = "/data/local/tmp/";

/// The process-wide writer of stream dumps, disabled until Init enables it.
///
/// DumpStreamData is thread-safe for different files; callers must synchronize calls for the same file. Init and UnInit
/// must not run while another thread dumps or opens a dump file, since the write mode is not synchronized: enable dumps
/// before the streams start, and disable them after they end. Failures are only logged. Operations throw std::bad_alloc
/// if allocation of a string fails; no file is then opened.
class OstraDump {
public:
    /// Returns the writer of the process. It is created by the first call and never destroyed.
    OSTRA_EXPORT static OstraDump &GetInstance();

    OstraDump(const OstraDump &) = delete;
    OstraDump &operator=(const OstraDump &) = delete;

    /// Reads the parameter, and enables or disables dumps accordingly. Each call replaces the result of earlier calls.
    ///
    /// Disables dumps, and leaves the write mode unchanged, if the value is unset, empty, "-1" or longer than 29 bytes.
    /// Any other value enables dumps and becomes the write mode, even though files are opened in the modes "w" and "a"
    /// only.
    OSTRA_EXPORT void Init();

    /// Reads the system parameter `key`, at most 29 bytes, into `value`.
    ///
    /// Returns true if it is set and not "-1". Returns false if:
    /// - It is unset or "-1"; `value` is then "-1".
    /// - `key` is null or rejected by the platform, or the value is empty or too long; logs an error, and `value` is
    ///   unchanged.
    OSTRA_EXPORT bool GetSysPara(const char *key, std::string &value);

    /// Disables dumps and clears the write mode. Existing files are kept.
    OSTRA_EXPORT void UnInit();

    /// Opens DUMP_PATH_PREFIX + fileName in the current mode, writes `size` bytes and closes the file.
    ///
    /// **The directory is world-writable, and `fileName` is not validated:** ".." and symbolic links are followed to
    /// any file, and a FIFO blocks the caller until a reader opens it, which then receives the bytes. A size of 0 only
    /// opens the file, which truncates it in mode "w".
    ///
    /// Writes nothing if:
    /// - `data` is null or `size` is negative, even if dumps are disabled; logged as an error.
    /// - Dumps are disabled; logged at debug level.
    /// - The path has more than 50 bytes; not logged.
    /// - The mode is neither "w" nor "a", or the file cannot be opened; logged at debug level.
    ///
    /// Logs an error if some bytes could not be written, for instance because the disk is full.
    OSTRA_EXPORT void DumpStreamData(const std::string &fileName, const unsigned char *data, int size);

    /// Opens `path` in the mode that Init read. The caller must close the file, for instance with CloseDumpFile.
    ///
    /// Follows symbolic links and opens FIFOs like DumpStreamData. Returns null if:
    /// - `path` has more than 50 bytes; not logged.
    /// - The mode is neither "w" nor "a", or the file cannot be opened; logged at debug level.
    OSTRA_EXPORT FILE *OpenDumpFile(const std::string &path);

    /// Closes `*file` and sets it to null. Does nothing if `file` or `*file` is null.
    OSTRA_EXPORT void CloseDumpFile(FILE **file);

private:
    OstraDump() = default;
    ~OstraDump() = default;

    std::atomic<bool> enable_{false};
    std::string dumpMode_;
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // OSTRA_DUMP_H
