#include "service/mapshop/area.h"

#include <cmath>

namespace nvsupport::service {

bool Intersects(const Area& a, const Area& b) {
  constexpr double turn = 360;
  if (a.north < b.south || b.north < a.south) return false;
  // Turn a round the earth until its eastern edge reaches b's western edge: if they do not meet there, they never do.
  const double turns = std::ceil((b.west - a.east) / turn);
  return a.west + turns * turn <= b.east;
}

}  // namespace nvsupport::service
