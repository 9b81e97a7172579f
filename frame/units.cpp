#include "frame/units.hpp"

#include <dlfcn.h>
#include <sys/stat.h>

#include <atomic>
#include <map>
#include <mutex>

#include "frame/interface.hpp"
#include "frame/trace.hpp"

namespace kor::frame::units {

namespace {

struct Unit {
    std::FILE *stream;
    bool owned;      // opened by open_file, closed by close_file
    bool readable;
};

struct UnitTable {
    std::mutex lock;
    std::map<int64_t, Unit> units{{standard_error, {stderr, false, false}},
                                  {standard_input, {stdin, false, true}},
                                  {standard_output, {stdout, false, false}}};
};

UnitTable &table() {
    static UnitTable instance;
    return instance;
}

// A Fortran program writes to its preconnected units (0 and 6) through its
// own runtime's buffer.  When that runtime is in the process, its buffer is
// flushed before a record goes to the same stream, so that lines keep the
// order in which they were written.
void flush_fortran_runtime(int64_t unit) {
    using Flush = void (*)(int32_t *);
    static const Flush flush = reinterpret_cast<Flush>(dlsym(RTLD_DEFAULT, "_gfortran_flush_i4"));
    if (!flush || (unit != standard_output && unit != standard_error)) return;
    int32_t number = int32_t(unit);
    flush(&number);
}

std::atomic<int64_t> error_unit_number{standard_output};
std::atomic<int64_t> advisory_unit_number{standard_output};

}  // namespace

int64_t error_unit() { return error_unit_number.load(std::memory_order_relaxed); }
void set_error_unit(int64_t unit) { error_unit_number.store(unit, std::memory_order_relaxed); }
int64_t advisory_unit() { return advisory_unit_number.load(std::memory_order_relaxed); }
void set_advisory_unit(int64_t unit) { advisory_unit_number.store(unit, std::memory_order_relaxed); }

bool write_record(int64_t unit, std::string_view record) {
    if (unit < 0) return true;
    size_t length = record.size();
    while (length > 0 && (record[length - 1] == ' ' || record[length - 1] == '\0')) --length;
    const std::string_view text = length ? record.substr(0, length) : std::string_view(" ");
    flush_fortran_runtime(unit);
    UnitTable &t = table();
    std::lock_guard<std::mutex> guard(t.lock);
    auto it = t.units.find(unit);
    if (it == t.units.end() || it->second.readable) return false;
    std::FILE *out = it->second.stream;
    const bool ok = std::fwrite(text.data(), 1, text.size(), out) == text.size() &&
                    std::fputc('\n', out) != EOF;
    return std::fflush(out) == 0 && ok;
}

ReadStatus read_record(int64_t unit, std::string &record) {
    UnitTable &t = table();
    std::lock_guard<std::mutex> guard(t.lock);
    auto it = t.units.find(unit);
    if (it == t.units.end() || !it->second.readable) return ReadStatus::not_connected;
    record.clear();
    int c;
    while ((c = std::fgetc(it->second.stream)) != EOF && c != '\n') record.push_back(char(c));
    if (c == EOF && record.empty()) return ReadStatus::end_of_file;
    if (!record.empty() && record.back() == '\r') record.pop_back();
    return ReadStatus::ok;
}

int64_t open_file(const char *path, OpenMode mode) {
    const char *how = mode == OpenMode::read ? "r" : mode == OpenMode::write ? "w" : "a";
    std::FILE *stream = std::fopen(path, how);
    if (!stream) return -1;
    // A directory opens for reading on Linux but holds no records.
    struct stat status;
    if (fstat(fileno(stream), &status) != 0 || S_ISDIR(status.st_mode)) {
        std::fclose(stream);
        return -1;
    }
    UnitTable &t = table();
    std::lock_guard<std::mutex> guard(t.lock);
    int64_t unit = first_file_unit;
    while (t.units.count(unit)) ++unit;
    t.units[unit] = {stream, true, mode == OpenMode::read};
    return unit;
}

bool close_file(int64_t unit) {
    UnitTable &t = table();
    std::lock_guard<std::mutex> guard(t.lock);
    auto it = t.units.find(unit);
    if (it == t.units.end() || !it->second.owned) return false;
    const bool ok = std::fclose(it->second.stream) == 0;
    t.units.erase(it);
    return ok;
}

std::FILE *stream_of(int64_t unit) {
    UnitTable &t = table();
    std::lock_guard<std::mutex> guard(t.lock);
    auto it = t.units.find(unit);
    return it == t.units.end() ? nullptr : it->second.stream;
}

}  // namespace kor::frame::units

namespace kor::frame {
std::atomic<bool> io_ready{false};
}

extern "C" void f90_io_init(void) {
    (void)kor::frame::units::table();
    kor::frame::io_ready.store(true, std::memory_order_release);
}
