/* A program written against the installed library only: it must compile as
   C11 and as C++17 with warnings as errors, link, and find sqrt(2). */
#include <kor.h>
#include <math.h>
#include <stdio.h>

static double f(double x, Kor_Comm *comm) { return x * x - comm->ruser[0]; }

int main(void) {
    double two = 2.0, x = 0.0;
    Kor_Comm comm = { NULL, NULL, &two };
    KorError fail = KOR_ERROR_INIT;
    kor_zero_cont_func_brent(1.0, 2.0, 1e-12, 0.0, f, &x, &comm, &fail);
    if (fail.code != NE_NOERROR || fabs(x - sqrt(2.0)) > 1e-11) {
        printf("consumer: code %d x %.17g\n%s\n", fail.code, x, fail.message);
        return 1;
    }
    c05ayc(1.0, 1.0, 1e-12, 0.0, f, &x, &comm, &fail);
    if (fail.code != NE_REAL_2 || kor_errlist[NE_NOERROR] == NULL) return 1;
    printf("consumer: x = %.15f\n", x);
    return 0;
}
