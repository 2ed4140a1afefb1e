// The connection to the server: JSON-RPC requests, and the stream of notifications. It goes on by itself.

export class RpcError extends Error {
  constructor({ message, code, data }) {
    super(message);
    this.code = code;
    this.data = data;
  }
}

/** state: connecting, server-gone, no-service, not-ready or ready; board: whether it is a simulated one. */
export const connection = { state: 'connecting', board: false };

const handlers = new Map();
const watchers = [];
let stream = '';
let requests = 0;

/** Handles a notification of that name. */
export function on(name, handler) {
  if (!handlers.has(name)) handlers.set(name, []);
  handlers.get(name).push(handler);
}

/** Calls the handler now and whenever the connection changes. */
export function onConnection(handler) {
  watchers.push(handler);
  handler(connection);
}

function change(state) {
  if (connection.state === state) return;
  connection.state = state;
  for (const watcher of watchers) watcher(connection);
}

/** Makes a request and returns its result. Throws RpcError. */
export async function rpc(method, params = {}) {
  let answer;
  try {
    const response = await fetch(`rpc?stream=${stream}`, {
      method: 'POST',
      headers: { 'Content-Type': 'application/json' },
      body: JSON.stringify({ jsonrpc: '2.0', id: ++requests, method, params }),
    });
    if (!response.ok) throw new Error(`the server answers ${response.status}`);
    answer = await response.json();
  } catch (error) {
    throw new RpcError({ message: `no answer from the server: ${error.message}`, code: 0, data: {} });
  }
  if (answer.error) throw new RpcError(answer.error);
  return answer.result;
}

/** Calls a method of the service, whose names may be short. */
export function call(interfaceName, method, args = []) {
  return rpc('call', { interface: interfaceName, method, arguments: args });
}

/** Calls a method and returns its results; throws when its status says that it failed. */
export async function results(interfaceName, method, args = []) {
  const answer = await call(interfaceName, method, args);
  if (answer.failed) {
    const { number, name, reason } = answer.status ?? { number: 'false', name: 'not done' };
    throw new Error(`${method}: ${number} (${name})${reason ? `: ${reason}` : ''}`);
  }
  return answer.results;
}

/** Gives the simulated board an order: 0 something happens, 1 a status is forced. */
export const order = (text, command = 0) => results('System', 'send_cmd_to_factory_svc', [command, text]);

let settling = 0;

/** Finds out how the service is, until it is ready. */
async function settle() {
  const own = ++settling;
  while (own === settling) {
    try {
      const answer = await call('Information', 'get_fapi_sw_version');
      if (own !== settling) return;
      if (answer.status.number !== -5) {
        connection.board = await rpc('state').then(() => true, () => false);
        await rpc('watch', {});
        if (own === settling) change('ready');
        return;
      }
      change('not-ready');
    } catch (error) {
      if (own !== settling || error.code === 0) return;
      change('no-service');
    }
    // The server waits for the service; the page only asks again when that takes long.
    await rpc('wait', { ready: true, timeout: 10 }).catch(() => new Promise((done) => setTimeout(done, 200)));
  }
}

on('died', () => {
  change('no-service');
  settle();
});

/** Looks again whether the service is ready: after something that may have changed it, and now and then. */
export function look() {
  if (connection.state === 'ready') {
    call('Information', 'get_fapi_sw_version').then((answer) => {
      if (answer.status.number === -5) {
        change('not-ready');
        untilReady();
      }
    }, () => {});
  }
}

/** The watch goes on meanwhile. */
async function untilReady() {
  const own = ++settling;
  try {
    await rpc('wait', { ready: true });
  } catch {
    return; // the service has died, or the server: both are told otherwise
  }
  if (own === settling) change('ready');
}

setInterval(() => { if (!document.hidden) look(); }, 2000);

export function connect(pause = 250) {
  const source = new EventSource('stream');
  source.onmessage = ({ data }) => {
    const { method, params } = JSON.parse(data);
    if (method === 'stream') {
      stream = params.stream;
      pause = 250;
      settle();
    }
    for (const handler of handlers.get(method) ?? []) handler(params);
  };
  source.onerror = () => {
    source.close();
    settling += 1;
    change('server-gone');
    setTimeout(() => connect(Math.min(pause * 2, 4000)), pause);
  };
}
