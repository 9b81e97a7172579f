/* Calls the zero finders with a null KorError record.  A failure or a
   warning must print the report to standard error and end the process with
   status 1; the line after the call is printed only if it returns.
   Modes: ay_error, ay_success, az_warning. */
#include <stdio.h>
#include <string.h>

#include "kor.h"

static double square_minus_2(double x, Kor_Comm *comm) {
    (void)comm;
    return x * x - 2.0;
}

/* Zero strictly between 1 and the next double: no tolerance below an ulp
   can be met. */
static double just_above_1(double x) { return (x - 1.0) - 0x1p-60; }

int main(int argc, char **argv) {
    const char *mode = argc > 1 ? argv[1] : "";
    double x = 0.0, y = 0.0;
    if (strcmp(mode, "ay_error") == 0) {
        c05ayc(0.0, 2.0, -1.0, 0.0, square_minus_2, &x, NULL, NULL);
        printf("returned\n");
    } else if (strcmp(mode, "ay_success") == 0) {
        c05ayc(0.0, 2.0, 1e-12, 0.0, square_minus_2, &x, NULL, NULL);
        printf("%.17g\n", x);
    } else if (strcmp(mode, "az_warning") == 0) {
        double c[KOR_C05AZ_LC] = {0}, fx = 0.0;
        int64_t ind = 1;
        x = 0.5;
        y = 1.5;
        for (long n = 0; n < 100000; ++n) {
            c05azc(&x, &y, fx, 1e-30, Kor_TestAbsolute, c, &ind, NULL);
            if (ind == 0) break;
            fx = just_above_1(x);
        }
        printf("returned\n");
    } else {
        fprintf(stderr, "unknown mode\n");
        return 2;
    }
    return 0;
}
