import { connect, connection, onConnection } from './rpc.js';
import { h } from './dom.js';
import { view as set } from './set.js';
import { view as methods } from './methods.js';
import { view as events } from './events.js';
import { view as state } from './state.js';

const views = [set, methods, events, state];
const nav = document.querySelector('nav');
const main = document.querySelector('main');
const banner = document.getElementById('banner');
const roots = new Map();
let shown = null;

const says = {
  connecting: ['connecting', 'warn', ''],
  ready: ['ready', 'ok', ''],
  'not-ready': ['not ready', 'warn', 'The chip-layer library is not ready: calls are refused with -5. This page goes on when it is.'],
  'no-service': ['no service', 'bad', 'The service is not running. This page goes on when it is back.'],
  'server-gone': ['server gone', 'bad', 'Nothing serves this page any more. Start “fapictl serve” again and open the address that it prints.'],
};

function route() {
  const [id, ...rest] = decodeURIComponent(location.hash.slice(1)).split('/');
  const view = views.find((one) => one.id === id) ?? views[0];
  if (!roots.has(view)) {
    roots.set(view, h('section', { 'aria-label': view.title, id: `view-${view.id}` }));
    view.build(roots.get(view));
  }
  if (shown !== view) {
    shown?.hide();
    main.replaceChildren(roots.get(view));
    shown = view;
    document.title = `${view.title} – factory service`;
    for (const link of nav.children) {
      if (link.hash === `#${view.id}`) link.setAttribute('aria-current', 'page');
      else link.removeAttribute('aria-current');
    }
  }
  view.show(rest.join('/'));
}

nav.append(...views.map((view) => h('a', { href: `#${view.id}` }, view.title)));
addEventListener('hashchange', route);
route();
onConnection(() => {
  const [text, kind, help] = says[connection.state];
  document.getElementById('connection').replaceChildren(h('span', { class: `badge ${kind}` }, text));
  banner.textContent = help;
  banner.className = kind;
  banner.hidden = help === '';
  document.body.dataset.connection = connection.state;
});
connect();
