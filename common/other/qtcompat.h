// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The one place that knows toolkit versions: boxes run Qt 4.7, the desk box Qt 5.15.

#pragma once

#include <QMetaObject>
#include <QMetaType>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QTimer>
#include <QtPlugin>

#include <cstdlib>

#if QT_VERSION >= 0x050000
/// Stands in the class that is the plugin's root object.
#define KAVRO_PLUGIN_ROOT Q_PLUGIN_METADATA(IID KAVRO_STB_INTERFACE_ID)
/// Stands once in a source file, after the class. Launchers of Qt 4 ask, before they load a plugin, whether both were
/// built alike, of a function that only Qt 4's own macro defines.
#define KAVRO_EXPORT_PLUGIN(className)                                                                                 \
    extern "C" Q_DECL_EXPORT const char *qt_plugin_query_verification_data()                                           \
    {                                                                                                                  \
        return "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.7.0\ndebug=false\nbuildkey=" KAVRO_PLUGIN_BUILD_KEY;    \
    }
#else
#define KAVRO_PLUGIN_ROOT
#define KAVRO_EXPORT_PLUGIN(className) Q_EXPORT_PLUGIN2(kavrostbbrowser, className)
#endif

namespace QtCompat {

/// Whether pages can crash the toolkit's web engine by what they pass to script objects, by workers and by editing.
/// That of Qt 4 can take it.
const bool engineNeedsProtection = QT_VERSION >= 0x050000;

/// Whether reading a list of certificates takes as long as showing a page.
const bool readsCertificatesSlowly = QT_VERSION >= 0x050000;

/// Makes a copy of a class's meta-object that of a class derived from another one; from none, without it.
inline void setSuperClass(QMetaObject &metaObject, const QMetaObject *superClass)
{
    metaObject.d.superdata = superClass;
}

/// Allows TLS 1.0 only.
inline void setTls10(QSslConfiguration &configuration)
{
#if QT_VERSION >= 0x050000
    configuration.setProtocol(QSsl::TlsV1_0);
    // OpenSSL 3 refuses TLS 1.0 at its default security level.
    configuration.setBackendConfigurationOption("CipherString", QByteArray("DEFAULT@SECLEVEL=0"));
#else
    configuration.setProtocol(QSsl::TlsV1);
#endif
}

/// Whether who makes the request waits for its end inside createRequest.
inline bool isSynchronous(const QNetworkRequest &request)
{
#if QT_VERSION >= 0x050000
    return request.attribute(QNetworkRequest::SynchronousRequestAttribute).toBool();
#else
    Q_UNUSED(request)
    return false;
#endif
}

/// Takes a variable out of the environment, in turn with the toolkit's other uses of it where that is known.
inline void unsetEnvironment(const char *name)
{
#if QT_VERSION >= 0x050000
    qunsetenv(name);
#else
    unsetenv(name);
#endif
}

/// Has a timer keep to the millisecond, as timers of Qt 4 do; those of Qt 5 may fire a twentieth of their time early.
inline void makePrecise(QTimer &timer)
{
#if QT_VERSION >= 0x050000
    timer.setTimerType(Qt::PreciseTimer);
#else
    Q_UNUSED(timer)
#endif
}

/// Makes a type name known as another name of int.
inline void registerIntAlias(const char *name)
{
#if QT_VERSION >= 0x050000
    qRegisterMetaType<int>(name);
#else
    QMetaType::registerTypedef(name, QMetaType::Int);
#endif
}

} // namespace QtCompat
