// Polynomials in Bernstein form on [0, 1] and all their roots.
// Internal to the kernel: knows no curves.
#pragma once

#include <vector>

namespace tarnex::kernel {

using Bernstein = std::vector<double>;  // coefficients; one more than the degree

[[nodiscard]] double valueAt(const Bernstein& f, double u);
[[nodiscard]] Bernstein derivativeOf(const Bernstein& f);
[[nodiscard]] Bernstein product(const Bernstein& f, const Bernstein& g);
// f * a + g * b, both of the same degree.
[[nodiscard]] Bernstein sum(const Bernstein& f, double a, const Bernstein& g, double b);

// Every root in [0, 1], ascending. A stretch on which |f| stays within `zero` counts as one root, so a
// contact within the tolerance is found and two roots that rounding has torn apart are one. Nothing for f
// that is zero throughout.
[[nodiscard]] std::vector<double> rootsOf(const Bernstein& f, double zero);

}  // namespace tarnex::kernel
