// The Mersenne Twister MT19937 (Matsumoto & Nishimura 1998), with the
// authors' 2002 initialisations and the jump-ahead of Haramoto, Matsumoto,
// Nishimura, Panneton & L'Ecuyer (2008).
//
// Block, short form (Lg = 630):
//   [4..627]     mt[0..623], the 624 words of the current block (each 0..2^32-1)
//   [628]        the position: the next value is the tempered mt[position];
//                624 means the block is used up and is regenerated first
//   [629]        check value
// Full form (Lg = 1257), the same first 629 words, then
//   [629..1252]  reserved for the jump, zero: the jump's tables take 80 KB,
//                more than these words hold, so it works on the stack
//   [1253..1255] reserved, zero
//   [1256]       check value
// state[3] = 1.  The stream words (state[L-3], state[L-2]) are the leap-frog
// stride n and the stream's first value k, counted in the plain stream from
// where the state stood when it was partitioned (both 1 when not).
//
// The position stays in 1..624 between calls: it is advanced before a block
// is regenerated, never after.  So mt[0] is never read in full except right
// after the regeneration that made it, which matters for jump-ahead: the
// 19937-bit state is mt[1..623] and the top bit of mt[0], and the low 31 bits
// of mt[0] come out arbitrary after a jump.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "rng/state.hpp"
#include "tables/mt19937_charpoly.hpp"

namespace kor::rng {

namespace {

constexpr int64_t check_value = 3692;
constexpr int64_t short_block = 630, full_block = 1257;
constexpr int at_mt = 4, at_position = 628, at_jump_words = 629;

constexpr int N = 624, M = 397;
constexpr uint32_t matrix_a = 0x9908b0dfu, upper_mask = 0x80000000u, lower_mask = 0x7fffffffu;

// Skips of up to this many values step through the blocks; longer ones jump
// through the characteristic polynomial.  Stepping costs about a quarter of
// a nanosecond per value; a jump costs about 0.25 ms for Horner's rule plus
// 25 microseconds per squaring (log2 J - 14 of them), so they break even
// near 1.5 million values.
constexpr uint64_t step_limit = uint64_t(1) << 20;

// ---------------------------------------------------------------------------
// The recurrence and the output

// One word of the recurrence: the top bit of u (the older word) and the low
// 31 bits of v, shifted and twisted.  Branch-free, so that the block loops
// vectorise.  Word is uint32_t for a local copy of the block and int64_t for
// the words held in the state (values below 2^32 stay below 2^32).
template <class Word>
inline Word twist(Word u, Word v) {
    const Word y = (u & Word(upper_mask)) | (v & Word(lower_mask));
    return Word(y >> 1) ^ (Word(-(v & 1)) & Word(matrix_a));
}

// The next block in place: mt[k] <- mt[k + M] ^ twist(mt[k], mt[k + 1]),
// indices mod 624.  Split into three plain loops so that none needs the
// modulo: k + M wraps at k = 227, and only the last word reads mt[0] (which
// by then is already new).
template <class Word>
void regenerate(Word *mt) {
    for (int k = 0; k < N - M; ++k) mt[k] = mt[k + M] ^ twist(mt[k], mt[k + 1]);
    for (int k = N - M; k < N - 1; ++k) mt[k] = mt[k + M - N] ^ twist(mt[k], mt[k + 1]);
    mt[N - 1] = mt[M - 1] ^ twist(mt[N - 1], mt[0]);
}

inline uint32_t temper(uint32_t y) {
    y ^= y >> 11;
    y ^= (y << 7) & 0x9d2c5680u;
    y ^= (y << 15) & 0xefc60000u;
    y ^= y >> 18;
    return y;
}

// u = (y_s + 2^31) 2^-32 + 2^-53 with y_s the tempered word read as a signed
// 32-bit integer.  Every step is exact in double, so u lies in
// [2^-53, 1 - 2^-32 + 2^-53]: never 0, never 1.  The signed conversion is
// the one that vectorises on every x86-64.
inline double to_uniform(uint32_t y) {
    return (double(int32_t(y)) + 2147483648.0) * 0x1p-32 + 0x1p-53;
}

// ---------------------------------------------------------------------------
// Seeding (mt19937ar.c, 2002)

void init_genrand(uint32_t *mt, uint32_t s) {
    mt[0] = s;
    for (int i = 1; i < N; ++i) mt[i] = 1812433253u * (mt[i - 1] ^ (mt[i - 1] >> 30)) + uint32_t(i);
}

void init_by_array(uint32_t *mt, const int64_t *key, int64_t length) {
    init_genrand(mt, 19650218u);
    int i = 1;
    int64_t j = 0;
    for (int64_t k = std::max<int64_t>(N, length); k > 0; --k) {
        mt[i] = (mt[i] ^ ((mt[i - 1] ^ (mt[i - 1] >> 30)) * 1664525u)) + uint32_t(uint64_t(key[j])) + uint32_t(j);
        if (++i >= N) mt[0] = mt[N - 1], i = 1;
        if (++j >= length) j = 0;
    }
    for (int k = N - 1; k > 0; --k) {
        mt[i] = (mt[i] ^ ((mt[i - 1] ^ (mt[i - 1] >> 30)) * 1566083941u)) - uint32_t(i);
        if (++i >= N) mt[0] = mt[N - 1], i = 1;
    }
    mt[0] = 0x80000000u;  // the state is never all zero
}

SeedStatus seed(int64_t, const int64_t *seed, int64_t lseed, int64_t *state, int64_t room,
                int64_t *block) {
    *block = full_block;  // what the size query reports
    if (lseed < 1) return SeedStatus::lseed_too_small;
    if (room < 0) return SeedStatus::query;
    if (room < short_block) {
        *block = short_block;  // drawing needs only the short form
        return SeedStatus::lstate_too_small;
    }
    // One seed selects init_genrand; more go through init_by_array, which
    // uses them all.
    for (int64_t i = 0; i < (lseed == 1 ? 1 : lseed); ++i)
        if (seed[i] < 1) return SeedStatus::invalid_seed;

    uint32_t mt[N];
    if (lseed == 1)
        init_genrand(mt, uint32_t(uint64_t(seed[0])));
    else
        init_by_array(mt, seed, lseed);

    const int64_t length = room >= full_block ? full_block : short_block;
    *block = length;
    state[at_length] = length;
    state[at_check] = check_value;
    state[at_genid] = mersenne_twister;
    state[at_sub] = 1;
    for (int i = 0; i < N; ++i) state[at_mt + i] = mt[i];
    state[at_position] = N;  // the first draw regenerates, as in mt19937ar
    for (int64_t i = at_jump_words; i < length - 1; ++i) state[i] = 0;
    state[length - 1] = check_value;
    return SeedStatus::ok;
}

bool length_ok(const int64_t *state, int64_t length) {
    if (length != short_block + frame_words && length != full_block + frame_words) return false;
    // Everything below is at an index < 633 <= length.
    return state[at_sub] == 1 && state[at_position] >= 1 && state[at_position] <= N;
}

bool is_full(const int64_t *state) { return state[at_length] == full_block + frame_words; }
int64_t &stride_word(int64_t *state) { return state[state[at_length] - 3]; }
int64_t &stream_word(int64_t *state) { return state[state[at_length] - 2]; }

// ---------------------------------------------------------------------------
// Polynomials over GF(2) modulo the characteristic polynomial P, bit i of
// word i/64 the coefficient of x^i.

namespace charpoly = kor::data::mt19937_charpoly;
constexpr int degree = 19937;
constexpr int poly_words = degree / 64 + 1;  // 312: degree < 19937
constexpr int product_words = 2 * poly_words;
constexpr int terms = int(charpoly::terms);
static_assert(charpoly::degree == degree && charpoly::exponent[0] == degree && terms == 135,
              "the table is MT19937's characteristic polynomial");

using Poly = std::array<uint64_t, poly_words>;
using Product = std::array<uint64_t, product_words>;

// Reduction uses P's tail, P - x^19937 = x^19314 + ... + 1: a bit at
// x^(19937 + b) is replaced by the tail times x^b.  A run of words at the top
// of a product folds down wholly below itself when its length in bits is
// less than the gap 19937 - 19314 = 623 to the tail's leading term: 9 words.
constexpr int fold_words = (degree - int(charpoly::exponent[1]) - 1) / 64;
static_assert(fold_words >= 1, "the tail's leading term is at least a word below the degree");

// For a run whose first word is word `low`, tail term e lands at bit
// 64 low + (e - 19937): word low + delta, shifted up by `shift` bits, the
// same for every run.  Grouping the terms by shift lets one shifted copy of
// the run serve every term of its group with plain word xors.
struct Folds {
    int groups = 0;
    int shift[64] = {};
    int count[64] = {};
    int delta[64][terms - 1] = {};
};
constexpr Folds make_folds() {
    Folds f{};
    for (int t = 1; t < terms; ++t) {
        const int offset = int(charpoly::exponent[t]) - degree;  // < 0
        const int shift = offset & 63, delta = (offset - shift) / 64;
        int g = 0;
        while (g < f.groups && f.shift[g] != shift) ++g;
        if (g == f.groups) f.shift[f.groups++] = shift;
        f.delta[g][f.count[g]++] = delta;
    }
    return f;
}
constexpr Folds folds = make_folds();

// Plain scalar xors beat vectors here: the groups' deposits overlap at
// every word offset, and a vector load of words a vector store has just
// half-written waits for the store.
#if defined(__GNUC__) && !defined(__clang__)
#define KOR_SCALAR_LOOPS __attribute__((optimize("no-tree-vectorize")))
#else
#define KOR_SCALAR_LOOPS
#endif

template <int len>
KOR_SCALAR_LOOPS void fold_run(uint64_t *p, int low) {
    uint64_t run[len + 2];  // run[1..len], zero at both ends
    run[0] = run[len + 1] = 0;
    uint64_t any = 0;
    for (int i = 0; i < len; ++i) {
        run[i + 1] = p[low + i];
        any |= p[low + i];
        p[low + i] = 0;
    }
    if (!any) return;
    for (int g = 0; g < folds.groups; ++g) {
        const int shift = folds.shift[g];
        uint64_t shifted[len + 1];
        // (w >> 1) >> (63 - shift) is w >> (64 - shift), and 0 for shift 0.
        for (int i = 0; i <= len; ++i) shifted[i] = (run[i + 1] << shift) | ((run[i] >> 1) >> (63 - shift));
        for (int t = 0; t < folds.count[g]; ++t) {
            uint64_t *const q = p + low + folds.delta[g][t];
            for (int i = 0; i <= len; ++i) q[i] ^= shifted[i];
        }
    }
}

// p mod P into r, top-down a run at a time, so that what a run deposits is
// folded later with the words below it.  34 runs of 9 words and one of 6,
// then the 31 bits x^19937..x^19967 of word 311.
void reduce(Product &p, Poly &r) {
    constexpr int high_words = product_words - poly_words;  // 312
    constexpr int last = high_words % fold_words;
    int low = product_words;
    for (int i = 0; i < high_words / fold_words; ++i) fold_run<fold_words>(p.data(), low -= fold_words);
    if (last) fold_run<last>(p.data(), low -= last);
    constexpr int top_bit = degree - (poly_words - 1) * 64;  // 33
    const uint64_t bits = p[poly_words - 1] >> top_bit;
    if (bits) {
        p[poly_words - 1] &= (uint64_t(1) << top_bit) - 1;
        for (int t = 1; t < terms; ++t) {
            const int e = int(charpoly::exponent[t]), word = e >> 6, shift = e & 63;
            p[word] ^= bits << shift;
            p[word + 1] ^= (bits >> 1) >> (63 - shift);
        }
    }
    std::memcpy(r.data(), p.data(), sizeof(Poly));
}

// Squaring over GF(2) has no cross terms: bit i moves to bit 2i.
inline uint64_t spread(uint32_t half) {
    uint64_t x = half;
    x = (x | (x << 16)) & 0x0000ffff0000ffffu;
    x = (x | (x << 8)) & 0x00ff00ff00ff00ffu;
    x = (x | (x << 4)) & 0x0f0f0f0f0f0f0f0fu;
    x = (x | (x << 2)) & 0x3333333333333333u;
    x = (x | (x << 1)) & 0x5555555555555555u;
    return x;
}

void square(Poly &a) {
    Product p;
    for (int i = 0; i < poly_words; ++i) {
        p[2 * i] = spread(uint32_t(a[i]));
        p[2 * i + 1] = spread(uint32_t(a[i] >> 32));
    }
    reduce(p, a);
}

void times_x(Poly &a) {
    for (int i = poly_words - 1; i > 0; --i) a[i] = (a[i] << 1) | (a[i - 1] >> 63);
    a[0] <<= 1;
    constexpr int top_bit = degree - (poly_words - 1) * 64;
    if (a[poly_words - 1] >> top_bit & 1) {
        a[poly_words - 1] ^= uint64_t(1) << top_bit;
        for (int t = 1; t < terms; ++t) {
            const int e = int(charpoly::exponent[t]);
            a[e >> 6] ^= uint64_t(1) << (e & 63);
        }
    }
}

// x^J mod P, J >= 1, by squaring and multiplying by x from the top bit of J
// down: one squaring per bit of J.  J's leading fourteen bits give a
// monomial x^m, m < 2^14 < degree, that needs no reduction, which saves
// fourteen squarings.
Poly power_of_x(unsigned __int128 j) {
    int bit = 127;
    while (!(j >> bit & 1)) --bit;
    constexpr int free_bits = 14;
    static_assert((1 << free_bits) < degree, "the monomial is already reduced");
    const int low = std::max(bit - free_bits + 1, 0);
    const int m = int(j >> low);
    Poly g{};
    g[m >> 6] = uint64_t(1) << (m & 63);
    for (int b = low - 1; b >= 0; --b) {
        square(g);
        if (j >> b & 1) times_x(g);
    }
    return g;
}

// The multiplicative group of GF(2)[x]/P has 2^19937 - 1 elements (P is
// primitive), so a^(2^19937) = a for every a: squaring e times is squaring
// e mod 19937 times.  At most 19936 squarings, each a pass over 312 words.
void square_times(Poly &g, int64_t e) {
    for (int64_t i = e % degree; i > 0; --i) square(g);
}

int degree_of(const Poly &g) {
    for (int w = poly_words - 1; w >= 0; --w)
        if (g[w]) return w * 64 + 63 - __builtin_clzll(g[w]);
    return -1;
}

// ---------------------------------------------------------------------------
// Moving the state

// The words advanced by g(T), T the one-step map, by Horner's rule on
// states taken `window` coefficients at a time (Haramoto et al., section
// 3.2): R <- T^window R, then R ^= h(T) S for the window's coefficients h,
// read from a table of all 2^window such states.  R is 624 consecutive
// words of the recurrence in a buffer that grows at its end, so a step of
// T writes one word and every xor runs over contiguous words.  The
// position is left as it was: the block now holds the words J further on,
// and the next value is J values later.
constexpr int window = 5;
constexpr int combinations = 1 << window;
constexpr int slack = N;  // room to step into before R moves back to the buffer's start

// The window's states T^j S for j < window, xored for every set of j.
void tabulate(const uint32_t *s, uint32_t (*table)[N]) {
    uint32_t run[N + window];  // S's words and the next window - 1
    std::copy(s, s + N, run);
    for (int k = 0; k < window - 1; ++k) run[N + k] = run[k + M] ^ twist(run[k], run[k + 1]);
    std::fill(table[0], table[0] + N, 0u);
    for (int h = 1; h < combinations; ++h) {
        const int j = __builtin_ctz(h);
        const uint32_t *rest = table[h & (h - 1)], *shifted = run + j;
        for (int k = 0; k < N; ++k) table[h][k] = rest[k] ^ shifted[k];
    }
}

void apply(int64_t *state, const Poly &g) {
    alignas(64) uint32_t table[combinations][N];  // 80 KB, on the stack: nothing to fail
    alignas(64) uint32_t buffer[N + slack];
    uint32_t s[N];
    for (int k = 0; k < N; ++k) s[k] = uint32_t(state[at_mt + k]);
    tabulate(s, table);
    const int top = degree_of(g);
    const auto chunk = [&g](int low) {  // coefficients low .. low + window - 1
        int h = 0;
        for (int b = window - 1; b >= 0; --b) {
            const int i = low + b;
            h = h << 1 | int(g[i >> 6] >> (i & 63) & 1);
        }
        return h;
    };
    int low = top - top % window;
    uint32_t *r = buffer;
    const uint32_t *leading = table[chunk(low)];
    std::copy(leading, leading + N, r);
    for (low -= window; low >= 0; low -= window) {
        if (r + N + window > buffer + N + slack) {
            std::copy(r, r + N, buffer);
            r = buffer;
        }
        for (int k = 0; k < window; ++k) r[N + k] = r[k + M] ^ twist(r[k], r[k + 1]);
        r += window;
        const uint32_t *add = table[chunk(low)];
        for (int k = 0; k < N; ++k) r[k] ^= add[k];
    }
    for (int k = 0; k < N; ++k) state[at_mt + k] = r[k];
}

// Steps over `count` values through the blocks (any form of state).
void step(int64_t *state, uint64_t count) {
    uint64_t position = uint64_t(state[at_position]) + count;
    if (position > uint64_t(N)) {
        // A local copy regenerates 32-bit words, twice as many per vector.
        uint32_t mt[N];
        for (int i = 0; i < N; ++i) mt[i] = uint32_t(state[at_mt + i]);
        while (position > uint64_t(N)) {
            regenerate(mt);
            position -= N;
        }
        for (int i = 0; i < N; ++i) state[at_mt + i] = mt[i];
    }
    state[at_position] = int64_t(position);
}

// Skips `count` values of the plain stream: stepping when that is cheap (or
// the only way, for the short form), else jumping.
void advance(int64_t *state, unsigned __int128 count) {
    if (count <= step_limit || !is_full(state))
        step(state, uint64_t(count));  // short form: count < 2^63 here
    else
        apply(state, power_of_x(count));
}

// ---------------------------------------------------------------------------
// The generator's operations

// Every stride-th value: emit one, step over stride - 1 (by jumps when the
// stride is long and the state can jump, with the polynomial formed once).
void fill_strided(int64_t *state, int64_t n, double *x, uint64_t stride) {
    const uint64_t gap = stride - 1;
    const bool jump = gap > step_limit && is_full(state);
    Poly g{};
    if (jump) g = power_of_x(gap);
    for (int64_t i = 0; i < n; ++i) {
        if (state[at_position] == N) {
            regenerate(state + at_mt);
            state[at_position] = 0;
        }
        x[i] = to_uniform(temper(uint32_t(state[at_mt + state[at_position]])));
        ++state[at_position];
        if (jump)
            apply(state, g);
        else
            step(state, gap);
    }
}

void fill(int64_t *state, int64_t n, double *x) {
    const int64_t stride = stride_word(state);
    if (stride != 1) return fill_strided(state, n, x, uint64_t(stride));

    int64_t position = state[at_position], i = 0;
    // The rest of the current block, straight from the state.
    for (; position < N && i < n; ++i, ++position)
        x[i] = to_uniform(temper(uint32_t(state[at_mt + position])));
    if (i < n) {
        // Whole blocks: regenerate a local 32-bit copy and convert from it
        // in one tight loop per block.
        uint32_t mt[N];
        for (int k = 0; k < N; ++k) mt[k] = uint32_t(state[at_mt + k]);
        while (i < n) {
            regenerate(mt);
            const int64_t take = std::min<int64_t>(N, n - i);
            double *const out = x + i;
            for (int64_t k = 0; k < take; ++k) out[k] = to_uniform(temper(mt[k]));
            i += take;
            position = take;
        }
        for (int k = 0; k < N; ++k) state[at_mt + k] = mt[k];
    }
    state[at_position] = position;
}

// Stream k of n: the values k, k + n, k + 2n, ... of the stream as it
// stands.  A second partition of a partitioned state partitions its stream
// again (stride s n, first value k0 + (k - 1) s); a stride that would not
// fit in a state word is refused.
PartitionStatus leapfrog(int64_t *state, int64_t n, int64_t k) {
    const uint64_t stride = uint64_t(stride_word(state)), first = uint64_t(stream_word(state));
    const unsigned __int128 new_stride = (unsigned __int128)stride * uint64_t(n);
    const unsigned __int128 offset = (unsigned __int128)stride * uint64_t(k - 1);
    if (new_stride > uint64_t(INT64_MAX) || first + offset > uint64_t(INT64_MAX))
        return PartitionStatus::unsupported;
    advance(state, offset);
    stride_word(state) = int64_t(new_stride);
    stream_word(state) = int64_t(first + offset);
    return PartitionStatus::ok;
}

// A skip counts values of the stream the state delivers: after a leap-frog
// of stride s, skipping n moves n s values along the plain stream.  Only the
// full form has the words reserved for a jump; the short form is refused for
// every n, so that whether a skip works does not depend on its size.
PartitionStatus skip(int64_t *state, int64_t n) {
    if (!is_full(state)) return PartitionStatus::state_too_small;
    advance(state, (unsigned __int128)uint64_t(n) * uint64_t(stride_word(state)));
    return PartitionStatus::ok;
}

// 2^e values: as a skip while 2^e s fits in 128 bits, beyond that e
// squarings of x^s (reduced to e mod 19937; see square_times).
PartitionStatus skip_power_of_two(int64_t *state, int64_t e) {
    if (!is_full(state)) return PartitionStatus::state_too_small;
    const uint64_t stride = uint64_t(stride_word(state));
    if (e <= 63) {
        advance(state, (unsigned __int128)stride << e);
    } else {
        Poly g = power_of_x(stride);
        square_times(g, e);
        apply(state, g);
    }
    return PartitionStatus::ok;
}

}  // namespace

// Jumps a full-form state `high 2^64 + low` values of the plain stream
// through the polynomial whatever the count (g05kj steps short skips); for
// tests that compare the two ways.
void mersenne_twister_jump(int64_t *state, uint64_t high, uint64_t low) {
    const unsigned __int128 count = (unsigned __int128)high << 64 | low;
    if (count && is_full(state)) apply(state, power_of_x(count));
}

extern const Generator mersenne_twister_generator = {mersenne_twister, check_value, seed, length_ok, fill,
                                                     leapfrog, skip, skip_power_of_two};

}  // namespace kor::rng
