// The one reader of the oracle tables under tests/data (reference values
// and streams, each made by a committed script or taken from a publication
// named in the file's header).  A table is text: '#' starts a comment line,
// blank lines are skipped, and the fields of a line are separated by tabs
// when the line has any, else by blanks.  Reals may be written in decimal
// or in C's hexadecimal form; lists inside a field are separated by commas.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace kor::test {

struct Row {
    int line;                         // line number in the file, for messages
    std::vector<std::string> fields;

    const std::string &text(size_t i) const { return fields.at(i); }
    double real(size_t i) const { return std::strtod(fields.at(i).c_str(), nullptr); }
    int64_t integer(size_t i) const { return std::strtoll(fields.at(i).c_str(), nullptr, 0); }
    uint64_t word(size_t i) const { return std::strtoull(fields.at(i).c_str(), nullptr, 0); }
    std::vector<double> reals(size_t i) const {
        std::vector<double> out;
        std::stringstream s(fields.at(i));
        for (std::string item; std::getline(s, item, ',');)
            if (!item.empty()) out.push_back(std::strtod(item.c_str(), nullptr));
        return out;
    }
};

// The rows of tests/data/<name>; a missing or empty table fails the test.
inline std::vector<Row> read_table(const std::string &name) {
    std::ifstream in(std::string(KOR_SOURCE_DIR) + "/tests/data/" + name);
    std::vector<Row> rows;
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        Row row{number, {}};
        const bool tabs = line.find('\t') != std::string::npos;
        std::stringstream s(line);
        for (std::string field; tabs ? bool(std::getline(s, field, '\t')) : bool(s >> field);)
            row.fields.push_back(field);
        if (!row.fields.empty()) rows.push_back(row);
    }
    EXPECT_FALSE(rows.empty()) << "tests/data/" << name << " is missing or empty";
    return rows;
}

// The rows whose first field is `key`, with that field dropped.
inline std::vector<Row> rows_of(const std::vector<Row> &table, const std::string &key) {
    std::vector<Row> out;
    for (const Row &r : table)
        if (r.fields[0] == key) out.push_back({r.line, {r.fields.begin() + 1, r.fields.end()}});
    return out;
}

}  // namespace kor::test
