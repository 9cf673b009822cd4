import { render } from 'preact';
import { Rpc } from './protocol/Rpc';
import { takeToken } from './protocol/Token';
import './style/editor.css';

const rpc = new Rpc(takeToken(location, history, sessionStorage));
const root = document.getElementById('editor');
const hello = await rpc.call('hello', {});
const documents = await Promise.all(
  hello.documents.map(async (state) => ({
    state,
    children: await rpc.call('children', { document: state.document, path: state.root, findings: true }),
  })),
);
if (root) {
  render(
    <main>
      {documents.map(({ state, children }) => (
        <section key={state.document}>
          <h1>{state.file}</h1>
          <ul>
            {children.list.map((child) => (
              <li key={child.path}>{child.path}</li>
            ))}
          </ul>
        </section>
      ))}
    </main>,
    root,
  );
}
