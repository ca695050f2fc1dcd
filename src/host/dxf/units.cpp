// Drawing units: the codes of $INSUNITS with their names and lengths.
// Knows nothing of how a drawing is scaled.
#include "host/dxf/units.h"

namespace tarnex {
namespace {

constexpr DrawingUnit kUnits[] = {
    {0, "unitless", 1, false},
    {1, "inches", 25.4, true},
    {2, "feet", 304.8, true},
    {3, "miles", 1609344, true},
    {4, "millimetres", 1, false},
    {5, "centimetres", 10, false},
    {6, "metres", 1000, false},
    {7, "kilometres", 1e6, false},
    {8, "microinches", 25.4e-6, true},
    {9, "mils", 25.4e-3, true},
    {10, "yards", 914.4, true},
    {11, "angstroms", 1e-7, false},
    {12, "nanometres", 1e-6, false},
    {13, "micrometres", 1e-3, false},
    {14, "decimetres", 100, false},
    {15, "decametres", 1e4, false},
    {16, "hectometres", 1e5, false},
    {17, "gigametres", 1e12, false},
    {18, "astronomical units", 149597870700e3, false},
    {19, "light years", 9460730472580800e3, false},
    {20, "parsecs", 3.0856775814913673e19, false},
    {21, "US survey feet", 1200000.0 / 3937, true},
    {22, "US survey inches", 100000.0 / 3937, true},
    {23, "US survey yards", 3600000.0 / 3937, true},
    {24, "US survey miles", 1200000.0 / 3937 * 5280, true},
};

}  // namespace

std::optional<DrawingUnit> drawingUnit(long long code) {
  for (const DrawingUnit& u : kUnits)
    if (u.code == code) return u;
  return std::nullopt;
}

std::optional<DrawingUnit> drawingUnitOf(double millimetres) {
  for (const DrawingUnit& u : kUnits)
    if (u.code != 0 && u.millimetres == millimetres) return u;
  return std::nullopt;
}

}  // namespace tarnex
