// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Looks at what a page has loaded: a script, a style sheet, or a page with scripts and styles in it.
var sources = (function () {
    var isScriptType = /^(|text\/javascript|application\/(x-)?javascript|(text|application)\/ecmascript|module)$/i;

    function linesBefore(text, index) {
        return text.slice(0, index).split('\n').length - 1;
    }

    function attribute(tag, name) {
        var match = new RegExp('\\s' + name + '\\s*=\\s*("([^"]*)"|\'([^\']*)\'|([^\\s>]*))', 'i').exec(tag);
        return match ? match[2] || match[3] || match[4] || '' : undefined;
    }

    function shifted(findings, lines) {
        return findings.map(function (finding) {
            finding.line += lines;
            return finding;
        });
    }

    // Scripts and style sheets end at the first end tag, whatever stands around it, so that no parser is needed to find
    // them.
    function lookAtPage(text) {
        var part = /<!--[\s\S]*?-->|<(script|style)\b([^>]*)>([\s\S]*?)<\/\1\s*>|<[a-z][^>]*\sstyle\s*=[^>]*>/gi;
        var findings = [];
        var match;
        while ((match = part.exec(text))) {
            var element = (match[1] || '').toLowerCase();
            var lines = linesBefore(text, match.index + match[0].indexOf('>') + 1);
            if (element === 'style')
                findings = findings.concat(shifted(styles.look(match[3]), lines));
            else if (element === 'script' && isScriptType.test(attribute(match[2], 'type') || ''))
                findings = findings.concat(shifted(scripts.look(match[3]), lines));
            else if (!element && match[0].slice(0, 4) !== '<!--')
                findings = findings.concat(shifted(styles.look('x {' + attribute(match[0], 'style') + '}'),
                                                   linesBefore(text, match.index)));
        }
        return findings;
    }

    // One finding for each thing: the first place, and how many more there are.
    function gathered(findings) {
        var byWhat = {};
        findings.sort(function (a, b) { return a.line - b.line; }).forEach(function (finding) {
            if (byWhat[finding.what])
                byWhat[finding.what].more += 1;
            else
                byWhat[finding.what] = {line: finding.line, does: finding.does, instead: finding.instead, more: 0};
        });
        return Object.keys(byWhat).map(function (what) { return byWhat[what]; });
    }

    function look(kind, text) {
        var looks = {script: scripts.look, style: styles.look, page: lookAtPage};
        return gathered(looks[kind](text.replace(/\r\n?/g, '\n')));
    }

    return {look: look};
})();
