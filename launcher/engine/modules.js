// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Gives parsers that are written as modules what they ask for: other modules of the same package.
var modules = (function () {
    var functions = {};
    var exported = {};

    // The name of a module as another one names it, relative to itself.
    function resolved(from, name) {
        var steps = [];
        from.split('/').slice(0, -1).concat(name.split('/')).forEach(function (step) {
            if (step === '..')
                steps.pop();
            else if (step !== '.')
                steps.push(step);
        });
        return steps.join('/');
    }

    function add(name, text) {
        functions[name] = new Function('module', 'exports', 'require', text);
    }

    function load(name) {
        if (!exported[name]) {
            var module = exported[name] = {exports: {}};
            functions[name](module, module.exports, function (other) { return load(resolved(name, other)); });
        }
        return exported[name].exports;
    }

    return {add: add, load: load};
})();
