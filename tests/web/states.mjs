// The main states of the page, for the test of accessibility and for the screenshots.
import { field, flow, form, hits, shows, side, tab, treeItem } from './harness.mjs';

async function analysis(page) {
  await shows(page, 'Case');
  await openTree(page);
  await treeItem(page, 'Analysis').click();
  await shows(page, 'Analysis');
}

/** At 400 pixels one pane shows at a time. */
async function openTree(page) {
  const back = page.getByRole('button', { name: 'Objects', exact: true });
  if (await back.isVisible()) await back.click();
}

async function openSide(page) {
  const button = page.getByRole('contentinfo').getByRole('button');
  if (await button.isVisible()) await button.click();
}

/** `text` is the model, `go` leads from the opened page to the state. */
export const states = [
  { name: 'case', text: flow.text, go: (page) => shows(page, 'Case') },
  {
    name: 'preview',
    text: flow.text,
    go: async (page) => {
      await analysis(page);
      await field(page, 'Analysis Type').getByRole('radio', { name: 'Transient' }).hover();
      await field(page, 'Analysis Type').getByText('Transient would do this').waitFor();
      await field(page, 'Analysis Type').getByText(/Total Time|Time Step/).first().waitFor();
    },
  },
  {
    name: 'effects',
    text: flow.text,
    go: async (page) => {
      await analysis(page);
      await field(page, 'Analysis Type').getByRole('radio', { name: 'Transient' }).click();
      await field(page, 'Total Time').waitFor();
      await openSide(page);
      await tab(page, 'Effects').click();
      await side(page).getByRole('button', { name: 'Undo this edit' }).waitFor();
    },
  },
  {
    name: 'why',
    text: flow.text,
    go: async (page) => {
      await analysis(page);
      await form(page).getByRole('button', { name: /unavailable/ }).first().click();
      await field(page, 'Time Step').getByRole('button', { name: 'Why Time Step' }).click();
      await openSide(page);
      await side(page).getByText(/Analysis Type/).first().waitFor();
    },
  },
  {
    name: 'how',
    text: flow.text,
    go: async (page) => {
      await analysis(page);
      await form(page).getByRole('button', { name: /unavailable/ }).first().click();
      await field(page, 'Time Step').getByRole('button', { name: 'How to get Time Step' }).click();
      await openSide(page);
      await side(page).getByRole('button', { name: 'Do it' }).first().waitFor();
    },
  },
  {
    name: 'findings',
    text: 'Case:\nEND # Case:\n',
    go: async (page) => {
      await shows(page, 'Case');
      await openSide(page);
      await tab(page, 'Findings').click();
      await side(page).getByText('2 errors').waitFor();
    },
  },
  {
    name: 'refusal',
    text: flow.text,
    go: async (page) => {
      await shows(page, 'Case');
      await field(page, 'Maximum Speed').getByRole('textbox').fill('1,5');
      await field(page, 'Maximum Speed').getByRole('textbox').press('Enter');
      await field(page, 'Maximum Speed').getByRole('button', { name: 'Use 1.5' }).waitFor();
    },
  },
  {
    name: 'search',
    text: flow.text,
    go: async (page) => {
      await page.getByRole('searchbox').fill('temp');
      await hits(page).getByRole('treeitem').first().waitFor();
    },
  },
  {
    name: 'list',
    text: flow.text,
    go: async (page) => {
      await shows(page, 'Case');
      await openTree(page);
      await treeItem(page, /^sink/).click();
      await shows(page, 'sink');
      await field(page, 'Location').getByRole('button', { name: 'Item of Location' }).click();
      await field(page, 'Location').getByRole('textbox', { name: 'Location, item 2 of 2' }).waitFor();
    },
  },
  {
    name: 'choices',
    text: flow.text,
    go: async (page) => {
      await shows(page, 'Case');
      await openTree(page);
      await treeItem(page, 'Output').click();
      await shows(page, 'Output');
      await field(page, 'Extra Variables').getByRole('button', { name: /^Extra Variables/ }).click();
      await field(page, 'Extra Variables').getByText('Nothing else would change.').waitFor();
    },
  },
  {
    name: 'dialog',
    text: flow.text,
    go: async (page) => {
      await shows(page, 'Case');
      await form(page).getByRole('button', { name: 'Add Domain', exact: true }).click();
      await page.getByRole('dialog').getByRole('textbox').waitFor();
    },
  },
  {
    name: 'server-gone',
    text: flow.text,
    go: async (page, server) => {
      await shows(page, 'Case');
      await server.kill();
      await page.getByText('The server does not answer.').waitFor();
    },
  },
];
