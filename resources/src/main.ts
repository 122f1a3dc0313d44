import { mount } from 'svelte';
import App from './App.svelte';
import './style/tokens.css';
import './style/base.css';
import './style/categories.css';
import './style/forced.css';
import { start } from './state/start.ts';

start();
mount(App, { target: document.body });
