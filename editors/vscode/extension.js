// Starts `zev lsp` for rule files, and restarts it when its settings change.
'use strict';

const vscode = require('vscode');
const { LanguageClient } = require('vscode-languageclient/node');

let client;

function start() {
  const settings = vscode.workspace.getConfiguration('zev');
  const rules = settings.get('rules', []);
  client = new LanguageClient(
    'zev',
    'Rule files',
    { command: settings.get('command', 'zev'), args: ['lsp'] },
    {
      documentSelector: [{ pattern: '**/*.rules.yaml' }, { pattern: '**/*.rule-tests.yaml' }],
      initializationOptions: rules.length > 0 ? { rules } : {},
    },
  );
  return client.start();
}

async function restart() {
  if (client) await client.dispose();
  await start();
}

async function activate(context) {
  context.subscriptions.push(
    vscode.workspace.onDidChangeConfiguration((event) => {
      if (event.affectsConfiguration('zev')) void restart();
    }),
  );
  await start();
}

function deactivate() {
  return client ? client.stop() : undefined;
}

module.exports = { activate, deactivate };
