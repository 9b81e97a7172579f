// File helpers every chapter's tests use: scratch directories, whole-file
// reading and writing, units of the library connected to files, and the
// committed fuzz corpora.
#pragma once

#include <dirent.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "kor.h"

namespace kor::test {

inline KorError fresh_error() { return KorError KOR_ERROR_INIT; }

// A directory of its own under /tmp, removed with its files at the end.
class ScratchDir {
public:
    ScratchDir() {
        char name[] = "/tmp/kor_test_XXXXXX";
        path_ = mkdtemp(name) ? name : "";
    }
    ~ScratchDir() {
        if (!path_.empty()) std::system(("rm -rf '" + path_ + "'").c_str());
    }
    ScratchDir(const ScratchDir &) = delete;
    ScratchDir &operator=(const ScratchDir &) = delete;
    const std::string &path() const { return path_; }
    std::string file(const std::string &name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

inline std::string read_file(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

inline void write_file(const std::string &path, const std::string &text) {
    std::ofstream(path, std::ios::binary) << text;
}

inline std::vector<std::string> split_lines(const std::string &text) {
    std::vector<std::string> lines;
    std::stringstream s(text);
    for (std::string line; std::getline(s, line);) lines.push_back(line);
    return lines;
}

inline int64_t open_unit(const std::string &path, int64_t mode) {
    KorError fail = fresh_error();
    int64_t unit = -1;
    kor_file_open(path.c_str(), mode, &unit, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    return unit;
}

inline void close_unit(int64_t unit) {
    KorError fail = fresh_error();
    kor_file_close(unit, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
}

// The files of a committed corpus (tests/<dir>), by name, with their
// contents; a missing directory fails the calling test.
inline std::vector<std::pair<std::string, std::string>> corpus(const std::string &dir) {
    const std::string path = std::string(KOR_SOURCE_DIR) + "/tests/" + dir;
    std::vector<std::pair<std::string, std::string>> files;
    DIR *d = opendir(path.c_str());
    EXPECT_NE(d, nullptr) << path;
    if (!d) return files;
    for (dirent *e; (e = readdir(d));)
        if (e->d_name[0] != '.') files.emplace_back(e->d_name, read_file(path + "/" + e->d_name));
    closedir(d);
    std::sort(files.begin(), files.end());
    return files;
}

// What a corpus file's name says the reader must report: the part before
// the first '-'.
inline std::string outcome_of(const std::string &name) { return name.substr(0, name.find('-')); }

}  // namespace kor::test
