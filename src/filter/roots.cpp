// Zeros and poles of a transfer function: the roots of its numerator and
// denominator, found as the eigenvalues of their companion matrices (as
// numpy.roots does; Golub & Van Loan, Matrix Computations, 4th ed., 7.4.6),
// with Eigen's real Schur decomposition.

#include <Eigen/Eigenvalues>

#include <cmath>
#include <stdexcept>

#include "filter/descriptions.h"

namespace FilterState::IIR {

namespace {

// The roots of c[0] x^n + c[1] x^(n-1) + ... + c[n]. Leading zero
// coefficients lower the degree; trailing ones are roots at 0, taken out
// before the eigenvalues so that they come out exact.
std::vector<Complex> roots(const std::vector<double>& c) {
    for (double v : c)
        if (!std::isfinite(v)) throw std::invalid_argument("");
    size_t first = 0, end = c.size();
    while (first < end && c[first] == 0.0) ++first;
    while (end > first && c[end - 1] == 0.0) --end;
    std::vector<Complex> found(c.size() - (first == end ? c.size() : end), 0.0);
    const Eigen::Index n = Eigen::Index(end - first) - 1;
    if (n < 1) return found;
    // The companion matrix: the monic polynomial's negated coefficients in
    // the first row, ones below the diagonal.
    Eigen::MatrixXd companion = Eigen::MatrixXd::Zero(n, n);
    for (Eigen::Index j = 0; j < n; ++j) companion(0, j) = -c[first + size_t(j) + 1] / c[first];
    for (Eigen::Index i = 1; i < n; ++i) companion(i, i - 1) = 1.0;
    if (!companion.allFinite()) throw std::invalid_argument("");
    Eigen::EigenSolver<Eigen::MatrixXd> solver(companion, false);
    if (solver.info() != Eigen::Success) throw std::invalid_argument("");
    for (Eigen::Index i = 0; i < n; ++i) found.push_back(solver.eigenvalues()[i]);
    return found;
}

} // namespace

ZPK to_zpk(const TF& tf) {
    if (tf.b.empty() || tf.a.empty()) throw std::invalid_argument("");
    return {roots(tf.b), roots(tf.a), tf.b[0] / tf.a[0]};
}

} // namespace FilterState::IIR
