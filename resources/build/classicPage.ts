import type { Plugin } from 'vite';

/**
 * The web view loads the page from `file:`, where module scripts are refused. The built page
 * therefore carries one classic deferred script, and a policy that allows its own files only.
 */
const policy = [
  "default-src 'none'",
  "script-src 'self'",
  "style-src 'self'",
  "img-src 'self' data:",
  "font-src 'self'",
].join('; ');

export function classicPage(): Plugin {
  return {
    name: 'velto:classic-page',
    apply: 'build',
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
