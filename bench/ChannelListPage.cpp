// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ChannelListPage.h"

namespace {

constexpr int size = 200000;

const char head[] = R"(<!DOCTYPE html>
<html>
<head>
<meta charset="utf-8">
<title>Channels</title>
<style>
body { margin: 0; width: 1280px; height: 720px; overflow: hidden; font: 20px sans-serif; color: white; }
#list { width: 620px; background: rgba(0, 0, 40, 0.8); }
.channel { height: 58px; border-bottom: 1px solid #446; }
.number { float: left; width: 60px; text-align: right; padding: 16px; color: #aac; }
.name { font-size: 24px; padding-top: 4px; }
.bar { width: 300px; height: 6px; background: linear-gradient(to right, #06c, #0cf); border-radius: 3px; }
.chosen { background: #26a; }
</style>
<script>
var chosen = 0;
var isReady = false;

function choose(index) {
    var channels = document.getElementsByClassName('channel');
    channels[chosen].className = 'channel';
    chosen = (index + channels.length) % channels.length;
    channels[chosen].className = 'channel chosen';
}

addEventListener('keydown', function (event) {
    if (event.keyCode === 38 || event.keyCode === 40)
        choose(chosen + event.keyCode - 39);
});

addEventListener('load', function () {
    choose(0);
    // The first frame is asked for before the page is painted, the second one after it.
    requestAnimationFrame(function () {
        requestAnimationFrame(function () {
            isReady = true;
            new Image().src = '/ready';
        });
    });
});
</script>
</head>
<body>
<div id="list">
)";

QByteArray channel(int number)
{
    const QByteArray text = QByteArray::number(number);
    return "<div class=\"channel\" id=\"channel" + text + "\"><div class=\"number\">" + text
        + "</div><div class=\"name\">Channel " + text + " of the operator</div><div class=\"now\">Now: programme "
        + QByteArray::number(number * 7919 % 1000)
        + ", with a title and a subtitle</div><div class=\"bar\"></div></div>\n";
}

} // namespace

QByteArray channelListPage()
{
    QByteArray page = head;
    for (int number = 1; page.size() < size; ++number)
        page += channel(number);
    return page + "</div>\n</body>\n</html>\n";
}
