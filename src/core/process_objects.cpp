// All process-wide objects, in the order in which they are made; they are destroyed in the reverse order. The headers
// of their owners declare them.
#include "account/service_manager.h"
#include "base/process_wide.h"
#include "language/translation_catalogue.h"
#include "platform/platform.h"
#include "ui/dialog.h"
#include "ui/exceptions.h"
#include "ui/instance_subclasser.h"
#include "ui/message.h"
#include "ui/placement.h"
#include "ui/window.h"
#include "webfile/web_file_connection.h"
#include "wire/serializable.h"

namespace nvsupport {

HINSTANCE g_moduleHandle = nullptr;
HINSTANCE resourceLibrary = nullptr;
StackOverflowException stackOverflowException;
MemoryException memoryException;

CSerializable::Type* serializableTypes = nullptr;
CSerializableList::ListType CSerializableList::cType;
CVServiceManager* g_serviceManager = nullptr;

namespace {

// What goes at unload, and at the end of a process without a call under way.
struct Objects {
  InstanceSubclasser subclasser{&Window::wndProc};
  std::string caption;
  std::map<std::uint32_t, POINT> positions;
  CTranslationCatalogue catalogue;
  platform::InternetHandle session{InternetOpenA("Norvane", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0)};
  // Last: calls the module's entry when everything above is made, and again before any of it is destroyed.
  platform::ModuleEntry entry;
};
base::ProcessWide<Objects> objects;

}  // namespace

// Bound before anything is constructed, so that the module's entry has them.
constinit InstanceSubclasser& windowSubclasser = (*objects).subclasser;
constinit std::string& messageCaption = (*objects).caption;
constinit std::map<std::uint32_t, POINT>& dialogPositions = (*objects).positions;
constinit CTranslationCatalogue& translations = (*objects).catalogue;
constinit platform::InternetHandle& webSession = (*objects).session;

}  // namespace nvsupport
