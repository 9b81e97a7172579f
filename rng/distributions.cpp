// The variate routines of the g05s family beyond the uniform and the normal.
//
// Inversion methods (Cauchy, exponential, mixture of exponentials, logistic,
// lognormal, triangular, uniform, Weibull) fill x with n uniforms in one pass
// and rewrite it in place, one uniform per variate, so their output can be
// rebuilt from g05sa's.  Rejection methods (beta, gamma and what is built on
// it, von Mises) draw uniforms one at a time as their tests ask, so the
// state advances by exactly the values used and a stream split over several
// calls is the same stream.
//
// Every engine checks the state first, then its arguments in argument order;
// nothing is written and the state is not advanced until all checks pass.
// A rejection method that finds no acceptable trial for a variate within
// max_trials ends the routine with the variates before it in x.
// Degenerate parameters (a zero width or spread) give constant output
// without touching the state, as g05sk does for var = 0.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "g05sb_def.hpp"
#include "g05sc_def.hpp"
#include "g05sd_def.hpp"
#include "g05se_def.hpp"
#include "g05sf_def.hpp"
#include "g05sg_def.hpp"
#include "g05sh_def.hpp"
#include "g05sj_def.hpp"
#include "g05sl_def.hpp"
#include "g05sm_def.hpp"
#include "g05sn_def.hpp"
#include "g05sp_def.hpp"
#include "g05sq_def.hpp"
#include "g05sr_def.hpp"
#include "g05ss_def.hpp"
#include "rng/state.hpp"
#include "specfun/inverse_normal.hpp"

namespace kor {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double ln4 = 1.38629436111989061883;
constexpr double one_plus_ln5 = 2.60943791243410037460;
// The base generators may return exactly 0 (the basic generator rounds
// 2^60 - 2 to 0.0); a logarithm of it is taken at the smallest normalised
// double instead, the guard g05sk's inversion uses for its tails.
constexpr double smallest = DBL_MIN;

// ln u for a uniform u in [0, 1], finite at u = 0.
double log_uniform(double u) { return std::log(std::max(u, smallest)); }

// The most trials a rejection method makes for one variate.  A trial is
// accepted with probability p >= 0.95 by Marsaglia and Tsang's gamma method
// (shape >= 1, as its core always runs), p >= e/4 > 0.67 by Cheng's BB (his
// bound of 4/e trials per variate), p > 0.24 by his BC (the worst case: p
// falls to 1/4 as the smaller shape goes to 0) and p > 0.65 by Best and
// Fisher's von Mises method (0.66 for large κ).  So a sound stream needs
// more than 1000 trials with probability below 0.76^1000 < 1e-119: it never
// does.  A stream that does is degenerate (constant, say, after a leap-frog
// whose stride is a multiple of the period), and the routine reports that
// instead of drawing for ever.
constexpr int64_t max_trials = 1000;

// Uniforms one at a time, for methods that use as many as their tests ask.
// A method that meets max_trials calls give_up; the engine then reports it.
class Draw {
public:
    explicit Draw(int64_t *state) : state_(state) {}
    double operator()() {
        double u;
        rng::uniforms(state_, 1, &u);
        return u;
    }
    double give_up() {
        exhausted_ = true;
        return std::numeric_limits<double>::quiet_NaN();
    }
    bool exhausted() const { return exhausted_; }

private:
    int64_t *state_;
    bool exhausted_ = false;
};

// ---------------------------------------------------------------------------
// Gamma variates, Marsaglia and Tsang, "A simple method for generating gamma
// variables", ACM TOMS 26 (2000).  For shape s >= 1: d = s - 1/3,
// c = 1/sqrt(9d); a trial draws a normal z by inversion (one uniform) and,
// unless v = (1 + cz)^3 <= 0 ends it, one uniform U; it accepts d·v when
// U < 1 - 0.0331 z^4 (the squeeze) or ln U < z^2/2 + d(1 - v + ln v).  For
// s < 1, G(s) = G(s + 1)·U^(1/s) with one more uniform after the accepted
// trial.
class Gamma {
public:
    explicit Gamma(double shape) : boost_(shape < 1.0), inverse_shape_(1.0 / shape) {
        d_ = (boost_ ? shape + 1.0 : shape) - 1.0 / 3.0;
        c_ = 1.0 / std::sqrt(9.0 * d_);
    }

    bool boosted() const { return boost_; }

    // d·v of an accepted trial: a variate of shape s (s >= 1) or s + 1.
    double core(Draw &draw) const {
        for (int64_t trial = 0; trial < max_trials; ++trial) {
            const double z = specfun::inverse_normal(draw());
            double v = 1.0 + c_ * z;
            if (v <= 0.0) continue;
            v = v * v * v;
            const double u = draw();
            const double z2 = z * z;
            if (u < 1.0 - 0.0331 * z2 * z2) return d_ * v;
            if (log_uniform(u) < 0.5 * z2 + d_ * (1.0 - v + std::log(v))) return d_ * v;
        }
        return draw.give_up();
    }

    // ln of the boost factor U^(1/s), drawn after core (s < 1 only).
    double log_boost(Draw &draw) const { return log_uniform(draw()) * inverse_shape_; }

    // ln G: finite, even where G itself would underflow.
    double log_variate(Draw &draw) const {
        const double g = std::log(core(draw));
        return boost_ && !draw.exhausted() ? g + log_boost(draw) : g;
    }

    // scale·G, formed so that a large scale rescues what G alone would lose
    // to underflow.
    double variate(Draw &draw, double scale) const {
        const double g = core(draw);
        if (!boost_ || draw.exhausted()) return scale * g;
        const double t = log_boost(draw);
        if (t > -700.0) return scale * g * std::exp(t);
        return std::exp(std::log(scale) + std::log(g) + t);
    }

private:
    bool boost_;
    double inverse_shape_, d_, c_;
};

// ---------------------------------------------------------------------------
// Beta variates, R. C. H. Cheng, "Generating beta variates with nonintegral
// shape parameters", CACM 21 (1978): algorithm BB for min(a, b) > 1 and BC
// otherwise.  Each trial takes two uniforms; a first uniform of exactly 0 or
// 1 ends the trial, as its logit is infinite.  The squeeze constants are
// the exact values the published decimals round (ln 4 and 1 + ln 5); BC's
// early rejection bounds k1 and k2 keep the published decimals, which are
// on the safe side of the fractions 1/72, 1/24 and 7/9.
class Beta {
public:
    Beta(double a0, double b0) : bb_(std::min(a0, b0) > 1.0) {
        if (bb_) {
            a_ = std::min(a0, b0);
            b_ = std::max(a0, b0);
            alpha_ = a_ + b_;
            beta_ = std::sqrt((alpha_ - 2.0) / (2.0 * a_ * b_ - alpha_));
            gamma_ = a_ + 1.0 / beta_;
            swapped_ = a_ != a0;
        } else {
            a_ = std::max(a0, b0);
            b_ = std::min(a0, b0);
            alpha_ = a_ + b_;
            delta_ = 1.0 + a_ - b_;
            k1_ = delta_ * (0.0138889 + 0.0416667 * b_) / (a_ / b_ - 0.777778);
            k2_ = 0.25 + (0.5 + 0.25 / delta_) * b_;
            log_ratio_ = std::log(b_) - std::log(a_);
            log_alpha_over_a_ = std::log(alpha_) - std::log(a_);
            swapped_ = a_ != a0;
        }
    }

    double operator()(Draw &draw) const { return bb_ ? bb(draw) : bc(draw); }

private:
    double bb(Draw &draw) const {
        for (int64_t trial = 0; trial < max_trials; ++trial) {
            const double u1 = draw(), u2 = draw();
            if (!(u1 > 0.0 && u1 < 1.0)) continue;
            const double v = beta_ * std::log(u1 / (1.0 - u1));
            const double w = a_ * std::exp(v);
            const double z = u1 * u1 * u2;
            const double r = gamma_ * v - ln4;
            const double s = a_ + r - w;
            if (s + one_plus_ln5 < 5.0 * z) {
                const double t = log_uniform(z);
                if (s <= t && r + alpha_ * std::log(alpha_ / (b_ + w)) < t) continue;
            }
            return swapped_ ? b_ / (b_ + w) : w / (b_ + w);
        }
        return draw.give_up();
    }

    // With W = a·e^V, W/(b + W) is the logistic function of t = V - ln(b/a),
    // and ln(α/(b + W)) + V = ln(α/a) - ln(1 + e^-t): both are evaluated in
    // that form, which neither overflows nor cancels when the shapes are so
    // small that V runs to hundreds.
    double bc(Draw &draw) const {
        for (int64_t trial = 0; trial < max_trials; ++trial) {
            const double u1 = draw(), u2 = draw();
            if (!(u1 > 0.0 && u1 < 1.0)) continue;
            double z;
            bool squeezed = false;
            if (u1 < 0.5) {
                const double y = u1 * u2;
                z = u1 * y;
                if (0.25 * u2 + z - y >= k1_) continue;
            } else {
                z = u1 * u1 * u2;
                if (z <= 0.25) {
                    squeezed = true;
                } else if (z >= k2_) {
                    continue;
                }
            }
            const double v = std::log(u1 / (1.0 - u1)) / b_;
            const double t = v - log_ratio_;
            if (!squeezed && alpha_ * (log_alpha_over_a_ - softplus(-t)) - ln4 < log_uniform(z)) continue;
            return swapped_ ? logistic(-t) : logistic(t);
        }
        return draw.give_up();
    }

    static double softplus(double t) { return std::max(t, 0.0) + std::log1p(std::exp(-std::fabs(t))); }
    static double logistic(double t) {
        if (t >= 0.0) return 1.0 / (1.0 + std::exp(-t));
        const double e = std::exp(t);
        return e / (1.0 + e);
    }

    bool bb_;
    bool swapped_ = false;
    double a_ = 0, b_ = 0, alpha_ = 0, beta_ = 0, gamma_ = 0;
    double delta_ = 0, k1_ = 0, k2_ = 0, log_ratio_ = 0, log_alpha_over_a_ = 0;
};

// ---------------------------------------------------------------------------
// Von Mises variates, D. J. Best and N. I. Fisher, "Efficient simulation of
// the von Mises distribution", Applied Statistics 28 (1979).  The published
// steps, with τ = 1 + sqrt(1 + 4κ²), ρ = (τ - sqrt(2τ))/(2κ),
// r = (1 + ρ²)/(2ρ): z = cos(πU1), f = (1 + rz)/(r + z), c = κ(r - f);
// accept if c(2 - c) > U2 or ln(c/U2) + 1 - c >= 0; θ = ±arccos f with the
// sign from U3.  Written as they stand, f and c lose all accuracy for large
// κ (r - 1 is about 1/(2κ)) and overflow for small κ (r is about 1/κ).  The
// same quantities are formed here without cancellation: with
// s = sin(πU1/2), k = cos(πU1/2),
//   sin(θ/2) = s(1 - ρ)/sqrt((1 - ρ)² + 4ρk²),
//   c = κ(r - 1) + 2κ sin²(θ/2),   κ(r - 1) = (1 - ρ)²·κ/(2ρ),
// and ρ, 1 - ρ and κ/(2ρ) from forms free of differences of near numbers.
class VonMises {
public:
    explicit VonMises(double kappa) : kappa_(kappa) {
        const double h = std::hypot(1.0, 2.0 * kappa);  // sqrt(1 + 4κ²)
        const double tau = 1.0 + h;
        const double root_tau = std::sqrt(tau), root2 = std::sqrt(2.0);
        // τ - sqrt(2τ) = sqrt(τ)(τ - 2)/(sqrt(τ) + sqrt(2)), τ - 2 = 4κ²/(h + 1).
        rho_ = (2.0 * kappa / (h + 1.0)) * (root_tau / (root_tau + root2));
        // 1 - ρ = (sqrt(2τ) - 1 - 1/(h + 2κ))/(2κ), from 2κ - τ = -1 - 1/(h + 2κ);
        // for ρ < 1/2 the plain difference is as good and the form cancels.
        one_minus_rho_ = rho_ < 0.5 ? 1.0 - rho_ : (std::sqrt(2.0 * tau) - 1.0 - 1.0 / (h + 2.0 * kappa)) / (2.0 * kappa);
        const double kappa_over_2rho = (0.25 * (h + 1.0)) * ((root_tau + root2) / root_tau);
        kappa_r_minus_1_ = one_minus_rho_ * one_minus_rho_ * kappa_over_2rho;
    }

    double operator()(Draw &draw) const {
        for (int64_t trial = 0; trial < max_trials; ++trial) {
            const double half = 0.5 * pi * draw();
            const double s = std::sin(half), k = std::cos(half);
            const double denominator =
                std::sqrt(one_minus_rho_ * one_minus_rho_ + 4.0 * rho_ * k * k);
            const double q = std::min(1.0, s * one_minus_rho_ / denominator);  // sin(θ/2)
            const double c = kappa_r_minus_1_ + 2.0 * kappa_ * q * q;
            const double u2 = draw();
            if (!(c * (2.0 - c) > u2) && std::log(c / u2) + 1.0 - c < 0.0) continue;
            const double theta = 2.0 * std::asin(q);
            return draw() > 0.5 ? theta : -theta;
        }
        return draw.give_up();
    }

private:
    double kappa_, rho_, one_minus_rho_, kappa_r_minus_1_;
};

// The largest concentration accepted: beyond it κ(r - 1)'s factors leave
// the normalised range.
constexpr double von_mises_max_kappa = 1.0e300;

// Below this shape a visible share of gamma variates falls below DBL_MIN.
constexpr double gamma_small_shape = 0.01;

void fill(double *x, int64_t n, double value) {
    for (int64_t i = 0; i < n; ++i) x[i] = value;
}

}  // namespace

// ---------------------------------------------------------------------------
// Rejection methods

void g05sb::engine(frame::Record &rec, int64_t n, double a, double b, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (!(a > 0.0)) return rec.raise<Exit::a_not_positive>(a);
    if (!(b > 0.0)) return rec.raise<Exit::b_not_positive>(b);
    const Beta beta(a, b);
    Draw draw(state);
    for (int64_t i = 0; i < n; ++i) {
        const double v = beta(draw);
        if (draw.exhausted()) return rec.raise<Exit::no_acceptable_trial>(max_trials);
        x[i] = v;
    }
}

void g05sd::engine(frame::Record &rec, int64_t n, int64_t df, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (df < 1) return rec.raise<Exit::df_invalid>(df);
    const Gamma gamma(0.5 * double(df));
    Draw draw(state);
    for (int64_t i = 0; i < n; ++i) {
        const double v = gamma.variate(draw, 2.0);
        if (draw.exhausted()) return rec.raise<Exit::no_acceptable_trial>(max_trials);
        x[i] = v;
    }
}

void g05se::engine(frame::Record &rec, int64_t order, int64_t n, int64_t m, const double *a, int64_t *state,
                   double *x, int64_t pdx) {
    constexpr int64_t row_major = 1, column_major = 2;
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (order != row_major && order != column_major) return rec.raise<Exit::order_invalid>(order);
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (m < 1) return rec.raise<Exit::m_invalid>(m);
    for (int64_t j = 0; j < m; ++j)
        if (!(a[j] > 0.0)) return rec.raise<Exit::a_not_positive>();
    if (order == column_major && pdx < n) return rec.raise<Exit::pdx_below_n>(pdx, n);
    if (order == row_major && pdx < m) return rec.raise<Exit::pdx_below_m>(pdx, m);

    // Element j of row i.
    const int64_t row_step = order == row_major ? pdx : 1;
    const int64_t column_step = order == row_major ? 1 : pdx;
    if (m == 1) {
        for (int64_t i = 0; i < n; ++i) x[i * row_step] = 1.0;
        return;
    }
    std::vector<Gamma> gammas;
    gammas.reserve(size_t(m));
    for (int64_t j = 0; j < m; ++j) gammas.emplace_back(a[j]);
    Draw draw(state);
    for (int64_t i = 0; i < n; ++i) {
        double *row = x + i * row_step;
        // The logarithms first, held in the row itself; then scaled by the
        // largest, so the largest component is 1 before the division.
        double largest = -HUGE_VAL;
        for (int64_t j = 0; j < m; ++j) {
            const double g = gammas[size_t(j)].log_variate(draw);
            if (draw.exhausted()) return rec.raise<Exit::no_acceptable_trial>(max_trials);
            row[j * column_step] = g;
            largest = std::max(largest, g);
        }
        double sum = 0.0;
        for (int64_t j = 0; j < m; ++j) {
            double &g = row[j * column_step];
            g = std::exp(g - largest);
            sum += g;
        }
        for (int64_t j = 0; j < m; ++j) row[j * column_step] /= sum;
    }
}

void g05sh::engine(frame::Record &rec, int64_t n, int64_t df1, int64_t df2, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (df1 < 1) return rec.raise<Exit::df1_invalid>(df1);
    if (df2 < 1) return rec.raise<Exit::df2_invalid>(df2);
    const Gamma numerator(0.5 * double(df1)), denominator(0.5 * double(df2));
    const double log_ratio = std::log(double(df2)) - std::log(double(df1));
    Draw draw(state);
    for (int64_t i = 0; i < n; ++i) {
        const double g1 = numerator.log_variate(draw);
        const double g2 = draw.exhausted() ? g1 : denominator.log_variate(draw);
        if (draw.exhausted()) return rec.raise<Exit::no_acceptable_trial>(max_trials);
        x[i] = std::exp(g1 - g2 + log_ratio);
    }
}

void g05sj::engine(frame::Record &rec, int64_t n, double a, double b, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (!(a > 0.0)) return rec.raise<Exit::a_not_positive>(a);
    if (!(b > 0.0)) return rec.raise<Exit::b_not_positive>(b);
    const Gamma gamma(a);
    Draw draw(state);
    for (int64_t i = 0; i < n; ++i) {
        const double v = gamma.variate(draw, b);
        if (draw.exhausted()) return rec.raise<Exit::no_acceptable_trial>(max_trials);
        x[i] = v;
    }
    if (a < gamma_small_shape) rec.raise<Exit::a_small>(a);
}

void g05sn::engine(frame::Record &rec, int64_t n, int64_t df, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (df < 1) return rec.raise<Exit::df_invalid>(df);
    const Gamma gamma(0.5 * double(df));
    const double log_half_df = std::log(0.5 * double(df));
    Draw draw(state);
    for (int64_t i = 0; i < n; ++i) {
        const double z = specfun::inverse_normal(draw());
        const double log_g = gamma.log_variate(draw);
        if (draw.exhausted()) return rec.raise<Exit::no_acceptable_trial>(max_trials);
        // sqrt(df/(2G)) from ln G, so that a G lost to underflow cannot
        // turn z = 0 into 0·∞.
        x[i] = z * std::exp(0.5 * (log_half_df - log_g));
    }
}

void g05sr::engine(frame::Record &rec, int64_t n, double vk, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (!(vk > 0.0 && vk <= von_mises_max_kappa)) return rec.raise<Exit::vk_invalid>(vk);
    const VonMises von_mises(vk);
    Draw draw(state);
    for (int64_t i = 0; i < n; ++i) {
        const double v = von_mises(draw);
        if (draw.exhausted()) return rec.raise<Exit::no_acceptable_trial>(max_trials);
        x[i] = v;
    }
}

// ---------------------------------------------------------------------------
// Inversion methods: one uniform stage, then the transform in place.

void g05sc::engine(frame::Record &rec, int64_t n, double xmed, double semiqr, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (!(semiqr >= 0.0)) return rec.raise<Exit::semiqr_negative>(semiqr);
    if (semiqr == 0.0) return fill(x, n, xmed);
    rng::uniforms(state, n, x);
    for (int64_t i = 0; i < n; ++i) x[i] = xmed + semiqr * std::tan(pi * (x[i] - 0.5));
}

void g05sf::engine(frame::Record &rec, int64_t n, double a, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (!(a > 0.0)) return rec.raise<Exit::a_not_positive>(a);
    rng::uniforms(state, n, x);
    // ln u <= 0; its magnitude keeps u = 1 from giving -0.0.
    for (int64_t i = 0; i < n; ++i) x[i] = a * std::fabs(log_uniform(x[i]));
}

void g05sg::engine(frame::Record &rec, int64_t n, int64_t nmix, const double *a, const double *wgt,
                   int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (nmix < 1) return rec.raise<Exit::nmix_invalid>(nmix);
    for (int64_t j = 0; j < nmix; ++j)
        if (!(a[j] > 0.0)) return rec.raise<Exit::a_not_positive>(j, a[j], j + 1);
    double sum = 0.0;
    for (int64_t j = 0; j < nmix; ++j) {
        if (!(wgt[j] >= 0.0)) return rec.raise<Exit::wgt_negative>(j, wgt[j], j + 1);
        sum += wgt[j];
    }
    // Weights written to a few digits do not sum to 1 exactly; rounding in
    // the sum itself is up to nmix·ε, and 10 times that is allowed.
    if (!(std::fabs(sum - 1.0) <= 10.0 * double(nmix) * DBL_EPSILON / 2.0))
        return rec.raise<Exit::wgt_sum>(sum);

    // Cumulative weights divided by their sum, so the last is 1 up to
    // rounding.
    std::vector<double> cumulative(static_cast<size_t>(nmix));
    double running = 0.0;
    for (int64_t j = 0; j < nmix; ++j) {
        running += wgt[j];
        cumulative[size_t(j)] = running / sum;
    }
    int64_t last = nmix - 1;  // the last component with a positive share
    while (last > 0 && cumulative[size_t(last)] == cumulative[size_t(last - 1)]) --last;

    rng::uniforms(state, n, x);
    for (int64_t i = 0; i < n; ++i) {
        const double u = x[i];
        // The first component with C(j) >= u whose share is not empty.
        int64_t j = std::lower_bound(cumulative.begin(), cumulative.end(), u) - cumulative.begin();
        auto below = [&](int64_t k) { return k == 0 ? 0.0 : cumulative[size_t(k - 1)]; };
        while (j < nmix && cumulative[size_t(j)] == below(j)) ++j;
        if (j >= nmix) j = last;
        const double v = std::min(1.0, (u - below(j)) / (cumulative[size_t(j)] - below(j)));
        x[i] = a[j] * std::fabs(log_uniform(v));
    }
}

void g05sl::engine(frame::Record &rec, int64_t n, double a, double b, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (!(b >= 0.0)) return rec.raise<Exit::b_negative>(b);
    if (b == 0.0) return fill(x, n, a);
    rng::uniforms(state, n, x);
    for (int64_t i = 0; i < n; ++i) {
        const double u = x[i];
        const double upper = u < 1.0 ? std::log1p(-u) : std::log(smallest);  // ln(1 - u)
        x[i] = a + b * (log_uniform(u) - upper);
    }
}

void g05sm::engine(frame::Record &rec, int64_t n, double xmu, double var, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (!(std::exp(xmu) <= DBL_MAX)) return rec.raise<Exit::xmu_too_large>(xmu);
    if (!(var >= 0.0)) return rec.raise<Exit::var_negative>(var);
    if (var == 0.0) return fill(x, n, std::exp(xmu));
    rng::uniforms(state, n, x);
    const double sd = std::sqrt(var);
    for (int64_t i = 0; i < n; ++i) x[i] = std::exp(xmu + sd * specfun::inverse_normal(x[i]));
}

void g05sp::engine(frame::Record &rec, int64_t n, double xmin, double xmed, double xmax, int64_t *state,
                   double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (!(xmed >= xmin)) return rec.raise<Exit::xmed_below_xmin>(xmed, xmin);
    if (!(xmax >= xmed)) return rec.raise<Exit::xmax_below_xmed>(xmax, xmed);
    if (xmax == xmin) return fill(x, n, xmin);
    // Half widths never overflow, whatever the finite ends.
    const double half = 0.5 * xmax - 0.5 * xmin;
    const double c = (0.5 * xmed - 0.5 * xmin) / half, c_upper = (0.5 * xmax - 0.5 * xmed) / half;
    rng::uniforms(state, n, x);
    for (int64_t i = 0; i < n; ++i) {
        const double u = x[i];
        double v;
        if (u <= c) {
            const double t = half * std::sqrt(u * c);
            v = (xmin + t) + t;
        } else {
            const double t = half * std::sqrt((1.0 - u) * c_upper);
            v = (xmax - t) - t;
        }
        x[i] = std::min(xmax, std::max(xmin, v));
    }
}

void g05sq::engine(frame::Record &rec, int64_t n, double a, double b, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (!(a <= b)) return rec.raise<Exit::a_above_b>(a, b);
    if (a == b) return fill(x, n, a);
    const double half = 0.5 * b - 0.5 * a;
    rng::uniforms(state, n, x);
    for (int64_t i = 0; i < n; ++i) {
        const double t = half * x[i];
        x[i] = std::min(b, std::max(a, (a + t) + t));
    }
}

void g05ss::engine(frame::Record &rec, int64_t n, double a, double b, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (!(a > 0.0)) return rec.raise<Exit::a_not_positive>(a);
    if (!(b > 0.0)) return rec.raise<Exit::b_not_positive>(b);
    rng::uniforms(state, n, x);
    const double inverse_shape = 1.0 / a;
    for (int64_t i = 0; i < n; ++i) {
        const double e = std::fabs(log_uniform(x[i]));  // a standard exponential
        const double p = std::pow(e, inverse_shape);
        // A tiny shape can overflow the power where the scale brings the
        // product back into range.
        x[i] = std::isinf(p) ? std::exp(std::log(b) + std::log(e) * inverse_shape) : b * p;
    }
}

}  // namespace kor
