// The version as a text in the module's file, where `strings` and similar tools find it.
#include <nvsupport/nvsupport.h>

[[gnu::used]] static constexpr char version[] = "nvsupport " NVSUPPORT_VERSION;
