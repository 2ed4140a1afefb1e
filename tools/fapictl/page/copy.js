// A call as it is written elsewhere.

const quoted = (text) => (/^[\w@%+=:,./-]+$/.test(text) ? text : `'${text.replaceAll("'", "'\\''")}'`);

export function asShell(owner, method, args) {
  return `fapictl call ${owner.shortName.toLowerCase()} ${method.shortName}`
    + (method.arguments.length > 0 ? ` --args ${quoted(JSON.stringify(args))}` : '');
}

function python(value, type, types) {
  if (typeof value === 'boolean') return value ? 'True' : 'False';
  const array = /^(?:vec<(.+)>|(.+)\[\d+\])$/.exec(type);
  const inner = array?.[1] ?? array?.[2];
  if (inner === 'uint8_t') return `bytes.fromhex("${value}")`;
  if (array) return `[${value.map((one) => python(one, inner, types)).join(', ')}]`;
  if (types[type]?.fields) return `{${types[type].fields.map((one) => `"${one.name}": ${python(value[one.name], one.type, types)}`).join(', ')}}`;
  return typeof value === 'string' ? JSON.stringify(value) : String(value);
}

export function asPython(owner, method, args) {
  const given = method.arguments.map((one) => python(args[one.name], one.type, owner.types)).join(', ');
  return `import zvttvfactory\n\nwith zvttvfactory.connect(timeout=5) as tv:\n    print(tv.${owner.shortName.toLowerCase()}.${method.shortName}(${given}))\n`;
}

function cpp(value, type, types) {
  if (typeof value === 'boolean') return String(value);
  const array = /^(?:vec<(.+)>|(.+)\[\d+\])$/.exec(type);
  if (array) {
    const inner = array[1] ?? array[2];
    const items = inner === 'uint8_t' ? (value.match(/../g) ?? []).map((pair) => `0x${pair}`) : value.map((one) => cpp(one, inner, types));
    return `{${items.join(', ')}}`;
  }
  if (types[type]?.fields) return `{${types[type].fields.map((one) => `/* ${one.name} */ ${cpp(value[one.name], one.type, types)}`).join(', ')}}`;
  if (types[type]) return `${type}::${value}`;
  return type === 'string' ? JSON.stringify(value) : String(value);
}

export function asCpp(owner, method, args) {
  const [packageName, interfaceName] = owner.interface.split('::');
  const header = `${packageName.replaceAll('.', '/').replace('@', '/').replace('/1/0', '/1.0')}/${interfaceName}.h`;
  const space = packageName.replaceAll('.', '::').replace('@1::0', '::V1_0');
  const given = method.arguments.map((one) => cpp(args[one.name], one.type, owner.types));
  const single = method.results.length === 1;
  const results = method.results.map((one) => `const auto& ${one.name}`).join(', ');
  const callback = single || method.results.length === 0 ? [] : [`[&](${results}) { /* ... */ }`];
  return `#include <${header}>\n\nusing namespace ${space};\n\nif (const auto service = ${interfaceName}::tryGetService()) {\n`
    + `    const auto result = service->${method.name}(${[...given, ...callback].join(', ')});\n`
    + '    if (!result.isOk()) {\n        // no answer: result.description()\n    }\n}\n';
}
