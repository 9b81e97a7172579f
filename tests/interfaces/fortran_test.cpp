// The Fortran-style interface, once per kind of argument: fortran_probe
// makes each call from gfortran and this test the same call in C.  Results
// agree to the bit, IFAIL is the C errnum, and a printed failure is its
// exit's lines from the definition with the C report's values in place.
// Swapping, dropping or mis-sizing an argument changes a word of its line.
#include <gtest/gtest.h>

#include <cstring>

#include "e04zm_def.hpp"
#include "g01ea_def.hpp"
#include "s14ab_def.hpp"
#include "support/exits.hpp"
#include "support/files.hpp"
#include "support/fortran_report.hpp"
#include "support/process.hpp"

namespace {

// A word as the probe writes it: an integer, or a real's bits as one.
struct Word {
    int64_t bits;
    Word(double d) { std::memcpy(&bits, &d, sizeof bits); }
    Word(int64_t i) : bits(i) {}
};

std::string put(std::string line, const std::vector<Word> &words) {
    for (Word w : words) line += " " + std::to_string(w.bits);
    return line + "\n";
}

// What IFAIL = -1 (or 0: hard) prints for the exit `fail` holds: its
// definition's lines with the C message's values, then `extra` values
// that only the Fortran lines show.
template <class Tag>
std::string printed(const kor::frame::RoutineInfo &info, const KorError &fail,
                    std::vector<std::string> extra = {}, bool hard = false) {
    std::vector<std::string> values = kor::test::exit_values<Tag>(info, fail);
    values.insert(values.end(), extra.begin(), extra.end());
    const kor::frame::ExitInfo &e = info.exits[Tag::index];
    std::string out;
    size_t next = 0;
    for (int l = 0; l < e.nlines; ++l) {
        std::string line = e.fortran_lines[l];
        for (size_t at; (at = line.find("%s")) != std::string::npos;) line.replace(at, 2, values.at(next++));
        out += "** " + line + "\n";
    }
    return out + kor::test::abnormal_exit(info.fortran_name, e.outcome, hard);
}

double f(double x, Kor_Comm *comm) {
    ++comm->iuser[0];
    comm->ruser[1] = x;
    return double(comm->iuser[1]) * x * x - comm->ruser[0];
}

void fv(const double x[], int64_t nx, double v[], int64_t *iflag, Kor_Comm *comm) {
    comm->iuser[0] += 1;
    comm->iuser[1] += nx;
    for (int64_t i = 0; i < nx; ++i) v[i] = 1.0 / (comm->ruser[0] + x[i] * x[i]);
    if (comm->iuser[0] == comm->iuser[2]) *iflag = -1;
}

std::string expected_output() {
    KorError fail = kor::test::fresh_error();
    std::string out = put("x02 s14abf", {x02ajc(), x02bbc(), s14abc(2.5, &fail), fail.errnum});
    const double fallback = s14abc(-3.5, &fail);
    for (int64_t mode : {-1, 1, 2})
        out += (mode == -1 ? printed<kor::s14ab::Exit::not_positive>(kor::s14ab::info, fail) : "") +
               put("fail", {mode, fallback, fail.errnum});

    const int64_t seed[] = {1762543, 9876, 42};
    for (int64_t genid = 1; genid <= 6; ++genid) {
        const auto g = Kor_BaseGenerator(Kor_Basic + genid - 1);
        int64_t lstate = 0, state[1300];
        double u[3];
        g05kfc(g, 5, seed, 3, nullptr, &lstate, &fail);
        const int64_t query = fail.errnum;  // success in C, IFAIL = -1 in Fortran
        g05kfc(g, 5, seed, 3, state, &lstate, &fail);
        g05sac(3, state, u, &fail);
        out += put("g05", {genid, lstate, query, u[0], u[1], u[2], fail.errnum});
    }

    double rv[] = {3.0, 1.0, 2.0, 1.0, 5.0};
    int64_t r[5];
    m01dac(rv, 5, Kor_Descending, r, &fail);
    m01eac(rv, 5, r, &fail);
    out += put("m01", {r[0], r[1], r[2], r[3], r[4], rv[0], rv[1], rv[2], rv[3], rv[4], fail.errnum});

    std::vector<Word> g01;  // 'L', 'u', 'S', 'c' stand for the enumerators in order
    for (int t = 0; t < 4; ++t) g01.push_back(g01eac(Kor_Tail(Kor_TailLower + t), 1.5, &fail));
    g01.push_back(fail.errnum);
    out += put("g01", g01);
    const double bad = g01eac(Kor_Tail(7), 1.5, &fail);
    out += printed<kor::g01ea::Exit::tail_invalid>(kor::g01ea::info, fail, {"X"}) + put("g01 X", {bad, fail.errnum});

    int64_t iuser[3] = {0, 2, 0}, ind = 1, calls = 0, ivalue, optype, lshort;
    double ruser[2] = {6.0, 0.0}, x = 0.0, y = 3.0, c[KOR_C05AZ_LC] = {};
    Kor_Comm comm{nullptr, iuser, ruser};
    c05ayc(0.0, 3.0, 1e-12, 0.0, f, &x, &comm, &fail);
    out += put("c05ayf", {x, iuser[0], iuser[1], ruser[0], ruser[1], fail.errnum});
    for (x = 0.0; ind != 0 && fail.errnum == 0; ++calls)
        c05azc(&x, &y, x * x - 2.0, 1e-3, Kor_TestAbsolute, c, &ind, &fail);
    out += put("c05azf", {x, y, calls, fail.errnum});

    for (int64_t stop : {0, 2}) {  // to the end, then stopped by the second call
        int64_t counts[3] = {0, 0, stop}, iinfo[50] = {};
        double rinfo[200], abserr, shift = 1e-4;
        Kor_Comm cm{nullptr, counts, &shift};
        d01rjc(fv, -1.0, 1.0, 0.0, 1e-10, 50, &x, &abserr, rinfo, iinfo, &cm, &fail);
        out += put("d01rjf", {x, abserr, counts[0], counts[1], iinfo[0], fail.errnum});
    }

    void *h = nullptr;
    char cvalue[31] = {}, cshort[4] = {};
    e04rac(&h, 2, &fail);
    e04zmc(h, ("Infinite Bound Size" + std::string(130, ' ') + "= 2.5e20" + std::string(43, ' ')).c_str(), &fail);
    e04zmc(h, "Task = Maximize", &fail);
    e04znc(h, "Infinite Bound Size", &ivalue, &x, cvalue, 31, &optype, &fail);
    e04znc(h, "task", &ivalue, &y, cvalue, 31, &optype, &fail);
    e04znc(h, "task", &ivalue, &y, cshort, 4, &lshort, &fail);
    const std::string padded = (cvalue + std::string(12, ' ')).substr(0, 12);
    out += put("e04znf [" + padded + "] [" + cshort + "]", {x, optype, lshort, fail.errnum});
    e04zmc(h, ("Bogus Name = 1" + std::string(186, ' ')).c_str(), &fail);
    out += printed<kor::e04zm::Exit::unknown_option>(kor::e04zm::info, fail) + put("e04zmf", {fail.errnum});
    e04rzc(&h, &fail);
    out += put("e04rzf", {int64_t(h != nullptr), fail.errnum});
    e04rac(&h, 2, &fail);
    e04zmc(h, "Print Level = 4", &fail);
    e04znc(h, "Print Level", &ivalue, &x, cvalue, 31, &optype, &fail);
    e04rzc(&h, &fail);
    return out + put("integer handle", {ivalue, optype, int64_t(reinterpret_cast<intptr_t>(h)), fail.errnum});
}

TEST(FortranInterface, EveryArgumentKindAgreesWithC) {
    const auto r = kor::test::run_process(kor::test::probe("fortran_probe"), {});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.out, expected_output());
}

TEST(FortranInterface, IfailZeroEndsTheProgramOnAFailure) {
    KorError fail = kor::test::fresh_error();
    s14abc(-3.5, &fail);
    const auto r = kor::test::run_process(kor::test::probe("fortran_probe"), {"hard"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.out, printed<kor::s14ab::Exit::not_positive>(kor::s14ab::info, fail, {}, true));
}

}  // namespace
