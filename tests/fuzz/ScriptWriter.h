// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QHash>
#include <QRandomGenerator>
#include <QStringList>

/// Writes scripts by the rules of page/scripts.txt, which says what they are made of.
class ScriptWriter
{
public:
    /// members: of the script objects, such as "StbMedia.Stop(int)" and "StbMedia.onEvent". Rules that are wrong end
    /// the program with a message.
    ScriptWriter(const QString &rules, const QStringList &members);

    /// A script of the rule "script". The same numbers from random make the same script.
    QString script(QRandomGenerator &random) const;

private:
    struct Method
    {
        QString object;
        QString name;
        QStringList types; ///< of its parameters
    };

    struct Writing;

    void addForm(const QString &line, const QString &name);
    void addMember(const QString &member);
    QString expanded(const QString &form, Writing writing) const;
    QString ofRule(const QString &name, const Writing &writing) const;
    QString argumentsOf(const Method &method, const Writing &writing) const;

    QHash<QString, QStringList> m_rules;
    QStringList m_objects;
    QStringList m_properties;
    QList<Method> m_methods;
};
