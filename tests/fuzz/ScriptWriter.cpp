// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptWriter.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

const int deepest = 6;

template <typename T>
const T &anyOf(const QList<T> &list, QRandomGenerator *random)
{
    return list.at(random->bounded(list.size()));
}

QString referenceTo(const QString &object, const QString &name, const QStringList &types, QRandomGenerator *random)
{
    if (random->bounded(4) > 0)
        return object + '.' + name;
    return QString("%1[\"%2(%3)\"]").arg(object, name, types.join(','));
}

} // namespace

/// Where the writer is in a script.
struct ScriptWriter::Writing
{
    QRandomGenerator *random;
    int depth = 0;
    bool isRepeated = false; ///< what is written is run more than once
};

ScriptWriter::ScriptWriter(const QString &rules, const QStringList &members)
{
    QString name;
    const QStringList lines = rules.split('\n');
    for (const QString &line : lines) {
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        if (line.startsWith(' '))
            addForm(line.trimmed(), name);
        else
            name = line;
    }
    for (const QString &member : members)
        addMember(member);
    if (m_methods.isEmpty() || m_properties.isEmpty())
        qFatal("The script objects have no members");
}

void ScriptWriter::addForm(const QString &line, const QString &name)
{
    static const QRegularExpression weighted("^(\\d+)\\* (.*)$");
    const QRegularExpressionMatch match = weighted.match(line);
    const int weight = match.hasMatch() ? match.captured(1).toInt() : 1;
    for (int i = 0; i < weight; ++i)
        m_rules[name] += match.hasMatch() ? match.captured(2) : line;
}

void ScriptWriter::addMember(const QString &member)
{
    static const QRegularExpression method("^(\\w+)\\.(\\w+)\\((.*)\\)$");
    const QRegularExpressionMatch match = method.match(member);
    if (match.hasMatch())
        m_methods += {match.captured(1), match.captured(2), match.captured(3).split(',', Qt::SkipEmptyParts)};
    else
        m_properties += member;
    const QString object = member.section('.', 0, 0);
    if (!m_objects.contains(object))
        m_objects += object;
}

QString ScriptWriter::script(QRandomGenerator &random) const
{
    return ofRule("script", {&random});
}

QString ScriptWriter::ofRule(const QString &name, const Writing &writing) const
{
    const QStringList forms = m_rules.value(name);
    if (forms.isEmpty())
        qFatal("There is no rule for @%s", qPrintable(name));
    // Too deep, a form without names or else the first one comes to an end soonest.
    if (writing.depth > deepest) {
        const QStringList plain = forms.filter(QRegularExpression("^[^@]*$"));
        return plain.isEmpty() ? expanded(forms.first(), writing) : anyOf(plain, writing.random);
    }
    return expanded(anyOf(forms, writing.random), writing);
}

QString ScriptWriter::expanded(const QString &form, Writing writing) const
{
    static const QRegularExpression place("@([A-Za-z]\\w*)");
    ++writing.depth;
    QString result;
    Method method;
    int end = 0;
    for (auto match = place.match(form); match.hasMatch(); match = place.match(form, end)) {
        const QString name = match.captured(1);
        result += form.midRef(end, match.capturedStart() - end);
        end = match.capturedEnd();
        if (name == "object") {
            result += anyOf(m_objects, writing.random);
        } else if (name == "property") {
            result += anyOf(m_properties, writing.random);
        } else if (name == "method") {
            method = anyOf(m_methods, writing.random);
            result += referenceTo(method.object, method.name, method.types, writing.random);
        } else if (name == "arguments") {
            result += argumentsOf(method, writing);
        } else if (name == "heavy" && writing.isRepeated) {
            result += '0';
        } else {
            result += ofRule(name, {writing.random, writing.depth, writing.isRepeated || name == "function"});
        }
    }
    return result + form.mid(end);
}

// Mostly all but one as they should be: the engine looks no further than the first that it refuses.
QString ScriptWriter::argumentsOf(const Method &method, const Writing &writing) const
{
    QStringList types = method.types;
    const int hostile = types.isEmpty() ? 0 : writing.random->bounded(types.size());
    switch (writing.random->bounded(8)) {
    case 0:
        break;
    case 1:
        std::fill(types.begin(), types.end(), "value");
        break;
    case 2:
        types = types.mid(0, hostile);
        break;
    case 3:
        types += {"value", "value"};
        break;
    default:
        if (!types.isEmpty())
            types[hostile] = "value";
    }
    QStringList arguments;
    for (const QString &type : std::as_const(types))
        arguments += ofRule(type, writing);
    return arguments.join(", ");
}
