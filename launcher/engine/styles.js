// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Finds what the box's engine does not know in a style sheet's text. Its lists are those of styles.txt.
var styles = (function () {
    var parse = modules.load('css/parse');
    var parseSelector = modules.load('css-what/parse').parse;
    var parseValue = modules.load('postcss-value-parser/parse');

    // What has another name or form there than its own with a prefix.
    var others = {
        'flex': '-webkit-box-flex', 'flex-grow': '-webkit-box-flex', 'flex-direction': '-webkit-box-orient',
        'align-items': '-webkit-box-align', 'justify-content': '-webkit-box-pack', 'order': '-webkit-box-ordinal-group',
        'overflow-wrap': 'word-wrap', 'border-image': '-webkit-border-image'
    };
    var otherDisplays = {'flex': '-webkit-box', 'inline-flex': '-webkit-inline-box'};

    function isIn(list, name) {
        return list.indexOf(name) >= 0;
    }

    // Names that other engines' prefixes mark as theirs harm nobody, nor do a page's own.
    function isOthers(name) {
        return /^(-moz-|-ms-|-o-|-khtml-|--|\*|_)/.test(name);
    }

    function propertyInstead(name) {
        if (isIn(lists.properties, '-webkit-' + name))
            return '-webkit-' + name;
        return others[name];
    }

    // The first part of a value that is not known, or undefined.
    function unknownPart(property, nodes) {
        for (var i = 0; i < nodes.length; ++i) {
            var node = nodes[i];
            var word = node.value.toLowerCase();
            var unit = node.type === 'word' && /^[-+]?(?:\d+\.?\d*|\.\d+)(?:e[-+]?\d+)?([a-z]+)$/.exec(word);
            if (unit && !isIn(lists.units, unit[1]))
                return 'the unit ' + unit[1];
            if (node.type === 'word' && property === 'display' && word[0] !== '!' && !isIn(lists.displays, word))
                return 'display: ' + word;
            if (node.type === 'word' && property === 'position' && word[0] !== '!' && !isIn(lists.positions, word))
                return 'position: ' + word;
            if (node.type !== 'function')
                continue;
            if (word !== '' && !isIn(lists.functions, word) && !isOthers(word))
                return word + '()';
            var inner = word === 'url' ? undefined : unknownPart('', node.nodes);
            if (inner)
                return inner;
        }
        return undefined;
    }

    function valueInstead(what, value) {
        if (what.indexOf('display: ') === 0)
            return otherDisplays[value.trim()] ? 'display: ' + otherDisplays[value.trim()] : 'another display';
        if (/gradient/.test(what))
            return '-webkit-gradient(linear, ...)';
        return what.indexOf('the unit') === 0 ? 'px or em' : 'a plain value';
    }

    // Declarations that stand beside one that is known, for engines that know more, are as they should be.
    function lookAtDeclarations(declarations, found) {
        var known = declarations.filter(function (one) {
            return one.type === 'declaration' && isIn(lists.properties, one.property.toLowerCase())
                && !unknownPart(one.property.toLowerCase(), parseValue(one.value));
        }).map(function (one) { return one.property.toLowerCase(); });

        declarations.forEach(function (one) {
            if (one.type !== 'declaration' || isOthers(one.property))
                return;
            var property = one.property.toLowerCase();
            var line = one.position.start.line;
            if (!isIn(lists.properties, property)) {
                var instead = propertyInstead(property);
                if (!instead || !isIn(known, instead))
                    found(line, 'the property ' + property, instead || 'something else, or nothing');
                return;
            }
            var part = unknownPart(property, parseValue(one.value));
            if (part && !isIn(known, property))
                found(line, part, valueInstead(part, one.value));
        });
    }

    function selectorFault(tokens, isInNot) {
        for (var i = 0; i < tokens.length; ++i) {
            var token = tokens[i];
            var name = (token.name || '').toLowerCase();
            if (token.type === 'attribute' && token.ignoreCase === true)
                return '[... i]';
            if (token.type === 'pseudo-element' && !isIn(lists.pseudoElements, name) && !isOthers(name))
                return '::' + name;
            if (token.type !== 'pseudo')
                continue;
            if (name === 'not' && (isInNot || token.data.length > 1 || token.data[0].length > 1))
                return ':not() with more than one simple selector';
            if (!isIn(lists.pseudoClasses, name) && !isIn(lists.pseudoElements, name) && !isOthers(name))
                return ':' + name;
            var inner = name === 'not' ? selectorFault(token.data[0], true) : undefined;
            if (inner)
                return inner;
        }
        return undefined;
    }

    function lookAtSelectors(rule, found) {
        var fault;
        try {
            parseSelector(rule.selectors.join(', ')).forEach(function (tokens) {
                fault = fault || selectorFault(tokens, false);
            });
        } catch (unreadable) {
            fault = rule.selectors.join(', ');
        }
        if (fault)
            found(rule.position.start.line, fault, 'another selector, or a class', 'skips rules with the selector ' + fault);
    }

    function namesOfKeyframes(rules) {
        return rules.filter(function (rule) {
            return rule.type === 'keyframes' && rule.vendor === '-webkit-';
        }).map(function (rule) { return rule.name; });
    }

    function lookAtRules(rules, found) {
        var keyframes = namesOfKeyframes(rules);
        rules.forEach(function (rule) {
            var line = rule.position && rule.position.start.line;
            if (rule.type === 'rule') {
                lookAtSelectors(rule, found);
                lookAtDeclarations(rule.declarations, found);
            } else if (rule.type === 'media') {
                lookAtRules(rule.rules, found);
            } else if (rule.type === 'keyframes' && rule.vendor === '-webkit-') {
                rule.keyframes.forEach(function (frame) { lookAtDeclarations(frame.declarations || [], found); });
            } else if (rule.type === 'keyframes' && !rule.vendor && !isIn(keyframes, rule.name)) {
                found(line, '@keyframes', '@-webkit-keyframes');
            } else if (isIn(['supports', 'document', 'host', 'custom-media'], rule.type)) {
                found(line, '@' + rule.type, 'rules without it', 'skips @' + rule.type + ' with all in it');
            }
        });
    }

    // Gives objects with line, what, instead and does, as scripts.look().
    function look(text) {
        var findings = [];
        function found(line, what, instead, does) {
            findings.push({line: line, what: what, instead: instead, does: does || 'does not know ' + what});
        }
        var sheet = parse(text, {silent: true}).stylesheet;
        lookAtRules(sheet.rules, found);
        sheet.parsingErrors.slice(0, 1).forEach(function (error) {
            found(error.line, error.reason, 'plain CSS', 'may skip this and what follows: ' + error.reason);
        });
        return findings;
    }

    return {look: look};
})();
