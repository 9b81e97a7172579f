// The message table kor_errlist and the NE_/NW_ codes.
#include <cstring>
#include <string>

#include "frame_support.hpp"

namespace {

struct Row {
    int code;
    const char *name;
    int enumerator;
};

// The rows as the message definitions list them, with each name's value as
// an enumerator of <kor/codes.h>.
const Row rows[] = {
#define KOR_MESSAGE(code, name, text) {code, #name, name},
#include "kor/messages.def"
#undef KOR_MESSAGE
};

const Row *row_of(int code) {
    for (const Row &r : rows)
        if (r.code == code) return &r;
    return nullptr;
}

TEST(frameMessages, EveryEntryIsNameColonNewlineTwoBlanksText) {
    int present = 0;
    for (int code = 0; code < KOR_ERRLIST_SIZE; ++code) {
        SCOPED_TRACE(code);
        if (code == 716 || code == 745) {
            EXPECT_EQ(kor_errlist[code], nullptr);
            EXPECT_EQ(row_of(code), nullptr);
            continue;
        }
        ++present;
        const Row *row = row_of(code);
        ASSERT_NE(row, nullptr);
        EXPECT_EQ(row->enumerator, code) << row->name;
        ASSERT_NE(kor_errlist[code], nullptr);
        const std::string entry = kor_errlist[code];
        const std::string head = std::string(row->name) + ":\n  ";
        ASSERT_EQ(entry.compare(0, head.size(), head), 0) << entry;
        const std::string text = entry.substr(head.size());
        EXPECT_FALSE(text.empty());
        EXPECT_NE(text[0], ' ');
        EXPECT_TRUE(std::strncmp(row->name, "NE_", 3) == 0 || std::strncmp(row->name, "NW_", 3) == 0);
        // Further lines start with a newline and two blanks; the published
        // NE_ARG_INVALID text is the one exception.
        for (size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1)) {
            if (code != NE_ARG_INVALID) {
                EXPECT_EQ(text.compare(at, 3, "\n  "), 0) << text;
            }
        }
    }
    EXPECT_EQ(present, int(sizeof rows / sizeof rows[0]));
    EXPECT_EQ(present, KOR_ERRLIST_SIZE - 2);
}

TEST(frameMessages, ListedRangeAndWarnings) {
    int warnings = 0, listed = 0;
    for (const Row &r : rows) {
        if (r.code > 745) continue;
        ++listed;
        if (std::strncmp(r.name, "NW_", 3) == 0) ++warnings;
    }
    EXPECT_EQ(listed, 744);
    EXPECT_EQ(warnings, 38);
    EXPECT_GE(KOR_ERRLIST_SIZE, 746);

    // Anchors around the gap and at the ends of the list.
    const struct { int value, code; } anchors[] = {
        {NE_NOERROR, 0},          {NE_BAD_PARAM, 70},       {NE_ALLOC_FAIL, 73},
        {NE_INTERNAL_ERROR, 74},  {NE_INT, 90},             {NE_REAL, 100},
        {NE_S21_CONV, 715},       {NE_INT_ARRAY, 717},      {NE_INTERNAL_EIGVEC_FAIL, 744},
        {NE_FUNC_END_VAL, 139},   {NE_PROBABLE_POLE, 140},  {NE_TOO_SMALL, 555},
    };
    for (const auto &a : anchors) EXPECT_EQ(a.value, a.code);
}

TEST(frameMessages, PublishedRowsByteForByte) {
    const struct { int code; const char *text; } published[] = {
        {0, "NE_NOERROR:\n  No error."},
        {1, "NE_CODE_NOT_SET:\n  Error code has not been set by the last function called."},
        {3, "NE_TOO_MANY:\n  Too many iterations (%ld)."},
        {4, "NE_REAL_ARG_EQ:\n  On entry, %s must not be equal to %s: %s = %g."},
        {9, "NE_REAL_ARG_CONS:\n  On entry, %s = %g. \n  This parameter must satisfy %s."},
        {70, "NE_BAD_PARAM:\n  On entry, parameter %s had an illegal value."},
        {71, "NE_F06_BAD_PARAM:\n  On entry, parameter number %1ld had an illegal value."},
        {72, "NE_ARG_INVALID:\n  On entry, %s = %1ld.\n Constraint: %s must be one of %s."},
        {73, "NE_ALLOC_FAIL:\n  Memory allocation failed."},
        {74, "NE_INTERNAL_ERROR:\n  An internal error has occurred in this function.\n"
             "  Check the function call and any array sizes. If the call is correct\n"
             "  then please consult KOR for assistance."},
        {100, "NE_REAL:\n  On entry, %s = %g.\n  Constraint: %s."},
        {101, "NE_REAL_2:\n  On entry, %s = %g, %s = %g.\n  Constraint: %s."},
        {139, "NE_FUNC_END_VAL:\n  On entry, f(%s) and f(%s) have the same sign, with f(%s) != 0.0."},
        {140, "NE_PROBABLE_POLE:\n  Indicates that the function values in the interval %s might\n"
              "  contain a pole rather than a zero. Reducing xtol may help\n"
              "  in distinguishing between a pole and a zero."},
        {555, "NE_TOO_SMALL:\n  On entry, the value of %s is too small."},
    };
    for (const auto &p : published) {
        ASSERT_NE(kor_errlist[p.code], nullptr) << p.code;
        EXPECT_STREQ(kor_errlist[p.code], p.text) << p.code;
    }
}

}  // namespace
