/* Every NE_ (error) and NW_ (warning) code, and the table of message
   templates indexed by code. */
#ifndef KOR_CODES_H
#define KOR_CODES_H

#ifdef __cplusplus
extern "C" {
#endif

enum KorCode {
#define KOR_MESSAGE(code, name, text) name = code,
#include "kor/messages.def"
#undef KOR_MESSAGE
    KOR_ERRLIST_SIZE /* one past the last code */
};

/* kor_errlist[code] is "NAME:\n  text"; the unused codes 716 and 745 are NULL. */
extern const char *const kor_errlist[KOR_ERRLIST_SIZE];

#ifdef __cplusplus
}
#endif

#endif
