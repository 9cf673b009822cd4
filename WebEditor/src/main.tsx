import { render } from 'preact';
import { NotAllowed, Rpc, ServerError, Unreachable } from './protocol/Rpc';
import { takeToken } from './protocol/Token';
import { sentenceOf } from './store/DocumentStore';
import { Editor } from './store/Editor';
import { App } from './view/App';
import './style/editor.css';

const editor = new Editor(new Rpc(takeToken(location, history, sessionStorage)));
// A question that was not answered changes nothing. The banner says that the server is gone, and everything is read
// again when it is back; what it refuses is announced.
addEventListener('unhandledrejection', (event) => {
  if (event.reason instanceof ServerError) editor.open.peek()?.announce(sentenceOf(event.reason));
  else if (!(event.reason instanceof Unreachable || event.reason instanceof NotAllowed)) return;
  event.preventDefault();
});
const root = document.getElementById('editor');
if (root) render(<App editor={editor} />, root);
void editor.connection.connect();
