// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"

#include <QUndoStack>
#include <QWebPage>
#include <QWebView>
#include <QtTest>

#include <memory>

// Pages may have texts typed. What else the engine's editors can do ends the process, and is kept from pages.
class TestPageEditing : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void noEditEndsTheProcess_data();
    void noEditEndsTheProcess();
    void nothingIsUndone_data();
    void nothingIsUndone();
    void textsReachFieldsThatLostTheSelection_data();
    void textsReachFieldsThatLostTheSelection();
    void keysReachFieldsThatLostTheSelection();
    void commandsTypeAndNothingElse_data();
    void commandsTypeAndNothingElse();
    void keysType_data();
    void keysType();

private:
    QWebView *browser() const { return m_session->plugin().browser(); }
    QString result(const QString &script) { return m_session->run(script).result; }

    std::unique_ptr<ScriptSession> m_session;
};

void TestPageEditing::initTestCase()
{
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
    m_session->plugin().application()->show(); // for keys
}

void TestPageEditing::init()
{
    QVERIFY(m_session->plugin().loadHtml("<title>page</title>"));
}

void TestPageEditing::noEditEndsTheProcess_data()
{
    QTest::addColumn<QString>("markup");
    QTest::addColumn<QString>("script");
    const auto row = [](const char *name, const char *markup, const char *script) {
        QTest::newRow(name) << QString(markup) << QString(script);
    };
    row("list around a frame, undone", "<iframe src='about:blank'></iframe>",
        "command('insertOrderedList'); command('undo')");
    row("frame deleted, undone, deleted again", "<iframe src='about:blank'></iframe>",
        "command('delete'); command('undo'); command('redo')");
    row("list in a list with a style", "<ul><li><style>* { display: inline-block }</style></ul>",
        "command('insertOrderedList')");
    row("list of what can be folded", "<details><summary>a</summary>b</details><button>c</button>",
        "command('insertUnorderedList')");
    row("style after markup", "<blockquote type='cite'>a<br>b</blockquote><details><summary>a</summary>b</details>",
        "command('fontSize', ''); command('insertHTML', '<script></' + 'script>'); command('bold')");
}

void TestPageEditing::noEditEndsTheProcess()
{
    QFETCH(const QString, markup);
    QFETCH(const QString, script);
    m_session->run("function edit(page, place) {"
                   "function command(name, value) { page.execCommand(name, false, value); }"
                   "place.innerHTML = "
                   + ScriptSession::quoted(markup) + "; place.focus(); command('selectAll'); " + script
                   + "}"
                     "function editAll(page) {"
                     "var place = page.body.appendChild(page.createElement('div')); place.contentEditable = true;"
                     "edit(page, place); page.designMode = 'on'; edit(page, page.body); }"
                     "document.body.innerHTML = '<iframe></iframe>'; editAll(frames[0].document);");
    QCOMPARE(result("editAll(document); 'done'"), QString("\"done\""));
    QCoreApplication::processEvents();
    QCOMPARE(result("StbDisplay.APIVersion"), QString("\"v1.2\""));
}

void TestPageEditing::nothingIsUndone_data()
{
    QTest::addColumn<QString>("undo");
    QTest::newRow("by the page") << "document.execCommand('undo')";
    QTest::newRow("by a frame") << "frames[0].document.execCommand('undo')";
    QTest::newRow("by keys") << "";
}

void TestPageEditing::nothingIsUndone()
{
    QFETCH(const QString, undo);
    result("document.body.innerHTML = '<div contenteditable>a<iframe></iframe></div><iframe></iframe>';"
           "var place = document.body.firstChild; place.focus(); document.execCommand('selectAll');"
           "document.execCommand('delete')");
    QTest::keyClicks(browser(), "bc");
    QCOMPARE(browser()->page()->undoStack()->count(), 0);
    result(undo);
    QTest::keyClick(browser(), Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(browser(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(result("place.textContent + place.children.length"), QString("\"bc0\""));
}

void TestPageEditing::textsReachFieldsThatLostTheSelection_data()
{
    QTest::addColumn<QString>("loss");
    QTest::addColumn<QString>("value");
    QTest::newRow("focus elsewhere") << "document.querySelector('button').focus()"
                                     << "\"abxc\"";
    QTest::newRow("no focus") << "field.blur()"
                              << "\"abxc\"";
    QTest::newRow("no selection") << "document.execCommand('unselect')"
                                  << "\"xabc\"";
    QTest::newRow("all selected") << "field.blur(); document.execCommand('selectAll')"
                                  << "\"abxc\"";
    QTest::newRow("focus that goes on")
        << "field.blur(); field.onfocus = function () { document.execCommand('unselect'); "
           "document.querySelector('button').focus(); }"
        << "\"abc\"";
    QTest::newRow("not to be focused") << "field.blur(); field.disabled = true"
                                       << "\"abc\"";
    QTest::newRow("hidden") << "field.blur(); field.style.visibility = 'hidden'"
                            << "\"abc\"";
}

// As a page's own keyboard sends them.
void TestPageEditing::textsReachFieldsThatLostTheSelection()
{
    QFETCH(const QString, loss);
    for (const char *field : {"<input value='abc'>", "<textarea>abc</textarea>"}) {
        result("document.body.innerHTML = \"" + QString(field)
               + "<button>b</button>\";"
                 "var field = document.body.firstChild; field.focus(); field.setSelectionRange(2, 2);"
                 "var event = document.createEvent('TextEvent');"
                 "event.initTextEvent('textInput', true, true, window, 'x');"
               + loss);
        result("field.dispatchEvent(event)");
        QTEST(result("field.value"), "value");
    }
}

void TestPageEditing::keysReachFieldsThatLostTheSelection()
{
    result("document.body.innerHTML = '<input value=\"abc\"><p>def</p>'; var field = document.body.firstChild;"
           "field.focus(); find('e'); document.body.lastChild.contentEditable = true");
    QTest::keyClicks(browser(), "xy");
    QCOMPARE(result("field.value + document.body.textContent"), QString("\"xyabcdef\""));
}

void TestPageEditing::commandsTypeAndNothingElse_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("outcome");
    const auto row = [](const char *script, const char *outcome) {
        QTest::newRow(script) << QString(script) << QString(outcome);
    };
    row("document.execCommand('insertText', false, 'x')", "\"true x\"");
    row("document.execCommand('INSERTTEXT', false, 5)", "\"true 5\"");
    row("document.execCommand('delete')", "\"true \"");
    row("document.execCommand('forwardDelete', false)", "\"true \"");
    row("document.execCommand({toString: function () { return 'delete'; }})", "\"true \"");
    row("document.queryCommandEnabled('insertText')", "\"true abc\"");
    row("document.queryCommandSupported('delete')", "\"true abc\"");
    row("document.execCommand('bold')", "\"false abc\"");
    row("document.execCommand('undo')", "\"false abc\"");
    row("document.execCommand('toString')", "\"false abc\"");
    row("document.queryCommandEnabled('bold')", "\"false abc\"");
    row("document.queryCommandSupported('Undo')", "\"false abc\"");
    row("frames[0].document.execCommand.call(document, 'bold')", "\"false abc\"");
    row("document.implementation.createHTMLDocument('').execCommand.call(document, 'bold')", "\"false abc\"");
    row("'designMode' in document", "\"false abc\"");
}

void TestPageEditing::commandsTypeAndNothingElse()
{
    QFETCH(const QString, script);
    result(
        "document.body.innerHTML = '<p contenteditable>abc</p><iframe></iframe>'; var place = document.body.firstChild;"
        "place.focus(); document.execCommand('selectAll')");
    QTEST(result("var answer = " + script + "; answer + ' ' + place.textContent"), "outcome");
}

void TestPageEditing::keysType_data()
{
    QTest::addColumn<QString>("markup");
    QTest::newRow("text field") << "<input value='ab'>";
    QTest::newRow("text field of a form") << "<form><input value='ab'></form>";
    QTest::newRow("text area") << "<textarea>ab</textarea>";
    QTest::newRow("editable element") << "<div contenteditable>ab</div>";
}

void TestPageEditing::keysType()
{
    QFETCH(const QString, markup);
    result("document.body.innerHTML = \"" + markup
           + "\"; var place = document.querySelector('input, textarea, div');"
             "var inputs = 0; place.addEventListener('input', function () { ++inputs; }); place.focus()");
    QTest::keyClick(browser(), Qt::Key_End);
    QTest::keyClicks(browser(), "cde");
    QTest::keyClick(browser(), Qt::Key_Left);
    QTest::keyClick(browser(), Qt::Key_Backspace);
    QTest::keyClick(browser(), Qt::Key_Left, Qt::ShiftModifier);
    QTest::keyClicks(browser(), "x");
    QCOMPARE(result("(place.value || place.textContent) + inputs"), QString("\"abxe5\""));
}

QTEST_MAIN(TestPageEditing)

#include "tst_pageediting.moc"
