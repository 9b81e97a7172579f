// kor_errlist as the library builds it from the message definitions
// (tools/check_messages.py checks the definitions themselves): every code
// of the table has its entry "NAME:\n  text", the enumerator of the same
// name has the code as its value, and the unused codes have none.
#include <string>

#include "frame_support.hpp"

namespace {

struct Row {
    int code;
    const char *name;
    int enumerator;
    const char *text;
};

const Row rows[] = {
#define KOR_MESSAGE(code, name, text) {code, #name, name, text},
#include "kor/messages.def"
#undef KOR_MESSAGE
};

TEST(frameMessages, EveryEntryIsNameColonNewlineTwoBlanksText) {
    size_t next = 0;
    for (int code = 0; code < KOR_ERRLIST_SIZE; ++code) {
        SCOPED_TRACE(code);
        if (next < sizeof rows / sizeof rows[0] && rows[next].code == code) {
            const Row &r = rows[next++];
            EXPECT_EQ(r.enumerator, code);
            ASSERT_NE(kor_errlist[code], nullptr);
            EXPECT_EQ(std::string(kor_errlist[code]), std::string(r.name) + ":\n  " + r.text);
        } else {
            EXPECT_EQ(kor_errlist[code], nullptr);
        }
    }
    EXPECT_EQ(next, sizeof rows / sizeof rows[0]);
    EXPECT_EQ(kor_errlist[716], nullptr);
}

}  // namespace
