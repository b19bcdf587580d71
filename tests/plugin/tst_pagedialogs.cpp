// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"

#include <QApplication>
#include <QLineEdit>
#include <QTimer>
#include <QtTest>

#include <memory>

namespace {

constexpr int mostThatIsShown = 2000; // characters

// Presses keys in the field of the next dialog that opens, and then one that ends it. Keeps what the field shows first.
class DialogUser : public QObject
{
public:
    DialogUser(const QList<int> &keys, Qt::Key end)
        : m_keys(keys)
        , m_end(end)
    {
        connect(&m_timer, &QTimer::timeout, this, &DialogUser::lookForDialog);
        m_timer.start(10);
    }

    QString shown() const { return m_shown; }

private:
    void lookForDialog()
    {
        QWidget *const dialog = QApplication::activeModalWidget();
        auto *const field = dialog ? dialog->findChild<QLineEdit *>() : nullptr;
        if (!field)
            return;
        m_timer.stop();
        m_shown = field->text();
        for (const int key : m_keys)
            QTest::keyClick(field, Qt::Key(key));
        QTest::keyClick(field, m_end);
    }

    const QList<int> m_keys;
    const Qt::Key m_end;
    QString m_shown;
    QTimer m_timer;
};

} // namespace

// What a page's prompt gives back, of a default that may be longer than a dialog shows.
class TestPageDialogs : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void aDefaultThatIsLeftAloneComesBackWhole_data();
    void aDefaultThatIsLeftAloneComesBackWhole();
    void anAnswerComesBackAsTyped_data();
    void anAnswerComesBackAsTyped();
    void whoLeavesADialogHasAnsweredNothing_data();
    void whoLeavesADialogHasAnsweredNothing();

private:
    QString result(const QString &script) { return m_session->run(script).result; }

    std::unique_ptr<ScriptSession> m_session;
};

void TestPageDialogs::initTestCase()
{
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
    result("function chars(text, count) { return new Array(count + 1).join(text); }");
}

void TestPageDialogs::aDefaultThatIsLeftAloneComesBackWhole_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("empty") << "''";
    QTest::newRow("short") << "'abc'";
    QTest::newRow("as long as is shown") << "chars('x', 2000)";
    QTest::newRow("one character more") << "chars('x', 2000) + 'y'";
    QTest::newRow("a million characters") << "chars('x', 1000000)";
    QTest::newRow("a million lines") << "chars('x\\n', 1000000)";
    QTest::newRow("lines and controls") << "'a\\nb\\r\\nc\\td\\u0001e\\u2028f' + chars('x', 2000)";
    QTest::newRow("short lines and controls") << "'a\\nb\\r\\nc\\td\\u0000e\\u2028f'";
    QTest::newRow("cut within a character") << "chars('x', 1999) + '\\ud83d\\ude00' + chars('y', 100)";
}

void TestPageDialogs::aDefaultThatIsLeftAloneComesBackWhole()
{
    QFETCH(const QString, value);
    const DialogUser user({}, Qt::Key_Return);
    QCOMPARE(result("var value = " + value + "; prompt('text', value) === value"), QString("true"));
    QCOMPARE(user.shown().size(), qMin(mostThatIsShown, result("value.length").toInt()));
}

void TestPageDialogs::anAnswerComesBackAsTyped_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<QString>("answer");
    QTest::newRow("a letter more") << QList<int>{Qt::Key_End, Qt::Key_X} << "chars('v', 2000) + 'x'";
    QTest::newRow("a letter in front") << QList<int>{Qt::Key_Home, Qt::Key_X} << "'x' + chars('v', 2000)";
    QTest::newRow("a letter less") << QList<int>{Qt::Key_End, Qt::Key_Backspace} << "chars('v', 1999)";
    // All of it is selected at first.
    QTest::newRow("another text") << QList<int>{Qt::Key_X} << "'x'";
    QTest::newRow("no text") << QList<int>{Qt::Key_Backspace} << "''";
}

void TestPageDialogs::anAnswerComesBackAsTyped()
{
    QFETCH(const QList<int>, keys);
    QFETCH(const QString, answer);
    const DialogUser user(keys, Qt::Key_Return);
    QCOMPARE(result("prompt('text', chars('v', 3000)) === " + answer), QString("true"));
}

void TestPageDialogs::whoLeavesADialogHasAnsweredNothing_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::newRow("at once") << QList<int>();
    QTest::newRow("after typing") << QList<int>{Qt::Key_X};
}

void TestPageDialogs::whoLeavesADialogHasAnsweredNothing()
{
    QFETCH(const QList<int>, keys);
    const DialogUser user(keys, Qt::Key_Escape);
    QCOMPARE(result("prompt('text', chars('v', 3000)) === null"), QString("true"));
}

QTEST_MAIN(TestPageDialogs)

#include "tst_pagedialogs.moc"
