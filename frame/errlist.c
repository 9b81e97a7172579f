/* The message table, built from the same rows as the code enumeration so
   that a code and its text can never drift apart. */
#include "kor/codes.h"

__attribute__((visibility("default")))
const char *const kor_errlist[KOR_ERRLIST_SIZE] = {
#define KOR_MESSAGE(code, name, text) [code] = #name ":\n  " text,
#include "kor/messages.def"
#undef KOR_MESSAGE
};
