/* Scenarios that end the process or depend on the current directory, run by
   the frame tests as a separate program: exit_probe <scenario>.  Anything
   printed after a call that should have ended the process shows up as
   "returned" in the captured output. */
#include <kor.h>
#include <stdio.h>
#include <string.h>

/* Fortran-style entry, called the way a Fortran program calls it. */
void c05ayf_(const double *a, const double *b, const double *eps, const double *eta,
             double (*f)(const double *, int64_t *, double *), double *x, int64_t *iuser,
             double *ruser, int64_t *ifail);
void x04aaz(const char *text);

static double fortran_line(const double *x, int64_t *iuser, double *ruser) {
    (void)iuser;
    (void)ruser;
    return *x - 0.25;
}

/* c05ay with eps = 0.0 fails its first argument check. */
static void c05ay_bad_eps(int64_t ifail) {
    double a = 0.0, b = 1.0, eps = 0.0, eta = 0.0, x = 0.0, ruser[1] = {0.0};
    int64_t iuser[1] = {0};
    c05ayf_(&a, &b, &eps, &eta, fortran_line, &x, iuser, ruser, &ifail);
    printf("returned ifail=%lld\n", (long long)ifail);
}

int main(int argc, char **argv) {
    const char *s = argc > 1 ? argv[1] : "";
    if (strcmp(s, "null_error") == 0) {
        x06aac(0, NULL);
        printf("returned\n");
    } else if (strcmp(s, "null_success") == 0) {
        x06aac(3, NULL);
        printf("returned\n");
    } else if (strcmp(s, "null_warning") == 0) {
        /* No double is an exact zero of x*x - 0.5, so a tolerance far below
           rounding level ends the search with c05az's warning exit. */
        double x = 0.0, y = 1.0, fx = 0.0, c[KOR_C05AZ_LC];
        int64_t ind = 1;
        for (int i = 0; i < 10000 && ind != 0; ++i) {
            c05azc(&x, &y, fx, 1e-300, Kor_TestAbsolute, c, &ind, NULL);
            fx = x * x - 0.5;
        }
        printf("returned\n");
    } else if (strcmp(s, "hard") == 0) {
        c05ay_bad_eps(0);
    } else if (strcmp(s, "hard_silenced") == 0) {
        int64_t off = -1;
        x04aac(1, &off);
        c05ay_bad_eps(0);
    } else if (strcmp(s, "soft") == 0) {
        c05ay_bad_eps(-1);
    } else if (strcmp(s, "debug") == 0) {
        x04aaz("first debug line");
        x04aaz("second debug line");
        x04aaz(NULL);
        printf("returned\n");
    } else {
        printf("unknown scenario\n");
        return 2;
    }
    return 0;
}
