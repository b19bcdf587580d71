// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QStringList>
#include <QVector>

/// The whole interface for pages: what script objects there are, and what each has. This is the one list of it, which
/// the plugin's meta-objects, pages and the references are compared with.
namespace ScriptApi {

struct Object
{
    QString name;
    QString className;
    QStringList announcements; ///< its signals, "result Name(type name)"
    QStringList methods;       ///< its slots, the same, in their order
    QStringList properties;    ///< in their order; all are texts
    bool hasWritableProperties = false;
    QStringList additions = {}; ///< "Name(argument)", methods that the browser adds in a page
    QString events = {};        ///< the types of those that a page hears of through it
};

const QVector<Object> &objects();

} // namespace ScriptApi
