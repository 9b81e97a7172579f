/* Solving an LP on a problem handle, from C, by the simplex method and by
   the interior-point method (Chvatal, Linear Programming, 1983, ch. 2):
       maximize    5 x1 + 4 x2 + 3 x3
       subject to  2 x1 + 3 x2 +   x3 <= 5
                   4 x1 +   x2 + 2 x3 <= 11
                   3 x1 + 4 x2 + 2 x3 <= 8,   x >= 0.
   The optimum is 13 at x = (2, 0, 1), with multipliers y = (1, 0, 1). */
#include <kor.h>
#include <stdio.h>

/* Called every 'Monitor Frequency' iterations with the current measures. */
static void monit(void *handle, const double rinfo[], const double stats[], int64_t *inform,
                  Kor_Comm *comm) {
    (void)handle, (void)comm, (void)inform;
    printf("  monitor: iteration %2.0f, objective %10.4f\n", stats[0], rinfo[0]);
}

int main(void) {
    KorError fail = KOR_ERROR_INIT;
    void *handle = NULL;
    e04rac(&handle, 3, &fail);
    const double bl[3] = { 0.0, 0.0, 0.0 }, bu[3] = { 1.0e20, 1.0e20, 1.0e20 };
    e04rhc(handle, 3, bl, bu, &fail);
    const double c[3] = { 5.0, 4.0, 3.0 };
    e04rec(handle, 3, c, &fail);
    const double cl[3] = { -1.0e20, -1.0e20, -1.0e20 }, cu[3] = { 5.0, 11.0, 8.0 };
    const int64_t row[9] = { 1, 1, 1, 2, 2, 2, 3, 3, 3 }, col[9] = { 1, 2, 3, 1, 2, 3, 1, 2, 3 };
    const double a[9] = { 2.0, 3.0, 1.0, 4.0, 1.0, 2.0, 3.0, 4.0, 2.0 };
    int64_t idlc = 0;
    e04rjc(handle, 3, cl, cu, 9, row, col, a, &idlc, &fail);
    e04zmc(handle, "Task = Maximize", &fail);
    e04zmc(handle, "Monitor Frequency = 1", &fail);
    e04zmc(handle, "Print Level = 0", &fail);
    if (fail.code != NE_NOERROR) {
        printf("setting up failed:\n%s\n", fail.message);
        return 1;
    }

    double x[3], u[6], rinfo[100], stats[100];
    printf("simplex (e04mkc):\n");
    e04mkc(handle, 3, x, 6, u, rinfo, stats, monit, NULL, &fail);
    if (fail.code != NE_NOERROR) {
        printf("e04mkc failed:\n%s\n", fail.message);
        return 1;
    }
    printf("  objective %.6f at x = (%.6f, %.6f, %.6f)\n", rinfo[0], x[0], x[1], x[2]);
    printf("  constraint multipliers (%.6f, %.6f, %.6f)\n", u[3], u[4], u[5]);

    printf("interior point (e04mtc):\n");
    e04mtc(handle, 3, x, 6, u, rinfo, stats, NULL, NULL, &fail);
    if (fail.code != NE_NOERROR) {
        printf("e04mtc failed:\n%s\n", fail.message);
        return 1;
    }
    printf("  objective %.6f at x = (%.6f, %.6f, %.6f)\n", rinfo[0], x[0], x[1], x[2]);
    printf("  largest violation %.1e, largest dual residual %.1e\n", rinfo[3], rinfo[4]);

    /* The results stay in the handle until the next solve. */
    double primal[3];
    e04rxc(handle, "Primal Variables", 0, 3, primal, &fail);
    printf("  from the handle: x = (%.6f, %.6f, %.6f)\n", primal[0], primal[1], primal[2]);

    /* An infeasible variant: x1 + x2 + x3 >= 10 cannot hold with the rows above. */
    const double gl[1] = { 10.0 }, gu[1] = { 1.0e20 }, ones[3] = { 1.0, 1.0, 1.0 };
    const int64_t one_row[3] = { 1, 1, 1 };
    idlc = 0;
    e04rjc(handle, 1, gl, gu, 3, one_row, col, ones, &idlc, &fail);
    e04zmc(handle, "Monitor Frequency = 0", &fail);
    double u2[7];
    e04mkc(handle, 3, x, 7, u2, rinfo, stats, NULL, NULL, &fail);
    printf("with x1 + x2 + x3 >= 10:\n%s\n", fail.message);

    e04rzc(&handle, &fail);
    return 0;
}
