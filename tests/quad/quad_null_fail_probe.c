/* Calls d01rjc with a null KorError record.  A warning (the limit, which
   maxsub = 1 always reaches) or the user stop must print the report to
   standard error and end the process with status 1; the line after the
   call is printed only if it returns.  Modes: warning, stop, success. */
#include <stdio.h>
#include <string.h>

#include "kor.h"

/* x^2, and 1/x when counting calls (so that bisection goes on), stopping
   at the second call. */
static void square(const double x[], int64_t nx, double fv[], int64_t *iflag, Kor_Comm *comm) {
    for (int64_t i = 0; i < nx; ++i) fv[i] = comm ? 1.0 / x[i] : x[i] * x[i];
    if (comm && ++comm->iuser[0] == 2) *iflag = -1;
}

int main(int argc, char **argv) {
    const char *mode = argc > 1 ? argv[1] : "";
    double result = 0.0, abserr = 0.0, rinfo[200];
    int64_t iinfo[50], calls = 0;
    Kor_Comm counting = {NULL, &calls, NULL};
    if (strcmp(mode, "warning") == 0) {
        d01rjc(square, 0.0, 1.0, 0.0, 1e-10, 1, &result, &abserr, rinfo, iinfo, NULL, NULL);
        printf("returned\n");
    } else if (strcmp(mode, "stop") == 0) {
        d01rjc(square, 0.0, 1.0, 0.0, 1e-10, 50, &result, &abserr, rinfo, iinfo, &counting, NULL);
        printf("returned\n");
    } else if (strcmp(mode, "success") == 0) {
        d01rjc(square, 0.0, 1.0, 0.0, 1e-10, 50, &result, &abserr, rinfo, iinfo, NULL, NULL);
        printf("%.15f\n", result); /* 1/3 */
    } else {
        fprintf(stderr, "unknown mode\n");
        return 2;
    }
    return 0;
}
