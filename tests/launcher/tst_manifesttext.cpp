// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "launcher/Manifest.h"
#include "launcher/ManifestText.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

const char portalPage[] = "http://127.0.0.1:20000/index.html";

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The home page in the plugin's manifest.
class TestManifestText : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void onlyTheHomePageElementChanges_data();
    void onlyTheHomePageElementChanges();
    void aValueIsReadAsXml();
    void theHomePageFollowsTheCommandLine_data();
    void theHomePageFollowsTheCommandLine();
    void aMalformedManifestIsLeftAlone_data();
    void aMalformedManifestIsLeftAlone();
    void otherEncodingsAreKept();
    void aByteOrderMarkIsKept();
    void aMissingManifestIsNamed();

private:
    QTemporaryDir m_folder;
    QString m_file;
};

void TestManifestText::initTestCase()
{
    QVERIFY(m_folder.isValid());
    m_file = m_folder.filePath("PluginManifest.xml");
}

void TestManifestText::onlyTheHomePageElementChanges_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("in place")
        << "<a>\n <!-- type=\"homepage\" -->\t<p  src='x' type=\"homepage\"\n other=\"1\"/><b/></a>\n"
        << "<a>\n <!-- type=\"homepage\" -->\t<p src=\"N\" type=\"homepage\"\n other=\"1\"/><b/></a>\n";
    QTest::newRow("without src") << "<a><p type='homepage'/></a>"
                                 << "<a><p type='homepage' src=\"N\"/></a>";
    QTest::newRow("with content") << "<a><p type='homepage'>text</p></a>"
                                  << "<a><p type='homepage' src=\"N\">text</p></a>";
    QTest::newRow("src in another's value") << "<a><p alt=' src=\"x\"' type='homepage' src='y'/></a>"
                                            << "<a><p alt=' src=\"x\"' type='homepage' src=\"N\"/></a>";
    QTest::newRow("a name that ends alike") << "<a><p type='homepage' data-src='y'/></a>"
                                            << "<a><p type='homepage' data-src='y' src=\"N\"/></a>";
    QTest::newRow("a > in a value") << "<a><p type='homepage' alt='>' src='y'/></a>"
                                    << "<a><p type='homepage' alt='>' src=\"N\"/></a>";
    QTest::newRow("the last of two counts") << "<a><p type='homepage' src='1'/><p type='homepage' src='2'/></a>"
                                            << "<a><p type='homepage' src='1'/><p type='homepage' src=\"N\"/></a>";
    QTest::newRow("deep, after entities and returns")
        << "<?xml version='1.0'?>\r\n<a>&amp;&lt;я\r\n<b><c><p type='homepage' src='x'/></c></b></a>"
        << "<?xml version='1.0'?>\r\n<a>&amp;&lt;я\r\n<b><c><p type='homepage' src=\"N\"/></c></b></a>";
    QTest::newRow("with a document type")
        << "<!DOCTYPE kavro [<!ENTITY e 'long text'>]><a>&e;<p type='homepage' src='x'/></a>"
        << "<!DOCTYPE kavro [<!ENTITY e 'long text'>]><a>&e;<p type='homepage' src=\"N\"/></a>";
    QTest::newRow("no home page yet") << "<a>\n    <b/>\n</a>\n"
                                      << "<a>\n    <b/>\n    <page type=\"homepage\" src=\"N\"/>\n</a>\n";
    QTest::newRow("an empty manifest") << "<a/>"
                                       << "<a><page type=\"homepage\" src=\"N\"/></a>";
    QTest::newRow("an empty manifest with attributes")
        << "<a b='c' /> <!-- end -->"
        << "<a b='c' ><page type=\"homepage\" src=\"N\"/></a> <!-- end -->";
}

void TestManifestText::onlyTheHomePageElementChanges()
{
    QFETCH(QString, before);
    ManifestText manifest(before);
    QVERIFY2(manifest.isValid(), qPrintable(manifest.errorString()));
    manifest.setAttribute("src", QString("N"));
    QTEST(manifest.text(), "after");
}

void TestManifestText::aValueIsReadAsXml()
{
    ManifestText manifest("<a><p type='homepage' src='?a=1&amp;b=&quot;2&quot;'/></a>");
    QCOMPARE(*manifest.attribute("src"), QString("?a=1&b=\"2\""));
    QVERIFY(!manifest.attribute("desk-page"));
    manifest.setAttribute("src", QString("data:text/html,<b>&'\""));
    QCOMPARE(*ManifestText(manifest.text()).attribute("src"), QString("data:text/html,<b>&'\""));
    manifest.setAttribute("src", std::nullopt);
    QCOMPARE(manifest.text(), QString("<a><p type='homepage'/></a>"));
}

void TestManifestText::theHomePageFollowsTheCommandLine_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("after");
    QTest::newRow("portal") << "src=\"\" desk-page=\"portal\""
                            << ""
                            << "src=\"http://127.0.0.1:20000/index.html\" desk-page=\"portal\"";
    QTest::newRow("portal, other port") << "src=\"http://127.0.0.1:3/index.html\" desk-page=\"portal\""
                                        << ""
                                        << "src=\"http://127.0.0.1:20000/index.html\" desk-page=\"portal\"";
    QTest::newRow("a page instead of the portal") << "src=\"\" desk-page=\"portal\""
                                                  << "http://a/"
                                                  << "src=\"http://a/\" desk-page=\"portal\"";
    QTest::newRow("another page") << "src=\"http://a/\" desk-page=\"portal\""
                                  << "http://b/"
                                  << "src=\"http://b/\" desk-page=\"portal\"";
    QTest::newRow("a page instead of the author's own") << "src=\"http://own/\""
                                                        << "http://a/"
                                                        << "src=\"http://a/\" desk-page=\"http://own/\"";
    QTest::newRow("back to the author's own") << "src=\"http://a/\" desk-page=\"http://own/\""
                                              << ""
                                              << "src=\"http://own/\"";
    QTest::newRow("the author's own") << "src=\"http://own/\""
                                      << ""
                                      << "src=\"http://own/\"";
}

void TestManifestText::theHomePageFollowsTheCommandLine()
{
    QFETCH(QString, before);
    QFETCH(QString, page);
    QFETCH(QString, after);
    const QString form = "<a>\n<p type=\"homepage\" %1/>\n<t>Портал</t></a>";
    QFile file(m_file);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(form.arg(before).toUtf8());
    file.close();
    QString error;
    QVERIFY2(Manifest::setHomePage(m_file, page, portalPage, &error), qPrintable(error));
    QCOMPARE(contentOf(m_file), form.arg(after).toUtf8());
    QVERIFY2(Manifest::setHomePage(m_file, page, portalPage, &error), qPrintable(error));
    QCOMPARE(contentOf(m_file), form.arg(after).toUtf8());
}

void TestManifestText::aMalformedManifestIsLeftAlone_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("not closed") << QByteArray("<a>\n<p type='homepage' src='x'/>\n");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no XML") << QByteArray("home page: http://a/");
    QTest::newRow("not in its encoding") << QByteArray("<a><p type='homepage' src='\xff\xfe'/></a>");
}

void TestManifestText::aMalformedManifestIsLeftAlone()
{
    QFETCH(QByteArray, content);
    QFile file(m_file);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    QString error;
    QVERIFY(!Manifest::setHomePage(m_file, "http://a/", portalPage, &error));
    QVERIFY2(error.startsWith(m_file + " is malformed ("), qPrintable(error));
    QVERIFY(!error.contains('\n'));
    QCOMPARE(contentOf(m_file), content);
}

void TestManifestText::otherEncodingsAreKept()
{
    const QByteArray form =
        "<?xml version=\"1.0\" encoding=\"windows-1251\"?><a><t>\xcf\xee\xf0</t><p type='homepage'%1/></a>";
    QFile file(m_file);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(form).replace("%1", ""));
    file.close();
    QString error;
    QVERIFY2(Manifest::setHomePage(m_file, "http://a/", portalPage, &error), qPrintable(error));
    QCOMPARE(contentOf(m_file), QByteArray(form).replace("%1", " src=\"http://a/\" desk-page=\"\""));
}

void TestManifestText::aByteOrderMarkIsKept()
{
    QFile file(m_file);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("\xef\xbb\xbf<a><p type='homepage' src='x'/></a>");
    file.close();
    QString error;
    QVERIFY2(Manifest::setHomePage(m_file, "http://a/", portalPage, &error), qPrintable(error));
    QCOMPARE(contentOf(m_file),
             QByteArray("\xef\xbb\xbf<a><p type='homepage' src=\"http://a/\" desk-page=\"x\"/></a>"));
}

void TestManifestText::aMissingManifestIsNamed()
{
    QString error;
    QVERIFY(!Manifest::setHomePage(m_folder.filePath("none.xml"), "http://a/", portalPage, &error));
    QVERIFY2(error.startsWith(m_folder.filePath("none.xml") + " cannot be read ("), qPrintable(error));
}

QTEST_GUILESS_MAIN(TestManifestText)

#include "tst_manifesttext.moc"
