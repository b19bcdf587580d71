// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "tests/support/HostedPlugin.h"

#include <QMetaObject>
#include <QString>

/// The meta-object of the script object of that name in the plugin's page; null if there is none. Neither pages nor
/// launchers can get hold of the object itself.
const QMetaObject *scriptMetaObject(HostedPlugin *plugin, const QString &object);
