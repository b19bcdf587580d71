// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// What a page of tst_closedbox tries to read a file with: functions of the file's address without its suffix, of its
// path, and of a function to be told whether anything of it was got.
var readers = {
    request: function (url, path, got) {
        var request = new XMLHttpRequest();
        request.open('GET', url + '.txt', true);
        request.onreadystatechange = function () {
            if (request.readyState === 4) got(request.responseText.indexOf('secret') >= 0);
        };
        request.send();
    },
    frame: function (url, path, got) {
        element('iframe', 'src', url + '.html', got, function (frame) {
            return frame.contentDocument.body.innerHTML.indexOf('secret') >= 0;
        });
    },
    object: function (url, path, got) {
        element('object', 'data', url + '.html', got, function (object) {
            return object.contentDocument.body.innerHTML.indexOf('secret') >= 0;
        });
    },
    script: function (url, path, got) {
        element('script', 'src', url + '.js', got, function () { return true; });
    },
    image: function (url, path, got) {
        element('img', 'src', url + '.png', got, function () { return true; });
    },
    style: function (url, path, got) {
        element('link', 'href', url + '.css', got, function () { return true; }).rel = 'stylesheet';
    },
    transform: function (url, path, got) {
        var processor = new XSLTProcessor();
        processor.importStylesheet(new DOMParser().parseFromString(
            '<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">' +
            '<xsl:template match="/"><out><xsl:value-of select="document(\'' + url + '.xml\')"/></out>' +
            '</xsl:template></xsl:stylesheet>', 'text/xml'));
        // Of an element of this page, whose loader and rights count.
        var source = element('p', 'title', 'source', got);
        got(processor.transformToFragment(source, document).textContent.indexOf('secret') >= 0);
    },
    redirect: function (url, path, got) {
        readers.request('/to?' + url, path, got);
    },
    film: function (url, path, got) {
        play(got, function (player) { return StbMedia.PlayFile(player, path + '.ts', 0, 0, 0, ''); });
    },
    stream: function (url, path, got) {
        play(got, function (player) { return StbMedia.PlayStream(player, path + '.ts'); });
    },
    'stream of an address': function (url, path, got) {
        play(got, function (player) { return StbMedia.PlayStream(player, url + '.ts'); });
    },
    playlist: function (url, path, got) {
        play(got, function (player) {
            return StbMedia.PlayStream(player, location.protocol + '//' + location.host + '/list?' + url + '.m3u8');
        });
    },
    subtitles: function (url, path, got) {
        var player = StbMedia.CreatePlayer();
        StbMedia.PlayFile(player, '/mnt/stb/own/file.ts', 0, 0, 0, path + '.srt');
        waitFor(function () { return StbMedia.GetSubtitleTrackList(player).length > 0; }, function (is) {
            got(is);
            StbMedia.ClosePlayer(player);
        });
    },
    listing: function (url, path, got) {
        got(String(StbDisplay.ListFiles('..' + path.replace(/[^/]*$/, ''))).indexOf('file.txt') >= 0);
    },
    'older listing': function (url, path, got) {
        got(String(stb_display.ListFiles('/../..' + path.replace(/[^/]*$/, ''))).indexOf('file.txt') >= 0);
    }
};

function element(name, attribute, value, got, read) {
    var made = document.createElement(name);
    made.onload = read && function () {
        try { got(read(made)); } catch (error) { got(false); }
    };
    made.onerror = function () { got(false); };
    made[attribute] = value;
    document.body.appendChild(made);
    return made;
}

function play(got, start) {
    var player = StbMedia.CreatePlayer();
    start(player);
    waitFor(function () {
        return StbMedia.GetDuration(player) > 0 || StbMedia.GetPlayerState(player) === 2;
    }, function (is) {
        got(is);
        StbMedia.ClosePlayer(player);
    });
}

// Waits four seconds at most.
function waitFor(condition, done) {
    var tries = 0, timer = setInterval(function () {
        var is = condition();
        if (is || ++tries > 40) {
            clearInterval(timer);
            done(is);
        }
    }, 100);
}

// Runs each reader on each file, a few at a time, and tells what it got.
function readAll(files) {
    var jobs = [], running = 0, name, i;
    for (name in readers) for (i = 0; i < files.length; i++) jobs.push([name, files[i]]);
    function start(job) {
        var isTold = false;
        function got(is) {
            if (isTold) return;
            isTold = true;
            tell(job[0] + ' ' + job[1] + ' ' + (is ? 'read' : 'nothing'));
            running--;
            next();
        }
        running++;
        setTimeout(function () { got(false); }, 10000);
        try { readers[job[0]]('file://' + job[1], job[1], got); } catch (error) { got(false); }
    }
    function next() {
        while (jobs.length && running < 10) start(jobs.shift());
        if (!jobs.length && !running) leave();
    }
    next();
}
