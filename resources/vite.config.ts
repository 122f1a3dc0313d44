import { svelte } from '@sveltejs/vite-plugin-svelte';
import { defineConfig } from 'vitest/config';
import { classicPage } from './build/classicPage.ts';

export default defineConfig(({ mode }) => ({
  base: './',
  plugins: [svelte(), classicPage()],
  // The mode "ahead" switches on every feature the page is prepared for; tests build it too.
  define: { __AHEAD__: JSON.stringify(mode === 'ahead') },
  build: {
    target: 'safari16.4',
    outDir: mode === 'ahead' ? 'dist-ahead' : 'dist',
    modulePreload: false,
    cssCodeSplit: false,
    assetsInlineLimit: 0,
    rolldownOptions: {
      output: {
        format: 'iife',
        entryFileNames: 'velto.js',
        assetFileNames: 'velto[extname]',
      },
    },
  },
  test: {
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
          fileParallelism: false,
          testTimeout: 60_000,
          hookTimeout: 60_000,
        },
      },
    ],
  },
}));
