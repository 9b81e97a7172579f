// Numbered output units: 0 is standard error, 5 standard input, 6 standard
// output; further units are connected to files by kor_file_open.  The error
// and advisory unit numbers are process-wide, as callers expect.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace kor::frame::units {

inline constexpr int64_t standard_error = 0;
inline constexpr int64_t standard_input = 5;
inline constexpr int64_t standard_output = 6;
inline constexpr int64_t first_file_unit = 10;

int64_t error_unit();
void set_error_unit(int64_t unit);
int64_t advisory_unit();
void set_advisory_unit(int64_t unit);

// Writes one record (trailing blanks dropped; an all-blank record as one
// blank) and flushes.  A negative unit writes nothing.  Returns false when
// the unit is not connected for writing or the write fails.
bool write_record(int64_t unit, std::string_view record);

enum class ReadStatus { ok, end_of_file, not_connected };
// Reads one record (without its newline) from a unit connected for reading.
ReadStatus read_record(int64_t unit, std::string &record);

enum class OpenMode : int64_t { read = 0, write = 1, append = 2 };
// Connects a file to the lowest free unit from first_file_unit on; -1 when
// the file cannot be opened.
int64_t open_file(const char *path, OpenMode mode);
// Closes a unit opened by open_file; false when it was not such a unit.
bool close_file(int64_t unit);
// The stream behind a unit, or null (used where a FILE* is needed).
std::FILE *stream_of(int64_t unit);

}  // namespace kor::frame::units
