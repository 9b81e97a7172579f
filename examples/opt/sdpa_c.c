/* Reads an SDPLIB problem in sparse SDPA format (argument 1; by default
   truss1 from the test data), asking for the array sizes first, defines it
   in a handle as its linear matrix inequality and objective, and prints it. */
#include <kor.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(int argc, char **argv) {
    const char *path = argc > 1 ? argv[1] : "../../tests/data/opt/truss1.dat-s";
    KorError fail = KOR_ERROR_INIT;
    int64_t unit = -1, nvar = 0, nblk = 0, nnz = 0;

    /* A call with zero sizes reports the sizes needed (NE_INT_MAX). */
    kor_file_open(path, 0, &unit, &fail);
    if (fail.code != NE_NOERROR) return printf("%s: %s\n", path, fail.message), 1;
    e04rdc(unit, 0, 0, 0, &nvar, &nblk, NULL, NULL, NULL, NULL, NULL, NULL, &fail);
    const char *need = fail.code == NE_INT_MAX ? strstr(fail.message, "maxnnz should be at least ") : NULL;
    long n = 0;
    if (!need || sscanf(need, "maxnnz should be at least %ld", &n) != 1)
        return printf("size query: %s\n", fail.message), 1;
    nnz = n;
    kor_file_close(unit, &fail);
    printf("%s: %ld variables, %ld diagonal blocks, %ld entries\n", path, (long)nvar, (long)nblk, (long)nnz);

    int64_t *blksizea = malloc((size_t)nblk * sizeof *blksizea);
    int64_t *nnza = malloc((size_t)(nvar + 1) * sizeof *nnza);
    int64_t *irowa = malloc((size_t)nnz * sizeof *irowa), *icola = malloc((size_t)nnz * sizeof *icola);
    double *cvec = malloc((size_t)nvar * sizeof *cvec), *a = malloc((size_t)nnz * sizeof *a);
    kor_file_open(path, 0, &unit, &fail);
    e04rdc(unit, nvar, nblk, nnz, &nvar, &nblk, blksizea, cvec, nnza, irowa, icola, a, &fail);
    if (fail.code != NE_NOERROR) return printf("%s\n", fail.message), 1;
    kor_file_close(unit, &fail);

    int64_t dima = 0;
    for (int64_t k = 0; k < nblk; ++k) dima += blksizea[k];
    void *handle = NULL;
    int64_t idblk = 0;
    e04rac(&handle, nvar, &fail);
    e04rec(handle, nvar, cvec, &fail);
    e04rnc(handle, nvar, dima, nnza, nnz, irowa, icola, a, nblk, blksizea, &idblk, &fail);
    if (fail.code != NE_NOERROR) return printf("%s\n", fail.message), 1;
    e04ryc(handle, 6, "overview, matrix constraints, multipliers sizes", &fail);
    e04rzc(&handle, &fail);
    free(blksizea); free(nnza); free(irowa); free(icola); free(cvec); free(a);
    return 0;
}
