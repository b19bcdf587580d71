// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <QVariant>

class QIODevice;

/// Writes the trace of script calls, while a technician has switched it on.
class JsApiTracer
{
public:
    /// Whether trace lines are written.
    static bool isEnabled() { return debug_level > 0; }

    /// Writes one trace line if tracing is on.
    static void TRACE(const QString &text);

    /// Takes the level from the first line of the level file, which is open. What is no number changes nothing.
    static void readLevel(QIODevice &file);

    /// What the level file says; -1 without one.
    static int debug_level;
};

inline QString traceText(const QString &text)
{
    return text;
}
inline QString traceText(int number)
{
    return QString::number(number);
}
inline QString traceText(unsigned int number)
{
    return QString::number(number);
}
inline QString traceText(long long number)
{
    return QString::number(number);
}
inline QString traceText(double number)
{
    return QString::number(number, 'g', -1);
}
inline QString traceText(const QVariant &value)
{
    return value.toString();
}
template <typename T>
QString traceText(T *pointer) = delete;

/// The template (ASCII) with its places %1, %2, ... filled by the values, as many as there are places, in one pass:
/// what a value brings in is not looked at again.
template <typename... Values>
QString filled(const char *text, const Values &...values)
{
    return QString::fromLatin1(text).arg(traceText(values)...);
}

/// Writes one trace line: the template, filled by the arguments. Does nothing at all while tracing is off.
template <typename... Args>
void trace(const char *text, const Args &...args)
{
    if (JsApiTracer::isEnabled())
        JsApiTracer::TRACE(filled(text, args...));
}
inline void trace(const char *text)
{
    if (JsApiTracer::isEnabled())
        JsApiTracer::TRACE(QString::fromLatin1(text));
}
