// The set: what its panel shows, and everything that can be done to it.
import { attempt, button, field, h } from './dom.js';
import { connection, look, on, onConnection, order, results, rpc } from './rpc.js';
import { terminal } from './terminal.js';

const kLayers = ['all', 'video', 'graphics', 'osd'];
const kSources = ['atv', 'dtv', 'av', 'component', 'vga', 'hdmi1', 'hdmi2', 'hdmi3', 'media'];
const kTimings = ['3840x2160@60', '3840x2160@50', '3840x2160@24', '1920x1080@60', '1920x1080@50', '1920x1080i@50', '1280x720@60',
  '1024x768@60', '720x576i@50', '720x480i@59.94'];
const kAnalogue = ['720x576i@50 pal', '720x576i@50 secam', '720x480i@59.94 ntsc', '720x480i@59.94 pal60'];
const kKeypad = { power: 116, menu: 139, source: 227, 'channel −': 403, 'channel +': 402, 'volume −': 114, 'volume +': 115 };
const kPatterns = ['off', 'plain', 'ramp', 'bars', 'board', 'grid', 'window', 'geometry', 'stripes', 'rings'];
const kPicture = ['brightness', 'contrast', 'saturation', 'hue', 'sharpness', 'backlight'];
const kPaths = ['speaker', 'headphone', 'line out', 'scart 1', 'scart 2', 'spdif', 'HDMI ARC', 'bluetooth'];
const kGpios = 64;

const parts = { sources: new Map(), volumes: [] };
let board = new Map(); // "inpsrc" to its lines
let visible = false;
let layers = 'all';

/** Does it, says what went wrong, and looks at what has become of the set. */
const act = async (work, done) => {
  await attempt(work, done);
  look();
  refresh();
};

// --- The panel.

let fetching = 0;

async function picture(revision) {
  const own = ++fetching;
  const next = new Image();
  next.src = `panel.png?layers=${layers}&revision=${revision}`;
  try {
    await next.decode();
  } catch {
    return; // a newer one is on its way, or the server is gone, which stands above
  }
  if (own !== fetching) return;
  parts.panel.src = next.src;
  parts.panel.hidden = false;
  parts.panelText.textContent = '';
  parts.panel.dataset.revision = revision;
}

on('picture', (said) => { if (said.layers === layers) picture(said.revision); });

async function watchPanel() {
  if (connection.state === 'ready' && connection.board) {
    await attempt(() => rpc('panel', { layers: visible ? layers : '' }));
    parts.panelText.textContent = parts.panel.hidden ? 'Waiting for the picture …' : '';
  } else if (connection.state === 'ready') {
    parts.panelText.textContent = 'A real set shows its picture itself.';
  } else {
    parts.panelText.textContent = parts.panel.hidden ? 'No picture yet.' : 'The last picture.';
  }
  parts.frame.classList.toggle('stale', connection.state !== 'ready');
}

// --- What the board says of itself.

function parse(text) {
  const sections = new Map();
  let lines = [];
  for (const line of text.split('\n')) {
    const head = /^\[(.+)\]$/.exec(line);
    if (head) sections.set(head[1], lines = []);
    else if (line) lines.push(line);
  }
  return sections;
}

const lineOf = (section, begin) => (board.get(section) ?? []).find((line) => line.startsWith(begin))?.slice(begin.length).trim();
const numbersOf = (section, key) => (lineOf(section, `${key} =`) ?? '').split(' ').map(Number);

let refreshing = false;
let again = false;

async function refresh() {
  if (!visible || connection.state !== 'ready' || !connection.board) return;
  if (refreshing) { again = true; return; }
  refreshing = true;
  try {
    board = parse((await rpc('state')).text);
    draw();
  } catch { /* the state of the connection stands above */ }
  refreshing = false;
  if (again) { again = false; refresh(); }
}

function draw() {
  const source = lineOf('inpsrc', 'source ');
  const lock = lineOf('inpsrc', 'lock ') ?? 'no signal';
  parts.input.textContent = `${source}: ${lock}`;
  parts.panel.alt = `The panel: input ${source}, ${lock}`;
  for (const [name, row] of parts.sources) {
    const [present, width, height, rate, interlaced] = numbersOf('inpsrc', `signal:${name}`);
    row.radio.checked = name === source;
    row.text.textContent = present ? `${width}×${height}${interlaced ? 'i' : 'p'} ${rate / 1000} Hz` : 'nothing arrives';
  }
  numbersOf('aud', 'volume:paths').forEach((volume, path) => { if (parts.volumes[path]) set(parts.volumes[path], volume); });
  const text = (board.get('disp') ?? []).join(' ').toLowerCase();
  kPicture.forEach((name, i) => { const found = new RegExp(`${name} (\\d+)`).exec(text); if (found) set(parts.picture[i], Number(found[1])); });
  const pattern = Number(lineOf('disptst', 'test pattern ')?.split(' ')[0]);
  if (!Number.isNaN(pattern)) parts.pattern.value = String(pattern);
  parts.osd.forEach((box, i) => { box.checked = /^on/.test(lineOf('disptst', `OSD layer ${i} `) ?? ''); });
  parts.rest.replaceChildren(...[...board].map(([name, lines]) => h('details', {}, h('summary', {}, name), h('pre', {}, lines.join('\n')))));
}

function set(slider, value) {
  if (document.activeElement !== slider) slider.value = value;
  slider.nextElementSibling.textContent = slider.value;
}

// --- Its controls.

const card = (title, ...children) => h('section', { class: `card ${title.toLowerCase().split(' ')[0]}` }, h('h3', {}, title), ...children);

function slider(label, most, change) {
  const shown = h('output', {}, '0');
  const input = h('input', { type: 'range', min: 0, max: most, value: 0, oninput: () => { shown.textContent = input.value; }, onchange: () => act(() => change(Number(input.value))) });
  return { input, element: h('label', { class: 'slider' }, h('span', {}, label), input, shown) };
}

function inputs() {
  return card('Inputs', parts.input = h('p', { role: 'status' }, '…'), h('div', { class: 'sources' }, kSources.map((name) => {
    const radio = h('input', { type: 'radio', name: 'source', onchange: () => act(() => order(`source ${name}`)) });
    const text = h('span', { class: 'muted' }, '…');
    const timing = h('select', {}, (['atv', 'av'].includes(name) ? kAnalogue : kTimings).map((one) => h('option', {}, one)));
    timing.setAttribute('aria-label', `Signal of ${name}`);
    parts.sources.set(name, { radio, text });
    return h('div', { class: 'source' }, h('label', { class: 'check' }, radio, name), text, timing,
      button('Send', () => act(() => order(`signal ${name} lock ${timing.value}`)), { 'aria-label': `${name}: send this signal` }),
      button('Lose', () => act(() => order(`signal ${name} lost`)), { 'aria-label': `${name}: lose the signal` }));
  })), h('div', { class: 'row' }, [1, 2, 3, 4].map((port) => h('span', { class: 'row' }, `HDMI ${port} cable`,
    button('in', () => act(() => order(`hdmi ${port} connect`)), { 'aria-label': `HDMI ${port}: connect the cable` }),
    button('out', () => act(() => order(`hdmi ${port} disconnect`)), { 'aria-label': `HDMI ${port}: disconnect the cable` })))));
}

function keys() {
  const code = h('input', { value: '116', size: 5, inputMode: 'numeric' });
  const custom = h('input', { value: '0', size: 7 });
  const channel = h('select', {}, [0, 1, 2, 3].map((one) => h('option', {}, String(one))));
  const adc = h('input', { value: '512', size: 5, inputMode: 'numeric' });
  return card('Keys', h('div', { class: 'row' }, Object.entries(kKeypad).map(([name, number]) => button(name, () => act(() => order(`key ${number}`))))),
    h('form', { class: 'row', onsubmit: (sent) => { sent.preventDefault(); act(() => order(`irkey ${custom.value} ${code.value}`)); } },
      field('Remote’s custom code', custom), field('Key', code), h('button', {}, 'Press on the remote')),
    h('form', { class: 'row', onsubmit: (sent) => { sent.preventDefault(); act(() => order(`adc ${channel.value} ${adc.value}`)); } },
      field('ADC channel', channel), field('Value, 0 to 1023', adc), h('button', {}, 'Apply')));
}

function sound() {
  const before = new Map();
  return card('Volume', kPaths.map((name, path) => {
    const one = slider(name, 100, (volume) => results('Audio', 'adv_set_volume', [path, volume]));
    parts.volumes[path] = one.input;
    return one.element;
  }), button('Mute or unmute the speaker', () => act(async () => {
    const now = Number(parts.volumes[0].value);
    if (now > 0) before.set(0, now);
    await results('Audio', 'adv_set_volume', [0, now > 0 ? 0 : before.get(0) ?? 30]);
  })));
}

function display() {
  parts.picture = [];
  parts.osd = [];
  parts.pattern = h('select', { onchange: () => act(() => results('DisplayTest', 'gen_test_pattern', [Number(parts.pattern.value), {
    stForeground: { u32Red: 1023, u32Green: 1023, u32Blue: 1023, u8Alpha: 255 }, stBackground: { u8Alpha: 255 },
    stLine: { u32Red: 1023, u32Green: 1023, u32Blue: 1023, u8Alpha: 255 }, u32LineWidth: 4 }])) },
  kPatterns.map((name, i) => h('option', { value: String(i) }, name)));
  const freeRun = h('select', { onchange: () => act(() => results('Display', 'set_freerun_control', [Number(freeRun.value)])) },
    ['without an input', 'always', 'never'].map((name, i) => h('option', { value: String(i) }, name)));
  return card('Display', h('div', { class: 'row' }, field('Test pattern', parts.pattern), field('Free run', freeRun)),
    h('div', { class: 'row' }, ['banner', 'subtitle'].map((name, i) => {
      parts.osd[i] = h('input', { type: 'checkbox', onchange: () => act(() => results('DisplayTest', 'set_osd_layer_on_off', [i, parts.osd[i].checked])) });
      return h('label', { class: 'check' }, parts.osd[i], `OSD ${name}`);
    })), kPicture.map((name, i) => {
      const one = slider(name, 100, (value) => results('Display', 'set_picture_param', [i, value]));
      parts.picture[i] = one.input;
      return one.element;
    }));
}

function lines() {
  const line = h('input', { type: 'number', min: 0, max: kGpios - 1, value: 0 });
  const level = h('p', { role: 'status' }, 'Level: not read');
  const read = async () => { level.textContent = `Line ${line.value} is ${(await results('Peripheral', 'get_gpio_status', [Number(line.value)])).u8GpioStatus ? 'high' : 'low'}`; };
  const drive = (text, value) => button(text, () => act(async () => { await results('Peripheral', 'control_gpio', [Number(line.value), value]); await read(); }));
  const outside = (value) => button(`Outside ${value}`, () => act(async () => { await order(`gpio ${line.value} ${value}`); await read(); }));
  const channel = h('input', { type: 'number', min: 0, max: 17, value: 0 });
  const duty = h('input', { type: 'number', min: 0, max: 100, value: 50 });
  const attribute = h('select', {});
  let channels = [];
  onConnection(async ({ state }) => {
    if (state !== 'ready' || channels.length > 0) return;
    const [owner] = await rpc('introspect', { interface: 'Peripheral', method: 'pwm_set_attr' });
    channels = owner.types.ZvtTvFApiPwmChannel.enumerators;
    attribute.replaceChildren(...owner.types.ZvtTvFApiPwmAttr.enumerators.map((one) => h('option', {}, one.name)));
  });
  const pwm = (method, ...values) => results('Peripheral', method, [attribute.value, channels[Number(channel.value)].name, ...values]);
  return card('GPIO and PWM', h('div', { class: 'row' }, field('Line, 0 to 63', line), button('Read', () => attempt(read)), drive('Drive low', 0), drive('Drive high', 1), drive('Let go', 2), outside(0), outside(1)), level,
    h('div', { class: 'row' }, field('PWM channel, 0 to 17', channel), field('Attribute', attribute), field('Value', duty),
      button('Read', () => attempt(async () => { duty.value = (await pwm('pwm_get_attr')).u32Value; })), button('Set', () => act(() => pwm('pwm_set_attr', Number(duty.value)), 'Set'))));
}

function faults() {
  const name = h('input', { placeholder: 'sys_check_file', required: true });
  const status = h('input', { value: '-77', size: 6, required: true });
  const times = h('select', {}, [['', 'the next call'], ['always', 'all calls'], ['5', 'the next 5 calls']].map(([value, text]) => h('option', { value }, text)));
  const pause = h('input', { type: 'number', min: 1, value: 3000 });
  return card('Faults', h('form', { class: 'row', onsubmit: (sent) => { sent.preventDefault(); act(() => order(`${name.value} ${status.value} ${times.value}`.trim(), 1), 'Forced'); } },
    field('Function', name), field('Status', status), field('For', times), h('button', {}, 'Force')),
  h('div', { class: 'row' }, button('Clear all forced statuses', () => act(() => order('clear', 1), 'Cleared')),
    field('Milliseconds', pause), button('Not ready for so long', () => act(() => order(`not-ready ${pause.value}`, 1)))),
  h('p', { class: 'muted' }, 'A board that is not ready refuses this page’s orders too: it comes back by itself.'));
}

function edids() {
  const text = h('pre', { class: 'scroll', tabIndex: 0, 'aria-label': 'The EDID, decoded' }, 'None read.');
  return card('EDID', h('div', { class: 'row' }, [1, 2, 3, 4].map((port) => button(`HDMI ${port}`, () => attempt(async () => {
    const edid = await rpc('edid', { port });
    text.textContent = edid.text ?? edid.bytes.replace(/.{32}/g, '$&\n');
  })))), text);
}

function build(root) {
  parts.panel = h('img', { alt: 'The panel', hidden: true, width: 1920, height: 1080 });
  parts.panelText = h('p', {}, 'Waiting for the picture …');
  parts.frame = h('div', { class: 'panel', tabIndex: -1 }, parts.panel, parts.panelText);
  parts.rest = h('div', {});
  root.append(h('h2', {}, 'Set'), parts.frame,
    h('fieldset', { class: 'row' }, h('legend', {}, 'Layers'), kLayers.map((name) => h('label', { class: 'check' },
      h('input', { type: 'radio', name: 'layers', checked: name === layers, onchange: () => { layers = name; watchPanel(); } }), name)),
    button('Full screen', () => attempt(() => parts.frame.requestFullscreen()))),
    h('div', { class: 'grid' }, inputs(), display(), sound(), keys(), lines(), faults(), edids(),
      terminal(0), terminal(1), card('All that the board keeps', parts.rest)));
  onConnection(() => { watchPanel(); refresh(); });
  let timer = 0;
  on('event', () => { clearTimeout(timer); timer = setTimeout(refresh, 200); });
}

export const view = {
  id: 'set', title: 'Set', build,
  show() { if (!visible) { visible = true; watchPanel(); refresh(); } },
  hide() { visible = false; watchPanel(); },
};
