// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include <QtTest>
#include <QtWebKitWidgets>

// Stands for a script object of the box: what the toolkit adds to every object, an overloaded method and a property.
class ScriptObject : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString DeviceModel READ deviceModel CONSTANT)

public:
    QString deviceModel() const { return "Test model"; }

public slots:
    int Pause(int id) { return id; }
    int PlayFile(int id) { return id; }
    int PlayFile(int id, const QString &) { return id; }
};

// A page that keeps what its scripts complain about.
class Page : public QWebPage {
public:
    using QWebPage::userAgentForUrl;

    QStringList complaints;

protected:
    void javaScriptConsoleMessage(const QString &message, int line, const QString &source) override
    {
        complaints += QString("%1:%2: %3").arg(source).arg(line).arg(message);
    }
};

// The first pixel outside `hole` that lets anything show through, or (-1, -1).
static QPoint firstTransparent(const QImage &image, const QRect &hole)
{
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) != 255 && !hole.contains(x, y))
                return {x, y};
    return {-1, -1};
}

// The demonstration portal in a web view, at both of a box's page sizes.
class TestPortal : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data();
    void init();
    void cleanup();

    void everythingLiesInTheSafeAreaAndNothingScrolls_data();
    void everythingLiesInTheSafeAreaAndNothingScrolls();
    void aLongAddressIsCutOff();
    void arrowKeysMoveTheFocus_data();
    void arrowKeysMoveTheFocus();
    void okOpensTheMembersOfAnObjectAndBackReturns_data();
    void okOpensTheMembersOfAnObjectAndBackReturns();
    void onlyBackActsOnTheMembers_data();
    void onlyBackActsOnTheMembers();
    void okShowsThePictureOnTheFullScreenAndReturns_data();
    void okShowsThePictureOnTheFullScreenAndReturns();
    void theVideoShowsThroughThePictureOnly();
    void theVideoShowsThroughTheFullScreenAboveTheInfoBar();
    void theObjectsFoundAreListedWithTheirOwnMembers();
    void aPageWithoutScriptObjectsSaysSo();
    void theHeaderNamesTheModelAndTheSize();
    void theAddressAndTheUserAgentAreShown();
    void keysAreShownByNameAndCode_data();
    void keysAreShownByNameAndCode();
    void aRepeatedKeyIsCounted();
    void onlyTheNewestKeysAreKept();
    void keysThatThePortalDoesNotUseAreLeftToTheBox_data();
    void keysThatThePortalDoesNotUseAreLeftToTheBox();

private:
    void load(const QStringList &objects, const QString &query = QString());
    void press(const QString &keys);
    QVariant evaluate(const QString &script);
    QString text(const QString &selector);
    QStringList keysShown();
    QString focused();
    QString screen();
    QRect picture();
    QImage painted();

    std::unique_ptr<QWebView> m_view;
    Page *m_page = nullptr;
    ScriptObject m_object;
};

void TestPortal::initTestCase_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("1280x720") << QSize(1280, 720);
    QTest::newRow("1920x1080") << QSize(1920, 1080);
}

void TestPortal::init()
{
    load({"StbMedia", "StbDisplay", "StbPVR", "stb_media", "stb_display"});
}

void TestPortal::cleanup()
{
    QCOMPARE(m_page->complaints, QStringList());
}

// Shows the portal in a new view, as a box that has these script objects.
void TestPortal::load(const QStringList &objects, const QString &query)
{
    QFETCH_GLOBAL(QSize, size);
    m_view = std::make_unique<QWebView>();
    m_page = new Page;
    m_page->setParent(m_view.get());
    m_view->setPage(m_page);
    QPalette palette = m_page->palette();
    palette.setBrush(QPalette::Base, Qt::transparent);
    m_page->setPalette(palette);
    m_view->resize(size);
    connect(m_page->mainFrame(), &QWebFrame::javaScriptWindowObjectCleared, this, [this, objects] {
        for (const QString &name : objects)
            m_page->mainFrame()->addToJavaScriptWindowObject(name, &m_object);
    });
    QSignalSpy loaded(m_view.get(), &QWebView::loadFinished);
    QUrl url = QUrl::fromLocalFile(QCoreApplication::applicationDirPath() + "/../share/kavro/portal/index.html");
    url.setQuery(query);
    m_view->load(url);
    m_view->show();
    QVERIFY(loaded.wait());
    QCOMPARE(loaded.first().first().toBool(), true);
}

// Presses keys given by their names in Qt::Key, separated by blanks.
void TestPortal::press(const QString &keys)
{
    const QMetaEnum names = QMetaEnum::fromType<Qt::Key>();
    const QStringList keyNames = keys.split(' ', Qt::SkipEmptyParts);
    for (const QString &name : keyNames) {
        bool known = false;
        const int key = names.keyToValue(("Key_" + name).toLatin1(), &known);
        QVERIFY2(known, qPrintable("No such key: " + name));
        QTest::sendKeyEvent(QTest::Click, m_view.get(), Qt::Key(key), QString(), Qt::NoModifier);
    }
}

QVariant TestPortal::evaluate(const QString &script)
{
    return m_page->mainFrame()->evaluateJavaScript(script);
}

QString TestPortal::text(const QString &selector)
{
    return m_page->mainFrame()->findFirstElement(selector).toPlainText().simplified();
}

QStringList TestPortal::keysShown()
{
    QStringList keys;
    const QWebElementCollection items = m_page->mainFrame()->findAllElements("#keys li");
    for (const QWebElement &item : items)
        keys += item.toPlainText();
    return keys;
}

QString TestPortal::focused()
{
    const QWebElementCollection elements = m_page->mainFrame()->findAllElements(".focused");
    if (elements.count() != 1)
        return QString("%1 focused elements").arg(elements.count());
    const QWebElement element = elements.first();
    return element.hasClass("object") ? element.toPlainText().split('\n').first().simplified()
                                      : element.attribute("id");
}

QString TestPortal::screen()
{
    return m_page->mainFrame()->findFirstElement("body").attribute("data-screen");
}

// Asked by script, because only that brings the layout up to date first.
QRect TestPortal::picture()
{
    const QVariantMap box = evaluate("document.getElementById('picture').getBoundingClientRect()").toMap();
    return QRectF(box["left"].toDouble(), box["top"].toDouble(), box["width"].toDouble(), box["height"].toDouble())
        .toAlignedRect();
}

// What the page paints, on nothing.
QImage TestPortal::painted()
{
    QImage image(m_view->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    m_page->mainFrame()->render(&painter);
    return image;
}

void TestPortal::everythingLiesInTheSafeAreaAndNothingScrolls_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("expectedScreen");
    QTest::newRow("home") << QString() << "home";
    QTest::newRow("home with long key names") << "MediaPrevious VolumeDown PageDown"
                                              << "home";
    QTest::newRow("members") << "Return"
                             << "members";
    QTest::newRow("full screen") << "Right Return"
                                 << "fullscreen";
}

void TestPortal::everythingLiesInTheSafeAreaAndNothingScrolls()
{
    QFETCH_GLOBAL(QSize, size);
    QFETCH(QString, keys);
    QFETCH(QString, expectedScreen);
    press(keys);
    QCOMPARE(screen(), expectedScreen);

    QCOMPARE(m_page->mainFrame()->contentsSize(), size);
    const QString outside =
        "[].filter.call(document.querySelectorAll('h1, h2, p, li, kbd, .object, .note'), function (e) {"
        "  var box = e.getBoundingClientRect();"
        "  return box.width && (box.left < innerWidth * 0.05 - 1 || box.right > innerWidth * 0.95 + 1"
        "    || box.top < innerHeight * 0.05 - 1 || box.bottom > innerHeight * 0.95 + 1);"
        "}).map(function (e) { return e.outerHTML; }).join('\\n')";
    QCOMPARE(evaluate(outside).toString(), QString());
}

void TestPortal::aLongAddressIsCutOff()
{
    QFETCH_GLOBAL(QSize, size);
    load({}, "channel=" + QString(500, 'x'));
    QCOMPARE(m_page->mainFrame()->contentsSize(), size);
    QCOMPARE(evaluate("getComputedStyle(document.getElementById('address')).textOverflow").toString(),
             QString("ellipsis"));
    QVERIFY(evaluate("document.getElementById('address').getBoundingClientRect().right < innerWidth").toBool());
}

void TestPortal::arrowKeysMoveTheFocus_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("expected");
    QTest::newRow("at the start") << ""
                                  << "StbMedia";
    QTest::newRow("down") << "Down"
                          << "StbDisplay";
    QTest::newRow("down to the last") << "Down Down Down Down"
                                      << "stb_display";
    QTest::newRow("not below the last") << "Down Down Down Down Down"
                                        << "stb_display";
    QTest::newRow("not above the first") << "Up"
                                         << "StbMedia";
    QTest::newRow("up again") << "Down Down Up"
                              << "StbDisplay";
    QTest::newRow("not beyond the left") << "Left"
                                         << "StbMedia";
    QTest::newRow("right from the first") << "Right"
                                          << "picture";
    QTest::newRow("right from the last") << "Down Down Down Down Right"
                                         << "picture";
    QTest::newRow("not below the picture") << "Right Down"
                                           << "picture";
    QTest::newRow("back to the object beside the picture") << "Right Left"
                                                           << "StbDisplay";
}

void TestPortal::arrowKeysMoveTheFocus()
{
    QFETCH(QString, keys);
    press(keys);
    QTEST(focused(), "expected");
    QCOMPARE(screen(), QString("home"));
}

void TestPortal::okOpensTheMembersOfAnObjectAndBackReturns_data()
{
    QTest::addColumn<QString>("back");
    QTest::newRow("Backspace") << "Backspace";
    QTest::newRow("Escape") << "Escape";
}

void TestPortal::okOpensTheMembersOfAnObjectAndBackReturns()
{
    QFETCH(QString, back);
    press("Down Return");
    QCOMPARE(screen(), QString("members"));
    QCOMPARE(text("#members-object"), QString("StbDisplay"));
    QCOMPARE(text("#members-count"), QString("3 members"));
    QCOMPARE(text("#members-list"), QString("DeviceModel Pause PlayFile"));
    press(back);
    QCOMPARE(screen(), QString("home"));
    QCOMPARE(focused(), QString("StbDisplay"));
}

void TestPortal::onlyBackActsOnTheMembers_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("OK") << "Return";
    QTest::newRow("arrow to the picture") << "Right";
    QTest::newRow("arrow to the next object") << "Down";
}

void TestPortal::onlyBackActsOnTheMembers()
{
    QFETCH(QString, key);
    press("Down Return");
    press(key);
    QCOMPARE(screen(), QString("members"));
    QCOMPARE(text("#members-object"), QString("StbDisplay"));
    press("Backspace");
    QCOMPARE(screen(), QString("home"));
    QCOMPARE(focused(), QString("StbDisplay"));
}

void TestPortal::okShowsThePictureOnTheFullScreenAndReturns_data()
{
    QTest::addColumn<QString>("back");
    QTest::newRow("OK") << "Return";
    QTest::newRow("Backspace") << "Backspace";
    QTest::newRow("Escape") << "Escape";
}

void TestPortal::okShowsThePictureOnTheFullScreenAndReturns()
{
    QFETCH(QString, back);
    press("Right Return");
    QCOMPARE(screen(), QString("fullscreen"));
    QCOMPARE(picture(), m_view->rect());
    press("Left");
    QCOMPARE(focused(), QString("picture"));
    press(back);
    QCOMPARE(screen(), QString("home"));
    QCOMPARE(focused(), QString("picture"));
}

void TestPortal::theVideoShowsThroughThePictureOnly()
{
    const QRect inside = picture().adjusted(2, 2, -2, -2);
    const QRect outside = picture().adjusted(-2, -2, 2, 2);
    const QImage image = painted();
    QCOMPARE(qAlpha(image.pixel(inside.topLeft())), 0);
    QCOMPARE(qAlpha(image.pixel(inside.bottomRight())), 0);
    QCOMPARE(firstTransparent(image, outside), QPoint(-1, -1));

    press("Return");
    QCOMPARE(screen(), QString("members"));
    QCOMPARE(firstTransparent(painted(), QRect()), QPoint(-1, -1));
}

void TestPortal::theVideoShowsThroughTheFullScreenAboveTheInfoBar()
{
    press("Right Return");
    const QImage image = painted();
    QCOMPARE(qAlpha(image.pixel(image.rect().topLeft())), 0);
    QCOMPARE(qAlpha(image.pixel(image.rect().center())), 0);
    QVERIFY(qAlpha(image.pixel(image.rect().bottomLeft())) > 128);
}

void TestPortal::theObjectsFoundAreListedWithTheirOwnMembers()
{
    load({"StbMedia", "stb_display"});
    QStringList rows;
    const QWebElementCollection objects = m_page->mainFrame()->findAllElements(".object");
    for (const QWebElement &row : objects)
        rows += row.findFirst(".name").toPlainText().split('\n').first().simplified() + ": "
            + row.findFirst(".count").toPlainText().simplified();
    QCOMPARE(rows,
             QStringList({"StbMedia: 3 members", "StbDisplay: not found", "StbPVR: not found", "stb_media: not found",
                          "stb_display: 3 members"}));
}

void TestPortal::aPageWithoutScriptObjectsSaysSo()
{
    load({});
    QCOMPARE(m_page->mainFrame()->findAllElements(".object.missing").count(), 5);
    press("Return");
    QCOMPARE(text("#members-count"), QString("not found in this page"));
    QCOMPARE(text("#members-list"), QString());
}

void TestPortal::theHeaderNamesTheModelAndTheSize()
{
    QFETCH_GLOBAL(QSize, size);
    const QString sizeText = QString::fromUtf8("%1 × %2").arg(size.width()).arg(size.height());
    QCOMPARE(text("#box"), QString::fromUtf8("Test model · ") + sizeText);
    load({"StbMedia"});
    QCOMPARE(text("#box"), sizeText);
}

void TestPortal::theAddressAndTheUserAgentAreShown()
{
    QCOMPARE(text("#address"), m_view->url().toString());
    QCOMPARE(text("#user-agent"), m_page->userAgentForUrl(m_view->url()));
}

void TestPortal::keysAreShownByNameAndCode_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("expected");
    QTest::newRow("arrow") << "Left"
                           << "Left 37";
    QTest::newRow("OK") << "Return"
                        << "Enter 13";
    QTest::newRow("keypad") << "Enter"
                            << "Enter 13";
    QTest::newRow("back") << "Backspace"
                          << "Backspace 8";
    QTest::newRow("letter") << "A"
                            << "A 65";
    QTest::newRow("digit") << "7"
                           << "7 55";
    QTest::newRow("first function key") << "F1"
                                        << "F1 112";
    QTest::newRow("last function key") << "F24"
                                       << "F24 135";
    QTest::newRow("volume") << "VolumeUp"
                            << "VolumeUp 175";
    QTest::newRow("a key without a code") << "Hangup"
                                          << "Key 0";
}

void TestPortal::keysAreShownByNameAndCode()
{
    QFETCH(QString, key);
    QFETCH(QString, expected);
    press(key);
    QCOMPARE(keysShown(), QStringList(expected));
}

void TestPortal::aRepeatedKeyIsCounted()
{
    press("Down Down Down Up");
    QCOMPARE(keysShown(), QStringList({"Up 38", QString::fromUtf8("Down 40 ×3")}));
}

void TestPortal::onlyTheNewestKeysAreKept()
{
    press("A B C D E F");
    QCOMPARE(keysShown(), QStringList({"F 70", "E 69", "D 68", "C 67"}));
}

void TestPortal::keysThatThePortalDoesNotUseAreLeftToTheBox_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("used");
    QTest::newRow("arrow") << int(Qt::Key_Down) << true;
    QTest::newRow("back") << int(Qt::Key_Backspace) << true;
    QTest::newRow("function key") << int(Qt::Key_F2) << false;
}

void TestPortal::keysThatThePortalDoesNotUseAreLeftToTheBox()
{
    QFETCH(int, key);
    QFETCH(bool, used);
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view.get(), &event);
    QCOMPARE(event.isAccepted(), used);
}

QTEST_MAIN(TestPortal)
#include "tst_portal.moc"
