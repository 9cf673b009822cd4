import { render } from 'preact';
import { Rpc } from './protocol/Rpc';
import { takeToken } from './protocol/Token';
import { Editor } from './store/Editor';
import { App } from './view/App';
import './style/editor.css';

const editor = new Editor(new Rpc(takeToken(location, history, sessionStorage)));
const root = document.getElementById('editor');
if (root) render(<App editor={editor} />, root);
void editor.connection.connect();
