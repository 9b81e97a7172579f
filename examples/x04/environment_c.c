/* The library's environment from C: machine constants, IEEE values, and a
   unit connected to a file, written and read back record by record. */
#include <kor.h>
#include <stdio.h>

int main(void) {
    KorError fail = KOR_ERROR_INIT;
    printf("machine precision      %.17g\n", x02ajc());
    printf("smallest normal        %.17g\n", x02akc());
    printf("largest finite         %.17g\n", x02alc());
    printf("digits, exponent range %ld, %ld .. %ld\n", (long)x02bjc(), (long)x02bkc(), (long)x02blc());
    printf("finite(inf) %ld, isnan(x07bb(1)) %ld, threaded %ld\n",
           (long)x07aac(x07bac(1)), (long)x07abc(x07bbc(1)), (long)x06xac());

    int64_t unit;
    kor_file_open("environment_c.txt", 1, &unit, &fail);
    if (fail.code != NE_NOERROR) return printf("%s\n", fail.message), 1;
    x04bac(unit, "first record   ");
    x04bac(unit, "   ");
    x04bac(unit, "third record");
    kor_file_close(unit, &fail);

    kor_file_open("environment_c.txt", 0, &unit, &fail);
    char line[64];
    for (int n = 1;; ++n) {
        x04bbc(unit, line, sizeof line, &fail);
        if (fail.code != NE_NOERROR) break;
        printf("record %d: '%s'\n", n, line);
    }
    printf("%s\n", fail.message);
    kor_file_close(unit, &fail);
    return 0;
}
