#include "usable_platform.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QPluginLoader>
#include <QStringList>
#include <cstring>

namespace windowing {
namespace {

constexpr const char* platformVariable = "QT_QPA_PLATFORM";
constexpr const char* pluginPathVariable = "QT_QPA_PLATFORM_PLUGIN_PATH";

bool XServerAnswers() {
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  const bool answers = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  return answers;
}

bool WaylandServerAnswers() {
  if (qEnvironmentVariableIsSet("WAYLAND_SOCKET")) return true;  // a connection that the parent process made
  QByteArray path = qgetenv("WAYLAND_DISPLAY");
  if (path.isEmpty()) return false;
  if (!path.startsWith('/')) path = qgetenv("XDG_RUNTIME_DIR") + '/' + path;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (static_cast<std::size_t>(path.size()) >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
  const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (connection < 0) return false;
  const bool answers = connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(connection);
  return answers;
}

QStringList PluginFolders() {
  QStringList folders;
  if (qEnvironmentVariableIsSet(pluginPathVariable)) folders << qEnvironmentVariable(pluginPathVariable);
  for (const QString& path : QCoreApplication::libraryPaths()) folders << path + QStringLiteral("/platforms");
  return folders;
}

bool IsPluginFor(const QPluginLoader& plugin, const QString& platform) {
  const QJsonObject metaData = plugin.metaData().value(QStringLiteral("MetaData")).toObject();
  for (const QJsonValue key : metaData.value(QStringLiteral("Keys")).toArray()) {
    if (key.toString().compare(platform, Qt::CaseInsensitive) == 0) return true;
  }
  return false;
}

// Loads the platform's plugin, because one that is there can still lack a library that it needs.
bool PluginLoads(const QString& platform) {
  for (const QString& folder : PluginFolders()) {
    for (const QFileInfo& file : QDir(folder).entryInfoList({QStringLiteral("*.so")}, QDir::Files)) {
      QPluginLoader plugin(file.filePath());
      if (IsPluginFor(plugin, platform) && plugin.load()) return true;
    }
  }
  return false;
}

bool ServerAnswers(const QString& platform) {
  if (platform == QStringLiteral("xcb")) return XServerAnswers();
  if (platform.startsWith(QStringLiteral("wayland"))) return WaylandServerAnswers();
  return true;
}

}  // namespace

bool HasUsablePlatform() {
  QString platforms = qEnvironmentVariable(platformVariable);
  if (platforms.isEmpty()) platforms = QStringLiteral("wayland;xcb");
  for (const QString& entry : platforms.split(QLatin1Char(';'))) {
    const QString platform = entry.section(QLatin1Char(':'), 0, 0).trimmed();
    if (ServerAnswers(platform) && PluginLoads(platform)) return true;
  }
  return false;
}

}  // namespace windowing
