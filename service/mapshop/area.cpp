#include "service/mapshop/area.h"

#include <cmath>

namespace nvsupport::service {

bool Intersects(const Area& a, const Area& b) {
  constexpr double turn = 360;
  if (a.north < b.south || b.north < a.south) return false;
  // The first turn that brings a's eastern edge to b's western edge or beyond is the only one to look at.
  const double turns = std::ceil((b.west - a.east) / turn);
  return a.west + turns * turn <= b.east;
}

}  // namespace nvsupport::service
