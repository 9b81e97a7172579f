/* Records and scalar types shared by every chapter of libkor. */
#ifndef KOR_TYPES_H
#define KOR_TYPES_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The C interface's error record.  Clear it with KOR_ERROR_INIT (or set
   code and print to 0 and handler to NULL) before the first call. */
typedef struct KorError {
    int  code;                 /* NE_/NW_ code of the last report, 0 = NE_NOERROR */
    int  print;                /* non-zero: also print every non-zero report to stderr */
    char message[512];         /* composed text of the last report */
    void (*handler)(const char *message, int code, const char *routine);
    int64_t errnum;            /* the engine's outcome code when non-zero */
} KorError;

#define KOR_ERROR_INIT { 0, 0, { 0 }, NULL, 0 }

/* Handed unchanged to every call of a C user function. */
typedef struct Kor_Comm {
    void    *data;             /* the caller's own pointer, never touched */
    int64_t *iuser;            /* optional caller arrays, never touched */
    double  *ruser;
} Kor_Comm;

#ifdef __cplusplus
}
#endif

#endif
