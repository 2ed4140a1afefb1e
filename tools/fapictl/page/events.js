// What the service tells its clients.
import { attempt, button, field, h } from './dom.js';
import { on, rpc } from './rpc.js';

const kKept = 10000;
const kShown = 300;

const all = [];
let waiting = 0; // while it is paused
let lost = 0;
let paused = false;
let planned = false;
let visible = false;
const parts = {};

const typeText = (type) => `0x${type.toString(16)}`;

function recordText({ value, text, bytes }) {
  return [value ? `value=${value}` : '', text ? `text=${JSON.stringify(text)}` : '', bytes ? `bytes=${bytes}` : '']
    .filter(Boolean).join(' ') || '-';
}

function taken() {
  const module = parts.module.value;
  const type = parts.type.value.trim().toLowerCase();
  const text = parts.text.value.toLowerCase();
  return (event) => (module === '' || event.module === module)
    && (type === '' || typeText(event.type).includes(type) || String(event.type) === type)
    && (text === '' || event.line.toLowerCase().includes(text));
}

function draw() {
  planned = false;
  if (!visible) return;
  const takes = taken();
  const rows = [];
  let count = 0;
  for (let i = all.length - 1; i >= 0; i -= 1) {
    const event = all[i];
    if (!takes(event)) continue;
    count += 1;
    if (rows.length < kShown) {
      rows.push(h('tr', {}, h('td', {}, event.time.slice(11, 23)), h('td', {}, event.module),
        h('td', { class: 'mono' }, typeText(event.type)), h('td', { class: 'mono wrap' }, event.line)));
    }
  }
  parts.rows.replaceChildren(...rows);
  parts.empty.hidden = rows.length > 0;
  parts.empty.textContent = all.length > 0 ? 'No event passes the filter.' : 'No event has come yet.';
  parts.count.textContent = `${count} of ${all.length} events${count > kShown ? `, the last ${kShown} shown` : ''}`
    + (paused ? `, paused; ${waiting} came meanwhile` : '') + (lost ? `, ${lost} lost` : '');
}

function plan() {
  if (planned) return;
  planned = true;
  requestAnimationFrame(draw);
}

const held = [];

function add(event) {
  all.push(event);
  if (all.length > kKept * 1.1) all.splice(0, all.length - kKept);
}

on('event', (event) => {
  event.line = event.records.map(recordText).join(' | ');
  if (paused) {
    held.push(event);
    if (held.length > kKept) held.shift();
    waiting += 1;
  } else {
    add(event);
  }
  plan();
});
on('dropped', ({ count }) => {
  lost += count;
  plan();
});

function pause() {
  paused = !paused;
  parts.pause.textContent = paused ? 'Go on' : 'Pause';
  if (!paused) {
    held.splice(0).forEach(add);
    waiting = 0;
  }
  draw();
}

function save() {
  const takes = taken();
  const lines = all.filter(takes).map(({ line, watch, ...event }) => `${JSON.stringify(event)}\n`);
  const link = h('a', { href: URL.createObjectURL(new Blob(lines, { type: 'application/jsonl' })), download: 'events.jsonl' });
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 1000);
}

function post(submitted) {
  submitted.preventDefault();
  const { type, ...texts } = Object.fromEntries(new FormData(submitted.target));
  const records = Object.values(texts);
  while (records.length > 0 && records.at(-1).trim() === '') records.pop();
  attempt(async () => {
    const answer = await rpc('post', { type, records: records.map((text) => text.trim() || '-') });
    if (answer.failed) throw new Error(`post_event: ${answer.status.number} (${answer.status.name})`);
  }, 'Posted');
}

function build(root) {
  const filter = (props) => h('input', { oninput: plan, type: 'search', ...props });
  parts.module = h('select', { onchange: plan }, h('option', { value: '' }, 'all'),
    ['sys', 'net', 'disp', 'disptst', 'prphrl', 'inpsrc', 'aud', 'info', 'tv'].map((name) => h('option', {}, name)));
  parts.type = filter({ placeholder: '0x40001', size: 10 });
  parts.text = filter({ placeholder: 'text, value=3 …' });
  parts.pause = button('Pause', pause);
  parts.count = h('p', { class: 'muted', role: 'status' });
  parts.rows = h('tbody');
  parts.empty = h('p', { class: 'empty' });
  root.append(h('h2', {}, 'Events'),
    h('div', { class: 'row' }, field('Module', parts.module), field('Type', parts.type), field('Content', parts.text),
      parts.pause, button('Clear', () => { all.length = 0; lost = 0; draw(); }), button('Export', save)),
    parts.count,
    h('div', { class: 'scroll tall', tabIndex: 0, role: 'region', 'aria-label': 'Events, the newest first' },
      h('table', {}, h('thead', {}, h('tr', {}, ['Time', 'Module', 'Type', 'Records'].map((name) => h('th', { scope: 'col' }, name)))),
        parts.rows), parts.empty),
    h('h3', {}, 'Post an event'),
    h('form', { class: 'row card', onsubmit: post }, field('Type', h('input', { name: 'type', required: true, value: '0x10000', size: 10 })),
      [1, 2, 3, 4].map((number) => field(`Record ${number}`, h('input', { name: `r${number}`, placeholder: number === 1 ? 'value=3 text=hello' : '-' }))),
      h('button', {}, 'Post')));
}

export const view = {
  id: 'events', title: 'Events', build,
  show() { visible = true; draw(); },
  hide() { visible = false; },
};
