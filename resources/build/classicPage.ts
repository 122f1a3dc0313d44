import type { Plugin } from 'vite';

/**
 * The built page carries classic scripts, which also load where there is no server (its tests open it
 * as a file), and a policy that allows its own files only. The program sends the same policy with
 * every file, and more: this one holds wherever else the page is opened. Rolldown writes
 * them as CommonJS chunks; each is put into a function here, and what it exports stands under its
 * file name in a table that all of them share.
 */
const policy = [
  "default-src 'none'",
  "script-src 'self'",
  "style-src 'self'",
  "img-src 'self' data:",
  "font-src 'self'",
  "base-uri 'none'",
  "form-action 'none'",
].join('; ');

export const table = 'globalThis.veltoScripts';

/** The first script makes the table; asking for a script that has not been loaded is an error. */
function classicScript(fileName: string, code: string, isFirst: boolean): string {
  const name = JSON.stringify(`./${fileName}`);
  const begin = isFirst ? `${table}={};` : '';
  return (
    `(function(){"use strict";${begin}` +
    `const exports=${table}[${name}]={};` +
    `function require(name){const found=${table}[name];if(!found)throw new Error(name+" is not loaded");return found}` +
    `${code}\n})();\n`
  );
}

/**
 * The engine keeps a script of ASCII alone in half the memory and reads it faster. Beyond it there
 * are only texts here, where an escape means the same.
 */
export function inAscii(code: string): string {
  return code.replace(/[^\0-\x7f]/g, (unit) => `\\u${unit.charCodeAt(0).toString(16).padStart(4, '0')}`);
}

const preloadHelper = '\0vite/preload-helper.js';

export function classicPage(): Plugin {
  return {
    name: 'velto:classic-page',
    apply: 'build',
    enforce: 'pre',
    // Nothing is preloaded: `laterViews` asks for the second script and style sheet itself.
    load: (id) => (id === preloadHelper ? 'export const __vitePreload = (load) => load();' : null),
    generateBundle(_options, bundle) {
      for (const file of Object.values(bundle)) {
        if (file.type === 'chunk') file.code = inAscii(classicScript(file.fileName, file.code, file.isEntry));
      }
    },
    transformIndexHtml: {
      order: 'post',
      handler: (html) =>
        html
          .replace(/<script type="module" crossorigin/g, '<script defer')
          .replace(/<link rel="stylesheet" crossorigin/g, '<link rel="stylesheet"')
          .replace(
            '<meta charset="utf-8" />',
            `<meta charset="utf-8" />\n    <meta http-equiv="Content-Security-Policy" content="${policy}" />`,
          ),
    },
  };
}
