// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Runs in each new page of an engine that crashes at some of what a page may pass to a script object: it reads through
// a null pointer when it converts a Date whose value is NaN, and runs out of stack when it converts an object that is
// nested too deeply. Both happen before a slot is called, and only for parameters of types that take a Date or an
// object. pageGuards, the plugin's PageGuards, has put an empty object of the engine's own kind in the place of each
// script object; it gets members here that make these arguments safe and then call the script object's own. What they
// pass on in place of an object is what the slot would have made of it.
//
// No function here returns a call's result directly. The engine would give up the frame for such a call, and without it
// crashes if the call throws. It is told not to (see PluginWrapper), but a launcher may have started it before.
//
// The page cannot reach the objects behind the guards, nor change what the guards rely on: all functions of the
// language that they use are taken before the page's first script runs, and called without the page's call and apply.
(function () {
    'use strict';
    var pageGuards = window.pageGuards;
    var recordTimes = window.recordTimes;
    var define = Object.defineProperty;
    var create = Object.create;
    var isArray = Array.isArray;
    var toString = Object.prototype.toString;
    var hasOwnProperty = Object.prototype.hasOwnProperty;
    var getTime = Date.prototype.getTime;
    var exec = RegExp.prototype.exec;
    var DateObject = Date;
    var StringObject = String;
    var RangeErrorObject = RangeError;
    var TypeErrorObject = TypeError;
    var longestList = 100000;

    delete window.pageGuards;
    delete window.recordTimes;

    // Calls a function of the language's own on an object, and gives its result.
    var argument = [undefined];
    define(argument, 'map', {value: Array.prototype.map});
    function on(object, method, value) {
        argument[0] = value;
        var results = argument.map(method, object);
        argument[0] = undefined;
        return results[0];
    }

    // Gives an object a member as an assignment does, which is the page's to define.
    function put(object, name, value) {
        var member = create(null);
        member.value = value;
        member.writable = member.enumerable = member.configurable = true;
        define(object, name, member);
    }

    // A page can have an object pose as one of another class. A reader of the wrong class throws, and what it poses as
    // is never passed on itself.
    var readers = create(null);
    readers['[object String]'] = String.prototype.valueOf;
    readers['[object Number]'] = Number.prototype.valueOf;
    readers['[object Boolean]'] = Boolean.prototype.valueOf;

    function isObject(value) {
        return value !== null && (typeof value === 'object' || typeof value === 'function');
    }

    // What an object holds, as a value that the engine converts safely: a Date of our own, onInvalid for one that holds
    // no time, a text, a number or a yes or no. Undefined for all other objects.
    function held(object, onInvalid) {
        var kind = on(object, toString);
        if (kind === '[object Date]') {
            var time = on(object, getTime);
            return time === time ? new DateObject(time) : onInvalid;
        }
        var read = readers[kind];
        var value = read ? on(object, read) : undefined;
        return value;
    }

    // For all others: the engine asks an object for its text or number itself, and what it asks could find out who asks,
    // a function that is not guarded.
    function plain(value) {
        if (!isObject(value))
            return value;
        var read = readers[on(value, toString)];
        if (read) {
            var primitive = on(value, read);
            return primitive;
        }
        var asker = create(null);
        asker.toString = function () { var text = StringObject(value); return text; };
        asker.valueOf = function () { var converted = +value; return converted; };
        return asker;
    }

    // For a QDateTime: this number has no date either, and the engine knows how to say so.
    function dateTime(value) {
        var simple = isObject(value) ? held(value, Infinity) : value;
        return simple;
    }

    // For a QVariant.
    function variant(value) {
        var simple = isObject(value) ? held(value) : value;
        return simple;
    }

    // For the subtitles of a file, where the engine would refuse what it has no QVariant for.
    function subtitles(value) {
        var simple = variant(value);
        return simple === simple && typeof simple !== 'symbol' ? simple : undefined;
    }

    // For an entry of a list of numbers, in which an object is none.
    function number(value) {
        var simple = isObject(value) ? held(value, 0) : value;
        return typeof simple === 'symbol' || (simple === undefined && isObject(value)) ? 0 : simple;
    }

    // An array can claim four billion entries that it does not have, and the engine would make them all. What is no array
    // counts as its only entry, unless it is an object, which the engine refuses.
    function numbers(value) {
        if (!isArray(value)) {
            var single = isObject(value) ? held(value) : value;
            return single;
        }
        var length = value.length;
        if (length > longestList)
            throw errorOf(RangeErrorObject, 'The list has more than ' + longestList + ' entries');
        var list = [];
        for (var i = 0; i < length; ++i)
            put(list, i, number(value[i]));
        return list;
    }

    // In place of StbPVR.GetRecordsList.
    function recordsList() {
        var records = recordTimes.GetRecordsList();
        for (var i = 0; i < records.length; ++i)
            records[i].start = new DateObject(records[i].start);
        return records;
    }

    // The page's place in an error's stack: these functions have no address.
    var place = /@(\w[^\n]*):(\d+):(\d+)(?:\n|$)/;

    // An error at the place of the page's call. The place of one that the language makes is here, and cannot be changed;
    // it can be hidden.
    function errorOf(Type, message) {
        var made = new Type(message);
        var found = on(place, exec, made.stack);
        if (!found)
            return made;
        var error = create(made);
        put(error, 'sourceURL', found[1]);
        put(error, 'line', +found[2]);
        put(error, 'column', +found[3]);
        return error;
    }

    // What the engine says when it refuses a call, and the type of error that it is on a box.
    var refusals = [
        {beginning: /^too few arguments in call to /, type: SyntaxError},
        {beginning: /^incompatible type of argument\(s\) in call to /, type: TypeErrorObject},
        {beginning: /^QtMetaMethod\.\w+: (no arguments given|failed to)/, type: Error},
        {beginning: /^QtMetaMethod\./, type: TypeErrorObject}
    ];

    // The error to throw in place of one that was caught. All but the engine's refusals stay what they are.
    function refused(error) {
        var message = isObject(error) && on(error, toString) === '[object Error]' ? error.message : undefined;
        for (var i = 0; typeof message === 'string' && i < refusals.length; ++i) {
            if (on(refusals[i].beginning, exec, message)) {
                error = errorOf(refusals[i].type, message);
                break;
            }
        }
        return error;
    }

    // The engine calls nothing with more than ten arguments.
    function call(method, list) {
        var result;
        switch (list.length) {
        case 0: result = method(); break;
        case 1: result = method(list[0]); break;
        case 2: result = method(list[0], list[1]); break;
        case 3: result = method(list[0], list[1], list[2]); break;
        case 4: result = method(list[0], list[1], list[2], list[3]); break;
        case 5: result = method(list[0], list[1], list[2], list[3], list[4]); break;
        case 6: result = method(list[0], list[1], list[2], list[3], list[4], list[5]); break;
        case 7: result = method(list[0], list[1], list[2], list[3], list[4], list[5], list[6]); break;
        case 8: result = method(list[0], list[1], list[2], list[3], list[4], list[5], list[6], list[7]); break;
        case 9: result = method(list[0], list[1], list[2], list[3], list[4], list[5], list[6], list[7], list[8]); break;
        case 10:
            result = method(list[0], list[1], list[2], list[3], list[4], list[5], list[6], list[7], list[8], list[9]);
            break;
        }
        return result;
    }

    // The engine forgets what it knows of an object's methods when it has forgotten the object.
    var kept = [];

    function guarded(method, index, safe) {
        return function () {
            for (var i = 0; i < arguments.length; ++i) {
                if (i === index)
                    arguments[i] = safe(arguments[i]);
                else if (typeof arguments[i] === 'object' || typeof arguments[i] === 'function')
                    arguments[i] = plain(arguments[i]);
            }
            try {
                var result = kept && call(method, arguments);
                return result;
            } catch (error) {
                throw refused(error);
            }
        };
    }

    // The function that connect and disconnect are about. The engine itself would look for the member of a receiver that
    // is none, and would tell it who asks.
    function listener(name, list) {
        var found = list[list.length > 1 ? 1 : 0];
        if (list.length > 1 && (list[0] === null || list[0] === undefined))
            throw errorOf(TypeErrorObject, 'QtMetaMethod.' + name + ': thisObject is not an object');
        if (list.length > 1 && typeof found !== 'function')
            found = list[0][StringObject(found)];
        if (typeof found !== 'function')
            throw errorOf(TypeErrorObject, 'QtMetaMethod.' + name + ': target is not a function');
        return found;
    }

    // A slot whose last argument may be left out: the engine refuses a call with fewer arguments than the slot has.
    function optionalLast(method, count) {
        return function () {
            if (arguments.length === count - 1) {
                put(arguments, count - 1, undefined);
                arguments.length = count;
            }
            var result = call(method, arguments);
            return result;
        };
    }

    // A signal's functions connect and disconnect. What the engine calls is not the page's function, which could find out
    // who calls, and of which it would read as many arguments as it says it has.
    function guardedSignal(signal) {
        var guard = guarded(signal, signal.name.indexOf('destroyed') === 0 ? 0 : undefined, function (value) {
            return value;
        });
        var connect = signal.connect;
        var disconnect = signal.disconnect;
        var connections = [];

        function finished(action, list) {
            try {
                call(action, list);
            } catch (error) {
                throw refused(error);
            }
        }

        put(guard, 'connect', function (receiver) {
            if (!arguments.length)
                finished(connect, arguments);
            var called = listener('connect', arguments);
            var self = arguments.length > 1 ? receiver : undefined;
            var relay = function () {
                if (arguments.length)
                    called.call(self, arguments[0]);
                else
                    called.call(self);
            };
            var connection = create(null);
            connection.self = self;
            connection.called = called;
            connection.relay = relay;
            finished(connect, [relay]);
            put(connections, connections.length, connection);
        });
        put(guard, 'disconnect', function (receiver) {
            if (!arguments.length)
                finished(disconnect, arguments);
            var called = listener('disconnect', arguments);
            var self = arguments.length > 1 ? receiver : undefined;
            for (var i = 0; i < connections.length; ++i) {
                if (connections[i].called === called && connections[i].self === self) {
                    finished(disconnect, [connections[i].relay]);
                    put(connections, i, connections[connections.length - 1]);
                    connections.length -= 1;
                    return;
                }
            }
            finished(disconnect, [function () {}]);
        });
        return guard;
    }

    var isSignal = create(null);
    isSignal.destroyed = isSignal.jsCallback = isSignal.keyDelayChanged = isSignal.ExitToMenuSignal = true;

    // By object and slot: which argument is made safe and how, and how many the slot has if the last may be left out; or
    // what is called in place of the slot.
    var guards = {
        StbMedia: {PlayFile: [5, subtitles, 6]},
        StbDisplay: {SetOrder: [0, numbers]},
        StbPVR: {AddRecord: [2, dateTime], SetRecordStartTime: [1, variant], GetRecordsList: recordsList},
        stb_media: {},
        stb_display: {}
    };

    // Objects that inherit from a script object get members of their own, unless they take no more, which on a box makes
    // no error.
    function setBeyond(guard, object, name, value) {
        if (object === guard || !isObject(object))
            return;
        try {
            put(object, name, value);
        } catch (ignored) {
        }
    }

    // As in the engine's own objects, a slot takes no other value, and says nothing about it.
    function addMethod(guard, name, method) {
        define(guard, name, {
            get: function () { return method; },
            set: function (value) { setBeyond(guard, this, name, value); }
        });
    }

    function methodFor(target, name, slot, rule) {
        if (typeof rule === 'function')
            return guarded(rule);
        if (isSignal[slot])
            return guardedSignal(target[name]);
        if (!rule)
            return guarded(target[name]);
        return guarded(rule[2] ? optionalLast(target[name], rule[2]) : target[name], rule[0], rule[1]);
    }

    function addProperty(guard, target, name, objectName) {
        define(guard, name, {
            get: function () { var value = target[name]; return value; },
            set: function (value) {
                setBeyond(guard, this, name, value);
                if (this !== guard)
                    return;
                target[name] = plain(value);
                if (name === 'objectName')
                    pageGuards.rename(objectName);
            },
            enumerable: true
        });
    }

    Object.keys(guards).forEach(function (objectName) {
        var guard = window[objectName];
        // The engine decides at the first look where it looks for members of its own: nowhere, until now.
        if (guard.members)
            return;
        var target = pageGuards.guarded(objectName);
        var rules = guards[objectName];
        put(kept, kept.length, target);
        Object.keys(guard).forEach(function (name) {
            var slot = name.split('(')[0];
            if (slot === name) {
                addProperty(guard, target, name, objectName);
                return;
            }
            addMethod(guard, name, methodFor(target, name, slot, rules[slot]));
            if (!hasOwnProperty.call(guard, slot))
                addMethod(guard, slot, methodFor(target, slot, slot, rules[slot]));
        });
        // The engine looks the members of an object with so many up anew at each use, until it has gone through it as a
        // prototype.
        for (var name in create(guard)) // eslint-disable-line no-unused-vars -- a loop needs one
            break;
    });
})();
