// Forms made from the description of a method's arguments.
import { button, h, hexOf } from './dom.js';

const kIntegers = { int8_t: 8, int16_t: 16, int32_t: 32, int64_t: 64, uint8_t: 8, uint16_t: 16, uint32_t: 32, uint64_t: 64 };

function integerOf(type) {
  const bits = BigInt(kIntegers[type]);
  const signed = !type.startsWith('u');
  return signed ? [-(1n << (bits - 1n)), (1n << (bits - 1n)) - 1n] : [0n, (1n << bits) - 1n];
}

/** An input that says beside itself what is wrong; read() throws for it, too. */
function checked(input, read, parts) {
  const error = h('span', { class: 'error', id: `${parts.id}-error` });
  input.setAttribute('aria-describedby', error.id);
  const take = () => {
    try {
      const value = read();
      error.textContent = '';
      input.removeAttribute('aria-invalid');
      return value;
    } catch (problem) {
      error.textContent = problem.message;
      input.setAttribute('aria-invalid', 'true');
      throw problem;
    }
  };
  input.addEventListener('change', () => { try { take(); } catch { /* it stands beside the field */ } });
  return { take, error };
}

let ids = 0;

/**
 * A field for a value of a type: { element, read(), write(value) }. read() throws what is wrong with it.
 * types are the interface's own, by their names.
 */
export function fieldOf(label, type, types, hint = '') {
  const id = `f${ids += 1}`;
  const legend = h('span', {}, label, h('small', { class: 'muted' }, ` ${type}`));
  const note = hint ? h('small', { class: 'muted hint' }, hint) : null;
  const simple = (input, read, write) => {
    const { take, error } = checked(input, read, { id });
    return { element: h('label', { class: 'field wide' }, legend, input, error, note), read: take, write };
  };
  if (type === 'bool') {
    const input = h('input', { type: 'checkbox' });
    return { element: h('label', { class: 'check' }, input, legend, note), read: () => input.checked, write: (value) => { input.checked = value; } };
  }
  if (type in kIntegers) {
    const [least, most] = integerOf(type);
    const input = h('input', { value: '0', inputMode: 'numeric', autocomplete: 'off', title: `${least} to ${most}` });
    return simple(input, () => {
      const text = input.value.trim();
      if (!/^(-?\d+|0x[0-9a-f]+)$/i.test(text)) throw new Error('a number, such as 5 or 0x1f');
      const value = BigInt(text);
      if (value < least || value > most) throw new Error(`${least} to ${most}`);
      const number = Number(value);
      return Number.isSafeInteger(number) ? number : text;
    }, (value) => { input.value = String(value); });
  }
  if (type === 'float' || type === 'double') {
    const input = h('input', { value: '0', inputMode: 'decimal' });
    return simple(input, () => {
      const value = Number(input.value);
      if (input.value.trim() === '' || !Number.isFinite(value)) throw new Error('a number');
      return value;
    }, (value) => { input.value = String(value); });
  }
  if (type === 'string') {
    const input = h('input', { autocomplete: 'off', spellcheck: false });
    return simple(input, () => input.value, (value) => { input.value = value; });
  }
  const array = /^(?:vec<(.+)>|(.+)\[(\d+)\])$/.exec(type);
  if (array) {
    const inner = array[1] ?? array[2];
    const fixed = array[3] === undefined ? null : Number(array[3]);
    if (inner === 'uint8_t') return bytesField(simple, legend, note, fixed);
    return listField(label, legend, note, inner, fixed, types, simple);
  }
  const known = types[type];
  if (known?.fields) {
    const inner = known.fields.map((one) => [one.name, fieldOf(one.name, one.type, types, hintOf(one))]);
    return {
      element: h('fieldset', {}, h('legend', {}, legend), note, inner.map(([, one]) => one.element)),
      read: () => Object.fromEntries(inner.map(([name, one]) => [name, one.read()])),
      write: (value) => inner.forEach(([name, one]) => { if (value[name] !== undefined) one.write(value[name]); }),
    };
  }
  const names = known?.enumerators?.map((one) => one.name);
  if (names) {
    const input = h('select', {}, names.map((name) => h('option', {}, name)));
    return simple(input, () => input.value, (value) => { input.value = value; });
  }
  return {
    element: h('p', { class: 'field wide' }, legend, h('em', {}, 'An object of the client’s own: a page has none to give.')),
    read: () => { throw new Error(`${label} is an object of the client’s own, which only a program can give`); },
    write() {},
  };
}

/** Bytes as hexadecimal digits, as text or from a file. */
function bytesField(simple, legend, note, fixed) {
  const input = h('textarea', { rows: 2, spellcheck: false, value: fixed === null ? '' : '00'.repeat(fixed) });
  const form = h('select', { 'aria-label': 'Bytes as' }, ['hex', 'text'].map((name) => h('option', {}, name)));
  const file = h('input', { type: 'file', 'aria-label': 'Bytes of a file' });
  file.addEventListener('change', async () => {
    if (file.files.length > 0) {
      form.value = 'hex';
      input.value = hexOf(new Uint8Array(await file.files[0].arrayBuffer()));
    }
  });
  const one = simple(input, () => {
    const hex = form.value === 'text' ? hexOf(new TextEncoder().encode(input.value)) : input.value.replace(/\s/g, '');
    if (!/^([0-9a-f]{2})*$/i.test(hex)) throw new Error('pairs of hexadecimal digits');
    if (fixed !== null && hex.length !== 2 * fixed) throw new Error(`${fixed} bytes, not ${hex.length / 2}`);
    return hex;
  }, (value) => { form.value = 'hex'; input.value = value; });
  return { ...one, element: h('div', { class: 'wide' }, one.element, h('div', { class: 'row' }, form, file)) };
}

function listField(label, legend, note, inner, fixed, types, simple) {
  if (inner in kIntegers) {
    const [least, most] = integerOf(inner);
    const input = h('input', { placeholder: '1, 2, 3', autocomplete: 'off' });
    return simple(input, () => {
      const values = input.value.split(/[\s,]+/).filter(Boolean).map(Number);
      if (values.some((value) => !Number.isInteger(value) || value < Number(least) || value > Number(most))) {
        throw new Error(`numbers from ${least} to ${most}`);
      }
      if (fixed !== null && values.length > fixed) throw new Error(`at most ${fixed} numbers`);
      return values;
    }, (values) => { input.value = values.join(', '); });
  }
  const rows = [];
  const place = h('div', {});
  const add = (value) => {
    const row = fieldOf(`${label} ${rows.length}`, inner, types);
    rows.push(row);
    place.append(row.element);
    if (value !== undefined) row.write(value);
  };
  const remove = () => rows.pop()?.element.remove();
  return {
    element: h('fieldset', {}, h('legend', {}, legend), note, place,
      h('div', { class: 'row' }, button('Add', () => { if (fixed === null || rows.length < fixed) add(); }), button('Remove the last', remove))),
    read: () => rows.map((row) => row.read()),
    write: (values) => {
      while (rows.length > 0) remove();
      values.forEach(add);
    },
  };
}

export function hintOf({ doc, unit }) {
  return [doc, unit ? `in ${unit}` : ''].filter(Boolean).join('; ');
}
