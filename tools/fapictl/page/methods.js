// All methods: what they are, forms to call them, what came back.
import { attempt, button, copyText, field, h } from './dom.js';
import { asCpp, asPython, asShell } from './copy.js';
import { fieldOf, hintOf } from './form.js';
import { call, look, onConnection, rpc } from './rpc.js';

const kHistory = 50;

let interfaces = [];
let wanted = '';
const parts = {};
const history = JSON.parse(sessionStorage.getItem('history') ?? '[]');

const linkOf = (owner, method) => `#methods/${owner.shortName}/${method.shortName}`;

/** Paragraphs and lists as they stand in a doc comment. */
function documentation(text) {
  return text.split('\n\n').map((part) => (part.startsWith('- ')
    ? h('ul', {}, part.split(/\n- |^- /).filter(Boolean).map((line) => h('li', {}, line.replaceAll('\n', ' '))))
    : h('p', {}, part)));
}

function fill() {
  const text = parts.search.value.toLowerCase();
  let count = 0;
  const groups = interfaces.map((owner) => {
    const items = owner.methods.filter((one) => `${owner.shortName} ${one.name} ${one.doc}`.toLowerCase().includes(text));
    count += items.length;
    return items.length === 0 ? null : h('li', {}, h('h3', {}, owner.shortName),
      h('ul', {}, items.map((one) => h('li', {}, h('a', {
        href: linkOf(owner, one), ...(location.hash === linkOf(owner, one) ? { 'aria-current': 'true' } : {}),
      }, one.shortName)))));
  });
  parts.list.replaceChildren(...groups.filter(Boolean));
  parts.count.textContent = interfaces.length === 0 ? 'Loading …' : count === 0 ? 'No method is called so.' : `${count} methods`;
}

function valueText(value) {
  return typeof value === 'string' ? value : JSON.stringify(value, null, 1);
}

function resultTable(method, answer) {
  const rows = method.results.map((one) => {
    const value = answer.results[one.name];
    const isStatus = one.name === 's32Status' && answer.status;
    const name = isStatus ? ` (${answer.status.name})` : '';
    return h('tr', {}, h('th', { scope: 'row' }, one.name), h('td', { class: 'mono wrap' }, valueText(value) + name), h('td', { class: 'muted' }, one.unit ?? ''));
  });
  return h('div', {}, h('p', {}, h('span', { class: `badge ${answer.failed ? 'bad' : 'ok'}` }, answer.failed ? 'failed' : 'done'),
    ` in ${answer.milliseconds.toFixed(2)} ms`, answer.lossy ? '; some text is not UTF-8' : '',
    answer.status?.reason ? h('span', { class: 'error' }, ` ${answer.status.reason}`) : null),
  h('div', { class: 'scroll', tabIndex: 0, role: 'region', 'aria-label': 'Results' }, h('table', {}, h('tbody', {}, rows))));
}

function remember(entry) {
  history.unshift(entry);
  history.splice(kHistory);
  try {
    sessionStorage.setItem('history', JSON.stringify(history));
  } catch { /* too large to keep over a reload */ }
  drawHistory();
}

function drawHistory() {
  parts.history.replaceChildren(...history.map((one) => h('tr', {}, h('td', {}, one.time), h('td', {}, `${one.owner}.${one.method}`),
    h('td', { class: 'mono clip' }, JSON.stringify(one.args)), h('td', {}, h('span', { class: `badge ${one.failed ? 'bad' : 'ok'}` }, one.status)),
    h('td', {}, button('Again', () => {
      // No hashchange, which would open the form anew and lose the answer.
      wanted = `${one.owner}/${one.method}`;
      window.history.replaceState(null, '', `#methods/${wanted}`);
      open(one.owner, one.method, one.args)?.();
    }, { 'aria-label': `${one.method} again` })))));
  parts.historyEmpty.hidden = history.length > 0;
}

/** Shows a method's form; returns what sends it. */
function open(ownerName, methodName, given) {
  const owner = interfaces.find((one) => one.shortName === ownerName);
  const method = owner?.methods.find((one) => one.shortName === methodName);
  if (!method) {
    parts.method.replaceChildren(h('p', { class: 'empty' }, ownerName ? `There is no method ${ownerName}.${methodName}.` : 'Choose a method.'));
    return undefined;
  }
  const fields = method.arguments.map((one) => [one.name, fieldOf(one.name, one.type, owner.types, hintOf(one))]);
  const outcome = h('div', { role: 'status', class: 'outcome' });
  const read = () => Object.fromEntries(fields.map(([name, one]) => [name, one.read()]));
  if (given) fields.forEach(([name, one]) => { if (given[name] !== undefined) one.write(given[name]); });
  const send = async () => {
    const entry = { time: new Date().toLocaleTimeString(), owner: ownerName, method: methodName, args: {}, failed: true, status: '' };
    try {
      entry.args = read();
    } catch (problem) {
      outcome.replaceChildren(h('p', { class: 'error' }, `Not sent: ${problem.message}`));
      return;
    }
    try {
      const answer = await call(owner.interface, method.name, entry.args);
      outcome.replaceChildren(resultTable(method, answer));
      entry.failed = answer.failed;
      entry.status = answer.status ? String(answer.status.number) : answer.failed ? 'false' : 'ok';
      look();
    } catch (problem) {
      outcome.replaceChildren(h('p', { class: 'error' }, problem.message));
      entry.status = 'no answer';
    }
    remember(entry);
  };
  const copy = (name, write) => button(name, () => attempt(async () => copyText(write(owner, method, read()))));
  parts.method.replaceChildren(h('h3', {}, `${owner.shortName}.${method.shortName}`), h('p', { class: 'mono muted wrap' }, method.name),
    ...documentation(method.doc),
    h('form', { onsubmit: (submitted) => { submitted.preventDefault(); send(); } }, fields.map(([, one]) => one.element),
      h('div', { class: 'row' }, h('button', { class: 'primary' }, 'Call'), h('span', { class: 'muted' }, 'copy as'),
        copy('shell', asShell), copy('Python', asPython), copy('C++', asCpp))),
    outcome,
    h('details', {}, h('summary', {}, 'Results'), h('dl', {}, method.results.map((one) => [h('dt', {}, one.name, h('small', { class: 'muted' }, ` ${one.type}`)), h('dd', {}, hintOf(one))]))));
  fill();
  return send;
}

async function load() {
  if (interfaces.length > 0) return;
  interfaces = (await attempt(() => rpc('introspect')) ?? []).filter((one) => one.service);
  fill();
  open(...wanted.split('/'));
}

function build(root) {
  parts.search = h('input', { type: 'search', oninput: fill, placeholder: 'volume, edid …' });
  parts.count = h('p', { class: 'muted', role: 'status' });
  parts.list = h('ul', { class: 'methods' });
  parts.method = h('article', { class: 'card' });
  parts.history = h('tbody');
  parts.historyEmpty = h('p', { class: 'empty' }, 'No call has been made from here.');
  root.append(h('h2', {}, 'Methods'), h('div', { class: 'split' },
    h('nav', { 'aria-label': 'Methods' }, field('Search', parts.search), parts.count, h('div', { class: 'scroll list', tabIndex: 0, role: 'region', 'aria-label': 'List of methods' }, parts.list)),
    h('div', {}, parts.method, h('h3', {}, 'History'), parts.historyEmpty,
      h('div', { class: 'scroll', tabIndex: 0, role: 'region', 'aria-label': 'Calls made from here' }, h('table', {}, h('thead', {}, h('tr', {}, ['Time', 'Method', 'Arguments', 'Status', 'Repeat'].map((name) => h('th', { scope: 'col' }, name)))), parts.history)))));
  drawHistory();
  fill();
  onConnection(({ state }) => { if (!['connecting', 'server-gone'].includes(state)) load(); });
}

export const view = {
  id: 'methods', title: 'Methods', build,
  show(rest) { wanted = rest; if (interfaces.length > 0) open(...rest.split('/')); else open(); },
  hide() {},
};
