/* Proves that the public header compiles as C and that its records have the layout that hosts rely on. */
#include <nvsupport/nvsupport_module.h>

_Static_assert(sizeof(bool) == 1, "bool results are one byte");
_Static_assert(sizeof(MapShopPoint) == 16, "area point");
_Static_assert(sizeof(MapShopItem) == 1308, "map shop record");
_Static_assert(sizeof(WebProgressCounters) == 16, "progress counters");

/* Each function type is that of its function. */
const NVSupportModule asLinked = {
    NULL,
    x3e491215,
    x0d83f18d,
    x2ed7465a,
    xff99a5e4,
    NSMapShopSearch,
    NSMapShopGetNext,
    NSMapShopClose,
    NSDownloadWebFileProgress,
    x77fc64c7,
    xfa704a3f,
};
