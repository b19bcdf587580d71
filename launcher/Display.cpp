// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Display.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <cstddef>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// A name that begins with @ is an abstract one.
bool answers(const QByteArray &socketName)
{
    sockaddr_un address = {};
    if (socketName.size() >= int(sizeof address.sun_path))
        return false;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, socketName.constData(), size_t(socketName.size()));
    size_t length = offsetof(sockaddr_un, sun_path) + size_t(socketName.size());
    if (socketName.startsWith('@'))
        address.sun_path[0] = '\0';
    else
        ++length;
    const int end = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool connected = connect(end, reinterpret_cast<const sockaddr *>(&address), socklen_t(length)) == 0;
    close(end);
    return connected;
}

bool isXServerReachable()
{
    static const QRegularExpression local("^(?:unix)?:(\\d+)(?:\\.\\d+)?$");
    const QString display = qEnvironmentVariable("DISPLAY");
    const QRegularExpressionMatch match = local.match(display);
    if (!match.hasMatch())
        return !display.isEmpty(); // on another machine, or forwarded from there
    const QByteArray name = "/tmp/.X11-unix/X" + match.captured(1).toLatin1();
    return answers(name) || answers('@' + name);
}

bool isWaylandReachable()
{
    const QString display = qEnvironmentVariable("WAYLAND_DISPLAY");
    const QString path = QDir(qEnvironmentVariable("XDG_RUNTIME_DIR", "/nonexistent")).absoluteFilePath(display);
    return !display.isEmpty() && answers(QFile::encodeName(path));
}

} // namespace

bool Display::isReachable()
{
    return qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || isXServerReachable() || isWaylandReachable();
}

QString Display::platform()
{
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        return qEnvironmentVariable("QT_QPA_PLATFORM");
    return isXServerReachable() ? "xcb" : "wayland";
}

bool Display::isInstalled(const QString &platform)
{
    // Options may follow the name, and other platforms to try.
    static const QRegularExpression end("[:;]");
    const QString name = platform.section(end, 0, 0);
    QStringList folders = {qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH")};
    const QStringList pluginFolders = QCoreApplication::libraryPaths();
    for (const QString &path : pluginFolders)
        folders << path + "/platforms";
    for (const QString &folder : qAsConst(folders)) {
        if (!folder.isEmpty() && !QDir(folder).entryList({"libq" + name + ".so", "libq" + name + "-*.so"}).isEmpty())
            return true;
    }
    return false;
}
