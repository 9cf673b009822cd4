-- Run inside of Neovim by neovim.sh. Writes "good" or the reason into the file TEST_RESULT.
local patience = 20000

local function wait_for(what, condition)
  if not vim.wait(patience, condition, 20) then error('not seen: ' .. what, 0) end
end

local function expect(what, actual, expected)
  if actual ~= expected then
    error(what .. ': expected ' .. vim.inspect(expected) .. ', actual ' .. vim.inspect(actual), 0)
  end
end

local function ask(method, line, column, more)
  local params = vim.tbl_extend('force', {
    textDocument = vim.lsp.util.make_text_document_params(),
    position = { line = line, character = column },
  }, more or {})
  local answers = vim.lsp.buf_request_sync(0, method, params, patience)
  local _, answer = next(answers or {})
  if not answer or answer.error then error(method .. ': ' .. vim.inspect(answer), 0) end
  return answer.result
end

local function line(number)
  return vim.api.nvim_buf_get_lines(0, number, number + 1, false)[1]
end

local function run()
  local clients = vim.lsp.buf_get_clients(0)
  wait_for('a client', function()
    clients = vim.lsp.buf_get_clients(0)
    return next(clients) ~= nil and select(2, next(clients)).initialized
  end)

  -- A mistake while writing, its fix, and no mistake.
  local available = line(11)
  vim.api.nvim_buf_set_text(0, 11, 19, 11, 19, { 'exist(${Hours}) and ' })
  wait_for('a diagnostic', function() return #vim.diagnostic.get(0) == 1 end)
  local found = vim.diagnostic.get(0)[1]
  expect('message', found.message, "unknown function 'exist'; did you mean 'exists'?")
  expect('place', found.lnum .. ':' .. found.col .. '-' .. found.end_col, '11:19-24')
  local actions = ask('textDocument/codeAction', 11, 19, {
    range = { start = { line = 11, character = 19 }, ['end'] = { line = 11, character = 24 } },
    context = { diagnostics = {} },
  })
  expect('number of fixes', #actions, 1)
  vim.lsp.util.apply_workspace_edit(actions[1].edit, 'utf-16')
  expect('fixed line', line(11), '        Available: exists(${Hours}) and ' .. available:sub(20))
  wait_for('no diagnostic', function() return #vim.diagnostic.get(0) == 0 end)
  vim.api.nvim_buf_set_lines(0, 11, 12, false, { available })

  -- What a parameter is, where it is given, and what can be written.
  local hover = ask('textDocument/hover', 11, 23)
  if not hover.contents.value:find('Ordered Allowed String List: `Off`, `On`', 1, true) then
    error('hover: ' .. hover.contents.value, 0)
  end
  local definition = ask('textDocument/definition', 15, 35)
  expect('definition', vim.fn.fnamemodify(vim.uri_to_fname(definition[1].uri), ':t') .. ':' .. definition[1].range.start.line,
    '10-plant.rules.yaml:15')
  vim.api.nvim_buf_set_lines(0, 11, 12, false, { "        Available: ${Mode} == '" })
  local proposals = ask('textDocument/completion', 11, 31)
  expect('proposals', table.concat(vim.tbl_map(function(item) return item.label end, proposals.items), ','), 'Off,On')
  vim.api.nvim_buf_set_lines(0, 11, 12, false, { available })

  -- Another name, in another file and in tests too.
  local edit = ask('textDocument/rename', 5, 7, { newName = 'State' })
  vim.lsp.util.apply_workspace_edit(edit, 'utf-16')
  expect('renamed line', line(11), (available:gsub('Mode', 'State')))
  local other = vim.api.nvim_buf_get_lines(vim.fn.bufadd('10-plant.rules.yaml'), 5, 6, false)[1]
  expect('renamed line of another file', other, "  pumps run: count({/Plant/Pump:*}, ${State} == 'On') > 0")
  local test = vim.api.nvim_buf_get_lines(vim.fn.bufadd('pump.rule-tests.yaml'), 4, 5, false)[1]
  expect('renamed line of a test', test, '      /Plant/Pump:a/State=Off')
end

local is_good, reason = pcall(run)
vim.fn.writefile({ is_good and 'good' or reason }, vim.env.TEST_RESULT)
vim.cmd(is_good and 'qall!' or 'cquit!')
