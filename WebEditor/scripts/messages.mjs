// Writes the types of all messages, src/protocol/Messages.ts, from the JSON Schema of the protocol.
//
//   node scripts/messages.mjs             writes the file
//   node scripts/messages.mjs --check     fails if the file is not what the schema says
import { readFileSync, writeFileSync } from 'node:fs';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = resolve(dirname(fileURLToPath(import.meta.url)), '..');
const schema = JSON.parse(readFileSync(join(here, '../SessionService/schemas/protocol.schema.json'), 'utf8'));
const target = join(here, 'src/protocol/Messages.ts');

/** "result edit" is ResultEdit. */
const typeName = (key) => key.replace(/(^| )(.)/g, (_, __, letter) => letter.toUpperCase());

function typeOf(node, indent) {
  if (node.$ref) return typeName(node.$ref.replace('#/$defs/', ''));
  if (node.const !== undefined) return JSON.stringify(node.const);
  if (node.enum) return node.enum.map((value) => JSON.stringify(value)).join(' | ');
  if (node.anyOf) return node.anyOf.map((one) => typeOf(one, indent)).join(' | ');
  if (Array.isArray(node.type)) return node.type.map((one) => typeOf({ type: one }, indent)).join(' | ');
  switch (node.type) {
    case 'string':
      return 'string';
    case 'integer':
    case 'number':
      return 'number';
    case 'boolean':
      return 'boolean';
    case 'null':
      return 'null';
    case 'array': {
      const item = node.items ? typeOf(node.items, indent) : 'unknown';
      return item.includes(' ') && !item.startsWith('{') ? `(${item})[]` : `${item}[]`;
    }
    case 'object':
      return objectType(node, indent);
    default:
      return 'unknown';
  }
}

function objectType(node, indent) {
  const entries = Object.entries(node.properties ?? {});
  if (entries.length === 0) return 'Record<string, never>';
  const required = new Set(node.required ?? []);
  const deeper = `${indent}  `;
  const lines = entries.map(
    ([name, value]) => `${deeper}${name}${required.has(name) ? '' : '?'}: ${typeOf(value, deeper)};`,
  );
  return `{\n${lines.join('\n')}\n${indent}}`;
}

let text = '// Written by scripts/messages.mjs from the schema of the protocol. Do not edit.\n';
for (const [key, node] of Object.entries(schema.$defs)) {
  if (node.description) text += `\n/** ${node.description} */`;
  text += `\nexport type ${typeName(key)} = ${typeOf(node, '')};\n`;
}
const methods = Object.keys(schema.$defs)
  .filter((key) => key.startsWith('params '))
  .map((key) => key.slice('params '.length));
text += '\n/** The methods, with what each is given and returns. */\nexport type Methods = {\n';
for (const method of methods) {
  text += `  ${method}: { params: ${typeName(`params ${method}`)}; result: ${typeName(`result ${method}`)} };\n`;
}
text += '};\n';

if (process.argv.includes('--check')) {
  if (readFileSync(target, 'utf8') !== text) {
    console.error('src/protocol/Messages.ts is not what the schema says; run: npm run messages');
    process.exitCode = 1;
  }
} else {
  writeFileSync(target, text);
}
