// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "KeyScript.h"

#include <QRegularExpression>
#include <QStringList>

namespace {

const int timeBetweenKeys = 100; // ms
const int longestRepeat = 10000;

using Steps = QList<KeyScript::Step>;

bool appendPause(const QString &word, Steps *steps)
{
    static const QRegularExpression form("^wait:(\\d{1,7})$");
    const QRegularExpressionMatch match = form.match(word);
    if (match.hasMatch())
        steps->append({word, std::nullopt, match.captured(1).toInt()});
    return match.hasMatch();
}

bool appendText(const QString &word, Steps *steps)
{
    const QString prefix = "text:";
    if (!word.startsWith(prefix) || word == prefix)
        return false;
    const QString text = word.mid(prefix.size());
    for (const QChar character : text)
        steps->append({prefix + character, Key::typing(character), timeBetweenKeys});
    return true;
}

bool appendKey(const QString &word, Steps *steps)
{
    static const QRegularExpression form("^(.+?)(?:\\*(\\d{1,5}))?$");
    const QRegularExpressionMatch match = form.match(word);
    const std::optional<Key> key = Key::named(match.captured(1));
    const int times = match.capturedLength(2) > 0 ? match.captured(2).toInt() : 1;
    if (!key || times > longestRepeat)
        return false;
    for (int i = 0; i < times; ++i)
        steps->append({match.captured(1), key, timeBetweenKeys});
    return true;
}

} // namespace

std::optional<QList<KeyScript::Step>> KeyScript::parse(const QString &text, QString *error)
{
    Steps steps;
    static const QRegularExpression blanks("\\s+");
    const QStringList words = text.split(blanks, Qt::SkipEmptyParts);
    for (const QString &word : words) {
        if (!appendPause(word, &steps) && !appendText(word, &steps) && !appendKey(word, &steps)) {
            *error = QString("--keys \"%1\" is not the name of a key, \"text:...\" or \"wait:500\"").arg(word);
            return std::nullopt;
        }
    }
    return steps;
}

KeyScript::KeyScript(const QList<Step> &steps, QObject *parent)
    : QObject(parent)
    , m_steps(steps)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &KeyScript::next);
}

void KeyScript::start()
{
    if (m_started)
        return;
    m_started = true;
    m_timer.start(timeBetweenKeys);
}

QString KeyScript::remaining() const
{
    QStringList sources;
    for (const Step &step : m_steps)
        sources += step.source;
    return sources.join(' ');
}

void KeyScript::next()
{
    if (m_steps.isEmpty())
        return;
    const Step step = m_steps.takeFirst();
    // Before the key is sent: it may open a dialog, which returns when the keys to come have closed it.
    m_timer.start(step.pause);
    if (step.key)
        emit pressed(*step.key);
}
