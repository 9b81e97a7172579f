// Helpers of the handle tests: every routine called through either
// interface, with the report it gives back in one shape, so that one table
// of cases checks both.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "e04ra_def.hpp"
#include "e04rb_def.hpp"
#include "e04rc_def.hpp"
#include "e04rd_def.hpp"
#include "e04re_def.hpp"
#include "e04rf_def.hpp"
#include "e04rg_def.hpp"
#include "e04rh_def.hpp"
#include "e04rj_def.hpp"
#include "e04rk_def.hpp"
#include "e04rl_def.hpp"
#include "e04rm_def.hpp"
#include "e04rn_def.hpp"
#include "e04rp_def.hpp"
#include "e04rs_def.hpp"
#include "e04rt_def.hpp"
#include "e04rw_def.hpp"
#include "e04rx_def.hpp"
#include "e04ry_def.hpp"
#include "e04rz_def.hpp"
#include "kor.h"
#include "support/files.hpp"

namespace opt_test {

enum class Api { c, fortran };
inline const char *name(Api a) { return a == Api::c ? "C" : "Fortran"; }
inline constexpr Api both[] = {Api::c, Api::fortran};

using kor::test::read_file;
using kor::test::split_lines;
using kor::test::write_file;
using Scratch = kor::test::ScratchDir;

// What a call reported, through either interface.  For the Fortran-style
// interface: the IFAIL returned and the "** " message lines it printed
// (IFAIL = -1 on entry) to the error unit, sent to a scratch file.
struct Report {
    Api api = Api::c;
    int code = 0;               // C only
    std::string message;        // C only
    int64_t outcome = 0;        // errnum / IFAIL
    std::vector<std::string> lines;  // Fortran only
    std::string exit_line;           // Fortran only: the ABNORMAL EXIT line
};

template <class Call>
Report via_c(Call &&call) {
    KorError e = KOR_ERROR_INIT;
    call(&e);
    Report r;
    r.api = Api::c;
    r.code = e.code;
    r.message = e.message;
    r.outcome = e.errnum;
    return r;
}

template <class Call>
Report via_fortran(Call &&call) {
    Scratch scratch;
    const std::string path = scratch.file("errors.txt");
    KorError e = KOR_ERROR_INIT;
    int64_t unit = -1, saved = 0;
    kor_file_open(path.c_str(), 1, &unit, &e);
    x04aac(0, &saved);
    x04aac(1, &unit);
    int64_t ifail = -1;
    call(&ifail);
    x04aac(1, &saved);
    kor_file_close(unit, &e);
    Report r;
    r.api = Api::fortran;
    r.outcome = ifail;
    for (const std::string &line : split_lines(read_file(path))) {
        if (line.rfind("** ", 0) == 0) r.lines.push_back(line);
        if (line.find("ABNORMAL EXIT") != std::string::npos) r.exit_line = line;
    }
    return r;
}

template <class CCall, class FCall>
Report call(Api api, CCall &&c, FCall &&f) {
    return api == Api::c ? via_c(c) : via_fortran(f);
}

// The text of a C message after "NAME:\n  ", its lines joined by blanks.
inline std::string flat_text(const std::string &message) {
    std::string text = message.substr(message.find(":\n  ") + 4);
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text.compare(i, 3, "\n  ") == 0) {
            out += ' ';
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

// Checks a failure against the complete C message: the C interface must
// give it exactly; the Fortran-style interface the same words in its "** "
// lines (each within 80 characters) and a non-zero IFAIL.
inline void expect_failure(const Report &r, const std::string &expected, int64_t outcome = 0) {
    SCOPED_TRACE(std::string("interface ") + name(r.api));
    if (r.api == Api::c) {
        EXPECT_EQ(r.message, expected);
        EXPECT_NE(r.code, 0);
        EXPECT_NE(r.outcome, 0);
    } else {
        std::string joined;
        for (const std::string &line : r.lines) {
            EXPECT_LE(line.size(), 80u) << line;
            joined += (joined.empty() ? "" : " ") + line.substr(3);
        }
        EXPECT_EQ(joined, flat_text(expected));
        EXPECT_NE(r.outcome, 0);
        EXPECT_NE(r.exit_line.find("IFAIL"), std::string::npos) << r.exit_line;
    }
    if (outcome) {
        EXPECT_EQ(r.outcome, outcome);
    }
}

inline void expect_success(const Report &r) {
    SCOPED_TRACE(std::string("interface ") + name(r.api));
    EXPECT_EQ(r.outcome, 0);
    if (r.api == Api::c) {
        EXPECT_EQ(r.code, 0) << r.message;
    } else {
        EXPECT_TRUE(r.lines.empty()) << r.lines.front();
    }
}

using I = std::vector<int64_t>;
using R = std::vector<double>;

// Every routine through either interface.  Pointers rather than vectors,
// so that a test can pass counts that do not match the arrays.
inline Report ra(Api api, void **h, int64_t nvar) {
    return call(api, [&](KorError *e) { e04rac(h, nvar, e); },
                [&](int64_t *f) { e04raf_(h, &nvar, f); });
}
inline Report rz(Api api, void **h) {
    return call(api, [&](KorError *e) { e04rzc(h, e); }, [&](int64_t *f) { e04rzf_(h, f); });
}
inline Report rh(Api api, void *h, int64_t nvar, const double *bl, const double *bu) {
    return call(api, [&](KorError *e) { e04rhc(h, nvar, bl, bu, e); },
                [&](int64_t *f) { e04rhf_(&h, &nvar, bl, bu, f); });
}
inline Report re(Api api, void *h, int64_t nvar, const double *cvec) {
    return call(api, [&](KorError *e) { e04rec(h, nvar, cvec, e); },
                [&](int64_t *f) { e04ref_(&h, &nvar, cvec, f); });
}
inline Report rf(Api api, void *h, int64_t nnzc, const int64_t *idxc, const double *c, int64_t nnzh,
                 const int64_t *irowh, const int64_t *icolh, const double *hv) {
    return call(api, [&](KorError *e) { e04rfc(h, nnzc, idxc, c, nnzh, irowh, icolh, hv, e); },
                [&](int64_t *f) { e04rff_(&h, &nnzc, idxc, c, &nnzh, irowh, icolh, hv, f); });
}
inline Report rg(Api api, void *h, int64_t nnzfd, const int64_t *idxfd) {
    return call(api, [&](KorError *e) { e04rgc(h, nnzfd, idxfd, e); },
                [&](int64_t *f) { e04rgf_(&h, &nnzfd, idxfd, f); });
}
inline Report rj(Api api, void *h, int64_t nclin, const double *bl, const double *bu, int64_t nnzb,
                 const int64_t *irowb, const int64_t *icolb, const double *b, int64_t *idlc) {
    return call(api, [&](KorError *e) { e04rjc(h, nclin, bl, bu, nnzb, irowb, icolb, b, idlc, e); },
                [&](int64_t *f) { e04rjf_(&h, &nclin, bl, bu, &nnzb, irowb, icolb, b, idlc, f); });
}
inline Report rk(Api api, void *h, int64_t ncnln, const double *bl, const double *bu, int64_t nnzgd,
                 const int64_t *irowgd, const int64_t *icolgd) {
    return call(api, [&](KorError *e) { e04rkc(h, ncnln, bl, bu, nnzgd, irowgd, icolgd, e); },
                [&](int64_t *f) { e04rkf_(&h, &ncnln, bl, bu, &nnzgd, irowgd, icolgd, f); });
}
inline Report rl(Api api, void *h, int64_t idf, int64_t nnzh, const int64_t *irowh, const int64_t *icolh) {
    return call(api, [&](KorError *e) { e04rlc(h, idf, nnzh, irowh, icolh, e); },
                [&](int64_t *f) { e04rlf_(&h, &idf, &nnzh, irowh, icolh, f); });
}
inline Report rm(Api api, void *h, int64_t nres, int64_t isparse, int64_t nnzrd, const int64_t *irowrd,
                 const int64_t *icolrd) {
    return call(api, [&](KorError *e) { e04rmc(h, nres, isparse, nnzrd, irowrd, icolrd, e); },
                [&](int64_t *f) { e04rmf_(&h, &nres, &isparse, &nnzrd, irowrd, icolrd, f); });
}
inline Report rb(Api api, void *h, const std::string &gtype, int64_t lgroup, const int64_t *group,
                 int64_t *idgroup) {
    return call(api, [&](KorError *e) { e04rbc(h, gtype.c_str(), lgroup, group, idgroup, e); },
                [&](int64_t *f) { e04rbf_(&h, gtype.data(), &lgroup, group, idgroup, f, gtype.size()); });
}
inline Report rc(Api api, void *h, const std::string &ptype, int64_t lidx, const int64_t *idx) {
    return call(api, [&](KorError *e) { e04rcc(h, ptype.c_str(), lidx, idx, e); },
                [&](int64_t *f) { e04rcf_(&h, ptype.data(), &lidx, idx, f, ptype.size()); });
}
inline Report rn(Api api, void *h, int64_t nvar, int64_t dima, const int64_t *nnza, int64_t nnzasum,
                 const int64_t *irowa, const int64_t *icola, const double *a, int64_t nblk,
                 const int64_t *blksizea, int64_t *idblk) {
    return call(api,
                [&](KorError *e) { e04rnc(h, nvar, dima, nnza, nnzasum, irowa, icola, a, nblk, blksizea, idblk, e); },
                [&](int64_t *f) {
                    e04rnf_(&h, &nvar, &dima, nnza, &nnzasum, irowa, icola, a, &nblk, blksizea, idblk, f);
                });
}
inline Report rp(Api api, void *h, int64_t idblk, int64_t nq, const int64_t *qi, const int64_t *qj,
                 int64_t dimq, const int64_t *nnzq, int64_t nnzqsum, const int64_t *irowq,
                 const int64_t *icolq, const double *q) {
    return call(api,
                [&](KorError *e) { e04rpc(h, idblk, nq, qi, qj, dimq, nnzq, nnzqsum, irowq, icolq, q, e); },
                [&](int64_t *f) { e04rpf_(&h, &idblk, &nq, qi, qj, &dimq, nnzq, &nnzqsum, irowq, icolq, q, f); });
}
inline Report rs(Api api, void *h, double s, int64_t nnzr, const int64_t *idxr, const double *r,
                 int64_t nnzq, const int64_t *irowq, const int64_t *icolq, const double *q, double bl,
                 double bu, int64_t *idqc) {
    return call(api,
                [&](KorError *e) { e04rsc(h, s, nnzr, idxr, r, nnzq, irowq, icolq, q, bl, bu, idqc, e); },
                [&](int64_t *f) { e04rsf_(&h, &s, &nnzr, idxr, r, &nnzq, irowq, icolq, q, &bl, &bu, idqc, f); });
}
inline Report rt(Api api, void *h, double s, int64_t mf, int64_t nnzf, const int64_t *irowf,
                 const int64_t *icolf, const double *fv, int64_t nnzr, const int64_t *idxr,
                 const double *r, double bl, double bu, int64_t *idqc) {
    return call(api,
                [&](KorError *e) { e04rtc(h, s, mf, nnzf, irowf, icolf, fv, nnzr, idxr, r, bl, bu, idqc, e); },
                [&](int64_t *f) {
                    e04rtf_(&h, &s, &mf, &nnzf, irowf, icolf, fv, &nnzr, idxr, r, &bl, &bu, idqc, f);
                });
}
inline Report rw(Api api, void *h, const std::string &cmd, int64_t ioflag, int64_t liarr, int64_t *iarr,
                 int64_t lrarr, double *rarr) {
    return call(api, [&](KorError *e) { e04rwc(h, cmd.c_str(), ioflag, liarr, iarr, lrarr, rarr, e); },
                [&](int64_t *f) { e04rwf_(&h, cmd.data(), &ioflag, &liarr, iarr, &lrarr, rarr, f, cmd.size()); });
}
inline Report rx(Api api, void *h, const std::string &cmd, int64_t ioflag, int64_t lrarr, double *rarr) {
    return call(api, [&](KorError *e) { e04rxc(h, cmd.c_str(), ioflag, lrarr, rarr, e); },
                [&](int64_t *f) { e04rxf_(&h, cmd.data(), &ioflag, &lrarr, rarr, f, cmd.size()); });
}
inline Report ry(Api api, void *h, int64_t nout, const std::string &cmd) {
    return call(api, [&](KorError *e) { e04ryc(h, nout, cmd.c_str(), e); },
                [&](int64_t *f) { e04ryf_(&h, &nout, cmd.data(), f, cmd.size()); });
}
inline Report rd(Api api, int64_t unit, int64_t maxnvar, int64_t maxnblk, int64_t maxnnz, int64_t *nvar,
                 int64_t *nblk, int64_t *blksizea, double *cvec, int64_t *nnza, int64_t *irowa,
                 int64_t *icola, double *a) {
    return call(api,
                [&](KorError *e) {
                    e04rdc(unit, maxnvar, maxnblk, maxnnz, nvar, nblk, blksizea, cvec, nnza, irowa, icola, a, e);
                },
                [&](int64_t *f) {
                    e04rdf_(&unit, &maxnvar, &maxnblk, &maxnnz, nvar, nblk, blksizea, cvec, nnza, irowa, icola, a, f);
                });
}

// A handle of n variables, freed at the end of the scope.
class Handle {
public:
    explicit Handle(int64_t nvar) {
        KorError e = KOR_ERROR_INIT;
        e04rac(&h_, nvar, &e);
        EXPECT_EQ(e.code, 0) << e.message;
    }
    ~Handle() {
        if (h_) {
            KorError e = KOR_ERROR_INIT;
            e04rzc(&h_, &e);
        }
    }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;
    void *get() const { return h_; }
    void **address() { return &h_; }

private:
    void *h_ = nullptr;
};

// What e04ry writes for some keywords, through the C interface.
inline std::string printed(void *h, const std::string &keywords) {
    Scratch scratch;
    const std::string path = scratch.file("print.txt");
    KorError e = KOR_ERROR_INIT;
    int64_t unit = -1;
    kor_file_open(path.c_str(), 1, &unit, &e);
    e04ryc(h, unit, keywords.c_str(), &e);
    std::string failure = e.code ? std::string(e.message) : "";
    kor_file_close(unit, &e);
    return failure.empty() ? read_file(path) : "e04ryc failed: " + failure;
}

inline const std::string handle_null = "NE_HANDLE:\n  handle has not been initialized.";
inline const std::string handle_foreign =
    "NE_HANDLE:\n  handle does not belong to the KOR optimization modelling suite, has not been "
    "initialized properly or is corrupted.";
inline const std::string handle_corrupted = "NE_HANDLE:\n  handle has not been initialized properly or is corrupted.";
inline const std::string solver_running =
    "NE_PHASE:\n  The problem cannot be modified right now, the solver is running.";

}  // namespace opt_test
