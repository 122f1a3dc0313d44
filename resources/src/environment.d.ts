/** True in the build that switches on every feature the page is prepared for. */
declare const __AHEAD__: boolean;
