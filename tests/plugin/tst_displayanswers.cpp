// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/BoxFile.h"

#include "jsapi/StbDisplay.h"

#include <QFile>
#include <QtTest>

// What StbDisplay answers to callers in C++, who see more of a type than pages do.
class TestDisplayAnswers : public QObject
{
    Q_OBJECT

private slots:
    void severalTextsAreVariantLists();
};

// A page sees an array either way; callers in C++ ask for the type.
void TestDisplayAnswers::severalTextsAreVariantLists()
{
    writeBoxFile("/mnt/stb/dir/file", "");
    const QString script = "/usr/local/bin/custom/lines";
    writeBoxFile(script, "#!/bin/sh\necho a; echo b >&2\n");
    QVERIFY(QFile::setPermissions(fromOutside(script), QFile::ReadOwner | QFile::ExeOwner));

    KavroJS::StbDisplay display;
    const QVariantMap outcome = display.ExecBlocking("lines", "").toMap();
    const QPair<QVariant, QVariantList> answers[] = {{display.ListFiles("dir"), {"file"}},
                                                     {display.ListFiles("none"), {}},
                                                     {display.ListDirs("dir"), {".", ".."}},
                                                     {outcome["stdout"], {"a"}},
                                                     {outcome["stderr"], {"b"}}};
    for (const auto &[answer, expected] : answers) {
        QCOMPARE(answer.type(), QVariant::List); // a variant would compare as equal to one of another type
        QCOMPARE(answer.toList(), expected);
    }
}

QTEST_MAIN(TestDisplayAnswers)

#include "tst_displayanswers.moc"
