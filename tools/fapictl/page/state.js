// Who is there: services, processes, what the service and its board tell of themselves.
import { attempt, button, h } from './dom.js';
import { connection, onConnection, rpc } from './rpc.js';

const parts = {};
let visible = false;

const table = (caption, heads, rows) => h('table', {}, h('caption', {}, caption),
  h('thead', {}, h('tr', {}, heads.map((head) => h('th', { scope: 'col' }, head)))),
  h('tbody', {}, rows.map((row) => h('tr', {}, row.map((cell) => h('td', {}, String(cell)))))));

async function refresh() {
  if (!visible) return;
  await attempt(async () => {
    const [version, services] = await Promise.all([rpc('version'), rpc('list', { all: true })]);
    parts.server.textContent = `fapictl ${version.version}, process ${version.pid}, protocol ${version.protocol}`;
    parts.services.replaceChildren(services.length > 0
      ? table('Registered services', ['Interface', 'Instance', 'Process'], services.map((one) => [one.interface, one.instance, one.pid]))
      : h('p', { class: 'empty' }, 'No service is registered.'));
    if (connection.state === 'no-service') return;
    parts.debug.textContent = (await rpc('debug', { interface: 'Manager', timeout: 5 })).text;
    parts.board.textContent = connection.board ? (await rpc('state')).text : 'This is no simulated board.';
  });
}

function build(root) {
  parts.server = h('p', { class: 'muted' }, '…');
  parts.services = h('div', { class: 'scroll', tabIndex: 0, role: 'region', 'aria-label': 'Registered services' });
  parts.debug = h('pre', { class: 'card scroll tall', tabIndex: 0, 'aria-label': 'What debug() tells' });
  parts.board = h('pre', { class: 'card scroll tall', tabIndex: 0, 'aria-label': 'The board’s printed state' });
  root.append(h('div', { class: 'row' }, h('h2', {}, 'State'), button('Refresh', refresh)), parts.server, parts.services,
    h('div', { class: 'grid two' }, h('div', {}, h('h3', {}, 'The service: clients, calls'), parts.debug),
      h('div', {}, h('h3', {}, 'The board'), parts.board)));
  onConnection(refresh);
}

export const view = {
  id: 'state', title: 'State', build,
  show() { visible = true; refresh(); },
  hide() { visible = false; },
};
