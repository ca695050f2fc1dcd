// The truth test against a plain drawing: contours and one compensation, no threading points.
// Knows no path entities; each path is matched to the contour that it runs beside.
#pragma once

#include "exchange/sections.h"

namespace tarnex::truth {

// `start` is where the wire begins, mm, drawing. Sides that a figure leaves open follow from nesting.
void checkPlain(Job& job, const std::vector<Section>& sections, AcGePoint2d start);

}  // namespace tarnex::truth
