import { fileURLToPath } from 'node:url';
import { svelte } from '@sveltejs/vite-plugin-svelte';
import { defineConfig } from 'vitest/config';
import { classicPage } from './build/classicPage.ts';
import { licenseList, papers } from './build/papers.ts';
import { staticIcons } from './build/staticIcons.ts';

export default defineConfig({
  base: './',
  plugins: [staticIcons(), svelte(), classicPage(), papers(fileURLToPath(new URL('..', import.meta.url)))],
  build: {
    target: 'safari16.4',
    modulePreload: false,
    assetsInlineLimit: 0,
    license: { fileName: licenseList },
    rolldownOptions: {
      // Vite hands `import.meta.url` to its preloading, which classicPage replaces.
      checks: { emptyImportMeta: false },
      output: {
        format: 'cjs', // see classicPage
        entryFileNames: 'velto.js',
        chunkFileNames: '[name].js',
        assetFileNames: ({ names }) => (names.includes('index.css') ? 'velto.css' : '[name][extname]'),
      },
    },
  },
  test: {
    // Only what fails is listed by name: what a run prints is cut where it is long.
    slowTestThreshold: 60_000,
    projects: [
      {
        extends: true,
        test: { name: 'logic', include: ['tests/logic/**/*.test.ts'], environment: 'node' },
      },
      {
        extends: true,
        test: {
          name: 'page',
          include: ['tests/page/**/*.test.ts'],
          environment: 'node',
          // Half of their time the pages wait; more at once would get in each other's way.
          maxWorkers: 2,
          // A browser stumbles now and then on a busy machine; the report tells what took two.
          retry: 1,
          testTimeout: 60_000,
          hookTimeout: 60_000,
        },
      },
    ],
  },
});
