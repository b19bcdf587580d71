// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/PageGuard.h"

namespace {

// The engine reads through a null pointer when it converts a Date whose value is NaN, and runs out of stack when it
// converts an object that is nested too deeply. Both happen before a slot is called, and only for parameters of types
// that take a Date or an object; those parameters are guarded. What a guard passes on in place of an object is what the
// slot would have made of it.
//
// No function here returns a call's result directly, nor calls one of the language's own that does, such as call and
// bind make. The engine would give up the frame for such a call, and without it crashes if the call throws. It is told
// not to (see PluginWrapper), but a launcher may have started it before.
//
// The page cannot reach the objects behind the guards, nor change what the guards rely on: all functions of the
// language that they use are taken before the page's first script runs.
const char script[] = R"js(
(function () {
    'use strict';
    var apply = Reflect.apply;
    var toString = Object.prototype.toString;
    var getTime = Date.prototype.getTime;
    var isArray = Array.isArray;
    var arrayFrom = Array.from;
    var define = Object.defineProperty;
    var create = Object.create;
    var DateObject = Date;
    var RangeErrorObject = RangeError;
    var TypeErrorObject = TypeError;
    var longestList = 100000;

    // A page can have an object pose as one of another class. A reader of the wrong class throws, and what it poses as
    // is never passed on itself. Trying all readers would do as well, but the engine's compiler loses exceptions that a
    // function catches.
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
        var kind = apply(toString, object, []);
        if (kind === '[object Date]') {
            var time = apply(getTime, object, []);
            return time === time ? new DateObject(time) : onInvalid;
        }
        var read = readers[kind];
        var value = read ? apply(read, object, []) : undefined;
        return value;
    }

    // For a QDateTime: this number has no date either, and the engine knows how to say so.
    function dateTime(value) {
        var simple = isObject(value) ? held(value, Infinity) : value;
        return simple;
    }

    // For a QVariant. The engine does not convert NaN.
    function variant(value) {
        var simple = isObject(value) ? held(value) : value;
        return simple === simple ? simple : undefined;
    }

    // For an entry of a list of numbers.
    function number(value) {
        var simple = variant(value);
        var type = typeof simple;
        return type === 'string' || type === 'boolean' || type === 'number' ? simple : 0;
    }

    // An array can claim four billion entries that it does not have, and the engine would make them all. Entries are
    // taken by their indexes: going through them would be the page's to define.
    function numbers(value) {
        if (!isArray(value)) {
            var single = number(value);
            return single;
        }
        if (value.length > longestList)
            throw new RangeErrorObject('The list has more than ' + longestList + ' entries');
        var places = create(null);
        places.length = value.length;
        var list = arrayFrom(places, function (nothing, index) { var entry = number(value[index]); return entry; });
        return list;
    }

    // In place of StbPVR.GetRecordsList.
    var recordTimes = window.recordTimes;
    delete window.recordTimes;
    function recordsList() {
        var records = recordTimes.GetRecordsList();
        for (var i = 0; i < records.length; ++i)
            records[i].start = new DateObject(records[i].start);
        return records;
    }

    function guarded(target, method, index, safe) {
        return function () {
            if (index < arguments.length)
                arguments[index] = safe(arguments[index]);
            var result = apply(method, target, arguments);
            return result;
        };
    }

    // A signal's functions connect and disconnect. The engine looks for the member even of a receiver that is none.
    function withReceiver(signal, action) {
        return function (receiver) {
            if (arguments.length > 1 && (receiver === null || receiver === undefined))
                throw new TypeErrorObject('The receiver of a signal cannot be ' + receiver);
            var result = apply(action, signal, arguments);
            return result;
        };
    }

    function guardedSignal(target, signal) {
        var guard = function () { var result = apply(signal, target, arguments); return result; };
        define(guard, 'connect', {value: withReceiver(signal, signal.connect)});
        define(guard, 'disconnect', {value: withReceiver(signal, signal.disconnect)});
        return guard;
    }

    var isSignal = create(null);
    isSignal.destroyed = isSignal.objectNameChanged = isSignal.jsCallback = true;
    isSignal.keyDelayChanged = isSignal.ExitToMenuSignal = true;

    // By object and slot: which argument is made safe and how, or what is called in place of the slot.
    var guards = {
        StbMedia: {PlayFile: [5, variant]},
        StbDisplay: {SetOrder: [0, numbers]},
        StbPVR: {AddRecord: [2, dateTime], SetRecordStartTime: [1, variant], GetRecordsList: recordsList},
        stb_media: {},
        stb_display: {}
    };

    function addMethod(guard, target, name, slot, isListed) {
        var rule = guards[guard.name][slot];
        var method = target[name];
        if (rule)
            method = typeof rule === 'function' ? rule : guarded(target, method, rule[0], rule[1]);
        else if (isSignal[slot])
            method = guardedSignal(target, method);
        define(guard.object, name, {value: method, enumerable: isListed});
    }

    function addProperty(guard, target, name) {
        define(guard.object, name, {get: function () { return target[name]; },
                                    set: function (value) { target[name] = value; }, enumerable: true});
    }

    Object.keys(guards).forEach(function (objectName) {
        var target = window[objectName];
        var guard = {name: objectName, object: {}};
        for (var name in target) {
            var slot = name.split('(')[0];
            if (slot === name) {
                addProperty(guard, target, name);
                continue;
            }
            addMethod(guard, target, name, slot, true);
            if (!guard.object.hasOwnProperty(slot))
                addMethod(guard, target, slot, slot, false);
        }
        define(guard.object, 'toString', {value: function () { return '' + target; }});
        window[objectName] = guard.object;
    });
})();
)js";

} // namespace

QString pageGuardScript()
{
    return QLatin1String(script);
}
