/* Calls with a null KorError record: an error or a warning prints the
   report on standard error and ends the process with status 1; a success,
   the size query that C reports as one included, returns quietly.  Modes:
   error, warning, function (a special function's error), success. */
#include <stdio.h>
#include <string.h>

#include "kor.h"

static double f(double x, Kor_Comm *comm) { return (void)comm, x * x - 2.0; }

int main(int argc, char **argv) {
    const char *mode = argc > 1 ? argv[1] : "";
    int64_t seed[1] = {1762543}, state[100], lstate = 0;
    double x = 0.0;
    g05kfc(Kor_MRG32k3a, 1, seed, 1, NULL, &lstate, NULL);
    g05kfc(Kor_MRG32k3a, 1, seed, 1, state, &lstate, NULL);
    if (strcmp(mode, "error") == 0) c05ayc(0.0, 2.0, -1.0, 0.0, f, &x, NULL, NULL);
    if (strcmp(mode, "function") == 0) x = s14abc(-1.0, NULL);
    g05sjc(1, strcmp(mode, "warning") == 0 ? 0.001 : 2.0, 1.0, state, &x, NULL);
    printf("returned\n");
    return 0;
}
