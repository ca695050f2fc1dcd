// Bernstein polynomials. Roots are found between the roots of the derivative, where the polynomial is
// monotone, so that none is missed and none is found twice.
#include "host/geometry/bernstein.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarnex::kernel {

namespace {

constexpr std::size_t kHighest = 76;  // degree: three times that of the highest NURBS, and a little

constexpr auto kBinomials = [] {
  std::array<std::array<double, kHighest + 1>, kHighest + 1> rows{};
  for (std::size_t n = 0; n <= kHighest; ++n) {
    rows[n][0] = rows[n][n] = 1;
    for (std::size_t k = 1; k < n; ++k) rows[n][k] = rows[n - 1][k - 1] + rows[n - 1][k];
  }
  return rows;
}();

// f changes sign between from and to and is monotone there.
double rootBetween(const Bernstein& f, double from, double to) {
  const bool rising = valueAt(f, from) < 0;
  const Bernstein slope = derivativeOf(f);
  double u = (from + to) / 2;
  for (int i = 0; i < 100; ++i) {
    const double v = valueAt(f, u);
    if (v == 0) return u;
    ((v < 0) == rising ? from : to) = u;
    const double newton = u - v / valueAt(slope, u);
    // Newton while it stays inside, halving every fourth step so that the bracket closes in any case.
    const double next = newton > from && newton < to && i % 4 != 3 ? newton : (from + to) / 2;
    if (next == u || to - from <= 1e-16 || std::abs(next - u) <= 1e-17) return next;
    u = next;
  }
  return u;
}

}  // namespace

double valueAt(const Bernstein& f, double u) {
  // Horner's scheme on the form with binomials, from the nearer end.
  const std::size_t n = f.size() - 1;
  const bool far = u > 0.5;
  const double near = far ? u : 1 - u, s = (1 - near) / near;
  const auto& binomial = kBinomials[n];
  double power = 1, scale = 1, value = 0;
  for (std::size_t k = 0; k <= n; ++k) {
    value += f[far ? n - k : k] * binomial[k] * power;
    power *= s;
    if (k > 0) scale *= near;
  }
  return value * scale;
}

Bernstein derivativeOf(const Bernstein& f) {
  const std::size_t n = f.size() - 1;
  Bernstein d(n);
  for (std::size_t k = 0; k < n; ++k) d[k] = static_cast<double>(n) * (f[k + 1] - f[k]);
  return d;
}

Bernstein product(const Bernstein& f, const Bernstein& g) {
  const std::size_t m = f.size() - 1, n = g.size() - 1;
  const auto &bm = kBinomials[m], &bn = kBinomials[n], &all = kBinomials[m + n];
  Bernstein out(m + n + 1, 0.0);
  for (std::size_t i = 0; i <= m; ++i) {
    for (std::size_t k = 0; k <= n; ++k) out[i + k] += bm[i] * f[i] * bn[k] * g[k];
  }
  for (std::size_t i = 0; i <= m + n; ++i) out[i] /= all[i];
  return out;
}

Bernstein sum(const Bernstein& f, double a, const Bernstein& g, double b) {
  Bernstein out(f.size());
  for (std::size_t i = 0; i < f.size(); ++i) out[i] = a * f[i] + b * g[i];
  return out;
}

std::vector<double> rootsOf(const Bernstein& f, double zero) {
  std::vector<double> roots;
  if (f.size() < 2) return roots;
  const auto [low, high] = std::ranges::minmax(f);
  if (!(low <= zero && high >= -zero)) return roots;
  if (low >= -zero && high <= zero) return roots;
  std::vector<double> stops = rootsOf(derivativeOf(f), 0);
  stops.insert(stops.begin(), 0.0);
  stops.push_back(1.0);
  double last = valueAt(f, 0);
  double nearest = zero;  // least |f| in the present run of stops within `zero`
  bool running = false;
  for (std::size_t i = 0; i < stops.size(); ++i) {
    const double v = i == 0 ? last : valueAt(f, stops[i]);
    const bool within = std::abs(v) <= zero;
    if (within && !running) {
      roots.push_back(stops[i]);
      nearest = std::abs(v);
    } else if (within && std::abs(v) < nearest) {
      roots.back() = stops[i];
      nearest = std::abs(v);
    } else if (!within && !running && i > 0 && (v < 0) != (last < 0)) {
      roots.push_back(rootBetween(f, stops[i - 1], stops[i]));
    }
    running = within;
    last = v;
  }
  return roots;
}

}  // namespace tarnex::kernel
