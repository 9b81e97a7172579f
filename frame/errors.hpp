// The two error exits (C: KorError; Fortran: IFAIL) and the record parser.
// Only these may print on a routine's behalf or end the process.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kor/types.h"

extern "C" {

// C exit: stores the report in `fail`, calls its handler, prints when asked,
// and ends the process when `fail` is null and the code is not 0.  A null
// `text` means kor_errlist[code].
void p01acc_c(const char *text, int code, const char *routine, KorError *fail);

// Fortran exit: IFAIL on entry chooses hard (0), noisy soft (-1) or quiet
// soft (anything else) failure; IFAIL on return holds the outcome.  `lines`
// holds `nlines` records of line_len characters each.
void p01abzu_(int64_t *ifail, const int64_t *outcome, const char *routine, const char *lines,
              const int64_t *nlines, size_t routine_len, size_t line_len);
void p01abxu_(const int64_t *quiet, const int64_t *hard, const int64_t *outcome,
              const char *routine, const char *lines, const int64_t *nlines,
              size_t routine_len, size_t line_len);

// Splits an error record text into its message number and up to 12 value
// fields of field_len characters; status -1000 when the text is malformed.
void p01abtn_(const char *text, int64_t *message, char *fields, int64_t *status,
              size_t text_len, size_t field_len);

// The older one-line exit with the two-digit IFAIL rule; never stops.
void p01acf_f(int64_t *ifail, int64_t error, const char *routine, const char *variable,
              const char *text);
// Stop routine of p01acf_f: deliberately returns.
void p01abz_f(void);

// Invalid-parameter report; counts it in *count and prints unless the switch
// has units digit 1 and tens digit 0.
void p01abw_f(const char *parameter, const char *routine, const char *value, int64_t *count,
              int64_t ifail_switch);
}
