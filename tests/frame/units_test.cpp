// Output units and records: x04aa/x04ab, x04ba/x04bb, kor_file_open and
// kor_file_close, the C-side companions and the debug file.
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "frame_support.hpp"
#include "support/process.hpp"
#include "x04aa_def.hpp"
#include "x04ab_def.hpp"
#include "x04ac_def.hpp"
#include "x04ad_def.hpp"
#include "x04ba_def.hpp"
#include "x04bb_def.hpp"
#include "support/exits.hpp"

namespace {

using kor::test::fresh_error;
using kor::test::ScratchDir;
using kor::test::SettingsGuard;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

TEST(frameUnits, GetAndSetByReference) {
    SettingsGuard guard;
    using Entry = void (*)(const int64_t *, int64_t *);
    const struct { Entry entry; int64_t (*engine_side)(); } units[] = {
        {x04aaf_, kor::frame::units::error_unit}, {x04abf_, kor::frame::units::advisory_unit}};
    for (const auto &u : units) {
        const int64_t get = 0, set = 1, other = 2;
        int64_t value = -7;
        u.entry(&get, &value);
        EXPECT_EQ(value, 6);
        for (int64_t v : {42, -1, 0, 6}) {
            int64_t in = v, out = 99;
            u.entry(&set, &in);
            EXPECT_EQ(in, v);
            u.entry(&get, &out);
            EXPECT_EQ(out, v);
            EXPECT_EQ(u.engine_side(), v);
        }
        int64_t ignored = 13;
        u.entry(&other, &ignored);  // neither get nor set
        EXPECT_EQ(ignored, 13);
        EXPECT_EQ(u.engine_side(), 6);
    }
}

TEST(frameUnits, CSideCompanions) {
    SettingsGuard guard;
    int64_t engine_err = 42, engine_adv = 44, seventeen = 17, mine = 33, six = 6, nerr = -1, nadv = -1;
    x04aac(1, &engine_err);
    x04aaf_f(0, &nerr);
    EXPECT_EQ(nerr, 6);  // fixed, whatever the engine side holds
    x04aaf_f(1, &seventeen);
    x04aaf_f(0, &nerr);
    EXPECT_EQ(nerr, 6);
    EXPECT_EQ(kor::frame::units::error_unit(), 42);

    x04abf_f(0, &nadv);
    EXPECT_EQ(nadv, 6);
    x04abf_f(1, &mine);  // its own copy: the engine side does not see it, nor it the engine's
    x04abc(1, &engine_adv);
    x04abf_f(0, &nadv);
    EXPECT_EQ(nadv, 33);
    EXPECT_EQ(kor::frame::units::advisory_unit(), 44);
    x04abf_f(2, &seventeen);
    x04abf_f(0, nullptr);
    EXPECT_EQ(seventeen, 17);
    x04abf_f(1, &six);
    x04abf_f(0, &nadv);
    EXPECT_EQ(nadv, 6);
}

TEST(frameRecords, EngineSideWriter) {
    const struct { int64_t unit; std::string rec; std::string out; } cases[] = {
        {6, "abc   ", "abc\n"},
        {6, "  lead and trail  ", "  lead and trail\n"},
        {6, "      ", " \n"},  // all blanks: one blank
        {6, "", " \n"},
        {-1, "silenced", ""},
        {77, "not connected", ""},
        {5, "standard input", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.rec);
        CaptureStdout();
        x04bac(c.unit, c.rec.c_str());
        EXPECT_EQ(GetCapturedStdout(), c.out);
        CaptureStdout();
        x04baf_(&c.unit, c.rec.data(), c.rec.size());
        EXPECT_EQ(GetCapturedStdout(), c.out);
    }
    // The hidden length bounds the record; nothing after it is read.
    const int64_t six = 6;
    CaptureStdout();
    x04baf_(&six, "hello world", 5);
    x04bac(6, nullptr);
    EXPECT_EQ(GetCapturedStdout(), "hello\n");
}

TEST(frameRecords, CSideWriterGoesToStandardOutput) {
    const struct { int64_t unit; const char *rec; std::string out; } cases[] = {
        {9, "text  ", "text\n"},     {6, "a  b", "a  b\n"}, {0, "zero", "zero\n"},
        {123, "   ", "\n"},          {9, "", "\n"},         {-1, "off", ""},
        {9, nullptr, ""},            {9, "%s%n%d", "%s%n%d\n"},
    };
    for (const auto &c : cases) {
        CaptureStdout();
        x04baf_f(c.unit, c.rec);
        EXPECT_EQ(GetCapturedStdout(), c.out) << (c.rec ? c.rec : "(null)");
    }
}

TEST(frameRecords, StreamWriterStatusAndFlush) {
    ScratchDir dir;
    FILE *file = std::fopen(dir.file("stream.txt").c_str(), "w");
    ASSERT_NE(file, nullptr);
    int64_t status = 9;
    x04bah(file, "one  ", &status);
    EXPECT_EQ(status, 0);
    x04bah(file, "    ", &status);
    std::fclose(file);
    EXPECT_EQ(kor::test::read_file(dir.file("stream.txt")), "one\n\n");
    FILE *readonly = std::fopen(dir.file("stream.txt").c_str(), "r");
    x04bah(readonly, "cannot", &status);
    EXPECT_EQ(status, 1);
    std::fclose(readonly);
    x04bah(nullptr, "nowhere", &status);
    EXPECT_EQ(status, 1);
    // Standard output is flushed at once.
    CaptureStdout();
    x04bah(stdout, "flushed   ", &status);
    EXPECT_EQ(GetCapturedStdout(), "flushed\n");
}

// --- kor_file_open / kor_file_close / x04bbc -------------------------------

TEST(frameFiles, WriteAppendAndReadBack) {
    ScratchDir dir;
    const std::string path = dir.file("data.txt");
    kor::test::write_file(path, "old contents\n");
    const int64_t w = kor::test::open_unit(path, 1);
    EXPECT_GE(w, 10);
    x04bac(w, "first   ");
    kor::test::close_unit(w);
    // Trailing blanks of the name are not part of it; units are the lowest free.
    const int64_t a = kor::test::open_unit(path + "   ", 2);
    x04bac(a, "second line");
    x04bac(a, "  ");
    const int64_t other = kor::test::open_unit(dir.file("other.txt"), 1);
    EXPECT_EQ(other, a + 1);
    kor::test::close_unit(other);
    kor::test::close_unit(a);
    EXPECT_EQ(kor::test::read_file(path), "first\nsecond line\n \n");

    kor::test::write_file(path, "abcdefghij\nab   \nlast");
    const int64_t r = kor::test::open_unit(path, 0);
    const struct { int64_t lrec; const char *text; } reads[] = {{5, "abcd"}, {20, "ab"}, {1, ""}};
    for (const auto &read : reads) {
        char buffer[32];
        std::memset(buffer, 'Z', sizeof buffer);
        KorError fail = fresh_error();
        x04bbc(r, buffer, read.lrec, &fail);
        kor::test::expect_success(fail);
        EXPECT_STREQ(buffer, read.text);
        EXPECT_EQ(buffer[read.lrec], 'Z');  // nothing beyond lrec
    }
    char buffer[16];
    KorError eof = fresh_error();
    x04bbc(r, buffer, sizeof buffer, &eof);
    EXPECT_EQ(kor::test::exit_values<kor::x04bb::Exit::end_of_file>(kor::x04bb::info, eof),
              std::vector<std::string>{std::to_string(r)});
    kor::test::close_unit(r);
}

TEST(frameFiles, OpenCloseAndReadFailures) {
    ScratchDir dir;
    using namespace kor::x04ac;
    const struct { std::string path; int64_t mode; const kor::frame::ExitInfo &exit; } opens[] = {
        {dir.file("m.txt"), 3, info.exits[Exit::mode_invalid::index]},
        {dir.file("m.txt"), -1, info.exits[Exit::mode_invalid::index]},
        {dir.file("missing.txt"), 0, info.exits[Exit::cannot_read::index]},
        {dir.path(), 0, info.exits[Exit::cannot_read::index]},  // a directory holds no records
        {dir.file("no/such/dir.txt"), 1, info.exits[Exit::cannot_write::index]},
        {dir.file("no/such/dir.txt"), 2, info.exits[Exit::cannot_append::index]},
    };
    for (const auto &c : opens) {
        SCOPED_TRACE(c.path + " mode " + std::to_string(c.mode));
        KorError fail = fresh_error();
        int64_t unit = 0;
        kor_file_open(c.path.c_str(), c.mode, &unit, &fail);
        kor::test::exit_values(c.exit, fail);
    }
    EXPECT_NE(access(dir.file("m.txt").c_str(), F_OK), 0);  // a bad mode creates nothing

    const int64_t w = kor::test::open_unit(dir.file("w.txt"), 1);
    kor::test::close_unit(w);
    for (int64_t unit : {int64_t(99), int64_t(6), int64_t(0), int64_t(5), int64_t(-1), w}) {
        KorError fail = fresh_error();
        kor_file_close(unit, &fail);
        EXPECT_EQ(kor::test::exit_values<kor::x04ad::Exit::not_open>(kor::x04ad::info, fail),
                  std::vector<std::string>{std::to_string(unit)});
    }
    const int64_t out = kor::test::open_unit(dir.file("w.txt"), 1);
    for (int64_t unit : {out, int64_t(6), int64_t(98)}) {
        char buffer[8] = "keep";
        KorError fail = fresh_error();
        x04bbc(unit, buffer, sizeof buffer, &fail);
        EXPECT_EQ(kor::test::exit_values<kor::x04bb::Exit::not_readable>(kor::x04bb::info, fail),
                  std::vector<std::string>{std::to_string(unit)});
        EXPECT_STREQ(buffer, "keep");
    }
    kor::test::close_unit(out);
}

TEST(frameFiles, DebugTextAppendsInTheCurrentDirectory) {
    ScratchDir dir;
    kor::test::write_file(dir.file("KorDebug_file"), "earlier\n");
    const auto run = kor::test::run_process(kor::test::probe("exit_probe"), {"debug"}, dir.path());
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "returned\n");
    EXPECT_EQ(kor::test::read_file(dir.file("KorDebug_file")),
              "earlier\nfirst debug line\nsecond debug line\n");

    // A file that cannot be opened is passed over quietly.
    ScratchDir blocked;
    ASSERT_EQ(mkdir(blocked.file("KorDebug_file").c_str(), 0700), 0);
    const auto quiet = kor::test::run_process(kor::test::probe("exit_probe"), {"debug"}, blocked.path());
    EXPECT_EQ(quiet.status, 0);
    EXPECT_EQ(quiet.out, "returned\n");
    EXPECT_EQ(quiet.err, "");
}

}  // namespace
