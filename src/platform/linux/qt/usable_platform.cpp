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

// Each function whose name ends in Fault returns what is wrong, or an empty text.
QString XServerFault() {
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  const bool answers = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  if (answers) return {};
  const QString display = qEnvironmentVariable("DISPLAY");
  return display.isEmpty() ? QStringLiteral("DISPLAY is not set")
                           : QStringLiteral("no X server at DISPLAY=%1 lets this program in").arg(display);
}

QString WaylandFault() {
  if (qEnvironmentVariableIsSet("WAYLAND_SOCKET")) return {};  // an open connection that the parent process passed on
  QByteArray path = qgetenv("WAYLAND_DISPLAY");
  if (path.isEmpty()) return QStringLiteral("WAYLAND_DISPLAY is not set");
  if (!path.startsWith('/')) path = qgetenv("XDG_RUNTIME_DIR") + '/' + path;
  QString silent = QStringLiteral("no Wayland server answers at ") + QString::fromLocal8Bit(path);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (static_cast<std::size_t>(path.size()) >= sizeof address.sun_path) return silent;
  std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
  const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool answers =
      connection >= 0 && connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  if (connection >= 0) close(connection);
  return answers ? QString() : silent;
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

// Loads the plugin of the platform: its file may be there and still lack a library that it needs.
QString PluginFault(const QString& platform) {
  QString fault = QStringLiteral("Qt has no plugin for it in ") + PluginFolders().join(QLatin1Char(':'));
  for (const QString& folder : PluginFolders()) {
    for (const QFileInfo& file : QDir(folder).entryInfoList({QStringLiteral("*.so")}, QDir::Files)) {
      QPluginLoader plugin(file.filePath());
      if (!IsPluginFor(plugin, platform)) continue;
      if (plugin.load()) return {};
      fault = plugin.errorString();
    }
  }
  return fault;
}

QString FaultOf(const QString& platform) {
  QString fault;
  if (platform == QStringLiteral("xcb")) fault = XServerFault();
  if (platform.startsWith(QStringLiteral("wayland"))) fault = WaylandFault();
  return fault.isEmpty() ? PluginFault(platform) : fault;
}

}  // namespace

std::string WhyNoPlatform() {
  QString platforms = qEnvironmentVariable(platformVariable);
  if (platforms.isEmpty()) platforms = QStringLiteral("wayland;xcb");
  QStringList faults;
  for (const QString& entry : platforms.split(QLatin1Char(';'))) {
    const QString platform = entry.section(QLatin1Char(':'), 0, 0).trimmed();
    const QString fault = FaultOf(platform);
    if (fault.isEmpty()) return {};
    faults << platform + QStringLiteral(": ") + fault;
  }
  const bool chosen = qEnvironmentVariableIsSet(platformVariable);
  const QString wayOut = chosen ? QStringLiteral("name another platform in QT_QPA_PLATFORM, or take it away")
                                : QStringLiteral("start the host in a graphical session");
  return (faults.join(QStringLiteral(", ")) + QStringLiteral("; ") + wayOut).toStdString();
}

}  // namespace windowing
