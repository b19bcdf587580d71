// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Finds what the box's engine does not know in a script's text.
var scripts = (function () {
    // By type of node: what it is, and what to write instead. The engine can read no script that has one of them.
    var unknownNodes = {
        ArrowFunctionExpression: ['an arrow function', 'function () { ... }'],
        ClassDeclaration: ['a class', 'a function and its prototype'],
        ClassExpression: ['a class', 'a function and its prototype'],
        TemplateLiteral: ['a template text', "'...' + value"],
        SpreadElement: ['...', 'apply or concat'],
        RestElement: ['...', 'arguments'],
        AssignmentPattern: ['a default value', 'a test for undefined'],
        ObjectPattern: ['a pattern of variables', 'one variable after the other'],
        ArrayPattern: ['a pattern of variables', 'one variable after the other'],
        ForOfStatement: ['for ... of', 'forEach or an index'],
        YieldExpression: ['a generator', 'a function that is called again'],
        AwaitExpression: ['await', 'a function that is called when it is done'],
        ChainExpression: ['?.', 'a && a.b'],
        ImportDeclaration: ['a module', 'a script element for each file'],
        ImportExpression: ['a module', 'a script element for each file'],
        ExportNamedDeclaration: ['a module', 'a script element for each file'],
        ExportDefaultDeclaration: ['a module', 'a script element for each file'],
        ExportAllDeclaration: ['a module', 'a script element for each file'],
        MetaProperty: ['new.target or import.meta', 'an argument']
    };

    var unknownOperators = {
        '**': 'Math.pow', '**=': 'Math.pow', '??': 'a test for undefined', '??=': 'an if', '||=': 'an if', '&&=': 'an if'
    };

    // Today's parsers take these for names of properties; that engine's does not.
    var reserved = ('break case catch class const continue debugger default delete do else enum export extends false '
        + 'finally for function if import in instanceof new null return super switch this throw true try typeof var '
        + 'void while with').split(' ');

    function isReserved(key) {
        return key.type === 'Identifier' && reserved.indexOf(key.name) >= 0;
    }

    function property(node, found) {
        if (node.shorthand || node.method || node.computed)
            found('a short or computed property', 'name: value');
        else if (isReserved(node.key))
            found('the reserved word ' + node.key.name + ' as a name', "'" + node.key.name + "'");
    }

    function literal(node, found) {
        var text = node.raw || '';
        if (node.regex && /[^gim]/.test(node.regex.flags))
            found('the flags ' + node.regex.flags, 'g, i and m only',
                  'leaves flags as in /.../' + node.regex.flags + ' out of account');
        else if (!node.regex && /^0[bo]|^[\d.]\S*(_|n$)/i.test(text))
            found('the number ' + text, 'a decimal or 0x number');
        else if (/^['"]/.test(text) && text.indexOf('\\u{') >= 0)
            found('\\u{...}', '\\u and four digits');
    }

    // What depends on more than a node's type.
    var looks = {
        VariableDeclaration: function (node, found) {
            if (node.kind === 'let')
                found('let', 'var');
            else if (node.kind === 'const')
                found('const', 'var', 'takes const for the whole function, and later values without a word');
        },
        Property: property,
        MemberExpression: function (node, found) {
            if (!node.computed && isReserved(node.property))
                found('the reserved word ' + node.property.name + ' as a name', "['" + node.property.name + "']");
        },
        Literal: literal,
        CatchClause: function (node, found) {
            if (!node.param)
                found('catch without a name', 'catch (error)');
        },
        CallExpression: function (node, found) {
            var name = node.callee.type === 'MemberExpression' && !node.callee.computed && node.callee.property.name;
            if ((name === 'addEventListener' || name === 'removeEventListener') && node.arguments.length === 2
                    && node.arguments[1].type !== 'SpreadElement')
                found(name, name + '(type, listener, false)', 'wants the third argument of ' + name);
        }
    };
    looks.FunctionDeclaration = looks.FunctionExpression = function (node, found) {
        if (node.generator)
            found('a generator', 'a function that is called again');
        if (node.async)
            found('async', 'a function that is called when it is done');
    };
    looks.BinaryExpression = looks.LogicalExpression = looks.AssignmentExpression = function (node, found) {
        if (unknownOperators[node.operator])
            found('the operator ' + node.operator, unknownOperators[node.operator]);
    };

    // Without recursion: a text of many parts is a tree as deep.
    function forEachNode(tree, visit) {
        var open = [tree];
        function add(value) {
            if (value && typeof value.type === 'string')
                open.push(value);
        }
        function addChildren(parent) {
            Object.keys(parent).forEach(function (key) {
                if (Array.isArray(parent[key]))
                    parent[key].forEach(add);
                else
                    add(parent[key]);
            });
        }
        while (open.length) {
            var node = open.pop();
            visit(node);
            addChildren(node);
        }
    }

    function parsed(text) {
        var options = {ecmaVersion: 'latest', locations: true, allowHashBang: true, allowReturnOutsideFunction: true};
        try {
            return acorn.parse(text, options);
        } catch (notAScript) {
            options.sourceType = 'module';
            return acorn.parse(text, options);
        }
    }

    // Gives objects with line, what, instead, and does: what the engine does in place of refusing the script. A text that
    // no engine can read is none of its business.
    function look(text) {
        var findings = [];
        var isRefused = false;
        var tree;
        try {
            tree = parsed(text);
        } catch (unreadable) {
            return findings;
        }
        forEachNode(tree, function (node) {
            function found(what, instead, does) {
                findings.push({line: node.loc.start.line, what: what, instead: instead,
                               does: does || 'reads no script with ' + what});
                isRefused = isRefused || !does;
            }
            if (unknownNodes[node.type])
                found(unknownNodes[node.type][0], unknownNodes[node.type][1]);
            else if (looks[node.type])
                looks[node.type](node, found);
        });
        if (!isRefused) {
            try {
                acorn.parse(text, {ecmaVersion: 5, locations: true, allowReturnOutsideFunction: true});
            } catch (error) {
                findings.push({line: error.loc.line, what: error.message, instead: 'ECMAScript 5',
                               does: 'reads no script with this: ' + error.message.replace(/ \(\d+:\d+\)$/, '')});
            }
        }
        return findings;
    }

    return {look: look};
})();
