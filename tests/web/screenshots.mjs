// Takes pictures of the main states: screenshots.mjs FOLDER. See tools/screenshots.
import { join } from 'node:path';
import { closeBrowser, flow, openBrowser, openPage, Server } from './harness.mjs';
import { states } from './states.mjs';

const folder = process.argv[2];
const pictures = [
  { state: 'case', width: 1280, height: 800, theme: 'light' },
  { state: 'preview', width: 1280, height: 800, theme: 'light' },
  { state: 'effects', width: 1280, height: 800, theme: 'light' },
  { state: 'why', width: 1280, height: 800, theme: 'dark' },
  { state: 'how', width: 1280, height: 800, theme: 'light' },
  { state: 'search', width: 1280, height: 800, theme: 'light' },
  { state: 'findings', width: 1280, height: 800, theme: 'light' },
  { state: 'effects', width: 400, height: 800, theme: 'light' },
];

await openBrowser();
for (const { state, width, height, theme } of pictures) {
  const { text, go } = states.find(({ name }) => name === state);
  const server = await Server.start({ ...flow, text, name: 'heat-sink.tdf' });
  const page = await openPage(server, { width, height, theme });
  await go(page, server);
  await page.evaluate(() => document.fonts.ready);
  const file = `web-${state}${width < 1000 ? '-narrow' : ''}.png`;
  await page.screenshot({ path: join(folder, file), animations: 'disabled', caret: 'hide' });
  console.log(file);
  await server.remove();
}
await closeBrowser();
