// m01dac (ranking) and m01eac (rearranging by ranks): ranks against their
// definition counted directly, the rearrangement against its definition,
// every exit with its message.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "kor.h"

namespace {

const double nan_value = std::nan("");

// The rank of v[i] by definition: one more than the number of values that
// come before it (smaller, or larger when descending; NaN after every
// number), plus the equal values that appear earlier.
std::vector<int64_t> ranks_by_counting(const std::vector<double> &v, bool ascending) {
    auto before = [ascending](double x, double y) {
        if (std::isnan(x)) return false;
        if (std::isnan(y)) return true;
        return ascending ? x < y : x > y;
    };
    auto equal = [](double x, double y) { return x == y || (std::isnan(x) && std::isnan(y)); };
    std::vector<int64_t> r(v.size());
    for (size_t i = 0; i < v.size(); ++i) {
        int64_t k = 1;
        for (size_t j = 0; j < v.size(); ++j)
            if (before(v[j], v[i]) || (j < i && equal(v[j], v[i]))) ++k;
        r[i] = k;
    }
    return r;
}

std::vector<double> sample(size_t n, unsigned seed, bool with_nans) {
    std::mt19937_64 gen(seed);
    std::vector<double> v(n);
    for (double &x : v) {
        // Few distinct values, so that ties are common; -0.0 and 0.0 tie.
        const int k = int(gen() % 7) - 3;
        x = k == 0 ? (gen() % 2 ? 0.0 : -0.0) : k * 0.5;
        if (with_nans && gen() % 11 == 0) x = nan_value;
    }
    return v;
}

TEST(M01da, RanksAreTheStableOrder) {
    for (size_t n : {1u, 2u, 7u, 100u, 1000u})
        for (bool nans : {false, true})
            for (Kor_SortOrder order : {Kor_Ascending, Kor_Descending}) {
                SCOPED_TRACE("n=" + std::to_string(n) + " nans=" + std::to_string(nans) +
                             " order=" + std::to_string(order));
                const std::vector<double> v = sample(n, unsigned(n * 7 + nans), nans);
                std::vector<int64_t> irank(n, -1);
                KorError fail = KOR_ERROR_INIT;
                m01dac(v.data(), int64_t(n), order, irank.data(), &fail);
                EXPECT_EQ(fail.code, NE_NOERROR);
                EXPECT_EQ(irank, ranks_by_counting(v, order == Kor_Ascending));
            }
}

TEST(M01da, LargeVectorsInNLogNTime) {
    // 2^18 distinct values in scrambled order: a quadratic method would take
    // minutes; the merge sort well under a second.
    const int64_t n = int64_t(1) << 18;
    std::vector<double> v(static_cast<size_t>(n));
    for (int64_t i = 0; i < n; ++i) v[size_t(i)] = double((i * 7919) % n);
    std::vector<int64_t> irank(static_cast<size_t>(n));
    KorError fail = KOR_ERROR_INIT;
    const auto start = std::chrono::steady_clock::now();
    m01dac(v.data(), n, Kor_Ascending, irank.data(), &fail);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_EQ(fail.code, NE_NOERROR);
    for (int64_t i = 0; i < n; ++i) ASSERT_EQ(irank[size_t(i)], int64_t(v[size_t(i)]) + 1);
    EXPECT_LT(seconds, 5.0);
}

TEST(M01ea, MovesEachValueToItsRank) {
    std::mt19937_64 gen(5);
    for (size_t n : {1u, 2u, 9u, 500u}) {
        std::vector<int64_t> perm(n);
        for (size_t i = 0; i < n; ++i) perm[i] = int64_t(i) + 1;
        std::shuffle(perm.begin(), perm.end(), gen);
        std::vector<double> v(n), before;
        for (double &x : v) x = double(gen() % 1000);
        before = v;
        const std::vector<int64_t> kept = perm;
        KorError fail = KOR_ERROR_INIT;
        m01eac(v.data(), int64_t(n), perm.data(), &fail);
        EXPECT_EQ(fail.code, NE_NOERROR);
        for (size_t i = 0; i < n; ++i) EXPECT_EQ(v[size_t(perm[i] - 1)], before[i]);
        EXPECT_EQ(perm, kept);  // the ranks are not changed
    }
}

TEST(M01ea, RanksFromM01daSortAndCarryOtherVectors) {
    const std::vector<double> keys = sample(300, 11, true);
    std::vector<double> v = keys, tag(keys.size());
    for (size_t i = 0; i < tag.size(); ++i) tag[i] = double(i);
    std::vector<int64_t> irank(keys.size());
    KorError fail = KOR_ERROR_INIT;
    m01dac(keys.data(), int64_t(keys.size()), Kor_Ascending, irank.data(), &fail);
    m01eac(v.data(), int64_t(v.size()), irank.data(), &fail);
    m01eac(tag.data(), int64_t(tag.size()), irank.data(), &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    for (size_t i = 1; i < v.size(); ++i) {
        if (std::isnan(v[i])) continue;
        ASSERT_FALSE(std::isnan(v[i - 1])) << i;  // NaNs last
        EXPECT_LE(v[i - 1], v[i]) << i;
        // Stable: equal keys keep their original order.
        if (v[i - 1] == v[i]) {
            EXPECT_LT(tag[i - 1], tag[i]) << i;
        }
    }
    for (size_t i = 0; i < v.size(); ++i)
        EXPECT_TRUE(v[i] == keys[size_t(tag[i])] || (std::isnan(v[i]) && std::isnan(keys[size_t(tag[i])])));
}

TEST(M01, EveryExitWithItsMessage) {
    double v[3] = {3, 1, 2};
    int64_t irank[3] = {9, 9, 9};
    KorError fail = KOR_ERROR_INIT;
    for (int64_t n : {0, -4}) {
        m01dac(v, n, Kor_Ascending, irank, &fail);
        EXPECT_EQ(fail.code, NE_INT);
        EXPECT_EQ(fail.errnum, 1);
        EXPECT_EQ(std::string(fail.message), "NE_INT:\n  On entry, n = " + std::to_string(n) +
                                                 ".\n  Constraint: n >= 1.");
        m01eac(v, n, irank, &fail);
        EXPECT_EQ(fail.code, NE_INT);
        EXPECT_EQ(fail.errnum, 1);
    }
    EXPECT_EQ(irank[0], 9);
    m01dac(v, 3, Kor_SortOrder(5), irank, &fail);
    EXPECT_EQ(fail.code, NE_BAD_PARAM);
    EXPECT_EQ(fail.errnum, 2);
    EXPECT_EQ(std::string(fail.message),
              "NE_BAD_PARAM:\n  On entry, argument order had an illegal value.\n"
              "  Constraint: order = Kor_Ascending or Kor_Descending.");
    EXPECT_EQ(irank[0], 9);
    for (const auto &bad : {std::vector<int64_t>{1, 1, 2}, std::vector<int64_t>{0, 1, 2},
                            std::vector<int64_t>{1, 2, 4}, std::vector<int64_t>{-1, 2, 3}}) {
        m01eac(v, 3, bad.data(), &fail);
        EXPECT_EQ(fail.code, NE_BAD_RANK);
        EXPECT_EQ(fail.errnum, 2);
        EXPECT_EQ(std::string(fail.message),
                  "NE_BAD_RANK:\n  On entry, irank is not a permutation of 1, 2, ..., n.");
        EXPECT_EQ(v[0], 3.0);  // untouched
    }
    m01dac(nullptr, 3, Kor_Ascending, irank, &fail);
    EXPECT_EQ(std::string(fail.message), "NE_BAD_PARAM:\n  On entry, parameter rv had an illegal value.");
    m01dac(v, 3, Kor_Ascending, nullptr, &fail);
    EXPECT_EQ(std::string(fail.message), "NE_BAD_PARAM:\n  On entry, parameter irank had an illegal value.");
    m01eac(v, 3, nullptr, &fail);
    EXPECT_EQ(std::string(fail.message), "NE_BAD_PARAM:\n  On entry, parameter irank had an illegal value.");
}

TEST(M01, LongNamesAreTheSameRoutines) {
    const double v[4] = {2, 2, 1, 3};
    int64_t r1[4], r2[4];
    KorError fail = KOR_ERROR_INIT;
    m01dac(v, 4, Kor_Descending, r1, &fail);
    kor_rank_vector_real(v, 4, Kor_Descending, r2, &fail);
    EXPECT_EQ(std::vector<int64_t>(r1, r1 + 4), std::vector<int64_t>(r2, r2 + 4));
    EXPECT_EQ(std::vector<int64_t>(r1, r1 + 4), (std::vector<int64_t>{2, 3, 4, 1}));
    double w[4] = {2, 2, 1, 3};
    kor_reorder_vector_real(w, 4, r1, &fail);
    EXPECT_EQ(std::vector<double>(w, w + 4), (std::vector<double>{3, 2, 2, 1}));
    EXPECT_EQ(fail.code, NE_NOERROR);
}

}  // namespace
