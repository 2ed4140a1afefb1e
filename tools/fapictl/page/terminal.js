// A terminal on one of the board's serial ports.
import { attempt, button, bytesOf, h, hexOf } from './dom.js';
import { connection, on, onConnection, rpc } from './rpc.js';

const kLines = 1000;
const kKeys = { Enter: '\r', Backspace: '\x7f', Delete: '\x1b[3~', ArrowUp: '\x1b[A', ArrowDown: '\x1b[B', ArrowRight: '\x1b[C', ArrowLeft: '\x1b[D', Home: '\x1b[H', End: '\x1b[F' };

/** The card of a port, 0 or 1. Keys go to the port as they are pressed; Tab leaves the terminal. */
export function terminal(port) {
  const decoder = new TextDecoder();
  let lines = [''];
  let hex = false;
  const echo = h('input', { type: 'checkbox', checked: true });
  const screen = h('pre', {
    class: 'terminal scroll', tabIndex: 0, role: 'textbox', 'aria-multiline': 'true',
    'aria-label': `Serial port ${port}: keys go to the board; Tab leaves`,
    onkeydown: (pressed) => {
      const text = pressed.ctrlKey && /^[a-z]$/i.test(pressed.key) && pressed.key !== 'v' ? String.fromCharCode(pressed.key.toUpperCase().charCodeAt(0) - 64)
        : pressed.ctrlKey || pressed.altKey || pressed.metaKey ? '' : kKeys[pressed.key] ?? (pressed.key.length === 1 ? pressed.key : '');
      if (text) { pressed.preventDefault(); type(text); }
    },
    onpaste: (pasted) => { pasted.preventDefault(); type(pasted.clipboardData.getData('text').replace(/\r?\n/g, '\r')); },
  });

  function draw() {
    screen.textContent = lines.join('\n');
    screen.scrollTop = screen.scrollHeight;
  }

  function write(text) {
    for (const c of text.replace(/\x1b\[[0-9;?]*[ -/]*[@-~]/g, '')) {
      if (c === '\n') lines.push('');
      else if (c === '\b' || c === '\x7f') lines[lines.length - 1] = lines.at(-1).slice(0, -1);
      else if (c !== '\r') lines[lines.length - 1] += c;
    }
    lines = lines.slice(-kLines);
    draw();
  }

  // Keys go one after the other, and together while one is on its way.
  let waiting = '';
  let sending = false;
  async function type(text) {
    if (echo.checked) write(text.replaceAll('\r', '\r\n'));
    waiting += text;
    if (sending) return;
    sending = true;
    while (waiting) {
      const bytes = new TextEncoder().encode(waiting);
      const part = bytes.slice(0, 1024);
      waiting = new TextDecoder().decode(bytes.slice(1024));
      await attempt(() => rpc('type', { port, bytes: hexOf(part) }));
    }
    sending = false;
  }

  on('serial', (said) => {
    if (said.port !== port) return;
    const bytes = bytesOf(said.bytes);
    write(hex ? `${Array.from(bytes, (byte) => byte.toString(16).padStart(2, '0')).join(' ')}\n` : decoder.decode(bytes, { stream: true }));
  });
  onConnection(({ state }) => {
    if (state === 'ready' && connection.board) {
      lines = [''];
      rpc('serial', { port, open: true }).catch((error) => write(`${error.message}\n`));
    }
  });
  return h('section', { class: 'card' }, h('h3', {}, `Serial port ${port}`), screen, h('div', { class: 'row' },
    h('label', { class: 'check' }, echo, 'show what is typed'),
    h('label', { class: 'check' }, h('input', { type: 'checkbox', onchange: (changed) => { hex = changed.target.checked; } }), 'hexadecimal'),
    button('Clear', () => { lines = ['']; draw(); }, { 'aria-label': `Clear serial port ${port}` })));
}
