// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Of the scripts that run in pages: the language and the names are those of the box's engine.
'use strict';

const fs = require('fs');
const path = require('path');
const js = require('@eslint/js');

// The global names of an engine, as the desk box knows them.
function names(entry) {
    const text = fs.readFileSync('launcher/engine/builtins.txt', 'utf8');
    return text.match(new RegExp(`^${entry}:(.*(?:\n .*)*)`, 'm'))[1].trim().split(/\s+/);
}

// What the scripts of a folder, which run in one page, declare for each other.
function declaredIn(folder) {
    const texts = fs.readdirSync(folder).filter((file) => file.endsWith('.js'))
        .map((file) => fs.readFileSync(path.join(folder, file), 'utf8'));
    return texts.flatMap((text) => [...text.matchAll(/^(?:var|function) (\w+)/gm)].map((match) => match[1]));
}

function readable(list) {
    return Object.fromEntries(list.map((name) => [name, 'readonly']));
}

const scriptObjects = ['StbMedia', 'StbDisplay', 'StbPVR', 'stb_media', 'stb_display'];

module.exports = [
    {
        linterOptions: {reportUnusedDisableDirectives: 'error'},
        languageOptions: {
            ecmaVersion: 5,
            sourceType: 'script',
            globals: readable([...names('window'), ...scriptObjects])
        },
        rules: {
            ...js.configs.recommended.rules,
            'eqeqeq': 'error',
            'no-caller': 'error',
            'no-empty': ['error', {allowEmptyCatch: true}],
            'no-eval': 'error',
            'no-extend-native': 'error',
            'no-implied-eval': 'error',
            'no-loop-func': 'error',
            'no-new-wrappers': 'error',
            // Each file of a page declares names that others use.
            'no-redeclare': ['error', {builtinGlobals: false}],
            // An own member stays what the page may change in the prototype.
            'no-self-assign': ['error', {props: false}],
            'no-sequences': 'error',
            'no-shadow': 'error',
            'no-unused-vars': ['error', {vars: 'local', caughtErrors: 'none'}],
            'no-use-before-define': ['error', {functions: false}],
            'no-with': 'error',
            'radix': 'error'
        }
    },
    {
        files: ['resources/page/*.js', 'portal/js/*.js'],
        // Pages can read the text of this one function.
        ignores: ['resources/page/callback.js'],
        rules: {'strict': ['error', 'function']}
    },
    {
        files: ['portal/js/*.js'],
        languageOptions: {globals: readable(declaredIn('portal/js'))}
    },
    // Those that run on the PC alone.
    {
        files: ['launcher/engine/*.js'],
        languageOptions: {globals: readable([...declaredIn('launcher/engine'), 'acorn', 'lists'])}
    },
    {
        files: ['tests/fuzz/page/*.js'],
        languageOptions: {globals: readable(['MutationObserver'])}
    },
    {
        files: ['tests/launcher/*.js'],
        languageOptions: {globals: readable(['XSLTProcessor', 'leave', 'tell'])}
    }
];
