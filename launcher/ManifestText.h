// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

#include <optional>

/// The text of a plugin manifest, of which nothing changes but its home page element: the rest is its author's, to the
/// last blank.
class ManifestText
{
public:
    /// Finds the home page element. On failure errorString says what is wrong with the text.
    explicit ManifestText(const QString &text);

    bool isValid() const { return m_error.isEmpty(); }
    QString errorString() const { return m_error; }
    QString text() const { return m_text; }

    /// An attribute of the home page element; nothing if that, or the element, is missing.
    std::optional<QString> attribute(const QString &name) const;
    /// Sets an attribute, or takes it away; adds the element if there is none.
    void setAttribute(const QString &name, const std::optional<QString> &value);

private:
    struct Part
    {
        int begin = -1;
        int length = 0;
    };

    Part findAttribute(const QString &name) const;
    void addHomePage();

    QString m_text;
    QString m_error;
    Part m_homePage;   // the start tag
    int m_rootEnd = 0; // behind the root's last tag
};
