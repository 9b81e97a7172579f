/* Gamma functions and the normal distribution from C: a small table of
   values, a z-score table, and what a soft failure returns. */
#include <kor.h>
#include <stdio.h>

int main(void) {
    KorError fail = KOR_ERROR_INIT;
    const double xs[] = { 0.5, 1.0, 1.5, 2.5, 4.75, 10.0, 25.0, 171.0 - 0.5 };

    printf("     x            Gamma(x)              ln Gamma(x)\n");
    for (int i = 0; i < 8; ++i)
        printf("%8.3f  %22.15e  %22.15e\n", xs[i], s14aac(xs[i], &fail), s14abc(xs[i], &fail));

    printf("\n     x      P(X <= x)         Q(x)             erf(x)            erfc(x)\n");
    for (double x = -3.0; x <= 3.0; x += 1.5)
        printf("%6.2f  %.15f  %.15f  %17.14f  %.15f\n", x, s15abc(x, &fail), s15acc(x, &fail),
               s15aec(x, &fail), s15adc(x, &fail));

    printf("\nTwo-sided significance level and its critical value:\n");
    const double levels[] = { 0.1, 0.05, 0.01, 0.001 };
    for (int i = 0; i < 4; ++i) {
        const double z = g01fac(Kor_TailSignificance, levels[i], &fail);
        printf("  alpha = %-6g  z = %.12f  back: %.3g\n", levels[i], z,
               g01eac(Kor_TailSignificance, z, &fail));
    }

    printf("\nA soft failure still returns a value:\n");
    const double g = s14aac(-3.0, &fail);
    printf("  s14aac(-3.0) = %g, code %d\n%s\n", g, fail.code, fail.message);
    return 0;
}
