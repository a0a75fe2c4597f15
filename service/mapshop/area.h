// Boxes of latitude and longitude, in degrees.
#ifndef NVSUPPORT_SERVICE_MAPSHOP_AREA_H
#define NVSUPPORT_SERVICE_MAPSHOP_AREA_H

namespace nvsupport::service {

inline constexpr double largestLatitude = 90;
// Beyond 180, so that a client can describe an area across the 180th meridian without a break.
inline constexpr double largestLongitude = 400;

struct Area {
  double south = 0;
  double west = 0;
  double north = 0;
  double east = 0;  // not below `west`; an area across the 180th meridian goes beyond 180
};

// True if the two have a point in common, edges included. Longitudes that differ by full turns are the same.
bool Intersects(const Area& a, const Area& b);

}  // namespace nvsupport::service

#endif
