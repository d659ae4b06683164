-- Drives Neovim with the settings of editors/nvim through a project, as a user would: findings, hover,
-- completion, jump and rename. Runs in one Neovim, which starts and controls another:
--   WORDLEX_SETTINGS=editors/nvim/wordlex.lua WORDLEX_SCRATCH=FOLDER nvim --headless -u NONE -S neovim.lua
local scratch = vim.env.WORDLEX_SCRATCH
local files = {
    ["wordlex.toml"] = { 'reference = "dictionaries/en.txt"', 'languages = ["dictionaries/*.txt"]', 'sources = ["src"]' },
    ["dictionaries/en.txt"] = { '"$$$/Menu/Open=&Open ^1"', '"$$$/Menu/Close=&Close"' },
    ["dictionaries/de.txt"] = { '"$$$/Menu/Open=😀 &Öffnen \\q ^1"' },
    ["src/main.cpp"] = { 'const char* open = "$$$/Menu/Open=&Open ^1";' },
}

local child

local function ask(method, ...) return vim.rpcrequest(child, method, ...) end

local function lua(code) return ask("nvim_exec_lua", code, {}) end

local function expect(what, expected, actual)
    if not vim.deep_equal(expected, actual) then
        error(what .. ":\n  expected " .. vim.inspect(expected) .. "\n  actual   " .. vim.inspect(actual), 0)
    end
end

-- Waits until the Lua expression, evaluated in the other Neovim, has the expected value.
local function wait(what, expected, expression)
    local actual
    local function arrived()
        actual = lua("return " .. expression)
        return vim.deep_equal(expected, actual)
    end
    if not vim.wait(20000, arrived, 50) then expect(what, expected, actual) end
end

local function edit(name) ask("nvim_command", "edit " .. scratch .. "/" .. name) end

local LINES = "vim.api.nvim_buf_get_lines(vim.fn.bufnr('%s$'), 0, -1, false)"
local PLACE = "{ vim.fn.expand('%:t'), vim.api.nvim_win_get_cursor(0) }"

local function test()
    for name, lines in pairs(files) do
        vim.fn.mkdir(vim.fn.fnamemodify(scratch .. "/" .. name, ":h"), "p")
        vim.fn.writefile(lines, scratch .. "/" .. name)
    end
    child = vim.fn.jobstart(
        { vim.v.progpath, "--embed", "--headless", "-n", "-i", "NONE", "-u", vim.env.WORDLEX_SETTINGS },
        { rpc = true })

    edit("dictionaries/de.txt")
    wait("findings", { { "unknown-escape", 0, 29, 31 }, { "missing-key", 0, 0, 0 } }, [[vim.tbl_map(
        function(d) return { d.code or d.user_data.lsp.code, d.lnum, d.col, d.end_col } end, vim.diagnostic.get(0))]])

    ask("nvim_win_set_cursor", 0, { 1, 20 })
    lua("vim.lsp.buf.hover()")
    wait("the text in the window of hover", true, [[#vim.tbl_filter(function(window)
        local text = table.concat(vim.api.nvim_buf_get_lines(vim.api.nvim_win_get_buf(window), 0, -1, false), "\n")
        return vim.api.nvim_win_get_config(window).relative ~= "" and text:find("&Open ^1", 1, true) ~= nil
    end, vim.api.nvim_list_wins()) == 1]])

    ask("nvim_input", 'Go"$$$/Menu/Cl<C-x><C-o>')
    wait("completion", { "$$$/Menu/Close" }, "vim.tbl_map(function(i) return i.abbr end, vim.fn.complete_info().items)")
    ask("nvim_input", '&Schließen"<Esc>')
    wait("the completed line", '"$$$/Menu/Close=&Schließen"', "vim.api.nvim_get_current_line()")
    wait("findings after the edit", { "unknown-escape" }, [[vim.tbl_map(
        function(d) return d.code or d.user_data.lsp.code end, vim.diagnostic.get(0))]])

    lua("vim.lsp.buf.definition()")
    wait("jump to the reference", { "en.txt", { 2, 4 } }, PLACE)
    edit("src/main.cpp")
    ask("nvim_win_set_cursor", 0, { 1, 30 })
    wait("the server of a source", 1, "#vim.tbl_keys(vim.lsp.buf_get_clients(0))")
    lua("vim.lsp.buf.definition()")
    wait("jump from a source", { "en.txt", { 1, 4 } }, PLACE)

    lua("vim.lsp.buf.rename('/File/Open')")
    for name, line in pairs({
        ["de.txt"] = '"$$$/File/Open=😀 &Öffnen \\q ^1"',
        ["en.txt"] = '"$$$/File/Open=&Open ^1"',
        ["main.cpp"] = 'const char* open = "$$$/File/Open=&Open ^1";',
    }) do
        wait("rename in " .. name, line, LINES:format(name) .. "[1]")
    end
    expect("servers", 1, lua("return #vim.lsp.get_active_clients()"))

    vim.rpcnotify(child, "nvim_command", "qall!")
    expect("exit code of Neovim", { 0 }, vim.fn.jobwait({ child }, 20000))
end

local passed, message = pcall(test)
io.stdout:write(passed and "passed\n" or message .. "\n")
vim.cmd(passed and "qall!" or "cquit")
