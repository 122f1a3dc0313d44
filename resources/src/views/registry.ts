/** The views of the rail. Adding one is a folder beside this file and a row here. */
import Copy from '@lucide/svelte/icons/copy';
import FileStack from '@lucide/svelte/icons/file-stack';
import LayoutDashboard from '@lucide/svelte/icons/layout-dashboard';
import Settings from '@lucide/svelte/icons/settings';
import type { Component } from 'svelte';
import type { ViewName } from '../protocol/protocol.ts';
import Ajustes from './ajustes/Ajustes.svelte';
import Archivos from './archivos/Archivos.svelte';
import Duplicados from './duplicados/Duplicados.svelte';
import Inicio from './inicio/Inicio.svelte';

export interface View {
  name: ViewName;
  icon: Component<Record<string, unknown>>;
  content: Component;
}

export const views: readonly View[] = [
  { name: 'inicio', icon: LayoutDashboard, content: Inicio },
  { name: 'archivos', icon: FileStack, content: Archivos },
  { name: 'duplicados', icon: Copy, content: Duplicados },
  { name: 'ajustes', icon: Settings, content: Ajustes },
];
