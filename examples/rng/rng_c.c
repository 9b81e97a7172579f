/* Random numbers from C: seed a Mersenne Twister repeatably, draw uniforms
   and normals, and split one seeded stream into independent streams for
   four workers by skip-ahead, each estimating pi by Monte Carlo. */
#include <kor.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(void) {
    KorError fail = KOR_ERROR_INIT;
    int64_t seed[1] = { 2026 }, lstate = 0;
    g05kfc(Kor_MersenneTwister, 1, seed, 1, NULL, &lstate, &fail);   /* size query */
    printf("the Mersenne Twister needs %ld state words\n", (long)lstate);
    int64_t *seeded = malloc((size_t)lstate * sizeof *seeded);
    g05kfc(Kor_MersenneTwister, 1, seed, 1, seeded, &lstate, &fail);
    if (fail.code != NE_NOERROR) return printf("%s\n", fail.message), 1;

    double u[5], z[5];
    int64_t *state = malloc((size_t)lstate * sizeof *state);
    memcpy(state, seeded, (size_t)lstate * sizeof *state);
    g05sac(5, state, u, &fail);
    g05skc(5, 10.0, 4.0, state, z, &fail);
    printf("uniforms:");
    for (int i = 0; i < 5; ++i) printf(" %.6f", u[i]);
    printf("\nnormals N(10, 4):");
    for (int i = 0; i < 5; ++i) printf(" %.4f", z[i]);
    printf("\n\nfour workers, each 2^100 values apart:\n");

    enum { workers = 4, per_worker = 250000 };
    double *xy = malloc(2 * per_worker * sizeof *xy);
    long inside_total = 0;
    for (int w = 0; w < workers; ++w) {
        memcpy(state, seeded, (size_t)lstate * sizeof *state);
        for (int i = 0; i < w; ++i) g05kkc(100, state, &fail);
        g05sac(2 * per_worker, state, xy, &fail);
        long inside = 0;
        for (int i = 0; i < per_worker; ++i)
            inside += xy[2 * i] * xy[2 * i] + xy[2 * i + 1] * xy[2 * i + 1] < 1.0;
        inside_total += inside;
        printf("  worker %d: pi ~ %.5f\n", w, 4.0 * inside / per_worker);
    }
    printf("  all:      pi ~ %.5f\n", 4.0 * inside_total / (workers * per_worker));

    state[1] += 1;  /* damage the state: every consumer refuses it */
    g05sac(1, state, u, &fail);
    printf("\n%s\n", fail.message);
    free(xy);
    free(state);
    free(seeded);
    return 0;
}
