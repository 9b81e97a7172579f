/* A small LP built in a problem handle component by component, from C:
       minimize    x1 + 2 x2
       subject to  x1 + x2 = 1,  x2 - x3 <= 5,  0 <= x1,  x2 <= 4,  x3 = 1,
   then printed section by section and freed. */
#include <kor.h>
#include <stdio.h>

static int check(const char *what, const KorError *fail) {
    if (fail->code == NE_NOERROR) return 0;
    printf("%s failed:\n%s\n", what, fail->message);
    return 1;
}

int main(void) {
    KorError fail = KOR_ERROR_INIT;
    void *handle = NULL;
    e04rac(&handle, 3, &fail);
    if (check("e04rac", &fail)) return 1;

    /* Bounds at or beyond 'Infinite Bound Size' (1.0e+20) are infinite. */
    const double bl[3] = { 0.0, -1.0e20, 1.0 }, bu[3] = { 1.0e20, 4.0, 1.0 };
    e04rhc(handle, 3, bl, bu, &fail);
    const double c[3] = { 1.0, 2.0, 0.0 };
    e04rec(handle, 3, c, &fail);

    /* Two blocks of linear constraints; each call returns the number of the
       last constraint it added. */
    const double bl1[1] = { 1.0 }, bu1[1] = { 1.0 }, b1[2] = { 1.0, 1.0 };
    const int64_t row1[2] = { 1, 1 }, col1[2] = { 1, 2 };
    int64_t idlc = 0;
    e04rjc(handle, 1, bl1, bu1, 2, row1, col1, b1, &idlc, &fail);
    printf("first block: constraints up to %ld\n", (long)idlc);
    const double bl2[1] = { -1.0e20 }, bu2[1] = { 5.0 }, b2[2] = { 1.0, -1.0 };
    const int64_t row2[2] = { 1, 1 }, col2[2] = { 2, 3 };
    idlc = 0;
    e04rjc(handle, 1, bl2, bu2, 2, row2, col2, b2, &idlc, &fail);
    printf("second block: constraints up to %ld\n", (long)idlc);
    if (check("e04rjc", &fail)) return 1;

    /* A repeated (row, column) pair is refused, even with equal values. */
    const int64_t rows[2] = { 1, 1 }, cols[2] = { 3, 3 };
    const double same[2] = { 1.0, 1.0 };
    idlc = 0;
    e04rjc(handle, 1, bl1, bu1, 2, rows, cols, same, &idlc, &fail);
    printf("refused as it should be:\n%s\n", fail.message);

    e04zmc(handle, "Print Level = 1", &fail);
    e04ryc(handle, 6, "Overview, Simple Bounds, Linear Constraints Detailed, Objective", &fail);
    if (check("e04ryc", &fail)) return 1;

    e04rzc(&handle, &fail);
    printf("handle after e04rzc: %s\n", handle ? "still set" : "null");
    return check("e04rzc", &fail);
}
