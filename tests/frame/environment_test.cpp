// Machine constants (x02), thread control (x06) and IEEE values and traps
// (x07), through the C and the Fortran-style entries.
#include <array>
#include <cfenv>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>

#include "frame_support.hpp"
#include "support/exits.hpp"
#include "x06aa_def.hpp"

// The Fortran-style entries, as a Fortran caller reaches them.
extern "C" {
double x02ajf_(), x02akf_(), x02amf_(), x02anf_(), x02alf_(), x02ahf_();
int64_t x02bbf_(), x02bef_(), x02bhf_(), x02bjf_(), x02bkf_(), x02blf_();
int64_t x06abf_(), x06acf_(), x06adf_(), x06aff_(), x06ahf_(), x06akf_(), x06xaf_();
void x06aaf_(const int64_t *num_threads, int64_t *ifail);
void x06ajf_(const int64_t *num_threads, int64_t *ifail);
void x06agf_(const int64_t *nesting);
int64_t x07aaf_(const double *x);
int64_t x07abf_(const double *x);
double x07baf_(const int64_t *sign);
double x07bbf_(const int64_t *kind);
void x07caf_(int64_t *exmode);
void x07cbf_(const int64_t *exmode);
void x02aken_(double *), x02bjen_(int64_t *), x02bken_(int64_t *), x02blen_(int64_t *), x02bezn_(int64_t *);
void x02eayn_(const double *, const double *, int64_t *), x02eaym_(const float *, const float *, int64_t *);
void x02eazn_(const double *, int64_t *), x02eazm_(const float *, int64_t *);
void x02zawn_(const double *, const double *, double *);
}

namespace {

using kor::test::fresh_error;

uint64_t bits_of(double v) {
    uint64_t b;
    std::memcpy(&b, &v, sizeof b);
    return b;
}

double from_bits(uint64_t b) {
    double v;
    std::memcpy(&v, &b, sizeof v);
    return v;
}

TEST(frameEnvironment, MachineConstantsThroughEveryEntry) {
    const struct { const char *name; double (*c)(); double (*f)(); double (*lng)(); double expected; } reals[] = {
        {"x02aj", x02ajc, x02ajf_, kor_machine_precision, DBL_EPSILON / 2},
        {"x02ak", x02akc, x02akf_, kor_real_smallest_number, DBL_MIN},
        {"x02am", x02amc, x02amf_, kor_real_safe_small_number, std::nextafter(DBL_MIN, 1.0)},
        {"x02an", x02anc, x02anf_, kor_complex_safe_small_number, std::nextafter(DBL_MIN, 1.0)},
        {"x02al", x02alc, x02alf_, kor_real_largest_number, DBL_MAX},
        {"x02ah", x02ahc, x02ahf_, kor_large_constant, std::ldexp(1.0, 150)},
    };
    for (const auto &c : reals) {
        SCOPED_TRACE(c.name);
        for (double v : {c.c(), c.f(), c.lng()}) EXPECT_EQ(bits_of(v), bits_of(c.expected));
    }
    const struct { const char *name; int64_t (*c)(); int64_t (*f)(); int64_t (*lng)(); int64_t expected; } integers[] = {
        {"x02bb", x02bbc, x02bbf_, kor_max_integer, INT64_MAX},
        {"x02bh", x02bhc, x02bhf_, kor_real_base, 2},
        {"x02bj", x02bjc, x02bjf_, kor_real_base_digits, 53},
        {"x02bk", x02bkc, x02bkf_, kor_real_min_exp, -1021},
        {"x02bl", x02blc, x02blf_, kor_real_max_exp, 1024},
        {"x02be", x02bec, x02bef_, kor_decimal_digits, 15},
        // x06: this build runs one thread, whatever is asked.
        {"x06ab", x06abc, x06abf_, kor_omp_get_num_threads, 1}, {"x06ac", x06acc, x06acf_, nullptr, 1},
        {"x06ad", x06adc, x06adf_, nullptr, 0}, {"x06af", x06afc, x06aff_, nullptr, 0},
        {"x06ah", x06ahc, x06ahf_, nullptr, 0}, {"x06ak", x06akc, x06akf_, nullptr, 0},
        {"x06xa", x06xac, x06xaf_, nullptr, 0},
    };
    const int64_t nest = 1;
    x06agc(1);
    x06agf_(&nest);
    for (const auto &c : integers) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.c(), c.expected);
        EXPECT_EQ(c.f(), c.expected);
        if (c.lng) { EXPECT_EQ(c.lng(), c.expected); }
    }
}

// The engines' single-precision companions are IEEE binary32's.
TEST(frameEnvironment, SinglePrecisionCompanions) {
    double smallest;
    std::array<int64_t, 4> got;
    x02aken_(&smallest), x02bjen_(&got[0]), x02bken_(&got[1]), x02blen_(&got[2]), x02bezn_(&got[3]);
    EXPECT_EQ(smallest, double(FLT_MIN));
    EXPECT_EQ(got, (std::array<int64_t, 4>{FLT_MANT_DIG, FLT_MIN_EXP, FLT_MAX_EXP, 16}));
}

TEST(frameEnvironment, RequestedThreadCountMustBePositive) {
    using Entry = void (*)(int64_t, KorError *);
    for (Entry entry : {Entry(x06aac), Entry(x06ajc), Entry(kor_omp_set_num_threads)}) {
        for (int64_t n : {int64_t(0), int64_t(-40), INT64_MIN}) {
            KorError fail = fresh_error();
            entry(n, &fail);
            EXPECT_EQ(kor::test::exit_values<kor::x06aa::Exit::count_not_positive>(kor::x06aa::info, fail),
                      std::vector<std::string>{std::to_string(n)});
        }
        for (int64_t n : {int64_t(1), INT64_MAX}) {
            KorError fail = fresh_error();
            entry(n, &fail);
            kor::test::expect_success(fail);
        }
    }
    EXPECT_EQ(x06acc(), 1);  // a request changes nothing
}

// --- x07 ----------------------------------------------------------------------

constexpr uint64_t quiet_bit = 0x0008000000000000ull;

// x07's classes, and the engines' comparison helpers (x02ea*, x02zaw),
// which call a NaN unequal to everything, itself included.
TEST(frameIeee, ClassifyAndCompareValues) {
    const double inf = std::numeric_limits<double>::infinity();
    const struct { const char *name; double x; int64_t finite, nan; } cases[] = {
        {"1.0", 1.0, 1, 0},
        {"-0.0", -0.0, 1, 0},
        {"max", DBL_MAX, 1, 0},
        {"subnormal", std::ldexp(1.0, -1074), 1, 0},
        {"-subnormal", -std::ldexp(1.0, -1060), 1, 0},
        {"+inf", inf, 0, 0},
        {"-inf", -inf, 0, 0},
        {"qnan", std::nan(""), 0, 1},
        {"-qnan", from_bits(0xfff8000000000000ull), 0, 1},
        {"snan", from_bits(0x7ff0000000000001ull), 0, 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(x07aac(c.x), c.finite);
        EXPECT_EQ(x07aaf_(&c.x), c.finite);
        EXPECT_EQ(x07abc(c.x), c.nan);
        EXPECT_EQ(x07abf_(&c.x), c.nan);
        const float xf = float(c.x), one_f = 1.0f;
        const double one = 1.0;
        std::array<int64_t, 6> got;
        x02eazn_(&c.x, &got[0]), x02eazm_(&xf, &got[1]), x02eayn_(&c.x, &c.x, &got[2]), x02eaym_(&xf, &xf, &got[3]);
        x02eayn_(&c.x, &one, &got[4]), x02eaym_(&xf, &one_f, &got[5]);
        const int64_t not_one = c.x == 1.0 ? 0 : 1;
        EXPECT_EQ(got, (std::array<int64_t, 6>{c.nan, c.nan, c.nan, c.nan, not_one, not_one}));
        double sum;
        x02zawn_(&c.x, &one, &sum);
        EXPECT_EQ(bits_of(sum) | quiet_bit * c.nan, bits_of(c.x + one) | quiet_bit * c.nan);
    }
}

TEST(frameIeee, MakeInfinitiesAndNans) {
    for (int64_t sign : {int64_t(0), int64_t(1), int64_t(77), INT64_MAX, int64_t(-1), INT64_MIN}) {
        SCOPED_TRACE(sign);
        for (double v : {x07bac(sign), x07baf_(&sign), kor_create_infinity(sign)}) {
            EXPECT_TRUE(std::isinf(v));
            EXPECT_EQ(std::signbit(v), sign < 0);
        }
    }
    for (int64_t kind : {int64_t(1), int64_t(2), int64_t(0), int64_t(-1), int64_t(3), INT64_MAX}) {
        SCOPED_TRACE(kind);
        const uint64_t b[] = {bits_of(x07bbc(kind)), bits_of(x07bbf_(&kind)), bits_of(kor_create_nan(kind))};
        for (uint64_t bits : b) {
            EXPECT_EQ(bits & 0x7ff0000000000000ull, 0x7ff0000000000000ull);
            EXPECT_NE(bits & 0x000fffffffffffffull, 0u);  // a NaN, not an infinity
            EXPECT_EQ((bits & quiet_bit) != 0, kind == 1) << std::hex << bits;
            EXPECT_TRUE(std::isnan(from_bits(bits)));
        }
    }
}

std::array<int64_t, 3> traps(bool fortran = false) {
    std::array<int64_t, 3> mode{9, 9, 9};
    fortran ? x07caf_(mode.data()) : x07cac(mode.data());
    return mode;
}

TEST(frameIeee, TrapsRoundTripOnTheCallingThread) {
    const int flags[3] = {FE_OVERFLOW, FE_DIVBYZERO, FE_INVALID};
    for (int pattern = 0; pattern < 8; ++pattern) {
        SCOPED_TRACE(pattern);
        const int64_t mode[3] = {pattern & 1, (pattern >> 1) & 1, (pattern >> 2) ? 5 : 0};
        (pattern % 2 ? x07cbf_ : x07cbc)(mode);
        const std::array<int64_t, 3> back = traps(pattern % 3 == 0);
        const int enabled = fegetexcept();
        const int64_t zero_traps[3] = {0, 0, 0};
        x07cbc(zero_traps);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(back[i], mode[i] ? 1 : 0);
            EXPECT_EQ((enabled & flags[i]) != 0, mode[i] != 0);
        }
    }
    EXPECT_EQ(traps(), (std::array<int64_t, 3>{0, 0, 0}));
    EXPECT_EQ(fegetexcept() & (FE_OVERFLOW | FE_DIVBYZERO | FE_INVALID), 0);
}

}  // namespace
