/* Scenarios that end the process or depend on the current directory, run by
   the frame tests as a separate program: exit_probe <scenario>.  Anything
   printed after a call that should have ended the process shows up as
   "returned" in the captured output. */
#include <kor.h>
#include <stdio.h>
#include <string.h>

void x04aaz(const char *text);
void x06aaf_(const int64_t *num_threads, int64_t *ifail);

int main(int argc, char **argv) {
    const char *s = argc > 1 ? argv[1] : "";
    if (strcmp(s, "hard_silenced") == 0) {
        /* A hard failure with the error unit switched off. */
        int64_t off = -1, zero = 0, ifail = 0;
        x04aac(1, &off);
        x06aaf_(&zero, &ifail);
    } else if (strcmp(s, "debug") == 0) {
        x04aaz("first debug line");
        x04aaz("second debug line");
        x04aaz(NULL);
    } else {
        printf("unknown scenario\n");
        return 2;
    }
    printf("returned\n");
    return 0;
}
