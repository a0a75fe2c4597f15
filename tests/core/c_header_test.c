/* Proves that the public header compiles as C and that its records have the layout that hosts rely on. */
#include <nvsupport/nvsupport.h>
#include <stddef.h>

_Static_assert(sizeof(bool) == 1, "bool results are one byte");
_Static_assert(sizeof(MapShopPoint) == 16, "area point");
_Static_assert(sizeof(MapShopItem) == 1308, "map shop record");
_Static_assert(offsetof(MapShopItem, title) == 4, "title");
_Static_assert(offsetof(MapShopItem, shortText) == 204, "short text");
_Static_assert(offsetof(MapShopItem, fileReference) == 304, "file reference");
_Static_assert(offsetof(MapShopItem, secondValue) == 1304, "second value");
_Static_assert(sizeof(WebProgressCounters) == 16, "progress counters");
