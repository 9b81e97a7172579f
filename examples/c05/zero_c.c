/* Zeros of functions from C.
 *
 * 1. Kepler's equation M = E - e sin E: the eccentric anomaly E of an orbit
 *    with eccentricity e at mean anomaly M, found with c05ayc for a few M.
 * 2. The friction factor of turbulent pipe flow (Colebrook's equation),
 *    found by reverse communication with c05azc, the caller evaluating the
 *    function whenever the routine asks.
 * 3. What a failed call reports.
 */
#include <kor.h>
#include <math.h>
#include <stdio.h>

static double kepler(double E, Kor_Comm *comm) {
    const double e = comm->ruser[0], M = comm->ruser[1];
    ++comm->iuser[0];
    return E - e * sin(E) - M;
}

/* 1/sqrt(f) + 2 log10(k/(3.7 D) + 2.51/(Re sqrt(f))) = 0 in x = 1/sqrt(f) */
static double colebrook(double x, double relative_roughness, double reynolds) {
    return x + 2.0 * log10(relative_roughness / 3.7 + 2.51 * x / reynolds);
}

int main(void) {
    const double pi = 3.14159265358979323846;
    double params[2] = { 0.6, 0.0 };
    int64_t calls = 0;
    Kor_Comm comm = { NULL, &calls, params };
    KorError fail = KOR_ERROR_INIT;

    printf("Kepler's equation, e = %.1f\n     M             E          calls\n", params[0]);
    for (int k = 1; k <= 5; ++k) {
        double E;
        params[1] = k * pi / 6.0;
        calls = 0;
        c05ayc(0.0, pi, 1e-13, 0.0, kepler, &E, &comm, &fail);
        if (fail.code != NE_NOERROR) {
            printf("%s\n", fail.message);
            return 1;
        }
        printf("  %10.6f  %16.13f  %4ld\n", params[1], E, (long)calls);
    }

    printf("\nColebrook friction factor, k/D = 1e-4\n       Re          f\n");
    for (double reynolds = 1e4; reynolds <= 1e8; reynolds *= 10.0) {
        double x = 1.0, y = 20.0, fx = 0.0, c[KOR_C05AZ_LC];
        int64_t ind = 1;
        do {
            c05azc(&x, &y, fx, 1e-12, Kor_TestRelative, c, &ind, &fail);
            if (ind != 0) fx = colebrook(x, 1e-4, reynolds);
        } while (ind != 0);
        if (fail.code != NE_NOERROR) {
            printf("%s\n", fail.message);
            return 1;
        }
        printf("  %10.0e  %.10f\n", reynolds, 1.0 / (x * x));
    }

    printf("\nA bracket without a sign change is reported, not guessed at:\n");
    params[1] = 0.5;
    double E;
    c05ayc(2.0, 3.0, 1e-13, 0.0, kepler, &E, &comm, &fail);
    printf("code %d, outcome %ld\n%s\n", fail.code, (long)fail.errnum, fail.message);
    return fail.code == NE_FUNC_END_VAL ? 0 : 1;
}
