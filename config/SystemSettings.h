// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QLocale>
#include <QXmlStreamReader>

// The box's system settings file, which other programs write and this one only reads. Nothing is cached: each question
// opens the file anew.
namespace Common {

/// Reads one value from a settings file. One is made for each question.
class CSettingsParser : public QXmlStreamReader
{
public:
    /// The value of key in section, a null text if there is none. device is open and not owned.
    QString parse(QIODevice *device, const QString &section, const QString &key);

    /// What was wrong with the XML, and where.
    QString errorString() const;

private:
    bool goToChild(const QString &name);
};

/// The value of key in section of the system settings file, a null text if there is none.
QString settingsValue(const QString &section, const QString &key);

/// QLocale::Russian, or QLocale::English for everything else.
QLocale::Language getCurrentLanguage();

/// 1440 in standard definition, or 1920.
int getDisplayMode();

} // namespace Common
