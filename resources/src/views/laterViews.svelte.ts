/**
 * The views of the second script. It is asked for once the first state has been painted, or as soon
 * as one of its views is wanted, whichever comes first.
 */
import type { Component } from 'svelte';
import type { Category, ViewName } from '../protocol/protocol.ts';

/** Resolves when the page has taken the file in; an element that failed is taken out again. */
function add(element: HTMLScriptElement | HTMLLinkElement): Promise<void> {
  return new Promise((resolve, reject) => {
    element.onload = () => resolve();
    element.onerror = () => {
      element.remove();
      reject(new Error('a part of the page cannot be read'));
    };
    document.head.append(element);
  });
}

export function addScript(file: string): Promise<void> {
  return add(Object.assign(document.createElement('script'), { src: file }));
}

function addStyles(file: string): Promise<void> {
  return add(Object.assign(document.createElement('link'), { rel: 'stylesheet', href: file }));
}

class LaterViews {
  failed = $state(false);
  /** What lies over every view; null until the script is there. */
  Overlays = $state.raw<Component | null>(null);
  /** Parts of the view at the start; null until the script is there. */
  GrowthCard = $state.raw<Component | null>(null);
  NotMeasured = $state.raw<Component | null>(null);
  SystemParts = $state.raw<Component<{ category: Category }> | null>(null);
  MapStrip = $state.raw<Component<{ name: string; gb: number }> | null>(null);
  private find = $state.raw<((name: ViewName) => Component | null) | null>(null);
  private asked = false;

  /** Null until the script is there. */
  content(name: ViewName): Component | null {
    return this.find?.(name) ?? null;
  }

  async load(): Promise<void> {
    if (this.asked) return;
    this.asked = true;
    this.failed = false;
    try {
      await Promise.all([addScript('./later.js'), addStyles('./later.css')]);
      const later = await import('./later.ts');
      // A script that ends early is loaded all the same, and has nothing to give.
      if (typeof later.contentOf !== 'function') throw new Error('the second script ended early');
      later.startLater();
      this.find = later.contentOf;
      Object.assign(this, later.overviewParts);
      this.Overlays = later.Overlays;
    } catch (error) {
      console.error('[velto] later.js', error);
      this.asked = false;
      this.failed = true;
    }
  }
}

export const laterViews = new LaterViews();
