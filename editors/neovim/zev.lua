-- Rule files in Neovim, 0.7 or later: starts `zev lsp` for them. Put this file into the folder "lua" of your
-- configuration, and write into init.lua:
--
--     require('zev').setup()
--
-- Options: `command`, a list, if zev is not in the PATH; `rules`, a list of files and folders from the root of the
-- project, if the rules are not all in one folder; `on_attach`, a function (client, buffer) for your own key mappings.
local M = {}

--- The clients that run, by the root of their project.
local clients = {}

--- The folder of the project: the nearest one above with .git, otherwise that of the file.
local function root_of(file)
  local folder = vim.fn.fnamemodify(file, ':p:h')
  local marker = vim.fn.finddir('.git', folder .. ';')
  if marker == '' then return folder end
  return vim.fn.fnamemodify(marker, ':p:h:h')
end

local function map_keys(buffer)
  local function map(keys, action)
    vim.keymap.set('n', keys, action, { buffer = buffer, silent = true })
  end
  map('K', vim.lsp.buf.hover)
  map('gd', vim.lsp.buf.definition)
  map('gr', vim.lsp.buf.references)
  map('<leader>rn', vim.lsp.buf.rename)
  map('<leader>ca', vim.lsp.buf.code_action)
  map(']d', vim.diagnostic.goto_next)
  map('[d', vim.diagnostic.goto_prev)
end

--- Attaches the client of the project to a buffer, and starts it if it does not run.
local function attach(buffer, options)
  local root = root_of(vim.api.nvim_buf_get_name(buffer))
  if not clients[root] then
    clients[root] = vim.lsp.start_client({
      name = 'zev',
      cmd = options.command or { 'zev', 'lsp' },
      root_dir = root,
      init_options = options.rules and { rules = options.rules } or vim.empty_dict(),
      on_attach = function(client, attached)
        -- CTRL-X CTRL-O completes.
        vim.api.nvim_buf_set_option(attached, 'omnifunc', 'v:lua.vim.lsp.omnifunc')
        map_keys(attached)
        if options.on_attach then options.on_attach(client, attached) end
      end,
      on_exit = function() clients[root] = nil end,
    })
  end
  if clients[root] then vim.lsp.buf_attach_client(buffer, clients[root]) end
end

function M.setup(options)
  options = options or {}
  vim.api.nvim_create_autocmd({ 'BufReadPost', 'BufNewFile' }, {
    group = vim.api.nvim_create_augroup('zev', { clear = true }),
    pattern = { '*.rules.yaml', '*.rule-tests.yaml' },
    callback = function(event) attach(event.buf, options) end,
  })
end

return M
