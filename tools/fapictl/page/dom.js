// Elements without a framework.

/** Makes an element. Properties that the element has are set, others become attributes; on... are handlers. */
export function h(tag, props, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(props ?? {})) {
    if (name === 'class') element.className = value;
    else if (name.startsWith('on')) element.addEventListener(name.slice(2), value);
    else if (name in element && !['list', 'for'].includes(name)) element[name] = value;
    else if (value !== null && value !== false) element.setAttribute(name, value);
  }
  element.append(...children.flat(Infinity).filter((child) => child !== null && child !== undefined));
  return element;
}

let toastTimer = 0;

/** Says something in passing; kind is '', 'ok' or 'bad'. */
export function toast(text, kind = '') {
  const place = document.getElementById('toast');
  place.replaceChildren(text === '' ? '' : h('span', { class: `message ${kind}` }, text));
  clearTimeout(toastTimer);
  toastTimer = setTimeout(() => place.replaceChildren(), kind === 'bad' ? 8000 : 3000);
}

/** Does something that may fail, and says so. */
export async function attempt(work, done = '') {
  try {
    const result = await work();
    if (done) toast(done, 'ok');
    return result;
  } catch (error) {
    toast(error.message, 'bad');
    return undefined;
  }
}

export async function copyText(text) {
  await attempt(() => navigator.clipboard.writeText(text), 'Copied');
}

/** A label with its field. */
export function field(label, input, ...more) {
  return h('label', { class: 'field' }, h('span', {}, label), input, ...more);
}

export function button(text, onclick, props = {}) {
  return h('button', { type: 'button', onclick, ...props }, text);
}

export const hexOf = (bytes) => Array.from(bytes, (byte) => byte.toString(16).padStart(2, '0')).join('');

export const bytesOf = (hex) => Uint8Array.from(hex.match(/../g) ?? [], (pair) => parseInt(pair, 16));
