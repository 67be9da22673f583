// A record inside a picture file: the settings that it was made with, and a checksum of the file's other bytes. It
// shows, without decoding, whether the file has been damaged or was made in another way.
#pragma once

#include <cstdint>
#include <string>

namespace vantorel::cli {

// The text that a picture of those settings (a hash of them) must hold in its file, unpacked, for sealRecord to find.
std::string recordText(std::uint64_t settings);

// Whether a text holds such a record.
bool holdsRecord(const std::string& text);

// Fills the checksum into the record of a file that is otherwise complete. A file that holds no record stays as it is.
// Returns false when the file cannot be read or written; errno tells why.
bool sealRecord(const std::string& path);

enum class RecordState { Matches, Absent, OtherSettings, Damaged };

// What the record of a file says. Absent too where the file cannot be read.
RecordState checkRecord(const std::string& path, std::uint64_t settings);

}  // namespace vantorel::cli
