/* Calls the special functions with a null KorError record.  A failure must
   print the report to standard error and end the process with status 1;
   the value is printed only if the call returns.
   Modes: s14ab_error, s14aa_error, g01fa_error, success. */
#include <stdio.h>
#include <string.h>

#include "kor.h"

int main(int argc, char **argv) {
    const char *mode = argc > 1 ? argv[1] : "";
    if (strcmp(mode, "s14ab_error") == 0) {
        printf("%.17g\n", s14abc(-1.0, NULL));
    } else if (strcmp(mode, "s14aa_error") == 0) {
        printf("%.17g\n", s14aac(171.0, NULL));
    } else if (strcmp(mode, "g01fa_error") == 0) {
        printf("%.17g\n", g01fac(Kor_TailCentral, 0.0, NULL));
    } else if (strcmp(mode, "success") == 0) {
        printf("%.3f %.3f %.3f\n", s14abc(2.0, NULL), s14aac(4.0, NULL),
               g01eac(Kor_TailLower, 0.0, NULL));
    } else {
        fprintf(stderr, "unknown mode\n");
        return 2;
    }
    return 0;
}
