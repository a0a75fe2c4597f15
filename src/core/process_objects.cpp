// All process-wide objects, in the order in which they come to life; they go in the reverse order. Their
// declarations stand in the headers of their owners.
#include "account/service_manager.h"
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
InstanceSubclasser windowSubclasser{&Window::wndProc};
std::string messageCaption;
std::map<std::uint32_t, POINT> dialogPositions;
CTranslationCatalogue translations;
platform::InternetHandle webSession{InternetOpenA("Norvane", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0)};
CVServiceManager* g_serviceManager = nullptr;

// Last: calls the module's entry when everything above lives, and again before any of it goes.
static const platform::ModuleEntry moduleEntry;

}  // namespace nvsupport
