// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "tests/support/HostedPlugin.h"

#include <QString>
#include <QStringList>

/// Calls that script objects refuse, made often enough for the engine's compiler, and in all ways in which a call may
/// be the last thing that a function does.
namespace RefusedCalls {

const int times = 1500;

/// Of the engine that pages find.
inline QStringList ways()
{
    QStringList ways = {"%1(%2)", "%1.call(%3)", "apply(%1, null, [%2])",
                        "(function () { 'use strict'; return %1(%2); })()",
                        "(function () { 'use strict'; return apply(%1, null, [%2]); })()"};
    if (!HostedPlugin::hasBoxEngine())
        ways << "%1.bind(%3)()"
             << "boundApply(%1, null, [%2])"
             << "Reflect.apply(%1, null, [%2])";
    return ways;
}

/// A script that gives how many of the calls were refused. In arguments, posing(tag) is an object that looks like one
/// of another class, where the engine has such, and tooLong a list of more entries than are taken.
inline QString script(const QString &call, const QString &way)
{
    const int bracket = call.indexOf('(');
    const QString method = call.left(bracket);
    const QString arguments = call.mid(bracket + 1).chopped(1);
    const QString onNothing = arguments.isEmpty() ? "null" : "null, " + arguments;
    return QString("(function () { var bind = Function.prototype.bind;"
                   "function apply(f, self, list) { return Function.prototype.apply.call(f, self, list); }"
                   "var boundApply = bind && Function.prototype.call.bind(Function.prototype.apply);"
                   "function posing(tag) { var object = {}; if (typeof Symbol !== 'undefined')"
                   "object[Symbol.toStringTag] = tag; return object; }"
                   "var tooLong = new Array(100001), refused = 0; for (var i = 0; i < %1; ++i) {"
                   "try { %2; } catch (error) { ++refused; } } return refused; })()")
        .arg(times)
        .arg(QString(way).arg(method, arguments, onNothing));
}

} // namespace RefusedCalls
