// The version as a text in the module's file, for whoever looks into it.
#include <nvsupport/nvsupport.h>

[[gnu::used]] static constexpr char version[] = "nvsupport " NVSUPPORT_VERSION;
