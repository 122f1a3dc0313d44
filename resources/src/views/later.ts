/**
 * The second script: every view that is not on screen at the start. Whatever the first script
 * imports as well stands there once and is shared.
 */
import type { Component } from 'svelte';
import type { ViewName } from '../protocol/protocol.ts';
import Ajustes from './ajustes/Ajustes.svelte';
import Archivos from './archivos/Archivos.svelte';
import Duplicados from './duplicados/Duplicados.svelte';
import NotYet from './NotYet.svelte';

const contents: Partial<Record<ViewName, Component>> = {
  archivos: Archivos,
  duplicados: Duplicados,
  ajustes: Ajustes,
};

export function contentOf(name: ViewName): Component {
  return contents[name] ?? NotYet;
}
