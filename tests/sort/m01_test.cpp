// m01da (ranking) and m01ea (rearranging by ranks): ranks against their definition counted directly,
// the two together against a stable sort, and every exit with its values.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>

#include "m01da_def.hpp"
#include "m01ea_def.hpp"
#include "support/exits.hpp"
#include "support/numbers.hpp"

namespace {

// NaN after every number, in either order.
bool before(double x, double y, bool ascending) { return !std::isnan(x) && (std::isnan(y) || (ascending ? x < y : x > y)); }

// The rank of v[i] by definition: one more than the number of values that
// come before it, and than the equal values that appear earlier.
std::vector<int64_t> ranks_by_counting(const std::vector<double> &v, bool ascending) {
    std::vector<int64_t> r(v.size(), 1);
    for (size_t i = 0; i < v.size(); ++i)
        for (size_t j = 0; j < v.size(); ++j)
            r[i] += before(v[j], v[i], ascending) || (j < i && !before(v[i], v[j], ascending));
    return r;
}

TEST(M01, RanksAreTheStableOrderAndM01eaAppliesThem) {
    std::mt19937_64 gen(7);
    for (size_t n : {1, 2, 7, 24, 25, 100, 1000})  // both sides of the switch to the merge sort
        for (bool nans : {false, true})
            for (Kor_SortOrder order : {Kor_Ascending, Kor_Descending}) {
                SCOPED_TRACE("n=" + std::to_string(n) + " nans=" + std::to_string(nans) + " order=" + std::to_string(order));
                // Few distinct values, so that ties are common; -0.0 and 0.0 tie.
                std::vector<double> v(n), sorted;
                for (double &x : v) x = nans && gen() % 11 == 0 ? NAN : gen() % 7 == 0 ? (gen() % 2 ? 0.0 : -0.0) : int(gen() % 6) - 2.5;
                std::vector<int64_t> irank(n, -1);
                KorError fail = KOR_ERROR_INIT;
                m01dac(v.data(), int64_t(n), order, irank.data(), &fail);
                kor::test::expect_success(fail);
                EXPECT_EQ(irank, ranks_by_counting(v, order == Kor_Ascending));
                sorted = v;
                std::stable_sort(sorted.begin(), sorted.end(), [order](double x, double y) { return before(x, y, order == Kor_Ascending); });
                const std::vector<int64_t> kept = irank;
                m01eac(v.data(), int64_t(n), irank.data(), &fail);  // moves v[i] to position irank[i]
                kor::test::expect_success(fail);
                EXPECT_TRUE(std::equal(v.begin(), v.end(), sorted.begin(), kor::test::same_bits) && irank == kept);
            }
}

TEST(M01da, LargeVectorsInNLogNTime) {
    // 2^18 distinct values in scrambled order: minutes for a quadratic method, well under a second here.
    const int64_t n = int64_t(1) << 18;
    std::vector<double> v(n);
    for (int64_t i = 0; i < n; ++i) v[i] = double((i * 7919) % n);
    std::vector<int64_t> irank(n);
    KorError fail = KOR_ERROR_INIT;
    const auto start = std::chrono::steady_clock::now();
    m01dac(v.data(), n, Kor_Descending, irank.data(), &fail);
    EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 5.0);
    for (int64_t i = 0; i < n; ++i) ASSERT_EQ(irank[i], n - int64_t(v[i])) << i;
}

TEST(M01, EveryExitLeavesTheArraysAlone) {
    double v[3] = {3, 1, 2};
    int64_t irank[3] = {9, 9, 9};
    KorError fail = KOR_ERROR_INIT;
    // n < 1 is the n exit, with or without arrays: a null array of count n <= 0 is no bad pointer.
    for (int64_t n : {0, -4})
        for (bool null : {false, true}) {
            m01dac(null ? nullptr : v, n, Kor_Ascending, null ? nullptr : irank, &fail);
            EXPECT_EQ(kor::test::exit_reals<kor::m01da::Exit::n_too_small>(kor::m01da::info, fail), std::vector<double>{double(n)});
            m01eac(null ? nullptr : v, n, null ? nullptr : irank, &fail);
            EXPECT_EQ(kor::test::exit_reals<kor::m01ea::Exit::n_too_small>(kor::m01ea::info, fail), std::vector<double>{double(n)});
        }
    m01dac(v, 3, Kor_SortOrder(2), irank, &fail);
    kor::test::exit_values<kor::m01da::Exit::order_invalid>(kor::m01da::info, fail);
    for (const auto &bad : {std::vector<int64_t>{1, 1, 2}, {0, 1, 2}, {1, 2, 4}, {-1, 2, 3}, {3, 2, 2}}) {
        m01eac(v, 3, bad.data(), &fail);
        kor::test::exit_values<kor::m01ea::Exit::not_a_permutation>(kor::m01ea::info, fail);
    }
    EXPECT_TRUE(irank[0] == 9 && irank[1] == 9 && irank[2] == 9 && v[0] == 3 && v[1] == 1 && v[2] == 2);
}

TEST(M01da, LowerCaseLettersFromFortranCallers) {
    // Only Fortran-style callers pass the order as a letter; the engine takes either case.
    const double v[4] = {2, 2, 1, 3};
    const int64_t n = 4;
    int64_t ascending[4], descending[4], ifail = 1;
    m01daf_(v, &n, "a", ascending, &ifail, 1);
    m01daf_(v, &n, "d", descending, &ifail, 1);
    EXPECT_TRUE(std::equal(ascending, ascending + 4, std::vector<int64_t>{2, 3, 1, 4}.begin()) && ifail == 0);
    EXPECT_TRUE(std::equal(descending, descending + 4, std::vector<int64_t>{2, 3, 4, 1}.begin()));
}

}  // namespace
