/* Adaptive quadrature from C.
 *
 * 1. The integral of x^a log(1/x) over [0, 1] (= 1/(a+1)^2), singular at 0,
 *    with d01rjc: the integrand fills all 21 values of a subinterval in one
 *    call; a is passed in comm.  The subdivision is printed from rinfo: the
 *    subintervals crowd towards the singularity.
 * 2. The same with the fixed 61-point rule of d01rkc (key 6), which has no
 *    extrapolation and needs many more subintervals.
 * 3. What a warning reports: too few subintervals allowed.
 */
#include <kor.h>
#include <math.h>
#include <stdio.h>

static void xlog(const double x[], int64_t nx, double fv[], int64_t *iflag, Kor_Comm *comm) {
    const double a = comm->ruser[0];
    (void)iflag;
    ++comm->iuser[0];
    for (int64_t i = 0; i < nx; ++i) fv[i] = -pow(x[i], a) * log(x[i]);
}

int main(void) {
    enum { maxsub = 100 };
    double rinfo[4 * maxsub], result, abserr, a[1] = { -0.5 };
    int64_t iinfo[maxsub], calls = 0;
    Kor_Comm comm = { NULL, &calls, a };
    KorError fail = KOR_ERROR_INIT;

    d01rjc(xlog, 0.0, 1.0, 0.0, 1e-10, maxsub, &result, &abserr, rinfo, iinfo, &comm, &fail);
    if (fail.code != NE_NOERROR) {
        printf("%s\n", fail.message);
        return 1;
    }
    const int64_t n = iinfo[0];
    printf("d01rjc: integral of x^-0.5 log(1/x) over [0, 1]\n");
    printf("  result = %.15f (exact 4), abserr = %.2e\n", result, abserr);
    printf("  %ld calls of f, %ld subintervals, %s\n", (long)calls, (long)n,
           iinfo[2] ? "result extrapolated" : "result is the sum of the contributions");
    printf("       lower          upper          error        contribution\n");
    for (int64_t i = 0; i < n; ++i)
        printf("  %13.6e  %13.6e  %13.6e  %13.6e\n", rinfo[i], rinfo[n + i], rinfo[2 * n + i],
               rinfo[3 * n + i]);

    calls = 0;
    d01rkc(xlog, 0.0, 1.0, 6, 0.0, 1e-10, maxsub, &result, &abserr, rinfo, iinfo, &comm, &fail);
    printf("\nd01rkc with the 61-point rule: result = %.15f, abserr = %.2e,\n"
           "  %ld calls of f, %ld subintervals (no extrapolation)\n",
           result, abserr, (long)calls, (long)iinfo[0]);

    printf("\nWith maxsub = 4 the result is returned with a warning:\n");
    d01rjc(xlog, 0.0, 1.0, 0.0, 1e-10, 4, &result, &abserr, rinfo, iinfo, &comm, &fail);
    printf("  result = %.6f, abserr = %.1e\n  code %d, outcome %ld\n%s\n", result, abserr,
           fail.code, (long)fail.errnum, fail.message);
    return fail.code == NE_QUAD_MAX_SUBDIV ? 0 : 1;
}
