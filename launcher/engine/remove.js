// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// A function of the names that the box's engine has, by object, see builtins.txt. Takes all others from the window that it
// runs in, which has seen no script yet. What cannot be deleted stays.
(function (kept) {
    // An engine may tell of one window twice, and the second time it has the page's own names too.
    if (!('OfflineAudioCompletionEvent' in window))
        return;

    var ofFunctions = ['length', 'name', 'prototype', 'arguments', 'caller'];
    var isConstant = /^[A-Z][A-Z0-9_]*$/;
    var areConstantsListed = {Math: true, Number: true};

    function setOf(names) {
        var set = Object.create(null);
        names.forEach(function (name) { set[name] = true; });
        return set;
    }

    function chain(object) {
        var objects = [];
        for (; object; object = Object.getPrototypeOf(object))
            objects.push(object);
        return objects;
    }

    function removeAllBut(names, object, objectName) {
        var set = setOf(names);
        Object.getOwnPropertyNames(object).forEach(function (name) {
            var isListed = set[name] || name === 'constructor'
                || (typeof object === 'function' && ofFunctions.indexOf(name) >= 0)
                || (isConstant.test(name) && !areConstantsListed[objectName]);
            if (!isListed)
                delete object[name];
        });
    }

    // In place of an interface, one that refuses "new".
    function refuse(name) {
        var original = window[name];
        var replacement = function () {
            throw new TypeError("'[object " + name + "Constructor]' is not a constructor");
        };
        Object.getOwnPropertyNames(original).forEach(function (member) {
            if (isConstant.test(member))
                replacement[member] = original[member];
        });
        replacement.prototype = original.prototype;
        original.prototype.constructor = replacement;
        window[name] = replacement;
    }

    // Found before anything is gone. Objects that are no interfaces, such as console, are entries by themselves.
    var interfaces = Object.getOwnPropertyNames(window).filter(function (name) {
        return /^[A-Z]/.test(name) && typeof window[name] === 'function' && window[name].prototype;
    }).map(function (name) {
        return {name: name, constructor: window[name], prototype: window[name].prototype};
    });
    var plain = ['console', 'JSON', 'Math'].map(function (name) { return {name: name, object: window[name]}; });

    // The steps of the chains of what stays, such as EventTarget, are needed although they have no name there.
    var globals = setOf(kept.window);
    var needed = [];
    interfaces.forEach(function (entry) {
        if (globals[entry.name])
            needed = needed.concat(chain(entry.prototype));
    });

    interfaces.forEach(function (entry) {
        var members = kept[entry.name + '.prototype'];
        var isThere = globals[entry.name];
        if (kept[entry.name])
            removeAllBut(kept[entry.name], entry.constructor, entry.name);
        if (members)
            removeAllBut(members, entry.prototype, entry.name);
        else if (!isThere && needed.indexOf(entry.prototype) < 0)
            removeAllBut([], entry.prototype, entry.name);
    });
    plain.forEach(function (entry) {
        chain(entry.object).forEach(function (object) {
            if (object !== Object.prototype)
                removeAllBut(kept[entry.name], object, entry.name);
        });
    });
    kept.inconstructible.forEach(refuse);
    Object.getOwnPropertyNames(window).forEach(function (name) {
        if (!globals[name])
            delete window[name];
    });
})
